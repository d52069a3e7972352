// nadir evaluate on two folders: regions against objects, on maps drawn by hand.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/tool/json.hpp"

namespace nadir::test {
namespace {

constexpr uint32_t side = 12;

// A map as text, row by row: '.' is nothing, a digit a thing's number.
std::vector<uint16_t> cells(const std::string& text) {
  std::vector<uint16_t> cells;
  for (const char c : text) cells.push_back(static_cast<uint16_t>(c == '.' ? 0 : c - '0'));
  cells.resize(side * side);
  return cells;
}

Json thing(const char* number, int value, double x, double y, double highest) {
  return {{number, value}, {"kind", "box"}, {"centre_mm", {{"x", x}, {"y", y}}}, {"highest_mm", highest}};
}

class EvaluateRegions : public testing::Test {
 protected:
  EvaluateRegions() {
    std::filesystem::create_directory(folder.path("result"));
    std::filesystem::create_directory(folder.path("scene"));
    truth("", {});
    found("", {});
    heights(std::vector<uint16_t>(side * side, 100));
  }

  void writeMap(const std::string& name, const std::vector<uint16_t>& samples) {
    Picture map = picture(side, side, 16, samples);
    map.text = {{"nadir:cell-mm", "40"}, {"nadir:left-mm", "0"}, {"nadir:top-mm", topMm}};
    writePng(folder.path(name), map);
  }

  void heights(const std::vector<uint16_t>& samples) { writeMap("scene/elevation_gt.png", samples); }

  void truth(const std::string& map, const std::vector<int>& numbers) {
    Json regions = Json::array();
    for (const int n : numbers) regions.push_back(thing("region", n, 100 * n, 50, 300));
    writeMap("scene/regions_gt.png", cells(map));
    writeFile(folder.path("scene/scene.json"), Json{{"regions", regions}}.dump());
  }

  // Region n is 30 mm right of and 40 mm below object n, and 5 mm too low.
  void found(const std::string& map, const std::vector<int>& numbers) {
    Json regions = Json::array();
    for (const int n : numbers) regions.push_back(thing("label", n, 100 * n + 30, 90, 295));
    writeMap("result/regions.png", cells(map));
    writeFile(folder.path("result/summary.json"), Json{{"regions", regions}}.dump());
  }

