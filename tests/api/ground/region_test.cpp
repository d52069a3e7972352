// What stands on the ground and in areas: the same as libnadir's regions of the map, and what holds for any frame.
#include <algorithm>
#include <thread>

#include "lab/image.hpp"
#include "tests/api/ground/roads.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

// A floor with boxes on it, seen from straight above; some pixels have no disparity.
Grid<float> anyBoxes(lab::Random& random, uint32_t missingPercent = 10) {
  Grid<float> grid(96, 60, 8.0f);
  for (uint32_t boxes = random.below(12); boxes > 0; --boxes) {
    const uint32_t x0 = random.below(90), y0 = random.below(55);
    const uint32_t x1 = std::min(96u, x0 + 2 + random.below(30)), y1 = std::min(60u, y0 + 2 + random.below(25));
    const float disparity = 16000.0f / (2000.0f - static_cast<float>(random.below(900)));
    for (uint32_t y = y0; y < y1; ++y) std::fill(grid.row(y) + x0, grid.row(y) + x1, disparity);
  }
  for (float& d : grid.pixels) d = random.below(100) < missingPercent ? noDisparity : d;
  return grid;
}

// Three areas that overlap, one of them partly outside the map.
const std::vector<std::vector<int32_t>>& corners() {
  static const std::vector<std::vector<int32_t>> all = {
      {-320, -320, 320, -320, 320, 240, -320, 240}, {-200, -200, 100, -150, 0, 200}, {0, 0, 600, 0, 600, 600, 0, 600}};
  return all;
}

std::vector<NadirArea> threeAreas() {
  std::vector<NadirArea> areas;
  for (const std::vector<int32_t>& area : corners()) areas.push_back(areaOf(area));
  return areas;
}

struct Case {
  NadirCamera camera;
  NadirSettings settings;
  Grid<float> disparity;
};

Case anyCase(lab::Random& random) {
  NadirCamera camera = smallCamera();
  camera.map_width_cells = 12 + random.below(12);
  NadirSettings settings = defaultSettings(camera);
  const double heights[] = {0, 1, 60, 60.9, 300, 65534}, steps[] = {0, 0.5, 40, 200.9, 65535};
  const double areas[] = {0, 0.0016, 0.00160001, 0.0048, 0.048, 1};
  settings.min_height_mm = heights[random.below(6)];
  settings.max_step_mm = steps[random.below(5)];
  settings.min_area_m2 = areas[random.below(6)];
  if (random.below(2)) settings.fill_holes_m2 = 0.01;
  return {camera, settings, anyBoxes(random)};
}

template <class Check>
void forEachCase(uint64_t rounds, Check check) {
  inRounds(rounds, [&check](lab::Random& random) {
    const Case c = anyCase(random);
    const Road road = makeRoad(c.camera, c.settings, threeAreas());
    const Result result = makeResult(road);
    const NadirFindings findings = processed(road, frameOf(c.disparity), result);
    check(c, road, findings);
  });
}

// ---- the model, of libnadir's regions ----

struct Cell {
  uint32_t x, y;
  uint16_t height;
};
using Cells = std::vector<Cell>;

std::vector<Cells> regionsOf(const Grid<uint16_t>& heights, const NadirSettings& settings) {
  std::vector<uint64_t> memory(nadir_elevation_regions_bytes() / 8 + 1);
  NadirElevationRegions* state = nadir_elevation_regions_init(memory.data(), memory.size() * 8);
  const RgeParams params{
      0, 0, 0, 0, static_cast<int32_t>(settings.max_step_mm), static_cast<int32_t>(settings.min_height_mm)};
  const ImgC map = lab::imageOf(heights);
  EXPECT_EQ(nadir_elevation_regions_process(state, &map, &params), 1);
  const auto list = std::make_unique<RegionList>();
  EXPECT_EQ(nadir_elevation_regions_list(state, list.get()), 1);
  std::vector<Cells> regions;
  for (uint32_t i = 0; i < list->count; ++i) {
    const RegionEntry& entry = list->entries[i];
    if (entry.pixelCount * 0.0016 < settings.min_area_m2 * (1 - 1e-12)) continue;
    Cells cells;
    for (uint32_t j = 0; j < entry.pixelCount; ++j)
      cells.push_back({entry.positions[j].x, entry.positions[j].y, entry.values[j]});
    regions.push_back(cells);
  }
  return regions;
}

std::vector<Cells> regionsOf(const Case& c, const NadirFindings& f) {
  return regionsOf(gridOf<uint16_t>(f.heights), c.settings);
}

