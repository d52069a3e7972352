#include <nadir/segment.h>

#include <algorithm>

#include "core/memory.hpp"
#include "core/pixels.hpp"
#include "segment/columns.hpp"
#include "segment/disjoint_sets.hpp"
#include "segment/entries.hpp"
#include "segment/runs.hpp"

namespace nadir {
namespace {

constexpr uint32_t kMaxSide = 256;

// A run takes two columns, the second for the gap behind it. The one that may end the row without a gap has at least
// two pixels.
constexpr uint32_t kMaxRuns = kMaxSide / 2;

// Two rows one above the other give at most kMaxRuns new labels: of two runs that do not touch, not even at a corner,
// each keeps its two columns to itself.
constexpr uint16_t kMaxLabels = kMaxRuns * kMaxSide / 2;

bool isSupported(const Img& src) {
  return src.type == IMG_TYPE_U16 && src.width >= 1 && src.width <= kMaxSide && src.height >= 1 &&
         src.height <= kMaxSide;
}

// The part of the image that is scanned; empty where x1 <= x0 or y1 <= y0.
Rect_s32 scannedArea(const Img& src, const Rect_s32& aoi) {
  if (aoi.x1 <= aoi.x0 || aoi.y1 <= aoi.y0) return {0, 0, src.width, src.height};
  return {std::max(aoi.x0, 0), std::max(aoi.y0, 0), std::min<int32_t>(aoi.x1, src.width),
          std::min<int32_t>(aoi.y1, src.height)};
}

}  // namespace
}  // namespace nadir

using namespace nadir;

struct CompFinder {
  LabelSets<kMaxLabels> labels;
  Run runs[kMaxRuns * kMaxSide];
  uint32_t count;
};

namespace nadir {
namespace {

// The runs of a row but for one that starts in the last scanned column, which is dropped.
uint32_t findKeptRuns(const Img& src, const Rect_s32& area, int32_t y, Run* runs) {
  const uint32_t begin = static_cast<uint32_t>(area.x0), end = static_cast<uint32_t>(area.x1);
  const Columns inside = greaterThan(0, row<const uint16_t>(src, static_cast<size_t>(y)), begin, end);
  const size_t count = findRuns(inside, static_cast<uint32_t>(y), end, runs);
  return static_cast<uint32_t>(count > 0 && runs[count - 1].start + 1u == end ? count - 1 : count);
}

// Collects the runs of the area with their labels and returns the number of components.
uint32_t labelRuns(CompFinder& finder, const Img& src, const Rect_s32& area) {
  finder.labels.clear();
  finder.count = 0;
  uint32_t aboveCount = 0;
  for (int32_t y = area.y0; y < area.y1 && area.x0 < area.x1; ++y) {
    Run* runs = finder.runs + finder.count;
    const uint32_t count = findKeptRuns(src, area, y, runs);
    linkRow(runs - aboveCount, aboveCount, runs, count, Reach::corner, finder.labels);
    finder.count += count;
    aboveCount = count;
  }
  const uint32_t components = finder.labels.numberSets();
  for (uint32_t i = 0; i < finder.count; ++i) finder.runs[i].label = finder.labels.number(finder.runs[i].label);
  return components;
}

// Appends the indices of a run's contour pixels, the first pixel having the index `first`. An index is written in any
// case and counted if it belongs: that is quicker than to branch, and the slice has room for all of the pixels.
void appendContour(ComponentEntry& entry, const Run& run, uint32_t first, const uint16_t* above,
                   const uint16_t* below) {
  uint32_t count = entry.contourCount;
  for (uint32_t x = run.start; x < run.end; ++x) {
    const bool isEnd = x == run.start || x + 1 == run.end;
    entry.contour[count] = static_cast<uint16_t>(first + x - run.start);
    count += isEnd | (above[x] == 0) | (below[x] == 0);
  }
  entry.contourCount = count;
}

void fillList(ComponentList& out, const CompFinder& finder, const Img& src, const Rect_s32& area) {
  static constexpr uint16_t kNothing[kMaxSide] = {};
  layOutEntries(out, finder.runs, finder.count);
  for (uint32_t k = 0; k < out.count; ++k) {
    out.entries[k].contour = out.contourPool + (out.entries[k].positions - out.positionPool);
    out.entries[k].contourCount = 0;
  }
  for (const Run* run = finder.runs; run != finder.runs + finder.count; ++run) {
    ComponentEntry& entry = out.entries[run->label - 1];
    const uint16_t* above = run->row > area.y0 ? row<const uint16_t>(src, run->row - 1u) : kNothing;
    const uint16_t* below = run->row + 1 < area.y1 ? row<const uint16_t>(src, run->row + 1u) : kNothing;
    appendContour(entry, *run, entry.pixelCount, above, below);
    appendRun(entry, *run, row<const uint16_t>(src, run->row));
  }
}

}  // namespace
}  // namespace nadir

CompFinder* IP_CompFinder_Init(void) { return static_cast<CompFinder*>(allocate(sizeof(CompFinder))); }

void IP_CompFinder_Close(CompFinder* finder) { std::free(finder); }

int32_t IP_CompFinder_Process(CompFinder* finder, const Img* src, ComponentList* out) {
  const Rect_s32 everything = {0, 0, 0, 0};
  return IP_CompFinder_ProcessAoi(finder, src, &everything, out);
}

int32_t IP_CompFinder_ProcessAoi(CompFinder* finder, const Img* src, const Rect_s32* aoi, ComponentList* out) {
  out->count = 0;
  if (!isSupported(*src)) return 0;
  const Rect_s32 area = scannedArea(*src, *aoi);
  out->count = labelRuns(*finder, *src, area);
  fillList(*out, *finder, *src, area);
  return 1;
}
