// Lists of regions with their pixels. Every region owns a slice of the record's pools, as long as its pixel count; the
// slices follow each other in the order of the labels.
#pragma once

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>

#include "segment/runs.hpp"

namespace nadir {

// Makes the entries of regions 1 .. out.count: label, slices of the pools and an empty box. Their pixelCount becomes 0,
// for appendRun to count them in.
template <class List>
void layOutEntries(List& out, const Run* runs, size_t count) {
  for (uint32_t k = 0; k < out.count; ++k) out.entries[k].pixelCount = 0;
  for (const Run* run = runs; run != runs + count; ++run) {
    out.entries[run->label - 1].pixelCount += uint32_t{run->end} - run->start;
  }
  uint32_t offset = 0;
  for (uint32_t k = 0; k < out.count; ++k) {
    auto& entry = out.entries[k];
    entry.label = static_cast<uint16_t>(k + 1);
    entry.positions = out.positionPool + offset;
    entry.values = out.valuePool + offset;
    offset += entry.pixelCount;
    entry.pixelCount = 0;
    entry.xMin = entry.yMin = INT_MAX;
    entry.xEnd = entry.yEnd = INT_MIN;
  }
}

// Adds a run's pixels to its region. Runs come in raster order.
template <class Entry>
void appendRun(Entry& entry, const Run& run, const uint16_t* pixels) {
  entry.xMin = std::min<int32_t>(entry.xMin, run.start);
  entry.xEnd = std::max<int32_t>(entry.xEnd, run.end);
  entry.yMin = std::min<int32_t>(entry.yMin, run.row);
  entry.yEnd = run.row + 1;
  Position_u16* __restrict positions = entry.positions + entry.pixelCount;
  uint16_t* __restrict values = entry.values + entry.pixelCount;
  const uint32_t length = uint32_t{run.end} - run.start;
  for (uint32_t i = 0; i < length; ++i) {
    positions[i] = {static_cast<uint16_t>(run.start + i), run.row};
    values[i] = pixels[run.start + i];
  }
  entry.pixelCount += length;
}

}  // namespace nadir
