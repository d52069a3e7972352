# The shared library exports the names of exports.txt and nothing else, and signatures.c has the type of each.
include(${CMAKE_CURRENT_LIST_DIR}/symbols.cmake)

dynamic_symbols(exported --defined-only)
list(REMOVE_ITEM exported NADIR_0)  # the version node itself
file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/exports.txt promised)
file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/signatures.c typed REGEX "\\(\\*is_[A-Za-z0-9_]+\\)")
list(TRANSFORM typed REPLACE ".*\\(\\*is_([A-Za-z0-9_]+)\\).*" "\\1")

# Two branches that each add a name then meet in one place of the file only where they must.
set(sorted "${promised}")
list(SORT sorted COMPARE STRING)
if(NOT promised STREQUAL sorted)
  message(SEND_ERROR "exports.txt is not in the order that LC_ALL=C sort gives")
endif()

expect_none("exported but not in exports.txt" "${exported}" "${promised}")
expect_none("in exports.txt but not exported" "${promised}" "${exported}")
expect_none("in exports.txt but not in signatures.c" "${promised}" "${typed}")
