// nadir disparity on rendered pairs.
#include <gtest/gtest.h>
#include <nadir/nadir.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

constexpr uint32_t width = 320, height = 200;

class Disparity : public testing::Test {
 protected:
  Disparity() {
    EXPECT_EQ(folder.run({"synth", ".", "--size", "320x200", "--seed", "3"}).status, 0);
    left = readPng(folder.path("left.png"));
    right = readPng(folder.path("right.png"));
  }

  Outcome run(std::vector<std::string> options, const std::string& l = "left.png", const std::string& r = "right.png") {
    options.insert(options.begin(), {"disparity", l, r, "-o", "d.png"});
    const Outcome outcome = folder.run(options);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return outcome;
  }

  std::vector<uint16_t> disparity(const std::vector<std::string>& options, const std::string& l = "left.png",
                                  const std::string& r = "right.png") {
    run(options, l, r);
    return readPng(folder.path("d.png")).samples;
  }

  // The disparities that the library makes of the pair on the right grid.
  std::vector<uint16_t> library(uint32_t uniqueness) const {
    std::vector<uint32_t> first(left.samples.size()), reference(left.samples.size());
    std::vector<uint16_t> result(left.samples.size());
    const SgmParams params{64, uniqueness};
    IP_Census_5x5(left.samples.data(), first.data(), width, height);
    IP_Census_5x5(right.samples.data(), reference.data(), width, height);
    IP_SgmFull(first.data(), reference.data(), right.samples.data(), width, height, &params, result.data(), nullptr);
    return result;
  }

  Folder folder;
  Picture left, right;
};

TEST_F(Disparity, IsNearTheTruthOnTheLeftGrid) {
  run({});
  const std::string json = folder.run({"evaluate", "d.png", "disparity_gt.png", "--json"}).out;
  EXPECT_GT(numberAfter(json, "\"density\""), 0.97);
  EXPECT_LT(numberAfter(json, "\"bad_1\""), 0.04);
  EXPECT_LT(numberAfter(json, "\"median_absolute\""), 0.3);
}

TEST_F(Disparity, RightGridIsTheLibrarysOwn) {
  const std::vector<uint16_t> raw = library(48);
  EXPECT_EQ(disparity({"--grid", "right", "--raw", "--refine", "none"}), raw);
  EXPECT_EQ(disparity({"--grid", "right", "--no-postproc", "--uniqueness", "90", "--refine", "none"}), library(90));

  const std::vector<uint8_t> nothing(raw.size());
  std::vector<uint16_t> clean(raw.size());
  ASSERT_EQ(IP_SgmPostproc(raw.data(), nothing.data(), clean.data(), width, height), 1u);
  EXPECT_NE(clean, raw);
  EXPECT_EQ(disparity({"--grid", "right", "--refine", "none"}), clean);
}

TEST_F(Disparity, MirroredPairOnTheRightGridIsTheMirroredLeftGrid) {
  writeFile(folder.path("l.pgm"), pgm(mirrored(right)));
  writeFile(folder.path("r.pgm"), pgm(mirrored(left)));
  run({"--grid", "right"}, "l.pgm", "r.pgm");
  const Picture other = mirrored(readPng(folder.path("d.png")));
  EXPECT_EQ(disparity({"--grid", "left"}), other.samples);
}

TEST_F(Disparity, BothGridsTellTheSameStory) {
  run({"--grid", "right"});
  const Picture onRight = readPng(folder.path("d.png"));
  run({});
  const Picture onLeft = readPng(folder.path("d.png"));
  int checked = 0, agreed = 0;
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 64; x < width; ++x) {
      if (onLeft.at(x, y) == 0) continue;
      const auto column = static_cast<uint32_t>(std::lround(x - onLeft.at(x, y) / 16.0));
      ++checked;
      agreed += std::abs(onRight.at(column, y) - onLeft.at(x, y)) <= 16;
    }
  EXPECT_GT(checked, 40000);
  EXPECT_GT(agreed, checked * 0.93);
}

TEST_F(Disparity, LeftIsTheDefaultGrid) { EXPECT_EQ(disparity({}), disparity({"--grid", "left"})); }

