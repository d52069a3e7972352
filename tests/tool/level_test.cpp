// Tests of nadir level: the mount of rendered floors, the camera file that it goes into, and pictures without a floor.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

const char* const optics =
    "# my camera\n"
    "baseline_mm = 260\n"
    "focal_px = 125\n"
    "principal_x_px = 79.5\n"
    "principal_y_px = 59.5\n"
    "width_px = 160\n"
    "height_px = 120\n";

const char* const map =
    "\n[map] # of the hall\n"
    "width_cells = 64\n"
    "height_cells = 64\n"
    "cell_mm = 100\n";

class Level : public testing::Test {
 protected:
  void render(const std::string& name, const std::string& scene = "empty-floor") {
    const Outcome o = folder.run({"synth", name, "--scene", scene, "--size", "160x120", "--baseline", "260", "--noise",
                                  "20", "--height", "2500", "--tilt", "-35"});
    ASSERT_EQ(o.status, 0) << o.err;
  }

  Outcome level(const std::string& camera, std::vector<std::string> options = {}, const std::string& pair = "floor") {
    options.insert(options.begin(), {"level", pair + "/left.png", pair + "/right.png", "--camera", camera});
    return folder.run(options);
  }

  Folder folder;
};

TEST_F(Level, AMountIsFoundWithoutOne) {
  render("floor");
  writeFile(folder.path("c.toml"), std::string(optics) + map);
  const Outcome o = level("c.toml");
  ASSERT_EQ(o.status, 0) << o.err;
  EXPECT_NEAR(numberAfter(o.out, "height_mm"), 2500, 7.5);
  EXPECT_NEAR(numberAfter(o.out, "tilt_deg"), -35, 0.1);
  EXPECT_NEAR(numberAfter(o.out, "pan_deg"), 0, 0.1);
  EXPECT_EQ(o.out.find("wrote"), std::string::npos);
  EXPECT_EQ(readFile(folder.path("c.toml")), std::string(optics) + map);
  EXPECT_EQ(o.err, "");
}

TEST_F(Level, TheFilesMountIsNotUsed) {
  render("floor");
  writeFile(folder.path("c.toml"), std::string(optics) + "height_mm = 9000\ntilt_deg = 60\npan_deg = -30\n" + map);
  const Outcome o = level("c.toml", {"--json"});
  ASSERT_EQ(o.status, 0) << o.err;
  EXPECT_NEAR(numberAfter(o.out, "\"height_mm\":"), 2500, 7.5);
  EXPECT_NEAR(numberAfter(o.out, "\"tilt_deg\":"), -35, 0.1);
  EXPECT_EQ(numberAfter(o.out, "\"pairs\":"), 1);
  EXPECT_EQ(o.out.front(), '{');
}

TEST_F(Level, OnlyTheMountIsWritten) {
  render("floor");
  writeFile(folder.path("c.toml"),
            std::string(optics) + "height_mm=3000# with a rope\ntilt_deg = -30.5   # by eye\r\npan_deg = 1\n" + map);
  const Outcome o = level("c.toml", {"--write", "-o", "floor.png"});
  ASSERT_EQ(o.status, 0) << o.err;
  EXPECT_NE(o.out.find("into c.toml"), std::string::npos) << o.out;
  const std::string text = readFile(folder.path("c.toml"));
  const double height = numberAfter(text, "height_mm="), tilt = numberAfter(text, "tilt_deg =");
  EXPECT_NEAR(height, 2500, 7.5);
  EXPECT_NEAR(tilt, -35, 0.1);
  const size_t begin = text.find("height_mm="), end = text.find(map);
  EXPECT_EQ(text.substr(0, begin), optics);
  EXPECT_EQ(text.substr(end), map);
  EXPECT_NE(text.find("# with a rope\n"), std::string::npos) << text;
  EXPECT_EQ(text.find("# by eye\r\n"), text.find("tilt_deg") + std::string("tilt_deg = -30.5   ").size()) << text;
  const Outcome again = level("c.toml");
  EXPECT_NEAR(numberAfter(again.out, "height_mm"), height, 0.06);
}

