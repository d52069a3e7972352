// Passes: what is matched again, upside down, from the other side and in smaller pictures, and what surfaces make of
// it.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <ostream>

#include "lab/textured_pair.hpp"
#include "tests/api/ground/roads.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

using Mask = Grid<uint8_t>;

constexpr std::array<uint32_t, 2> bothGrids{NADIR_GRID_LEFT, NADIR_GRID_RIGHT};
constexpr int agreement = 24;  // a pixel and a half, in sixteenths

struct Pair {
  Picture left, right;
  Mask mask;
};

// ---- pairs ----

// A slanted ground with boxes: each view sees some of what the other does not.
Pair boxes(uint32_t width, uint32_t height) {
  const lab::TexturedPair pair = lab::texturedPair(width, height);
  return {Picture(width, height, pair.first), Picture(width, height, pair.reference), Mask(width, height)};
}

Pair covered(Pair pair) {
  for (uint32_t y = pair.mask.height / 3; y < pair.mask.height; ++y)
    for (uint32_t x = pair.mask.width / 2; x < pair.mask.width - y / 2; ++x) pair.mask.at(x, y) = 1;
  return pair;
}

template <class T>
Grid<T> flipped(const Grid<T>& grid) {
  Grid<T> out(grid.width, grid.height);
  for (uint32_t y = 0; y < grid.height; ++y) std::copy_n(grid.row(y), grid.width, out.row(grid.height - 1 - y));
  return out;
}

template <class T>
Grid<T> mirrored(Grid<T> grid) {
  lab::mirror(grid);
  return grid;
}

Pair flipped(const Pair& pair) { return {flipped(pair.left), flipped(pair.right), flipped(pair.mask)}; }

Pair mirrored(const Pair& pair) { return {mirrored(pair.right), mirrored(pair.left), mirrored(pair.mask)}; }

// Blots of several sizes, so that the pictures of half and a quarter of the size have something to match too.
class Ground {
 public:
  explicit Ground(uint64_t seed) : random_(seed), values_(random_.values<uint16_t>(side * side, 1300)) {}

  uint16_t at(double x, uint32_t y) const {
    return static_cast<uint16_t>(100 + blot(x / 2.3, y / 2.3) + blot(x / 5.1, y / 5.1) + blot(x / 13.0, y / 13.0));
  }

 private:
  static constexpr size_t side = 256;

  double value(size_t x, size_t y) const { return values_[y % side * side + x % side]; }

  double blot(double x, double y) const {
    const auto i = static_cast<size_t>(x), j = static_cast<size_t>(y);
    const double a = x - double(i), b = y - double(j);
    return (value(i, j) * (1 - a) + value(i + 1, j) * a) * (1 - b) +
           (value(i, j + 1) * (1 - a) + value(i + 1, j + 1) * a) * b;
  }

  lab::Random random_;
  std::vector<uint16_t> values_;
};

// The right view's pixel (x, y) shows what lies shiftAt(y) further to the right in the left one.
Pair shifted(uint32_t width, uint32_t height, const std::function<double(uint32_t y)>& shiftAt, uint64_t seed = 1) {
  const Ground ground(seed);
  Pair pair{Picture(width, height), Picture(width, height), Mask(width, height)};
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) {
      pair.left.at(x, y) = ground.at(x, y);
      pair.right.at(x, y) = ground.at(x + shiftAt(y), y);
    }
  }
  return pair;
}

Pair shiftedBy(double shift, uint32_t width = 256, uint32_t height = 48) {
  return shifted(width, height, [shift](uint32_t) { return shift; });
}

// ---- what is asked, and what comes of it ----

struct Asked {
  uint32_t grid = NADIR_GRID_LEFT;
  uint32_t postprocess = 0;
  uint32_t check = NADIR_CHECK_NONE;
  uint32_t refine = NADIR_REFINE_NONE;
  uint32_t range = NADIR_RANGE_61;
  uint32_t support = 0;
};

std::ostream& operator<<(std::ostream& out, const Asked& asked) {
  return out << "grid " << asked.grid << ", clean-up " << asked.postprocess << ", check " << asked.check << ", refine "
             << asked.refine << ", range " << asked.range << ", support " << asked.support;
}

std::vector<Asked> plainPasses() {
  return {{NADIR_GRID_LEFT, 0}, {NADIR_GRID_LEFT, 1}, {NADIR_GRID_RIGHT, 0}, {NADIR_GRID_RIGHT, 1}};
}

Asked with(Asked asked, uint32_t check) {
  asked.check = check;
  return asked;
}

Asked supported(Asked asked, uint32_t support) {
  asked.support = support;
  return asked;
}

Asked refinedOf(Asked asked) {
  asked.refine = NADIR_REFINE_SURFACE;
  return asked;
}

NadirSettings settingsOf(const Asked& asked) {
  NadirSettings settings = settingsUntil(NADIR_UNTIL_MATCH);
  settings.grid = asked.grid;
  settings.postprocess = asked.postprocess;
  settings.check = asked.check;
  settings.refine = asked.refine;
  settings.range = asked.range;
  settings.support = asked.support;
  return settings;
}

