// nadir ground on pairs made by hand: a camera that looks straight down, so that every height is a short formula.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <set>

#include "tests/tool/straight_down.hpp"

namespace nadir::test {
namespace {

using namespace straight_down;

class Ground : public StraightDown {};

TEST_F(Ground, PlaneSeenStraightDown) {
  give([](uint32_t, uint32_t) { return uint16_t{20 * 16}; });  // z = 100 * 200 / 20 = 1000 mm
  ground({"--disparity", "d.png"});
  const Picture heights = map();
  ASSERT_EQ(heights.width, 40u);
  ASSERT_EQ(heights.height, 30u);
  // The map's corner lies 20 cells of 50 mm from the axis, on both axes. The points reach from -595 to 595 mm in x and
  // from -395 to 395 mm in y: columns 8 to 31, rows 12 to 27.
  for (uint32_t y = 0; y < 30; ++y)
    for (uint32_t x = 0; x < 40; ++x)
      EXPECT_EQ(heights.at(x, y), x >= 8 && x <= 31 && y >= 12 && y <= 27 ? 500 : 0) << x << ", " << y;
  EXPECT_EQ(summary("seen_cells"), 24 * 16);
  EXPECT_EQ(summary("points"), width * height);
  EXPECT_EQ(summary("points_inside"), width * height);
  EXPECT_EQ(summary("median_mm"), 500);
  EXPECT_EQ(summary("left_mm"), -1000);
  EXPECT_EQ(summary("top_mm"), -1000);
}

TEST_F(Ground, MatchedPlane) {
  shiftRight(20);
  ground();
  const Picture heights = map();
  // A sixteenth of a pixel is 3 mm here.
  for (uint32_t y = 14; y < 26; ++y)
    for (uint32_t x = 18; x < 30; ++x) EXPECT_NEAR(heights.at(x, y), 500, 7) << x << ", " << y;
  EXPECT_GT(summary("share"), 0.7);
}

TEST_F(Ground, WhatIsCheckedMayBeSmaller) {
  shiftRight(10);
  const auto least = [&](const char* check) {
    ground({"--check", check});
    return summary("min_area_m2");
  };
  EXPECT_DOUBLE_EQ(least("flip"), least("none") * 2 / 3);
}

TEST_F(Ground, ColumnShiftIsAddedToTheDisparity) {
  give([](uint32_t, uint32_t) { return uint16_t{20 * 16}; });
  const std::pair<const char*, uint16_t> expected[] = {{"5", 700}, {"-2.5", 357}, {"-6", 71}};  // 1500 - 20000 / 25 ...
  for (const auto& [shift, mm] : expected) {
    writeFile(folder.path("c.toml"), camera(std::string("column_shift_px = ") + shift + "\n"));
    ground({"--disparity", "d.png"});
    EXPECT_EQ(map().at(20, 20), mm) << shift;
  }
  writeFile(folder.path("c.toml"), camera("column_shift_px = -20\n"));
  ground({"--disparity", "d.png"});
  EXPECT_EQ(summary("points"), 0) << "everything at infinity";
}

TEST_F(Ground, TheRightViewHasItsOwnPrincipalColumn) {
  give([](uint32_t x, uint32_t) { return static_cast<uint16_t>(x == 60 ? 160 : 0); });  // 10 + 10 pixels: 1000 mm
  writeFile(folder.path("c.toml"), camera("column_shift_px = 10\n"));
  ground({"--disparity", "d.png"});
  EXPECT_EQ(map().at(20, 20), 500) << "(60 - 59.5) / 100 * 1000 = 5 mm";
  ground({"--disparity", "d.png", "--grid", "right"});
  EXPECT_EQ(map().at(20, 20), 0);
  EXPECT_EQ(map().at(18, 20), 500) << "(60 - 69.5) / 100 * 1000 = -95 mm";
}

TEST_F(Ground, SeenCellsHoldAtLeastOneMillimetre) {
  give([](uint32_t x, uint32_t) { return static_cast<uint16_t>(x < 60 ? 213 : 0); });  // 2.3 mm below the ground
  ground({"--disparity", "d.png"});
  EXPECT_EQ(summary("lowest_mm"), 1);
  EXPECT_EQ(summary("highest_mm"), 1);
  EXPECT_EQ(map().text["nadir:no-value"], "0");
  EXPECT_EQ(map().text["nadir:units"], "mm");
  EXPECT_EQ(map().text["nadir:cell-mm"], "50");
}

TEST_F(Ground, PercentileOfACellsPoints) {
  // Ten points in one cell of 1 m, with heights of 1500 - 20000 / d: 100, 200 ... 1000.
  writeFile(folder.path("c.toml"),
            camera("", "width_cells = 2\nheight_cells = 2\ncell_mm = 1000\noffset_x_mm = 500\noffset_y_mm = 500\n"));
  Picture disparities = drawn([](uint32_t, uint32_t) { return uint16_t{0}; });
  disparities.text["nadir:scale"] = "1000";
  for (uint32_t i = 0; i < 10; ++i)
    disparities.samples[40 * width + 55 + i] = static_cast<uint16_t>(std::lround(20e6 / (1400 - 100.0 * i)));
  shiftRight(0);
  writePng(folder.path("d.png"), disparities);
  const std::pair<const char*, uint16_t> expected[] = {{"1", 100},  {"10", 100},  {"11", 200},  {"50", 500},
                                                       {"90", 900}, {"91", 1000}, {"100", 1000}};
  for (const auto& [percentile, mm] : expected) {
    ground({"--disparity", "d.png", "--percentile", percentile});
    EXPECT_EQ(map().at(0, 0), mm) << percentile;
  }
  ground({"--disparity", "d.png"});
  EXPECT_EQ(map().at(0, 0), 900) << "90 by default";
  ground({"--disparity", "d.png", "--min-points", "10"});
  EXPECT_EQ(map().at(0, 0), 900);
  ground({"--disparity", "d.png", "--min-points", "11"});
  EXPECT_EQ(map().at(0, 0), 0);
}

TEST_F(Ground, OffsetMovesTheMap) {
  give([](uint32_t x, uint32_t y) { return static_cast<uint16_t>(x == 60 && y == 40 ? 320 : 0); });  // x = y = 5 mm
  writeFile(folder.path("c.toml"), camera("",
                                          "width_cells = 40\nheight_cells = 30\ncell_mm = 50\noffset_x_mm = 100\n"
                                          "offset_y_mm = -150\n"));
  ground({"--disparity", "d.png"});
  EXPECT_EQ(summary("left_mm"), -900);
  EXPECT_EQ(summary("top_mm"), -1150);
  EXPECT_EQ(map().at(18, 23), 500);
}

TEST_F(Ground, PointsAsPly) {
  give([](uint32_t x, uint32_t y) { return static_cast<uint16_t>(y == 10 && x > 1 && x < 5 ? 320 : 0); });
  ground({"--disparity", "d.png", "--write", "points"});
  const Bytes ply = readFile(folder.path("result/points.ply"));
  EXPECT_EQ(ply.rfind("ply\nformat binary_little_endian 1.0\n", 0), 0u);
  EXPECT_EQ(numberAfter(ply, "element vertex"), 3);
  const size_t begin = ply.find("end_header\n") + 11;
  ASSERT_EQ(ply.size(), begin + 3 * (4 * 4 + 3)) << "x, y, z, height, three colours";
  const double x = (2 - principalX) / focal * 1000, y = (10 - principalY) / focal * 1000;
  const double expected[] = {x, y, baseline * focal / 20, mount - baseline * focal / 20};
  for (size_t i = 0; i < 4; ++i) EXPECT_NEAR(floatAt(ply, begin + 4 * i), expected[i], 1e-3) << i;
  EXPECT_EQ(static_cast<uint8_t>(ply[begin + 16]), noise(2, 10) / 16);
}

TEST_F(Ground, GroundPlaneTellsTheMount) {
  // Ground 1600 mm below, sloping down to the right: the plane nx x + nz z = 1600, with nx = sin 4 degrees.
  const double nx = std::sin(4 * M_PI / 180), nz = std::cos(4 * M_PI / 180);
  give([&](uint32_t x, uint32_t y) {
    if (y > 60) return uint16_t{25 * 16};  // something on the ground
    const double w = (nx * (x - principalX) / focal + nz) / 1600;
    return static_cast<uint16_t>(std::lround(w * focal * baseline * 16));
  });
  const Outcome outcome = ground({"--disparity", "d.png"});
  const std::string text = readFile(folder.path("result/summary.json"));
  const std::string plane = text.substr(text.find("\"ground_plane\""));
  EXPECT_NEAR(numberAfter(plane, "\"height_mm\""), 1600, 2);
  EXPECT_NEAR(numberAfter(plane, "\"tilt_deg\""), 0, 0.1);
  EXPECT_NEAR(numberAfter(plane, "\"pan_deg\""), 4, 0.1);
  EXPECT_LT(numberAfter(plane, "\"rms_px\""), 0.03);
  EXPECT_NEAR(numberAfter(plane, "\"share\""), 61.0 / 80, 0.02);
  EXPECT_NEAR(numberAfter(outcome.out, "\nheight"), 1600, 2);
}

TEST_F(Ground, NoGroundPlaneIsNull) {
  give([](uint32_t, uint32_t) { return uint16_t{40 * 16}; });  // a table at a third of the height
  const Outcome outcome = ground({"--disparity", "d.png"});
  EXPECT_NE(readFile(folder.path("result/summary.json")).find("\"ground_plane\": null"), std::string::npos);
  EXPECT_NE(outcome.out.find("ground plane: none found"), std::string::npos);
}

TEST_F(Ground, NothingMatchedIsAnEmptyMap) {
  give([](uint32_t, uint32_t) { return uint16_t{0}; });
  ground({"--disparity", "d.png"});
  EXPECT_EQ(summary("points"), 0);
  EXPECT_EQ(summary("seen_cells"), 0);
  EXPECT_NE(readFile(folder.path("result/summary.json")).find("\"median_mm\": null"), std::string::npos);
}

TEST_F(Ground, WritesAllItsFiles) {
  shiftRight(20);
  ground();
  for (const char* name : {"disparity.png", "elevation.png", "elevation.preview.png", "summary.json"})
    EXPECT_FALSE(readFile(folder.path(std::string("result/") + name)).empty());
  const Picture preview = readPng(folder.path("result/elevation.preview.png"));
  EXPECT_EQ(preview.channels, 3u);
  EXPECT_GT(preview.width, 40u * 9) << "9 pixels a cell, and the axes";
}

// The files of a result, in the order of their names.
std::string filesOf(const Folder& folder, const std::string& result) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path(result)))
    names.insert(entry.path().filename().string());
  std::string all;
  for (const std::string& name : names) all += name + " ";
  return all;
}

