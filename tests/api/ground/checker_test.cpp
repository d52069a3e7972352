// Checkers: every fault has its name, numbers are those that the pair was spoilt by, and what is refused.
#include "lab/checker.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "lab/scene/ready_scenes.hpp"
#include "lab/scene/render.hpp"
#include "lab/spoilt.hpp"
#include "tests/support/rounds.hpp"

namespace nadir::test {
namespace {

using lab::Fingerprint;
using lab::Grid;
using lab::PicturePair;

constexpr uint32_t width = 160, height = 120;

PicturePair rendered(uint32_t columns, uint32_t rows, double baseline, double tilt = scene::CameraSettings().tilt) {
  scene::CameraSettings camera;
  camera.width = columns;
  camera.height = rows;
  camera.focal = 0.78 * columns;
  camera.baseline = baseline;
  camera.tilt = tilt;
  const scene::Rig rig = scene::makeRig(camera);
  const scene::Scene scene = scene::makeScene("boxes", rig, 1);
  scene::Sensor sensor;
  sensor.noise = 5;
  const auto seen = [&](scene::Side side) { return scene::picture(scene, rig, side, sensor, [] {}); };
  return {seen(scene::Side::left), seen(scene::Side::right)};
}

// Disparities of 10 to 19 pixels.
const PicturePair& good() {
  static const PicturePair pair = rendered(width, height, 400);
  return pair;
}

NadirCheckup checkup(const PicturePair& pair, uint32_t range = NADIR_RANGE_61) {
  NadirPair asked = lab::pairOf(pair.left, pair.right);
  asked.range = range;
  return lab::Checker(pair.left.width, pair.left.height).checkup(asked);
}

std::string verdictOf(const PicturePair& pair, uint32_t range = NADIR_RANGE_61) {
  return nadir_verdict_name(checkup(pair, range).verdict);
}

// ---- every fault ----

struct Fault {
  const char* verdict;
  const char* name;
  PicturePair pair;
};

PicturePair both(const PicturePair& pair, const std::function<lab::Intensities(const lab::Intensities&)>& spoil) {
  return {spoil(pair.left), spoil(pair.right)};
}

// Each side in turn.
void add(std::vector<Fault>& faults, const char* verdict, const char* name,
         const std::function<lab::Intensities(const lab::Intensities&)>& spoil) {
  faults.push_back({verdict, name, {spoil(good().left), good().right}});
  faults.push_back({verdict, name, {good().left, spoil(good().right)}});
}

std::vector<Fault> faults() {
  std::vector<Fault> all;
  const lab::Intensities &left = good().left, &right = good().right;
  all.push_back({"same", "left twice", {left, left}});
  all.push_back({"same", "right twice, with other noise", {right, lab::noisy(right, 10, 3)}});
  add(all, "exposure", "gain 3", [](const auto& p) { return lab::amplified(p, 3); });
  add(all, "exposure", "gain 1/3", [](const auto& p) { return lab::amplified(p, 1 / 3.0); });
  add(all, "exposure", "a sixteenth of the light", [](const auto& p) { return lab::amplified(p, 1 / 16.0); });
  all.push_back({"exposure", "both overexposed", both(good(), [](const auto& p) { return lab::amplified(p, 3); })});
  all.push_back({"textureless", "a wall in noise",
                 both(good(), [](const auto& p) { return lab::noisy(lab::faded(p, 1 / 64.0), 20, p.pixels[0]); })});
  add(all, "textureless", "a white sheet", [](const auto& p) { return lab::faded(p, 1 / 64.0); });
  add(all, "blurred", "blur 2.5", [](const auto& p) { return lab::blurred(p, 2.5); });
  all.push_back({"blurred", "both blurred by 4", both(good(), [](const auto& p) { return lab::blurred(p, 4); })});
  all.push_back({"swapped", "exchanged", {right, left}});
  add(all, "offset", "1 row", [](const auto& p) { return lab::moved(p, 0, 1); });
  add(all, "offset", "-3 rows", [](const auto& p) { return lab::moved(p, 0, -3); });
  add(all, "turned", "0.5 degrees", [](const auto& p) { return lab::turned(p, 0.5); });
  add(all, "turned", "-2 degrees", [](const auto& p) { return lab::turned(p, -2); });
  add(all, "unrectified", "1 percent", [](const auto& p) { return lab::scaled(p, 1.01); });
  add(all, "unrectified", "-2 percent", [](const auto& p) { return lab::scaled(p, 0.98); });
  add(all, "unrectified", "a keystone", [](const auto& p) { return lab::keystoned(p, 3); });
  all.push_back({"range", "left moved by 50 columns", {lab::moved(left, 50, 0), right}});
  all.push_back({"range", "right moved by 16 columns", {left, lab::moved(right, 16, 0)}});
  return all;
}

TEST(Checker, EveryFaultHasItsName) {
  EXPECT_EQ(verdictOf(good()), "good");
  const std::vector<Fault> all = faults();
  for (size_t i = 0; i < all.size(); i += everyRound) EXPECT_EQ(verdictOf(all[i].pair), all[i].verdict) << all[i].name;
}

TEST(Checker, PicturesOfDifferentThingsAreUnrectified) {
  const PicturePair other{good().left, lab::moved(lab::turned(good().left, 90), 0, 0)};
  EXPECT_EQ(verdictOf(other), "unrectified");
  PicturePair narrow = rendered(64, 64, 60);
  narrow.right = lab::turned(narrow.left, 180);
  EXPECT_EQ(verdictOf(narrow), "unrectified");
}

// What grows down the picture is scaled by a turn, and what has relief is bent.
TEST(Checker, ATurnOfAGroundAheadIsATurn) {
  const PicturePair ahead = rendered(width, height, 500, -50);
  const double turns[] = {3, -3, 1, -1};
  for (size_t i = 0; i < 4; i += everyRound) {
    EXPECT_EQ(verdictOf({lab::turned(ahead.left, turns[i]), ahead.right}), "turned") << turns[i];
    EXPECT_EQ(verdictOf({ahead.left, lab::turned(ahead.right, turns[i])}), "turned") << turns[i];
  }
}

// Neither the gain nor the other picture says so.
TEST(Checker, OneBadlyExposedPictureIsEnough) {
  const auto spoilt = [](const lab::Intensities& picture, uint16_t value, uint32_t columns) {
    lab::Intensities out = picture;
    for (uint32_t y = 0; y < out.height; ++y) std::fill_n(out.row(y), columns, value);
    return out;
  };
  const lab::Intensities &left = good().left, &right = good().right;
  const uint32_t most = width * 2 / 3, some = width / 8;
  const PicturePair pairs[] = {{spoilt(left, 0, most), right},  // what has no data counts as dark
                               {left, spoilt(right, 0, most)},
                               {spoilt(left, 4095, some), right},  // a lamp
                               {left, spoilt(right, 4095, some)}};
  for (size_t i = 0; i < 4; i += everyRound) EXPECT_EQ(verdictOf(pairs[i]), "exposure") << i;
}

TEST(Checker, TextureThatDrownsInNoiseIsNone) {
  const auto drowned = [](const lab::Intensities& p, uint64_t seed) {
    return lab::noisy(lab::faded(p, 0.12), 80, seed);
  };
  const lab::Intensities left = drowned(good().left, 1), right = drowned(good().right, 2);
  const PicturePair pairs[] = {{left, right}, {left, good().right}, {good().left, right}};
  for (size_t i = 0; i < 3; i += everyRound) EXPECT_EQ(verdictOf(pairs[i]), "textureless") << i;
}

// ---- numbers ----

void expectRows(const NadirCheckup& c, double left, double middle, double right, double top, double bottom) {
  EXPECT_NEAR(c.row_offset_left_px, left, 0.15);
  EXPECT_NEAR(c.row_offset_middle_px, middle, 0.15);
  EXPECT_NEAR(c.row_offset_centre_px, middle, 0.15);
  EXPECT_NEAR(c.row_offset_right_px, right, 0.15);
  EXPECT_NEAR(c.row_offset_top_px, top, 0.15);
  EXPECT_NEAR(c.row_offset_bottom_px, bottom, 0.15);
}

TEST(Checker, RowsAreThoseThatWereMoved) {
  const NadirCheckup c = checkup({good().left, lab::moved(good().right, 0, -2)});
  EXPECT_NEAR(c.row_offset_px, 2, 0.1);
  EXPECT_NEAR(c.turn_deg, 0, 0.1);
  EXPECT_NEAR(c.scale_percent, 0, 0.1);
  EXPECT_LT(c.bend_px, 0.1);
  expectRows(c, 2, 2, 2, 2, 2);
}

TEST(Checker, ATurnIsOneOfTheThirds) {
  const NadirCheckup c = checkup({good().left, lab::turned(good().right, -1)});
  const double outer = width / 3.0 * std::tan(0.01745);
  EXPECT_NEAR(c.turn_deg, 1, 0.06);
  EXPECT_NEAR(c.row_offset_px, 0, 0.1);
  expectRows(c, -outer, 0, outer, 0, 0);
}

TEST(Checker, AScaleIsOneOfTheThirds) {
  const NadirCheckup c = checkup({lab::scaled(good().left, 1.03), good().right});
  EXPECT_NEAR(c.scale_percent, 3, 0.2);
  EXPECT_NEAR(c.turn_deg, 0, 0.1);
  expectRows(c, 0, 0, 0, -0.01 * height, 0.01 * height);
}

TEST(Checker, AKeystoneBends) {
  const NadirCheckup c = checkup({lab::keystoned(good().left, 3), good().right});
  EXPECT_NEAR(c.bend_px, 1, 0.2) << "three rows at the corners, a third of it in the mean";
  EXPECT_NEAR(c.row_offset_px, 0, 0.2);
}

TEST(Checker, LightIsWhatItWas) {
  const NadirCheckup c = checkup({good().left, lab::amplified(good().right, 0.5)});
  EXPECT_NEAR(c.gain, 0.5, 0.02);
  EXPECT_NEAR(c.mean_right, c.mean_left / 2, 0.05 * c.mean_left);
  EXPECT_NEAR(c.mean_left, lab::meanOf(good().left), 1e-6);
  EXPECT_LT(c.clipped_left, 0.01);
  EXPECT_GT(checkup(both(good(), [](const auto& p) { return lab::amplified(p, 4); })).clipped_right, 0.5);
}

TEST(Checker, BlurAndNoiseAreWhatWasAdded) {
  const NadirCheckup c = checkup({lab::blurred(good().left, 3), lab::noisy(good().right, 30, 4)});
  EXPECT_NEAR(c.blur_left_px, 3, 0.5);
  EXPECT_LT(c.blur_right_px, 0.9);
  EXPECT_NEAR(c.noise_right, 30, 4);
  EXPECT_LT(c.noise_left, 2);
  EXPECT_GT(c.texture_left, 100);
}

TEST(Checker, NoiseAloneHasNoBlur) {
  const lab::Intensities wall(width, height, uint16_t{1700});
  const NadirCheckup c = checkup({lab::noisy(wall, 20, 1), lab::noisy(wall, 20, 2)});
  EXPECT_TRUE(std::isnan(c.blur_left_px) && std::isnan(c.blur_right_px));
  EXPECT_NEAR(c.noise_left, 20, 2);
  EXPECT_LT(c.texture_right, 8);
}

TEST(Checker, DisparitiesAskForARange) {
  const NadirCheckup c = checkup(good());
  EXPECT_GT(c.least_disparity_px, 8);
  EXPECT_LT(c.largest_disparity_px, 22);
  EXPECT_EQ(c.range, uint32_t{NADIR_RANGE_61});
  EXPECT_LT(c.nearer + c.behind, 0.01);
  const PicturePair near{lab::moved(good().left, 50, 0), good().right};
  EXPECT_EQ(checkup(near).range, uint32_t{NADIR_RANGE_122});
  EXPECT_GT(checkup(near).nearer, 0.5);
  EXPECT_EQ(verdictOf(near, NADIR_RANGE_122), "good");
  EXPECT_EQ(verdictOf(near, NADIR_RANGE_244), "good");
}

// Random pixels, the left picture's so many columns further right than the right one's.
PicturePair textured(uint32_t columns, uint32_t rows, uint32_t disparity) {
  lab::Random random(7);
  PicturePair pair{lab::Intensities(columns, rows), lab::Intensities(columns, rows)};
  for (uint32_t y = 0; y < rows; ++y) {
    const auto texture = random.values<uint16_t>(columns + disparity, 3000);
    for (uint32_t x = 0; x < columns; ++x) {
      pair.left.at(x, y) = static_cast<uint16_t>(500 + texture[x]);
      pair.right.at(x, y) = static_cast<uint16_t>(500 + texture[x + disparity]);
    }
  }
  return pair;
}

TEST(Checker, ARangeHoldsHalfAPixelMoreThanItsNumber) {
  const NadirCheckup last = checkup(textured(width, height, 61)), first = checkup(textured(width, height, 62));
  EXPECT_NEAR(last.largest_disparity_px, 61, 0.1);
  EXPECT_EQ(last.range, uint32_t{NADIR_RANGE_61});
  EXPECT_EQ(last.nearer, 0);
  EXPECT_NEAR(first.least_disparity_px, 62, 0.1);
  EXPECT_EQ(first.range, uint32_t{NADIR_RANGE_122});
  EXPECT_EQ(first.nearer, 1);
}

TEST(Checker, WhatNoRangeHoldsIsTold) {
  const PicturePair near = textured(1100, 128, 280);
  const NadirCheckup c = checkup(near, NADIR_RANGE_244);
  EXPECT_NEAR(c.largest_disparity_px, 280, 1);
  EXPECT_EQ(c.range, 0u);
  EXPECT_GT(c.nearer, 0.98);
}

TEST(Checker, TheGainIsThatOfWhatIsNotClipped) {
  const NadirCheckup c = checkup({good().left, lab::amplified(good().right, 2.4)});
  EXPECT_GT(c.clipped_right, 0.2);
  EXPECT_NEAR(c.gain, 2.4, 0.1);
  EXPECT_NEAR(checkup({lab::amplified(good().left, 2.4), good().right}).gain, 1 / 2.4, 0.02);
}

TEST(Checker, AlignedRowsAreMatchedAsWellAsGoodOnes) {
  const NadirCheckup as = checkup(good()), turned = checkup({lab::turned(good().left, 3), good().right});
  EXPECT_GT(as.matched, 0.7);
  EXPECT_LT(turned.matched, as.matched - 0.1);
  EXPECT_GT(turned.matched_aligned, as.matched_aligned - 0.1);
}

TEST(Checker, OffsetsLieInThePicture) {
  lab::Checker checker(width, height);
  const PicturePair pair{lab::moved(good().left, 0, 2), good().right};
  const NadirCheckup c = checker.checkup(lab::pairOf(pair.left, pair.right));
  ASSERT_GT(c.offset_count, size_t{50});
  for (size_t i = 0; i < c.offset_count; ++i) {
    EXPECT_TRUE(c.offsets[i].column > 0 && c.offsets[i].column < width);
    EXPECT_TRUE(c.offsets[i].row > 0 && c.offsets[i].row < height);
    EXPECT_NEAR(c.offsets[i].rows, 2, 2.1);
  }
}

// ---- pictures of every kind ----

TEST(Checker, LargePicturesAreHalved) {
  EXPECT_EQ(checkup(good()).halvings, 0u);
  const PicturePair twice = rendered(320, 240, 400);
  const NadirCheckup c = checkup({lab::moved(twice.left, 0, 1), twice.right});
  EXPECT_EQ(c.halvings, 1u);
  EXPECT_STREQ(nadir_verdict_name(c.verdict), "offset");
  EXPECT_NEAR(c.row_offset_px, 1, 0.1);
  const Grid<uint16_t> flat(1200, 70, uint16_t{900});
  EXPECT_EQ(checkup({flat, flat}).halvings, 1u) << "35 rows are not halved again";
  const Grid<uint16_t> wide(1100, 128, uint16_t{900});
  EXPECT_EQ(checkup({wide, wide}).halvings, 2u);
}

TEST(Checker, EightBitsCountSixteenTimes) {
  const auto narrow = [](const lab::Intensities& p) {
    return lab::converted<uint8_t>(p, [](uint16_t v) { return v / 16; });
  };
  const auto wide = [](const Grid<uint8_t>& p) {
    return lab::converted<uint16_t>(p, [](uint8_t v) { return v == 0 ? 1 : 16 * v; });
  };
  const Grid<uint8_t> left = narrow(good().left), right = narrow(good().right);
  lab::Checker checker(width, height);
  Fingerprint eight, sixteen;
  lab::addCheckup(eight, checker.checkup(lab::pairOf(left, right)));
  const lab::Intensities wideLeft = wide(left), wideRight = wide(right);
  lab::addCheckup(sixteen, checker.checkup(lab::pairOf(wideLeft, wideRight)));
  EXPECT_EQ(eight.value(), sixteen.value());
}

TEST(Checker, NothingIsLeftOfThePairBefore) {
  lab::Checker used(width, height), fresh(width, height);
  for (const Fault& fault : {faults()[0], faults()[5], faults()[12]})
    used.checkup(lab::pairOf(fault.pair.left, fault.pair.right));
  Fingerprint before, after;
  lab::addCheckup(before, fresh.checkup(lab::pairOf(good().left, good().right)));
  lab::addCheckup(after, used.checkup(lab::pairOf(good().left, good().right)));
  EXPECT_EQ(before.value(), after.value());
}

TEST(Checker, RowsBeginAnywhere) {
  std::vector<uint8_t> left(height * (2 * width + 3) + 1), right = left;
  for (uint32_t y = 0; y < height; ++y) {
    std::memcpy(&left[1 + y * (2 * width + 3)], good().left.row(y), 2 * width);
    std::memcpy(&right[1 + y * (2 * width + 3)], good().right.row(y), 2 * width);
  }
  NadirPair pair = lab::pairOf(good().left, good().right);
  lab::Checker checker(width, height);
  Fingerprint even, odd;
  lab::addCheckup(even, checker.checkup(pair));
  pair.left = {&left[1], 2 * width + 3, width, height};
  pair.right = {&right[1], 2 * width + 3, width, height};
  lab::addCheckup(odd, checker.checkup(pair));
  EXPECT_EQ(even.value(), odd.value());
}

TEST(Checker, PicturesOfNothing) {
  const auto constant = [](uint16_t value) { return Grid<uint16_t>(width, height, value); };
  EXPECT_EQ(verdictOf({constant(0), constant(0)}), "exposure") << "no data at all";
  EXPECT_EQ(verdictOf({constant(16), constant(16)}), "exposure") << "black";
  EXPECT_EQ(verdictOf({constant(4095), constant(4095)}), "exposure") << "white";
  EXPECT_EQ(verdictOf({constant(65535), constant(65535)}), "exposure") << "white in 16 bits";
  EXPECT_EQ(verdictOf({constant(1700), constant(1700)}), "textureless");
  EXPECT_EQ(verdictOf({constant(1700), constant(1800)}), "textureless");
  const NadirCheckup c = checkup({constant(1700), constant(1700)});
  EXPECT_TRUE(std::isnan(c.row_offset_px) && std::isnan(c.unmoved) && std::isnan(c.blur_left_px));
  EXPECT_EQ(c.offset_count + c.range, size_t{0});
}

TEST(Checker, ThingsAtTheEndOfALongRange) {
  const PicturePair near = rendered(320, 120, 400);
  EXPECT_EQ(checkup({lab::moved(near.left, 100, 0), near.right}).range, uint32_t{NADIR_RANGE_244});
}

// ---- what is refused ----

TEST(Checker, SizesThatDoNotFitAreAVerdict) {
  lab::Checker checker(width, height);
  const Grid<uint16_t> other(width, height + 1, uint16_t{9}), wider(width + 1, height, uint16_t{9});
  for (const NadirPair& pair : {lab::pairOf(good().left, other), lab::pairOf(wider, good().right),
                                lab::pairOf(other, good().right), lab::pairOf(other, other)}) {
    const NadirCheckup c = checker.checkup(pair);
    EXPECT_STREQ(nadir_verdict_name(c.verdict), "size");
    for (const double number : lab::numbersOf(c)) EXPECT_TRUE(std::isnan(number));
    EXPECT_EQ(c.offset_count, size_t{0});
  }
}

TEST(Checker, VerdictsHaveNames) {
  const char* names[] = {"good",    "size",   "same",   "exposure",    "textureless", "blurred",
                         "swapped", "offset", "turned", "unrectified", "range"};
  for (uint32_t i = 0; i < NADIR_VERDICTS; ++i) {
    EXPECT_STREQ(nadir_verdict_name(i), names[i]);
    EXPECT_EQ(nadir_verdict_advice(i)[std::strlen(nadir_verdict_advice(i)) - 1], '.');
  }
  EXPECT_EQ(nadir_verdict_name(NADIR_VERDICTS), nullptr);
  EXPECT_EQ(nadir_verdict_advice(NADIR_VERDICTS), nullptr);
}

TEST(Checker, BytesAreAboutWhatTheHeaderSays) {
  struct Case {
    double width, height, halved;  // each side, so often
  };
  for (const Case& c : {Case{64, 64, 1}, Case{640, 480, 2}, Case{3840, 2160, 8}, Case{65535, 64, 2}}) {
    const double small = std::floor(c.width / c.halved);
    const double said = 4 * c.width * c.height + 16 * small * (c.height / c.halved) + 300 * small + 264000;
    const auto bytes = static_cast<double>(nadir_checker_bytes(uint32_t(c.width), uint32_t(c.height)));
    EXPECT_NEAR(bytes, said, 0.03 * said) << c.width;
  }
}

TEST(Checker, SizesThatAreRefused) {
  struct Case {
    uint32_t width, height;
    const char* field;
  };
  for (const Case& c : {Case{63, 64, "width_px"}, Case{65536, 64, "width_px"}, Case{64, 63, "height_px"},
                        Case{64, 65536, "height_px"}, Case{8192, 4097, "height_px"}}) {
    NadirChecker* checker = nullptr;
    NadirFault fault = lab::emptyRecord<NadirFault>();
    EXPECT_EQ(nadir_checker_create(c.width, c.height, &checker, &fault), NADIR_BAD_CAMERA);
    EXPECT_STREQ(fault.field, c.field);
    EXPECT_EQ(nadir_checker_create(c.width, c.height, &checker, nullptr), NADIR_BAD_CAMERA);
    EXPECT_EQ(checker, nullptr);
    EXPECT_EQ(nadir_checker_bytes(c.width, c.height), 0u);
  }
  EXPECT_GT(nadir_checker_bytes(65535, 512), 65535u * 512 * 4);
  NadirFault fault{};
  NadirChecker* checker = nullptr;
  EXPECT_EQ(nadir_checker_create(64, 64, &checker, &fault), NADIR_BAD_RECORD);
  EXPECT_EQ(nadir_checker_create(64, 64, nullptr, nullptr), NADIR_NULL_POINTER);
  fault = lab::emptyRecord<NadirFault>();
  ASSERT_EQ(nadir_checker_create(64, 64, &checker, &fault), NADIR_OK);
  EXPECT_EQ(fault.field, nullptr);
  nadir_checker_destroy(checker);
  nadir_checker_destroy(nullptr);
}

void expectRefused(NadirStatus status, NadirChecker* checker, const NadirPair* pair, uint32_t size) {
  NadirCheckup checkup;
  std::memset(&checkup, 77, sizeof checkup);
  checkup.size = size;
  const auto bytes = [&checkup] {
    const auto* begin = reinterpret_cast<const uint8_t*>(&checkup);
    return std::vector<uint8_t>(begin, begin + sizeof checkup);
  };
  const std::vector<uint8_t> before = bytes();
  EXPECT_EQ(nadir_checker_process(checker, pair, &checkup), status);
  EXPECT_EQ(bytes(), before);
}

TEST(Checker, PairsThatAreRefused) {
  const lab::Checker checker(width, height);
  const NadirPair fine = lab::pairOf(good().left, good().right);
  expectRefused(NADIR_NULL_POINTER, nullptr, &fine, sizeof(NadirCheckup));
  expectRefused(NADIR_NULL_POINTER, checker.get(), nullptr, sizeof(NadirCheckup));
  EXPECT_EQ(nadir_checker_process(checker.get(), &fine, nullptr), NADIR_NULL_POINTER);
  expectRefused(NADIR_BAD_RECORD, checker.get(), &fine, sizeof(NadirCheckup) - 8);
  const auto refuse = [&](NadirStatus status, const std::function<void(NadirPair&)>& spoil) {
    NadirPair pair = fine;
    spoil(pair);
    expectRefused(status, checker.get(), &pair, sizeof(NadirCheckup));
  };
  refuse(NADIR_BAD_RECORD, [](NadirPair& p) { p.size = 0; });
  refuse(NADIR_BAD_SETTING, [](NadirPair& p) { p.range = 62; });
  refuse(NADIR_BAD_FRAME, [](NadirPair& p) { p.bits = 12; });
  refuse(NADIR_BAD_FRAME, [](NadirPair& p) { p.left.data = nullptr; });
  refuse(NADIR_BAD_FRAME, [](NadirPair& p) { p.right.data = nullptr; });
  refuse(NADIR_BAD_FRAME, [](NadirPair& p) { p.left.stride = 2 * width - 1; });
  refuse(NADIR_BAD_FRAME, [](NadirPair& p) { p.right.stride = SIZE_MAX; });
  refuse(NADIR_BAD_FRAME, [](NadirPair& p) { p.left.width = 0; });
  refuse(NADIR_BAD_FRAME, [](NadirPair& p) { p.right.height = 0; });
}

}  // namespace
}  // namespace nadir::test
