// Areas of interest: where they lie on the map, and which are refused.
#include <algorithm>

#include "lab/image.hpp"
#include "tests/api/ground/roads.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/polygons.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

using Corners = std::vector<int32_t>;

const Corners square = {-100, -100, 100, -100, 100, 100, -100, 100};

struct Refusal {
  NadirStatus status;
  NadirFault fault;
};

Refusal refusalOf(const NadirCamera& camera, const NadirSettings& settings, const std::vector<NadirArea>& areas) {
  NadirRoad* road = nullptr;
  Refusal refusal{NADIR_OK, marked<NadirFault>()};
  refusal.status =
      nadir_road_create(&camera, &settings, areas.data(), static_cast<uint32_t>(areas.size()), &road, &refusal.fault);
  EXPECT_EQ(road == nullptr, refusal.status != NADIR_OK);
  nadir_road_destroy(road);
  return refusal;
}

NadirStatus answerTo(const std::vector<NadirArea>& areas, const NadirCamera& camera = smallCamera()) {
  return refusalOf(camera, defaultSettings(camera), areas).status;
}

NadirPlacedArea placed(const Road& road, uint32_t index) {
  NadirPlacedArea area{};
  area.size = sizeof area;
  EXPECT_EQ(nadir_road_area(road.get(), index, &area), NADIR_OK);
  return area;
}

std::vector<Point_s32> pointsOf(const Corners& corners) {
  std::vector<Point_s32> points;
  for (size_t i = 0; i < corners.size(); i += 2) points.push_back({corners[i], corners[i + 1]});
  return points;
}

// The world x or y of the first cell's centre, as IP_Utils_CreateElevMaskFromImgPoly rounds it.
int32_t firstCentre(float corner, uint16_t cell) { return static_cast<int32_t>(corner) + cell / 2; }

Grid<uint8_t> insideOf(const Corners& corners, const StereoCtx& context) {
  const ElevMapParams& map = context.mapParams;
  PolygonS polygon(pointsOf(corners));
  Grid<uint8_t> mask(map.width, map.height);
  for (int32_t v = 0; v < map.height; ++v) {
    for (int32_t u = 0; u < map.width; ++u) {
      const Point_s32 centre{firstCentre(context.lowerLeft.x, map.cellSizeX) + u * map.cellSizeX,
                             firstCentre(context.lowerLeft.y, map.cellSizeY) + v * map.cellSizeY};
      mask.at(static_cast<uint32_t>(u), static_cast<uint32_t>(v)) =
          static_cast<uint8_t>(IP_Polygon_IsInside(polygon.get(), &centre));
    }
  }
  return mask;
}

Corners anyPolygon(lab::Random& random, int32_t reach) {
  Corners corners(2 * (3 + random.below(6)));
  for (int32_t& corner : corners) corner = random.between(-reach, reach);
  return corners;
}

// ---- on the ground ----

TEST(GroundAreas, HoldTheCellsWhoseCentresLieInside) {
  inRounds(60, [](lab::Random& random) {
    const Corners corners = anyPolygon(random, 500);
    const NadirCamera camera = crookedCamera();
    const Road plain = makeRoad(camera, defaultSettings(camera));
    const Grid<uint8_t> wanted = insideOf(corners, contextOf(plain));
    if (std::count(wanted.pixels.begin(), wanted.pixels.end(), 1) == 0) return;
    const Road road = makeRoad(camera, defaultSettings(camera), {areaOf(corners)});
    EXPECT_TRUE(same(wanted.pixels, gridOf<uint8_t>(placed(road, 0).mask).pixels));
  });
}

TEST(GroundAreas, TheirEdgeIsInside) {
  // The map's corner is (-320, -320): the centres of its first cells are (-300, -300), (-260, -300), ...
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()),
                             {areaOf({-300, -300, -220, -300, -220, -260, -300, -260})});
  EXPECT_EQ(placed(road, 0).cells, 6u);
}

TEST(GroundAreas, CountTheirCells) {
  inRounds(20, [](lab::Random& random) {
    Corners corners = square;
    for (int32_t& corner : corners) corner += random.between(-90, 90);
    const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()), {areaOf(corners)});
    const NadirPlacedArea area = placed(road, 0);
    const std::vector<uint8_t> mask = gridOf<uint8_t>(area.mask).pixels;
    EXPECT_EQ(area.cells, std::count(mask.begin(), mask.end(), 1));
  });
}

