// The points and the map: the same as going point by point through libnadir's transforms.
#include <algorithm>

#include "lab/image.hpp"
#include "lab/textured_pair.hpp"
#include "tests/api/ground/roads.hpp"
#include "tests/models/segments.hpp"
#include "tests/support/floats.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

// Disparities from near the camera to beyond the ground; some are none, some lie at infinity or beyond.
Grid<float> anyDisparities(lab::Random& random, const NadirCamera& camera) {
  Grid<float> grid(camera.width_px, camera.height_px);
  const float shift = static_cast<float>(camera.column_shift_px);
  for (float& d : grid.pixels) {
    const float all[] = {noDisparity, -shift, -shift - 1, static_cast<float>(random.between(96, 300)) / 16.0f};
    d = all[std::min<uint32_t>(random.below(20), 3)];
  }
  return grid;
}

// ---- the model ----

struct Placed {
  NadirPoint point;
  bool inside;
  size_t cell;
};

std::vector<Placed> placedOf(const Grid<float>& disparity, const StereoCtx& context, double shift) {
  std::vector<Placed> all;
  for (uint32_t y = 0; y < disparity.height; ++y) {
    for (uint32_t x = 0; x < disparity.width; ++x) {
      const float d = disparity.at(x, y) + static_cast<float>(shift);
      const Point_f32 pixel{static_cast<float>(x), static_cast<float>(y)};
      Point3_f32 world{};
      if (!(d == d) || !ip_stereo_disp2world(&context, &pixel, &world, d)) continue;
      Point_f32 map{};
      ip_stereo_world2elev(&context, &world, &map);
      const bool inside =
          map.x >= 0 && map.y >= 0 && map.x < context.mapParams.width && map.y < context.mapParams.height;
      const size_t cell =
          inside ? static_cast<size_t>(map.y) * context.mapParams.width + static_cast<size_t>(map.x) : 0;
      const uint32_t named = inside ? static_cast<uint32_t>(cell) : NADIR_NO_CELL;
      all.push_back({{world.x, world.y, world.z, d, x, y, named, 0}, inside, cell});
    }
  }
  return all;
}

uint16_t storedHeight(float above) {
  const double rounded = std::floor(static_cast<double>(above) + 0.5);
  return static_cast<uint16_t>(std::min(65535.0, std::max(1.0, rounded)));
}

// The smallest height that so many percent of a cell's points do not exceed.
uint16_t heightOf(std::vector<float> heights, double percentile) {
  std::sort(heights.begin(), heights.end());
  const double rank = std::ceil(percentile / 100 * static_cast<double>(heights.size()));
  return storedHeight(heights[static_cast<size_t>(std::max(rank, 1.0)) - 1]);
}

struct Map {
  std::vector<uint32_t> counts;
  std::vector<uint16_t> heights;
  uint32_t points = 0, inside = 0, seen = 0;
};

Map mapOf(const std::vector<Placed>& placed, const StereoCtx& context, const NadirSettings& settings) {
  const size_t cells = size_t{context.mapParams.width} * context.mapParams.height;
  std::vector<std::vector<float>> byCell(cells);
  Map map{std::vector<uint32_t>(cells), std::vector<uint16_t>(cells)};
  map.points = static_cast<uint32_t>(placed.size());
  for (const Placed& p : placed) {
    if (!p.inside) continue;
    ++map.inside;
    byCell[p.cell].push_back(context.orientation.height - p.point.z_mm);
  }
  for (size_t i = 0; i < cells; ++i) {
    map.counts[i] = static_cast<uint32_t>(byCell[i].size());
    if (byCell[i].size() < settings.min_points) continue;
    ++map.seen;
    map.heights[i] = heightOf(byCell[i], settings.percentile);
  }
  return map;
}

struct Case {
  NadirCamera camera;
  NadirSettings settings;
  Grid<float> disparity;
};

Case anyCase(lab::Random& random) {
  NadirCamera camera = random.below(3) ? crookedCamera() : smallCamera();
  camera.tilt_deg = -random.between(0, 60);
  camera.pan_deg = random.between(-20, 20);
  camera.width_px = 30 + random.below(80);
  camera.height_px = 20 + random.below(50);
  camera.map_width_cells = 1 + random.below(30);
  camera.map_height_cells = 1 + random.below(30);
  NadirSettings settings = settingsUntil(NADIR_UNTIL_MAP);
  const double percentiles[] = {90, 50, 100, 25, 1e-9, 33.3, 99.9, 1 + random.below(100) / 2.0};
  settings.percentile = percentiles[random.below(8)];
  settings.min_points = 1 + random.below(3);
  return {camera, settings, anyDisparities(random, camera)};
}

