// nadir evaluate on elevation maps.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

// Seen and known: errors of 0, 10, -20 and 0 mm (heights of 1 against a true 0).
class EvaluateHeights : public testing::Test {
 protected:
  EvaluateHeights() {
    map = picture(3, 2, 16, {100, 210, 80, 1, 0, 50});
    truth = picture(3, 2, 16, {100, 200, 100, 0, 300, 65535});
    map.text = {{"nadir:units", "mm"}, {"nadir:no-value", "0"}};
    truth.text = {{"nadir:units", "mm"}, {"nadir:no-value", "65535"}};
  }

  Outcome evaluate(std::vector<std::string> options = {}) {
    writePng(folder.path("m.png"), map);
    writePng(folder.path("t.png"), truth);
    options.insert(options.begin(), {"evaluate", "m.png", "t.png"});
    return folder.run(options);
  }

  Folder folder;
  Picture map, truth;
};

TEST_F(EvaluateHeights, HandComputedNumbers) {
  const Outcome outcome = evaluate({"--json"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  const std::pair<const char*, double> expected[] = {{"cells", 6},
                                                     {"truth_cells", 5},
                                                     {"compared_cells", 4},
                                                     {"seen_share", 0.8},
                                                     {"mean_mm", -2.5},
                                                     {"median_mm", 0},
                                                     {"mean_absolute_mm", 7.5},
                                                     {"median_absolute_mm", 5},
                                                     {"percentile_95_absolute_mm", 20},
                                                     {"rms_mm", std::sqrt(125.0)}};
  for (const auto& [name, value] : expected)
    EXPECT_NEAR(numberAfter(outcome.out, "\"" + std::string(name) + "\""), value, 1e-6) << name;
}

TEST_F(EvaluateHeights, TableSaysTheSame) {
  const std::string table = evaluate().out;
  const std::pair<const char*, double> expected[] = {{"truth known", 83.33}, {"seen", 80},     {"(bias)", -2.5},
                                                     {"mean absolute", 7.5}, {"within", 20.0}, {"square", 11.2}};
  for (const auto& [name, value] : expected) EXPECT_NEAR(numberAfter(table, name), value, 1e-9) << name;
}

TEST_F(EvaluateHeights, PicturesThatSayNothingNeedTheOption) {
  map.text.clear();
  truth.text.clear();
  truth.samples[5] = 0;  // without a text 0 is unseen
  truth.samples[3] = 1;
  EXPECT_NE(evaluate().out.find("pixels, 3 x 2"), std::string::npos) << "taken for disparities";
  const Outcome outcome = evaluate({"--heights", "--json"});
  EXPECT_EQ(numberAfter(outcome.out, "\"truth_cells\""), 5);
  EXPECT_NEAR(numberAfter(outcome.out, "\"mean_mm\""), -2.5, 1e-9);
}

TEST_F(EvaluateHeights, MapsOfDifferentPlacesAreNotCompared) {
  map.text["nadir:cell-mm"] = truth.text["nadir:cell-mm"] = "50";
  map.text["nadir:left-mm"] = truth.text["nadir:left-mm"] = "-1000";
  map.text["nadir:top-mm"] = "-1000";
  EXPECT_EQ(evaluate().status, 0) << "the truth does not say everything";
  truth.text["nadir:top-mm"] = "-1000.4";
  EXPECT_EQ(evaluate().status, 0) << "rounding";
  truth.text["nadir:top-mm"] = "-950";
  const Outcome outcome = evaluate();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            "nadir: the elevation map begins at -1000.0, -1000.0 mm with cells of 50 mm, the truth at -1000.0, -950.0 "
            "mm with cells of 50 mm\n");
}

TEST_F(EvaluateHeights, SizesMustAgree) {
  truth = picture(2, 3, 16, truth.samples);
  EXPECT_EQ(evaluate().err, "nadir: the elevation map is 3 x 2 pixels, the truth 2 x 3\n");
}

TEST_F(EvaluateHeights, OptionsOfDisparitiesAreRefused) {
  for (const std::vector<std::string>& option : {std::vector<std::string>{"--visible", "left"}, {"--scale", "16"}}) {
    const Outcome outcome = evaluate(option);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find(option[0] + " is not for "), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find(", an elevation map\n"), std::string::npos) << outcome.err;
  }
}

TEST_F(EvaluateHeights, ErrorMapIsInMillimetres) {
  ASSERT_EQ(evaluate({"--error-map", "e.png"}).status, 0);
  EXPECT_NE(readPng(folder.path("e.png")).text["Description"].find("in mm"), std::string::npos);
}

// The truth's disparities lead to the truth's heights: sign, axes and half pixels of camera file, library and renderer.
TEST(RenderedGround, TrueDisparitiesGiveTrueHeights) {
  for (const char* tilt : {"0", "-35", "20"})
    for (const char* pan : {"0", "12"}) {
      const Folder folder;
      const std::vector<std::string> synth = {"synth",   "s", "--scene", "empty-floor", "--size", "160x120",
                                              "--noise", "0", "--tilt",  tilt,          "--pan",  pan};
      ASSERT_EQ(folder.run(synth).status, 0);
      const Outcome outcome = folder.run({"ground", "s/left.png", "s/right.png", "--camera", "s/camera.toml",
                                          "--disparity", "s/disparity_gt.png", "-o", "result"});
      ASSERT_EQ(outcome.status, 0) << outcome.err;
      EXPECT_NEAR(numberAfter(outcome.out, "\ntilt"), std::stod(tilt), 0.05);
      EXPECT_NEAR(numberAfter(outcome.out, "\npan"), std::stod(pan), 0.05);
      const Outcome judged = folder.run({"evaluate", "result/elevation.png", "s/elevation_gt.png", "--json"});
      ASSERT_EQ(judged.status, 0) << judged.err;
      EXPECT_GT(numberAfter(judged.out, "\"compared_cells\""), 500);
      EXPECT_LE(numberAfter(judged.out, "\"percentile_95_absolute_mm\""), 8) << tilt << ", " << pan;
    }
}

}  // namespace
}  // namespace nadir::test
