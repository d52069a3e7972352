// The cases of the road's kernels, each against a model that says the same pixel by pixel.
#include <nadir/camera.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <list>

#include "ground/kernels/kernels.hpp"
#include "tests/kernels/harness.hpp"

namespace nadir::test {
namespace {

using ground::AgreedRows;
using ground::agreement;
using ground::AgreeRow;
using ground::closeness;
using ground::CloseRow;
using ground::CodeRow;
using ground::comparedBeside;
using ground::ComparedRow;
using ground::ComparedRows;
using ground::comparedRows;
using ground::CompareRow;
using ground::HalveRow;
using ground::leastDisparity;
using ground::MaskRow;
using ground::MeanRow;
using ground::MoveRow;
using ground::nearby;
using ground::nearbySide;
using ground::NearRows;
using ground::noCell;
using ground::PictureRow;
using ground::PixelsOfGiven;
using ground::PixelsOfStored;
using ground::PlaceRow;
using ground::Placing;
using ground::RankedValue;
using ground::roadKernels;
using ground::SupportRow;

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr size_t benchWidth = 640, benchHeight = 480;

// ---- pictures ----

uint16_t wide(uint16_t pixel) { return pixel; }
uint16_t wide(uint8_t pixel) { return pixel == 0 ? uint16_t{1} : static_cast<uint16_t>(16 * pixel); }

// Rows at odd addresses too: those that begin one byte behind the guard page.
template <class T, bool mirrored>
void checkPicture(Check& check, PictureRow, PictureRow tested) {
  forEachInput(check, 0, widest, [&](size_t n, Fill fill, Guard side) {
    const std::vector<T> pixels = filled<T>(check.random, fill, n, 0, std::numeric_limits<T>::max());
    const size_t gap = side == Guard::before ? 1 : 0;
    const Guarded<uint8_t> src(n * sizeof(T) + gap, side);
    if (n) std::memcpy(src.data() + gap, pixels.data(), n * sizeof(T));
    Output<uint16_t> want(n, side), got(n, side);
    for (size_t i = 0; i < n; ++i) want.data()[i] = wide(pixels[mirrored ? n - 1 - i : i]);
    tested(src.data() + gap, got.data(), n);
    check.equal("pixel", want, got);
  });
}

template <class T>
void checkMirror(Check& check, void (*)(const T*, T*, size_t), void (*tested)(const T*, T*, size_t)) {
  forEachInput(check, 0, widest, [&](size_t n, Fill fill, Guard side) {
    const Guarded<T> src(filled<T>(check.random, fill, n, 0, std::numeric_limits<T>::max()), side);
    Output<T> want(n, side), got(n, side);
    std::reverse_copy(src.begin(), src.end(), want.data());
    tested(src.data(), got.data(), n);
    check.equal("element", want, got);
  });
}

uint16_t meanOfKnown(const std::vector<uint16_t>& block) {
  uint32_t sum = 0, count = 0;
  for (const uint16_t pixel : block) sum += pixel, count += pixel != 0;
  return static_cast<uint16_t>(count ? (sum + count / 2) / count : 0);
}

// A third of the pixels has no data.
std::vector<uint16_t> withHoles(lab::Random& random, std::vector<uint16_t> pixels) {
  for (uint16_t& pixel : pixels)
    if (random.below(3) == 0) pixel = 0;
  return pixels;
}

void checkHalve(Check& check, HalveRow, HalveRow tested) {
  forEachInput(check, 0, widest, [&](size_t n, Fill fill, Guard side) {
    const auto row = [&] { return withHoles(check.random, filled<uint16_t>(check.random, fill, 2 * n, 0, 65535)); };
    const Guarded<uint16_t> top(row(), side), bottom(row(), side);
    Output<uint16_t> want(n, side), got(n, side);
    for (size_t i = 0; i < n; ++i)
      want.data()[i] = meanOfKnown({top[2 * i], top[2 * i + 1], bottom[2 * i], bottom[2 * i + 1]});
    tested(top.data(), bottom.data(), got.data(), n);
    check.equal("pixel", want, got);
  });
}

// ---- opinions ----

// Disparities of a surface that wanders by a few sixteenths, with holes and steps.
std::vector<uint16_t> surface(lab::Random& random, size_t n, uint32_t wander) {
  std::vector<uint16_t> row(n);
  uint32_t base = 32 + random.below(900);
  for (uint16_t& d : row) {
    if (random.below(9) == 0) base = 32 + random.below(3900);
    d = static_cast<uint16_t>(random.below(5) == 0 ? 0 : base + random.below(wander));
  }
  return row;
}

uint32_t apart(uint16_t a, uint16_t b) { return static_cast<uint32_t>(std::abs(int32_t{a} - int32_t{b})); }

void checkAgree(Check& check, AgreeRow, AgreeRow tested) {
  forEachInput(check, 0, widest, [&](size_t n, Fill fill, Guard side) {
    const std::vector<uint16_t> before = surface(check.random, n, 40);
    std::vector<uint16_t> opinion = filled<uint16_t>(check.random, fill, n, 0, 65535);
    for (size_t i = 0; i < n; ++i)
      if (check.random.below(4)) opinion[i] = static_cast<uint16_t>(before[i] + check.random.below(60));
    const Guarded<uint16_t> other(opinion, side);
    Output<uint16_t> want(n, side), own(n, side);
    own.set(before);
    for (size_t i = 0; i < n; ++i) {
      const bool agreed = before[i] && other[i] && apart(before[i], other[i]) <= agreement;
      want.data()[i] = static_cast<uint16_t>(agreed ? std::nearbyint((before[i] + other[i]) / 2.0) : 0);
    }
    tested(other.data(), own.data(), n);
    check.equal("disparity", want, own);
  });
}

bool areClose(uint16_t a, uint16_t b) { return a && b && apart(a, b) <= closeness; }

// How many of the 7 x 7 around a pixel are close to what is said of it.
uint16_t support(const std::vector<std::vector<uint16_t>>& agreed, size_t i, uint16_t said) {
  uint16_t found = 0;
  for (const std::vector<uint16_t>& row : agreed)
    for (size_t k = i; k < i + nearbySide; ++k) found = static_cast<uint16_t>(found + areClose(said, row[k]));
  return found;
}

uint16_t better(uint16_t own, uint16_t ofOwn, uint16_t other, uint16_t ofOther, uint16_t least) {
  if (ofOwn == ofOther || std::max(ofOwn, ofOther) < least) return 0;
  return ofOwn > ofOther ? own : other;
}

std::vector<uint16_t> scattered(lab::Random& random, const std::vector<uint16_t>& base, uint32_t by) {
  std::vector<uint16_t> out;
  for (const uint16_t d : base)
    out.push_back(static_cast<uint16_t>(d && random.below(4) ? d + random.below(by) : random.below(50)));
  return out;
}

void checkSupport(Check& check, SupportRow, SupportRow tested) {
  forEachInput(check, 0, widest, [&](size_t n, Fill, Guard side) {
    const auto base = surface(check.random, n + 2 * nearby, 16);
    std::vector<std::vector<uint16_t>> rows;
    std::list<Guarded<uint16_t>> known;
    AgreedRows agreed = {};
    for (const uint16_t*& row : agreed.row) {
      rows.push_back(scattered(check.random, base, 12));
      for (uint16_t& d : rows.back()) d = static_cast<uint16_t>(check.random.below(3) ? d : 0);
      row = known.emplace_back(rows.back(), side).data();
    }
    const std::vector<uint16_t> middle(base.begin() + nearby, base.end() - nearby);
    const Guarded<uint16_t> other(scattered(check.random, middle, 40), side);
    Output<uint16_t> want(n, side), own(n, side);
    own.set(scattered(check.random, middle, 40));
    const auto least = static_cast<uint16_t>(1 + check.random.below(30));
    for (size_t i = 0; i < n; ++i) {
      const uint16_t mine = own.data()[i], both = rows[nearby][i + nearby];
      want.data()[i] = both ? both : better(mine, support(rows, i, mine), other[i], support(rows, i, other[i]), least);
    }
    tested(agreed, other.data(), n, least, own.data());
    check.equal("disparity", want, own);
  });
}

// What a pixel's stretch of a row says more than it does, and how many pixels say it.
struct Stretch {
  int32_t more = 0;
  uint32_t count = 0;
};

Stretch stretchOf(const uint16_t* row, size_t i) {
  Stretch stretch;
  for (size_t k = i; k < i + nearbySide; ++k)
    if (areClose(row[i + nearby], row[k])) stretch.more += row[k] - row[i + nearby], ++stretch.count;
  return stretch;
}

void checkClose(Check& check, CloseRow, CloseRow tested) {
  forEachInput(check, 0, widest, [&](size_t n, Fill, Guard side) {
    const Guarded<uint16_t> row(surface(check.random, n + 2 * nearby, 20), side);
    Output<uint16_t> wantMore(n, side), wantCount(n, side), more(n, side), count(n, side);
    for (size_t i = 0; i < n; ++i) {
      const Stretch stretch = stretchOf(row.data(), i);
      wantMore.data()[i] = static_cast<uint16_t>(stretch.more);
      wantCount.data()[i] = static_cast<uint16_t>(stretch.count);
    }
    tested(row.data(), n, more.data(), count.data());
    check.equal("sum", wantMore, more);
    check.equal("count", wantCount, count);
  });
}

// The mean over what the column's close pixels are close to.
uint16_t meanAround(const std::vector<std::vector<uint16_t>>& rows, size_t i, uint16_t least) {
  const uint16_t own = rows[nearby][i + nearby];
  int64_t sum = 0, count = 0;
  for (const std::vector<uint16_t>& row : rows) {
    if (!areClose(own, row[i + nearby])) continue;
    const Stretch stretch = stretchOf(row.data(), i);
    sum += stretch.more + int64_t{row[i + nearby] - own} * stretch.count;
    count += stretch.count;
  }
  if (count == 0 || count < least) return 0;
  return static_cast<uint16_t>(own + std::nearbyint(static_cast<double>(sum) / static_cast<double>(count)));
}

void checkMean(Check& check, MeanRow, MeanRow tested) {
  forEachInput(check, 0, widest, [&](size_t n, Fill, Guard side) {
    const auto base = surface(check.random, n + 2 * nearby, 16);
    std::vector<std::vector<uint16_t>> rows(nearbySide, base);
    std::list<Guarded<uint16_t>> known, sums, counts;
    NearRows around = {};
    for (size_t k = 0; k < nearbySide; ++k) {
      for (uint16_t& d : rows[k])
        d = static_cast<uint16_t>(d && check.random.below(6) ? d + check.random.below(12) : 0);
      std::vector<uint16_t> more(n), count(n);
      for (size_t i = 0; i < n; ++i) {
        const Stretch stretch = stretchOf(rows[k].data(), i);
        more[i] = static_cast<uint16_t>(stretch.more), count[i] = static_cast<uint16_t>(stretch.count);
      }
      known.emplace_back(std::vector<uint16_t>(rows[k].begin() + nearby, rows[k].end() - nearby), side);
      sums.emplace_back(more, side), counts.emplace_back(count, side);
      around.disparity[k] = known.back().data(), around.more[k] = sums.back().data(),
      around.count[k] = counts.back().data();
    }
    const auto least = static_cast<uint16_t>(check.random.below(30));
    Output<uint16_t> want(n, side), got(n, side);
    for (size_t i = 0; i < n; ++i) want.data()[i] = meanAround(rows, i, least);
    tested(around, n, least, got.data());
    check.equal("mean", want, got);
  });
}

// ---- pictures compared again ----

// Three numbers of each pixel: known, slope, difference.
using ComparedNumbers = std::array<std::vector<float>, 3>;

ComparedRow rowOf(std::array<Output<float>, 3>& out) { return {out[0].data(), out[1].data(), out[2].data()}; }

std::array<Output<float>, 3> comparedOutputs(size_t n, Guard side) {
  return {Output<float>(n, side), Output<float>(n, side), Output<float>(n, side)};
}

// The line between pixels i and i + 1 of a picture, at so many sixteenths behind i.
double onTheLine(const uint16_t* picture, size_t i, uint32_t part) {
  return picture[i] + (picture[i + 1] - picture[i]) * (part / 16.0);
}

ComparedNumbers comparedOnes(const uint16_t* first, const uint16_t* reference, const std::vector<uint16_t>& disparity) {
  const size_t n = disparity.size();
  ComparedNumbers out = {std::vector<float>(n), std::vector<float>(n), std::vector<float>(n)};
  for (size_t x = 1; x + 1 < n; ++x) {
    const size_t at = x + disparity[x] / 16u;
    const bool inside = disparity[x] && at + 1 < n;
    if (!inside || !reference[x - 1] || !reference[x] || !reference[x + 1] || !first[at] || !first[at + 1]) continue;
    out[0][x] = 1;
    out[1][x] = static_cast<float>(reference[x + 1] - reference[x - 1]);
    out[2][x] = static_cast<float>(16 * (onTheLine(first, at, disparity[x] % 16u) - reference[x]));
  }
  return out;
}

// Most pixels have data, and most disparities point into the row.
void checkCompare(Check& check, CompareRow, CompareRow tested) {
  size_t known = 0;
  forEachInput(check, 0, widest, [&](size_t n, Fill fill, Guard side) {
    const auto picture = [&] {
      std::vector<uint16_t> row = filled<uint16_t>(check.random, fill, n, 1, 65535);
      for (uint16_t& pixel : row) pixel = check.random.below(20) ? pixel : uint16_t{0};
      return row;
    };
    const Guarded<uint16_t> first(picture(), side), reference(picture(), side);
    std::vector<uint16_t> pointing(n);
    for (uint16_t& d : pointing)
      d = static_cast<uint16_t>(check.random.below(9) ? check.random.below(16 * 8) : check.random.below(65532));
    const Guarded<uint16_t> disparity(pointing, side);
    const ComparedNumbers want = comparedOnes(first.data(), reference.data(), pointing);
    auto wanted = comparedOutputs(n, side), got = comparedOutputs(n, side);
    tested(first.data(), reference.data(), disparity.data(), n, rowOf(got));
    for (size_t k = 0; k < want.size(); ++k) {
      wanted[k].set(want[k]);
      check.equal("number", wanted[k], got[k]);
    }
    for (const float one : want[0]) known += one != 0;
  });
  check.holds("hardly a pixel is known", known > 1000);
}

// The sums around pixel i: down the columns, and then from left to right.
template <class Term>
float sumAround(size_t i, Term term) {
  float sum = 0;
  for (size_t x = i; x < i + 2 * comparedBeside + 1; ++x) sum += term(0, x) + term(1, x) + term(2, x);
  return sum;
}

float stepAround(const std::vector<ComparedNumbers>& rows, size_t i) {
  const auto sum = [&](size_t kind) { return sumAround(i, [&](size_t y, size_t x) { return rows[y][kind][x]; }); };
  const auto product = [&](size_t a, size_t b) {
    return sumAround(i, [&](size_t y, size_t x) { return rows[y][a][x] * rows[y][b][x]; });
  };
  const float count = sum(0);
  if (count < 4) return 0;
  const float variance = count * product(1, 1) - sum(1) * sum(1) + 1600 * count * count;
  const float covariance = count * product(1, 2) - sum(1) * sum(2);
  return std::clamp(-2 * covariance / variance, -4.0f, 4.0f);
}

// Pixels of 12 bits, whose differences are those of a move by `off` pixels, and some of 16 bits.
ComparedNumbers comparedRow(lab::Random& random, size_t n, float off) {
  ComparedNumbers row = {std::vector<float>(n), std::vector<float>(n), std::vector<float>(n)};
  const int32_t most = random.below(4) ? 4095 : 65535;
  for (size_t i = 0; i < n; ++i) {
    if (random.below(4) == 0) continue;
    row[0][i] = 1;
    row[1][i] = static_cast<float>(random.between(-most, most));
    row[2][i] = std::nearbyint(8 * off * row[1][i]) + static_cast<float>(random.between(0, most / 8));
  }
  return row;
}

void checkMove(Check& check, MoveRow, MoveRow tested) {
  size_t moved = 0;
  const auto checkRow = [&](size_t n, Guard side) {
    const float off = static_cast<float>(check.random.between(-10, 10)) / 20;
    std::vector<ComparedNumbers> numbers;
    std::list<Guarded<float>> kept;
    ComparedRows rows = {};
    for (int k = 0; k < comparedRows; ++k) {
      numbers.push_back(comparedRow(check.random, n + 2 * comparedBeside, off));
      const auto keep = [&](size_t kind) { return kept.emplace_back(numbers.back()[kind], side).data(); };
      rows.known[k] = keep(0), rows.slope[k] = keep(1), rows.difference[k] = keep(2);
    }
    std::vector<uint16_t> before = filled<uint16_t>(check.random, Fill::random, n, 0, 1000), after = before;
    for (size_t i = 0; i < n; ++i) {
      if (check.random.below(6) == 0) after[i] = before[i] = static_cast<uint16_t>(check.random.below(4));
      const int step = static_cast<int>(std::nearbyint(stepAround(numbers, i)));
      if (before[i]) after[i] = static_cast<uint16_t>(std::max(1, before[i] + step));
      moved += after[i] != before[i];
    }
    Output<uint16_t> want(n, side), got(n, side);
    want.set(after), got.set(before);
    tested(rows, n, got.data());
    check.equal("disparity", want, got);
  };
  forEachInput(check, 0, widest, [&](size_t n, Fill, Guard side) { checkRow(n, side); });
  for (int round = 0; round < 20; ++round) checkRow(benchWidth, Guard::behind);
  check.holds("hardly a disparity moves", moved > 5000);
}

// ---- disparities ----

constexpr float shifts[] = {0.0f, 13.37f, -21.5f};

void checkPixelsOf(Check& check, PixelsOfStored, PixelsOfStored tested) {
  forEachInput(check, 0, widest, [&](size_t n, Fill fill, Guard side) {
    const Guarded<uint16_t> stored(filled<uint16_t>(check.random, fill, n, 0, 65535), side);
    for (const float shift : shifts) {
      Output<float> want(n, side), got(n, side);
      for (size_t i = 0; i < n; ++i) want.data()[i] = stored[i] ? static_cast<float>(stored[i]) / 16.0f + shift : 0.0f;
      tested(stored.data(), shift, got.data(), n);
      check.equal("disparity", want, got);
    }
  });
}

// Disparities as they come, with the ones at which the arithmetic ends.
float anyDisparity(lab::Random& random) {
  static constexpr float special[] = {0.0f,
                                      -0.0f,
                                      leastDisparity,
                                      1.1920930e-7f,
                                      -3.0f,
                                      1e-30f,
                                      1e30f,
                                      notANumber,
                                      std::numeric_limits<float>::infinity(),
                                      -std::numeric_limits<float>::infinity(),
                                      std::numeric_limits<float>::denorm_min()};
  if (random.below(8) == 0) return special[random.below(sizeof special / sizeof *special)];
  return static_cast<float>(random.below(64 * 16)) / 16.0f;
}

std::vector<float> anyDisparities(lab::Random& random, size_t n) {
  std::vector<float> row(n);
  for (float& d : row) d = anyDisparity(random);
  return row;
}

void checkPixelsGiven(Check& check, PixelsOfGiven, PixelsOfGiven tested) {
  forEachInput(check, 0, widest, [&](size_t n, Fill, Guard side) {
    const Guarded<float> given(anyDisparities(check.random, n), side);
    for (const float shift : shifts) {
      Output<float> want(n, side), got(n, side);
      for (size_t i = 0; i < n; ++i) want.data()[i] = std::isnan(given[i]) ? 0.0f : given[i] + shift;
      tested(given.data(), shift, got.data(), n);
      check.equal("disparity", want, got);
    }
  });
}

// ---- places on the map ----

// A camera above a map, whose cells are so small that the last bits of a place decide on some points' cells.
StereoCtx anyCamera(lab::Random& random) {
  const float height = static_cast<float>(random.between(1500, 6000));
  const IntCalibParams inner = {random.between(20 * 256, 400 * 256), random.between(200 * 256, 900 * 256),
                                random.between(0, 640 * 16), random.between(0, 480 * 16)};
  const Orientation mount = {height, static_cast<float>(random.between(-600, 600)) / 10.0f,
                             static_cast<float>(random.between(-1800, 1800)) / 10.0f};
  const auto any = [&](int32_t most) { return static_cast<uint16_t>(random.between(1, most)); };
  const ElevMapParams map = {any(6000), any(6000), any(20), any(20)};
  StereoCtx camera;
  ip_stereo_init(&camera, &inner, &mount, &map);
  return camera;
}

std::vector<float> raysOf(const IntCalib& calib, size_t n) {
  std::vector<float> rays(n);
  for (size_t x = 0; x < n; ++x) rays[x] = (static_cast<float>(x) - calib.principalX) / calib.focalLength;
  return rays;
}

Placing placingOf(const StereoCtx& camera, const float* rays) {
  Placing p = {};
  p.rayX = rays;
  p.focalTimesBaseline = camera.intCalib.focalLength * camera.intCalib.baseline;
  std::copy_n(camera.extCalib.R, 9, p.rotation);
  std::copy_n(camera.extCalib.T, 3, p.translation);
  p.left = camera.lowerLeft.x;
  p.top = camera.lowerLeft.y;
  p.cellX = static_cast<float>(camera.mapParams.cellSizeX);
  p.cellY = static_cast<float>(camera.mapParams.cellSizeY);
  p.mapWidth = camera.mapParams.width;
  p.mapHeight = camera.mapParams.height;
  p.groundZ = camera.orientation.height;
  return p;
}

struct Placed {
  uint32_t cell;
  uint16_t height;
};

uint16_t roundedHeight(double mm) { return static_cast<uint16_t>(std::clamp<double>(std::floor(mm + 0.5), 1, 65535)); }

// Goes through the library's functions, and rounds in double.
Placed placed(const StereoCtx& camera, Point_f32 pixel, float disparity) {
  Point3_f32 world;
  if (!ip_stereo_disp2world(&camera, &pixel, &world, disparity)) return {noCell, 0};
  const Point_f32 place = {world.x, world.y};
  const ElevMapParams& map = camera.mapParams;
  Point_f32 cell;
  ip_world2elev(&place, &cell, &map, &camera.lowerLeft);
  if (!(cell.x >= 0 && cell.y >= 0 && cell.x < map.width && cell.y < map.height)) return {noCell, 0};
  return {static_cast<uint32_t>(cell.y) * map.width + static_cast<uint32_t>(cell.x),
          roundedHeight(camera.orientation.height - world.z)};
}

// Disparities of points between half a metre below the camera's feet and its own height, and others.
std::vector<float> disparitiesOf(const StereoCtx& camera, lab::Random& random, size_t n) {
  std::vector<float> row = anyDisparities(random, n);
  const float focalTimesBaseline = camera.intCalib.focalLength * camera.intCalib.baseline;
  for (size_t i = 0; i < n; i += 2)
    row[i] = focalTimesBaseline / (camera.orientation.height * static_cast<float>(random.between(1, 1500)) / 1000.0f);
  return row;
}

// Where there is no cell, the heights must still be the scalar kernel's.
size_t checkPlacedRow(Check& check, PlaceRow scalar, PlaceRow tested, const StereoCtx& camera, size_t n, Guard side) {
  const Guarded<float> rays(raysOf(camera.intCalib, n), side), row(disparitiesOf(camera, check.random, n), side);
  const Placing placing = placingOf(camera, rays.data());
  const float y = static_cast<float>(check.random.below(480));
  const float rayY = (y - camera.intCalib.principalY) / camera.intCalib.focalLength;
  Output<uint32_t> want(n, side), cells(n, side), same(n, side);
  Output<uint16_t> scalarHeights(n, side), heights(n, side);
  tested(row.data(), n, rayY, placing, cells.data(), heights.data());
  scalar(row.data(), n, rayY, placing, same.data(), scalarHeights.data());
  check.equal("height", scalarHeights, heights);
  size_t inside = 0;
  for (size_t i = 0; i < n; ++i) {
    const Placed point = placed(camera, {static_cast<float>(i), y}, row[i]);
    want.data()[i] = point.cell;
    inside += point.cell != noCell;
    if (point.cell != noCell) check.holds("a height is not the model's", point.height == heights.data()[i]);
  }
  check.equal("cell", want, cells);
  return inside;
}

// A camera without rotation whose points lie at depth 1: their rays are their places.
Placing straightPlacing(const float* rays, uint32_t side) {
  Placing p = {};
  p.rayX = rays;
  p.focalTimesBaseline = p.cellX = p.cellY = 1;
  p.rotation[0] = p.rotation[4] = p.rotation[8] = 1;
  p.mapWidth = p.mapHeight = side;
  return p;
}

// Halves of millimetres, and the floats beside them, whatever the height is larger or smaller than.
std::vector<float> roundedHeights() {
  std::vector<float> heights;
  for (int mm = -3; mm <= 65540; ++mm) {
    const float half = static_cast<float>(mm) + 0.5f;
    for (const float h : {std::nextafter(half, -1e9f), half, std::nextafter(half, 1e9f), static_cast<float>(mm)})
      heights.push_back(h);
  }
  for (const float h : {1e-45f, -1e-45f, 1e9f, -1e9f, 3e38f, -3e38f}) heights.push_back(h);
  return heights;
}

// A camera whose world is rotated so that the ray's x is the height, and all lies over one cell.
void checkRounding(Check& check, PlaceRow tested) {
  const std::vector<float> heights = roundedHeights();
  Placing p = straightPlacing(heights.data(), 1);
  std::fill_n(p.rotation, 9, 0.0f);
  p.rotation[6] = -1;
  const std::vector<float> disparity(heights.size(), 1.0f);
  Output<uint32_t> cells(heights.size(), Guard::behind);
  Output<uint16_t> want(heights.size(), Guard::behind), got(heights.size(), Guard::behind);
  check.describe("all halves of millimetres");
  tested(disparity.data(), heights.size(), 0, p, cells.data(), got.data());
  for (size_t i = 0; i < heights.size(); ++i) want.data()[i] = roundedHeight(heights[i]);
  check.equal("height", want, got);
}

void checkCells(Check& check, PlaceRow tested, const Placing& placing, float rayY, const std::vector<float>& disparity,
                const std::vector<uint32_t>& cells) {
  Output<uint32_t> want(cells.size(), Guard::behind), got(cells.size(), Guard::behind);
  Output<uint16_t> heights(cells.size(), Guard::behind);
  want.set(cells);
  tested(disparity.data(), cells.size(), rayY, placing, got.data(), heights.data());
  check.equal("cell", want, got);
}

// The last cells of the largest map need all 32 bits.
void checkLargestMap(Check& check, PlaceRow tested) {
  constexpr uint32_t side = 65535, row = (side - 1) * side;
  const float columns[] = {-1.0f, -0.0f, 0.0f, 0.9f, 65533.5f, 65534.0f, 65534.99f, 65535.0f, notANumber};
  const Placing p = straightPlacing(columns, side);
  const std::vector<float> disparity(9, 1.0f);
  check.describe("the largest map");
  const std::vector<uint32_t> beside(9, noCell);
  checkCells(check, tested, p, 65534.5f, disparity,
             {noCell, row, row, row, row + 65533, row + 65534, row + 65534, noCell, noCell});
  checkCells(check, tested, p, 65535.0f, disparity, beside);
  checkCells(check, tested, p, -0.001f, disparity, beside);
}

void checkLeastDisparity(Check& check, PlaceRow tested) {
  const float rays[4] = {};
  Placing p = straightPlacing(rays, 1);
  p.focalTimesBaseline = leastDisparity;
  check.describe("the least disparity");
  checkCells(check, tested, p, 0, {leastDisparity, std::nextafter(leastDisparity, 1.0f), 0.0f, notANumber},
             {noCell, 0, noCell, noCell});
}

void checkPlace(Check& check, PlaceRow scalar, PlaceRow tested) {
  checkRounding(check, tested);
  checkLargestMap(check, tested);
  checkLeastDisparity(check, tested);
  size_t pixels = 0, inside = 0;
  forEachInput(check, 0, widest, [&](size_t n, Fill, Guard side) {
    pixels += n;
    inside += checkPlacedRow(check, scalar, tested, anyCamera(check.random), n, side);
  });
  for (int round = 0; round < 200; ++round) {
    pixels += benchWidth;
    inside += checkPlacedRow(check, scalar, tested, anyCamera(check.random), benchWidth, Guard::behind);
  }
  check.holds("hardly a point lies over a map", inside > pixels / 20 && inside < pixels / 2);
}

// ---- ranks ----

void checkRanksOf(Check& check, RankedValue tested, const std::vector<uint16_t>& values, Guard side) {
  const size_t n = values.size();
  const Guarded<uint16_t> in(values, side);
  std::vector<uint16_t> sorted = values;
  std::sort(sorted.begin(), sorted.end());
  for (const size_t rank :
       {size_t{0}, n / 2, n * 9 / 10, n - 1, size_t{check.random.below(static_cast<uint32_t>(n))}}) {
    Output<uint16_t> want(1, side), got(1, side);
    *want.data() = sorted[rank];
    *got.data() = tested(in.data(), n, rank);
    check.equal("value", want, got);
  }
  check.holds("the values moved", in.values() == values);
}

// The long ones fill 16-bit counters, one vector's or several, to the brim.
void checkRanked(Check& check, RankedValue, RankedValue tested) {
  forEachInput(check, 1, 2 * widest, [&](size_t n, Fill fill, Guard side) {
    checkRanksOf(check, tested, filled<uint16_t>(check.random, fill, n, 0, 65535), side);
    checkRanksOf(check, tested, filled<uint16_t>(check.random, fill, n, 1700, 1790), side);
  });
  std::vector<uint16_t> one(200001, 5);
  one.back() = 9;
  check.describe("all values but one are equal");
  checkRanksOf(check, tested, one, Guard::behind);
  for (const size_t n : {32767u, 32768u, 65535u, 65536u, 65537u, 300001u, 3000000u}) {
    for (const Fill fill : allFills) {
      check.describe(described(n, fill, Guard::behind));
      checkRanksOf(check, tested, filled<uint16_t>(check.random, fill, n, 0, 65535), Guard::behind);
    }
  }
}

// ---- what is timed: 480 rows, and the cells of a map ----

const std::vector<uint16_t>& benchPixels() {
  static const std::vector<uint16_t> row = lab::Random(7).values<uint16_t>(benchWidth, 1024);
  return row;
}

std::vector<uint16_t>& benchOutput() {
  static std::vector<uint16_t> row(benchWidth);
  return row;
}

template <class F>
void forRows(F f) {
  for (size_t y = 0; y < benchHeight; ++y) f(y);
}

void benchPicture(PictureRow kernel) {
  forRows([=](size_t) { kernel(benchPixels().data(), benchOutput().data(), benchWidth); });
}

void benchMirrorMask(MaskRow kernel) {
  static const std::vector<uint8_t> in(benchWidth, 1);
  static std::vector<uint8_t> out(benchWidth);
  forRows([=](size_t) { kernel(in.data(), out.data(), benchWidth); });
}

void benchMirrorCodes(CodeRow kernel) {
  static const std::vector<uint32_t> in(benchWidth, 1);
  static std::vector<uint32_t> out(benchWidth);
  forRows([=](size_t) { kernel(in.data(), out.data(), benchWidth); });
}

void benchHalve(HalveRow kernel) {
  for (size_t y = 0; y < benchHeight / 2; ++y)
    kernel(benchPixels().data(), benchPixels().data(), benchOutput().data(), benchWidth / 2);
}

const std::vector<uint16_t>& benchSurface() {
  static const std::vector<uint16_t> row = [] {
    lab::Random random(5);
    return surface(random, benchWidth + 2 * nearby, 16);
  }();
  return row;
}

void benchAgree(AgreeRow kernel) {
  forRows([=](size_t) { kernel(benchSurface().data(), benchOutput().data(), benchWidth); });
}

void benchSupport(SupportRow kernel) {
  AgreedRows agreed = {};
  for (const uint16_t*& row : agreed.row) row = benchSurface().data();
  forRows([&](size_t) { kernel(agreed, benchSurface().data(), benchWidth, 12, benchOutput().data()); });
}

void benchClose(CloseRow kernel) {
  static std::vector<uint16_t> count(benchWidth);
  forRows([=](size_t) { kernel(benchSurface().data(), benchWidth, benchOutput().data(), count.data()); });
}

void benchMean(MeanRow kernel) {
  static const std::vector<uint16_t> more(benchWidth, 20), count(benchWidth, 5);
  NearRows rows = {};
  for (int k = 0; k < nearbySide; ++k) {
    rows.disparity[k] = benchSurface().data() + nearby;
    rows.more[k] = more.data();
    rows.count[k] = count.data();
  }
  forRows([&](size_t) { kernel(rows, benchWidth, 12, benchOutput().data()); });
}

const std::vector<float>& benchCompared(size_t kind) {
  static const ComparedNumbers row = [] {
    lab::Random random(8);
    return comparedRow(random, benchWidth + 2 * comparedBeside, 0.2f);
  }();
  return row[kind];
}

void benchCompare(CompareRow kernel) {
  static ComparedNumbers out = {std::vector<float>(benchWidth), std::vector<float>(benchWidth),
                                std::vector<float>(benchWidth)};
  const ComparedRow row = {out[0].data(), out[1].data(), out[2].data()};
  forRows([&](size_t) { kernel(benchPixels().data(), benchPixels().data(), benchSurface().data(), benchWidth, row); });
}

void benchMove(MoveRow kernel) {
  ComparedRows rows = {};
  for (int k = 0; k < comparedRows; ++k)
    rows.known[k] = benchCompared(0).data(), rows.slope[k] = benchCompared(1).data(),
    rows.difference[k] = benchCompared(2).data();
  forRows([&](size_t) { kernel(rows, benchWidth, benchOutput().data()); });
}

std::vector<float>& benchDisparities() {
  static std::vector<float> row(benchWidth);
  return row;
}

void benchPixelsOf(PixelsOfStored kernel) {
  forRows([=](size_t) { kernel(benchPixels().data(), 1.5f, benchDisparities().data(), benchWidth); });
}

void benchPixelsGiven(PixelsOfGiven kernel) {
  static const std::vector<float> given(benchWidth, 20.0f);
  forRows([=](size_t) { kernel(given.data(), 1.5f, benchDisparities().data(), benchWidth); });
}

void benchPlace(PlaceRow kernel) {
  static const StereoCtx camera = [] {
    lab::Random random(3);
    return anyCamera(random);
  }();
  static const std::vector<float> rays = raysOf(camera.intCalib, benchWidth);
  static const std::vector<float> row(benchWidth, 20.0f);
  static std::vector<uint32_t> cells(benchWidth);
  const Placing placing = placingOf(camera, rays.data());
  forRows([&](size_t y) {
    kernel(row.data(), benchWidth, static_cast<float>(y) / 300.0f, placing, cells.data(), benchOutput().data());
  });
}

// Cells of 75 points, whose heights scatter by some centimetres.
void benchRanked(RankedValue kernel) {
  constexpr size_t cells = 4096, perCell = 75;
  static const std::vector<uint16_t> heights = lab::Random(9).values<uint16_t>(cells * perCell, 60);
  for (size_t cell = 0; cell < cells; ++cell)
    benchOutput()[cell % benchWidth] = kernel(&heights[cell * perCell], perCell, perCell * 9 / 10);
}

template <class Kernel>
void addModelled(Registry& r, const char* name, Kernel (*pick)(unsigned), void (*check)(Check&, Kernel, Kernel),
                 void (*bench)(Kernel)) {
  add<Kernel>(r, name, pick, check, bench, Law::model);
}

}  // namespace

void addRoadCases(Registry& r) {
  addModelled<PictureRow>(
      r, "take16", [](unsigned c) { return roadKernels(c).take16; }, checkPicture<uint16_t, false>, benchPicture);
  addModelled<PictureRow>(
      r, "take8", [](unsigned c) { return roadKernels(c).take8; }, checkPicture<uint8_t, false>, benchPicture);
  addModelled<PictureRow>(
      r, "mirror16", [](unsigned c) { return roadKernels(c).mirror16; }, checkPicture<uint16_t, true>, benchPicture);
  addModelled<PictureRow>(
      r, "mirror8", [](unsigned c) { return roadKernels(c).mirror8; }, checkPicture<uint8_t, true>, benchPicture);
  addModelled<MaskRow>(
      r, "mirror_mask", [](unsigned c) { return roadKernels(c).mirrorMask; }, checkMirror<uint8_t>, benchMirrorMask);
  addModelled<CodeRow>(
      r, "mirror_codes", [](unsigned c) { return roadKernels(c).mirrorCodes; }, checkMirror<uint32_t>,
      benchMirrorCodes);
  addModelled<HalveRow>(
      r, "halve_known", [](unsigned c) { return roadKernels(c).halve; }, checkHalve, benchHalve);
  addModelled<AgreeRow>(
      r, "agree", [](unsigned c) { return roadKernels(c).agree; }, checkAgree, benchAgree);
  addModelled<SupportRow>(
      r, "support", [](unsigned c) { return roadKernels(c).support; }, checkSupport, benchSupport);
  addModelled<CloseRow>(
      r, "close", [](unsigned c) { return roadKernels(c).close; }, checkClose, benchClose);
  addModelled<MeanRow>(
      r, "mean_close", [](unsigned c) { return roadKernels(c).mean; }, checkMean, benchMean);
  addModelled<CompareRow>(
      r, "compare", [](unsigned c) { return roadKernels(c).compare; }, checkCompare, benchCompare);
  addModelled<MoveRow>(
      r, "move", [](unsigned c) { return roadKernels(c).move; }, checkMove, benchMove);
  addModelled<PixelsOfStored>(
      r, "pixels_of", [](unsigned c) { return roadKernels(c).pixelsOf; }, checkPixelsOf, benchPixelsOf);
  addModelled<PixelsOfGiven>(
      r, "pixels_given", [](unsigned c) { return roadKernels(c).pixelsGiven; }, checkPixelsGiven, benchPixelsGiven);
  addModelled<PlaceRow>(
      r, "place", [](unsigned c) { return roadKernels(c).place; }, checkPlace, benchPlace);
  addModelled<RankedValue>(
      r, "ranked", [](unsigned c) { return roadKernels(c).ranked; }, checkRanked, benchRanked);
}

}  // namespace nadir::test
