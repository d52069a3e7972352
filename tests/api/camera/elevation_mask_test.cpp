// The cells of a map under a polygon that was drawn in the picture.
#include <gtest/gtest.h>
#include <nadir/camera.h>
#include <nadir/image.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "tests/models/camera.hpp"
#include "tests/models/geometry.hpp"
#include "tests/support/cameras.hpp"
#include "tests/support/floats.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/polygons.hpp"

namespace nadir::test {
namespace {

using Shape = std::vector<Point_s32>;
using Bytes = std::vector<uint8_t>;

constexpr uint8_t untouchedCell = 0xA5;

// 16-bit values and the size of their picture.
struct Values {
  uint16_t width, height;
  std::vector<uint16_t> pixels;
};

Values constant(uint16_t width, uint16_t height, uint16_t value) {
  return {width, height, std::vector<uint16_t>(size_t{width} * height, value)};
}

StereoCtx context(const IntCalibParams& params, const Orientation& orientation, const ElevMapParams& map) {
  StereoCtx ctx;
  EXPECT_EQ(ip_stereo_init(&ctx, &params, &orientation, &map), 1u);
  return ctx;
}

// One pixel is one millimetre: straight down from a height of 1 at a focal length of 1, the principal point in the
// centre of pixel (0, 0). With value 1 a vertex keeps its coordinates, but for the rounding of negative ones, which
// become one more. The map has cells of 1 mm, the first one at (-half, -half).
StereoCtx plainContext(uint16_t size) { return context({0, 256, 8, 8}, {1, 0, 0}, {size, size, 1, 1}); }

struct Result {
  int32_t status;
  Bytes mask;
};

Result createMask(const Shape& polygon, const StereoCtx& ctx, const Values& values) {
  GuardedPolygonS guardedPolygon(polygon);
  const Guarded<uint16_t> pixels(values.pixels);
  const size_t cells = size_t{ctx.mapParams.width} * ctx.mapParams.height;
  const Guarded<uint8_t> bytes(Bytes(cells, untouchedCell));
  ImgC image;
  Img mask;
  ImgC_Init(&image, values.width, values.height, IMG_TYPE_U16, pixels.data());
  Img_Init(&mask, ctx.mapParams.width, ctx.mapParams.height, IMG_TYPE_U8, bytes.data());
  const int32_t status = IP_Utils_CreateElevMaskFromImgPoly(guardedPolygon.get(), &ctx, &image, &mask);
  return {status, bytes.values()};
}

Bytes untouchedMask(const StereoCtx& ctx) {
  return Bytes(size_t{ctx.mapParams.width} * ctx.mapParams.height, untouchedCell);
}

// ---- the model: every cell by its definition ----

std::vector<uint16_t> samplesOf(const Shape& polygon, const Values& values) {
  std::vector<uint16_t> samples;
  for (Point_s32 v : polygon) {
    if (v.x < 0 || v.x >= values.width || v.y < 0 || v.y >= values.height) continue;
    const uint16_t value = values.pixels[static_cast<size_t>(v.x + v.y * values.width)];
    if (value) samples.push_back(value);
  }
  if (!samples.empty()) return samples;
  std::vector<uint16_t> buffer(65536);
  size_t count = 0;
  for (uint16_t value : values.pixels) {
    if (value) buffer[count++ % 65536] = value;
  }
  buffer.resize(count % 65536);
  return buffer;
}

// Rounded down, except that negative coordinates end up one higher.
int32_t wholeMillimetres(float w) { return static_cast<int32_t>(std::trunc(double{std::floor(w)} + 0.5)); }

Shape projected(const Shape& polygon, const StereoCtx& ctx, float h) {
  Shape out;
  for (Point_s32 v : polygon) {
    const Point_f32 centre = {static_cast<float>(v.x) + 0.5f, static_cast<float>(v.y) + 0.5f};
    const Point3_f32 w = model::img2world(centre, ctx.extCalib, ctx.intCalib, h);
    out.push_back({wholeMillimetres(w.x), wholeMillimetres(w.y)});
  }
  return out;
}

Result expectedMask(const Shape& polygon, const StereoCtx& ctx, const Values& values) {
  std::vector<uint16_t> samples = samplesOf(polygon, values);
  if (samples.empty()) return {0, untouchedMask(ctx)};
  std::sort(samples.begin(), samples.end());
  const Shape world = projected(polygon, ctx, samples[(samples.size() - 1) / 2]);
  const ElevMapParams& map = ctx.mapParams;
  const int32_t x0 = static_cast<int32_t>(ctx.lowerLeft.x) + (map.cellSizeX >> 1);
  const int32_t y0 = static_cast<int32_t>(ctx.lowerLeft.y) + (map.cellSizeY >> 1);
  Result out = {1, {}};
  for (int32_t r = 0; r < map.height; r++) {
    for (int32_t c = 0; c < map.width; c++) {
      const Point_s32 centre = {(Wrap(c) * map.cellSizeX + x0).value(), (Wrap(r) * map.cellSizeY + y0).value()};
      out.mask.push_back(static_cast<uint8_t>(model::isInsideContour(world, centre, 1)));
    }
  }
  return out;
}

std::string text(const Shape& shape) {
  std::string out;
  for (Point_s32 p : shape) out += "(" + std::to_string(p.x) + "," + std::to_string(p.y) + ") ";
  return out;
}

// The mask of a plain context as rows of text.
std::vector<std::string> rows(const Result& result, size_t width) {
  std::vector<std::string> out;
  for (size_t i = 0; i < result.mask.size(); i += width) {
    out.emplace_back();
    for (size_t c = 0; c < width; c++) out.back() += result.mask[i + c] == 1 ? '#' : result.mask[i + c] ? '?' : '.';
  }
  return out;
}

using Rows = std::vector<std::string>;

// ---- which cells are marked ----

TEST(ElevationMask, MarksTheCellsInsideAndOnTheBoundary) {
  const Result r = createMask({{0, 0}, {2, 0}, {2, 1}, {0, 1}}, plainContext(6), constant(1, 1, 1));
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(rows(r, 6), (Rows{"......", "......", "......", "...###", "...###", "......"}));
}

TEST(ElevationMask, HasTheSmallestWorldYInItsFirstRow) {
  const Result r = createMask({{0, -3}, {2, -3}, {1, -1}}, plainContext(6), constant(1, 1, 1));
  EXPECT_EQ(rows(r, 6), (Rows{"......", "...###", "....#.", "....#.", "......", "......"}));
}

TEST(ElevationMask, RoundsNegativeCoordinatesToOneMoreThanTheirFloor) {
  // Every vertex is a whole number: -3 becomes -2, and -1 becomes 0.
  const Result r = createMask({{-3, -1}, {1, -1}, {1, 1}, {-3, 1}}, plainContext(8), constant(1, 1, 1));
  EXPECT_EQ(rows(r, 8),
            (Rows{"........", "........", "........", "........", "..####..", "..####..", "........", "........"}));
}

// The columns that a flat polygon from x = left to x = right marks in a map from -8 to 7.
std::string columnsFrom(int32_t left16, int32_t right16) {
  // A principal point 1/16 pixel off moves every vertex by 1/16 mm; a triangle of three collinear vertices in pixel
  // row 0 is a segment.
  const int32_t pixelLeft = left16 >> 4, pixelRight = right16 >> 4, shift = left16 & 15;
  EXPECT_EQ(shift, right16 & 15);
  StereoCtx ctx = context({0, 256, 8 - shift, 8}, {1, 0, 0}, {16, 16, 1, 1});
  ctx.lowerLeft = {-8, -8};
  const Result r = createMask({{pixelLeft, 0}, {pixelRight, 0}, {pixelLeft, 0}}, ctx, constant(1, 1, 1));
  return rows(r, 16)[8];
}

TEST(ElevationMask, RoundsEachVertexToWholeMillimetres) {
  EXPECT_EQ(columnsFrom(-3, 45), "........###.....");    // -0.1875 becomes 0, 2.8125 becomes 2
  EXPECT_EQ(columnsFrom(-19, 61), ".......#####....");   // -1.1875 becomes -1, 3.8125 becomes 3
  EXPECT_EQ(columnsFrom(-2, 62), "........####....");    // -0.125 becomes 0, 3.875 becomes 3
  EXPECT_EQ(columnsFrom(-16, 0), "........#.......");    // -1 becomes 0
  EXPECT_EQ(columnsFrom(-59, -11), ".....####.......");  // -3.6875 becomes -3, -0.6875 becomes 0
}

TEST(ElevationMask, TakesTheCentreOfACellRoundedDown) {
  // Cells of 5 and 3 mm have their centres 2 and 1 mm in.
  StereoCtx ctx = context({0, 256, 8, 8}, {1, 0, 0}, {4, 4, 5, 3});
  ctx.lowerLeft = {0, 0};
  EXPECT_EQ(rows(createMask({{7, 4}}, ctx, constant(1, 1, 1)), 4), (Rows{"....", ".#..", "....", "...."}));
  EXPECT_EQ(rows(createMask({{8, 4}}, ctx, constant(1, 1, 1)), 4), (Rows{"....", "....", "....", "...."}));
  EXPECT_EQ(rows(createMask({{7, 5}}, ctx, constant(1, 1, 1)), 4), (Rows{"....", "....", "....", "...."}));
}

TEST(ElevationMask, TruncatesTheMapsCornerTowardsZero) {
  StereoCtx ctx = plainContext(6);
  ctx.lowerLeft = {-3.75f, -2.5f};
  EXPECT_EQ(rows(createMask({{0, 0}}, ctx, constant(1, 1, 1)), 6),
            (Rows{"......", "......", "...#..", "......", "......", "......"}));
  ctx.lowerLeft = {-0.75f, 0.75f};
  EXPECT_EQ(rows(createMask({{0, 0}}, ctx, constant(1, 1, 1)), 6),
            (Rows{"#.....", "......", "......", "......", "......", "......"}));
}

TEST(ElevationMask, OfCollinearVerticesIsTheSegment) {
  const Result r = createMask({{0, 0}, {2, 2}, {1, 1}}, plainContext(6), constant(1, 1, 1));
  EXPECT_EQ(rows(r, 6), (Rows{"......", "......", "......", "...#..", "....#.", ".....#"}));
}

TEST(ElevationMask, OfNoVerticesIsEmpty) {
  const Result r = createMask({}, plainContext(6), constant(1, 1, 1));
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.mask, Bytes(36, 0));
}

TEST(ElevationMask, KeepsWhatIsWoundTwice) {
  const Result r =
      createMask({{0, 0}, {2, 0}, {2, 2}, {0, 2}, {0, 0}, {2, 0}, {2, 2}, {0, 2}}, plainContext(6), constant(1, 1, 1));
  EXPECT_EQ(rows(r, 6), (Rows{"......", "......", "......", "...###", "...###", "...###"}));
}

TEST(ElevationMask, ClearsCellsThatWereSet) {
  const Result r = createMask({{100, 100}, {120, 100}, {100, 120}}, plainContext(6), constant(1, 1, 1));
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.mask, Bytes(36, 0));
}

