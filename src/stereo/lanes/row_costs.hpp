// The costs of a row, a stretch of 64 pixels after the other.
#pragma once

#include <type_traits>

#include "stereo/lanes/code_window.hpp"
#include "stereo/pixel_rules.hpp"

namespace nadir {

template <class Simd>
class RowCosts {
 public:
  using Rules = PixelRules<Simd>;
  static constexpr size_t blocks = PerDisparity<Simd>::blocks;

  RowCosts(const uint32_t* first, const uint32_t* reference, size_t width)
      : first_(first), reference_(reference), end_(width - 2) {
    append(0);
  }

  // Writes the costs of n pixels from column x, where the next stretch begins; n is less than a stretch only at the
  // end.
  void store(size_t x, size_t n, uint8_t* costs) {
    const bool wereOrdinary = ordinary_;
    append(x + stretch);
    if (wereOrdinary && ordinary_ && load(reference_, x).areOrdinary()) {
      storeOrdinary(reference_ + x, n, costs);
    } else {
      for (size_t i = 0; i < n; ++i) storeAny(x + i, costs + i * disparities);
    }
    for (size_t i = 0; i < n && x + i < 2; ++i) PerDisparity<Simd>::all(worstCost).store(costs + i * disparities);
  }

 private:
  // The last group may be incomplete: its missing codes count as invalid, and there is room for their costs.
  void storeOrdinary(const uint32_t* reference, size_t n, uint8_t* costs) const {
    size_t i = 0;
    for (; i + blocks <= n; i += blocks) codes_.storeGroup(reference + i, i / blocks, costs + i * disparities);
    if (i == n) return;
    uint32_t last[blocks];
    for (size_t k = 0; k < blocks; ++k) last[k] = i + k < n ? reference[i + k] : censusInvalid;
    codes_.storeGroup(last, i / blocks, costs + i * disparities);
  }

  // Takes any codes, those that no census makes too.
  void storeAny(size_t x, uint8_t* dst) const {
    const size_t columns = x < end_ ? end_ - x : 0;
    uint8_t costs[disparities];
    for (size_t d = 0; d < disparities; ++d) costs[d] = worstCost;
    Rules::costsOfAnyCodes(first_ + x, reference_[x], columns < disparities ? columns : disparities, costs);
    PerDisparity<Simd>::load(costs).dealt().store(dst);
  }

  void append(size_t x) {
    const CodeBytes<Simd> codes = load(first_, x);
    ordinary_ = codes.areOrdinary();
    codes_.append(codes);
  }

  // The codes of 64 columns. Those of the row's frame, which may hold anything, and behind it count as invalid.
  CodeBytes<Simd> load(const uint32_t* row, size_t x) const {
    if (x >= 2 && x + stretch <= end_) return CodeBytes<Simd>(row + x);
    uint32_t codes[stretch];
    for (size_t i = 0; i < stretch; ++i) codes[i] = x + i >= 2 && x + i < end_ ? row[x + i] : censusInvalid;
    return CodeBytes<Simd>(codes);
  }

  const uint32_t *first_, *reference_;
  size_t end_;
  bool ordinary_ = true;  // what was appended last
  std::conditional_t<Simd::looksUp, LookedUpCodes<Simd>, CountedCodes<Simd>> codes_;
};

template <class Simd>
struct CostKernel {
  static void row(const uint32_t* first, const uint32_t* reference, size_t width, uint8_t* costs) {
    RowCosts<Simd> rowCosts(first, reference, width);
    for (size_t x = 0; x < width; x += stretch) {
      const size_t n = width - x < stretch ? width - x : stretch;
      uint8_t dealt[stretch * disparities];
      rowCosts.store(x, n, dealt);
      storeInOrder<Simd>(dealt, n, costs + x * disparities);
    }
  }
};

}  // namespace nadir
