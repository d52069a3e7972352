// The same check on many inputs, up to the first that fails.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "lab/random.hpp"
#include "tests/support/sanitized.hpp"

namespace nadir::test {

// Sanitizers and emulators take twenty times as long and are there for memory and for the processor, not for one more
// shape: they take every so many of the inputs.
#ifdef __x86_64__
inline const uint64_t everyRound = isSanitized ? 11 : 1;
#else
inline constexpr uint64_t everyRound = 11;
#endif

// check(code) for all codes below `end`.
template <class Check>
void forEachCode(uint32_t end, Check check) {
  for (uint64_t code = 0; code < end && !::testing::Test::HasFailure(); code += everyRound) {
    check(static_cast<uint32_t>(code));
  }
}

// check(random) for random numbers of the seeds from 1.
template <class Check>
void inRounds(uint64_t rounds, Check check) {
  for (uint64_t seed = 1; seed <= rounds; seed += everyRound) {
    lab::Random random(seed);
    check(random);
    if (!::testing::Test::HasFailure()) continue;
    ADD_FAILURE() << "at seed " << seed;
    return;
  }
}

}  // namespace nadir::test
