# Which vector kernels this target can have. A source's suffix says what it is compiled for: x_neon.cpp, x_sse41.cpp,
# x_avx2.cpp, x_avx512.cpp; everything else is for the plain processor.
include(CheckCXXSourceCompiles)

set(NADIR_SIMD_LEVELS "")
check_cxx_source_compiles("#include <arm_neon.h>\nint main() { return vgetq_lane_u8(vdupq_n_u8(0), 0); }" NADIR_HAS_NEON)
check_cxx_source_compiles("#ifndef __SSE2__\n#error\n#endif\nint main() { return 0; }" NADIR_HAS_SSE2)
if(NOT NADIR_SIMD)
  message(STATUS "No vector kernels")
elseif(NADIR_HAS_NEON)
  set(NADIR_SIMD_LEVELS neon)
elseif(NADIR_HAS_SSE2)
  set(NADIR_SIMD_LEVELS sse41 avx2)
  # gcc 12 for 32-bit x86 widens AVX-512 masks with what it finds on the stack; hardly a program for it meets AVX-512.
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    list(APPEND NADIR_SIMD_LEVELS avx512)
  endif()
elseif(NADIR_REQUIRE_SIMD)
  message(FATAL_ERROR "NADIR_REQUIRE_SIMD: this compiler and its flags have no vector instructions that nadir knows; "
                      "for 32-bit ARM give it -march=armv7-a -mfpu=neon")
endif()

set(NADIR_FLAGS_neon "")
# Of the orders of instructions that gcc 12 knows, this keeps most in registers; the small cores gain too. See docs/speed.md.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
  set(NADIR_FLAGS_neon -mtune=cortex-a72)
endif()
set(NADIR_FLAGS_sse41 -msse4.1)
set(NADIR_FLAGS_avx2 -mavx2)
# gcc 12 warns of the undefined operands inside its own AVX-512 intrinsics.
set(NADIR_FLAGS_avx512 -mavx512f -mavx512bw -mavx512dq -mavx512vl -mavx512bitalg -mprefer-vector-width=512
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)

# Gives each source of the list its level's flags, and takes those of levels that this target lacks out of the list. To
# be called where the target is made: flags of a source hold for one folder.
function(nadir_sources_of_levels list)
  set(sources ${${list}})
  foreach(level IN ITEMS neon sse41 avx2 avx512)
    set(of_level ${sources})
    list(FILTER of_level INCLUDE REGEX "_${level}\\.cpp$")
    if(NOT level IN_LIST NADIR_SIMD_LEVELS)
      list(FILTER sources EXCLUDE REGEX "_${level}\\.cpp$")
    elseif(of_level)
      set_source_files_properties(${of_level} PROPERTIES COMPILE_OPTIONS "${NADIR_FLAGS_${level}}")
    endif()
  endforeach()
  set(${list} ${sources} PARENT_SCOPE)
endfunction()

# Tells the target's sources which levels there are.
function(nadir_define_levels target scope)
  foreach(level IN LISTS NADIR_SIMD_LEVELS)
    string(TOUPPER ${level} upper)
    target_compile_definitions(${target} ${scope} NADIR_WITH_${upper})
  endforeach()
endfunction()