std::vector<uint16_t> sortedHeights(const Cells& cells) {
  std::vector<uint16_t> heights;
  for (const Cell& cell : cells) heights.push_back(cell.height);
  std::sort(heights.begin(), heights.end());
  return heights;
}

uint32_t highestOf(const Cells& cells) { return cells.empty() ? 0 : sortedHeights(cells).back(); }
uint32_t medianOf(const Cells& cells) { return cells.empty() ? 0 : sortedHeights(cells)[(cells.size() - 1) / 2]; }

Cells inMask(const Cells& cells, const Grid<uint8_t>& mask) {
  Cells inside;
  for (const Cell& cell : cells)
    if (mask.at(cell.x, cell.y)) inside.push_back(cell);
  return inside;
}

Grid<uint8_t> maskOf(const Road& road, uint32_t index) {
  NadirPlacedArea area{};
  area.size = sizeof area;
  EXPECT_EQ(nadir_road_area(road.get(), index, &area), NADIR_OK);
  return gridOf<uint8_t>(area.mask);
}

// ---- regions ----

TEST(Regions, LabelsAreThoseOfLibnadirWithoutTheSmallOnes) {
  forEachCase(100, [](const Case& c, const Road&, const NadirFindings& f) {
    Grid<uint16_t> wanted(f.heights.width, f.heights.height);
    uint16_t label = 0;
    for (const Cells& cells : regionsOf(c, f)) {
      ++label;
      for (const Cell& cell : cells) wanted.at(cell.x, cell.y) = label;
    }
    EXPECT_TRUE(same(wanted.pixels, gridOf<uint16_t>(f.labels).pixels));
  });
}

TEST(Regions, AreListedByLabel) {
  forEachCase(60, [](const Case& c, const Road&, const NadirFindings& f) {
    ASSERT_EQ(f.region_count, regionsOf(c, f).size());
    uint32_t label = 0;
    for (const NadirRegion& region : recordsOf(f.regions, f.region_count)) EXPECT_EQ(region.label, ++label);
  });
}

// check(region, cells of the model, findings) for the regions of random frames.
template <class Check>
void forEachRegion(Check check) {
  forEachCase(60, [&check](const Case& c, const Road&, const NadirFindings& f) {
    const std::vector<Cells> wanted = regionsOf(c, f);
    ASSERT_EQ(f.region_count, wanted.size());
    const std::vector<NadirRegion> got = recordsOf(f.regions, f.region_count);
    for (size_t i = 0; i < got.size(); ++i) check(got[i], wanted[i], f, c.camera);
  });
}

TEST(Regions, CountTheirCells) {
  forEachRegion([](const NadirRegion& region, const Cells& cells, const NadirFindings&, const NadirCamera&) {
    EXPECT_EQ(region.cells, cells.size());
    EXPECT_NEAR(region.area_m2, static_cast<double>(cells.size()) * 0.0016, 1e-9);
  });
}

TEST(Regions, KnowTheirHighest) {
  forEachRegion([](const NadirRegion& region, const Cells& cells, const NadirFindings&, const NadirCamera&) {
    EXPECT_EQ(region.highest_mm, highestOf(cells));
  });
}

TEST(Regions, KnowTheirMedian) {
  forEachRegion([](const NadirRegion& region, const Cells& cells, const NadirFindings&, const NadirCamera&) {
    EXPECT_EQ(region.median_mm, medianOf(cells));
  });
}

TEST(Regions, HaveHalfOpenBoxes) {
  forEachRegion([](const NadirRegion& region, const Cells& cells, const NadirFindings&, const NadirCamera&) {
    NadirRegion wanted{};
    wanted.left = wanted.top = 0xFFFFFFFF;
    for (const Cell& cell : cells) {
      wanted.left = std::min(wanted.left, cell.x);
      wanted.top = std::min(wanted.top, cell.y);
      wanted.right = std::max(wanted.right, cell.x + 1);
      wanted.bottom = std::max(wanted.bottom, cell.y + 1);
    }
    EXPECT_EQ(region.left, wanted.left);
    EXPECT_EQ(region.top, wanted.top);
    EXPECT_EQ(region.right, wanted.right);
    EXPECT_EQ(region.bottom, wanted.bottom);
  });
}

TEST(Regions, SayWhetherTheyTouchTheMapsEdge) {
  forEachRegion([](const NadirRegion& r, const Cells&, const NadirFindings& f, const NadirCamera&) {
    const bool touches = r.left == 0 || r.top == 0 || r.right == f.heights.width || r.bottom == f.heights.height;
    EXPECT_EQ(r.at_map_edge, touches ? 1u : 0u);
  });
}