Matched matchedWithCounts(const Pair& pair, const Asked& asked) {
  const Road road = makeRoad(cameraOf(pair.left), settingsOf(asked));
  const Result result = makeResult(road);
  NadirFrame frame = frameOf(pair.left, pair.right);
  frame.mask = pair.mask.pixels.data();
  frame.mask_stride = pair.mask.width;
  const NadirFindings findings = processed(road, frame, result);
  return {gridOf<uint16_t>(findings.disparity), *findings.pixels};
}

Picture matched(const Pair& pair, const Asked& asked) { return matchedWithCounts(pair, asked).disparity; }

size_t values(const Picture& picture) {
  return picture.pixels.size() -
         static_cast<size_t>(std::count(picture.pixels.begin(), picture.pixels.end(), uint16_t{0}));
}

// ---- upside down ----

uint16_t meanHalvesToEven(uint32_t a, uint32_t b) {
  const uint32_t sum = a + b;
  return static_cast<uint16_t>(sum / 2 + (sum % 4 == 3));
}

Picture meanWhereTheyAgree(const Picture& a, const Picture& b) {
  Picture out(a.width, a.height);
  for (size_t i = 0; i < out.pixels.size(); ++i) {
    const int p = a.pixels[i], q = b.pixels[i];
    if (p != 0 && q != 0 && std::abs(p - q) <= agreement) out.pixels[i] = meanHalvesToEven(p, q);
  }
  return out;
}

Picture bothWaysUp(const Pair& pair, const Asked& asked) {
  return meanWhereTheyAgree(matched(pair, asked), flipped(matched(flipped(pair), asked)));
}

TEST(CheckFlip, GivesTheMeanWhereBothWaysUpAgree) {
  for (const Asked& asked : plainPasses()) {
    for (const Pair& pair : {boxes(130, 47), covered(boxes(130, 47))}) {
      const Picture wanted = bothWaysUp(pair, asked);
      ASSERT_GT(values(wanted), wanted.pixels.size() / 8);
      EXPECT_TRUE(same(wanted.pixels, matched(pair, with(asked, NADIR_CHECK_FLIP)).pixels)) << asked;
    }
  }
}

TEST(CheckFlip, DoesNotCareWhichWayIsUp) {
  const Pair pair = covered(boxes(130, 47));
  for (const Asked& plain : plainPasses()) {
    for (const uint32_t support : {0, 8}) {
      const Asked asked = supported(with(plain, NADIR_CHECK_FLIP), support);
      EXPECT_TRUE(same(matched(pair, asked).pixels, flipped(matched(flipped(pair), asked)).pixels)) << asked;
    }
  }
}

// How many of the 7 x 7 around a pixel, as far as they are in the picture, lie close to what is said of it.
uint32_t supportOf(uint32_t said, const Picture& agreed, uint32_t x, uint32_t y) {
  uint32_t found = 0;
  for (uint32_t j = y < 3 ? 0 : y - 3; j < std::min(agreed.height, y + 4); ++j)
    for (uint32_t i = x < 3 ? 0 : x - 3; i < std::min(agreed.width, x + 4); ++i)
      found += said != 0 && agreed.at(i, j) != 0 && std::abs(int(agreed.at(i, j)) - int(said)) <= 12;
  return found;
}

struct Opinions {
  Picture upright, upsideDown, agreed;

  uint16_t kept(uint32_t x, uint32_t y, uint32_t least) const {
    if (agreed.at(x, y) != 0) return agreed.at(x, y);
    const uint32_t up = supportOf(upright.at(x, y), agreed, x, y);
    const uint32_t down = supportOf(upsideDown.at(x, y), agreed, x, y);
    if (up == down || std::max(up, down) < least) return 0;
    return up > down ? upright.at(x, y) : upsideDown.at(x, y);
  }
};

TEST(Support, KeepsOpinionsThatEnoughAgreedPixelsAroundAreCloseTo) {
  for (const Asked& asked : plainPasses()) {
    const Pair pair = boxes(130, 47);
    const Opinions all{matched(pair, asked), flipped(matched(flipped(pair), asked)), bothWaysUp(pair, asked)};
    for (const uint32_t least : {1, 8, 20}) {
      const Picture got = matched(pair, supported(with(asked, NADIR_CHECK_FLIP), least));
      EXPECT_TRUE(least > 8 || values(got) > values(all.agreed)) << asked << ", " << least;
      for (uint32_t y = 0; y < got.height && !::testing::Test::HasFailure(); ++y)
        for (uint32_t x = 0; x < got.width; ++x)
          ASSERT_EQ(got.at(x, y), all.kept(x, y, least)) << x << ", " << y << ", " << asked << ", " << least;
    }
  }
}

TEST(Support, MeansNothingToAPassThatStandsAlone) {
  const Pair pair = boxes(130, 47);
  for (const uint32_t check : {NADIR_CHECK_NONE, NADIR_CHECK_SIDES}) {
    const Asked asked = with({NADIR_GRID_LEFT, 1}, check);
    EXPECT_TRUE(same(matched(pair, asked).pixels, matched(pair, supported(asked, 8)).pixels)) << asked;
  }
}

// ---- from the other side ----

bool confirmedAt(const Picture& other, int64_t column, uint32_t y, int disparity) {
  if (column < 0 || column >= int64_t{other.width}) return false;
  const int there = other.at(static_cast<uint32_t>(column), y);
  return there != 0 && std::abs(there - disparity) <= agreement;
}