TEST(GroundAreas, KeepTheirCorners) {
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()), {areaOf(square)});
  const NadirPlacedArea area = placed(road, 0);
  ASSERT_EQ(area.corner_count, 4u);
  EXPECT_TRUE(same(square, Corners(area.ground_mm, area.ground_mm + 8)));
}

TEST(GroundAreas, MasksHaveTheMapsSize) {
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()), {areaOf(square)});
  const NadirPlane mask = placed(road, 0).mask;
  EXPECT_EQ(mask.width, 16u);
  EXPECT_EQ(mask.height, 14u);
}

TEST(GroundAreas, AreWholeOnTheMapUpToItsCorners) {
  const Road road = makeRoad(
      smallCamera(), defaultSettings(smallCamera()),
      {areaOf({-320, -320, 320, -320, 320, 240, -320, 240}), areaOf({-321, 0, 100, 0, 0, 100}),
       areaOf({-320, 0, 321, 0, 0, 100}), areaOf({-100, -321, 100, 0, 0, 100}), areaOf({-100, 0, 100, 0, 0, 241})});
  for (uint32_t i = 0; i < 5; ++i) EXPECT_EQ(placed(road, i).whole_on_map, i == 0 ? 1u : 0u) << i;
}

TEST(GroundAreas, AreWholeOnAMapFarAside) {
  NadirCamera camera = smallCamera();
  camera.map_offset_x_mm = 5000;
  const Road road = makeRoad(camera, defaultSettings(camera), {areaOf({4800, 0, 5200, 0, 5000, 200})});
  EXPECT_EQ(placed(road, 0).whole_on_map, 1u);
}

TEST(GroundAreas, AreCopied) {
  Corners corners = square;
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()), {areaOf(corners)});
  std::fill(corners.begin(), corners.end(), 7);
  const NadirPlacedArea area = placed(road, 0);
  EXPECT_TRUE(same(square, Corners(area.ground_mm, area.ground_mm + 8)));
}

TEST(GroundAreas, NothingIsReadBehindTheirCorners) {
  for (const Guard side : {Guard::behind, Guard::before}) {
    const Guarded<int32_t> corners(square, side);
    const NadirArea area{sizeof(NadirArea), NADIR_AREA_GROUND_MM, 4, 0, corners.data(), 0, 0};
    EXPECT_EQ(answerTo({area}), NADIR_OK);
  }
}

// ---- pixels ----

// What libnadir makes of the polygon over a picture in which all is as deep as the ground.
Grid<uint8_t> maskOfPixels(const Corners& corners, const StereoCtx& context, const NadirCamera& camera) {
  lab::Picture<uint16_t> depths(camera.width_px, camera.height_px, static_cast<uint16_t>(camera.height_mm));
  lab::Picture<uint8_t> mask(context.mapParams.width, context.mapParams.height);
  PolygonS polygon(pointsOf(corners));
  const Grid<uint16_t>& grid = depths.grid;
  const ImgC values = lab::imageOf(grid);
  EXPECT_EQ(IP_Utils_CreateElevMaskFromImgPoly(polygon.get(), &context, &values, mask), 1);
  return mask.grid;
}

// The road counts pixels from the centre of the first one, libnadir's mask of a polygon from its corner.
StereoCtx countedFromCorners(StereoCtx context) {
  context.intCalib.principalX += 0.5f;
  context.intCalib.principalY += 0.5f;
  return context;
}

TEST(PixelAreas, HoldWhatTheMaskOfAPolygonHolds) {
  const NadirCamera camera = crookedCamera();
  const StereoCtx context = countedFromCorners(contextOf(makeRoad(camera, defaultSettings(camera))));
  inRounds(60, [&](lab::Random& random) {
    Corners corners = anyPolygon(random, 30);
    for (size_t i = 0; i < corners.size(); ++i) corners[i] += i % 2 ? 30 : 48;
    const Grid<uint8_t> wanted = maskOfPixels(corners, context, camera);
    if (std::count(wanted.pixels.begin(), wanted.pixels.end(), 1) == 0) return;
    const Road road = makeRoad(camera, defaultSettings(camera), {areaOf(corners, NADIR_AREA_PIXELS)});
    EXPECT_TRUE(same(wanted.pixels, gridOf<uint8_t>(placed(road, 0).mask).pixels));
  });
}