TEST_F(Disparity, TextsTellHowToReadIt) {
  run({"--grid", "right", "--uniqueness", "33", "--raw"});
  const Picture picture = readPng(folder.path("d.png"));
  EXPECT_EQ(picture.bits, 16u);
  EXPECT_EQ(picture.channels, 1u);
  const std::map<std::string, std::string> expected = {{"nadir:scale", "16"},
                                                       {"nadir:no-value", "0"},
                                                       {"nadir:units", "1/16 pixel"},
                                                       {"nadir:grid", "right"},
                                                       {"nadir:uniqueness", "33"},
                                                       {"nadir:post-processing", "no"},
                                                       {"Software", "nadir " + std::string(nadir_version())}};
  for (const auto& [key, value] : expected) EXPECT_EQ(picture.text.at(key), value) << key;
  EXPECT_NE(picture.text.at("Description").find("value / 16"), std::string::npos);
  run({});
  const Picture usual = readPng(folder.path("d.png"));
  EXPECT_EQ(usual.text.at("nadir:grid"), "left");
  EXPECT_EQ(usual.text.at("nadir:post-processing"), "yes");
}

// ---- kinds of output ----

TEST_F(Disparity, NpyHoldsPixelsFromTheTopDown) {
  const std::vector<uint16_t> sixteenths = disparity({});
  ASSERT_EQ(folder.run({"disparity", "left.png", "right.png", "-o", "d.npy", "--no-preview"}).status, 0);
  const Bytes npy = readFile(folder.path("d.npy"));
  const Bytes header = npy.substr(0, npy.find('\n') + 1);
  EXPECT_EQ(header.size() % 64, 0u);
  EXPECT_EQ(header.substr(0, 8), Bytes("\x93NUMPY\x01\0", 8));
  EXPECT_EQ(static_cast<uint8_t>(header[8]) + 256 * static_cast<uint8_t>(header[9]) + 10u, header.size());
  EXPECT_NE(header.find("{'descr': '<f4', 'fortran_order': False, 'shape': (200, 320), }"), Bytes::npos);
  ASSERT_EQ(npy.size(), header.size() + 4 * sixteenths.size());
  for (size_t i = 0; i < sixteenths.size(); ++i) {
    const float pixels = floatAt(npy, header.size() + 4 * i);
    ASSERT_TRUE(sixteenths[i] ? pixels * 16 == sixteenths[i] : std::isnan(pixels)) << i << ": " << pixels;
  }
}

TEST_F(Disparity, PfmHoldsPixelsFromTheBottomUp) {
  const std::vector<uint16_t> sixteenths = disparity({});
  ASSERT_EQ(folder.run({"disparity", "left.png", "right.png", "-o", "d.PFM", "--no-preview"}).status, 0);
  const Bytes pfm = readFile(folder.path("d.PFM")), header = "Pf\n320 200\n-1.0\n";
  EXPECT_EQ(pfm.substr(0, header.size()), header);
  ASSERT_EQ(pfm.size(), header.size() + 4 * sixteenths.size());
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x) {
      const uint16_t stored = sixteenths[size_t{height - 1 - y} * width + x];
      const float pixels = floatAt(pfm, header.size() + 4 * (size_t{y} * width + x));
      ASSERT_TRUE(stored ? pixels * 16 == stored : std::isinf(pixels)) << x << ", " << y << ": " << pixels;
    }
}