TEST_F(Ground, WritesWhatIsNamed) {
  shiftRight(20);
  const std::string usual =
      "disparity.png elevation.png elevation.preview.png regions.picture.png regions.png regions.preview.png ";
  const auto written = [&](std::vector<std::string> more) {
    more.insert(more.begin(), {"ground", "left.png", "right.png", "--camera", "c.toml", "-o", "some"});
    std::filesystem::remove_all(folder.path("some"));
    EXPECT_EQ(folder.run(more).status, 0);
    return filesOf(folder, "some");
  };
  EXPECT_EQ(written({}), usual + "summary.json ");
  const Bytes map = readFile(folder.path("some/elevation.png"));
  EXPECT_EQ(written({"--write", "all"}),
            "disparity.npy disparity.pfm disparity.png elevation.npy elevation.pfm elevation.png elevation.preview.png "
            "points.ply regions.picture.png regions.png regions.preview.png summary.json ");
  EXPECT_EQ(written({"--write", "none"}), "summary.json ");
  EXPECT_EQ(written({"--write", "map,points"}), "elevation.png points.ply summary.json ");
  EXPECT_EQ(readFile(folder.path("some/elevation.png")), map);
  EXPECT_EQ(written({"--write", "regions"}), "regions.png summary.json ");
  EXPECT_EQ(written({"--write", "disparity"}), "disparity.png summary.json ");
  EXPECT_EQ(written({"--write", "npy"}), "disparity.npy elevation.npy summary.json ");
  EXPECT_EQ(written({"--write", "preview", "--no-regions"}), "elevation.preview.png summary.json ");
  EXPECT_EQ(written({"--write", "all", "--no-regions"}),
            "disparity.npy disparity.pfm disparity.png elevation.npy elevation.pfm elevation.png elevation.preview.png "
            "points.ply summary.json ");
}

