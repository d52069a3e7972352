// Runs of neighbouring pixels in a row, and linking them to the runs of the row above.
#pragma once

#include <cstddef>
#include <cstdint>

#include "segment/columns.hpp"

namespace nadir {

// The columns start <= x < end of a row.
struct Run {
  uint16_t start, end;
  uint16_t row;
  uint16_t label;
};

// Writes the runs of the columns that are `inside`, from left to right, and returns how many there are. A run ends
// where the columns do, or at `end`, and another one starts at those of the `cuts` that are inside.
inline size_t findRuns(const Columns& inside, const Columns& cuts, uint32_t row, uint32_t end, Run* runs) {
  const Columns behind = inside.rightNeighbours(), cutsWithin = cuts & inside & behind;
  size_t starts = 0, ends = 0;
  (without(inside, behind) | cutsWithin).forEach([&](uint32_t x) {
    runs[starts++] = {static_cast<uint16_t>(x), static_cast<uint16_t>(end), static_cast<uint16_t>(row), 0};
  });
  (without(behind, inside) | cutsWithin).forEach([&](uint32_t x) { runs[ends++].end = static_cast<uint16_t>(x); });
  return starts;
}

inline size_t findRuns(const Columns& inside, uint32_t row, uint32_t end, Run* runs) {
  return findRuns(inside, Columns(), row, end, runs);
}

// Which runs of neighbouring rows may touch: those that share a column, or also those that meet at a corner.
enum class Reach { sharedColumn, corner };

// Joins the label of a run, 0 where it has none yet, with that of another one that it turns out to touch.
template <class Labels>
uint16_t joinLabels(uint16_t label, uint16_t other, Labels& labels) {
  if (label == 0 || label == other) return other;
  return labels.unite(label, other);
}

// Gives every run of a row a label: that of the runs above which it touches, which thereby become one set, or else a
// new one. Both lists are in the order of their columns. touches(above, run) has the last word on a pair within reach.
template <class Labels, class Touches>
void linkRow(const Run* above, size_t aboveCount, Run* row, size_t count, Reach reach, Labels& labels,
             Touches touches) {
  const uint32_t gap = reach == Reach::corner ? 1 : 0;
  const Run *first = above, *const aboveEnd = above + aboveCount;
  for (Run* run = row; run != row + count; ++run) {
    const uint32_t from = run->start, to = run->end + gap;
    uint16_t label = 0;
    while (first != aboveEnd && first->end + gap <= from) ++first;
    for (const Run* a = first; a != aboveEnd && a->start < to; ++a) {
      if (touches(*a, *run)) label = joinLabels(label, a->label, labels);
    }
    run->label = label == 0 ? labels.add() : label;
  }
}

// The same for runs that touch wherever they are within reach.
template <class Labels>
void linkRow(const Run* above, size_t aboveCount, Run* row, size_t count, Reach reach, Labels& labels) {
  linkRow(above, aboveCount, row, count, reach, labels, [](const Run&, const Run&) { return true; });
}

}  // namespace nadir