TEST_F(Disparity, AnEndingThatIsNotWrittenIsRefused) {
  const Outcome outcome = folder.run({"disparity", "left.png", "right.png", "-o", "d.tif"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_NE(outcome.err.find("\"d.tif\" does not end as a file that can be written there: .png, .pfm, .npy"),
            Bytes::npos)
      << outcome.err;
}

// ---- kinds of input ----

TEST_F(Disparity, Pgm16IsBigEndian) {
  const std::vector<uint16_t> fromPng = disparity({});
  writeFile(folder.path("l.pgm"), pgm(left));
  writeFile(folder.path("r.pgm"), pgm(right));
  EXPECT_EQ(disparity({}, "l.pgm", "r.pgm"), fromPng);
}

// Eight bits with some black, and what the matcher is to see of them.
struct Eight {
  Picture narrow, wide;
};

Eight toEight(const Picture& picture) {
  Eight eight{picture, picture};
  eight.narrow.bits = 8;
  for (size_t i = 0; i < picture.samples.size(); ++i) {
    const int value = std::max(0, picture.samples[i] / 16 - 70);
    eight.narrow.samples[i] = static_cast<uint16_t>(value);
    eight.wide.samples[i] = static_cast<uint16_t>(std::max(1, value * 16));
  }
  return eight;
}

TEST_F(Disparity, EightBitsAreTimes16AndBlackIs1) {
  const Eight l = toEight(left), r = toEight(right);
  ASSERT_GT(std::count(l.narrow.samples.begin(), l.narrow.samples.end(), 0), 100);
  writePng(folder.path("l.png"), l.wide);
  writePng(folder.path("r.png"), r.wide);
  const std::vector<uint16_t> expected = disparity({}, "l.png", "r.png");
  writePng(folder.path("l.png"), l.narrow);
  writeFile(folder.path("r.pgm"), pgm(r.narrow));
  EXPECT_EQ(disparity({}, "l.png", "r.pgm"), expected);
}

Picture coloured(const Picture& grey) {
  Picture colour = grey;
  colour.channels = 3;
  colour.samples.clear();
  for (const uint16_t v : grey.samples) colour.samples.insert(colour.samples.end(), {v, v, v});
  return colour;
}

TEST_F(Disparity, PpmHoldsColours) {
  const std::vector<uint16_t> fromPng = disparity({});
  writeFile(folder.path("l.ppm"), pgm(coloured(left)));
  EXPECT_EQ(disparity({}, "l.ppm", "right.png"), fromPng);
}

TEST_F(Disparity, BmpIsWhatAPngOfEightBitsIs) {
  const Picture l = toEight(left).narrow, r = toEight(right).narrow;
  writePng(folder.path("l.png"), l);
  writePng(folder.path("r.png"), r);
  writeFile(folder.path("l.bmp"), bmp(l));
  writeFile(folder.path("r.bmp"), bmp(r));
  EXPECT_EQ(disparity({}, "l.bmp", "r.bmp"), disparity({}, "l.png", "r.png"));
}

// It loses something even at its best, so that most disparities are nearly those of the pair.
TEST_F(Disparity, JpegIsNearlyWhatAPngOfEightBitsIs) {
  const Picture l = toEight(left).narrow, r = toEight(right).narrow;
  writePng(folder.path("l.png"), l);
  writePng(folder.path("r.png"), r);
  writeFile(folder.path("l.jpg"), jpeg(l));
  writeFile(folder.path("r.JPG"), jpeg(coloured(r)));
  const std::vector<uint16_t> exact = disparity({}, "l.png", "r.png"), lossy = disparity({}, "l.jpg", "r.JPG");
  size_t near = 0;
  for (size_t i = 0; i < exact.size(); ++i) near += std::abs(exact[i] - lossy[i]) <= 8;
  EXPECT_GT(near, exact.size() * 9 / 10);
}

TEST_F(Disparity, ColoursBecomeLuminance) {
  const std::vector<uint16_t> expected = disparity({});
  writePng(folder.path("l.png"), coloured(left));
  EXPECT_EQ(disparity({}, "l.png", "right.png"), expected);

  // 299/1000 of red at 8 bits is 16 * 0.299 of it: 1000 * 0.299 at 16 bits is 299.
  Picture red = coloured(picture(width, height, 16, std::vector<uint16_t>(left.samples.size())));
  Picture grey = left;
  for (size_t i = 0; i < left.samples.size(); ++i) {
    red.samples[3 * i] = static_cast<uint16_t>(left.samples[i] * 10);
    grey.samples[i] = static_cast<uint16_t>((299 * (left.samples[i] * 10) + 500) / 1000);
  }
  writePng(folder.path("l.png"), red);
  const std::vector<uint16_t> fromRed = disparity({"--grid", "left"}, "l.png", "right.png");
  writePng(folder.path("l.png"), grey);
  EXPECT_EQ(disparity({"--grid", "left"}, "l.png", "right.png"), fromRed);
}

TEST_F(Disparity, HowOpaqueAPixelIsDoesNotMatter) {
  Picture glass = left;
  glass.channels = 2;
  glass.samples.clear();
  for (const uint16_t v : left.samples) glass.samples.insert(glass.samples.end(), {v, static_cast<uint16_t>(7 * v)});
  writePng(folder.path("l.png"), glass);
  EXPECT_EQ(disparity({}, "l.png", "right.png"), disparity({}));
}

TEST_F(Disparity, SixteenBitZeroStaysNoData) {
  for (uint32_t y = 50; y < 90; ++y)
    for (uint32_t x = 150; x < 200; ++x) right.samples[y * width + x] = 0;
  writePng(folder.path("holed.png"), right);
  EXPECT_EQ(disparity({"--grid", "right", "--raw", "--refine", "none"}, "left.png", "holed.png"), library(48));
}

// ---- options ----

TEST_F(Disparity, MaskedPixelsHaveNoValueOnTheWantedGrid) {
  Picture mask = picture(width, height, 8, std::vector<uint16_t>(left.samples.size()));
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = width * 3 / 4; x < width; ++x) mask.samples[y * width + x] = static_cast<uint16_t>(1 + x % 255);
  writeFile(folder.path("mask.pgm"), pgm(mask));
  for (const char* grid : {"left", "right"})
    for (const std::vector<std::string>& more : {std::vector<std::string>{}, {"--raw"}}) {
      std::vector<std::string> options = {"--grid", grid};
      options.insert(options.end(), more.begin(), more.end());
      const Picture whole = picture(width, height, 16, disparity(options));
      options.insert(options.end(), {"--mask", "mask.pgm"});
      const Outcome outcome = run(options);
      const Picture masked = readPng(folder.path("d.png"));
      EXPECT_DOUBLE_EQ(numberAfter(outcome.out, "masked"), 25.0);
      for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x) {
          const bool discarded = mask.at(x, y) != 0, farFromMask = x + 7 < width * 3 / 4;
          if (!discarded && !farFromMask) continue;
          ASSERT_EQ(masked.at(x, y), discarded ? 0 : whole.at(x, y)) << grid << ' ' << x << ' ' << y;
        }
    }
}

