// The median of 16-bit values, and the order in which it leaves them.
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

}  // namespace
}  // namespace nadir::test
