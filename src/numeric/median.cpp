// This finds the median by partitioning, without sorting.
#include <nadir/numeric.h>

#include <utility>

namespace nadir {
namespace {

constexpr uint32_t mostValues = 65536;

void sortPair(uint16_t& lower, uint16_t& upper) {
  if (lower > upper) std::swap(lower, upper);
}

// Where a partition left off: nothing before `upper` is larger than the pivot, which lies at `pivot`, and nothing from
// `upper` on is smaller. Between the two lies at most one element, and that equals the pivot.
struct Split {
  uint32_t pivot, upper;
};

// Partitions a[l..r], three elements or more.
//
// The pivot is the median of the first, middle and last element. The smallest of the three goes to l + 1 and the
// largest to r, where they stop the two scans: neither needs a test for the end of the range.
Split partition(uint16_t* a, uint32_t l, uint32_t r) {
  const uint32_t middle = (l + r) / 2;
  sortPair(a[middle], a[r]);
  sortPair(a[l], a[r]);
  sortPair(a[middle], a[l]);
  std::swap(a[middle], a[l + 1]);
  const uint16_t pivot = a[l];
  uint32_t i = l + 1, j = r;
  for (;;) {
    do ++i;
    while (a[i] < pivot);
    do --j;
    while (a[j] > pivot);
    if (i > j) break;
    std::swap(a[i], a[j]);
  }
  a[l] = a[j];
  a[j] = pivot;
  return {j, i};
}

// Reorders a[0..count) until the element of rank k stands at index k.
void select(uint16_t* a, uint32_t count, uint32_t k) {
  uint32_t l = 0, r = count - 1;
  while (r > l + 1) {
    const Split split = partition(a, l, r);
    if (split.pivot <= k) l = split.upper;
    if (split.pivot >= k) r = split.pivot - 1;
  }
  if (r == l + 1) sortPair(a[l], a[r]);
}

}  // namespace
}  // namespace nadir

uint32_t IP_Utl_Median_u16(uint16_t* values, uint32_t count, uint16_t* median) {
  if (!values || !median || count == 0 || count > nadir::mostValues) return 0;
  const uint32_t k = (count - 1) / 2;
  nadir::select(values, count, k);
  *median = values[k];
  return 1;
}
