// Comparing the lists that the library makes of components and regions with those of the model.
#pragma once

#include <gtest/gtest.h>
#include <nadir/segment.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tests/models/segments.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {

inline std::vector<uint32_t> places(const Position_u16* positions, uint32_t count) {
  std::vector<uint32_t> out;
  for (uint32_t i = 0; i < count; ++i) out.push_back(model::place(positions[i].x, positions[i].y));
  return out;
}

inline std::vector<uint16_t> words(const uint16_t* first, uint32_t count) {
  return std::vector<uint16_t>(first, first + count);
}

template <class Entry>
std::vector<int32_t> boxOf(const Entry& entry) {
  return {entry.xMin, entry.yMin, entry.xEnd, entry.yEnd};
}

// The one that failed, if any.
inline ::testing::AssertionResult all(
    const std::vector<std::pair<std::string, ::testing::AssertionResult>>& comparisons) {
  for (const auto& [what, result] : comparisons) {
    if (!result) return ::testing::AssertionFailure() << what << ": " << result.message();
  }
  return ::testing::AssertionSuccess();
}

// An entry without its contour, which only components have.
template <class Entry>
::testing::AssertionResult sameRegion(const model::Region& want, const Entry& got) {
  if (got.pixelCount != want.places.size())
    return ::testing::AssertionFailure() << "wanted " << want.places.size() << " pixels, got " << got.pixelCount;
  return all({{"positions", same(want.places, places(got.positions, got.pixelCount))},
              {"values", same(want.values, words(got.values, got.pixelCount))},
              {"box", same(boxOf(want), boxOf(got))}});
}

inline ::testing::AssertionResult sameContour(const model::Region& want, const ComponentEntry& got) {
  if (got.contourCount > got.pixelCount)
    return ::testing::AssertionFailure() << got.contourCount << " of " << got.pixelCount << " pixels are contour";
  return same(want.contour, words(got.contour, got.contourCount));
}

}  // namespace nadir::test