// ---- parts ----

// Hills, all of which touch.
Grid<float> hills(lab::Random& random) {
  Grid<float> grid(96, 60);
  for (float& d : grid.pixels) d = 16000.0f / (1900.0f - static_cast<float>(random.below(8)) * 40.0f);
  return grid;
}

// How many cells of a map are the tops of parts: no path leads from them to another cell that is higher, or as high and
// before them, without sinking by the dip.
size_t topsOf(const Grid<uint16_t>& heights, uint16_t dip) {
  size_t tops = 0;
  const auto cells = static_cast<uint32_t>(heights.pixels.size());
  for (uint32_t from = 0; from < cells; ++from) {
    const uint16_t top = heights.pixels[from];
    std::vector<uint32_t> reached = {from};
    std::vector<uint8_t> known(cells);
    known[from] = 1;
    bool isTop = top > 60;
    for (size_t i = 0; i < reached.size() && isTop; ++i) {
      const uint32_t cell = reached[i], x = cell % heights.width, y = cell / heights.width;
      const auto visit = [&](bool exists, uint32_t next) {
        if (!exists || known[next] || heights.pixels[next] <= 60 || heights.pixels[next] + dip <= top) return;
        known[next] = 1;
        reached.push_back(next);
        isTop &= heights.pixels[next] < top || (heights.pixels[next] == top && next > from);
      };
      visit(x > 0, cell - 1);
      visit(x + 1 < heights.width, cell + 1);
      visit(y > 0, cell - heights.width);
      visit(y + 1 < heights.height, cell + heights.width);
    }
    tops += isTop;
  }
  return tops;
}

NadirSettings settingsOfParts(double dipMm, double minAreaM2 = 0) {
  NadirSettings settings = defaultSettings(smallCamera());
  settings.max_step_mm = 65535;
  settings.min_area_m2 = minAreaM2;
  settings.dip_mm = dipMm;
  return settings;
}

TEST(Parts, AreAsManyAsThereAreTops) {
  inRounds(60, [](lab::Random& random) {
    const Grid<float> disparity = hills(random);
    const auto dip = static_cast<uint16_t>(1 + random.below(300));
    const Road road = makeRoad(smallCamera(), settingsOfParts(dip));
    const Result result = makeResult(road);
    const NadirFindings f = processed(road, frameOf(disparity), result);
    EXPECT_EQ(f.region_count, topsOf(gridOf<uint16_t>(f.heights), dip)) << "dip of " << dip << " mm";
  });
}

Grid<uint16_t> partsOf(const Grid<float>& disparity, const NadirSettings& settings) {
  const Road road = makeRoad(smallCamera(), settings);
  const Result result = makeResult(road);
  return gridOf<uint16_t>(processed(road, frameOf(disparity), result).labels);
}

uint16_t highestLabel(const Grid<uint16_t>& labels) {
  return *std::max_element(labels.pixels.begin(), labels.pixels.end());
}

TEST(Parts, CoverTheSameCells) {
  inRounds(20, [](lab::Random& random) {
    const Grid<float> disparity = anyBoxes(random);
    const Grid<uint16_t> whole = partsOf(disparity, settingsOfParts(0)),
                         parts = partsOf(disparity, settingsOfParts(40));
    for (size_t i = 0; i < whole.pixels.size(); ++i) EXPECT_EQ(whole.pixels[i] == 0, parts.pixels[i] == 0);
  });
}

TEST(Parts, AreNumberedByTheirFirstCells) {
  inRounds(20, [](lab::Random& random) {
    uint16_t highest = 0;
    for (const uint16_t label : partsOf(hills(random), settingsOfParts(40)).pixels) {
      EXPECT_LE(label, highest + 1);
      highest = std::max(highest, label);
    }
  });
}

// A block a metre high with a trough across it.
uint16_t partsOfTrough(double troughMm, const NadirSettings& settings) {
  Grid<float> grid(96, 60, 8.0f);
  for (uint32_t y = 20; y < 40; ++y) {
    std::fill(grid.row(y) + 30, grid.row(y) + 66, 16.0f);
    std::fill(grid.row(y) + 44, grid.row(y) + 52, static_cast<float>(16000 / (2000 - troughMm)));
  }
  return highestLabel(partsOf(grid, settings));
}

TEST(Parts, StayTogetherOverAShallowTrough) {
  EXPECT_EQ(partsOfTrough(960, settingsOfParts(50)), 1);
  EXPECT_EQ(partsOfTrough(940, settingsOfParts(50)), 2);
}

