# The shared library's name, and the protections that it (or a program) is linked with: all relocations are done at load
# time and their table is read-only from then on; the stack is not executable; no segment is both writable and
# executable. Given GUARDED, the code watches over its stack and over the buffers that it hands to the C library.
include(${CMAKE_CURRENT_LIST_DIR}/symbols.cmake)

function(expect text pattern what)
  if(NOT text MATCHES "${pattern}")
    message(SEND_ERROR "${LIBRARY}: ${what}")
  endif()
endfunction()

run(dynamic ${READELF} -d -W ${LIBRARY})
if(SONAME)
  expect("${dynamic}" "\\(SONAME\\)[^\n]*\\[${SONAME}\\]" "its SONAME is not ${SONAME}")
endif()
expect("${dynamic}" "BIND_NOW|Flags:[^\n]* NOW" "not bound at load time")

run(segments ${READELF} -l -W ${LIBRARY})
expect("${segments}" "GNU_RELRO" "no read-only relocations")
expect("${segments}" "GNU_STACK[^\n]* RW  *0x" "the stack is executable, or nothing says that it is not")
if("${segments}" MATCHES "\n *LOAD[^\n]* RWE ")
  message(SEND_ERROR "${LIBRARY}: a segment is both writable and executable")
endif()

if(GUARDED)
  dynamic_symbols(imported --undefined-only)
  expect("${imported}" "__stack_chk_fail" "no stack protector")
  expect("${imported}" "__[a-z]+_chk(;|$)" "no _FORTIFY_SOURCE")
  run(file ${READELF} -h -W ${LIBRARY})
  expect("${file}" "Type: *DYN" "it has one place in memory")
endif()