TEST_F(Disparity, BothPicturesMayStandSideBySide) {
  Picture both = picture(2 * width, height, 16, {});
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < 2 * width; ++x) both.samples.push_back(x < width ? left.at(x, y) : right.at(x - width, y));
  writePng(folder.path("both.png"), both);
  const Outcome outcome = folder.run({"disparity", "both.png", "--side-by-side", "-o", "b.png"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(readPng(folder.path("b.png")).samples, disparity({}));
  EXPECT_EQ(folder.run({"disparity", "both.png", "-o", "b.png"}).err,
            "nadir: a right picture is needed beside both.png, or --side-by-side where it holds both\n");
}

TEST_F(Disparity, HigherUniquenessRejectsMore) {
  double last = 101;
  for (const char* uniqueness : {"0", "64", "128"}) {
    const double share = numberAfter(run({"--uniqueness", uniqueness}).out, "with a value");
    EXPECT_LT(share, last) << uniqueness;
    last = share;
  }
}

TEST_F(Disparity, SharesAddUp) {
  const std::string table = run({"--uniqueness", "100"}).out;
  double sum = 0;
  for (const char* part : {"with a value", "no distinct match", "removed by post-processing", "masked", "not matched"})
    sum += numberAfter(table, part);
  EXPECT_NEAR(sum, 100, 0.03);
  const std::vector<uint16_t> values = readPng(folder.path("d.png")).samples;
  const auto empty = std::count(values.begin(), values.end(), 0);
  EXPECT_NEAR(numberAfter(table, "with a value"), 100 - 100.0 * static_cast<double>(empty) / (width * height), 0.006);
  for (const char* stage : {"reading", "mirroring", "census", "matching", "post-processing", "writing", "total"})
    EXPECT_GE(numberAfter(table, stage), 0) << stage;
}

// ---- scaled down ----

Picture withHole(Picture full) {
  for (uint32_t y = 33; y < 60; ++y)
    for (uint32_t x = 51; x < 70; ++x) full.samples[y * full.width + x] = 0;
  return full;
}

class ScaledDown : public Disparity {
 protected:
  // The sentence that says it.
  std::string sentence(const std::vector<std::string>& options, const std::string& l, const std::string& r) {
    std::vector<std::string> arguments = {"disparity", l, r, "-o", "d.png"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = folder.run(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return outcome.err;
  }
};

TEST_F(ScaledDown, IsTheDisparityOfHalvedPicturesOfAnySize) {
  ASSERT_EQ(folder.run({"synth", ".", "--size", "323x203"}).status, 0);
  for (const std::string name : {"left", "right"}) {
    const Picture full = withHole(readPng(folder.path(name + ".png"))), half = halved(full);
    writePng(folder.path(name + ".png"), full);
    writePng(folder.path(name + "-2.png"), half);
    writePng(folder.path(name + "-4.png"), halved(half));
  }
  for (const std::string n : {"2", "4"}) {
    const std::vector<uint16_t> expected = disparity({}, "left-" + n + ".png", "right-" + n + ".png");
    const std::string size = n == "2" ? "161 x 101" : "80 x 50";
    EXPECT_EQ(sentence({"--scale-down", n}, "left.png", "right.png"),
              "nadir: both pictures are scaled down to " + size + " pixels (--scale-down " + n + ")\n");
    EXPECT_EQ(readPng(folder.path("d.png")).samples, expected) << n;
  }
  const Bytes four = readFile(folder.path("d.png"));
  sentence({"--half"}, "left.png", "right.png");
  const Bytes half = readFile(folder.path("d.png"));
  sentence({"--scale-down", "2"}, "left.png", "right.png");
  EXPECT_EQ(readFile(folder.path("d.png")), half);
  EXPECT_NE(four, half);
}

TEST_F(ScaledDown, AutomaticallyToAtMost1280Columns) {
  EXPECT_EQ(sentence({"--scale-down", "auto"}, "left.png", "right.png"), "");
  EXPECT_EQ(sentence({"--scale-down", "1"}, "left.png", "right.png"), "");
  const std::pair<uint32_t, std::string> sizes[] = {{1281, "640 x 20"}, {1282, "641 x 20"}, {2562, "640 x 10"}};
  for (const auto& [columns, size] : sizes) {
    Picture wide = picture(columns, 40, 8, {});
    for (uint32_t i = 0; i < columns * 40; ++i) wide.samples.push_back(static_cast<uint16_t>((i * i / 7 + i) % 251));
    writeFile(folder.path("wide.pgm"), pgm(wide));
    EXPECT_NE(sentence({"--scale-down", "auto"}, "wide.pgm", "wide.pgm").find("scaled down to " + size + " pixels"),
              std::string::npos)
        << columns;
  }
}

TEST_F(ScaledDown, OnlyPowersOfTwoAreTaken) {
  for (const char* n : {"0", "3", "-2", "128", "02", "two"}) {
    const Outcome outcome = folder.run({"disparity", "left.png", "right.png", "-o", "d.png", "--scale-down", n});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.err.find("is neither auto nor a power of two from 1 to 64"), std::string::npos) << outcome.err;
  }
  EXPECT_EQ(folder.run({"disparity", "left.png", "right.png", "-o", "d.png", "--scale-down", "2", "--half"}).status, 2);
}

// ---- preview ----

TEST_F(Disparity, PreviewLiesBesideTheResultUnlessToldOtherwise) {
  const auto made = [this, before = folder.names()] {
    std::vector<std::string> names = folder.names(), fresh;
    std::set_difference(names.begin(), names.end(), before.begin(), before.end(), std::back_inserter(fresh));
    return fresh;
  };
  run({"--no-preview"});
  EXPECT_EQ(made(), (std::vector<std::string>{"d.png"}));
  run({"--preview", "look.png"});
  run({});
  EXPECT_EQ(made(), (std::vector<std::string>{"d.png", "d.preview.png", "look.png"}));
  EXPECT_EQ(readFile(folder.path("look.png")), readFile(folder.path("d.preview.png")));
}

TEST_F(Disparity, PreviewIsGreyExactlyWhereThereIsNoValue) {
  run({});
  const Picture values = readPng(folder.path("d.png")), preview = readPng(folder.path("d.preview.png"));
  ASSERT_EQ(preview.channels, 3u);
  ASSERT_EQ(preview.height, height);
  ASSERT_GT(preview.width, width);
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x) {
      const uint16_t* c = &preview.samples[3 * (y * preview.width + x)];
      const bool grey = c[0] == c[1] && c[1] == c[2];
      ASSERT_EQ(grey, values.at(x, y) == 0) << x << ' ' << y;
    }
}

TEST_F(Disparity, VersionNamesLibraryAndKernels) {
  const Outcome outcome = folder.run({"--version"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, std::string("nadir ") + nadir_version() + " (" + nadir_simd_level() + " kernels)\n");
}

TEST_F(Disparity, HelpTeaches) {
  for (const char* command : {"check", "disparity", "evaluate", "preview", "synth"}) {
    const Outcome outcome = folder.run({command, "--help"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.out.find(std::string("  nadir ") + command), std::string::npos) << "no example";
  }
}

}  // namespace
}  // namespace nadir::test