// Half way between two columns either of them is the nearest.
struct Confirmation {
  bool byOne, byAll;
};

Confirmation confirmation(const Picture& view, const Picture& other, uint32_t x, uint32_t y, uint32_t grid) {
  const int disparity = view.at(x, y);
  const int64_t sixteenths = int64_t{16} * x + (grid == NADIR_GRID_LEFT ? -disparity : disparity);
  const int64_t offPicture = 4096;  // keeps what is divided positive
  const auto column = [&](int half) { return (sixteenths + half + 16 * offPicture) / 16 - offPicture; };
  const bool lower = confirmedAt(other, column(7), y, disparity), upper = confirmedAt(other, column(8), y, disparity);
  return {lower || upper, lower && upper};
}

// The view's pass, that of the other view and what is left of the first after the check.
struct Sides {
  uint32_t grid;
  Picture view, other, left;
};

// The mask is the view's, and covers nothing of the other one.
Sides sides(const Pair& pair, const Asked& asked, uint32_t check) {
  Pair open = pair;
  open.mask = Mask(pair.mask.width, pair.mask.height);
  Asked otherView = asked;
  otherView.grid = asked.grid == NADIR_GRID_LEFT ? NADIR_GRID_RIGHT : NADIR_GRID_LEFT;
  const uint32_t before = check == NADIR_CHECK_BOTH ? NADIR_CHECK_FLIP : NADIR_CHECK_NONE;
  return {asked.grid, matched(pair, with(asked, before)), matched(open, otherView), matched(pair, with(asked, check))};
}

void expectWhatIsConfirmed(const Sides& s) {
  size_t kept = 0, gone = 0;
  for (uint32_t y = 0; y < s.view.height; ++y) {
    for (uint32_t x = 0; x < s.view.width; ++x) {
      const uint16_t before = s.view.at(x, y), after = s.left.at(x, y);
      ASSERT_TRUE(after == before || after == 0) << x << ", " << y;
      if (before == 0) continue;
      const Confirmation by = confirmation(s.view, s.other, x, y, s.grid);
      ASSERT_TRUE(after == 0 ? !by.byAll : by.byOne) << x << ", " << y << ": " << before << " became " << after;
      ++(after == 0 ? gone : kept);
    }
  }
  EXPECT_GT(kept, s.view.pixels.size() / 16);
  EXPECT_GT(gone, s.view.pixels.size() / 100);
}

TEST(CheckSides, KeepsWhatTheOtherViewConfirms) {
  for (const Asked& asked : plainPasses()) {
    SCOPED_TRACE(asked);
    expectWhatIsConfirmed(sides(boxes(130, 47), asked, NADIR_CHECK_SIDES));
    expectWhatIsConfirmed(sides(covered(boxes(130, 47)), asked, NADIR_CHECK_SIDES));
  }
}

TEST(CheckSides, WhatOnlyOneViewShowsGoes) {
  const uint32_t shift = 20;
  const Pair pair = shiftedBy(shift, 130, 40);
  for (const Asked& plain : plainPasses()) {
    Picture got = matched(pair, with(plain, NADIR_CHECK_SIDES));
    if (plain.grid == NADIR_GRID_LEFT) lab::mirror(got);
    for (uint32_t y = 0; y < got.height; ++y)
      for (uint32_t x = got.width - shift + 2; x < got.width; ++x) ASSERT_EQ(got.at(x, y), 0) << x << ", " << plain;
  }
}

// Each check costs one pass: the other view is not turned upside down as well.
TEST(CheckBoth, KeepsWhatTheOtherViewConfirmsOfBothWaysUp) {
  for (const Asked& asked : plainPasses()) {
    SCOPED_TRACE(asked);
    expectWhatIsConfirmed(sides(boxes(130, 47), asked, NADIR_CHECK_BOTH));
    expectWhatIsConfirmed(sides(covered(boxes(130, 47)), asked, NADIR_CHECK_BOTH));
    expectWhatIsConfirmed(sides(boxes(130, 47), supported(asked, 8), NADIR_CHECK_BOTH));
  }
}

// ---- surfaces ----

// The values of a pixel's 7 x 7 that are no further from its own than that.
std::vector<int> window(const Picture& picture, uint32_t x, uint32_t y, int within) {
  const int own = picture.at(x, y);
  std::vector<int> out;
  for (uint32_t j = y < 3 ? 0 : y - 3; j < std::min(picture.height, y + 4); ++j) {
    for (uint32_t i = x < 3 ? 0 : x - 3; i < std::min(picture.width, x + 4); ++i) {
      const int value = picture.at(i, j);
      if (value != 0 && std::abs(value - own) <= within) out.push_back(value);
    }
  }
  return out;
}

// How the left picture, at the place that a pixel's disparity names, differs from the right one, and how that slopes.
struct Seen {
  bool known = false;
  double slope = 0, difference = 0;
};

