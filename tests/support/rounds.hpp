// The same check on many random inputs, up to the first that fails.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "tests/support/random.hpp"

namespace nadir::test {

template <class Check>
void inRounds(uint64_t rounds, Check check) {
  for (uint64_t seed = 1; seed <= rounds; ++seed) {
    Random random(seed);
    check(random);
    if (!::testing::Test::HasFailure()) continue;
    ADD_FAILURE() << "at seed " << seed;
    return;
  }
}

}  // namespace nadir::test