TEST(ElevationMask, OfAMapOfOneCell) {
  EXPECT_EQ(createMask({{-3, -3}, {3, -3}, {3, 3}, {-3, 3}}, plainContext(1), constant(1, 1, 1)).mask, Bytes{1});
  EXPECT_EQ(createMask({{1, 1}, {3, 1}, {3, 3}, {1, 3}}, plainContext(1), constant(1, 1, 1)).mask, Bytes{0});
}

TEST(ElevationMask, OfAMapWithoutCellsSucceeds) {
  EXPECT_EQ(createMask({{0, 0}, {2, 0}, {2, 1}}, plainContext(0), constant(1, 1, 1)).status, 1);
}

// ---- the height ----

// At value h the vertices of this segment are h times as far apart: as many cells are marked.
size_t heightSeen(const Shape& polygon, const Values& values) {
  StereoCtx ctx = context({0, 256, 8, 8}, {1, 0, 0}, {200, 1, 1, 1});
  ctx.lowerLeft = {0, 0};
  const Result r = createMask(polygon, ctx, values);
  EXPECT_EQ(r.status, 1);
  return static_cast<size_t>(std::count(r.mask.begin(), r.mask.end(), 1)) - 1;
}

const Shape unitSegment = {{0, 0}, {1, 0}};