TEST(PixelAreas, LieWhereTheirRaysMeetTheGround) {
  // A pixel shows 20 mm of the ground; the picture's middle lies at 47.5 and 29.5.
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()),
                             {areaOf({38, 20, 57, 20, 57, 39, 38, 39}, NADIR_AREA_PIXELS)});
  const NadirPlacedArea area = placed(road, 0);
  ASSERT_EQ(area.corner_count, 4u);
  // Whole millimetres are found as in the mask of a polygon: what is below 0 is rounded down and then one more.
  EXPECT_TRUE(same(Corners{-189, -189, 190, -189, 190, 190, -189, 190}, Corners(area.ground_mm, area.ground_mm + 8)));
}

TEST(PixelAreas, NeedACameraThatIsNotTooHigh) {
  NadirCamera camera = smallCamera();
  camera.cell_mm = 1000;
  const Corners corners = {44, 28, 50, 28, 47, 32};
  for (const double height : {65535.0, 65535.5, 65536.0}) {
    camera.height_mm = height;
    const NadirStatus wanted = height > 65535 ? NADIR_CAMERA_TOO_HIGH : NADIR_OK;
    EXPECT_EQ(answerTo({areaOf(corners, NADIR_AREA_PIXELS)}, camera), wanted) << height;
  }
}

TEST(PixelAreas, GroundAreasGoWithEveryHeight) {
  NadirCamera camera = smallCamera();
  camera.height_mm = 70000;
  EXPECT_EQ(answerTo({areaOf(square)}, camera), NADIR_OK);
}

TEST(PixelAreas, CornersAboveTheHorizonAreRefusedByNumber) {
  NadirCamera camera = smallCamera();
  camera.tilt_deg = -75;
  camera.map_offset_y_mm = 4000;
  const Corners fine = {40, 50, 56, 50, 48, 58}, high = {40, 50, 56, 50, 48, 0};
  const Refusal refusal =
      refusalOf(camera, defaultSettings(camera), {areaOf(fine, NADIR_AREA_PIXELS), areaOf(high, NADIR_AREA_PIXELS)});
  EXPECT_EQ(refusal.status, NADIR_CORNER_OFF_GROUND);
  EXPECT_EQ(refusal.fault.area, 1u);
  EXPECT_EQ(refusal.fault.corner, 2u);
}

// ---- what is refused ----

TEST(Areas, HaveAtLeastThreeCorners) {
  EXPECT_EQ(answerTo({areaOf({0, 0, 100, 0})}), NADIR_BAD_AREA);
  EXPECT_EQ(answerTo({areaOf({-100, -100, 100, -100, 100, 100})}), NADIR_OK);
}

TEST(Areas, HaveAtMostAHundredCorners) {
  Corners corners;
  for (int i = 0; i < 25; ++i) corners.insert(corners.end(), square.begin(), square.end());
  EXPECT_EQ(answerTo({areaOf(corners)}), NADIR_OK);
  corners.insert(corners.end(), {0, 0});
  EXPECT_EQ(answerTo({areaOf(corners)}), NADIR_BAD_AREA);
}

TEST(Areas, HaveOneOfTwoUnits) {
  for (const uint32_t unit : {2u, 0xFFFFFFFFu}) EXPECT_EQ(answerTo({areaOf(square, unit)}), NADIR_BAD_AREA) << unit;
}

TEST(Areas, ReachSoFarAndNoFarther) {
  for (const size_t number : {size_t{0}, size_t{1}, size_t{4}, size_t{5}}) {
    for (const int32_t sign : {-1, 1}) {
      Corners corners = square;
      corners[number] = sign * NADIR_AREA_REACH;
      const NadirStatus at = answerTo({areaOf(corners)});
      EXPECT_TRUE(at == NADIR_OK || at == NADIR_AREA_WITHOUT_CELLS) << at;
      corners[number] += sign;
      EXPECT_EQ(answerTo({areaOf(corners)}), NADIR_BAD_AREA) << number << ", " << sign;
    }
  }
}

TEST(Areas, TheFarthestNumbersAreRefused) {
  for (const int32_t far : {std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()}) {
    Corners corners = square;
    corners[3] = far;
    EXPECT_EQ(answerTo({areaOf(corners)}), NADIR_BAD_AREA) << far;
    EXPECT_EQ(answerTo({areaOf(corners, NADIR_AREA_PIXELS)}), NADIR_BAD_AREA) << far;
  }
}

