// nadir evaluate on disparities.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

// Disparities in 1/16, truth in 1/256 pixel. Five pixels have both; their errors are 0, 0.5, -1, 2.5 and 0.25 pixels.
class Evaluate : public testing::Test {
 protected:
  Evaluate() {
    writePng(folder.path("d.png"), picture(4, 2, 16, {160, 168, 144, 200, 164, 0, 0, 160}));
    writePng(folder.path("t.png"), picture(4, 2, 16, {2560, 2560, 2560, 2560, 2560, 2560, 0, 0}));
  }

  std::string json(std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"evaluate", "d.png", "t.png", "--json"});
    const Outcome outcome = folder.run(options);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return outcome.out;
  }

  Folder folder;
};

TEST_F(Evaluate, HandComputedNumbers) {
  const std::string result = json();
  const std::pair<const char*, double> expected[] = {{"pixels", 8},
                                                     {"truth_pixels", 6},
                                                     {"compared_pixels", 5},
                                                     {"density", 5.0 / 6},
                                                     {"bad_0.5", 2.0 / 5},  // an error of 0.5 does not exceed 0.5
                                                     {"bad_1", 1.0 / 5},
                                                     {"bad_2", 1.0 / 5},
                                                     {"mean", 2.25 / 5},
                                                     {"median", 0.25},
                                                     {"mean_absolute", 4.25 / 5},
                                                     {"median_absolute", 0.5},
                                                     {"rms", std::sqrt((0.25 + 1 + 6.25 + 0.0625) / 5)}};
  for (const auto& [name, value] : expected)
    EXPECT_NEAR(numberAfter(result, "\"" + std::string(name) + "\""), value, 1e-8) << name;
}

TEST_F(Evaluate, TableSaysTheSame) {
  const std::string table = folder.run({"evaluate", "d.png", "t.png"}).out;
  const std::pair<const char*, double> expected[] = {
      {"truth known", 75}, {"density", 83.33},      {"bad-0.5", 40},
      {"bad-1", 20},       {"bad-2", 20},           {"(bias)", 0.45},
      {"median", 0.25},    {"mean absolute", 0.85}, {"median absolute", 0.5},
      {"square", 1.230}};
  for (const auto& [name, value] : expected) EXPECT_NEAR(numberAfter(table, name), value, 1e-9) << name;
}

TEST_F(Evaluate, MedianOfAnEvenNumberIsTheMiddle) {
  writePng(folder.path("t.png"), picture(4, 2, 16, {2560, 2560, 2560, 2560, 0, 0, 0, 0}));
  EXPECT_NEAR(numberAfter(json(), "\"median\""), 0.25, 1e-9);
  EXPECT_NEAR(numberAfter(json(), "\"median_absolute\""), 0.75, 1e-9);
}

TEST_F(Evaluate, ScalesComeFromOptionThenTextThenDefault) {
  Picture truth = picture(4, 2, 16, std::vector<uint16_t>(8, 640));
  truth.text["nadir:scale"] = "64";
  writePng(folder.path("t.png"), truth);
  EXPECT_NEAR(numberAfter(json(), "\"mean_absolute\""), 4.25 / 5 * 5 / 6, 1e-8) << "640 / 64 is 10 pixels";
  EXPECT_NEAR(numberAfter(json({"--truth-scale", "32"}), "\"median\""), -10 + 0.125, 1e-9);
  EXPECT_NEAR(numberAfter(json({"--scale", "8"}), "\"median\""), 10.25, 1e-9);
}

TEST_F(Evaluate, NothingToCompareIsNull) {
  writePng(folder.path("t.png"), picture(4, 2, 16, std::vector<uint16_t>(8, 0)));
  const std::string result = json();
  EXPECT_NE(result.find("\"density\": null"), std::string::npos) << result;
  EXPECT_NE(result.find("\"rms\": null"), std::string::npos) << result;
  EXPECT_EQ(result.find("nan"), std::string::npos) << result;
}

// One row: the pixel at 7 has disparity 4 and hides the one at 5, whose 2 pixels lead to the same right column 3; those
// at 0 and 1 lead out of the right picture.
TEST_F(Evaluate, VisibleLeavesOutWhatTheOtherPictureDoesNotShow) {
  const std::vector<uint16_t> known = {512, 512, 512, 512, 512, 512, 512, 1024, 1024, 1024};
  for (const char* view : {"left", "right"}) {
    Picture truth = picture(10, 1, 16, known);
    if (view == std::string("right")) truth = mirrored(truth);
    writePng(folder.path("t.png"), truth);
    writePng(folder.path("d.png"), picture(10, 1, 16, std::vector<uint16_t>(10, 32)));
    const std::string all = json(), visible = json({"--visible", view});
    EXPECT_EQ(numberAfter(all, "\"truth_pixels\""), 10);
    // Left: 2 and 3 reach the columns 0 and 1, which nothing nearer touches; 4 to 6 lie within a column of those of 7
    // to 9.
    EXPECT_EQ(numberAfter(visible, "\"truth_pixels\""), 5);
    EXPECT_NEAR(numberAfter(visible, "\"mean\""), -2 * 3.0 / 5, 1e-9);
  }
}

class EvaluateGrids : public Evaluate {
 protected:
  void say(const char* file, const char* grid) {
    Picture p = readPng(folder.path(file));
    p.text["nadir:grid"] = grid;
    writePng(folder.path(file), p);
  }