TEST_F(Ground, RefusesToWriteWhatItDoesNotHave) {
  shiftRight(20);
  give([](uint32_t, uint32_t) { return uint16_t{0}; });
  const auto refuse = [&](const std::string& words, int status, const std::string& sentence,
                          std::vector<std::string> more = {}) {
    more.insert(more.begin(),
                {"ground", "left.png", "right.png", "--camera", "c.toml", "-o", "some", "--write", words});
    const Outcome outcome = folder.run(more);
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.err, "nadir: " + sentence + "\n");
    EXPECT_FALSE(std::filesystem::exists(folder.path("some")));
  };
  const std::string words = "map, average, regions, preview, disparity, points, npy, pfm, all, none";
  refuse("map,ply", 2, "--write: \"ply\" is none of " + words + "; see nadir ground --help");
  refuse("map,,points", 2, "--write: \"\" is none of " + words + "; see nadir ground --help");
  refuse("map,all", 2, "--write: \"all\" stands alone; see nadir ground --help");
  refuse("average", 1, "--write average: a pair has only map, regions, preview, disparity, points, npy, pfm");
  refuse("regions", 1, "--write regions: --no-regions leaves them out", {"--no-regions"});
  refuse("disparity", 1, "--write disparity: with --disparity nothing is matched", {"--disparity", "d.png"});
}

