# A shared library imports nothing but the names in ALLOWED, files of this folder, and needs the C library alone; given
# ABOVE, another library may be needed.
include(${CMAKE_CURRENT_LIST_DIR}/symbols.cmake)

set(allowed "")
foreach(list IN LISTS ALLOWED)
  file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/${list} names REGEX "^[^#]")
  list(APPEND allowed ${names})
endforeach()
dynamic_symbols(imported --undefined-only)
expect_none("imported but not allowed" "${imported}" "${allowed}")

run(dynamic ${READELF} -d -W ${LIBRARY})
string(REGEX REPLACE "[][]" "|" dynamic "${dynamic}")  # an open bracket would make one element of a whole list
string(REGEX MATCHALL "\\(NEEDED\\)[^|\n]*\\|[^|\n]*" needed "${dynamic}")
list(TRANSFORM needed REPLACE ".*\\|" "")
if(ABOVE)
  list(REMOVE_ITEM needed ${ABOVE})
endif()
list(FILTER needed EXCLUDE REGEX "^(libc|libm|ld-linux[a-z0-9_-]*|ld64)\\.so\\.[0-9]+$")
expect_none("libraries beyond libc and libm" "${needed}" "")
