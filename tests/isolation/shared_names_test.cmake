# The search for shared names sees each kind of them and nothing else.
include(${CMAKE_CURRENT_LIST_DIR}/shared_names.cmake)

function(expect what wanted level listing)
  find_shared_names(names ${level} "${listing}")
  if(NOT names STREQUAL wanted)
    message(SEND_ERROR "${what}: wanted \"${wanted}\", got \"${names}\"")
  endif()
endfunction()

set(at 0000000000000000)
expect("an object without names" "" avx2 "")
expect("a plain inline function" "_ZN5nadir11isBorderRowEjj" avx2 "${at} W _ZN5nadir11isBorderRowEjj")
expect("an inline variable" "_ZN5nadir5tableE" avx2 "${at} V _ZN5nadir5tableE")
expect("a static of an inline function" "_ZZN5nadir5placeEjE5table" avx2 "${at} u _ZZN5nadir5placeEjE5table")
expect("a standard template" "_ZSt3minIhERKT_S2_S2_" neon "00000010 W _ZSt3minIhERKT_S2_S2_")
expect("a member of the level's template" "" avx2 "${at} W _ZN5nadir7SgmWalkINS_4avx24SimdEE7extendEv")
expect("a template of a type named after the level" "" avx2 "${at} W _ZN5nadir9PointRowsINS_8Avx2RowsEE3addEv")
expect("a member of another level's template" "_ZN5nadir7SgmWalkINS_4avx24SimdEE7extendEv" avx512
       "${at} W _ZN5nadir7SgmWalkINS_4avx24SimdEE7extendEv")
expect("names that are no weak definitions" "" avx2
       "${at} T _ZN5nadir1aEv\n${at} t _ZN5nadir1bEv\n${at} R _ZN5nadir1cE\n         U memset\n         w _ZN5nadir1dEv")
expect("a fault among others" "_ZN5nadir4rootEv" sse41
       "${at} T _ZN5nadir1aEv\n${at} W _ZN5nadir4rootEv\n${at} W _ZN5nadir5sse412U8Ev")