TEST_F(Level, WhatAnImportedFileAsksForIsFilledIn) {
  render("floor");
  writeFile(folder.path("c.toml"),
            std::string(optics) + "# height_mm =   # TO FILL IN: of the camera\n# tilt_deg = # TO FILL IN\n" + map);
  ASSERT_EQ(level("c.toml", {"--write"}).status, 0);
  const std::string text = readFile(folder.path("c.toml"));
  EXPECT_EQ(text.find("TO FILL IN"), std::string::npos) << text;
  EXPECT_LT(text.find("\npan_deg = "), text.find("\n\n[map] # of the hall\n")) << text;
  EXPECT_EQ(folder.run({"ground", "floor/left.png", "floor/right.png", "--camera", "c.toml", "-o", "out"}).status, 0);
}

TEST_F(Level, AFileWithoutAMountGetsOneAboveItsFirstTable) {
  render("floor");
  writeFile(folder.path("c.toml"), std::string(optics) + map);
  ASSERT_EQ(level("c.toml", {"--write"}).status, 0);
  const std::string text = readFile(folder.path("c.toml"));
  EXPECT_EQ(text.find(optics), 0u);
  EXPECT_EQ(text.find("height_mm = "), std::string(optics).size());
  EXPECT_EQ(text.substr(text.find("\n[map]")), map);
}

TEST_F(Level, TheMapIsLaidOverWhatIsSeen) {
  render("floor");
  writeFile(folder.path("c.toml"), std::string(optics) + map);
  const Outcome o = level("c.toml", {"--write", "--lay-map"});
  ASSERT_EQ(o.status, 0) << o.err;
  EXPECT_NE(o.out.find("and the map into c.toml"), std::string::npos) << o.out;
  const std::string text = readFile(folder.path("c.toml"));
  EXPECT_NE(text.find("\n[map] # of the hall\noffset_"), std::string::npos) << text;
  EXPECT_NE(numberAfter(text, "cell_mm ="), 100);
  ASSERT_EQ(folder.run({"ground", "floor/left.png", "floor/right.png", "--camera", "c.toml", "-o", "out"}).status, 0);
  const Picture heights = readPng(folder.path("out/elevation.png"));
  const auto unseen = std::count(heights.samples.begin(), heights.samples.end(), 0);
  EXPECT_LT(static_cast<size_t>(unseen) * 2, heights.samples.size()) << "more than half of such a map is seen";
}

TEST_F(Level, AMapIsOnlyLaidWhereItIsWritten) {
  const Outcome o = level("c.toml", {"--lay-map"});
  EXPECT_EQ(o.status, 2);
  EXPECT_NE(o.err.find("--write"), std::string::npos) << o.err;
}

TEST_F(Level, ThePictureShowsWhatWasTaken) {
  render("people", "people");
  writeFile(folder.path("c.toml"), std::string(optics) + map);
  const Outcome o = level("c.toml", {"-o", "taken.png"}, "people");
  ASSERT_EQ(o.status, 0) << o.err;
  const Picture taken = readPng(folder.path("taken.png"));
  ASSERT_EQ(taken.width, 160u);
  ASSERT_EQ(taken.channels, 3u);
  size_t green = 0, red = 0;
  for (size_t i = 0; i < taken.samples.size(); i += 3) {
    green += taken.samples[i + 1] > taken.samples[i] + 20;
    red += taken.samples[i] > taken.samples[i + 1] + 20;
  }
  EXPECT_GT(green, 160u * 120 / 4);
  EXPECT_GT(red, 160u * 120 / 20);
}

TEST_F(Level, APairWithoutFloorIsLeftOutAloud) {
  render("floor");
  writePng(folder.path("grey.png"), picture(160, 120, 16, std::vector<uint16_t>(160 * 120, 900)));
  Picture spotted = picture(160, 120, 16, std::vector<uint16_t>(160 * 120, 900));
  for (size_t i = 0; i < spotted.samples.size(); i += 97) spotted.samples[i] = 2000;
  writePng(folder.path("spotted.png"), spotted);
  writeFile(folder.path("c.toml"), std::string(optics) + map);
  const Outcome o =
      folder.run({"level", "floor/left.png", "floor/right.png", "floor/left.png", "spotted.png", "--camera", "c.toml"});
  ASSERT_EQ(o.status, 0) << o.err;
  EXPECT_NE(o.err.find("floor/left.png and spotted.png show no floor"), std::string::npos) << o.err;
  EXPECT_EQ(numberAfter(o.out, "pairs with a floor"), 1);
}