TEST(Areas, AFarCornerIsToldByNumber) {
  Corners corners = square;
  corners[5] = NADIR_AREA_REACH + 1;
  const Refusal refusal = refusalOf(smallCamera(), defaultSettings(smallCamera()), {areaOf(square), areaOf(corners)});
  ASSERT_EQ(refusal.status, NADIR_BAD_AREA);
  EXPECT_EQ(refusal.fault.area, 1u);
  EXPECT_EQ(refusal.fault.corner, 2u);
}

TEST(Areas, WithoutACellAreRefusedByNumber) {
  const Refusal refusal = refusalOf(smallCamera(), defaultSettings(smallCamera()),
                                    {areaOf(square), areaOf({1, 1, 9, 1, 9, 9}), areaOf(square)});
  EXPECT_EQ(refusal.status, NADIR_AREA_WITHOUT_CELLS);
  EXPECT_EQ(refusal.fault.area, 1u);
}

TEST(Areas, NeedAMapThatEndsWithinReach) {
  NadirCamera camera = smallCamera();
  camera.map_offset_x_mm = NADIR_AREA_REACH - 319;
  EXPECT_EQ(answerTo({areaOf(square)}, camera), NADIR_MAP_OUT_OF_REACH);
  camera.map_offset_x_mm = 0;
  camera.map_offset_y_mm = -NADIR_AREA_REACH + 319;
  EXPECT_EQ(answerTo({areaOf(square)}, camera), NADIR_MAP_OUT_OF_REACH);
}

TEST(Areas, WithoutThemAMapMayLieAnywhere) {
  NadirCamera camera = smallCamera();
  camera.map_offset_x_mm = 2.0 * NADIR_AREA_REACH;
  EXPECT_EQ(answerTo({}, camera), NADIR_OK);
}

TEST(Areas, OfAnotherSizeAreRefused) {
  for (const uint32_t size : badSizes(sizeof(NadirArea))) {
    NadirArea area = areaOf(square);
    area.size = size;
    EXPECT_EQ(answerTo({area}), NADIR_BAD_RECORD) << size;
  }
}

TEST(Areas, WithoutCornersInMemoryAreRefused) {
  NadirArea area = areaOf(square);
  area.corners = nullptr;
  EXPECT_EQ(answerTo({area}), NADIR_NULL_POINTER);
}

TEST(Areas, AreLookedAtOnlyByARoadToTheEnd) {
  const NadirCamera camera = smallCamera();
  for (const uint32_t until : {uint32_t{NADIR_UNTIL_MATCH}, uint32_t{NADIR_UNTIL_MAP}})
    EXPECT_EQ(refusalOf(camera, settingsUntil(until), {areaOf({0, 0, 1, 1}, 99)}).status, NADIR_OK) << until;
}

// ---- reading them ----

TEST(RoadArea, ThereIsNoneBehindTheLast) {
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()), {areaOf(square)});
  for (const uint32_t index : {1u, 0xFFFFFFFFu}) {
    const NadirPlacedArea before = marked<NadirPlacedArea>();
    NadirPlacedArea area = before;
    EXPECT_EQ(nadir_road_area(road.get(), index, &area), NADIR_NOTHING_FOUND) << index;
    EXPECT_TRUE(sameBytes(before, area)) << index;
  }
}

TEST(RoadArea, RefusesARecordOfAnotherSizeUntouched) {
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()), {areaOf(square)});
  for (const uint32_t size : badSizes(sizeof(NadirPlacedArea))) {
    NadirPlacedArea area = marked<NadirPlacedArea>();
    area.size = size;
    const NadirPlacedArea before = area;
    EXPECT_EQ(nadir_road_area(road.get(), 0, &area), NADIR_BAD_RECORD) << size;
    EXPECT_TRUE(sameBytes(before, area)) << size;
  }
}

TEST(RoadArea, RefusesNullPointers) {
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()), {areaOf(square)});
  NadirPlacedArea area = marked<NadirPlacedArea>();
  EXPECT_EQ(nadir_road_area(nullptr, 0, &area), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_road_area(road.get(), 0, nullptr), NADIR_NULL_POINTER);
}

}  // namespace
}  // namespace nadir::test