template <class Check>
void forEachCase(uint64_t rounds, Check check) {
  inRounds(rounds, [&check](lab::Random& random) {
    const Case c = anyCase(random);
    const Road road = makeRoad(c.camera, c.settings);
    const Result result = makeResult(road);
    const NadirFindings findings = processed(road, frameOf(c.disparity), result);
    const StereoCtx context = contextOf(road);
    const std::vector<Placed> placed = placedOf(c.disparity, context, c.camera.column_shift_px);
    check(c, road, result, findings, placed, mapOf(placed, context, c.settings));
  });
}

// ---- the map ----

TEST(Map, HeightsAreThoseOfThePointsOneByOne) {
  forEachCase(150, [](const Case& c, const Road&, const Result&, const NadirFindings& f, const auto&, const Map& map) {
    EXPECT_TRUE(same(map.heights, gridOf<uint16_t>(f.heights).pixels)) << "percentile " << c.settings.percentile;
  });
}

TEST(Map, CountsAreThoseOfThePointsOneByOne) {
  forEachCase(60, [](const Case&, const Road&, const Result&, const NadirFindings& f, const auto&, const Map& map) {
    EXPECT_TRUE(same(map.counts, gridOf<uint32_t>(f.point_counts).pixels));
  });
}

TEST(Map, PointsAreCounted) {
  forEachCase(60, [](const Case&, const Road&, const Result&, const NadirFindings& f, const auto&, const Map& map) {
    EXPECT_EQ(f.points, map.points);
  });
}

TEST(Map, PointsOverItAreCounted) {
  forEachCase(60, [](const Case&, const Road&, const Result&, const NadirFindings& f, const auto&, const Map& map) {
    EXPECT_EQ(f.points_inside, map.inside);
  });
}

TEST(Map, SeenCellsAreCounted) {
  forEachCase(60, [](const Case&, const Road&, const Result&, const NadirFindings& f, const auto&, const Map& map) {
    EXPECT_EQ(f.seen_cells, map.seen);
  });
}

TEST(Map, HasTheCamerasSize) {
  forEachCase(10, [](const Case& c, const Road&, const Result&, const NadirFindings& f, const auto&, const Map&) {
    for (const NadirPlane& plane : {f.heights, f.point_counts}) {
      EXPECT_EQ(plane.width, c.camera.map_width_cells);
      EXPECT_EQ(plane.height, c.camera.map_height_cells);
    }
  });
}

// The one pixel over the picture's middle, from a depth.
uint16_t heightAt(double depth, const NadirCamera& camera = smallCamera()) {
  Grid<float> disparity(camera.width_px, camera.height_px, noDisparity);
  disparity.at(47, 29) = static_cast<float>(camera.baseline_mm * camera.focal_px / depth);
  const Road road = makeRoad(camera, settingsUntil(NADIR_UNTIL_MAP));
  const Result result = makeResult(road);
  const std::vector<uint16_t> heights = gridOf<uint16_t>(processed(road, frameOf(disparity), result).heights).pixels;
  return *std::max_element(heights.begin(), heights.end());
}

TEST(Map, WhatIsBelowTheGroundIsStoredAsOne) {
  for (const double depth : {1999.6, 2000.0, 2001.0, 2500.0, 20000.0}) EXPECT_EQ(heightAt(depth), 1) << depth;
}

TEST(Map, HeightsAreRoundedToTheNearest) {
  EXPECT_EQ(heightAt(1500.4), 500);
  EXPECT_EQ(heightAt(1499.6), 500);
  EXPECT_EQ(heightAt(1499.4), 501);
}

TEST(Map, WhatIsHigherThanWordsHoldIsStoredAsTheirLargest) {
  NadirCamera camera = smallCamera();
  camera.height_mm = 100000;
  EXPECT_EQ(heightAt(1000, camera), 65535);
}

