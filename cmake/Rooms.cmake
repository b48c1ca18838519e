# How a room (a folder of src/) becomes a library, and a folder of tests/ a test program.

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  # Without these ccache keeps nothing that was compiled with a precompiled header.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
    CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${CCACHE_PROGRAM})
endif()

add_library(tavi_options INTERFACE)
target_include_directories(tavi_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_options(tavi_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wnon-virtual-dtor
  -Woverloaded-virtual)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(tavi_options INTERFACE -Werror -fpch-preprocess)
  # These look at optimized code and are wrong about std::string in GCC 12.
  target_compile_options(tavi_options INTERFACE -Wno-restrict -Wno-stringop-overflow
    -Wno-stringop-overread -Wno-array-bounds)
else()
  # Where an array is listed, inner braces only make it harder to read.
  target_compile_options(tavi_options INTERFACE -Wno-missing-braces)
endif()
if(WIN32)
  target_compile_definitions(tavi_options INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601)
endif()
if(TAVI_SANITIZE)
  # The optimizer's lifetime warnings are unreliable in instrumented code.
  target_compile_options(tavi_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer -Wno-maybe-uninitialized)
  target_link_options(tavi_options INTERFACE -fsanitize=address,undefined)
endif()
if(TAVI_SANITIZE_THREADS)
  target_compile_options(tavi_options INTERFACE -fsanitize=thread -fno-omit-frame-pointer -Wno-maybe-uninitialized)
  target_link_options(tavi_options INTERFACE -fsanitize=thread)
endif()

if(TAVI_FUZZ)
  target_compile_options(tavi_options INTERFACE
    -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tavi_options INTERFACE -fsanitize=address,undefined)
endif()

set(TAVI_PRECOMPILED_HEADERS
  <algorithm> <array> <cstdint> <filesystem> <functional> <map> <memory> <optional> <span> <string> <string_view>
  <unordered_map> <utility> <variant> <vector>)

# tavi_room(NAME SOURCES ... [USES ...]): a static library of one room; USES are the rooms below it.
function(tavi_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;USES" ${ARGN})
  add_library(${name} STATIC ${ROOM_SOURCES})
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_link_libraries(${name} PUBLIC tavi_options ${ROOM_USES})
  if(TAVI_PRECOMPILE)
    target_precompile_headers(${name} PRIVATE ${TAVI_PRECOMPILED_HEADERS})
  endif()
endfunction()

# tavi_test_support(NAME SOURCES ... [USES ...]): a library of what several test programs need.
function(tavi_test_support name)
  cmake_parse_arguments(SUPPORT "" "" "SOURCES;USES" ${ARGN})
  add_library(${name} STATIC ${SUPPORT_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/tests PRIVATE ${CMAKE_BINARY_DIR}/generated)
  target_link_libraries(${name} PUBLIC tavi_options ${SUPPORT_USES} GTest::gtest GTest::gmock PRIVATE tavi_test_options)
  if(TAVI_PRECOMPILE)
    target_precompile_headers(${name} REUSE_FROM tavi_test_headers)
  endif()
endfunction()

# tavi_test(NAME SOURCES ... USES ...): a test program; each of its cases is a test of ctest. For Windows the program as a
# whole is one, Windows.NAME, because each start of Wine costs time.
function(tavi_test name)
  cmake_parse_arguments(TEST "" "" "SOURCES;USES" ${ARGN})
  add_executable(${name} ${TEST_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests ${CMAKE_BINARY_DIR}/generated)
  target_link_libraries(${name} PRIVATE tavi_options ${TEST_USES} GTest::gtest GTest::gmock GTest::gtest_main
    tavi_test_options)
  if(TAVI_PRECOMPILE)
    target_precompile_headers(${name} REUSE_FROM tavi_test_headers)
  endif()
  if(WIN32)
    target_sources(${name} PRIVATE $<TARGET_OBJECTS:tavi_test_thread_end>)
    tavi_wine_test(Windows.${name}
      ${Python3_EXECUTABLE} ${CMAKE_SOURCE_DIR}/tests/automation/under_wine.py ${CMAKE_BINARY_DIR} run
        $<TARGET_FILE:${name}>)
  else()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 600)
  endif()
endfunction()
