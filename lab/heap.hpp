// The heap as the library sees it: counts its blocks and bytes, and fails the allocations it is told to.
#pragma once

#include <cstddef>

namespace nadir::lab::heap {

enum class Failing { never, once, fromThenOn };

// Starts counting anew; the n-th allocation (1 is the first) is the one to fail.
void watch(Failing failing = Failing::never, size_t n = 0);

size_t allocations();    // asked for since watch(), failed ones included
size_t bytes();          // asked for since watch()
size_t bytes(size_t n);  // asked for by the n-th since watch(), for the first 8
size_t failures();       // since watch()
size_t liveBlocks();     // not given back yet, whenever they were allocated

}  // namespace nadir::lab::heap