TEST(Parts, OfAnAreaThatNoMapHasAreNone) {
  NadirCamera camera = smallCamera();
  camera.cell_mm = 1;
  NadirSettings settings = settingsOfParts(30, 1e6);
  const Road road = makeRoad(camera, settings);
  const Result result = makeResult(road);
  EXPECT_EQ(processed(road, frameOf(Grid<float>(96, 60, 16.0f)), result).region_count, 0u);
}

TEST(Parts, AreNotMadeWithoutADip) { EXPECT_EQ(partsOfTrough(300, settingsOfParts(0)), 1); }

TEST(Parts, HaveATopThatAQuarterOfTheLeastAreaReaches) {
  // Beyond the trough about 30 cells of 1600 mm2 are left of 0.048 m2.
  EXPECT_EQ(partsOfTrough(500, settingsOfParts(50, 0.04)), 2);
  EXPECT_EQ(partsOfTrough(500, settingsOfParts(50, 0.4)), 0);
}

// ---- heights of an area's own ----

NadirArea areaWithHeights(const std::vector<int32_t>& corners, uint32_t least, uint32_t most) {
  NadirArea area = areaOf(corners);
  area.min_height_mm = least;
  area.max_height_mm = most;
  return area;
}

const std::vector<int32_t> leftHalf = {-320, -320, 0, -320, 0, 240, -320, 240};
const std::vector<int32_t> wholeMap = {-320, -320, 320, -320, 320, 240, -320, 240};

// Every cell's label with some areas against those that the model finds in heights that `counts` leaves.
template <class Counts>
void expectCounted(const std::vector<NadirArea>& areas, Counts counts) {
  inRounds(40, [&](lab::Random& random) {
    const Grid<float> disparity = anyBoxes(random);
    NadirSettings settings = defaultSettings(smallCamera());
    settings.min_height_mm = 300;
    settings.min_area_m2 = 0.0016;
    const Road road = makeRoad(smallCamera(), settings, areas);
    const Result result = makeResult(road);
    const NadirFindings f = processed(road, frameOf(disparity), result);
    Grid<uint16_t> heights = gridOf<uint16_t>(f.heights);
    for (uint32_t y = 0; y < heights.height; ++y)
      for (uint32_t x = 0; x < heights.width; ++x)
        if (!counts(x, heights.at(x, y))) heights.at(x, y) = 0;
    settings.min_height_mm = 0;
    Grid<uint16_t> wanted(heights.width, heights.height);
    uint16_t label = 0;
    for (const Cells& cells : regionsOf(heights, settings)) {
      ++label;
      for (const Cell& cell : cells) wanted.at(cell.x, cell.y) = label;
    }
    EXPECT_TRUE(same(wanted.pixels, gridOf<uint16_t>(f.labels).pixels));
  });
}

constexpr uint32_t leftColumns = 8;  // of the map, whose middles lie left of x = 0

TEST(AreaHeights, LowerTheLeastOneInTheArea) {
  expectCounted({areaWithHeights(leftHalf, 100, 0)},
                [](uint32_t x, uint16_t mm) { return mm > (x < leftColumns ? 100 : 300); });
}

TEST(AreaHeights, RaiseTheLeastOneInTheArea) {
  expectCounted({areaWithHeights(leftHalf, 600, 0)},
                [](uint32_t x, uint16_t mm) { return mm > (x < leftColumns ? 600 : 300); });
}

TEST(AreaHeights, LeaveOutWhatIsHigher) {
  expectCounted({areaWithHeights(leftHalf, 0, 700)},
                [](uint32_t x, uint16_t mm) { return mm > 300 && (x >= leftColumns || mm <= 700); });
}

TEST(AreaHeights, OfTheFirstAreaHoldWhereSeveralHaveSome) {
  expectCounted({areaWithHeights(leftHalf, 100, 0), areaWithHeights(wholeMap, 500, 800)},
                [](uint32_t x, uint16_t mm) { return x < leftColumns ? mm > 100 : mm > 500 && mm <= 800; });
}

TEST(AreaHeights, OfAnAreaWithoutThemDoNotStandBeforeOthers) {
  expectCounted({areaOf(wholeMap), areaWithHeights(leftHalf, 100, 0)},
                [](uint32_t x, uint16_t mm) { return mm > (x < leftColumns ? 100 : 300); });
}