TEST(ElevationMask, TakesTheLowerMiddleOfTheVerticesValues) {
  EXPECT_EQ(heightSeen(unitSegment, {2, 1, {30, 90}}), 30u);
  EXPECT_EQ(heightSeen({{0, 0}, {1, 0}, {0, 0}}, {2, 1, {60, 20}}), 60u);
}

TEST(ElevationMask, CountsRepeatedVerticesEachTime) {
  EXPECT_EQ(heightSeen({{0, 0}, {1, 0}, {1, 0}, {0, 0}, {1, 0}}, {2, 1, {30, 90}}), 90u);
}

TEST(ElevationMask, LeavesOutVerticesWithoutAValue) { EXPECT_EQ(heightSeen(unitSegment, {2, 1, {0, 90}}), 90u); }

TEST(ElevationMask, LooksAtNoOtherPixelWhereAVertexHasAValue) {
  EXPECT_EQ(heightSeen(unitSegment, {4, 1, {0, 90, 7, 7}}), 90u);
}

TEST(ElevationMask, LeavesOutVerticesOutsideTheImageButProjectsThem) {
  EXPECT_EQ(heightSeen({{0, 0}, {2, 0}}, {2, 1, {25, 99}}), 50u);  // two pixels at 25
  // A column too far is not the next row's first pixel, nor is a row too far anything.
  EXPECT_EQ(heightSeen({{0, 0}, {2, 0}}, {2, 2, {20, 10, 10, 10}}), 40u);
  EXPECT_EQ(heightSeen({{0, 0}, {1, 0}, {-1, 1}, {0, 2}, {0, -1}}, {2, 2, {20, 20, 5, 5}}), 20u);
}

