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
enum class Reach : uint32_t { sharedColumn = 0, corner = 1 };

// Makes one set of a run's label, if it has one, and another.
template <class Labels>
void join(Run& run, uint16_t label, Labels& labels) {
  if (run.label == 0) {
    run.label = label;
  } else if (run.label != label) {
    run.label = labels.unite(run.label, label);
  }
}

// Gives every run of a row a label: that of the runs above which it touches, which thereby become one set, or else a
// new one. Both lists are in the order of their columns. touches(above, run) has the last word on a pair within reach.
template <class Labels, class Touches>
void linkRow(const Run* above, size_t aboveCount, Run* row, size_t count, Reach reach, Labels& labels,
             Touches touches) {
  const uint32_t gap = static_cast<uint32_t>(reach);
  size_t first = 0;
  for (Run* run = row; run != row + count; ++run) {
    while (first < aboveCount && above[first].end + gap <= run->start) ++first;
    for (size_t k = first; k < aboveCount && above[k].start < run->end + gap; ++k)
      if (touches(above[k], *run)) join(*run, above[k].label, labels);
    if (run->label == 0) run->label = labels.add();
  }
}

// The same for runs that touch wherever they are within reach.
template <class Labels>
void linkRow(const Run* above, size_t aboveCount, Run* row, size_t count, Reach reach, Labels& labels) {
  linkRow(above, aboveCount, row, count, reach, labels, [](const Run&, const Run&) { return true; });
}

}  // namespace nadir
