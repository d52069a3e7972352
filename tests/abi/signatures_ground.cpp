// The same checks as in C, by a C++ compiler.
#include "tests/abi/signatures_ground.c"