Seen seenAt(const Pair& pair, const Picture& disparity, int64_t x, int64_t y) {
  if (x < 1 || y < 0 || x + 1 >= disparity.width || y >= disparity.height) return {};
  const auto *left = pair.left.row(static_cast<uint32_t>(y)), *right = pair.right.row(static_cast<uint32_t>(y));
  const uint16_t d = disparity.at(static_cast<uint32_t>(x), static_cast<uint32_t>(y));
  const int64_t at = x + d / 16;
  if (d == 0 || at + 1 >= disparity.width) return {};
  const double part = d % 16 / 16.0;
  return {true, (right[x + 1] - right[x - 1]) / 2.0, left[at] * (1 - part) + left[at + 1] * part - right[x]};
}

// How far a pixel moves, in sixteenths: a Gauss-Newton step over 5 x 3 pixels, means taken off.
double step(const Pair& pair, const Picture& disparity, int64_t x, int64_t y) {
  std::vector<Seen> around;
  for (int64_t j = y - 1; j <= y + 1; ++j)
    for (int64_t i = x - 2; i <= x + 2; ++i)
      if (const Seen seen = seenAt(pair, disparity, i, j); seen.known) around.push_back(seen);
  if (around.size() < 4) return 0;
  Seen mean;
  for (const Seen& seen : around)
    mean.slope += seen.slope / double(around.size()), mean.difference += seen.difference / double(around.size());
  double variance = 0, covariance = 0;
  for (const Seen& seen : around) {
    variance += (seen.slope - mean.slope) * (seen.slope - mean.slope) + 20 * 20;
    covariance += (seen.slope - mean.slope) * (seen.difference - mean.difference);
  }
  return std::max(-4.0, std::min(4.0, -16 * covariance / variance));
}

Picture movedOnRightGrid(const Pair& pair, const Picture& disparity) {
  Picture out = disparity;
  for (uint32_t y = 0; y < out.height; ++y) {
    for (uint32_t x = 0; x < out.width; ++x) {
      const int moved = out.at(x, y) + static_cast<int>(std::nearbyint(step(pair, disparity, x, y)));
      if (out.at(x, y) != 0) out.at(x, y) = static_cast<uint16_t>(std::max(1, moved));
    }
  }
  return out;
}

// The left view is the right one of the pair in a mirror.
Picture moved(const Pair& pair, const Picture& disparity, uint32_t grid) {
  if (grid == NADIR_GRID_RIGHT) return movedOnRightGrid(pair, disparity);
  return mirrored(movedOnRightGrid(mirrored(pair), mirrored(disparity)));
}

// `plain` is what is taken the mean of, `refined` what came of a pixel.
void forEachRefined(const std::function<void(const Picture& plain, uint32_t x, uint32_t y, int refined)>& check) {
  for (const Asked& asked : plainPasses()) {
    SCOPED_TRACE(asked);
    for (const Pair& pair : {boxes(130, 47), covered(boxes(130, 47)), shiftedBy(20, 130, 47)}) {
      const Picture plain = moved(pair, matched(pair, asked), asked.grid), refined = matched(pair, refinedOf(asked));
      for (uint32_t y = 0; y < plain.height && !::testing::Test::HasFailure(); ++y)
        for (uint32_t x = 0; x < plain.width; ++x) check(plain, x, y, refined.at(x, y));
    }
  }
}

TEST(RefineSurface, MakesNothingFromNothing) {
  forEachRefined([](const Picture& plain, uint32_t x, uint32_t y, int refined) {
    EXPECT_TRUE(plain.at(x, y) != 0 || refined == 0) << x << ", " << y;
  });
}

TEST(RefineSurface, GivesTheMeanOfASurfaceWithoutEdges) {
  size_t checked = 0;
  forEachRefined([&checked](const Picture& plain, uint32_t x, uint32_t y, int refined) {
    const std::vector<int> all = window(plain, x, y, 65535);
    if (all.size() < 49) return;
    const auto [least, most] = std::minmax_element(all.begin(), all.end());
    if (*most - *least > 12) return;
    double sum = 0;
    for (const int value : all) sum += value;
    EXPECT_LE(std::abs(refined - sum / double(all.size())), 0.5) << x << ", " << y;
    ++checked;
  });
  EXPECT_GT(checked, 4000u);
}

TEST(RefineSurface, APixelWithFewAroundItGoes) {
  size_t checked = 0;
  forEachRefined([&checked](const Picture& plain, uint32_t x, uint32_t y, int refined) {
    if (plain.at(x, y) == 0 || window(plain, x, y, agreement).size() >= 12) return;
    EXPECT_EQ(refined, 0) << x << ", " << y;
    ++checked;
  });
  EXPECT_GT(checked, 100u);
}

TEST(RefineSurface, LooksNotBeyondAnEdge) {
  size_t checked = 0;
  forEachRefined([&checked](const Picture& plain, uint32_t x, uint32_t y, int refined) {
    if (refined == 0) return;
    const std::vector<int> near = window(plain, x, y, agreement);
    const auto [least, most] = std::minmax_element(near.begin(), near.end());
    EXPECT_TRUE(*least <= refined && refined <= *most) << x << ", " << y << ": " << refined;
    ++checked;
  });
  EXPECT_GT(checked, 10000u);
}

double squaredErrors(const Picture& picture, double truth) {
  double sum = 0;
  size_t count = 0;
  for (const uint16_t value : picture.pixels) {
    if (value == 0 || std::abs(value - truth) > agreement) continue;
    sum += (value - truth) * (value - truth);
    ++count;
  }
  return sum / double(count);
}