  Outcome evaluate(std::vector<std::string> options) {
    options.insert(options.begin(), {"evaluate", "d.png", "t.png"});
    return folder.run(options);
  }
};

TEST_F(EvaluateGrids, OneThatContradictsTheOptionIsAWarning) {
  const std::string sentence =
      "nadir: t.png says of itself (nadir:grid) that its pixels are those of the left picture, but they are taken for "
      "the right one's (--visible)\n";
  const std::string unsaid = evaluate({"--visible", "right"}).out;
  say("t.png", "left");
  const Outcome told = evaluate({"--visible", "right"});
  EXPECT_EQ(told.status, 0);
  EXPECT_EQ(told.out, unsaid) << "a warning changes no figure";
  EXPECT_EQ(told.err, sentence);
  const Outcome strict = evaluate({"--visible", "right", "--strict", "--error-map", "e.png"});
  EXPECT_EQ(strict.status, 3);
  EXPECT_EQ(strict.out, unsaid + "\nwrote e.png\n");
  EXPECT_EQ(strict.err.find(sentence), 0u) << strict.err;
  EXPECT_FALSE(readFile(folder.path("e.png")).empty()) << "it is written all the same";
}

TEST_F(EvaluateGrids, PicturesThatContradictEachOtherAreAWarning) {
  say("d.png", "right");
  say("t.png", "left");
  EXPECT_EQ(evaluate({"--strict"}).status, 3);
  EXPECT_EQ(
      evaluate({}).err,
      "nadir: d.png says of itself (nadir:grid) that its pixels are those of the right picture, but they are taken "
      "for the left one's (t.png)\n");
}

TEST_F(EvaluateGrids, WithoutAContradictionThereIsNoWarning) {
  EXPECT_EQ(evaluate({"--strict", "--visible", "right"}).err, "") << "neither says anything";
  say("t.png", "right");
  EXPECT_EQ(evaluate({"--strict", "--visible", "right"}).err, "");
  say("d.png", "right");
  EXPECT_EQ(evaluate({"--strict", "--visible", "right"}).status, 0);
  EXPECT_EQ(evaluate({"--strict"}).err, "");
  say("d.png", "elsewhere");
  EXPECT_EQ(evaluate({"--strict"}).err, "") << "no view that we know";
}

TEST_F(EvaluateGrids, StrictIsNotForMaps) { EXPECT_EQ(evaluate({"--heights", "--strict"}).status, 1); }

struct Colour {
  int r, g, b;
};

TEST_F(Evaluate, ErrorMapIsBlueBelowAndRedAbove) {
  json({"--error-map", "e.png", "--error-range", "1"});
  const Picture map = readPng(folder.path("e.png"));
  const auto colour = [&](uint32_t x, uint32_t y) {
    const uint16_t* c = &map.samples[3 * (y * map.width + x)];
    return Colour{c[0], c[1], c[2]};
  };
  const Colour none = colour(0, 0), tooLarge = colour(1, 0), tooSmall = colour(2, 0), beyond = colour(3, 0);
  EXPECT_EQ(none.r, none.b) << "no error is neither";
  EXPECT_GT(none.r, 240);
  EXPECT_GT(tooLarge.r, tooLarge.b + 50);
  EXPECT_GT(tooSmall.b, tooSmall.r + 50);
  EXPECT_GT(beyond.r, beyond.b + 50);
  const Colour missing = colour(1, 1);
  EXPECT_TRUE(missing.r == missing.g && missing.g == missing.b && missing.r < 200) << "no value";
}

TEST_F(Evaluate, PreviewUsesTheGivenRange) {
  ASSERT_EQ(folder.run({"preview", "t.png", "-o", "p.png", "--scale", "256", "--range", "10", "20"}).status, 0);
  ASSERT_EQ(folder.run({"preview", "t.png", "-o", "q.png", "--scale", "256", "--range", "0", "10"}).status, 0);
  const Picture low = readPng(folder.path("p.png")), high = readPng(folder.path("q.png"));
  EXPECT_GT(low.samples[2], low.samples[0]) << "10 is the low, bluish end";
  EXPECT_GT(high.samples[0], high.samples[2]) << "10 is the high, reddish end";
}

TEST(Preview, AnArrowTellsOfValuesBeyondAnEnd) {
  const Folder folder;
  writePng(folder.path("d.png"), picture(60, 100, 16, std::vector<uint16_t>(60 * 100, 15 * 16)));
  const auto drawn = [&folder](const char* low, const char* high) {
    EXPECT_EQ(folder.run({"preview", "d.png", "-o", "p.png", "--scale", "16", "--range", low, high}).status, 0);
    return readPng(folder.path("p.png"));
  };
  // The bar begins 8 columns right of the picture and is 14 wide; its middle, just above and just below it.
  const auto isWhite = [](const Picture& p, uint32_t y) {
    return p.samples[3 * (size_t{y} * p.width + 60 + 15)] == 255;
  };
  const uint32_t above = 22, below = 100 - 21;
  const Picture within = drawn("10", "20"), high = drawn("5", "10"), low = drawn("20", "25");
  EXPECT_TRUE(isWhite(within, above) && isWhite(within, below));
  EXPECT_TRUE(!isWhite(high, above) && isWhite(high, below));
  EXPECT_TRUE(isWhite(low, above) && !isWhite(low, below));
}

}  // namespace
}  // namespace nadir::test