TEST_F(Ground, DisparitiesOfTheOtherPictureAreAWarning) {
  shiftRight(20);
  Picture given = picture(width, height, 16, std::vector<uint16_t>(width * height, 20 * 16));
  given.text["nadir:grid"] = "right";
  writePng(folder.path("d.png"), given);
  const auto run = [&](std::vector<std::string> more) {
    more.insert(more.begin(),
                {"ground", "left.png", "right.png", "--camera", "c.toml", "-o", "result", "--disparity", "d.png"});
    return folder.run(more);
  };
  const auto isTold = [&] {
    return readFile(folder.path("result/summary.json")).find("\"grid-contradicts\"") != std::string::npos;
  };
  const Outcome outcome = run({"--strict"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_NE(outcome.err.find("nadir: d.png says of itself (nadir:grid) that its pixels are those of the right picture, "
                             "but they are taken for the left one's (--grid)\n"),
            std::string::npos)
      << outcome.err;
  EXPECT_TRUE(isTold());
  run({"--grid", "right"});
  EXPECT_FALSE(isTold());
}

TEST_F(Ground, RefusesWithoutLeavingAnything) {
  shiftRight(20);
  writePng(folder.path("small.png"), picture(60, 60, 16, std::vector<uint16_t>(3600, 7)));
  writePng(folder.path("mask.png"), picture(60, 60, 8, std::vector<uint16_t>(3600)));
  const auto before = folder.names();
  const auto refuse = [&](std::vector<std::string> arguments, const std::string& sentence, uint64_t limit = 0) {
    arguments.insert(arguments.begin(), "ground");
    arguments.insert(arguments.end(), {"--camera", "c.toml", "-o", "result"});
    const Outcome outcome = folder.run(arguments, limit);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find(sentence), std::string::npos) << outcome.err;
    EXPECT_EQ(folder.names(), before);
  };
  refuse({"left.png", "small.png"}, "the pictures differ in size");
  refuse({"small.png", "small.png"}, "the pictures are 60 x 60 pixels, but the camera of c.toml takes pictures of 120");
  refuse({"left.png", "right.png", "--disparity", "small.png"}, "the disparity picture small.png is 60 x 60 pixels");
  refuse({"left.png", "right.png", "--mask", "mask.png"}, "the mask mask.png is 60 x 60 pixels, the disparity picture");
  refuse({"left.png", "right.png", "--write", "all"}, "cannot write result/points.ply", 20000);
}

// ---- scaled down ----

class GroundScaledDown : public StraightDown {
 protected:
  // A pair with a mask and an area, and the same of half the size.
  GroundScaledDown() {
    std::filesystem::create_directory(folder.path("half"));
    shiftRight(20);
    Picture mask = picture(width, height, 8, std::vector<uint16_t>(width * height));
    for (uint32_t y = 0; y < height; ++y) mask.samples[y * width + 81] = 255;
    Picture half = picture(width / 2, height / 2, 8, std::vector<uint16_t>(width * height / 4));
    for (uint32_t y = 0; y < half.height; ++y) half.samples[y * half.width + 40] = 255;
    writePng(folder.path("mask.png"), mask);
    writePng(folder.path("half/mask.png"), half);
    for (const std::string name : {"left.png", "right.png"})
      writePng(folder.path("half/" + name), halved(readPng(folder.path(name))));
    writeFile(folder.path("areas.toml"), area("[21, 10], [100, 10], [100, 71], [21, 71]"));
    writeFile(folder.path("half/areas.toml"), area("[10, 5], [50, 5], [50, 35], [10, 35]"));
    writeFile(folder.path("half/c.toml"),
              "baseline_mm = 200\nfocal_px = 50\nprincipal_x_px = 29.5\nprincipal_y_px = 19.5\nwidth_px = 60\n"
              "height_px = 40\nheight_mm = 1500\ntilt_deg = 0\ncolumn_shift_px = 0.5\n"
              "[map]\nwidth_cells = 40\nheight_cells = 30\ncell_mm = 50\n");
    writeFile(folder.path("c.toml"), camera("column_shift_px = 1\n"));
  }

  static std::string area(const std::string& corners) { return "[[area]]\nname = \"a\"\npixels = [" + corners + "]\n"; }
};

TEST_F(GroundScaledDown, IsTheGroundOfHalvedPicturesAndTheirCamera) {
  ASSERT_EQ(folder
                .run({"ground", "half/left.png", "half/right.png", "--camera", "half/c.toml", "--mask", "half/mask.png",
                      "--areas", "half/areas.toml", "-o", "expected"})
                .status,
            0);
  for (const std::vector<std::string>& option : {std::vector<std::string>{"--scale-down", "2"}, {"--half"}}) {
    std::vector<std::string> options = {"--mask", "mask.png", "--areas", "areas.toml"};
    options.insert(options.end(), option.begin(), option.end());
    const Outcome outcome = ground(options);
    EXPECT_NE(outcome.err.find("nadir: both pictures are scaled down to 60 x 40 pixels (--scale-down 2)\n"),
              std::string::npos)
        << outcome.err;
    for (const char* file : {"elevation.png", "regions.png", "disparity.png", "regions.picture.png", "summary.json"})
      EXPECT_EQ(readFile(folder.path(std::string("result/") + file)),
                readFile(folder.path(std::string("expected/") + file)))
          << file;
  }
}

// The tallest things are 20000 / 300 pixels from the left picture to the right.
TEST_F(GroundScaledDown, AutomaticallyUntilTheRangeFits) {
  std::vector<uint16_t> samples;
  for (uint32_t i = 0; i < 320 * 80; ++i) samples.push_back(noise(i % 320, i / 320));
  for (const char* name : {"left.png", "right.png"}) writePng(folder.path(name), picture(320, 80, 16, samples));
  Bytes wide = camera();
  writeFile(folder.path("c.toml"), wide.replace(wide.find("width_px = 120"), 14, "width_px = 320"));
  const auto isScaled = [this](const std::string& range, const std::string& tallest) {
    const Outcome outcome = ground({"--scale-down", "auto", "--range", range, "--tallest", tallest});
    return outcome.err.find("scaled down to 160 x 40 pixels (--scale-down 2)") != std::string::npos;
  };
  EXPECT_TRUE(isScaled("61", "1200"));
  EXPECT_FALSE(isScaled("61", "1100"));
  EXPECT_FALSE(isScaled("122", "1200"));
  EXPECT_FALSE(isScaled("auto", "1200"));
}

TEST_F(GroundScaledDown, NotWithDisparitiesThatAreGiven) {
  const Outcome outcome = folder.run(
      {"ground", "left.png", "right.png", "--camera", "c.toml", "-o", "result", "--disparity", "left.png", "--half"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "nadir: --scale-down is for pairs that are matched, not for --disparity\n");
}

}  // namespace
}  // namespace nadir::test