TEST(AreaHeights, AreRefusedOutOfTheirRange) {
  struct {
    uint32_t least, most;
    const char* field;
  } const wrong[] = {{65536, 0, "min_height_mm"}, {0, 65536, "max_height_mm"}, {500, 500, "max_height_mm"}};
  for (const auto& w : wrong) {
    const NadirCamera camera = smallCamera();
    const NadirSettings settings = defaultSettings(camera);
    const NadirArea area = areaWithHeights(leftHalf, w.least, w.most);
    NadirRoad* road = nullptr;
    NadirFault fault{};
    fault.size = sizeof fault;
    EXPECT_EQ(nadir_road_create(&camera, &settings, &area, 1, &road, &fault), NADIR_BAD_AREA);
    EXPECT_STREQ(fault.field, w.field);
  }
}

// ---- the picture's edge ----

// A floor with a box, whose disparity is 16 pixels; half-open columns and rows.
Grid<float> oneBox(uint32_t left, uint32_t top, uint32_t right, uint32_t bottom) {
  Grid<float> grid(96, 60, 8.0f);
  for (uint32_t y = top; y < bottom; ++y) std::fill(grid.row(y) + left, grid.row(y) + right, 16.0f);
  return grid;
}

// The camera's map reaches beyond what it sees.
NadirCamera wideCamera() {
  NadirCamera camera = smallCamera();
  camera.map_width_cells = 60;
  camera.map_height_cells = 60;
  return camera;
}

uint32_t isAtPictureEdge(const Grid<float>& disparity, const NadirCamera& camera, const NadirSettings& settings) {
  const Road road = makeRoad(camera, settings);
  const Result result = makeResult(road);
  const NadirFindings f = processed(road, frameOf(disparity), result);
  EXPECT_EQ(f.region_count, 1u);
  return f.regions[0].at_picture_edge;
}

uint32_t isAtPictureEdge(const Grid<float>& disparity, uint32_t grid = NADIR_GRID_LEFT) {
  NadirSettings settings = defaultSettings(wideCamera());
  settings.grid = grid;
  settings.min_area_m2 = 0.001;
  return isAtPictureEdge(disparity, wideCamera(), settings);
}

TEST(PictureEdge, DoesNotCutOffWhatStandsInTheMiddle) { EXPECT_EQ(isAtPictureEdge(oneBox(40, 20, 60, 40)), 0u); }

TEST(PictureEdge, CutsOffWhatReachesTheFirstRows) {
  EXPECT_EQ(isAtPictureEdge(oneBox(40, 7, 60, 40)), 1u);
  EXPECT_EQ(isAtPictureEdge(oneBox(40, 8, 60, 40)), 0u);
}

TEST(PictureEdge, CutsOffWhatReachesTheLastRows) {
  EXPECT_EQ(isAtPictureEdge(oneBox(40, 20, 60, 53)), 1u);
  EXPECT_EQ(isAtPictureEdge(oneBox(40, 20, 60, 52)), 0u);
}

TEST(PictureEdge, OfTheLeftGridIsOnTheLeftThatOfTheRightPicture) {
  EXPECT_EQ(isAtPictureEdge(oneBox(23, 20, 60, 40)), 1u) << "the right picture has it from column 7 on";
  EXPECT_EQ(isAtPictureEdge(oneBox(24, 20, 60, 40)), 0u);
}

TEST(PictureEdge, OfTheLeftGridIsOnTheRightItsOwn) {
  EXPECT_EQ(isAtPictureEdge(oneBox(40, 20, 89, 40)), 1u);
  EXPECT_EQ(isAtPictureEdge(oneBox(40, 20, 88, 40)), 0u);
}

TEST(PictureEdge, OfTheRightGridIsTheMirrorImage) {
  EXPECT_EQ(isAtPictureEdge(oneBox(40, 20, 73, 40), NADIR_GRID_RIGHT), 1u);
  EXPECT_EQ(isAtPictureEdge(oneBox(40, 20, 72, 40), NADIR_GRID_RIGHT), 0u);
  EXPECT_EQ(isAtPictureEdge(oneBox(8, 20, 60, 40), NADIR_GRID_RIGHT), 0u);
  EXPECT_EQ(isAtPictureEdge(oneBox(7, 20, 60, 40), NADIR_GRID_RIGHT), 1u);
}

TEST(PictureEdge, IsLookedForWithoutTheColumnShift) {
  NadirCamera camera = wideCamera();
  camera.column_shift_px = 4;
  NadirSettings settings = defaultSettings(camera);
  settings.min_area_m2 = 0.001;
  Grid<float> disparity = oneBox(24, 20, 60, 40);
  for (float& d : disparity.pixels) d -= d == 8 ? 4.0f : 0.0f;
  EXPECT_EQ(isAtPictureEdge(disparity, camera, settings), 0u);
}

