// How large the pictures are that regions are found in, and how many runs and labels they can have.
#pragma once

#include <cstdint>

namespace nadir {

constexpr uint32_t largestMapSide = 128;      // of label maps and elevation maps
constexpr uint32_t largestPictureSide = 256;  // of what the component finder takes, and so of any row

// The most runs of a row with so many columns. A run takes two columns, the second for the gap behind it: the one that
// ends the row without a gap is dropped, or has at least two pixels.
constexpr uint32_t mostRunsOf(uint32_t side) { return side / 2; }

// The most labels of a square picture. Two rows one above the other give at most mostRunsOf(side) new labels: of two
// runs that do not touch, not even at a corner, each keeps its two columns to itself.
constexpr uint16_t mostLabelsOf(uint32_t side) { return static_cast<uint16_t>(mostRunsOf(side) * side / 2); }

}  // namespace nadir