  Json judged() {
    const Outcome outcome = folder.run({"evaluate", "result", "scene", "--json"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return parseJson(outcome.out);
  }

  // The line of object 1, as "verdict, labels".
  std::string verdict() {
    const Json first = judged()["verdicts"][0];
    return first["verdict"].get<std::string>() + first["labels"].dump();
  }

  Folder folder;
  std::string topMm = "0";
};

TEST_F(EvaluateRegions, FoundWithItsErrors) {
  truth("..1111......22", {1, 2});
  found("..1111......22", {1, 2});
  const Json json = judged();
  EXPECT_EQ(json["objects"], 2);
  EXPECT_EQ(json["found"], 2);
  EXPECT_EQ(json["false_regions"], 0);
  EXPECT_EQ(json["position_mean_mm"], 50) << "30 and 40 mm";
  EXPECT_EQ(json["height_mean_mm"], -5);
  EXPECT_EQ(json["height_mean_absolute_mm"], 5);
  EXPECT_EQ(json["height_largest_mm"], 5);
}

TEST_F(EvaluateRegions, AreasOffByTheirShareOfTheObject) {
  truth("..1111......22", {1, 2});
  found("...111.....222", {1, 2});
  const Json json = judged();
  EXPECT_EQ(json["area_mean"], 0.125) << "a quarter too small and a half too large";
  EXPECT_EQ(json["area_mean_absolute"], 0.375);
  EXPECT_EQ(json["verdicts"][0]["area_error"], -0.25);
}

TEST_F(EvaluateRegions, WhatThePictureShowsInPartIsCutOff) {
  truth("1111....2222", {1, 2});
  found("............", {});
  std::vector<uint16_t> shown(side * side, 100);
  shown[0] = 0;
  heights(shown);
  const Json json = judged();
  EXPECT_EQ(json["missed"], 2);
  EXPECT_EQ(json["missed_cut_off"], 1) << "the first cell lies outside the picture";
  EXPECT_EQ(json["verdicts"][0]["cut_off"], true);
  EXPECT_EQ(json["verdicts"][1]["cut_off"], false);
}

TEST_F(EvaluateRegions, AreasOfCutOffThingsSayNothing) {
  truth("1111....2222", {1, 2});
  found("11......2222", {1, 2});
  std::vector<uint16_t> shown(side * side, 100);
  shown[3] = 0;
  heights(shown);
  const Json json = judged();
  EXPECT_EQ(json["area_mean"], 0);
  EXPECT_TRUE(json["verdicts"][0]["area_error"].is_null());
}

TEST_F(EvaluateRegions, TheSideOfWhatIsCutOffIsNotFalse) {
  truth("1111....2222", {2});
  found("....3.......", {3});
  std::vector<uint16_t> shown(side * side, 100);
  for (size_t i = 0; i < 4; ++i) shown[i] = 0;
  heights(shown);
  EXPECT_EQ(judged()["false_regions"], 0) << "it stands beside object 1";
  found(".....3......", {3});
  EXPECT_EQ(judged()["false_regions"], 1) << "a cell from it";
}

TEST_F(EvaluateRegions, TableSaysTheSame) {
  truth("..1111......22", {1, 2});
  found("..1111........", {1});
  const Outcome outcome = folder.run({"evaluate", "result", "scene"});
  EXPECT_EQ(numberAfter(outcome.out, "found"), 1);
  EXPECT_EQ(numberAfter(outcome.out, "missed"), 1);
  EXPECT_EQ(numberAfter(outcome.out, "position, mean error"), 50);
  EXPECT_NE(outcome.out.find("mm high: found as region 1; centre off by 50 mm, height by -5 mm, area by +0 %"),
            std::string::npos)
      << outcome.out;
}

TEST_F(EvaluateRegions, HalfOfTheSmallerMustBeShared) {
  truth("1111........", {1});
  found("..1111......", {1});
  EXPECT_EQ(verdict(), "found[1]") << "two of four cells";
  found("...1111.....", {1});
  EXPECT_EQ(verdict(), "missed[]") << "one of four cells";
}

TEST_F(EvaluateRegions, AQuarterOfTheObjectMustBeHeld) {
  truth("11111111....", {1});
  found("11..........", {1});
  EXPECT_EQ(verdict(), "found[1]");
  found("1...........", {1});
  EXPECT_EQ(verdict(), "missed[1]");
}

TEST_F(EvaluateRegions, SplitIntoSeveralRegions) {
  truth("11111111....", {1});
  found("111.2222....", {1, 2});
  EXPECT_EQ(verdict(), "split[1,2]");
  EXPECT_EQ(judged()["split"], 1);
  EXPECT_TRUE(judged()["position_mean_mm"].is_null()) << "nothing was found";
}

TEST_F(EvaluateRegions, MergedWithItsNeighbour) {
  truth("11112222....", {1, 2});
  found("11111111....", {1});
  EXPECT_EQ(verdict(), "merged[1]");
  EXPECT_EQ(judged()["merged"], 2);
}

TEST_F(EvaluateRegions, MergedGoesBeforeSplit) {
  truth("111111112222", {1, 2});
  found("111.22222222", {1, 2});
  EXPECT_EQ(verdict(), "merged[1,2]");
  EXPECT_EQ(judged()["split"], 0);
}

TEST_F(EvaluateRegions, RegionsOfNothingAreFalse) {
  truth("1111........", {1});
  found("1111...2222.", {1, 2});
  EXPECT_EQ(judged()["found"], 1);
  EXPECT_EQ(judged()["false_regions"], 1);
}

TEST_F(EvaluateRegions, CellsOutsideThePictureDoNotCount) {
  truth("11112222....", {1, 2});
  found("11..........", {1});
  std::vector<uint16_t> seen(side * side, 100);
  for (size_t i = 2; i < 8; ++i) seen[i] = 0;
  heights(seen);
  EXPECT_EQ(judged()["objects"], 1) << "nothing of the second is in the picture";
  EXPECT_EQ(verdict(), "found[1]");
}

TEST_F(EvaluateRegions, NothingThereAndNothingFound) {
  const Json json = judged();
  EXPECT_EQ(json["objects"], 0);
  EXPECT_EQ(json["false_regions"], 0);
}

TEST_F(EvaluateRegions, BadFoldersAreRefusedInOneSentence) {
  const auto refuse = [this](std::vector<std::string> arguments, const std::string& sentence) {
    arguments.insert(arguments.begin(), "evaluate");
    const auto before = folder.names();
    const Outcome outcome = folder.run(arguments);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "nadir: " + sentence + "\n");
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(folder.names(), before);
  };
  refuse({"result", "scene/scene.json"},
         "scene/scene.json must be a folder that nadir synth wrote, because result is a folder");
  refuse({"result", "scene", "--error-map", "e.png"}, "--error-map is not for result, a folder of a pair");
  refuse({"result", "scene", "--scale", "16"}, "--scale is not for result, a folder of a pair");
  refuse({"result", "scene", "--heights"}, "--heights is not for result, a folder of a pair");
  refuse({"result", "scene", "--visible", "left"}, "--visible is not for result, a folder of a pair");
  refuse({"scene", "scene"}, "cannot read scene/regions.png: No such file or directory");
  writeFile(folder.path("result/summary.json"), "{\"regions\": [{}]}");
  refuse({"result", "scene"}, "cannot use result/summary.json: it is not a list of regions as nadir ground writes it");
  writeFile(folder.path("result/summary.json"), "{\"regions\":\n[{]}");
  refuse({"result", "scene"}, "cannot use result/summary.json: line 2 is no JSON");
  writeFile(folder.path("result/summary.json"), "{\"regions\": null}");
  refuse({"result", "scene"}, "result/summary.json holds no regions: nadir ground was told --no-regions");
  topMm = "-40";
  found("", {});
  refuse({"result", "scene"}, "the two folders hold maps of different places; was the scene's camera file changed?");
}

}  // namespace
}  // namespace nadir::test