TEST(PictureEdge, IsWiderWhereSmallerPicturesAreMatched) {
  NadirCamera camera = wideCamera();
  camera.width_px = 192;
  NadirSettings settings = defaultSettings(camera);
  settings.min_area_m2 = 0.001;
  settings.range = NADIR_RANGE_122;
  Grid<float> disparity(192, 60, 8.0f);
  for (uint32_t y = 15; y < 40; ++y) std::fill(disparity.row(y) + 60, disparity.row(y) + 80, 16.0f);
  EXPECT_EQ(isAtPictureEdge(disparity, camera, settings), 1u) << "row 15 of halves is row 7";
}

TEST(Regions, LieWhereTheMeanOfTheirCellsLies) {
  forEachRegion([](const NadirRegion& region, const Cells& cells, const NadirFindings&, const NadirCamera& camera) {
    const double corner = -40.0 * (camera.map_width_cells / 2);
    double x = 0, y = 0;
    for (const Cell& cell : cells) {
      x += corner + 40 * (cell.x + 0.5);
      y += corner + 40 * (cell.y + 0.5);
    }
    EXPECT_NEAR(region.centre_x_mm, x / static_cast<double>(cells.size()), 0.01);
    EXPECT_NEAR(region.centre_y_mm, y / static_cast<double>(cells.size()), 0.01);
  });
}

TEST(Regions, OneOfExactlyTheLeastAreaStays) {
  Grid<float> disparity(96, 60, 8.0f);
  for (uint32_t y = 20; y < 34; ++y) std::fill(disparity.row(y) + 40, disparity.row(y) + 56, 12.0f);
  NadirSettings settings = defaultSettings(smallCamera());
  settings.min_area_m2 = 0;
  const Road any = makeRoad(smallCamera(), settings);
  const Result result = makeResult(any);
  const NadirFindings f = processed(any, frameOf(disparity), result);
  ASSERT_EQ(f.region_count, 1u);
  const double area = f.regions->area_m2;
  for (const uint32_t more : {0u, 1u}) {
    settings.min_area_m2 = more ? std::nextafter(area, 1e6) : area;
    const Road road = makeRoad(smallCamera(), settings);
    const Result again = makeResult(road);
    EXPECT_EQ(processed(road, frameOf(disparity), again).region_count, 1u - more);
  }
}

TEST(Regions, OfAnEmptyFloorThereAreNone) {
  const Grid<float> disparity(96, 60, 8.0f);
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()));
  const Result result = makeResult(road);
  EXPECT_EQ(processed(road, frameOf(disparity), result).region_count, 0u);
}

// ---- areas ----

// check(area, its mask, the map's heights, the model's regions, findings)
template <class Check>
void forEachArea(Check check) {
  forEachCase(60, [&check](const Case& c, const Road& road, const NadirFindings& f) {
    ASSERT_EQ(f.area_count, 3u);
    const std::vector<NadirOccupancy> areas = recordsOf(f.areas, f.area_count);
    for (uint32_t i = 0; i < 3; ++i) check(areas[i], maskOf(road, i), regionsOf(c, f), f);
  });
}

TEST(Occupancy, CountsTheAreasCells) {
  forEachArea([](const NadirOccupancy& area, const Grid<uint8_t>& mask, const auto&, const NadirFindings&) {
    EXPECT_EQ(area.cells, std::count(mask.pixels.begin(), mask.pixels.end(), 1));
  });
}

TEST(Occupancy, CountsThoseWithAHeight) {
  forEachArea([](const NadirOccupancy& area, const Grid<uint8_t>& mask, const auto&, const NadirFindings& f) {
    const Grid<uint16_t> heights = gridOf<uint16_t>(f.heights);
    uint32_t seen = 0;
    for (size_t i = 0; i < mask.pixels.size(); ++i) seen += mask.pixels[i] && heights.pixels[i];
    EXPECT_EQ(area.seen_cells, seen);
  });
}

Cells coveredIn(const std::vector<Cells>& regions, const Grid<uint8_t>& mask) {
  Cells all;
  for (const Cells& region : regions)
    for (const Cell& cell : inMask(region, mask)) all.push_back(cell);
  return all;
}

TEST(Occupancy, CountsThoseOfRegions) {
  forEachArea([](const NadirOccupancy& area, const Grid<uint8_t>& mask, const auto& regions, const NadirFindings&) {
    EXPECT_EQ(area.covered_cells, coveredIn(regions, mask).size());
  });
}

TEST(Occupancy, KnowsTheHighestOfThem) {
  forEachArea([](const NadirOccupancy& area, const Grid<uint8_t>& mask, const auto& regions, const NadirFindings&) {
    EXPECT_EQ(area.highest_mm, highestOf(coveredIn(regions, mask)));
  });
}

