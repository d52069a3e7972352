// Mounts found from pictures: rendered floors at many mounts, several pairs, what is no floor, and what is refused.
#include <nadir/level.h>

#include <algorithm>
#include <complex>
#include <map>

#include "lab/road.hpp"
#include "lab/scene/ready_scenes.hpp"
#include "lab/scene/render.hpp"
#include "tests/api/ground/roads.hpp"
#include "tests/support/rounds.hpp"

namespace nadir::test {
namespace {

using Level = std::unique_ptr<NadirLevel, Destroy<NadirLevel, nadir_level_destroy>>;

struct FloorMount {
  double height, tilt, pan;
};

scene::Rig rigAt(const FloorMount& mount) {
  scene::CameraSettings settings;
  settings.width = 160;
  settings.height = 120;
  settings.focal = 125;
  settings.baseline = 260;
  settings.mountingHeight = mount.height;
  settings.tilt = mount.tilt;
  settings.pan = mount.pan;
  return scene::makeRig(settings);
}

// Its mount is another one than the rig's.
NadirCamera cameraOf(const scene::Rig& rig) {
  NadirCamera camera = smallCamera();
  camera.width_px = rig.left.width;
  camera.height_px = rig.left.height;
  camera.baseline_mm = rig.baseline;
  camera.focal_px = rig.left.focal;
  camera.principal_x_px = rig.left.principalX;
  camera.principal_y_px = rig.left.principalY;
  return camera;
}

struct Pair {
  NadirCamera camera;
  Grid<uint16_t> left, right;
};

Pair rendered(const std::string& name, const FloorMount& mount, uint64_t seed, uint32_t frame = 0, double noise = 20) {
  const scene::Rig rig = rigAt(mount);
  const scene::Scene objects = scene::makeScene(name, rig, seed);
  const auto rowDone = [] {};
  scene::Sensor sensor;
  sensor.noise = noise;
  sensor.frame = frame;
  return {cameraOf(rig), scene::picture(objects, rig, scene::Side::left, sensor, rowDone),
          scene::picture(objects, rig, scene::Side::right, sensor, rowDone)};
}

const FloorMount usual = {3000, -30, 0};

const Pair& usualFloor() {
  static const Pair pair = rendered("empty-floor", usual, 1);
  return pair;
}

struct Bench {
  explicit Bench(const NadirCamera& camera, uint32_t until = NADIR_UNTIL_MAP)
      : road(makeRoad(camera, settingsUntil(until, camera))), result(makeResult(road)) {
    NadirLevel* made = nullptr;
    EXPECT_EQ(nadir_level_create(road.get(), &made), NADIR_OK);
    level.reset(made);
  }

  NadirStatus add(const Pair& pair) const {
    const NadirFrame frame = frameOf(pair.left, pair.right);
    EXPECT_EQ(nadir_road_process(road.get(), &frame, result.get()), NADIR_OK);
    return nadir_level_add(level.get(), &frame, result.get());
  }

  NadirLevelled read() const {
    NadirLevelled found = lab::emptyRecord<NadirLevelled>();
    EXPECT_EQ(nadir_level_read(level.get(), &found), NADIR_OK);
    return found;
  }

