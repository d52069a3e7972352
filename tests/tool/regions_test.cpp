// The regions of nadir ground, on disparities made by hand and on rendered scenes.
#include <gtest/gtest.h>

#include <array>

#include "tests/tool/json.hpp"
#include "tests/tool/straight_down.hpp"

namespace nadir::test {
namespace {

using namespace straight_down;

constexpr uint16_t floorDisparity = 213, lowBlock = 20 * 16, highBlock = 25 * 16;  // 1, 500 and 700 mm above the ground

class Regions : public StraightDown {
 protected:
  // A block 500 mm high over the columns 16 to 21 and the rows 17 to 22 of the map, another of 700 mm over the columns
  // 24 to 29 of the same rows. A pixel is worth 10 mm on the first and 8 mm on the second.
  void giveTwoBlocks() {
    give([](uint32_t x, uint32_t y) {
      const bool between = y >= 25 && y < 55;
      if (between && x >= 40 && x < 70) return lowBlock;
      return between && x >= 90 ? highBlock : floorDisparity;
    });
  }

  Json found(std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"--disparity", "d.png"});
    ground(options);
    return readJson(folder.path("result/summary.json"));
  }

  size_t count(std::vector<std::string> options = {}) { return found(std::move(options))["regions"].size(); }
};

TEST_F(Regions, SizePlaceAndHeights) {
  giveTwoBlocks();
  const Json regions = found()["regions"];
  const Json low = {{"label", 1},
                    {"cells", 36},
                    {"area_m2", 0.09},
                    {"box_mm", {{"left", -200.0}, {"top", -150.0}, {"right", 100.0}, {"bottom", 150.0}}},
                    {"centre_mm", {{"x", -50.0}, {"y", 0.0}}},
                    {"at_map_edge", false},
                    {"at_picture_edge", false},
                    {"highest_mm", 500},
                    {"median_mm", 500}};
  ASSERT_EQ(regions.size(), 2u);
  EXPECT_EQ(regions[0], low);
  EXPECT_EQ(regions[1]["cells"], 36);
  EXPECT_EQ(regions[1]["centre_mm"]["x"], 350);
  EXPECT_EQ(regions[1]["highest_mm"], 700);
}

TEST_F(Regions, OfAPresetFollowTheOptionsThatItStandsFor) {
  giveTwoBlocks();
  EXPECT_EQ(found({"--for", "people"})["region_rule"],
            found({"--min-height", "300", "--max-step", "250", "--dip", "30"})["region_rule"]);
  EXPECT_EQ(found({"--for", "vehicles"})["region_rule"],
            found({"--min-height", "300", "--max-step", "400", "--min-area", "1"})["region_rule"]);
  EXPECT_EQ(found({"--for", "boxes"})["map"]["percentile"], 50);
}

TEST_F(Regions, OfAPresetMayBeToldMore) {
  giveTwoBlocks();
  const Json rule = found({"--for", "people", "--min-height", "600"})["region_rule"];
  EXPECT_EQ(rule["min_height_mm"], 600);
  EXPECT_EQ(rule["max_step_mm"], 250);
}

TEST_F(Regions, LabelMapHasTheSameCells) {
  giveTwoBlocks();
  const Json regions = found()["regions"];
  const Picture labels = readPng(folder.path("result/regions.png"));
  ASSERT_EQ(labels.width, 40u);
  ASSERT_EQ(labels.height, 30u);
  for (uint32_t y = 0; y < 30; ++y)
    for (uint32_t x = 0; x < 40; ++x) {
      const bool inRows = y >= 17 && y <= 22;
      const int expected = inRows && x >= 16 && x <= 21 ? 1 : inRows && x >= 24 && x <= 29 ? 2 : 0;
      EXPECT_EQ(labels.at(x, y), expected) << x << ", " << y;
    }
  EXPECT_EQ(labels.text.at("nadir:units"), "region");
  EXPECT_EQ(labels.text.at("nadir:cell-mm"), "50");
}

TEST_F(Regions, MedianIsTheLowerOfTheTwoMiddleHeights) {
  // Rows 17 to 19 are 500 mm high, rows 20 to 22 700 mm.
  give([](uint32_t x, uint32_t y) {
    if (y < 25 || y >= 55 || x < 40 || x >= 70) return floorDisparity;
    return y < 40 ? lowBlock : highBlock;
  });
  const Json region = found({"--max-step", "200", "--min-area", "0"})["regions"][0];
  EXPECT_EQ(region["highest_mm"], 700);
  EXPECT_EQ(region["median_mm"], 500);
}

TEST_F(Regions, SmallOnesAreDropped) {
  giveTwoBlocks();
  EXPECT_EQ(count({"--min-area", "0.09"}), 2u) << "36 cells of 50 mm";
  EXPECT_EQ(count({"--min-area", "0.0901"}), 0u);
}

