// Whether AddressSanitizer watches this run: it was linked to the program, or loaded before it.
#pragma once

#include <dlfcn.h>

namespace nadir::test {

inline const bool isSanitized = dlsym(RTLD_DEFAULT, "__asan_init") != nullptr;

}  // namespace nadir::test