  Road road;
  Result result;
  Level level;
};

NadirLevelled levelled(const Pair& pair) {
  const Bench bench(pair.camera);
  EXPECT_EQ(bench.add(pair), NADIR_OK);
  return bench.read();
}

// ---- what is found ----

// These pictures are small: an error of a hundredth of a pixel is four times as large as in others.
TEST(Level, FloorsAreFoundAtAnyMount) {
  for (const FloorMount& mount : {FloorMount{3000, 0, 0}, {1500, -60, 0}, {4000, -45, 10}, {2500, -15, -20}}) {
    const NadirLevelled found = levelled(rendered("empty-floor", mount, 3));
    EXPECT_NEAR(found.height_mm, mount.height, 0.003 * mount.height) << mount.tilt;
    EXPECT_NEAR(found.tilt_deg, mount.tilt, 0.1) << mount.tilt;
    EXPECT_NEAR(found.pan_deg, mount.pan, 0.2) << mount.tilt;
    EXPECT_NEAR(found.height_mm, mount.height, 3 * found.height_deviation_mm) << mount.tilt;
    EXPECT_NEAR(found.tilt_deg, mount.tilt, 3 * found.tilt_deviation_deg) << mount.tilt;
    EXPECT_NEAR(found.pan_deg, mount.pan, 3 * found.pan_deviation_deg) << mount.tilt;
    EXPECT_LT(found.height_deviation_mm, 0.003 * mount.height);
    EXPECT_LT(found.tilt_deviation_deg, 0.15);
    EXPECT_GT(found.floor_share, 0.9);
    EXPECT_EQ(found.pairs, 1u);
  }
}

TEST(Level, TheSameDirectionIsToldInBothWays) {
  const NadirLevelled found = levelled(rendered("empty-floor", {2500, -50, 20}, 4));
  const double degree = std::acos(-1) / 180;
  const double y = std::sin(-found.tilt_deg * degree);
  const double x = std::cos(found.tilt_deg * degree) * std::sin(found.pan_deg * degree);
  const double z = std::cos(found.tilt_deg * degree) * std::cos(found.pan_deg * degree);
  EXPECT_NEAR(std::sin(found.axis_below_horizon_deg * degree), z, 1e-9);
  EXPECT_NEAR(std::tan(found.roll_deg * degree), x / y, 1e-9);
  EXPECT_GT(found.roll_deviation_deg, 0);
  EXPECT_GT(found.axis_deviation_deg, 0);
}

TEST(Level, RollIsNotToldOfACameraThatLooksStraightDown) {
  const NadirLevelled found = levelled(rendered("empty-floor", {3000, 0, 0}, 3));
  EXPECT_TRUE(std::isnan(found.roll_deg));
  EXPECT_TRUE(std::isnan(found.roll_deviation_deg));
  EXPECT_NEAR(found.axis_below_horizon_deg, 90, 0.2);
}

TEST(Level, WhatStandsOnTheFloorIsLeftOut) {
  const NadirLevelled found = levelled(rendered("people", usual, 2));
  EXPECT_NEAR(found.height_mm, usual.height, 0.003 * usual.height);
  EXPECT_NEAR(found.tilt_deg, usual.tilt, 0.25);
  EXPECT_LT(found.floor_share, 0.9);
}

// The right picture is a fifth darker, with an offset.
TEST(Level, OtherExposuresDoNotMatter) {
  Pair pair = usualFloor();
  for (uint16_t& pixel : pair.right.pixels) pixel = static_cast<uint16_t>(pixel * 0.8 + 60);
  const NadirLevelled found = levelled(pair);
  EXPECT_NEAR(found.height_mm, usual.height, 0.003 * usual.height);
  EXPECT_NEAR(found.tilt_deg, usual.tilt, 0.1);
}

TEST(Level, EightBitsAreEnough) {
  const Pair& pair = usualFloor();
  const auto narrow = [](const Grid<uint16_t>& wide) {
    std::vector<uint8_t> pixels;
    for (const uint16_t pixel : wide.pixels) pixels.push_back(static_cast<uint8_t>(pixel / 16));
    return pixels;
  };
  const std::vector<uint8_t> left = narrow(pair.left), right = narrow(pair.right);
  const Bench bench(pair.camera);
  const NadirFrame frame = lab::frameOf(left.data(), right.data(), pair.left.width);
  ASSERT_EQ(nadir_road_process(bench.road.get(), &frame, bench.result.get()), NADIR_OK);
  ASSERT_EQ(nadir_level_add(bench.level.get(), &frame, bench.result.get()), NADIR_OK);
  EXPECT_NEAR(bench.read().height_mm, usual.height, 0.003 * usual.height);
}

TEST(Level, TheColumnShiftIsPartOfDepth) {
  Pair pair = usualFloor();
  const NadirLevelled plain = levelled(pair);
  pair.camera.column_shift_px = 1;
  const NadirLevelled shifted = levelled(pair);
  const double disparity = pair.camera.focal_px * pair.camera.baseline_mm / usual.height;
  EXPECT_LT(shifted.height_mm, plain.height_mm * disparity / (disparity + 0.5));
  EXPECT_EQ(shifted.plane[2], plain.plane[2]);
}

// ---- several pairs ----

TEST(Level, PairsThatAgreeMakeItMoreCertain) {
  const Pair loud = rendered("empty-floor", usual, 1, 0, 60);
  const Bench bench(loud.camera);
  ASSERT_EQ(bench.add(loud), NADIR_OK);
  const NadirLevelled one = bench.read();
  for (int i = 0; i < 3; ++i) ASSERT_EQ(bench.add(loud), NADIR_OK);
  const NadirLevelled four = bench.read();
  EXPECT_EQ(four.pairs, 4u);
  EXPECT_LT(four.height_deviation_mm, 0.8 * one.height_deviation_mm);
  EXPECT_NEAR(four.height_mm, one.height_mm, 1e-6 * one.height_mm);
}

// One picture's noise alone may take two planes further apart than most noise does, but not that of every second.
TEST(Level, PairsThatDifferByChanceMakeItMoreCertain) {
  const Pair first = rendered("empty-floor", usual, 1, 0, 60);
  const double alone = levelled(first).height_deviation_mm;
  int tried = 0, certain = 0;
  for (uint32_t frame = 1; frame <= 8; frame += static_cast<uint32_t>(everyRound), ++tried) {
    const Bench bench(first.camera);
    ASSERT_EQ(bench.add(first), NADIR_OK);
    ASSERT_EQ(bench.add(rendered("empty-floor", usual, 1, frame, 60)), NADIR_OK);
    certain += bench.read().height_deviation_mm < 0.85 * alone;
  }
  EXPECT_GE(2 * certain, tried);
}

TEST(Level, PairsThatContradictEachOtherMakeItLessCertain) {
  const Bench bench(usualFloor().camera);
  ASSERT_EQ(bench.add(usualFloor()), NADIR_OK);
  const NadirLevelled one = bench.read();
  ASSERT_EQ(bench.add(rendered("empty-floor", {3100, -31, 0}, 1)), NADIR_OK);
  const NadirLevelled two = bench.read();
  EXPECT_GT(two.height_deviation_mm, 3 * one.height_deviation_mm);
  EXPECT_GT(two.height_mm, usual.height);
  EXPECT_LT(two.height_mm, 3100);
}

TEST(Level, APairWithoutFloorChangesNothing) {
  const Bench bench(usualFloor().camera);
  ASSERT_EQ(bench.add(usualFloor()), NADIR_OK);
  const NadirLevelled before = bench.read();
  Pair noise = usualFloor();
  lab::Random random(1);
  noise.left.pixels = random.values<uint16_t>(noise.left.pixels.size(), 4000);
  noise.right.pixels = random.values<uint16_t>(noise.right.pixels.size(), 4000);
  Pair flat = usualFloor();
  std::fill(flat.left.pixels.begin(), flat.left.pixels.end(), uint16_t{900});
  flat.right = flat.left;
  for (const Pair& other : {noise, flat}) {
    EXPECT_EQ(bench.add(other), NADIR_NOTHING_FOUND);
    const NadirLevelled after = bench.read();
    EXPECT_EQ(after.height_mm, before.height_mm);
    EXPECT_EQ(after.pairs, 1u);
    EXPECT_EQ(after.floor_share, 0);
  }
}

// ---- what is no floor ----

TEST(Level, WithoutTextureThereIsNoFloor) {
  Pair flat = usualFloor();
  std::fill(flat.left.pixels.begin(), flat.left.pixels.end(), uint16_t{900});
  std::fill(flat.right.pixels.begin(), flat.right.pixels.end(), uint16_t{900});
  const Bench bench(flat.camera);
  EXPECT_EQ(bench.add(flat), NADIR_NOTHING_FOUND);
  NadirLevelled found = lab::emptyRecord<NadirLevelled>();
  EXPECT_EQ(nadir_level_read(bench.level.get(), &found), NADIR_NOTHING_FOUND);
  EXPECT_EQ(found.pairs, 0u);
}

// Waves of three pixels: planes cross them, but none lies in them.
Grid<float> waves(uint32_t width, uint32_t height) {
  Grid<float> disparity(width, height);
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x)
      disparity.pixels[size_t{y} * width + x] =
          20 + 3 * static_cast<float>(std::sin(x / 9.0)) + 3 * static_cast<float>(std::sin(y / 7.0));
  return disparity;
}

TEST(Level, AHillyPictureHasNoFloor) {
  const uint32_t width = usualFloor().left.width, height = usualFloor().left.height;
  const Grid<float> disparity = waves(width, height);
  Pair hills = usualFloor();
  lab::Random random(5);
  for (uint32_t y = 0; y < height; ++y) {
    const auto texture = random.values<uint16_t>(width + 64, 3000);
    for (uint32_t x = 0; x < width; ++x) {
      hills.right.pixels[size_t{y} * width + x] = static_cast<uint16_t>(texture[x + 40] + 100);
      const auto shift = static_cast<uint32_t>(disparity.pixels[size_t{y} * width + x]);
      hills.left.pixels[size_t{y} * width + x] = static_cast<uint16_t>(texture[x + 40 - shift] + 100);
    }
  }
  const Bench bench(hills.camera);
  EXPECT_EQ(bench.add(hills), NADIR_NOTHING_FOUND);
}

// The right picture has nothing to do with the left one where intensities are compared.
TEST(Level, AFloorThatIntensitiesDoNotShowIsNone) {
  const Pair& pair = usualFloor();
  const Bench bench(pair.camera);
  NadirFrame frame = frameOf(pair.left, pair.right);
  ASSERT_EQ(nadir_road_process(bench.road.get(), &frame, bench.result.get()), NADIR_OK);
  lab::Random random(9);
  const auto noise = random.values<uint16_t>(pair.right.pixels.size(), 4000);
  const std::vector<uint16_t> nothing(noise.size(), 0), flat(noise.size(), 77);
  for (const std::vector<uint16_t>& other : {noise, nothing, flat}) {
    frame.right = other.data();
    EXPECT_EQ(nadir_level_add(bench.level.get(), &frame, bench.result.get()), NADIR_NOTHING_FOUND);
  }
  frame = frameOf(pair.left, pair.right);
  frame.left = flat.data();
  EXPECT_EQ(nadir_level_add(bench.level.get(), &frame, bench.result.get()), NADIR_NOTHING_FOUND);
}

// Moved along their rows such pictures stay what they are.
TEST(Level, RowsOfOneBrightnessHoldNoFloor) {
  const Pair& pair = usualFloor();
  const Bench bench(pair.camera);
  NadirFrame frame = frameOf(pair.left, pair.right);
  ASSERT_EQ(nadir_road_process(bench.road.get(), &frame, bench.result.get()), NADIR_OK);
  std::vector<uint16_t> stripes(pair.left.pixels.size());
  for (size_t i = 0; i < stripes.size(); ++i)
    stripes[i] = static_cast<uint16_t>(900 + i / pair.left.width * 7919 % 1000);
  frame.left = frame.right = stripes.data();
  EXPECT_EQ(nadir_level_add(bench.level.get(), &frame, bench.result.get()), NADIR_NOTHING_FOUND);
}

// ---- floors that are told by their disparities ----

// Both pictures of a plane whose disparity changes from row to row, out of waves that can be read at any place.
struct Waves {
  static constexpr uint32_t width = 480, height = 320;

