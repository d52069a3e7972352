// The rows around the one that is worked on, in memory for no more than these: they go round.
#pragma once

#include <cstdint>
#include <cstring>

#include "ground/kernels/kernels.hpp"
#include "ground/records/arena.hpp"

namespace nadir::ground {

// Row y and row y + nearbySide share a place; y is -nearby at least. Each row has `nearby` columns more on both sides.
struct RowsAround {
  uint16_t* rows;
  uint32_t width;

  static size_t place(int64_t y) { return static_cast<size_t>((y + nearbySide) % nearbySide); }
  uint16_t* padded(int64_t y) const { return rows + place(y) * (size_t{width} + 2 * nearby); }
  uint16_t* row(int64_t y) const { return padded(y) + nearby; }

  // What lies beside the picture is not known, nor is a row that is null.
  void take(int64_t y, const uint16_t* row) const {
    std::memset(padded(y), 0, (size_t{width} + 2 * nearby) * sizeof *row);
    if (row) std::memcpy(padded(y) + nearby, row, width * sizeof *row);
  }
};

inline uint16_t* rowsAroundMemory(Arena& arena, uint64_t width) {
  return arena.take<uint16_t>(nearbySide * (width + 2 * nearby));
}

}  // namespace nadir::ground