TEST(ElevationMask, ReadsThePixelsOfTheirRow) {
  // Vertices (0, 1) and (0, 2) see 70, and all of it lies in rows below the map's only one but for the first.
  const Shape polygon = {{0, 0}, {1, 0}, {0, 1}, {1, 2}};
  Values values = constant(2, 3, 0);
  values.pixels[2] = 70;
  EXPECT_EQ(heightSeen(polygon, values), 70u);
  values.pixels[2] = 0;
  values.pixels[5] = 80;
  EXPECT_EQ(heightSeen(polygon, values), 80u);
}

TEST(ElevationMask, TakesTheMedianOfTheWholeImageWhereNoVertexHasAValue) {
  EXPECT_EQ(heightSeen(unitSegment, {3, 2, {0, 0, 90, 40, 10, 0}}), 40u);
  EXPECT_EQ(heightSeen({{0, 0}, {1, 0}, {-1, 0}}, {3, 2, {0, 0, 90, 40, 70, 20}}), 40u);
}

TEST(ElevationMask, TakesValuesWithoutASign) {
  // At 40000 the segment leaves the map: all 200 cells are marked. A negative height would mark the first alone.
  EXPECT_EQ(heightSeen(unitSegment, {2, 1, {40000, 40000}}), 199u);
}

TEST(ElevationMask, FindsPixelsByTheDescriptorsBytesPerPixel) {
  // Each pixel is a 16-bit value and two bytes of something else.
  uint16_t pixels[4] = {11, 500, 60, 500};
  GuardedPolygonS polygon(Shape{{0, 0}, {1, 0}, {1, 0}});
  StereoCtx ctx = context({0, 256, 8, 8}, {1, 0, 0}, {200, 1, 1, 1});
  ctx.lowerLeft = {0, 0};
  const ImgC values = {2, 1, 4, IMG_TYPE_U16, pixels};
  Bytes bytes(200, untouchedCell);
  Img mask;
  Img_Init(&mask, 200, 1, IMG_TYPE_U8, bytes.data());
  ASSERT_EQ(IP_Utils_CreateElevMaskFromImgPoly(polygon.get(), &ctx, &values, &mask), 1);
  EXPECT_EQ(std::count(bytes.begin(), bytes.end(), 1), 61);
}

