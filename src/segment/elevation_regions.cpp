// This grows regions in an elevation map over steps that are small enough.
#include <nadir/segment.h>

#include <algorithm>
#include <cstdlib>

#include "core/given_memory.hpp"
#include "core/memory.hpp"
#include "core/pixels.hpp"
#include "segment/columns.hpp"
#include "segment/disjoint_sets.hpp"
#include "segment/entries.hpp"
#include "segment/limits.hpp"
#include "segment/runs.hpp"

namespace nadir {
namespace {

constexpr uint16_t mostCells = largestMapSide * largestMapSide;  // and so many runs, and labels, if every cell is one

}  // namespace
}  // namespace nadir

// What the last processing found, for the extractions that follow it.
struct NadirElevationRegions {
  ImgC elev;
  bool any;  // whether a map was processed at all
  uint32_t regions;
  size_t count;
  nadir::Run runs[nadir::mostCells];
  nadir::LabelSets<nadir::mostCells> labels;
};

namespace nadir {
namespace {

using Found = NadirElevationRegions;

const uint16_t* cells(const ImgC& elev, size_t y) { return static_cast<const uint16_t*>(elev.data) + y * elev.width; }

struct Area {
  uint32_t x0, y0, x1, y1;
};

Area clampedArea(const ImgC& elev, const RgeParams& params) {
  if (params.x0 == 0 && params.y0 == 0 && params.x1 == 0 && params.y1 == 0) return {0, 0, elev.width, elev.height};
  const auto clamped = [](int32_t v, uint16_t size) { return static_cast<uint32_t>(std::clamp<int32_t>(v, 0, size)); };
  return {clamped(params.x0, elev.width), clamped(params.y0, elev.height), clamped(params.x1, elev.width),
          clamped(params.y1, elev.height)};
}

size_t findRowRuns(const uint16_t* row, uint32_t y, const Area& area, const RgeParams& params, Run* runs) {
  const int32_t maxStep = params.maxStep;
  const Columns inside = greaterThan(params.minValue, row, area.x0, area.x1);
  const Columns steps =
      Columns::where(area.x0 + 1, area.x1, [=](size_t x) { return std::abs(row[x] - row[x - 1]) > maxStep; });
  return findRuns(inside, steps, y, area.x1, runs);
}

// The columns in which a row is as high as the one above it, but for a step that is small enough.
Columns levelColumns(const uint16_t* above, const uint16_t* row, const Area& area, int32_t maxStep) {
  return Columns::where(area.x0, area.x1, [=](size_t x) { return std::abs(row[x] - above[x]) <= maxStep; });
}

void findRegions(const ImgC& elev, const Area& area, const RgeParams& params, Found& found) {
  const Run* above = found.runs;
  for (uint32_t y = area.y0; y < area.y1 && area.x0 < area.x1; ++y) {
    const uint16_t* row = cells(elev, y);
    Run* runs = found.runs + found.count;
    const size_t count = findRowRuns(row, y, area, params, runs);
    const Columns level = y > area.y0 ? levelColumns(cells(elev, y - 1), row, area, params.maxStep) : Columns();
    const auto touch = [&](const Run& a, const Run& b) {
      return level.hasAny(std::max(a.start, b.start), std::min(a.end, b.end));
    };
    linkRow(above, static_cast<size_t>(runs - above), runs, count, Reach::sharedColumn, found.labels, touch);
    found.count += count;
    above = runs;
  }
}

void numberRegions(Found& found) {
  found.regions = found.labels.numberSets();
  for (size_t i = 0; i < found.count; ++i) found.runs[i].label = found.labels.number(found.runs[i].label);
}

template <class F>
void forEachRun(const Found& found, F f) {
  const Run* const end = found.runs + found.count;  // known here, since f may write what could be the count
  for (const Run* run = found.runs; run != end; ++run) f(*run);
}

Found ofProcess;  // what IP_RGE_* share

}  // namespace
}  // namespace nadir

size_t nadir_elevation_regions_bytes(void) { return nadir::bytesFor<NadirElevationRegions>(1); }

NadirElevationRegions* nadir_elevation_regions_init(void* memory, size_t bytes) {
  NadirElevationRegions* const found = nadir::asArray<NadirElevationRegions>(memory, bytes, 1);
  if (!found) return nullptr;
  found->elev = {};
  found->any = false;
  found->regions = 0;
  found->count = 0;
  found->labels.clear();
  return found;
}

int32_t nadir_elevation_regions_process(NadirElevationRegions* found, const ImgC* elev, const RgeParams* params) {
  if (!found || !elev || elev->type != IMG_TYPE_U16) return 0;
  if (elev->width > nadir::largestMapSide || elev->height > nadir::largestMapSide) return 0;
  const RgeParams everything = {0, 0, 0, 0, 0, 0};
  const RgeParams& wanted = params ? *params : everything;
  found->elev = *elev;
  found->any = true;
  found->count = 0;
  found->labels.clear();
  findRegions(*elev, nadir::clampedArea(*elev, wanted), wanted, *found);
  nadir::numberRegions(*found);
  return 1;
}

int32_t nadir_elevation_regions_label_map(const NadirElevationRegions* found, Img* map) {
  if (!found || !map || !found->any || map->type != IMG_TYPE_U16) return 0;
  if (map->width < found->elev.width || map->height < found->elev.height) return 0;
  nadir::clear(map->data, nadir::rowBytes(*map) * map->height);
  nadir::forEachRun(*found, [target = *map](const nadir::Run& run) {
    uint16_t* labels = nadir::row<uint16_t>(target, run.row);
    std::fill(labels + run.start, labels + run.end, run.label);
  });
  return 1;
}

int32_t nadir_elevation_regions_list(const NadirElevationRegions* found, RegionList* out) {
  if (!found || !out) return 0;
  out->count = found->regions;
  layOutEntries(*out, found->runs, found->count);
  nadir::forEachRun(*found, [out, elev = found->elev](const nadir::Run& run) {
    appendRun(out->entries[run.label - 1], run, nadir::cells(elev, run.row));
  });
  return 1;
}

int32_t IP_RGE_Init(void) {
  nadir::ofProcess.labels.clear();
  return 1;
}

int32_t IP_RGE_Process(const ImgC* elev, const RgeParams* params) {
  return nadir_elevation_regions_process(&nadir::ofProcess, elev, params);
}

int32_t IP_RGE_CreateLabelMap(Img* map) { return nadir_elevation_regions_label_map(&nadir::ofProcess, map); }

int32_t IP_RGE_CreateRegionList(RegionList* out) { return nadir_elevation_regions_list(&nadir::ofProcess, out); }
