// The median and the sort of 16-bit values.
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

// ---- median ----

struct Selection {
  uint32_t status;
  uint16_t median;
  Values values;
};

Selection select(const Values& values, Guard side = Guard::behind) {
  const Guarded<uint16_t> buffer(values, side);
  Selection s = {0, 0xABCD, {}};
  s.status = IP_Utl_Median_u16(buffer.data(), static_cast<uint32_t>(values.size()), &s.median);
  s.values = buffer.values();
  return s;
}

void orderPair(uint16_t& low, uint16_t& high) {
  if (low > high) std::swap(low, high);
}

// The selection with wide indices. The order in which it leaves the values is part of what callers see.
uint16_t expectedSelection(Values& a) {
  const size_t count = a.size(), k = (count - 1) / 2;
  if (count == 1) return a[0];
  if (count == 2) {
    orderPair(a[0], a[1]);
    return a[0];
  }
  size_t l = 0, r = count - 1;
  for (;;) {
    const size_t m = (l + r) / 2;
    orderPair(a[m], a[r]);
    orderPair(a[l], a[r]);
    orderPair(a[m], a[l]);
    const uint16_t pivot = a[l];
    std::swap(a[m], a[l + 1]);
    size_t i = l + 1, j = r;
    for (;;) {
      do i++;
      while (a[i] < pivot);
      do j--;
      while (a[j] > pivot);
      if (i > j) break;
      std::swap(a[i], a[j]);
    }
    a[l] = a[j];
    a[j] = pivot;
    if (j <= k) l = i;
    if (j >= k) r = j - 1;
    if (r <= l) return a[k];
    if (r == l + 1) {
      orderPair(a[l], a[r]);
      return a[k];
    }
  }
}

TEST(Median, OfOneValueIsThatValue) {
  const Selection s = select({5});
  EXPECT_EQ(s.status, 1u);
  EXPECT_EQ(s.median, 5);
}

TEST(Median, OfTwoValuesIsTheSmallerAndSortsThem) {
  const Selection s = select({7, 3});
  EXPECT_EQ(s.status, 1u);
  EXPECT_EQ(s.median, 3);
  EXPECT_EQ(s.values, (Values{3, 7}));
}

TEST(Median, OfTwoSortedValuesLeavesThem) { EXPECT_EQ(select({3, 7}).values, (Values{3, 7})); }

TEST(Median, OfFourValuesIsTheLowerMiddle) { EXPECT_EQ(select({4, 1, 3, 2}).median, 2); }

TEST(Median, OfThreeEqualValuesIsThatValue) { EXPECT_EQ(select({9, 9, 9}).median, 9); }

TEST(Median, ComparesWithoutASign) { EXPECT_EQ(select({0xFFFF, 1, 0x8000}).median, 0x8000); }

TEST(Median, RefusesNullPointersAndNoValues) {
  uint16_t values[3] = {3, 2, 1}, median = 77;
  EXPECT_EQ(IP_Utl_Median_u16(nullptr, 3, &median), 0u);
  EXPECT_EQ(IP_Utl_Median_u16(values, 3, nullptr), 0u);
  EXPECT_EQ(IP_Utl_Median_u16(values, 0, &median), 0u);
  EXPECT_EQ(median, 77);
  EXPECT_EQ((Values{3, 2, 1}), Values(values, values + 3));
}

TEST(Median, RefusesMoreValuesThanItCanIndex) {
  Values values(65537, 3);
  values[0] = 9;
  const Values before = values;
  uint16_t median = 77;
  EXPECT_EQ(IP_Utl_Median_u16(values.data(), 65537, &median), 0u);
  EXPECT_EQ(median, 77);
  EXPECT_TRUE(before == values);
}

TEST(Median, MayBeWrittenIntoTheValues) {
  Values values = {4, 1, 3, 2, 5}, wanted = values;
  wanted[4] = expectedSelection(wanted);
  EXPECT_EQ(IP_Utl_Median_u16(values.data(), 5, &values[4]), 1u);
  EXPECT_EQ(values, wanted);
}

TEST(Median, OfEveryOrderOfSixValuesFollowsTheSelection) {
  Values order = {1, 2, 3, 4, 5, 6};
  do {
    Values wanted = order;
    const uint16_t median = expectedSelection(wanted);
    ASSERT_EQ(median, 3);
    Values values = order;
    uint16_t got = 0;
    IP_Utl_Median_u16(values.data(), 6, &got);
    ASSERT_EQ(got, median);
    ASSERT_EQ(values, wanted);
  } while (std::next_permutation(order.begin(), order.end()));
}

TEST(Median, OfAnyValuesFollowsTheSelection) {
  lab::Random random(60);
  for (uint32_t round = 0; round < 600; round++) {
    const size_t count = round < 60 ? round + 1 : 1 + random.below(300);
    const uint32_t distinct = round % 3 == 0 ? 65536 : round % 3 == 1 ? 3 : 20;
    const Values values = random.values<uint16_t>(count, distinct);
    Values wanted = values, sorted = values;
    const uint16_t median = expectedSelection(wanted);
    std::sort(sorted.begin(), sorted.end());
    const Selection s = select(values, round % 2 ? Guard::before : Guard::behind);
    ASSERT_EQ(s.status, 1u);
    ASSERT_EQ(s.median, sorted[(count - 1) / 2]) << "of " << count;
    ASSERT_EQ(s.median, median);
    ASSERT_EQ(s.values, wanted) << "of " << count;
  }
}

TEST(Median, OfSortedAndReversedValuesFollowsTheSelection) {
  for (size_t count : {3u, 4u, 5u, 100u, 101u}) {
    Values values(count);
    std::iota(values.begin(), values.end(), uint16_t{10});
    for (int direction = 0; direction < 2; direction++) {
      Values wanted = values;
      expectedSelection(wanted);
      EXPECT_EQ(select(values).values, wanted) << count;
      std::reverse(values.begin(), values.end());
    }
  }
}

TEST(Median, Of65535EqualValuesIsThatValue) {
  const Selection s = select(Values(65535, 1234));
  EXPECT_EQ(s.status, 1u);
  EXPECT_EQ(s.median, 1234);
}

TEST(Median, OfTheLargestCountFollowsTheSelection) {
  lab::Random random(61);
  const Values values = random.values<uint16_t>(65536, 65536);
  Values wanted = values;
  const uint16_t median = expectedSelection(wanted);
  const Selection s = select(values);
  EXPECT_EQ(s.median, median);
  EXPECT_TRUE(wanted == s.values);
}

// ---- sorting indices ----

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