// A picture of 2x2 pixels of four bytes, of which one 16-bit word is not 0, under a polygon beside it.
int32_t statusWithWord(size_t word, uint16_t value) {
  uint16_t words[8] = {};
  words[word] = value;
  GuardedPolygonS polygon(Shape{{-1, 0}, {-1, 5}, {-9, 5}});
  const StereoCtx ctx = plainContext(6);
  const ImgC values = {2, 2, 4, IMG_TYPE_U32, words};
  Bytes bytes(36, untouchedCell);
  Img mask;
  Img_Init(&mask, 6, 6, IMG_TYPE_U8, bytes.data());
  return IP_Utils_CreateElevMaskFromImgPoly(polygon.get(), &ctx, &values, &mask);
}

TEST(ElevationMask, OfTheWholeImageReadsTheFirst16BitWordsOfEachRow) {
  for (const size_t read : {0, 1, 4, 5}) EXPECT_EQ(statusWithWord(read, 700), 1) << read;
  for (const size_t passedOver : {2, 3, 6, 7}) EXPECT_EQ(statusWithWord(passedOver, 900), 0) << passedOver;
}

// ---- no height ----

void expectNoHeight(const Shape& polygon, const Values& values) {
  const StereoCtx ctx = plainContext(6);
  const Result r = createMask(polygon, ctx, values);
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(untouchedMask(ctx), r.mask);
}

TEST(ElevationMask, OfAnImageWithoutValuesIsRefused) { expectNoHeight(unitSegment, constant(4, 4, 0)); }

TEST(ElevationMask, OfAnImageWithoutPixelsIsRefused) {
  expectNoHeight(unitSegment, constant(4, 0, 0));
  expectNoHeight(unitSegment, constant(0, 4, 0));
}

const Shape outside = {{-1, 0}, {-1, 5}, {-9, 5}};

TEST(ElevationMask, Of65536SamplesIsRefusedAsOfNone) { expectNoHeight(outside, constant(256, 256, 1)); }

TEST(ElevationMask, OfTwice65536SamplesIsRefusedAsOfNone) { expectNoHeight(outside, constant(256, 512, 1)); }

TEST(ElevationMask, CountsSamplesNotPixelsTo65536) {
  Values values = constant(256, 257, 1);
  std::fill(values.pixels.end() - 256, values.pixels.end(), uint16_t{0});
  expectNoHeight(outside, values);
}

TEST(ElevationMask, Of65535SamplesUsesThemAll) {
  // One more of 30 than of 20, the first two pixels without a value.
  Values values = constant(65535, 2, 0);
  std::fill(values.pixels.begin() + 10, values.pixels.begin() + 10 + 32767, uint16_t{20});
  std::fill(values.pixels.begin() + 10 + 32767, values.pixels.begin() + 10 + 65535, uint16_t{30});
  EXPECT_EQ(heightSeen(unitSegment, values), 30u);
}

TEST(ElevationMask, OfMoreThan65536SamplesUsesTheLastOnesThatOverwroteTheFirst) {
  // 65536 values of 20, then 30, 40, 50: the median is that of three.
  Values values = constant(65535, 2, 0);
  std::fill(values.pixels.begin() + 10, values.pixels.begin() + 10 + 65536, uint16_t{20});
  values.pixels[10 + 65536] = 50;
  values.pixels[10 + 65537] = 30;
  values.pixels[10 + 65538] = 40;
  EXPECT_EQ(heightSeen(unitSegment, values), 40u);
}

TEST(ElevationMask, Of65537SamplesUsesTheLastAlone) {
  Values values = constant(65535, 2, 0);
  std::fill(values.pixels.begin() + 10, values.pixels.begin() + 10 + 65536, uint16_t{20});
  values.pixels[10 + 65536] = 50;
  EXPECT_EQ(heightSeen(unitSegment, values), 50u);
}