// What was matched goes through the same model, 1/16 pixel by 1/16 pixel.
TEST(Map, MatchedDisparitiesGoPointByPointToo) {
  lab::Random random(4);
  const lab::TexturedPair pair = lab::shiftedRows(
      96, 60, 24, [](uint32_t y) { return 12 + y / 8; }, random);
  const Grid<uint16_t> left(96, 60, pair.first), right(96, 60, pair.reference);
  for (const uint32_t view : {uint32_t{NADIR_GRID_LEFT}, uint32_t{NADIR_GRID_RIGHT}}) {
    NadirSettings settings = settingsUntil(NADIR_UNTIL_MAP);
    settings.grid = view;
    const Road road = makeRoad(crookedCamera(), settings);
    const Result result = makeResult(road);
    const NadirFindings f = processed(road, frameOf(left, right), result);
    const Grid<float> disparity = lab::converted<float>(
        gridOf<uint16_t>(f.disparity), [](uint16_t v) { return v ? static_cast<float>(v) / 16.0f : noDisparity; });
    const StereoCtx context = contextOf(road);
    const Map map = mapOf(placedOf(disparity, context, 0.75), context, settings);
    ASSERT_GT(map.seen, 0u);
    EXPECT_TRUE(same(map.heights, gridOf<uint16_t>(f.heights).pixels)) << view;
  }
}

// The right camera's principal column lies column_shift_px to the right of the left one's.
TEST(Map, TheRightViewHasThePrincipalColumnOfTheRight) {
  NadirSettings settings = settingsUntil(NADIR_UNTIL_MAP);
  settings.grid = NADIR_GRID_RIGHT;
  EXPECT_FLOAT_EQ(contextOf(makeRoad(crookedCamera(), settings)).intCalib.principalX, 47.5f + 0.75f);
}

// ---- the points ----

std::vector<NadirPoint> pointsOf(const Road& road, const NadirFrame& frame, const Result& result) {
  size_t count = 0;
  EXPECT_EQ(nadir_road_points(road.get(), &frame, result.get(), nullptr, 0, &count), NADIR_OK);
  const Guarded<NadirPoint> points(count);
  EXPECT_EQ(nadir_road_points(road.get(), &frame, result.get(), points.data(), count, &count), NADIR_OK);
  return points.values();
}

TEST(Points, AreThoseOfTheTransformsToTheBit) {
  forEachCase(30, [](const Case& c, const Road& road, const Result& result, const NadirFindings&, const auto& placed,
                     const Map&) {
    const std::vector<NadirPoint> points = pointsOf(road, frameOf(c.disparity), result);
    ASSERT_EQ(points.size(), placed.size());
    for (size_t i = 0; i < points.size(); ++i)
      ASSERT_TRUE(sameBytes(points[i], placed[i].point)) << "point " << i << " of " << points.size();
  });
}

TEST(Points, AreAsManyAsTheFindingsSay) {
  forEachCase(10, [](const Case& c, const Road& road, const Result& result, const NadirFindings& f, const auto&,
                     const Map&) { EXPECT_EQ(pointsOf(road, frameOf(c.disparity), result).size(), f.points); });
}

class ListedPoints : public ::testing::Test {
 protected:
  ListedPoints()
      : disparity_(96, 60, 16.0f),
        road_(makeRoad(smallCamera(), settingsUntil(NADIR_UNTIL_MAP))),
        result_(makeResult(road_)),
        frame_(frameOf(disparity_)) {
    processed(road_, frame_, result_);
  }

  Grid<float> disparity_;
  Road road_;
  Result result_;
  NadirFrame frame_;
};

TEST_F(ListedPoints, BehindTheRoomNothingIsWritten) {
  const std::vector<NadirPoint> all = pointsOf(road_, frame_, result_);
  const Guarded<NadirPoint> room(17);
  size_t count = 0;
  ASSERT_EQ(nadir_road_points(road_.get(), &frame_, result_.get(), room.data(), 17, &count), NADIR_OK);
  EXPECT_TRUE(std::equal(room.begin(), room.end(), all.begin(), sameBytes<NadirPoint>));
}

TEST_F(ListedPoints, WithoutRoomForAllTheyAreAllCounted) {
  NadirPoint room[3];
  size_t count = 0;
  ASSERT_EQ(nadir_road_points(road_.get(), &frame_, result_.get(), room, 3, &count), NADIR_OK);
  EXPECT_EQ(count, 96u * 60u);
}

TEST_F(ListedPoints, MoreRoomThanNeededStaysUntouched) {
  const NadirPoint untouched = [] {
    NadirPoint p;
    std::memset(&p, 0x5A, sizeof p);
    return p;
  }();
  std::vector<NadirPoint> room(96 * 60 + 5, untouched);
  size_t count = 0;
  ASSERT_EQ(nadir_road_points(road_.get(), &frame_, result_.get(), room.data(), room.size(), &count), NADIR_OK);
  for (size_t i = count; i < room.size(); ++i) EXPECT_TRUE(sameBytes(room[i], untouched)) << i;
}

