#include "signatures.c"