TEST(RefineSurface, LessensTheError) {
  const Pair pair = shiftedBy(20, 130, 47);
  for (const Asked& asked : plainPasses())
    EXPECT_LT(squaredErrors(matched(pair, refinedOf(asked)), 320), squaredErrors(matched(pair, asked), 320)) << asked;
}

// The matcher draws them to whole pixels; of its squared errors three quarters go at least.
TEST(RefineSurface, ReadsFractionsOfAPixelFromThePictures) {
  for (const Asked& asked : plainPasses()) {
    for (const double shift : {20.125, 20.25, 20.375, 20.625, 20.75, 20.875}) {
      const Pair pair = shiftedBy(shift, 200, 47);
      const double plain = squaredErrors(matched(pair, asked), shift * 16);
      EXPECT_LT(squaredErrors(matched(pair, refinedOf(asked)), shift * 16), plain / 4) << asked << ", " << shift;
    }
  }
}

Pair brighter(Pair pair) {
  for (uint16_t& pixel : pair.left.pixels) pixel = static_cast<uint16_t>(pixel + 300);
  return pair;
}

TEST(RefineSurface, OnePictureMayBeBrighter) {
  const Pair pair = shiftedBy(20.375, 200, 47);
  for (const Asked& plain : plainPasses()) {
    const Asked asked = refinedOf(plain);
    EXPECT_LT(squaredErrors(matched(brighter(pair), asked), 326), 1.1 * squaredErrors(matched(pair, asked), 326))
        << asked;
  }
}

// ---- smaller pictures for what is near ----

// The share of the pixels that both views show whose disparity is within a pixel and a half of the truth. The rim is
// left out: what the matcher cannot work on there is four times as wide in pictures of a quarter of the size.
double shareFound(const Picture& got, uint32_t grid, const std::function<double(uint32_t y)>& shiftAt) {
  const double rim = 16;
  size_t all = 0, found = 0;
  for (uint32_t y = 12; y + 12 < got.height; ++y) {
    const double shift = shiftAt(y);
    for (uint32_t x = 0; x < got.width; ++x) {
      const double fromSide = grid == NADIR_GRID_LEFT ? got.width - 1.0 - x : x;
      if (fromSide < rim || fromSide + shift + rim > got.width - 1) continue;
      ++all;
      found += got.at(x, y) != 0 && std::abs(got.at(x, y) / 16.0 - shift) <= 1.5;
    }
  }
  EXPECT_GT(all, 200u);
  return double(found) / double(all);
}

double shareFound(double shift, uint32_t width, uint32_t grid, uint32_t range, uint32_t height = 48) {
  const Asked asked{grid, 1, NADIR_CHECK_NONE, NADIR_REFINE_NONE, range};
  return shareFound(matched(shiftedBy(shift, width, height), asked), grid, [shift](uint32_t) { return shift; });
}

TEST(Range, HalfTheSizeFindsWhatIsNear) {
  for (const double shift : {63.0, 70.0, 71.0, 93.5, 104.0, 118.0, 122.0}) {
    for (const uint32_t grid : bothGrids) {
      EXPECT_GT(shareFound(shift, 200, grid, NADIR_RANGE_122), 0.99) << shift << ", " << grid;
      EXPECT_EQ(shareFound(shift, 200, grid, NADIR_RANGE_61), 0) << shift << ", " << grid;
    }
  }
}

TEST(Range, AQuarterOfTheSizeFindsWhatIsNearer) {
  for (const double shift : {124.0, 130.0, 131.0, 180.0, 203.0, 230.0, 243.0}) {
    for (const uint32_t grid : bothGrids) {
      EXPECT_GT(shareFound(shift, 320, grid, NADIR_RANGE_244), 0.98) << shift << ", " << grid;
      EXPECT_EQ(shareFound(shift, 320, grid, NADIR_RANGE_122), 0) << shift << ", " << grid;
    }
  }
}

TEST(Range, AQuarterOfTheSizeFindsWhatHalfTheSizeFinds) {
  for (const double shift : {20.0, 70.0, 118.0})
    EXPECT_GT(shareFound(shift, 256, NADIR_GRID_LEFT, NADIR_RANGE_244), 0.98) << shift;
}

TEST(Range, PicturesMayHaveOddSides) {
  for (const uint32_t width : {129u, 201u, 202u, 203u}) {
    for (const uint32_t height : {47u, 49u, 50u})
      EXPECT_GT(shareFound(78, width, NADIR_GRID_LEFT, NADIR_RANGE_122, height), 0.98) << width << " x " << height;
  }
}

TEST(Range, QuartersMayHaveRestsOfAllSizes) {
  for (const uint32_t width : {257u, 258u, 259u}) {
    for (const uint32_t height : {49u, 50u, 51u})
      EXPECT_GT(shareFound(150, width, NADIR_GRID_RIGHT, NADIR_RANGE_244, height), 0.98) << width << " x " << height;
  }
}