  Waves(double perRow, double first, double noise) : perRow_(perRow), first_(first) {
    lab::Random random(11);
    for (double(&wave)[3] : waves_) {
      wave[0] = random.between(-900, 900) / 1000.0;
      wave[1] = random.between(-900, 900) / 1000.0;
      wave[2] = random.between(0, 6283) / 1000.0;
    }
    pair.camera = cameraOf(rigAt(usual));
    pair.camera.width_px = width;
    pair.camera.height_px = height;
    pair.camera.principal_y_px = 159.5;
    for (uint32_t y = 0; y < height; ++y) {
      const std::vector<double> left = row(0, y), right = row(at(y), y);
      for (uint32_t x = 0; x < width; ++x) {
        pair.left.pixels.push_back(static_cast<uint16_t>(left[x] + noise * random.between(-100, 100) / 100));
        pair.right.pixels.push_back(static_cast<uint16_t>(right[x] + noise * random.between(-100, 100) / 100));
      }
    }
    pair.left.width = pair.right.width = width;
    pair.left.height = pair.right.height = height;
  }

  double at(uint32_t y) const { return perRow_ * y + first_; }

  // With disparities where `shown` has them: the plane's, or others.
  template <class Shown>
  NadirStatus add(const Bench& bench, Shown shown) const {
    Grid<float> disparity(width, height);
    for (uint32_t y = 0; y < height; ++y)
      for (uint32_t x = 0; x < width; ++x)
        disparity.pixels[size_t{y} * width + x] = shown(x, y, static_cast<float>(at(y)));
    NadirFrame frame = frameOf(pair.left, pair.right);
    frame.disparity = disparity.pixels.data();
    frame.disparity_stride = width * sizeof(float);
    EXPECT_EQ(nadir_road_process(bench.road.get(), &frame, bench.result.get()), NADIR_OK);
    return nadir_level_add(bench.level.get(), &frame, bench.result.get());
  }

