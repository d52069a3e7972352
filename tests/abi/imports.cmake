# The shared library needs the C library, and nothing of the C++ runtime.
include(${CMAKE_CURRENT_LIST_DIR}/symbols.cmake)

dynamic_symbols(imported --undefined-only)
list(FILTER imported INCLUDE REGEX "^(_Z|__cxa_|__gxx_|_Unwind)")
expect_none("names of the C++ runtime" "${imported}" "__cxa_finalize")

run(dynamic ${READELF} -d -W ${LIBRARY})
string(REGEX MATCHALL "\\(NEEDED\\)[^\n]*\\[[^]\n]*" needed "${dynamic}")
list(TRANSFORM needed REPLACE ".*\\[" "")
list(FILTER needed EXCLUDE REGEX "^(libc|libm|ld-linux[a-z0-9_-]*|ld64)\\.so\\.[0-9]+$")
expect_none("libraries beyond libc and libm" "${needed}" "")