TEST(Occupancy, KnowsTheirMedian) {
  forEachArea([](const NadirOccupancy& area, const Grid<uint8_t>& mask, const auto& regions, const NadirFindings&) {
    EXPECT_EQ(area.median_mm, medianOf(coveredIn(regions, mask)));
  });
}

// Small regions are no regions, but half of one is enough; in an area too small for that, half of the area.
TEST(Occupancy, KnowsTheHighestPieceThatIsHalfARegion) {
  forEachCase(100, [&](const Case& c, const Road& road, const NadirFindings& f) {
    NadirSettings settings = c.settings;
    settings.min_area_m2 = 0;
    const std::vector<Cells> grown = regionsOf(gridOf<uint16_t>(f.heights), settings);
    const std::vector<NadirOccupancy> areas = recordsOf(f.areas, f.area_count);
    for (uint32_t i = 0; i < 3; ++i) {
      const double least = std::min(c.settings.min_area_m2 / 0.0016, static_cast<double>(areas[i].cells)) * (1 - 1e-12);
      uint32_t highest = 0;
      for (const Cells& cells : grown)
        if (const Cells inside = inMask(cells, maskOf(road, i)); 2.0 * static_cast<double>(inside.size()) >= least)
          highest = std::max(highest, highestOf(inside));
      EXPECT_EQ(areas[i].piece_mm, highest);
    }
  });
}

TEST(Occupancy, KnowsThePieceOfARegionThatIsDropped) {
  const std::vector<int32_t> all = {-320, -320, 320, -320, 320, 240, -320, 240};
  const auto found = [&all](uint32_t leastCells) {
    NadirSettings settings = defaultSettings(smallCamera());
    settings.min_area_m2 = leastCells * 1600 / 1e6;
    const Road road = makeRoad(smallCamera(), settings, {areaOf(all)});
    const Result result = makeResult(road);
    const NadirFindings f = processed(road, frameOf(oneBox(40, 20, 52, 32)), result);  // a metre high
    return std::pair(f.region_count ? f.regions[0].cells : 0, f.areas[0].piece_mm);
  };
  const uint32_t cells = found(1).first;
  EXPECT_EQ(found(cells), std::pair(cells, 1000u));
  EXPECT_EQ(found(cells + 1), std::pair(0u, 1000u)) << "dropped";
  EXPECT_EQ(found(2 * cells), std::pair(0u, 1000u)) << "half of the least";
  EXPECT_EQ(found(2 * cells + 1), std::pair(0u, 0u)) << "less than that";
}

TEST(Occupancy, HasAShareForEachRegionInLabelsOrder) {
  forEachArea([](const NadirOccupancy& area, const Grid<uint8_t>& mask, const auto& regions, const NadirFindings& f) {
    const std::vector<NadirShare> shares = recordsOf(f.shares, f.share_count);
    ASSERT_LE(area.first_share + area.share_count, f.share_count);
    std::vector<uint32_t> wanted, got;
    for (uint32_t label = 1; label <= regions.size(); ++label)
      if (!inMask(regions[label - 1], mask).empty()) wanted.push_back(label);
    for (uint32_t i = 0; i < area.share_count; ++i) got.push_back(shares[area.first_share + i].label);
    EXPECT_TRUE(same(wanted, got));
  });
}

TEST(Occupancy, SharesSayWhatLiesInTheArea) {
  forEachArea([](const NadirOccupancy& area, const Grid<uint8_t>& mask, const auto& regions, const NadirFindings& f) {
    const std::vector<NadirShare> shares = recordsOf(f.shares, f.share_count);
    for (uint32_t i = 0; i < area.share_count; ++i) {
      const NadirShare& share = shares[area.first_share + i];
      const Cells inside = inMask(regions[share.label - 1], mask);
      EXPECT_EQ(share.cells, inside.size());
      EXPECT_EQ(share.highest_mm, highestOf(inside));
      EXPECT_EQ(share.median_mm, medianOf(inside));
    }
  });
}

TEST(Occupancy, SharesAddUpToTheCoveredCells) {
  forEachArea([](const NadirOccupancy& area, const auto&, const auto&, const NadirFindings& f) {
    const std::vector<NadirShare> shares = recordsOf(f.shares, f.share_count);
    uint32_t sum = 0;
    for (uint32_t i = 0; i < area.share_count; ++i) sum += shares[area.first_share + i].cells;
    EXPECT_EQ(sum, area.covered_cells);
  });
}