TEST(Range, WhatIsFarStaysAsItIsInLargePictures) {
  for (const double shift : {10.0, 31.0, 55.0}) {
    for (const Asked& plain : plainPasses()) {
      Asked asked = plain;
      asked.range = NADIR_RANGE_122;
      const Pair pair = shiftedBy(shift);
      EXPECT_TRUE(same(matched(pair, plain).pixels, matched(pair, asked).pixels)) << shift << ", " << asked;
    }
  }
}

TEST(Range, ASlopeHasNoSeam) {
  const auto shiftAt = [](uint32_t y) { return 50 + y / 4.0; };
  const Pair pair = shifted(200, 108, shiftAt);
  for (const uint32_t range : {NADIR_RANGE_122, NADIR_RANGE_244}) {
    for (const uint32_t grid : bothGrids) {
      const Asked asked{grid, 1, NADIR_CHECK_NONE, NADIR_REFINE_NONE, range};
      EXPECT_GT(shareFound(matched(pair, asked), grid, shiftAt), 0.998) << asked;
    }
  }
}

TEST(Range, PicturesDoNotBecomeNarrowerThanSixtyFourColumns) {
  const auto found = [](uint32_t width, double shift, uint32_t range) {
    return matched(shiftedBy(shift, width), {NADIR_GRID_LEFT, 0, NADIR_CHECK_NONE, NADIR_REFINE_NONE, range}).pixels;
  };
  EXPECT_TRUE(same(found(127, 70, NADIR_RANGE_61), found(127, 70, NADIR_RANGE_122)));
  EXPECT_TRUE(same(found(127, 70, NADIR_RANGE_61), found(127, 70, NADIR_RANGE_244)));
  EXPECT_FALSE(same(found(128, 70, NADIR_RANGE_61), found(128, 70, NADIR_RANGE_122)));
  EXPECT_TRUE(same(found(255, 150, NADIR_RANGE_122), found(255, 150, NADIR_RANGE_244)));
  EXPECT_FALSE(same(found(256, 150, NADIR_RANGE_122), found(256, 150, NADIR_RANGE_244)));
}

// ---- all of them together ----

std::vector<uint32_t> supportsOf(uint32_t check) {
  if (check == NADIR_CHECK_FLIP || check == NADIR_CHECK_BOTH) return {0, 8};
  return {0};
}

std::vector<Asked> everyPass() {
  std::vector<Asked> out;
  for (const Asked& plain : plainPasses())
    for (const uint32_t check : {NADIR_CHECK_NONE, NADIR_CHECK_FLIP, NADIR_CHECK_SIDES, NADIR_CHECK_BOTH})
      for (const uint32_t refine : {NADIR_REFINE_NONE, NADIR_REFINE_SURFACE})
        for (const uint32_t range : {NADIR_RANGE_61, NADIR_RANGE_122})
          for (const uint32_t support : supportsOf(check))
            out.push_back({plain.grid, plain.postprocess, check, refine, range, support});
  return out;
}

Pair partlyNear() {
  return covered(shifted(130, 37, [](uint32_t y) { return y < 18 ? 20.0 : 75.0; }));
}

// Each differs from the defaults in one setting.
std::vector<Asked> onePassMore() {
  const uint32_t plain = NADIR_CHECK_NONE, rough = NADIR_REFINE_NONE;
  return {{NADIR_GRID_LEFT, 0, NADIR_CHECK_FLIP},
          {NADIR_GRID_LEFT, 0, NADIR_CHECK_SIDES},
          {NADIR_GRID_LEFT, 0, plain, NADIR_REFINE_SURFACE},
          {NADIR_GRID_LEFT, 0, plain, rough, NADIR_RANGE_122}};
}

TEST(EveryPass, LeavesCoveredPixelsWithoutDisparity) {
  const Pair pair = partlyNear();
  for (const Asked& asked : everyPass()) {
    const Picture got = matched(pair, asked);
    for (size_t i = 0; i < got.pixels.size(); ++i)
      ASSERT_TRUE(pair.mask.pixels[i] == 0 || got.pixels[i] == 0) << i << ", " << asked;
  }
}

TEST(EveryPass, CountsEachPixelOnce) {
  const Pair pair = partlyNear();
  for (const Asked& asked : everyPass()) {
    const Matched got = matchedWithCounts(pair, asked);
    const NadirPixelCounts& n = got.pixels;
    EXPECT_EQ(n.value, values(got.disparity)) << asked;
    EXPECT_EQ(n.value + n.ambiguous + n.removed + n.masked + n.border, got.disparity.pixels.size()) << asked;
  }
}

TEST(EveryPass, OfTheLeftGridIsTheMirroredRightOneOfTheMirroredPair) {
  const Pair pair = partlyNear(), other = mirrored(pair);
  for (Asked asked : everyPass()) {
    if (asked.grid == NADIR_GRID_RIGHT) continue;
    const Picture left = matched(pair, asked);
    asked.grid = NADIR_GRID_RIGHT;
    EXPECT_TRUE(same(left.pixels, mirrored(matched(other, asked)).pixels)) << asked;
  }
}

TEST(EveryPass, WithoutMeansAndCleanUpAMaskHidesAndNothingElse) {
  const Pair pair = partlyNear();
  Pair open = pair;
  open.mask = Mask(130, 37);
  for (const Asked& asked : everyPass()) {
    if (asked.postprocess != 0 || asked.refine != NADIR_REFINE_NONE) continue;
    Picture wanted = matched(open, asked);
    for (size_t i = 0; i < wanted.pixels.size(); ++i)
      if (pair.mask.pixels[i] != 0) wanted.pixels[i] = 0;
    EXPECT_TRUE(same(wanted.pixels, matched(pair, asked).pixels)) << asked;
  }
}