TEST_F(ListedPoints, ComeOfTheResultWhereTheFrameHasPictures) {
  lab::Random random(4);
  const lab::TexturedPair pair = lab::shiftedRows(
      96, 60, 24, [](uint32_t y) { return 12 + y / 8; }, random);
  const Grid<uint16_t> left(96, 60, pair.first), right(96, 60, pair.reference);
  const NadirFrame frame = frameOf(left, right);
  const Grid<uint16_t> matched = gridOf<uint16_t>(processed(road_, frame, result_).disparity);
  const std::vector<NadirPoint> points = pointsOf(road_, frame, result_);
  ASSERT_FALSE(points.empty());
  for (const NadirPoint& p : points) ASSERT_EQ(p.disparity_px, static_cast<float>(matched.at(p.column, p.row)) / 16);
}

TEST_F(ListedPoints, RefuseNullPointers) {
  NadirPoint room[3];
  size_t count = 99;
  EXPECT_EQ(nadir_road_points(nullptr, &frame_, result_.get(), room, 3, &count), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_road_points(road_.get(), nullptr, result_.get(), room, 3, &count), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_road_points(road_.get(), &frame_, nullptr, room, 3, &count), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_road_points(road_.get(), &frame_, result_.get(), nullptr, 3, &count), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_road_points(road_.get(), &frame_, result_.get(), room, 3, nullptr), NADIR_NULL_POINTER);
  EXPECT_EQ(count, 99u);
}

TEST_F(ListedPoints, RefuseFramesOfAnotherSize) {
  for (const uint32_t size : badSizes(sizeof(NadirFrame))) {
    NadirFrame frame = frame_;
    frame.size = size;
    size_t count = 99;
    EXPECT_EQ(nadir_road_points(road_.get(), &frame, result_.get(), nullptr, 0, &count), NADIR_BAD_RECORD) << size;
    EXPECT_EQ(count, 99u);
  }
}

TEST_F(ListedPoints, RefuseForeignResults) {
  NadirCamera camera = smallCamera();
  camera.width_px = 95;
  const Result other = makeResult(makeRoad(camera, settingsUntil(NADIR_UNTIL_MAP)));
  size_t count = 99;
  EXPECT_EQ(nadir_road_points(road_.get(), &frame_, other.get(), nullptr, 0, &count), NADIR_FOREIGN_RESULT);
  EXPECT_EQ(count, 99u);
}

// Whether its disparities were given or matched, the result knows.
TEST_F(ListedPoints, RefuseFramesThatAreNotTheResults) {
  lab::Random random(4);
  const lab::TexturedPair pair = lab::shiftedRows(
      96, 60, 24, [](uint32_t) { return 12; }, random);
  const Grid<uint16_t> left(96, 60, pair.first), right(96, 60, pair.reference);
  const NadirFrame pictures = frameOf(left, right);
  NadirFrame narrow = frame_;
  narrow.disparity_stride = 95 * sizeof(float);
  size_t count = 99;
  EXPECT_EQ(nadir_road_points(road_.get(), &pictures, result_.get(), nullptr, 0, &count), NADIR_BAD_FRAME);
  EXPECT_EQ(nadir_road_points(road_.get(), &narrow, result_.get(), nullptr, 0, &count), NADIR_BAD_FRAME);
  processed(road_, pictures, result_);
  EXPECT_EQ(nadir_road_points(road_.get(), &frame_, result_.get(), nullptr, 0, &count), NADIR_BAD_FRAME);
  EXPECT_EQ(count, 99u);
}

TEST_F(ListedPoints, ThereAreNoneWithoutAMap) {
  const Road road = makeRoad(smallCamera(), settingsUntil(NADIR_UNTIL_MATCH));
  const Result result = makeResult(road);
  processed(road, frame_, result);
  size_t count = 99;
  EXPECT_EQ(nadir_road_points(road.get(), &frame_, result.get(), nullptr, 0, &count), NADIR_NOTHING_FOUND);
  EXPECT_EQ(count, 99u);
}