TEST_F(Level, WithoutAFloorNothingIsWritten) {
  render("floor");
  Picture spotted = picture(160, 120, 16, std::vector<uint16_t>(160 * 120, 900));
  for (size_t i = 0; i < spotted.samples.size(); i += 97) spotted.samples[i] = 2000;
  writePng(folder.path("r.png"), spotted);
  const std::string camera = std::string(optics) + map;
  writeFile(folder.path("c.toml"), camera);
  const Outcome o =
      folder.run({"level", "floor/left.png", "r.png", "--camera", "c.toml", "--write", "-o", "taken.png"});
  EXPECT_EQ(o.status, 1);
  EXPECT_NE(o.err.find("no floor is seen in floor/left.png"), std::string::npos) << o.err;
  EXPECT_EQ(readFile(folder.path("c.toml")), camera);
  EXPECT_EQ(folder.linesOf("taken.png"), 0);
}

TEST_F(Level, BadInputIsNamed) {
  writeFile(folder.path("c.toml"), std::string(optics) + map);
  const Outcome odd = folder.run({"level", "a.png", "--camera", "c.toml"});
  EXPECT_EQ(odd.status, 2);
  EXPECT_NE(odd.err.find("pairs"), std::string::npos) << odd.err;
  const Outcome missing = folder.run({"level", "a.png", "b.png", "--camera", "c.toml"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_NE(missing.err.find("a.png"), std::string::npos) << missing.err;
  writeFile(folder.path("c.toml"), replaced(std::string(optics) + map, "focal_px = 125\n", ""));
  const Outcome focal = folder.run({"level", "a.png", "b.png", "--camera", "c.toml"});
  EXPECT_EQ(focal.status, 1);
  EXPECT_NE(focal.err.find("c.toml:"), std::string::npos) << focal.err;
  EXPECT_NE(focal.err.find("focal_px"), std::string::npos) << focal.err;
}

// A picture that leads to the camera file would be replaced while it is an input.
TEST_F(Level, InputsAreNotReplaced) {
  render("floor");
  const std::string camera = std::string(optics) + map;
  writeFile(folder.path("c.toml"), camera);
  std::filesystem::create_symlink("c.toml", folder.path("look.png"));
  EXPECT_EQ(level("c.toml", {"-o", "look.png"}).status, 1);
  EXPECT_EQ(level("c.toml", {"--write", "-o", "floor/left.png"}).status, 1);
  EXPECT_EQ(readFile(folder.path("c.toml")), camera);
}

double levelledHeight(const Folder& folder, const std::vector<std::string>& arguments, double& tilt) {
  const Outcome o = folder.run(arguments);
  EXPECT_EQ(o.status, 0) << o.err;
  tilt = numberAfter(o.out, "\"tilt_deg\":");
  return numberAfter(o.out, "\"height_mm\":");
}

TEST_F(Level, ARealFloorIsTheSameRectifiedHereAndByOthers) {
  const char* const data = std::getenv("NADIR_DATA");
  if (!data) GTEST_SKIP() << "NADIR_DATA names no folder of real pairs";
  const std::string raw = std::string(data) + "/motorcycle-floor-raw/", own = std::string(data) + "/motorcycle-floor/";
  ASSERT_EQ(folder
                .run({"rectify", raw + "left_raw.png", raw + "right_raw.png", "--calibration", raw + "intrinsics.yml",
                      raw + "extrinsics.yml", "--unit-mm", "1", "-o", "out"})
                .status,
            0);
  double tiltHere, tiltThere;
  const double here = levelledHeight(
      folder, {"level", "out/left.png", "out/right.png", "--camera", "out/camera.toml", "--json"}, tiltHere);
  const double there = levelledHeight(
      folder, {"level", own + "left.png", own + "right.png", "--camera", "out/camera.toml", "--json"}, tiltThere);
  EXPECT_NEAR(here, there, 2);
  EXPECT_NEAR(tiltHere, tiltThere, 0.05);
}

}  // namespace
}  // namespace nadir::test