TEST_F(Regions, CellsMustBeHigherThanTheMinimum) {
  giveTwoBlocks();
  EXPECT_EQ(count({"--min-height", "499"}), 2u);
  EXPECT_EQ(count({"--min-height", "500"}), 1u);
  EXPECT_EQ(count({"--min-height", "700"}), 0u);
}

TEST_F(Regions, StepsUpToTheLargestJoin) {
  give([](uint32_t x, uint32_t y) {
    if (y < 25 || y >= 55 || x < 40 || x >= 70) return floorDisparity;
    return static_cast<uint16_t>(y < 40 ? 20 * 16 : 22 * 16);  // 500 and 591 mm
  });
  EXPECT_EQ(count({"--min-area", "0", "--max-step", "90"}), 2u);
  EXPECT_EQ(count({"--min-area", "0", "--max-step", "91"}), 1u);
}

TEST_F(Regions, DefaultsFollowTheSizeOfACell) {
  giveTwoBlocks();
  const Json rule = found()["region_rule"];
  EXPECT_EQ(rule, (Json{{"min_height_mm", 75}, {"max_step_mm", 50}, {"min_area_m2", 0.075}, {"dip_mm", 0}}));
}

// A cell in the middle of a block is not seen.
TEST_F(Regions, HolesAreFilledUpToTheAreaAskedFor) {
  give([](uint32_t x, uint32_t y) {
    if (x >= 50 && x < 55 && y >= 35 && y < 40) return uint16_t{0};
    return x >= 40 && x < 70 && y >= 25 && y < 55 ? lowBlock : floorDisparity;
  });
  EXPECT_EQ(found({"--fill-holes", "0.0024"})["map"]["filled_cells"], 0);
  EXPECT_EQ(found()["regions"][0]["cells"], 35);
  EXPECT_EQ(map().at(18, 19), 0);
  const Json filled = found({"--fill-holes", "0.0025"});
  EXPECT_EQ(filled["map"]["filled_cells"], 1);
  EXPECT_EQ(filled["regions"][0]["cells"], 36);
  EXPECT_EQ(map().at(18, 19), 500);
  EXPECT_EQ(map().at(0, 0), 0) << "what lies beyond the picture is not guessed";
}

TEST_F(Regions, FilledCellsDoNotCountAsSeen) {
  give([](uint32_t x, uint32_t) { return x == 60 ? uint16_t{0} : floorDisparity; });
  const Json without = found()["map"], with = found({"--fill-holes", "1000"})["map"];
  EXPECT_EQ(without["seen_cells"], with["seen_cells"]);
  EXPECT_EQ(static_cast<int>(with["seen_cells"]) + static_cast<int>(with["filled_cells"]), 40 * 30);
}

