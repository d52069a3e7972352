// The component finder lists the connected components of an image with their pixels and contours.
#include <nadir/segment.h>

#include <algorithm>

#include "core/memory.hpp"
#include "core/pixels.hpp"
#include "segment/columns.hpp"
#include "segment/disjoint_sets.hpp"
#include "segment/entries.hpp"
#include "segment/limits.hpp"
#include "segment/runs.hpp"

namespace nadir {
namespace {

using Labels = LabelSets<mostLabelsOf(largestPictureSide)>;
constexpr uint32_t mostRuns = mostRunsOf(largestPictureSide) * largestPictureSide;

bool isSupported(const Img& src) {
  return src.type == IMG_TYPE_U16 && src.width >= 1 && src.width <= largestPictureSide && src.height >= 1 &&
         src.height <= largestPictureSide;
}

// The part of the image that is scanned; empty where x1 <= x0 or y1 <= y0.
Rect_s32 scannedArea(const Img& src, const Rect_s32& aoi) {
  if (aoi.x1 <= aoi.x0 || aoi.y1 <= aoi.y0) return {0, 0, src.width, src.height};
  return {std::max(aoi.x0, 0), std::max(aoi.y0, 0), std::min<int32_t>(aoi.x1, src.width),
          std::min<int32_t>(aoi.y1, src.height)};
}

}  // namespace
}  // namespace nadir

struct CompFinder {
  nadir::Labels labels;
  nadir::Run runs[nadir::mostRuns];
  uint32_t count;
  // The columns that are not 0 in the row above the area, in its rows, and in the row below it.
  nadir::Columns nonZero[nadir::largestPictureSide + 2];
};

namespace nadir {
namespace {

// The runs of a row but for one that starts in the last scanned column, which is dropped.
uint32_t findKeptRuns(const Columns& nonZero, int32_t y, uint32_t end, Run* runs) {
  const size_t count = findRuns(nonZero, static_cast<uint32_t>(y), end, runs);
  return static_cast<uint32_t>(count > 0 && runs[count - 1].start + 1u == end ? count - 1 : count);
}

// Collects the runs of the area with their labels and returns the number of components.
uint32_t labelRuns(CompFinder& finder, const Img& src, const Rect_s32& area) {
  finder.labels.clear();
  finder.count = 0;
  uint32_t aboveCount = 0;
  const uint32_t begin = static_cast<uint32_t>(area.x0), end = static_cast<uint32_t>(area.x1);
  Columns* nonZero = finder.nonZero;
  *nonZero = Columns();
  for (int32_t y = area.y0; y < area.y1 && area.x0 < area.x1; ++y) {
    Run* runs = finder.runs + finder.count;
    *++nonZero = greaterThan(0, row<const uint16_t>(src, static_cast<size_t>(y)), begin, end);
    const uint32_t count = findKeptRuns(*nonZero, y, end, runs);
    linkRow(runs - aboveCount, aboveCount, runs, count, Reach::corner, finder.labels);
    finder.count += count;
    aboveCount = count;
  }
  *++nonZero = Columns();
  const uint32_t components = finder.labels.numberSets();
  for (uint32_t i = 0; i < finder.count; ++i) finder.runs[i].label = finder.labels.number(finder.runs[i].label);
  return components;
}

// The pixels of a row that have a neighbour of 0 to the left, to the right, above or below, rows[0] being the row
// itself.
Columns contourColumns(const Columns* rows) {
  const Columns& row = rows[0];
  return without(row, rows[-1] & rows[1] & row.leftNeighbours() & row.rightNeighbours());
}

void startEntries(ComponentList& out, const CompFinder& finder) {
  layOutEntries(out, finder.runs, finder.count);
  for (uint32_t k = 0; k < out.count; ++k) {
    out.entries[k].contour = out.contourPool + (out.entries[k].positions - out.positionPool);
    out.entries[k].contourCount = 0;
  }
}

void appendContour(ComponentEntry& entry, const Run& run, const Columns& contour) {
  const uint32_t first = entry.pixelCount - run.start;
  contour.forEach(run.start, run.end,
                  [&](uint32_t x) { entry.contour[entry.contourCount++] = static_cast<uint16_t>(first + x); });
}

void fillEntries(ComponentList& out, const CompFinder& finder, const Img& src, const Rect_s32& area) {
  const Run *run = finder.runs, *const last = finder.runs + finder.count;
  for (int32_t y = area.y0; run != last; ++y) {
    const Columns contour = contourColumns(finder.nonZero + 1 + (y - area.y0));
    const uint16_t* pixels = row<const uint16_t>(src, static_cast<size_t>(y));
    for (; run != last && run->row == y; ++run) {
      ComponentEntry& entry = out.entries[run->label - 1];
      appendContour(entry, *run, contour);
      appendRun(entry, *run, pixels);
    }
  }
}

}  // namespace
}  // namespace nadir

CompFinder* IP_CompFinder_Init(void) { return static_cast<CompFinder*>(nadir::allocate(sizeof(CompFinder))); }

void IP_CompFinder_Close(CompFinder* finder) { std::free(finder); }

int32_t IP_CompFinder_Process(CompFinder* finder, const Img* src, ComponentList* out) {
  const Rect_s32 everything = {0, 0, 0, 0};
  return IP_CompFinder_ProcessAoi(finder, src, &everything, out);
}

int32_t IP_CompFinder_ProcessAoi(CompFinder* finder, const Img* src, const Rect_s32* aoi, ComponentList* out) {
  out->count = 0;
  if (!nadir::isSupported(*src)) return 0;
  const Rect_s32 area = nadir::scannedArea(*src, *aoi);
  out->count = nadir::labelRuns(*finder, *src, area);
  nadir::startEntries(*out, *finder);
  nadir::fillEntries(*out, *finder, *src, area);
  return 1;
}
