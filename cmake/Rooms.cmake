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
  # Nobody puts another function in the place of one of ours, so that calls within a file can be expanded there.
  target_compile_options(tavi_options INTERFACE -fno-semantic-interposition)
  # These look at optimized code and are wrong about std::string in GCC 12.
  target_compile_options(tavi_options INTERFACE -Wno-restrict -Wno-stringop-overflow
    -Wno-stringop-overread -Wno-array-bounds)
else()
  # Where an array is listed, inner braces only make it harder to read.
  target_compile_options(tavi_options INTERFACE -Wno-missing-braces)
endif()
if(WIN32)
  target_compile_definitions(tavi_options INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601)
else()
  # Files of more than 2 GB on 32-bit systems too.
  target_compile_definitions(tavi_options INTERFACE _FILE_OFFSET_BITS=64)
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

# With CMAKE_UNITY_BUILD files are compiled several at a time, because most of the time goes into what they have in
# common: so many, and fewer where a CMakeLists.txt says so. No unit should take ten seconds.
set(TAVI_FILES_AT_A_TIME 12)

set(TAVI_PRECOMPILED_HEADERS
  <algorithm> <array> <cstdint> <filesystem> <functional> <map> <memory> <optional> <span> <string> <string_view>
  <unordered_map> <utility> <variant> <vector>)

# tavi_use_room_headers(NAME): precompiled headers serve only who is compiled with the same options.
function(tavi_use_room_headers name)
  if(TARGET tavi_room_headers)
    # The property would mean something else, for a program.
    target_compile_options(${name} PRIVATE -fPIC)
    target_precompile_headers(${name} REUSE_FROM tavi_room_headers)
  endif()
endfunction()

# tavi_room(NAME FOR "what it is for" [AT_A_TIME COUNT] SOURCES ... [USES ...] [INSIDE ...]): a static library of one
# room; USES are the rooms below it, and libraries from elsewhere; rooms INSIDE it are kept from those above. These calls
# are the only list of rooms: scripts/check-arrows checks includes by it, scripts/draw-house draws it. Nobody would notice
# a call upwards in a program, which links the upper room too. So each room is also linked alone with those that
# it uses, and the build fails where one of its calls leads nowhere.
function(tavi_room name)
  cmake_parse_arguments(ROOM "" "FOR;AT_A_TIME" "SOURCES;USES;INSIDE" ${ARGN})
  if(NOT ROOM_AT_A_TIME)
    set(ROOM_AT_A_TIME ${TAVI_FILES_AT_A_TIME})
  endif()
  add_library(${name} STATIC ${ROOM_SOURCES})
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON
    UNITY_BUILD_BATCH_SIZE ${ROOM_AT_A_TIME})
  target_link_libraries(${name} PUBLIC tavi_options ${ROOM_USES} ${ROOM_INSIDE})
  if(TARGET tavi_room_headers)
    target_precompile_headers(${name} REUSE_FROM tavi_room_headers)
  elseif(TAVI_PRECOMPILE)
    target_precompile_headers(${name} PRIVATE ${TAVI_PRECOMPILED_HEADERS})
  endif()
  # The code is the same in the other builds, where unresolved calls are part of the instrumentation.
  if(NOT WIN32 AND NOT TAVI_SANITIZE AND NOT TAVI_SANITIZE_THREADS AND NOT TAVI_FUZZ)
    add_library(${name}_alone MODULE $<TARGET_OBJECTS:${name}>)
    set_target_properties(${name}_alone PROPERTIES LINKER_LANGUAGE CXX)
    target_link_libraries(${name}_alone PRIVATE $<TARGET_PROPERTY:${name},LINK_LIBRARIES>)
    target_link_options(${name}_alone PRIVATE -Wl,--no-undefined -Wl,--strip-all)
  endif()
endfunction()

# tavi_maker(NAME FILES...): a program, of source files and headers, that makes source files when the system is built. It
# runs on the machine that builds, for whatever system the rest is built. ${NAME} says where it is; NAME_program is its
# target.
function(tavi_maker name)
  set(compiler ${CMAKE_CXX_COMPILER})
  if(CMAKE_CROSSCOMPILING)
    find_program(TAVI_NATIVE_COMPILER NAMES c++ g++ clang++ REQUIRED NO_CMAKE_FIND_ROOT_PATH)
    set(compiler ${TAVI_NATIVE_COMPILER})
  endif()
  set(program ${CMAKE_CURRENT_BINARY_DIR}/${name})
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  set(sources ${ARGN})
  list(FILTER sources INCLUDE REGEX "cpp$")
  add_custom_command(OUTPUT ${program}
    COMMAND ${compiler} -std=c++20 -I ${CMAKE_SOURCE_DIR}/src ${sources} -o ${program}
    DEPENDS ${ARGN} VERBATIM)
  add_custom_target(${name}_program DEPENDS ${program})
  set(${name} ${program} CACHE INTERNAL "Where the program is")
endfunction()