TEST_F(Regions, ASingleRowCannotBeFilled) {
  giveTwoBlocks();
  writeFile(folder.path("c.toml"),
            camera("", "width_cells = 40\nheight_cells = 1\ncell_mm = 50\noffset_y_mm = 1000\n"));
  EXPECT_EQ(count(), 0u);
  const auto before = folder.names();
  const Outcome outcome = folder.run({"ground", "left.png", "right.png", "--camera", "c.toml", "-o", "result",
                                      "--disparity", "d.png", "--fill-holes", "1"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "nadir: holes can be filled in maps of 2 to 4095 cells a side, this one has 40 x 1\n");
  EXPECT_EQ(folder.names(), before);
}

TEST_F(Regions, LargeMapsAreRefusedWithTheCellThatFits) {
  giveTwoBlocks();
  writeFile(folder.path("c.toml"), camera("", "width_cells = 200\nheight_cells = 150\ncell_mm = 50\n"));
  const auto before = folder.names();
  const Outcome outcome =
      folder.run({"ground", "left.png", "right.png", "--camera", "c.toml", "-o", "result", "--disparity", "d.png"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            "nadir: the map of c.toml has 200 x 150 cells, and regions are found on at most 128 x 128: cell_mm = 79 "
            "with 127 x 95 cells covers the same ground (or leave the regions out with --no-regions)\n");
  EXPECT_EQ(folder.names(), before);
}

TEST_F(Regions, LargeMapsNeedNoRegions) {
  giveTwoBlocks();
  writeFile(folder.path("c.toml"), camera("", "width_cells = 200\nheight_cells = 150\ncell_mm = 50\n"));
  const Json summary = found({"--no-regions"});
  EXPECT_TRUE(summary["regions"].is_null());
  EXPECT_TRUE(summary["areas"].is_null());
  for (const std::string& name : folder.names()) EXPECT_NE(name.rfind("regions", 0), 0u) << name;
}

TEST_F(Regions, TableSaysTheSame) {
  giveTwoBlocks();
  const Outcome outcome = ground({"--disparity", "d.png"});
  EXPECT_NE(outcome.out.find("regions: 2\n"), std::string::npos) << outcome.out;
  EXPECT_NEAR(numberAfter(outcome.out, "region 1 "), 0.09, 1e-9);
  EXPECT_NE(outcome.out.find("m2, up to 500 mm high, median 500 mm, at x -50, y 0 mm"), std::string::npos);
}

// ---- pictures ----

using Samples = std::array<uint16_t, 3>;

Samples samplesAt(const Picture& picture, uint32_t x, uint32_t y) {
  const auto* first = picture.samples.data() + 3 * (size_t{y} * picture.width + x);
  return {first[0], first[1], first[2]};
}

bool isGrey(const Samples& c) { return c[0] == c[1] && c[1] == c[2]; }

TEST_F(Regions, PictureColoursWhatBelongsToThem) {
  giveTwoBlocks();
  ground({"--disparity", "d.png"});
  const Picture picture = readPng(folder.path("result/regions.picture.png"));
  ASSERT_EQ(picture.width, width);
  ASSERT_EQ(picture.height, height);
  int grey = 0;  // signs cover a part of the blocks
  for (uint32_t y = 25; y < 55; ++y)
    for (uint32_t x = 40; x < 70; ++x) grey += isGrey(samplesAt(picture, x, y));
  EXPECT_LT(grey, 200);
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < 40; ++x) ASSERT_TRUE(isGrey(samplesAt(picture, x, y))) << x << ", " << y;
}

TEST_F(Regions, MapPictureOutlinesThem) {
  giveTwoBlocks();
  ground({"--disparity", "d.png"});
  const Picture with = readPng(folder.path("result/regions.preview.png"));
  ground({"--disparity", "d.png", "--min-height", "700"});
  const Picture without = readPng(folder.path("result/regions.preview.png"));
  ASSERT_EQ(with.samples.size(), without.samples.size());
  EXPECT_GT(with.width, 640u);
  int outlined = 0;
  for (uint32_t y = 0; y < with.height; ++y)
    for (uint32_t x = 0; x < with.width; ++x)
      outlined += samplesAt(with, x, y) == Samples{255, 255, 255} && samplesAt(without, x, y) != Samples{255, 255, 255};
  EXPECT_GT(outlined, 4 * 6 * 16) << "16 pixels a cell, four sides of six cells";
}

// ---- rendered scenes ----

Json regionsOf(const Folder& folder, std::vector<std::string> synth) {
  synth.insert(synth.begin(), {"synth", "s"});
  EXPECT_EQ(folder.run(synth).status, 0);
  const Outcome outcome =
      folder.run({"ground", "s/left.png", "s/right.png", "--camera", "s/camera.toml", "-o", "result"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  return readJson(folder.path("result/summary.json"))["regions"];
}

class RenderedRegions : public testing::TestWithParam<const char*> {};  // the sensor's noise

TEST_P(RenderedRegions, NothingStandsOnTheEmptyFloor) {
  for (const char* height : {"1500", "4500"}) {
    const Folder folder;
    const Json regions = regionsOf(folder, {"--scene", "empty-floor", "--noise", GetParam(), "--height", height});
    EXPECT_TRUE(regions.empty()) << height << ": " << regions;
  }
}

TEST_P(RenderedRegions, ThePeopleAreFound) {
  const Folder folder;
  regionsOf(folder, {"--scene", "people", "--noise", GetParam()});
  const Outcome outcome = folder.run({"evaluate", "result", "s", "--json"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  const Json judged = parseJson(outcome.out);
  EXPECT_EQ(judged["objects"], 6);
  EXPECT_EQ(judged["found"], 6) << judged;
  EXPECT_LT(judged["position_largest_mm"], 100) << "two cells and a half";
  EXPECT_LT(judged["height_largest_mm"], 100);
}

TEST(Presets, PartPeopleWhoStand500MillimetresApart) {
  const Folder folder;
  ASSERT_EQ(folder.run({"synth", "s", "--scene", "couples", "--noise", "20"}).status, 0);
  ASSERT_EQ(folder
                .run({"ground", "s/left.png", "s/right.png", "--camera", "s/camera.toml", "-o", "result", "--for",
                      "people", "--write", "regions"})
                .status,
            0);
  const Json judged = parseJson(folder.run({"evaluate", "result", "s", "--json"}).out);
  EXPECT_EQ(judged["found"], 6) << judged;
  EXPECT_EQ(judged["false_regions"], 0) << judged;
  EXPECT_LT(judged["area_mean_absolute"], 0.15) << judged;
}

INSTANTIATE_TEST_SUITE_P(Noise, RenderedRegions, testing::Values("0", "20"));

}  // namespace
}  // namespace nadir::test