// ---- arguments ----

class ElevationMaskArguments : public testing::Test {
 protected:
  ElevationMaskArguments() {
    ImgC_Init(&values, 1, 1, IMG_TYPE_U16, &value);
    Img_Init(&mask, 6, 6, IMG_TYPE_U8, bytes.data());
  }
  int32_t create() { return IP_Utils_CreateElevMaskFromImgPoly(polygon.get(), &ctx, &values, &mask); }
  void expectMaskUntouched() { EXPECT_EQ(bytes, Bytes(200, untouchedCell)); }

  StereoCtx ctx = plainContext(6);
  PolygonS polygon = PolygonS(Shape{{0, 0}, {2, 0}, {2, 2}});
  uint16_t value = 1;
  Bytes bytes = Bytes(200, untouchedCell);
  ImgC values;
  Img mask;
};

TEST_F(ElevationMaskArguments, OfTheFixtureAreGood) {
  EXPECT_EQ(create(), 1);
  EXPECT_EQ(std::count(bytes.begin(), bytes.end(), 1), 6);
}

TEST_F(ElevationMaskArguments, AMaskOfAnotherTypeIsLeftButStillASuccess) {
  for (uint32_t type : {uint32_t{IMG_TYPE_U16}, uint32_t{IMG_TYPE_S8}, 3u, 0u}) {
    Img_Init(&mask, 6, 6, type, bytes.data());
    EXPECT_EQ(create(), 1) << type;
    expectMaskUntouched();
  }
}

TEST_F(ElevationMaskArguments, AMaskOfAnotherSizeIsLeftButStillASuccess) {
  for (auto [width, height] : {std::pair<uint32_t, uint32_t>{7, 6}, {6, 7}, {5, 6}, {6, 5}, {4, 9}}) {
    Img_Init(&mask, width, height, IMG_TYPE_U8, bytes.data());
    EXPECT_EQ(create(), 1) << width << " x " << height;
    expectMaskUntouched();
  }
}

TEST_F(ElevationMaskArguments, AWrongMaskDoesNotHideThatThereIsNoValue) {
  value = 0;
  Img_Init(&mask, 7, 6, IMG_TYPE_U8, bytes.data());
  EXPECT_EQ(create(), 0);
}

TEST_F(ElevationMaskArguments, NullPointersAreRefused) {
  EXPECT_EQ(IP_Utils_CreateElevMaskFromImgPoly(nullptr, &ctx, &values, &mask), 0);
  EXPECT_EQ(IP_Utils_CreateElevMaskFromImgPoly(polygon.get(), nullptr, &values, &mask), 0);
  EXPECT_EQ(IP_Utils_CreateElevMaskFromImgPoly(polygon.get(), &ctx, nullptr, &mask), 0);
  EXPECT_EQ(IP_Utils_CreateElevMaskFromImgPoly(polygon.get(), &ctx, &values, nullptr), 0);
  expectMaskUntouched();
}

TEST_F(ElevationMaskArguments, ValuesOfOneByteAreRefused) {
  ImgC_Init(&values, 1, 1, IMG_TYPE_U8, &value);
  EXPECT_EQ(create(), 0);
  expectMaskUntouched();
}

TEST_F(ElevationMaskArguments, AMaskWithoutMemoryIsRefused) {
  mask.data = nullptr;
  EXPECT_EQ(create(), 0);
}

TEST_F(ElevationMaskArguments, MoreThanAHundredVerticesAreRefusedUnread) {
  // Only a hundred are there.
  for (uint32_t count : {101u, 65536u, 0x80000001u, 0xFFFFFFFFu}) {
    GuardedPolygonS tooMany(Shape(100, {1, 1}), count);
    EXPECT_EQ(IP_Utils_CreateElevMaskFromImgPoly(tooMany.get(), &ctx, &values, &mask), 0) << count;
    expectMaskUntouched();
  }
}