# tavi_test_support(NAME SOURCES ... [USES ...]): a library of what several test programs need.
function(tavi_test_support name)
  cmake_parse_arguments(SUPPORT "" "" "SOURCES;USES" ${ARGN})
  add_library(${name} STATIC ${SUPPORT_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/tests PRIVATE ${CMAKE_BINARY_DIR}/generated)
  target_link_libraries(${name} PUBLIC tavi_options ${SUPPORT_USES} GTest::gtest)
  set_target_properties(${name} PROPERTIES UNITY_BUILD_BATCH_SIZE ${TAVI_FILES_AT_A_TIME})
  tavi_use_room_headers(${name})
  if(NOT TARGET tavi_room_headers)
    target_link_libraries(${name} PRIVATE tavi_test_options)
    if(TAVI_PRECOMPILE)
      target_precompile_headers(${name} REUSE_FROM tavi_test_headers)
    endif()
  endif()
endfunction()

# tavi_check(NAME [SECONDS COUNT] [NEEDS PROGRAM...] COMMAND ...): a test of ctest that shows of its output what tells why
# it failed, and that is not run, which is noted, where a program that it needs is missing. ctest begins with the tests
# that take longest, about SECONDS, so that all processors are busy to the end. Where several builds are tested in one
# run, the names of their tests begin with TAVI_TEST_PREFIX.
if(TAVI_SANITIZE)
  set(TAVI_TEST_PREFIX Sanitize.)
elseif(TAVI_SANITIZE_THREADS)
  set(TAVI_TEST_PREFIX Threads.)
endif()
function(tavi_check name)
  if(TAVI_FUZZ)
    # There, ctest runs the fuzzers alone.
    return()
  endif()
  cmake_parse_arguments(CHECK "" "SECONDS" "NEEDS;COMMAND" ${ARGN})
  set(full_name ${TAVI_TEST_PREFIX}${name})
  list(TRANSFORM CHECK_NEEDS REPLACE "(.+)" "--needs;\\1")
  add_test(NAME ${full_name}
    COMMAND ${CMAKE_SOURCE_DIR}/tests/scripts/run-cases ${CHECK_NEEDS} ${full_name} ${CHECK_COMMAND})
  set_tests_properties(${full_name} PROPERTIES TIMEOUT 600)
  if(CHECK_SECONDS)
    set_tests_properties(${full_name} PROPERTIES COST ${CHECK_SECONDS})
  endif()
  if(TAVI_SANITIZE_THREADS)
    set_tests_properties(${full_name} PROPERTIES ENVIRONMENT TAVI_FIXED_ADDRESSES=1)
  endif()
endfunction()

# tavi_test(NAME [AT_A_TIME COUNT] [SECONDS COUNT] SOURCES ... USES ... [PARTS ...]): a test program, which ctest runs as
# a whole, because starting a process for each of its cases takes longer than most cases. So many of its files are
# compiled AT_A_TIME. PARTS are patterns of cases that take long: each is a test of its own, NAME.1 and so on, which runs
# beside the others. For Windows the program is always one test, Windows.NAME.
function(tavi_test name)
  cmake_parse_arguments(TEST "" "AT_A_TIME;SECONDS" "SOURCES;USES;PARTS" ${ARGN})
  if(NOT TEST_SECONDS)
    set(TEST_SECONDS 1)
  endif()
  if(NOT TEST_AT_A_TIME)
    set(TEST_AT_A_TIME ${TAVI_FILES_AT_A_TIME})
  endif()
  add_executable(${name} ${TEST_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests ${CMAKE_BINARY_DIR}/generated)
  target_link_libraries(${name} PRIVATE tavi_options test_matchers ${TEST_USES} GTest::gtest GTest::gtest_main
    tavi_test_options)
  set_target_properties(${name} PROPERTIES UNITY_BUILD_BATCH_SIZE ${TEST_AT_A_TIME})
  set_property(GLOBAL APPEND PROPERTY TAVI_TEST_PROGRAMS $<TARGET_FILE:${name}>)
  if(TAVI_PRECOMPILE)
    target_precompile_headers(${name} REUSE_FROM tavi_test_headers)
  endif()
  if(NOT WIN32)
    # What a room and the tests both made of one template is taken from whoever is linked first: the room, which is
    # optimized. In this one is what all need of the standard library's texts.
    target_link_options(${name} BEFORE PRIVATE
      -Wl,--whole-archive $<TARGET_FILE:tavi_platform> -Wl,--no-whole-archive)
  endif()
  if(WIN32)
    target_sources(${name} PRIVATE $<TARGET_OBJECTS:tavi_test_thread_end>)
    tavi_wine_test(Windows.${name}
      ${Python3_EXECUTABLE} ${CMAKE_SOURCE_DIR}/tests/automation/under_wine.py ${CMAKE_BINARY_DIR} run
        $<TARGET_FILE:${name}>)
    return()
  endif()
  set(number 0)
  foreach(part ${TEST_PARTS})
    math(EXPR number "${number} + 1")
    tavi_check(${name}.${number} SECONDS 10 COMMAND $<TARGET_FILE:${name}> --gtest_filter=${part})
  endforeach()
  if(TEST_PARTS)
    string(REPLACE ";" ":" all_parts "${TEST_PARTS}")
    tavi_check(${name} SECONDS 5 COMMAND $<TARGET_FILE:${name}> --gtest_filter=-${all_parts})
  else()
    tavi_check(${name} SECONDS ${TEST_SECONDS} COMMAND $<TARGET_FILE:${name}>)
  endif()
endfunction()
