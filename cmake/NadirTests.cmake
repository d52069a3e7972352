# How tests are found, built and registered.
# A cross compiler must not take the GoogleTest that was built for this machine.
if(NOT CMAKE_CROSSCOMPILING)
  find_package(GTest QUIET)
endif()
if(NOT TARGET GTest::gtest_main)
  set(INSTALL_GTEST OFF)
  set(BUILD_GMOCK OFF)
  add_subdirectory(/usr/src/googletest googletest EXCLUDE_FROM_ALL)  # Debian: googletest
endif()
include(GoogleTest)

# What most test programs include, parsed once for all of them. ccache does not know such headers, and saves more.
if(CMAKE_CXX_COMPILER_LAUNCHER MATCHES "ccache")
  set(CMAKE_DISABLE_PRECOMPILE_HEADERS ON)
endif()
add_library(nadir_test_headers OBJECT EXCLUDE_FROM_ALL ${PROJECT_SOURCE_DIR}/tests/support/headers.cpp)
target_link_libraries(nadir_test_headers PRIVATE nadir_flags GTest::gtest)
target_precompile_headers(nadir_test_headers PRIVATE
  <gtest/gtest.h> <algorithm> <array> <cmath> <cstdint> <cstring> <limits> <map> <string> <utility> <vector>)

# Its own code is optimised lightly, and AddressSanitizer watches what is tested, not the test: its heap is watched all the
# same, and compiling takes longer than testing.
function(nadir_optimise_lightly target)
  target_compile_options(${target} PRIVATE $<$<NOT:$<CONFIG:Debug>>:-O1>)
  if(CMAKE_CXX_FLAGS MATCHES "-fsanitize=address")
    target_compile_options(${target} PRIVATE -fno-sanitize=all)
  endif()
endfunction()
nadir_optimise_lightly(nadir_test_headers)

# AddressSanitizer watches the libraries and the program, not the tests. Where another build of the same sources has
# their programs, those that reach what they test from outside run with what this build made: compiling them anew takes
# longer than testing.
set(NADIR_TEST_PROGRAMS "" CACHE PATH "A build without sanitizers, whose test programs run on what this build made")

# To the compiler the sources of such a test program are headers, in which fixtures without linkage are suspicious, and
# names of one hide those of another. An interface's options come behind those of nadir_flags.
add_library(nadir_whole_rooms INTERFACE)
target_compile_options(nadir_whole_rooms INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage> -Wno-shadow)

# nadir_compile_whole(TARGET SOURCE...): those of a folder are compiled as one, a dozen at most, where NADIR_WHOLE_ROOMS
# asks for it: GoogleTest's templates are compiled once for all of them.
function(nadir_compile_whole target)
  if(NOT NADIR_WHOLE_ROOMS)
    return()
  endif()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  target_link_libraries(${target} PRIVATE nadir_whole_rooms)
  set(number 0)
  foreach(source IN LISTS ARGN)
    get_filename_component(folder ${source} DIRECTORY)
    get_filename_component(room ${folder} NAME)
    math(EXPR dozen "${number} / 12")
    math(EXPR number "${number} + 1")
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${room}_${dozen})
  endforeach()
endfunction()

# The environment in which another build's program, or Python, tests what this one made: the shared libraries, with the
# sanitizer's own before them all, or the program.
function(nadir_borrowing_environment kind variable)
  if(kind STREQUAL "ON_LIBRARIES")
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libasan.so
      OUTPUT_VARIABLE sanitizer OUTPUT_STRIP_TRAILING_WHITESPACE)
    set(environment "LD_PRELOAD=${sanitizer}"
      "LD_LIBRARY_PATH=$<TARGET_FILE_DIR:nadir>:$<TARGET_FILE_DIR:nadirground>")
  else()
    set(environment "NADIR_TOOL=$<TARGET_FILE:nadir-tool>")
  endif()
  set(${variable} ${environment} PARENT_SCOPE)
endfunction()

# Registers a GoogleTest program: test by test; or, where the start of a process costs more than most tests, as a whole
# (on an emulator) or in parts (under sanitizers, where one core would wait for the tool's tests).
#
# nadir_add_gtest(TARGET [ON_LIBRARIES|ON_PROGRAM]): what it tests, where it does so from outside. Tests that NADIR_UNSANITIZED
# names repeat the work of others to judge figures and moments, which sanitizers do not change. All parts must leave out
# the same ones: parts are counted among the tests that are left.
function(nadir_add_gtest target)
  nadir_optimise_lightly(${target})
  target_precompile_headers(${target} REUSE_FROM nadir_test_headers)
  if(NADIR_ON_DEMAND)
    return()
  endif()
  set(program ${target})
  set(environment)
  if(ARGN AND NADIR_TEST_PROGRAMS)
    set_target_properties(${target} PROPERTIES EXCLUDE_FROM_ALL ON)
    file(RELATIVE_PATH folder ${PROJECT_BINARY_DIR} ${CMAKE_CURRENT_BINARY_DIR})
    set(program ${NADIR_TEST_PROGRAMS}/${folder}/${target})
    nadir_borrowing_environment(${ARGN} environment)
  endif()
  if(CMAKE_CROSSCOMPILING_EMULATOR)
    add_test(NAME ${target} COMMAND ${target})
  elseif(CMAKE_CXX_FLAGS MATCHES "-fsanitize")
    list(JOIN NADIR_UNSANITIZED ":" unsanitized)
    foreach(part RANGE 11)
      add_test(NAME ${target}.${part} COMMAND ${program})
      set_tests_properties(${target}.${part} PROPERTIES
        ENVIRONMENT "GTEST_TOTAL_SHARDS=12;GTEST_SHARD_INDEX=${part};GTEST_FILTER=-${unsanitized};${environment}")
    endforeach()
  else()
    gtest_discover_tests(${target} NO_PRETTY_VALUES DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120)
  endif()
endfunction()