  Pair pair{};

 private:
  // Pixels from `begin` on. Each wave is turned from pixel to pixel, which is faster than a sine of each.
  std::vector<double> row(double begin, uint32_t y) const {
    std::vector<double> pixels(width, 2000);
    for (const double(&wave)[3] : waves_) {
      const std::complex<double> turn = std::polar(1.0, wave[0]);
      std::complex<double> at = std::polar(90.0, wave[0] * begin + wave[1] * y + wave[2]);
      for (double& pixel : pixels) pixel += at.imag(), at *= turn;
    }
    return pixels;
  }

  double perRow_, first_;
  double waves_[16][3];
};

TEST(Level, AFloorMayFillAQuarterOfThePicture) {
  const Waves floor(0.03, 20, 20);
  const Bench bench(floor.pair.camera);
  const auto below = [](uint32_t x, uint32_t y, float d) {
    return y >= 240 ? d : 34 + static_cast<float>((x / 16 * 7 + y / 16 * 11) % 23);
  };
  ASSERT_EQ(floor.add(bench, below), NADIR_OK);
  const NadirLevelled found = bench.read();
  EXPECT_NEAR(found.plane[1], 0.03, 2e-4);
  EXPECT_NEAR(found.plane[2], 20, 0.05);
  EXPECT_NEAR(found.floor_share, 0.25, 0.01);
}

TEST(Level, PicturesWithoutNoiseGiveThePlaneItself) {
  const Waves floor(0.05, 12, 0);
  const Bench bench(floor.pair.camera);
  ASSERT_EQ(floor.add(bench, [](uint32_t, uint32_t, float d) { return d + 0.2f; }), NADIR_OK);
  const NadirLevelled found = bench.read();
  EXPECT_NEAR(found.plane[0], 0, 2e-5);
  EXPECT_NEAR(found.plane[1], 0.05, 2e-5);
  EXPECT_NEAR(found.plane[2], 12, 0.01);
}

// Far away a floor's disparities are what the columns are shifted by, or less.
TEST(Level, AFloorMayReachBeyondDisparityZero) {
  const Waves floor(0.1, -0.1 * 161, 0);
  const Bench bench(floor.pair.camera);
  ASSERT_EQ(floor.add(bench, [](uint32_t, uint32_t y, float d) { return y >= 160 ? d + 0.3f : noDisparity; }),
            NADIR_OK);
  const NadirLevelled found = bench.read();
  EXPECT_NEAR(found.plane[1], 0.1, 1e-4);
  EXPECT_NEAR(found.plane[2], -0.1 * 161, 0.01);
}

TEST(Level, AFloorHasHardlyAnythingBelowIt) {
  const Waves floor(0.03, 20, 20);
  const auto added = [&floor](uint32_t below) {
    const Bench bench(floor.pair.camera);
    return floor.add(bench, [below](uint32_t x, uint32_t, float d) { return x < below ? d / 2 : d; });
  };
  EXPECT_EQ(added(Waves::width / 16), NADIR_OK);
  EXPECT_EQ(added(Waves::width / 4), NADIR_NOTHING_FOUND);
}

// The height under the camera is certain and the tilt is not.
TEST(Level, AStripAcrossThePictureDoesNotTellTheTilt) {
  const Waves floor(0, 20, 250);
  const Bench bench(floor.pair.camera);
  const auto strip = [](uint32_t, uint32_t y, float d) { return y >= 144 && y < 176 ? d : noDisparity; };
  EXPECT_EQ(floor.add(bench, strip), NADIR_NOTHING_FOUND);
}

// A corner or a strip says nothing certain of a whole plane.
TEST(Level, TooLittleOfAFloorIsNone) {
  const Waves floor(0.03, 20, 300);
  const Bench bench(floor.pair.camera);
  const auto within = [&](uint32_t right, uint32_t bottom) {
    return floor.add(bench, [=](uint32_t x, uint32_t y, float d) { return x < right && y < bottom ? d : noDisparity; });
  };
  EXPECT_EQ(within(32, 24), NADIR_NOTHING_FOUND);   // too few pixels
  EXPECT_EQ(within(120, 39), NADIR_NOTHING_FOUND);  // two parts of the picture
  EXPECT_EQ(within(480, 16), NADIR_NOTHING_FOUND);  // a strip
}

TEST(Level, APartAloneDoesNotTellHowUncertainItIs) {
  const Waves floor(0.03, 20, 0);
  const Bench bench(floor.pair.camera);
  const auto tile = [](uint32_t x, uint32_t y, float d) {
    return x >= 120 && x < 180 && y >= 80 && y < 120 ? d : noDisparity;
  };
  EXPECT_EQ(floor.add(bench, tile), NADIR_NOTHING_FOUND);
}

TEST(Level, PanIsNotToldOfACameraThatLooksAlongTheFloor) {
  const Waves floor(0.15, -0.15 * 159.5 + 0.01, 0);
  const Bench bench(floor.pair.camera);
  ASSERT_EQ(floor.add(bench, [](uint32_t, uint32_t y, float d) { return y > 180 ? d : noDisparity; }), NADIR_OK);
  const NadirLevelled found = bench.read();
  EXPECT_LT(found.tilt_deg, -89);
  EXPECT_TRUE(std::isnan(found.pan_deg));
  EXPECT_TRUE(std::isnan(found.pan_deviation_deg));
  EXPECT_NEAR(found.roll_deg, 0, 0.2);
}

// ---- which pixels are taken ----

TEST(Level, TakenPixelsAreThoseOnTheFloor) {
  const Pair pair = rendered("people", usual, 2);
  const Bench bench(pair.camera);
  NadirPlane taken{};
  EXPECT_EQ(nadir_level_taken(bench.level.get(), &taken), NADIR_NOTHING_FOUND);
  ASSERT_EQ(bench.add(pair), NADIR_OK);
  ASSERT_EQ(nadir_level_taken(bench.level.get(), &taken), NADIR_OK);
  const NadirLevelled found = bench.read();
  const Grid<uint8_t> marks = gridOf<uint8_t>(taken);
  const Grid<uint16_t> disparity = gridOf<uint16_t>(test::read(bench.result).disparity);
  uint32_t known = 0, on = 0, near = 0;
  for (size_t i = 0; i < marks.pixels.size(); ++i) {
    const double floor = found.plane[0] * static_cast<double>(i % marks.width) +
                         found.plane[1] * static_cast<double>(i / marks.width) + found.plane[2];
    EXPECT_EQ(marks.pixels[i] == NADIR_LEVEL_UNKNOWN, disparity.pixels[i] == 0);
    known += marks.pixels[i] != NADIR_LEVEL_UNKNOWN;
    if (marks.pixels[i] != NADIR_LEVEL_TAKEN) continue;
    ++on;
    near += std::fabs(disparity.pixels[i] / 16.0 - floor) < 1;
  }
  EXPECT_NEAR(found.floor_share, static_cast<double>(on) / known, 1e-12);
  EXPECT_GT(near, 0.98 * on);
  EXPECT_GT(on, known / 3);
}

// ---- what is refused ----

TEST(Level, RoadsWithoutAMapAndRightViewsAreRefused) {
  const NadirCamera camera = smallCamera();
  NadirSettings settings = settingsUntil(NADIR_UNTIL_MATCH, camera);
  const Road match = makeRoad(camera, settings);
  settings = settingsUntil(NADIR_UNTIL_MAP, camera);
  settings.grid = NADIR_GRID_RIGHT;
  const Road right = makeRoad(camera, settings);
  NadirLevel* const untouched = reinterpret_cast<NadirLevel*>(&settings);
  NadirLevel* level = untouched;
  for (const Road* road : {&match, &right}) {
    EXPECT_EQ(nadir_level_create(road->get(), &level), NADIR_BAD_SETTING);
    EXPECT_EQ(nadir_level_bytes(road->get()), 0u);
  }
  EXPECT_EQ(nadir_level_create(nullptr, &level), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_level_create(match.get(), nullptr), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_level_bytes(nullptr), 0u);
  EXPECT_EQ(level, untouched);
  nadir_level_destroy(nullptr);
}

TEST(Level, ArgumentsAreChecked) {
  const Pair& pair = usualFloor();
  const Bench bench(pair.camera);
  const NadirFrame frame = frameOf(pair.left, pair.right);
  NadirLevel* const level = bench.level.get();
  EXPECT_EQ(nadir_level_add(level, &frame, bench.result.get()), NADIR_NOTHING_FOUND);
  ASSERT_EQ(nadir_road_process(bench.road.get(), &frame, bench.result.get()), NADIR_OK);
  EXPECT_EQ(nadir_level_add(nullptr, &frame, bench.result.get()), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_level_add(level, nullptr, bench.result.get()), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_level_add(level, &frame, nullptr), NADIR_NULL_POINTER);
  const auto refused = [&](void (*spoil)(NadirFrame&)) {
    NadirFrame bad = frame;
    spoil(bad);
    return nadir_level_add(level, &bad, bench.result.get());
  };
  EXPECT_EQ(refused([](NadirFrame& f) { --f.size; }), NADIR_BAD_RECORD);
  EXPECT_EQ(refused([](NadirFrame& f) { f.bits = 12; }), NADIR_BAD_FRAME);
  EXPECT_EQ(refused([](NadirFrame& f) { f.left = nullptr; }), NADIR_BAD_FRAME);
  EXPECT_EQ(refused([](NadirFrame& f) { f.right = nullptr; }), NADIR_BAD_FRAME);
  EXPECT_EQ(refused([](NadirFrame& f) { --f.left_stride; }), NADIR_BAD_FRAME);
  EXPECT_EQ(refused([](NadirFrame& f) { f.left_stride = SIZE_MAX; }), NADIR_BAD_FRAME);
  EXPECT_EQ(refused([](NadirFrame& f) { --f.right_stride; }), NADIR_BAD_FRAME);
  EXPECT_EQ(refused([](NadirFrame& f) { f.right_stride = SIZE_MAX; }), NADIR_BAD_FRAME);
  NadirPlane taken{};
  EXPECT_EQ(nadir_level_taken(level, &taken), NADIR_NOTHING_FOUND);
  EXPECT_EQ(nadir_level_taken(nullptr, &taken), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_level_taken(level, nullptr), NADIR_NULL_POINTER);
  NadirLevelled found{};
  EXPECT_EQ(nadir_level_read(level, &found), NADIR_BAD_RECORD);
  EXPECT_EQ(nadir_level_read(nullptr, &found), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_level_read(level, nullptr), NADIR_NULL_POINTER);
}

TEST(Level, ResultsOfOthersAreRefused) {
  const Bench bench(usualFloor().camera), other(smallCamera());
  const NadirFrame frame = frameOf(usualFloor().left, usualFloor().right);
  EXPECT_EQ(nadir_level_add(bench.level.get(), &frame, other.result.get()), NADIR_FOREIGN_RESULT);
}

// What was found elsewhere is refined by the pictures all the same.
TEST(Level, GivenDisparitiesAreTaken) {
  const Pair& pair = usualFloor();
  const NadirLevelled own = levelled(pair);
  Grid<float> disparity(pair.left.width, pair.left.height, noDisparity);
  for (uint32_t y = 0; y < disparity.height; ++y)
    for (uint32_t x = 20; x < disparity.width; ++x)
      disparity.pixels[size_t{y} * disparity.width + x] =
          static_cast<float>(own.plane[0] * x + own.plane[1] * y + own.plane[2] + 0.1);
  const Bench bench(pair.camera);
  NadirFrame frame = frameOf(pair.left, pair.right);
  frame.disparity = disparity.pixels.data();
  frame.disparity_stride = disparity.width * sizeof(float);
  ASSERT_EQ(nadir_road_process(bench.road.get(), &frame, bench.result.get()), NADIR_OK);
  ASSERT_EQ(nadir_level_add(bench.level.get(), &frame, bench.result.get()), NADIR_OK);
  EXPECT_NEAR(bench.read().height_mm, usual.height, 0.003 * usual.height);
  const NadirFrame without = frameOf(pair.left, pair.right);
  EXPECT_EQ(nadir_level_add(bench.level.get(), &without, bench.result.get()), NADIR_NOTHING_FOUND);
  frame.disparity_stride += 2;
  EXPECT_EQ(nadir_level_add(bench.level.get(), &frame, bench.result.get()), NADIR_BAD_FRAME);
  frame.disparity_stride = 4;
  EXPECT_EQ(nadir_level_add(bench.level.get(), &frame, bench.result.get()), NADIR_BAD_FRAME);
}

}  // namespace
}  // namespace nadir::test