TEST_F(ElevationMaskArguments, AHundredVerticesAreTaken) {
  Shape circle;
  for (int k = 0; k < 100; k++) {
    const double angle = 6.283185307179586 * k / 100;
    circle.push_back({static_cast<int32_t>(40 * std::cos(angle)), static_cast<int32_t>(40 * std::sin(angle))});
  }
  const StereoCtx wide = plainContext(100);
  EXPECT_EQ(createMask(circle, wide, constant(1, 1, 1)).mask, expectedMask(circle, wide, constant(1, 1, 1)).mask);
}

TEST_F(ElevationMaskArguments, InputsStayAsTheyWere) {
  const StereoCtx before = ctx;
  const auto vertices = polygon.slots();
  create();
  EXPECT_EQ(std::memcmp(&before, &ctx, sizeof ctx), 0);
  EXPECT_EQ(polygon.slots(), vertices);
  EXPECT_EQ(value, 1);
}

// ---- everything together ----

void expectDefinition(const Shape& polygon, const StereoCtx& ctx, const Values& values) {
  const Result wanted = expectedMask(polygon, ctx, values), got = createMask(polygon, ctx, values);
  ASSERT_EQ(got.status, wanted.status) << text(polygon);
  ASSERT_TRUE(wanted.mask == got.mask) << text(polygon) << " on " << ctx.mapParams.width << " x "
                                       << ctx.mapParams.height << " cells";
}

ElevMapParams anyMap(lab::Random& random, uint32_t side, uint32_t cell) {
  return {static_cast<uint16_t>(1 + random.below(side)), static_cast<uint16_t>(1 + random.below(side)),
          static_cast<uint16_t>(1 + random.below(cell)), static_cast<uint16_t>(1 + random.below(cell))};
}

TEST(ElevationMaskDefinition, HoldsForPlainPolygonsOfEveryKind) {
  lab::Random random(110);
  for (int round = 0; round < 400; round++) {
    Shape polygon(random.below(10));
    for (Point_s32& v : polygon) v = {random.between(-8, 8), random.between(-8, 8)};
    expectDefinition(polygon, plainContext(static_cast<uint16_t>(1 + random.below(20))), constant(1, 1, 1));
  }
}

TEST(ElevationMaskDefinition, HoldsForTiltedCamerasAndSelfCrossingPolygons) {
  lab::Random random(111);
  Values values = {320, 240, random.values<uint16_t>(320 * 240, 3000)};
  for (int round = 0; round < 60; round++) {
    const Orientation o = {2000, anyWithin(random, 40), anyWithin(random, 30)};
    const StereoCtx ctx = context(usualLens, o, anyMap(random, 40, 150));
    Shape polygon(1 + random.below(12));
    for (Point_s32& v : polygon) v = {random.between(-40, 360), random.between(40, 280)};
    expectDefinition(polygon, ctx, values);
  }
}

TEST(ElevationMaskDefinition, HoldsWhereTheOrientationsWrapAround) {
  // Products of differences above 46340 mm no longer fit 32 bits; what comes out is still defined.
  lab::Random random(112);
  for (int round = 0; round < 60; round++) {
    StereoCtx ctx = context(usualLens, {2000, 0, 0}, {30, 30, 4000, 5000});
    ctx.lowerLeft = {anyWithin(random, 100000), anyWithin(random, 100000)};
    Shape polygon(3 + random.below(5));
    for (Point_s32& v : polygon) v = {random.between(-500, 820), random.between(-500, 740)};
    expectDefinition(polygon, ctx, constant(320, 240, 60000));
  }
}

TEST(ElevationMaskDefinition, HoldsAtEveryScale) {
  lab::Random random(115);
  for (int scale = 3; scale < 30; scale++) {
    const int32_t range = 1 << scale;
    const uint16_t cell = static_cast<uint16_t>(std::clamp(range / 12, 1, 65535));
    for (int round = 0; round < 8; round++) {
      StereoCtx ctx = context({0, 256, 8, 8}, {1, 0, 0}, {24, 24, cell, cell});
      const int32_t corner = -12 * cell;
      ctx.lowerLeft = {static_cast<float>(corner + random.between(-cell, cell)),
                       static_cast<float>(corner + random.between(-cell, cell))};
      Shape polygon(3 + random.below(5));
      for (Point_s32& v : polygon) v = {random.between(-range, range), random.between(-range, range)};
      expectDefinition(polygon, ctx, constant(1, 1, 1));
    }
  }
}

