// The stable sort of indices by 16-bit keys.
#include <gtest/gtest.h>
#include <nadir/numeric.h>

#include <algorithm>
#include <numeric>
#include <vector>

#include "lab/random.hpp"
#include "tests/support/guarded.hpp"

namespace nadir::test {
namespace {

using Values = std::vector<uint16_t>;

constexpr uint16_t untouched = 0xA5A5;

struct Order {
  uint32_t status;
  Values indices;
};

Order sortIndices(const Values& keys, uint32_t mode) {
  const Guarded<uint16_t> guardedKeys(keys), indices(Values(keys.size(), untouched));
  const uint32_t status =
      IP_Utl_RadixIdxSort(guardedKeys.data(), indices.data(), static_cast<uint32_t>(keys.size()), mode);
  EXPECT_EQ(guardedKeys.values(), keys);
  return {status, indices.values()};
}

Values stableOrder(const Values& keys, uint32_t mode) {
  Values indices(keys.size());
  std::iota(indices.begin(), indices.end(), uint16_t{0});
  auto value = [&](uint16_t i) { return mode == 1 ? static_cast<int16_t>(keys[i]) : int32_t{keys[i]}; };
  std::stable_sort(indices.begin(), indices.end(), [&](uint16_t i, uint16_t j) { return value(i) < value(j); });
  return indices;
}

TEST(RadixSort, KeepsEqualKeysInTheirOrder) {
  const Order o = sortIndices({300, 5, 300, 0}, 0);
  EXPECT_EQ(o.status, 1u);
  EXPECT_EQ(o.indices, (Values{3, 1, 0, 2}));
}

TEST(RadixSort, OfSignedKeysPutsNegativeOnesFirst) {
  EXPECT_EQ(sortIndices({0xFFFF, 1, 0x8000, 0}, 1).indices, (Values{2, 0, 3, 1}));
}

TEST(RadixSort, OfUnsignedKeysPutsTheSamePatternsLast) {
  EXPECT_EQ(sortIndices({0xFFFF, 1, 0x8000, 0}, 0).indices, (Values{3, 1, 2, 0}));
}

TEST(RadixSort, OfNegativeKeysTakesTheLowByteWithoutASign) {
  EXPECT_EQ(sortIndices({0x80FF, 0x8001, 0x0180, 0x017F}, 1).indices, (Values{1, 0, 3, 2}));
}

TEST(RadixSort, RefusesAnotherMode) {
  for (uint32_t mode : {2u, 0x80000000u, 0xFFFFFFFFu}) {
    const Order o = sortIndices({300, 5, 300, 0}, mode);
    EXPECT_EQ(o.status, 0u) << mode;
    EXPECT_EQ(o.indices, Values(4, untouched)) << mode;
  }
}

TEST(RadixSort, RefusesNullPointers) {
  Values keys = {3, 2, 1}, indices(3, untouched);
  EXPECT_EQ(IP_Utl_RadixIdxSort(nullptr, indices.data(), 3, 0), 0u);
  EXPECT_EQ(IP_Utl_RadixIdxSort(keys.data(), nullptr, 3, 0), 0u);
  EXPECT_EQ(IP_Utl_RadixIdxSort(nullptr, indices.data(), 0, 0), 0u);
  EXPECT_EQ(indices, Values(3, untouched));
}

TEST(RadixSort, RefusesMoreKeysThanItCanIndex) {
  const Order o = sortIndices(Values(65537, 3), 0);
  EXPECT_EQ(o.status, 0u);
  EXPECT_TRUE(Values(65537, untouched) == o.indices);
}

TEST(RadixSort, OfNoKeysSucceedsAndWritesNothing) {
  uint16_t key = 1, index = untouched;
  EXPECT_EQ(IP_Utl_RadixIdxSort(&key, &index, 0, 0), 1u);
  EXPECT_EQ(IP_Utl_RadixIdxSort(&key, &index, 0, 1), 1u);
  EXPECT_EQ(untouched, index);
}

TEST(RadixSort, OfOneKeyIsIndexZero) { EXPECT_EQ(sortIndices({999}, 1).indices, (Values{0})); }

TEST(RadixSort, OfAnyKeysIsAStableSort) {
  lab::Random random(62);
  for (uint32_t round = 0; round < 200; round++) {
    const uint32_t mode = round % 2, distinct = round % 3 ? 65536 : 5;
    Values keys = random.values<uint16_t>(random.below(400), distinct);
    if (round % 5 == 0) {
      for (uint16_t& key : keys) key = static_cast<uint16_t>(key << 8 | key >> 8);
    }
    ASSERT_EQ(sortIndices(keys, mode).indices, stableOrder(keys, mode));
  }
}

TEST(RadixSort, OfTheLargestCountIsAStableSort) {
  lab::Random random(63);
  const Values keys = random.values<uint16_t>(65536, 65536);
  for (uint32_t mode : {0u, 1u}) EXPECT_TRUE(stableOrder(keys, mode) == sortIndices(keys, mode).indices) << mode;
}

TEST(RadixSort, OfTheLargestCountOfEqualKeysKeepsTheirOrder) {
  Values wanted(65536);
  std::iota(wanted.begin(), wanted.end(), uint16_t{0});
  EXPECT_TRUE(wanted == sortIndices(Values(65536, 7), 0).indices);
}

}  // namespace
}  // namespace nadir::test
