# The shared library exports the names of PROMISED (a file of this folder) and nothing else, and the source TYPED has the
# type of each. Given NODE too, the library's version node.
include(${CMAKE_CURRENT_LIST_DIR}/symbols.cmake)

dynamic_symbols(exported --defined-only)
list(REMOVE_ITEM exported ${NODE})  # the version node itself
file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/${PROMISED} promised)
file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/${TYPED} typed REGEX "\\(\\*is_[A-Za-z0-9_]+\\)")
list(TRANSFORM typed REPLACE ".*\\(\\*is_([A-Za-z0-9_]+)\\).*" "\\1")

# Two branches that each add a name then meet in one place of the file only where they must.
set(sorted "${promised}")
list(SORT sorted COMPARE STRING)
if(NOT promised STREQUAL sorted)
  message(SEND_ERROR "${PROMISED} is not in the order that LC_ALL=C sort gives")
endif()

expect_none("exported but not in ${PROMISED}" "${exported}" "${promised}")
expect_none("in ${PROMISED} but not exported" "${promised}" "${exported}")
expect_none("in ${PROMISED} but not in ${TYPED}" "${promised}" "${typed}")
