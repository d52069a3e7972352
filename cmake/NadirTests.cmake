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
    target_compile_definitions(${target} PRIVATE NADIR_SANITIZED)
  endif()
endfunction()
nadir_optimise_lightly(nadir_test_headers)

# Registers a GoogleTest program: test by test; or, where the start of a process costs more than most tests, as a whole
# (on an emulator) or in two halves (under sanitizers, where one core would wait for the tool's tests).
function(nadir_add_gtest target)
  nadir_optimise_lightly(${target})
  target_precompile_headers(${target} REUSE_FROM nadir_test_headers)
  if(NADIR_ON_DEMAND)
    return()
  endif()
  if(CMAKE_CROSSCOMPILING_EMULATOR)
    add_test(NAME ${target} COMMAND ${target})
  elseif(CMAKE_CXX_FLAGS MATCHES "-fsanitize")
    foreach(half IN ITEMS 0 1)
      add_test(NAME ${target}.${half} COMMAND ${target})
      set_tests_properties(${target}.${half} PROPERTIES ENVIRONMENT "GTEST_TOTAL_SHARDS=2;GTEST_SHARD_INDEX=${half}")
    endforeach()
  else()
    gtest_discover_tests(${target} NO_PRETTY_VALUES DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120)
  endif()
endfunction()