TEST(ElevationMaskDefinition, HoldsWhereCellCentresWrapAround) {
  StereoCtx ctx = context({0, 256, 8, 8}, {1, 0, 0}, {1, 65535, 65535, 65535});
  const Shape polygon = {{-100, -90}, {80000, -1000000}, {70000, 2000000000}, {-5, 1500000000}};
  expectDefinition(polygon, ctx, constant(1, 1, 1));
}

TEST(ElevationMaskDefinition, HoldsForVerticesAtTheEdgesOfThe32BitRange) {
  lab::Random random(113);
  for (int round = 0; round < 60; round++) {
    Shape polygon(3 + random.below(5));
    // Far, but still integers of 32 bits where the plain context projects them to.
    for (Point_s32& v : polygon) {
      v = {random.between(-1000000000, 1000000000), random.between(-1000000000, 1000000000)};
    }
    StereoCtx ctx = plainContext(20);
    ctx.lowerLeft = {anyWithin(random, 1e9f), anyWithin(random, 1e9f)};
    expectDefinition(polygon, ctx, constant(1, 1, 1));
  }
}

TEST(ElevationMaskDefinition, HoldsForALargeMap) {
  const StereoCtx ctx = context(usualLens, {2000, 20, 5}, {300, 200, 10, 12});
  const Shape polygon = {{20, 30}, {300, 60}, {250, 220}, {100, 100}, {60, 230}, {160, 90}};
  const Values values = constant(320, 240, 1900);
  const Result wanted = expectedMask(polygon, ctx, values);
  EXPECT_GT(std::count(wanted.mask.begin(), wanted.mask.end(), 1), 1000);
  EXPECT_TRUE(wanted.mask == createMask(polygon, ctx, values).mask);
}

TEST(ElevationMaskDefinition, HoldsForLongThinMaps) {
  const Shape polygon = {{20, 30}, {300, 60}, {250, 220}, {100, 100}};
  for (const ElevMapParams& map : {ElevMapParams{2000, 1, 2, 500}, {1, 2000, 500, 2}}) {
    StereoCtx ctx = context(usualLens, {2000, 0, 0}, map);
    ctx.lowerLeft = {map.width == 1 ? 0.0f : -2000.0f, map.height == 1 ? -100.0f : -2000.0f};
    expectDefinition(polygon, ctx, constant(320, 240, 1900));
  }
}

TEST(ElevationMaskDefinition, HoldsForPolygonsThatRunTwiceAndSpike) {
  lab::Random random(114);
  for (int round = 0; round < 100; round++) {
    // A few places, visited again and again: repeated vertices, edges there and back, windings of more than one.
    Shape places(2 + random.below(4)), polygon(1 + random.below(30));
    for (Point_s32& v : places) v = {random.between(-6, 6), random.between(-6, 6)};
    for (Point_s32& v : polygon) v = places[random.below(static_cast<uint32_t>(places.size()))];
    expectDefinition(polygon, plainContext(16), constant(1, 1, 1));
  }
}

TEST(ElevationMaskDefinition, OfAVertexOnTheHorizonIsStillAMask) {
  // The ray through the third vertex meets no plane; whatever it is projected to, the cells are 0 or 1.
  StereoCtx ctx = context(usualLens, {2000, 0, 0}, {20, 20, 50, 50});
  const float level[9] = {1, 0, 0, 0, 0, 1, 0, -1, 0};
  std::memcpy(ctx.extCalib.R, level, sizeof level);
  ctx.intCalib.principalY = 120.5f;
  ctx.lowerLeft = {-500, 0};
  const Result r = createMask({{150, 20}, {170, 20}, {160, 120}}, ctx, constant(320, 240, 700));
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(std::count_if(r.mask.begin(), r.mask.end(), [](uint8_t v) { return v > 1; }), 0);
}

}  // namespace
}  // namespace nadir::test
