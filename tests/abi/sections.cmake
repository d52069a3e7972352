# The shared library's name, and the protections it is linked with: all relocations are done at load time and their
# table is read-only from then on; the stack is not executable; no segment is both writable and executable.
include(${CMAKE_CURRENT_LIST_DIR}/symbols.cmake)

function(expect text pattern what)
  if(NOT text MATCHES "${pattern}")
    message(SEND_ERROR "${LIBRARY}: ${what}")
  endif()
endfunction()

run(dynamic ${READELF} -d -W ${LIBRARY})
expect("${dynamic}" "\\(SONAME\\)[^\n]*\\[${SONAME}\\]" "its SONAME is not ${SONAME}")
expect("${dynamic}" "BIND_NOW|Flags:[^\n]* NOW" "not bound at load time")

run(segments ${READELF} -l -W ${LIBRARY})
expect("${segments}" "GNU_RELRO" "no read-only relocations")
expect("${segments}" "GNU_STACK[^\n]* RW  *0x" "the stack is executable, or nothing says that it is not")
if("${segments}" MATCHES "\n *LOAD[^\n]* RWE ")
  message(SEND_ERROR "${LIBRARY}: a segment is both writable and executable")
endif()