TEST(EveryPass, ForgetsTheFrameBefore) {
  const Pair before = boxes(130, 37), pair = shiftedBy(30, 130, 37);
  for (const Asked& asked : everyPass()) {
    const Road road = makeRoad(cameraOf(pair.left), settingsOf(asked));
    const Result result = makeResult(road);
    processed(road, frameOf(before.left, before.right), result);
    const NadirFindings findings = processed(road, frameOf(pair.left, pair.right), result);
    EXPECT_TRUE(same(matched(pair, asked).pixels, gridOf<uint16_t>(findings.disparity).pixels)) << asked;
  }
}

TEST(EveryPass, IsNotForGivenDisparities) {
  const Grid<float> given(96, 60, 8.0F);
  const auto all = [&given](const Asked& asked) {
    NadirSettings settings = settingsOf(asked);
    settings.until = NADIR_UNTIL_ALL;
    const Road road = makeRoad(smallCamera(), settings);
    const Result result = makeResult(road);
    return everythingIn(processed(road, frameOf(given), result));
  };
  const std::string wanted = all({});
  for (const Asked& asked : onePassMore()) EXPECT_TRUE(wanted == all(asked)) << asked;
}

TEST(EveryPass, EndsWithOneLastStage) {
  const Pair pair = boxes(130, 37);
  for (const Asked& asked : everyPass()) {
    const Road road = makeRoad(cameraOf(pair.left), settingsOf(asked));
    const Result result = makeResult(road);
    std::vector<std::string> stages;
    NadirFrame frame = frameOf(pair.left, pair.right);
    frame.user = &stages;
    frame.on_stage = [](void* user, const char* name) {
      static_cast<std::vector<std::string>*>(user)->push_back(name ? name : "");
    };
    processed(road, frame, result);
    ASSERT_GE(stages.size(), 3u);
    EXPECT_EQ(stages.back(), "") << asked;
    EXPECT_EQ(std::count(stages.begin(), stages.end(), ""), 1) << asked;
  }
}

TEST(EveryPass, TakesNoLessMemoryThanThePlainOne) {
  const NadirCamera camera = cameraOf(Picture(300, 40));
  const auto bytes = [&camera](const Asked& asked) {
    const NadirSettings settings = settingsOf(asked);
    return nadir_road_bytes(&camera, &settings, 0);
  };
  for (const Asked& asked : everyPass()) {
    EXPECT_GE(bytes(asked), bytes({asked.grid, asked.postprocess})) << asked;
    Asked longest = asked;
    longest.range = NADIR_RANGE_244;
    EXPECT_GE(bytes(longest), bytes(asked)) << asked;
  }
}

// ---- which range a height needs ----

constexpr uint32_t untouched = 7;

struct RangeAnswer {
  NadirStatus status;
  uint32_t range;
};

RangeAnswer rangeFor(const NadirCamera& camera, const NadirSettings& settings, double tallest) {
  RangeAnswer answer{NADIR_OK, untouched};
  answer.status = nadir_road_range(&camera, &settings, tallest, &answer.range);
  return answer;
}

void expectRefused(const RangeAnswer& answer, NadirStatus status) {
  EXPECT_EQ(answer.status, status);
  EXPECT_EQ(answer.range, untouched);
}

// A camera whose pictures are wide enough for all ranges and that sees all of its map from 1 m on.
NadirCamera wideCamera(double height = 2000) {
  NadirCamera camera = smallCamera();
  camera.width_px = 256;
  camera.height_px = 200;
  camera.principal_x_px = 127.5;
  camera.principal_y_px = 99.5;
  camera.focal_px = 300;
  camera.height_mm = height;
  return camera;
}

uint32_t rangeOf(const NadirCamera& camera, double tallest) {
  const RangeAnswer answer = rangeFor(camera, defaultSettings(camera), tallest);
  EXPECT_EQ(answer.status, NADIR_OK);
  return answer.range;
}

TEST(RoadRange, NeedsItsPointers) {
  const NadirCamera camera = wideCamera();
  const NadirSettings settings = defaultSettings(camera);
  uint32_t range = untouched;
  EXPECT_EQ(nadir_road_range(nullptr, &settings, 100, &range), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_road_range(&camera, nullptr, 100, &range), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_road_range(&camera, &settings, 100, nullptr), NADIR_NULL_POINTER);
  EXPECT_EQ(range, untouched);
}

TEST(RoadRange, RefusesHeightsThatNothingHas) {
  const NadirCamera camera = wideCamera();
  for (const double tallest : {-1e-9, -1.0, 65534.001, 1e9, std::nan(""), HUGE_VAL, -HUGE_VAL})
    expectRefused(rangeFor(camera, defaultSettings(camera), tallest), NADIR_BAD_SETTING);
}

TEST(RoadRange, TakesHeightsAtTheLimits) {
  const NadirCamera camera = wideCamera();
  for (const double tallest : {0.0, 65534.0})
    EXPECT_EQ(rangeFor(camera, defaultSettings(camera), tallest).status, NADIR_OK) << tallest;
}

