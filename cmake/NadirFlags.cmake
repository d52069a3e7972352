# nadir_flags: what every translation unit of this project is compiled with.
# nadir_library_flags: what the library itself adds.
include(CheckCXXCompilerFlag)

function(nadir_flag_if_known target flag)
  string(MAKE_C_IDENTIFIER "has${flag}" known)
  check_cxx_compiler_flag("-Werror ${flag}" ${known})
  if(${known})
    target_compile_options(${target} INTERFACE ${flag})
  endif()
endfunction()

add_library(nadir_flags INTERFACE)
target_compile_options(nadir_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wcast-align)
# Clang warns about each loop that it was allowed to turn into vector code and did not.
target_compile_options(nadir_flags INTERFACE $<$<CXX_COMPILER_ID:Clang>:-Wno-pass-failed>)
# Fused multiply-add would give floats other bits on processors that have it.
target_compile_options(nadir_flags INTERFACE -ffp-contract=off)

add_library(nadir_library_flags INTERFACE)
target_link_libraries(nadir_library_flags INTERFACE nadir_flags)
# One thread may be the first to ask for the processor's features while another does; an atomic holds them, so that no
# static needs the guards of the C++ runtime.
target_compile_options(nadir_library_flags INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics -fvisibility-inlines-hidden>
  -fvisibility=hidden -ffunction-sections -fdata-sections -fno-math-errno)
# gcc 12 for 32-bit ARM miscompiles MORPH_CLEAN with it (a lone value keeps its place); our loops gain nothing from it.
nadir_flag_if_known(nadir_library_flags -fno-tree-slp-vectorize)

# nadir_hardening: what makes an error in memory an end and not a door, in the libraries and in the program, which reads
# the files of others.
add_library(nadir_hardening INTERFACE)
nadir_flag_if_known(nadir_hardening -fstack-protector-strong)
nadir_flag_if_known(nadir_hardening -fstack-clash-protection)
nadir_flag_if_known(nadir_hardening -fcf-protection=full)
target_compile_definitions(nadir_hardening INTERFACE $<$<NOT:$<CONFIG:Debug>>:_FORTIFY_SOURCE=2>)
target_link_libraries(nadir_library_flags INTERFACE nadir_hardening)
