# What a scoring program finds after `cmake --install`: the library as TaviMembership::TaviMembership, and the headers of
# the public classes below include/tavi, in their rooms' folders.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# From top to bottom, as a linker reads them.
set(tavi_archives tavi_composition tavi_facade tavi_competitions tavi_handicaps tavi_members tavi_names tavi_store tavi_util
    tavi_access_provider tavi_access_sql_run tavi_access_sql_plan tavi_access_sql_expression tavi_access_sql_parse
    tavi_access_catalog tavi_access_index tavi_access_table tavi_access_file tavi_platform_portable tavi_platform)
install(TARGETS ${tavi_archives} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}/tavi)
install(TARGETS tavi RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

install(FILES include/tavi/MembershipDatabase.h include/tavi/DatabaseTransaction.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tavi)
foreach(header
    facade/MembershipDatabase.h facade/DatabaseTransaction.h handicaps/HandiCalcSettings.h handicaps/Handicaps.h names/MemberValues.h members/EBUMembershipDetails.h
    composition/Composition.h platform/Platform.h platform/ado/Provider.h
    platform/values/Convert.h platform/values/Date.h platform/values/Error.h platform/values/Text.h
    platform/values/Value.h)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES src/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tavi/${folder})
endforeach()

configure_package_config_file(cmake/TaviMembershipConfig.cmake.in ${CMAKE_BINARY_DIR}/TaviMembershipConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/TaviMembership
  PATH_VARS CMAKE_INSTALL_INCLUDEDIR CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/TaviMembershipConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/TaviMembershipConfig.cmake ${CMAKE_BINARY_DIR}/TaviMembershipConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/TaviMembership)