TEST(RoadRange, RefusesWhatNoRoadIsMadeOf) {
  NadirCamera camera = wideCamera();
  const NadirSettings settings = defaultSettings(camera);
  NadirSettings other = settings;
  other.range = 60;
  expectRefused(rangeFor(camera, other, 100), NADIR_BAD_SETTING);
  camera.tilt_deg = 100;
  expectRefused(rangeFor(camera, settings, 100), NADIR_BAD_CAMERA);
}

TEST(RoadRange, RefusesRecordsOfOtherSizes) {
  const NadirCamera camera = wideCamera();
  const NadirSettings settings = defaultSettings(camera);
  for (const uint32_t size : {0u, 4u, 65536u}) {
    NadirCamera otherCamera = camera;
    otherCamera.size = size;
    expectRefused(rangeFor(otherCamera, settings, 100), NADIR_BAD_RECORD);
    NadirSettings otherSettings = settings;
    otherSettings.size = size;
    expectRefused(rangeFor(camera, otherSettings, 100), NADIR_BAD_RECORD);
  }
}

TEST(RoadRange, IsOfAMap) {
  expectRefused(rangeFor(wideCamera(), settingsUntil(NADIR_UNTIL_MATCH, wideCamera()), 100), NADIR_NOTHING_FOUND);
}

TEST(RoadRange, IsShortForFlatGroundFarAway) { EXPECT_EQ(rangeOf(wideCamera(4000), 0), uint32_t{NADIR_RANGE_61}); }

TEST(RoadRange, IsTheLongestForWhatNoneMeasures) { EXPECT_EQ(rangeOf(wideCamera(), 65534), uint32_t{NADIR_RANGE_244}); }

TEST(RoadRange, DoesNotFallWithTheHeightOfThings) {
  for (const double height : {600.0, 1000.0, 2000.0, 4000.0}) {
    uint32_t last = 0;
    for (double tallest = 0; tallest < 5000; tallest += 50) {
      const uint32_t range = rangeOf(wideCamera(height), tallest);
      EXPECT_GE(range, last) << height << ", " << tallest;
      last = range;
    }
  }
}

TEST(RoadRange, DoesNotGrowWithTheHeightOfTheCamera) {
  for (const double tallest : {0.0, 300.0, 1000.0}) {
    uint32_t last = NADIR_RANGE_244;
    for (double height = 1000; height < 6000; height += 100) {
      const uint32_t range = rangeOf(wideCamera(height), tallest);
      EXPECT_LE(range, last) << height << ", " << tallest;
      last = range;
    }
  }
}

TEST(RoadRange, DoesNotAskWhatRangeThereIs) {
  const NadirCamera camera = wideCamera(1200);
  NadirSettings settings = defaultSettings(camera);
  for (const double tallest : {0.0, 500.0, 900.0, 3000.0}) {
    for (const uint32_t range : {NADIR_RANGE_61, NADIR_RANGE_122, NADIR_RANGE_244}) {
      settings.range = range;
      EXPECT_EQ(rangeFor(camera, settings, tallest).range, rangeOf(camera, tallest)) << range << ", " << tallest;
    }
  }
}

TEST(RoadRange, LeavesOutWhatDoesNotLengthenIt) {
  NadirCamera camera = wideCamera();
  const std::array<std::array<uint32_t, 2>, 4> longest{
      {{127, NADIR_RANGE_61}, {128, NADIR_RANGE_122}, {255, NADIR_RANGE_122}, {256, NADIR_RANGE_244}}};
  for (const auto& [width, range] : longest) {
    camera.width_px = width;
    EXPECT_EQ(rangeOf(camera, 65534), range) << width;
  }
}

// What a processed frame says of the range that it was matched with.
double leastTop(const NadirCamera& camera, uint32_t range) {
  NadirSettings settings = defaultSettings(camera);
  settings.range = range;
  const Road road = makeRoad(camera, settings);
  const Result result = makeResult(road);
  const Grid<float> given(camera.width_px, camera.height_px, 20.0F);
  return processed(road, frameOf(given), result).trust->least_top_mm;
}

TEST(RoadRange, IsTheLeastWhoseFramesMeasureSoHigh) {
  for (NadirCamera camera : {wideCamera(1200), wideCamera(2000)}) {
    for (const double tilt : {0.0, -12.0}) {
      camera.tilt_deg = tilt;
      const double to61 = leastTop(camera, NADIR_RANGE_61), to122 = leastTop(camera, NADIR_RANGE_122);
      ASSERT_LT(to61, to122);
      ASSERT_LT(to122, leastTop(camera, NADIR_RANGE_244));
      EXPECT_EQ(rangeOf(camera, to61), uint32_t{NADIR_RANGE_61});
      EXPECT_EQ(rangeOf(camera, to61 + 0.01), uint32_t{NADIR_RANGE_122});
      EXPECT_EQ(rangeOf(camera, to122), uint32_t{NADIR_RANGE_122});
      EXPECT_EQ(rangeOf(camera, to122 + 0.01), uint32_t{NADIR_RANGE_244});
    }
  }
}

}  // namespace
}  // namespace nadir::test