TEST(Occupancy, SharesLieOneAreaAfterTheOther) {
  forEachCase(60, [](const Case&, const Road&, const NadirFindings& f) {
    uint32_t next = 0;
    for (const NadirOccupancy& area : recordsOf(f.areas, f.area_count)) {
      EXPECT_EQ(area.first_share, next);
      next += area.share_count;
    }
    EXPECT_EQ(f.share_count, next);
  });
}

TEST(Findings, RecordsCarryTheirSize) {
  lab::Random random(3);
  Grid<float> disparity(96, 60, 8.0f);
  for (uint32_t y = 20; y < 34; ++y) std::fill(disparity.row(y) + 40, disparity.row(y) + 56, 12.0f);
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()), threeAreas());
  const Result result = makeResult(road);
  const NadirFindings f = processed(road, frameOf(disparity), result);
  ASSERT_TRUE(f.region_count > 0 && f.share_count > 0);
  for (const NadirRegion& r : recordsOf(f.regions, f.region_count)) EXPECT_EQ(r.size, sizeof r);
  for (const NadirOccupancy& a : recordsOf(f.areas, f.area_count)) EXPECT_EQ(a.size, sizeof a);
  for (const NadirShare& s : recordsOf(f.shares, f.share_count)) EXPECT_EQ(s.size, sizeof s);
}

TEST(Findings, WithoutAreasThereAreNoShares) {
  lab::Random random(3);
  const Grid<float> disparity = anyBoxes(random);
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()));
  const Result result = makeResult(road);
  const NadirFindings f = processed(road, frameOf(disparity), result);
  EXPECT_EQ(f.area_count + f.share_count, 0u);
}

// ---- frame after frame ----

std::vector<Grid<float>> someFrames(uint32_t count) {
  std::vector<Grid<float>> frames;
  for (uint32_t seed = 1; seed <= count; ++seed) {
    lab::Random random(seed);
    frames.push_back(anyBoxes(random, 5 * seed));
  }
  return frames;
}

Road roadWithAll() {
  NadirSettings settings = defaultSettings(smallCamera());
  settings.fill_holes_m2 = 0.02;
  settings.min_area_m2 = 0.005;
  return makeRoad(smallCamera(), settings, threeAreas());
}

// Each in a road and a result of its own.
std::vector<std::string> findingsAlone(const std::vector<Grid<float>>& frames) {
  std::vector<std::string> all;
  for (const Grid<float>& frame : frames) {
    const Road road = roadWithAll();
    const Result result = makeResult(road);
    all.push_back(everythingIn(processed(road, frameOf(frame), result)));
  }
  return all;
}

TEST(FrameAfterFrame, AnyOrderGivesTheSameFindings) {
  const std::vector<Grid<float>> frames = someFrames(8);
  const std::vector<std::string> wanted = findingsAlone(frames);
  const Road road = roadWithAll();
  const Result result = makeResult(road);
  lab::Random random(1);
  for (int i = 0; i < 40; ++i) {
    const uint32_t which = random.below(8);
    EXPECT_EQ(everythingIn(processed(road, frameOf(frames[which]), result)), wanted[which]) << which << ", step " << i;
  }
}

TEST(FrameAfterFrame, AResultKeepsItsFrameWhileTheRoadGoesOn) {
  const std::vector<Grid<float>> frames = someFrames(4);
  const std::vector<std::string> wanted = findingsAlone(frames);
  const Road road = roadWithAll();
  std::vector<Result> results;
  for (const Grid<float>& frame : frames) {
    results.push_back(makeResult(road));
    processed(road, frameOf(frame), results.back());
  }
  for (size_t i = 0; i < frames.size(); ++i) EXPECT_EQ(everythingIn(read(results[i])), wanted[i]) << i;
}

TEST(FrameAfterFrame, RoadsSideBySideShareNothing) {
  const std::vector<Grid<float>> frames = someFrames(6);
  const std::vector<std::string> wanted = findingsAlone(frames);
  uint32_t wrong[2] = {0, 0};
  const auto work = [&](uint32_t worker) {
    const Road road = roadWithAll();
    const Result result = makeResult(road);
    for (uint32_t i = 0; i < 12; ++i) {
      const uint32_t which = worker ? 5 - i % 6 : i % 6;
      wrong[worker] += everythingIn(processed(road, frameOf(frames[which]), result)) != wanted[which];
    }
  };
  std::thread first(work, 0), second(work, 1);
  first.join();
  second.join();
  EXPECT_EQ(wrong[0] + wrong[1], 0u);
}

}  // namespace
}  // namespace nadir::test
