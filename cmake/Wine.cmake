# Wine for the kind of program that is built: TAVI_WINE, empty where there is none. Then the programs are looked at, but
# not run, and a message says so. Another Wine can be named with -DTAVI_WINE=PROGRAM.
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
  find_program(TAVI_WINE NAMES wine64 wine HINTS /usr/lib/wine)
  set(kind 64-bit)
  set(TAVI_WINE_KIND win64)
  set(TAVI_TEST_SUFFIX "")
else()
  # The wine on the path may be one for 64-bit programs alone; this is where the package wine32 has the other.
  find_program(TAVI_WINE NAMES wine PATHS /usr/lib/wine NO_DEFAULT_PATH)
  set(kind 32-bit)
  set(TAVI_WINE_KIND win32)
  set(TAVI_TEST_SUFFIX .x86)
endif()
if(NOT TAVI_WINE)
  message(NOTICE "No Wine for ${kind} programs: they are built and checked, but their tests that run them are left out.")
endif()

# tavi_wine_test(NAME COMMAND...): a test that runs under that Wine. Those of 32-bit programs are told apart by the end
# of their names.
function(tavi_wine_test name)
  add_test(NAME ${name}${TAVI_TEST_SUFFIX}
    COMMAND ${CMAKE_SOURCE_DIR}/tests/scripts/run-cases ${name}${TAVI_TEST_SUFFIX} ${ARGN})
  set_tests_properties(${name}${TAVI_TEST_SUFFIX} PROPERTIES ENVIRONMENT "TAVI_WINE=${TAVI_WINE};WINEARCH=${TAVI_WINE_KIND}" TIMEOUT 600)
endfunction()
