# Libraries that consist of headers alone, for a system that they are not packaged for: those of this machine, which are
# the same everywhere. Only their own folders are shown to the compiler, by links in the build folder, because beside
# them lie the headers of this machine's own C library.

# tavi_header_library(NAME HEADER): an interface library with the folder that HEADER's path begins with.
function(tavi_header_library name header)
  find_path(${name}_place ${header} PATHS /usr/include /usr/local/include REQUIRED NO_DEFAULT_PATH
    NO_CMAKE_FIND_ROOT_PATH)
  cmake_path(GET header PARENT_PATH folder)
  set(shown ${CMAKE_BINARY_DIR}/header-libraries/${folder})
  file(MAKE_DIRECTORY ${shown})
  file(CREATE_LINK ${${name}_place}/${folder} ${shown}/${folder} COPY_ON_ERROR SYMBOLIC)
  add_library(${name} INTERFACE)
  target_include_directories(${name} SYSTEM INTERFACE ${shown})
endfunction()
