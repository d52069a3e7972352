#include "records.c"