TEST_F(ListedPoints, ThereAreNoneBeforeTheFirstFrame) {
  const Result fresh = makeResult(road_);
  lab::Random random(4);
  const lab::TexturedPair pair = lab::shiftedRows(
      96, 60, 24, [](uint32_t) { return 12; }, random);
  const Grid<uint16_t> left(96, 60, pair.first), right(96, 60, pair.reference);
  const NadirFrame frame = frameOf(left, right);
  size_t count = 99;
  EXPECT_EQ(nadir_road_points(road_.get(), &frame, fresh.get(), nullptr, 0, &count), NADIR_NOTHING_FOUND);
  EXPECT_EQ(count, 99u);
}

// ---- holes ----

// Patches of unseen cells; they touch along a side or at a corner.
std::vector<uint32_t> patchesOf(const Grid<uint16_t>& map) {
  model::Members unseen;
  for (const uint16_t height : map.pixels) unseen.push_back(height == 0);
  return model::spread(map.width, map.height, unseen, model::Touching::corners, [](size_t, size_t) { return true; });
}

Grid<uint16_t> filledMap(Grid<uint16_t> map, double largest, double cell) {
  const std::vector<uint32_t> patches = patchesOf(map);
  lab::Picture<uint16_t> in(map), out(map);
  EXPECT_EQ(IP_PullPush(in, out), 1);
  for (size_t i = 0; i < map.pixels.size(); ++i) {
    const auto cells = std::count(patches.begin(), patches.end(), patches[i]);
    if (patches[i] && static_cast<double>(cells) * cell * cell / 1e6 <= largest) map.pixels[i] = out.grid.pixels[i];
  }
  return map;
}

struct WithHoles {
  Grid<uint16_t> open, filled;
  NadirFindings findings;  // its pointers lead nowhere any more
};

WithHoles withHoles(const NadirCamera& camera, const Grid<float>& disparity, double fill) {
  NadirSettings settings = settingsUntil(NADIR_UNTIL_MAP);
  const Road plain = makeRoad(camera, settings);
  const Result open = makeResult(plain);
  WithHoles out{gridOf<uint16_t>(processed(plain, frameOf(disparity), open).heights), {}, {}};
  settings.fill_holes_m2 = fill;
  const Road road = makeRoad(camera, settings);
  const Result result = makeResult(road);
  out.findings = processed(road, frameOf(disparity), result);
  out.filled = gridOf<uint16_t>(out.findings.heights);
  return out;
}

template <class Check>
void forEachSparseMap(Check check) {
  inRounds(60, [&check](lab::Random& random) {
    NadirCamera camera = crookedCamera();
    camera.map_width_cells = 2 + random.below(20);
    camera.map_height_cells = 2 + random.below(20);
    Grid<float> disparity(96, 60);
    const uint32_t missing = 1 + random.below(9);
    for (float& d : disparity.pixels)
      d = random.below(10) < missing ? noDisparity : static_cast<float>(random.between(110, 160)) / 16.0f;
    const double cell = 0.0016, sizes[] = {cell * 0.99, cell, cell * 2, cell * 5, 1e6};
    const double fill = sizes[random.below(5)];
    check(withHoles(camera, disparity, fill), fill);
  });
}

TEST(Holes, AreFilledFromAroundThemUpToTheirLargestArea) {
  forEachSparseMap([](const WithHoles& maps, double fill) {
    EXPECT_TRUE(same(filledMap(maps.open, fill, 40).pixels, maps.filled.pixels)) << fill << " m2";
  });
}

TEST(Holes, FilledCellsAreCounted) {
  forEachSparseMap([](const WithHoles& maps, double) {
    uint32_t filled = 0;
    for (size_t i = 0; i < maps.open.pixels.size(); ++i) filled += !maps.open.pixels[i] && maps.filled.pixels[i];
    EXPECT_EQ(maps.findings.filled_cells, filled);
  });
}

TEST(Holes, FilledCellsWereNotSeen) {
  forEachSparseMap([](const WithHoles& maps, double) {
    const auto none = std::count(maps.open.pixels.begin(), maps.open.pixels.end(), 0);
    EXPECT_EQ(maps.findings.seen_cells, maps.open.pixels.size() - static_cast<size_t>(none));
  });
}

TEST(Holes, AMapWithoutAPointStaysUnseen) {
  const Grid<float> disparity(96, 60, noDisparity);
  const WithHoles maps = withHoles(smallCamera(), disparity, 1e6);
  EXPECT_EQ(maps.findings.filled_cells, 0u);
  EXPECT_EQ(*std::max_element(maps.filled.pixels.begin(), maps.filled.pixels.end()), 0);
}

}  // namespace
}  // namespace nadir::test
