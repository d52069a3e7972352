// Rectification: sources by the formulas of every lens, pictures pixel by pixel, the views of a pair, and what is
// refused.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "lab/random.hpp"
#include "lab/rectifier.hpp"
#include "tests/support/guarded.hpp"

namespace nadir::test {
namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr uint32_t width = 96, height = 71;

struct Spot {
  double x, y;
};

// ---- a model: the formulas of the header with libm's arc tangent ----

Spot modelled(const NadirLens& lens, double x, double y) {
  const double* k = lens.coefficients;
  const double r2 = x * x + y * y, r = std::sqrt(r2);
  if (lens.model == NADIR_LENS_NONE) return {x, y};
  if (lens.model == NADIR_LENS_FISHEYE) {
    const double t = std::atan(r);
    const double far =
        t + k[0] * std::pow(t, 3) + k[1] * std::pow(t, 5) + k[2] * std::pow(t, 7) + k[3] * std::pow(t, 9);
    return r > 0 ? Spot{x * far / r, y * far / r} : Spot{0, 0};
  }
  const double r4 = r2 * r2, r6 = r4 * r2;
  const double g = (1 + k[0] * r2 + k[1] * r4 + k[4] * r6) / (1 + k[5] * r2 + k[6] * r4 + k[7] * r6);
  return {x * g + 2 * k[2] * x * y + k[3] * (r2 + 2 * x * x) + k[8] * r2 + k[9] * r4,
          y * g + k[2] * (r2 + 2 * y * y) + 2 * k[3] * x * y + k[10] * r2 + k[11] * r4};
}

// The rotation's inverse is its transposed matrix here: it is one to twelve digits.
Spot modelledSource(const NadirLens& lens, const NadirRectifiedView& view, uint32_t u, uint32_t v) {
  const double a = (u - view.principal_x_px) / view.focal_px, b = (v - view.principal_y_px) / view.focal_px;
  const double* r = view.rotation;
  const double x = r[0] * a + r[3] * b + r[6], y = r[1] * a + r[4] * b + r[7], z = r[2] * a + r[5] * b + r[8];
  const Spot at = modelled(lens, x / z, y / z);
  return {lens.focal_x_px * at.x + lens.principal_x_px, lens.focal_y_px * at.y + lens.principal_y_px};
}

bool isInside(const NadirLens& lens, const Spot& spot, double margin) {
  return spot.x > margin && spot.y > margin && spot.x < lens.width_px - 1 - margin &&
         spot.y < lens.height_px - 1 - margin;
}

TEST(Rectifier, SourcesFollowTheFormulas) {
  for (const lab::LensKind& kind : lab::lensKinds()) {
    const NadirLens lens = lab::lensOf(kind, width, height);
    const NadirRectifiedView view = lab::turnedView(width, height);
    const lab::Rectifier rectifier(lens, view);
    uint32_t seen = 0;
    for (uint32_t v = 0; v < height; ++v)
      for (uint32_t u = 0; u < width; ++u) {
        Spot found{};
        const NadirStatus status = nadir_rectifier_source(rectifier.get(), u, v, &found.x, &found.y);
        const Spot want = modelledSource(lens, view, u, v);
        const bool known = status == NADIR_OK, nearEdge = isInside(lens, want, -0.01) && !isInside(lens, want, 0.01);
        EXPECT_TRUE(nearEdge || known == isInside(lens, want, 0)) << kind.name << ' ' << u << ' ' << v;
        if (!known) continue;
        ++seen;
        EXPECT_LE(std::fabs(found.x - want.x), 0.5 / 64 + 1e-6) << kind.name << ' ' << u << ' ' << v;
        EXPECT_LE(std::fabs(found.y - want.y), 0.5 / 64 + 1e-6) << kind.name << ' ' << u << ' ' << v;
      }
    EXPECT_GT(seen, width * height / 2) << kind.name;
    EXPECT_LT(seen, width * height) << kind.name;
  }
}

// ---- where lenses turn back ----

// How far from the axis a ray (r, 0, 1) comes to lie by the even terms of a lens.
double modelledReach(const NadirLens& lens, double r) {
  NadirLens even = lens;
  if (lens.model == NADIR_LENS_BROWN)
    for (const int odd : {2, 3, 8, 9, 10, 11}) even.coefficients[odd] = 0;
  return modelled(even, r, 0).x;
}

// The first r at which the distance from the axis does not grow any more.
double modelledTurn(const NadirLens& lens) {
  const auto grows = [&lens](double r) { return modelledReach(lens, r + 1e-6) > modelledReach(lens, r); };
  double step = 1e-3, r = step;
  while (grows(r)) r += step;
  for (; step > 1e-6; step /= 2) r += grows(r) ? step : -step;
  return r;
}

NadirLens lensWith(uint32_t model, std::initializer_list<double> coefficients) {
  NadirLens lens = lab::emptyRecord<NadirLens>();
  lens.width_px = 60001;
  lens.height_px = 401;
  lens.model = model;
  lens.focal_x_px = lens.focal_y_px = 4000;
  lens.principal_x_px = 30000;
  lens.principal_y_px = 200;
  std::copy(coefficients.begin(), coefficients.end(), lens.coefficients);
  return lens;
}

// One row of rays (first + u / focal, 0, 1).
NadirRectifiedView rayRow(uint32_t rays, double focal, double first = 0) {
  NadirRectifiedView view = lab::emptyRecord<NadirRectifiedView>();
  view.width_px = rays;
  view.height_px = 5;
  view.rotation[0] = view.rotation[4] = view.rotation[8] = 1;
  view.focal_px = focal;
  view.principal_x_px = -first * focal;
  view.principal_y_px = 2;
  return view;
}

// The rays of the row that come from somewhere, from the axis to where none does any more.
uint32_t raysSeen(const lab::Rectifier& rectifier, uint32_t rays) {
  uint32_t last = 0;
  double x = 0, y = 0;
  for (uint32_t u = 0; u < rays; ++u)
    if (nadir_rectifier_source(rectifier.get(), u, 2, &x, &y) == NADIR_OK) last = u + 1;
  return last;
}

TEST(Rectifier, NothingComesFromWhereALensTurnsBack) {
  constexpr uint32_t rays = 2000;
  constexpr double focal = 20000, before = 0.05;
  for (const NadirLens& lens :
       {lensWith(NADIR_LENS_FISHEYE, {-0.3}), lensWith(NADIR_LENS_FISHEYE, {0.1, -0.2}),
        lensWith(NADIR_LENS_FISHEYE, {-0.1, 0.1, -0.09}), lensWith(NADIR_LENS_FISHEYE, {-0.05, -0.04, 0.1, -0.06}),
        lensWith(NADIR_LENS_BROWN, {-0.3}), lensWith(NADIR_LENS_BROWN, {0.1, -0.15, 0.001, -0.001}),
        lensWith(NADIR_LENS_BROWN, {0.1, 0.05, 0, 0, -0.06}),
        lensWith(NADIR_LENS_BROWN, {0, 0, 0, 0, 0, 0.7, 0.1, 0.03}),
        lensWith(NADIR_LENS_BROWN, {0.2, -0.1, 0, 0, 0.02, 0.3, 0.1, 0.05, 1e-3, 0, 1e-3})}) {
    const double turn = modelledTurn(lens);
    ASSERT_GT(turn, 0.5);
    const lab::Rectifier rectifier(lens, rayRow(rays, focal, turn - before));
    EXPECT_NEAR(raysSeen(rectifier, rays), focal * before, 2) << turn;
  }
}

TEST(Rectifier, RaysAlongThePictureComeFromNowhereIfTheyAreBent) {
  constexpr uint32_t rays = 5000;
  NadirLens lens = lensWith(NADIR_LENS_BROWN, {});
  lens.focal_x_px = lens.focal_y_px = 1;
  EXPECT_EQ(raysSeen(lab::Rectifier(lens, rayRow(rays, 1)), rays), 4095u);
  lens.model = NADIR_LENS_FISHEYE;
  EXPECT_EQ(raysSeen(lab::Rectifier(lens, rayRow(rays, 1)), rays), 4095u);
  lens.model = NADIR_LENS_NONE;
  EXPECT_EQ(raysSeen(lab::Rectifier(lens, rayRow(rays, 1)), rays), rays);
}

// ---- views without a turn, whose sources are easily said ----

NadirLens plainLens(uint32_t w = width, uint32_t h = height) {
  NadirLens lens = lab::emptyRecord<NadirLens>();
  lens.width_px = w;
  lens.height_px = h;
  lens.focal_x_px = lens.focal_y_px = 64;
  return lens;
}

// Shifts by (dx, dy): pixel (u, v) comes from (u + dx, v + dy).
NadirRectifiedView shiftedView(double dx, double dy, uint32_t w = width, uint32_t h = height) {
  NadirRectifiedView view = lab::emptyRecord<NadirRectifiedView>();
  view.width_px = w;
  view.height_px = h;
  view.rotation[0] = view.rotation[4] = view.rotation[8] = 1;
  view.focal_px = 64;
  view.principal_x_px = -dx;
  view.principal_y_px = -dy;
  return view;
}

TEST(Rectifier, APictureThatIsNotMovedStaysWhatItIs) {
  lab::Random random(1);
  const auto wide = random.values<uint16_t>(width * height, 65536);
  const auto narrow = random.values<uint8_t>(width * height, 256);
  const lab::Rectifier rectifier(plainLens(), shiftedView(0, 0));
  EXPECT_EQ(rectifier.rectified(wide, width), wide);
  const std::vector<uint8_t> out = rectifier.rectified(narrow, width);
  for (size_t i = 0; i < out.size(); ++i) EXPECT_EQ(out[i], narrow[i] ? narrow[i] : 1) << i;
}

template <class Pixel>
class RectifierPixels : public testing::Test {};
using PixelTypes = testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(RectifierPixels, PixelTypes, );

// What the header says of a pixel, from where it comes from in 64ths.
template <class Pixel>
Pixel modelledPixel(const std::vector<Pixel>& picture, double x, double y) {
  const auto left = static_cast<uint32_t>(x), top = static_cast<uint32_t>(y);
  const auto across = static_cast<uint32_t>((x - left) * 64), down = static_cast<uint32_t>((y - top) * 64);
  uint64_t sum = 64 * 64 / 2;
  for (const auto& [dx, wx] : {std::pair{0u, 64 - across}, {1u, across}})
    for (const auto& [dy, wy] : {std::pair{0u, 64 - down}, {1u, down}}) {
      if (wx * wy == 0) continue;
      const Pixel source = picture[(top + dy) * width + left + dx];
      if (sizeof(Pixel) == 2 && source == 0) return 0;
      sum += uint64_t{wx} * wy * source;
    }
  const auto mean = static_cast<Pixel>(sum / (64 * 64));
  return mean == 0 ? Pixel{1} : mean;
}

// A third of the pixels is 0, and as many are as large as can be.
template <class Pixel>
std::vector<Pixel> holedPicture(uint64_t seed) {
  lab::Random random(seed);
  auto picture = random.values<Pixel>(width * height, std::numeric_limits<Pixel>::max());
  for (Pixel& pixel : picture) {
    const uint32_t what = random.below(3);
    if (what == 0) pixel = 0;
    if (what == 1) pixel = std::numeric_limits<Pixel>::max();
  }
  return picture;
}

TYPED_TEST(RectifierPixels, AreTheWeightedMeansOfTheirSources) {
  const auto picture = holedPicture<TypeParam>(5);
  const NadirRectifiedView view = lab::turnedView(width, height);
  for (const lab::LensKind& kind : lab::lensKinds()) {
    const lab::Rectifier rectifier(lab::lensOf(kind, width, height), view);
    const auto out = rectifier.rectified(picture, width);
    for (uint32_t i = 0; i < out.size(); ++i) {
      double x = 0, y = 0;
      const bool known = nadir_rectifier_source(rectifier.get(), i % width, i / width, &x, &y) == NADIR_OK;
      const TypeParam want = known ? modelledPixel(picture, x, y) : TypeParam{0};
      ASSERT_EQ(out[i], want) << kind.name << ' ' << i % width << ' ' << i / width;
    }
  }
}

// All shares of a pixel along each side, up to the picture's very edges and beyond.
TYPED_TEST(RectifierPixels, EveryShareOfAPixelIsRight) {
  const auto picture = holedPicture<TypeParam>(6);
  for (int part = -70; part <= 70; ++part) {
    for (const Spot shift : {Spot{part / 64.0, 0}, Spot{0, part / 64.0}, Spot{part / 64.0, -part / 64.0}}) {
      const lab::Rectifier rectifier(plainLens(), shiftedView(shift.x, shift.y));
      const auto out = rectifier.rectified(picture, width);
      for (uint32_t i = 0; i < out.size(); ++i) {
        const double x = i % width + shift.x, y = i / width + shift.y;
        const bool inside = x >= 0 && y >= 0 && x <= width - 1 && y <= height - 1;
        const TypeParam want = inside ? modelledPixel(picture, x, y) : TypeParam{0};
        ASSERT_EQ(out[i], want) << part << ' ' << x << ' ' << y;
      }
    }
  }
}

TYPED_TEST(RectifierPixels, NothingOutsideOfThePicturesIsTouched) {
  constexpr size_t gap = 3;
  const auto picture = holedPicture<TypeParam>(7);
  const NadirRectifiedView view = lab::turnedView(37, 23);
  const lab::Rectifier rectifier(lab::lensOf(lab::lensKinds()[1], width, height), view);
  const auto want = rectifier.rectified(picture, width);
  const size_t row = width * sizeof(TypeParam), stride = row + gap, outRow = 37 * sizeof(TypeParam);
  const size_t outStride = outRow + gap;
  for (const Guard side : {Guard::behind, Guard::before}) {
    const Guarded<uint8_t> in(stride * (height - 1) + row, side), out(outStride * 22 + outRow, side);
    for (uint32_t y = 0; y < height; ++y) std::memcpy(in.data() + y * stride, &picture[y * width], row);
    std::fill(out.begin(), out.end(), uint8_t{0xA5});
    ASSERT_EQ(nadir_rectifier_process(rectifier.get(), 8 * sizeof(TypeParam), in.data(), stride, out.data(), outStride),
              NADIR_OK);
    for (uint32_t y = 0; y < 23; ++y) {
      EXPECT_EQ(std::memcmp(out.data() + y * outStride, &want[y * 37], outRow), 0) << y;
      for (size_t i = outRow; i < outStride && y < 22; ++i) EXPECT_EQ(out[y * outStride + i], 0xA5) << y;
    }
  }
}

TEST(Rectifier, TheSmallestPicturesWork) {
  const lab::Rectifier rectifier(plainLens(5, 5), shiftedView(0.5, 0.5, 5, 5));
  const std::vector<uint16_t> picture(25, 1000);
  const std::vector<uint16_t> out = rectifier.rectified(picture, 5);
  for (uint32_t i = 0; i < 25; ++i) EXPECT_EQ(out[i], i % 5 < 4 && i / 5 < 4 ? 1000 : 0) << i;
}

// ---- where a lens ends ----

// r (1 - r^2 / 3) grows up to r = 1: 64 pixels from the principal point.
TEST(Rectifier, BeyondWhereTheLensTurnsBackThereIsNothing) {
  NadirLens lens = plainLens(201, 201);
  lens.model = NADIR_LENS_BROWN;
  lens.coefficients[0] = -1.0 / 3;
  lens.principal_x_px = lens.principal_y_px = 100;
  const lab::Rectifier rectifier(lens, shiftedView(-100, -100, 201, 201));
  for (uint32_t u = 0; u <= 200; ++u) {
    const NadirStatus status = [&] {
      double x = 0, y = 0;
      return nadir_rectifier_source(rectifier.get(), u, 100, &x, &y);
    }();
    const double r = std::fabs(u - 100.0) / 64;
    EXPECT_TRUE(r == 1 || status == (r < 1 ? NADIR_OK : NADIR_NOTHING_FOUND)) << u;
  }
}

// t - t^3 / 3 grows up to t = 1, where r = tan(1) = 1.5574.
TEST(Rectifier, AFisheyeThatTurnsBackEndsThereToo) {
  NadirLens lens = plainLens(401, 401);
  lens.model = NADIR_LENS_FISHEYE;
  lens.coefficients[0] = -1.0 / 3;
  lens.principal_x_px = lens.principal_y_px = 200;
  const lab::Rectifier rectifier(lens, shiftedView(-200, -200, 401, 401));
  double x = 0, y = 0;
  EXPECT_EQ(nadir_rectifier_source(rectifier.get(), 200 + 99, 200, &x, &y), NADIR_OK);
  EXPECT_EQ(nadir_rectifier_source(rectifier.get(), 200 + 100, 200, &x, &y), NADIR_NOTHING_FOUND);
}

// The pole of the quotient, at r^2 = 2, ends the lens as well.
TEST(Rectifier, AQuotientEndsAtItsPole) {
  NadirLens lens = plainLens(401, 401);
  lens.model = NADIR_LENS_BROWN;
  lens.coefficients[5] = -0.5;
  lens.focal_x_px = lens.focal_y_px = 2;
  lens.principal_x_px = lens.principal_y_px = 200;
  const lab::Rectifier rectifier(lens, shiftedView(-200, -200, 401, 401));
  double x = 0, y = 0;
  EXPECT_EQ(nadir_rectifier_source(rectifier.get(), 200 + 88, 200, &x, &y), NADIR_OK);
  EXPECT_EQ(nadir_rectifier_source(rectifier.get(), 200 + 91, 200, &x, &y), NADIR_NOTHING_FOUND);
}

TEST(Rectifier, WhatLiesBehindTheCameraIsNowhere) {
  NadirRectifiedView view = shiftedView(-48, -35);
  view.rotation[0] = view.rotation[8] = -1;
  const lab::Rectifier rectifier(plainLens(), view);
  const std::vector<uint16_t> out = rectifier.rectified(std::vector<uint16_t>(width * height, 7), width);
  EXPECT_EQ(out, std::vector<uint16_t>(width * height, 0));
}

// A rotation of few digits is inverted and not transposed, as the direction that it was made for asks.
TEST(Rectifier, ARotationOfFewDigitsIsTakenAsItIs) {
  NadirRectifiedView view = shiftedView(-48, -35);
  const double rough[] = {0.9995, -0.0005, 0, 0.0003, 0.9996, 0, 0, 0, 0.9997};
  std::copy(rough, rough + 9, view.rotation);
  NadirLens lens = plainLens();
  lens.principal_x_px = 48;
  lens.principal_y_px = 35;
  const lab::Rectifier rectifier(lens, view);
  double x = 0, y = 0;
  ASSERT_EQ(nadir_rectifier_source(rectifier.get(), 16, 40, &x, &y), NADIR_OK);
  EXPECT_NEAR(rough[0] * (x - 48) + rough[1] * (y - 35), (16 - 48) * rough[8], 0.02);
  EXPECT_NEAR(rough[3] * (x - 48) + rough[4] * (y - 35), (40 - 35) * rough[8], 0.02);
}

// ---- the views of a pair ----

struct PairViews {
  NadirStatus status;
  NadirRectifiedView left, right;
  double baseline;
  NadirFault fault;
};

PairViews viewsOf(const NadirLens& left, const NadirLens& right, const double* rotation, const double* translation) {
  PairViews views{NADIR_OK, lab::emptyRecord<NadirRectifiedView>(), lab::emptyRecord<NadirRectifiedView>(), -1,
                  lab::emptyRecord<NadirFault>()};
  views.status = nadir_rectified_views(&left, &right, rotation, translation, &views.left, &views.right, &views.baseline,
                                       &views.fault);
  return views;
}

Spot projected(const NadirRectifiedView& view, const double (&p)[3]) {
  const double* r = view.rotation;
  const double z = r[6] * p[0] + r[7] * p[1] + r[8] * p[2];
  return {view.focal_px * (r[0] * p[0] + r[1] * p[1] + r[2] * p[2]) / z + view.principal_x_px,
          view.focal_px * (r[3] * p[0] + r[4] * p[1] + r[5] * p[2]) / z + view.principal_y_px};
}

constexpr double straight[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};

TEST(RectifiedViews, EveryPointLiesInOneRowAndItsDisparityTellsItsDepth) {
  const NadirRectifiedView turned = lab::turnedView(width, height);
  const double* r = turned.rotation;
  const double translation[] = {-190.5, 13.25, 7};
  const PairViews views = viewsOf(lab::lensOf(lab::lensKinds()[1], width, height),
                                  lab::lensOf(lab::lensKinds()[2], 80, 60), r, translation);
  ASSERT_EQ(views.status, NADIR_OK);
  EXPECT_NEAR(views.baseline, std::sqrt(190.5 * 190.5 + 13.25 * 13.25 + 49), 1e-9);
  EXPECT_EQ(views.left.width_px, width);
  EXPECT_EQ(views.right.height_px, height);
  EXPECT_DOUBLE_EQ(views.left.focal_px, 0.78 * 80);
  EXPECT_EQ(views.left.principal_x_px, views.right.principal_x_px);
  lab::Random random(2);
  for (int i = 0; i < 200; ++i) {
    const double p[3] = {random.between(-900, 900) * 1.0, random.between(-900, 900) * 1.0,
                         random.between(800, 5000) * 1.0};
    double q[3];
    for (int k = 0; k < 3; ++k) q[k] = r[3 * k] * p[0] + r[3 * k + 1] * p[1] + r[3 * k + 2] * p[2] + translation[k];
    const Spot left = projected(views.left, p), right = projected(views.right, q);
    const double* m = views.left.rotation;
    const double depth = m[6] * p[0] + m[7] * p[1] + m[8] * p[2];
    EXPECT_NEAR(left.y, right.y, 1e-3);
    EXPECT_NEAR(left.x - right.x, views.left.focal_px * views.baseline / depth, 1e-3);
  }
}

TEST(RectifiedViews, WhatIsStraightStaysStraight) {
  const double translation[] = {-100, 0, 0};
  NadirLens lens = plainLens();
  lens.principal_x_px = 40;
  lens.principal_y_px = 30;
  const PairViews views = viewsOf(lens, lens, straight, translation);
  ASSERT_EQ(views.status, NADIR_OK);
  for (int i = 0; i < 9; ++i) EXPECT_EQ(views.left.rotation[i], straight[i]) << i;
  EXPECT_EQ(views.left.principal_x_px, 40);
  EXPECT_EQ(views.left.principal_y_px, 30);
  EXPECT_EQ(views.baseline, 100);
}

TEST(RectifiedViews, TheSmallestFocalLengthIsTaken) {
  const double translation[] = {-100, 0, 0};
  for (uint32_t smallest = 0; smallest < 4; ++smallest) {
    NadirLens left = plainLens(), right = plainLens();
    NadirLens& lens = smallest < 2 ? left : right;
    (smallest % 2 == 0 ? lens.focal_x_px : lens.focal_y_px) = 50;
    EXPECT_EQ(viewsOf(left, right, straight, translation).left.focal_px, 50) << smallest;
  }
}

void expectNoViews(const PairViews& views, const char* field, uint32_t area = 0) {
  EXPECT_EQ(views.status, NADIR_BAD_CAMERA);
  EXPECT_STREQ(views.fault.field, field);
  EXPECT_EQ(views.fault.area, area);
  EXPECT_EQ(views.left.width_px, 0u);
  EXPECT_EQ(views.right.width_px, 0u);
  EXPECT_EQ(views.baseline, -1);
}

TEST(RectifiedViews, PairsThatAreNoneAreRefused) {
  const NadirLens lens = plainLens();
  const double toTheRight[] = {-100, 0, 0};
  for (const auto& translation : {std::vector<double>{100, 0, 0},
                                  {0, 0, 0},
                                  {0, -100, 0},
                                  {-49, 87, 0},
                                  {-49, 0, 87},
                                  {notANumber, 0, 0},
                                  {-2e6, 0, 0}})
    expectNoViews(viewsOf(lens, lens, straight, translation.data()), "translation_mm");
  const double mirrored[] = {-1, 0, 0, 0, 1, 0, 0, 0, 1}, halfTurn[] = {-1, 0, 0, 0, -1, 0, 0, 0, 1};
  const double stretched[] = {1.001, 0, 0, 0, 1, 0, 0, 0, 1}, unknown[] = {1, 0, 0, 0, notANumber, 0, 0, 0, 1};
  for (const double* rotation : {mirrored, halfTurn, stretched, unknown})
    expectNoViews(viewsOf(lens, lens, rotation, toTheRight), "rotation");
}

// The turn that lays this baseline along the rows takes what lies far to the right behind the camera.
TEST(RectifiedViews, CamerasThatLookApartAreRefused) {
  const double backward[] = {-60, 0, -80}, forward[] = {-60, 0, 80};
  NadirLens aside = plainLens();
  aside.principal_x_px = -1e6;
  const NadirLens straightAhead = plainLens();
  expectNoViews(viewsOf(aside, straightAhead, straight, backward), "rotation");
  expectNoViews(viewsOf(straightAhead, aside, straight, backward), "rotation");
  EXPECT_EQ(viewsOf(aside, aside, straight, forward).status, NADIR_OK);
}

TEST(RectifiedViews, PrincipalPointsStayInReach) {
  const double translation[] = {-60, 0, -80};
  NadirLens far = plainLens();
  far.focal_x_px = far.focal_y_px = 1e6;
  NadirLens below = far;
  below.principal_y_px = -1e6;
  far.principal_x_px = -6e5;
  expectNoViews(viewsOf(far, far, straight, translation), "rotation");
  expectNoViews(viewsOf(below, below, straight, translation), "rotation");
  const double nod[] = {1,
                        0,
                        0,
                        0,
                        -0.17364817766693041,
                        -0.98480775301220802,
                        0,
                        0.98480775301220802,
                        -0.17364817766693041};  // by 100 degrees
  const double toTheRight[] = {-100, 0, 0};
  NadirLens up = plainLens();
  up.focal_x_px = up.focal_y_px = 1e6;
  up.principal_y_px = -5.77e5;
  expectNoViews(viewsOf(up, up, nod, toTheRight), "rotation");
}

// ---- what is refused ----

TEST(RectifiedViews, RecordsAreChecked) {
  const NadirLens lens = plainLens();
  const double t[] = {-100, 0, 0};
  NadirRectifiedView a = lab::emptyRecord<NadirRectifiedView>(), b = a;
  double baseline = -1;
  const auto call = [&](const NadirLens* l, const NadirLens* r, const double* turn, const double* shift,
                        NadirRectifiedView* first, NadirRectifiedView* second, double* length) {
    return nadir_rectified_views(l, r, turn, shift, first, second, length, nullptr);
  };
  EXPECT_EQ(call(nullptr, &lens, straight, t, &a, &b, &baseline), NADIR_NULL_POINTER);
  EXPECT_EQ(call(&lens, nullptr, straight, t, &a, &b, &baseline), NADIR_NULL_POINTER);
  EXPECT_EQ(call(&lens, &lens, nullptr, t, &a, &b, &baseline), NADIR_NULL_POINTER);
  EXPECT_EQ(call(&lens, &lens, straight, nullptr, &a, &b, &baseline), NADIR_NULL_POINTER);
  EXPECT_EQ(call(&lens, &lens, straight, t, nullptr, &b, &baseline), NADIR_NULL_POINTER);
  EXPECT_EQ(call(&lens, &lens, straight, t, &a, nullptr, &baseline), NADIR_NULL_POINTER);
  EXPECT_EQ(call(&lens, &lens, straight, t, &a, &b, nullptr), NADIR_NULL_POINTER);
  NadirRectifiedView old{};
  EXPECT_EQ(call(&lens, &lens, straight, t, &old, &b, &baseline), NADIR_BAD_RECORD);
  EXPECT_EQ(call(&lens, &lens, straight, t, &a, &old, &baseline), NADIR_BAD_RECORD);
  NadirFault fault{};
  EXPECT_EQ(nadir_rectified_views(&lens, &lens, straight, t, &a, &b, &baseline, &fault), NADIR_BAD_RECORD);
  EXPECT_EQ(a.width_px + b.width_px, 0u);
  EXPECT_EQ(baseline, -1);
  NadirLens bad = lens;
  bad.focal_y_px = 0;
  expectNoViews(viewsOf(bad, lens, straight, t), "focal_y_px", 0);
  expectNoViews(viewsOf(lens, bad, straight, t), "focal_y_px", 1);
  EXPECT_EQ(call(&lens, &lens, straight, t, &a, &b, &baseline), NADIR_OK);
}

struct Made {
  NadirStatus status;
  std::string field;
};

Made made(const NadirLens& lens, const NadirRectifiedView& view) {
  NadirFault fault = lab::emptyRecord<NadirFault>();
  NadirRectifier* const untouched = reinterpret_cast<NadirRectifier*>(&fault);
  NadirRectifier* rectifier = untouched;
  const NadirStatus status = nadir_rectifier_create(&lens, &view, &rectifier, &fault);
  EXPECT_EQ(status != NADIR_OK, rectifier == untouched);
  if (status == NADIR_OK) nadir_rectifier_destroy(rectifier);
  return {status, fault.field ? fault.field : ""};
}

template <class Record>
struct Limit {
  const char* field;
  void (*set)(Record&, double);
  std::vector<double> good, bad;
};

#define MEMBER(Record, member) #member, [](Record & r, double v) { r.member = static_cast<decltype(r.member)>(v); }

constexpr double beyond = 1000001;

const std::vector<Limit<NadirLens>> lensLimits = {
    {MEMBER(NadirLens, width_px), {5, 1000}, {0, 4, 65536}},
    {MEMBER(NadirLens, height_px), {5, 1000}, {0, 4, 65536, 1 + (1 << 25) / width}},
    {MEMBER(NadirLens, model), {0, 1, 2}, {3, 4294967295.0}},
    {MEMBER(NadirLens, focal_x_px), {1e-9, 1e6}, {0, -1, beyond, notANumber}},
    {MEMBER(NadirLens, focal_y_px), {1e-9, 1e6}, {0, -1, beyond, notANumber}},
    {MEMBER(NadirLens, principal_x_px), {-1e6, 1e6}, {-beyond, beyond, notANumber}},
    {MEMBER(NadirLens, principal_y_px), {-1e6, 1e6}, {-beyond, beyond, notANumber}}};

const std::vector<Limit<NadirRectifiedView>> viewLimits = {
    {MEMBER(NadirRectifiedView, width_px), {5, 1000}, {0, 4, 65536}},
    {MEMBER(NadirRectifiedView, height_px), {5, 1000}, {0, 4, 65536, 1 + (1 << 25) / width}},
    {MEMBER(NadirRectifiedView, focal_px), {1e-9, 1e6}, {0, -1, beyond, notANumber}},
    {MEMBER(NadirRectifiedView, principal_x_px), {-1e6, 1e6}, {-beyond, beyond, notANumber}},
    {MEMBER(NadirRectifiedView, principal_y_px), {-1e6, 1e6}, {-beyond, beyond, notANumber}}};

TEST(Rectifier, NumbersOfTheLensAreChecked) {
  for (const Limit<NadirLens>& limit : lensLimits) {
    NadirLens lens = plainLens();
    for (const double value : limit.good) {
      limit.set(lens, value);
      EXPECT_EQ(made(lens, shiftedView(0, 0)).status, NADIR_OK) << limit.field << ' ' << value;
    }
    for (const double value : limit.bad) {
      limit.set(lens, value);
      const Made refused = made(lens, shiftedView(0, 0));
      EXPECT_EQ(refused.status, NADIR_BAD_CAMERA) << limit.field << ' ' << value;
      EXPECT_EQ(refused.field, limit.field) << value;
    }
  }
}

TEST(Rectifier, NumbersOfTheViewAreChecked) {
  for (const Limit<NadirRectifiedView>& limit : viewLimits) {
    NadirRectifiedView view = shiftedView(0, 0);
    for (const double value : limit.good) {
      limit.set(view, value);
      EXPECT_EQ(made(plainLens(), view).status, NADIR_OK) << limit.field << ' ' << value;
    }
    for (const double value : limit.bad) {
      limit.set(view, value);
      const Made refused = made(plainLens(), view);
      EXPECT_EQ(refused.status, NADIR_BAD_CAMERA) << limit.field << ' ' << value;
      EXPECT_EQ(refused.field, limit.field) << value;
      EXPECT_EQ(nadir_rectifier_bytes(&view), 0u);
    }
  }
  NadirRectifiedView view = shiftedView(0, 0);
  view.rotation[4] = 1.002;
  EXPECT_EQ(made(plainLens(), view).field, "rotation");
}

TEST(Rectifier, CoefficientsThatAModelDoesNotHaveAreRefused) {
  constexpr uint32_t counts[] = {0, 12, 4};
  for (uint32_t model = 0; model < 3; ++model)
    for (uint32_t i = 0; i < 12; ++i)
      for (const double value : {0.001, beyond, notANumber}) {
        NadirLens lens = plainLens();
        lens.model = model;
        lens.coefficients[i] = value;
        const bool good = i < counts[model] && value == 0.001;
        const Made answer = made(lens, shiftedView(0, 0));
        EXPECT_EQ(answer.status, good ? NADIR_OK : NADIR_BAD_CAMERA) << model << ' ' << i << ' ' << value;
        EXPECT_EQ(answer.field, good ? "" : "coefficients");
      }
}

TEST(Rectifier, RecordsAndPointersAreChecked) {
  NadirLens lens = plainLens();
  NadirRectifiedView view = shiftedView(0, 0);
  NadirRectifier* rectifier = nullptr;
  NadirFault fault{};
  EXPECT_EQ(nadir_rectifier_create(nullptr, &view, &rectifier, nullptr), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_rectifier_create(&lens, nullptr, &rectifier, nullptr), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_rectifier_create(&lens, &view, nullptr, nullptr), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_rectifier_create(&lens, &view, &rectifier, &fault), NADIR_BAD_RECORD);
  EXPECT_EQ(rectifier, nullptr);
  EXPECT_EQ(nadir_rectifier_bytes(nullptr), 0u);
  nadir_rectifier_destroy(nullptr);
  --lens.size;
  EXPECT_EQ(made(lens, view).field, "lens");
  lens.size += 2;
  EXPECT_EQ(made(lens, view).status, NADIR_BAD_RECORD);
  --lens.size;
  ++view.size;
  EXPECT_EQ(made(lens, view).field, "view");
  EXPECT_EQ(made(lens, view).status, NADIR_BAD_RECORD);
}

TEST(Rectifier, TheStatedBytesHold) {
  const NadirRectifiedView view = shiftedView(0, 0);
  EXPECT_GT(nadir_rectifier_bytes(&view), size_t{6} * width * height);
  EXPECT_LT(nadir_rectifier_bytes(&view), size_t{6} * width * height + 1000);
}

TEST(Rectifier, PicturesAreCheckedBeforeTheFirstWrite) {
  const lab::Rectifier rectifier(plainLens(), shiftedView(0, 0, 40, 30));
  const std::vector<uint16_t> picture(width * height, 9);
  std::vector<uint16_t> out(40 * 30, 77);
  const auto status = [&](uint32_t bits, const void* in, size_t stride, void* to, size_t outStride) {
    return nadir_rectifier_process(rectifier.get(), bits, in, stride, to, outStride);
  };
  EXPECT_EQ(nadir_rectifier_process(nullptr, 16, picture.data(), 2 * width, out.data(), 80), NADIR_NULL_POINTER);
  EXPECT_EQ(status(16, nullptr, 2 * width, out.data(), 80), NADIR_NULL_POINTER);
  EXPECT_EQ(status(16, picture.data(), 2 * width, nullptr, 80), NADIR_NULL_POINTER);
  for (const uint32_t bits : {0u, 1u, 12u, 32u})
    EXPECT_EQ(status(bits, picture.data(), 2 * width, out.data(), 80), NADIR_BAD_FRAME) << bits;
  EXPECT_EQ(status(16, picture.data(), 2 * width - 1, out.data(), 80), NADIR_BAD_FRAME);
  EXPECT_EQ(status(8, picture.data(), width - 1, out.data(), 80), NADIR_BAD_FRAME);
  EXPECT_EQ(status(16, picture.data(), SIZE_MAX, out.data(), 80), NADIR_BAD_FRAME);
  EXPECT_EQ(status(16, picture.data(), 2 * width, out.data(), 79), NADIR_BAD_FRAME);
  EXPECT_EQ(status(8, picture.data(), 2 * width, out.data(), 39), NADIR_BAD_FRAME);
  EXPECT_EQ(status(16, picture.data(), 2 * width, out.data(), SIZE_MAX / 2), NADIR_BAD_FRAME);
  EXPECT_EQ(out, std::vector<uint16_t>(40 * 30, 77));
  EXPECT_EQ(status(16, picture.data(), 2 * width, out.data(), 80), NADIR_OK);
}

TEST(Rectifier, SourcesAreCheckedBeforeTheFirstWrite) {
  const lab::Rectifier rectifier(plainLens(), shiftedView(-1, 0, 40, 30));
  double x = -7, y = -8;
  EXPECT_EQ(nadir_rectifier_source(nullptr, 1, 0, &x, &y), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_rectifier_source(rectifier.get(), 1, 0, nullptr, &y), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_rectifier_source(rectifier.get(), 1, 0, &x, nullptr), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_rectifier_source(rectifier.get(), 40, 0, &x, &y), NADIR_NOTHING_FOUND);
  EXPECT_EQ(nadir_rectifier_source(rectifier.get(), 1, 30, &x, &y), NADIR_NOTHING_FOUND);
  EXPECT_EQ(nadir_rectifier_source(rectifier.get(), 0, 0, &x, &y), NADIR_NOTHING_FOUND);
  EXPECT_EQ(x, -7);
  EXPECT_EQ(y, -8);
  EXPECT_EQ(nadir_rectifier_source(rectifier.get(), 1, 0, &x, &y), NADIR_OK);
  EXPECT_EQ(x, 0);
  EXPECT_EQ(y, 0);
}

}  // namespace
}  // namespace nadir::test
