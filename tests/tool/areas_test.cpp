// Areas of interest: what stands in them, and whatever can be wrong with them.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/tool/json.hpp"
#include "tests/tool/straight_down.hpp"

namespace nadir::test {
namespace {

using namespace straight_down;

std::string area(const std::string& name, const std::string& corners) {
  return "[[area]]\nname = \"" + name + "\"\n" + corners + "\n";
}

class Areas : public StraightDown {
 protected:
  // A block 500 mm high over the columns 16 to 21 and the rows 17 to 22 of the map.
  Areas() {
    give([](uint32_t x, uint32_t y) {
      return static_cast<uint16_t>(x >= 40 && x < 70 && y >= 25 && y < 55 ? 20 * 16 : 213);
    });
  }

  Json found(const std::string& areas) {
    writeFile(folder.path("a.toml"), areas);
    out = ground({"--disparity", "d.png", "--areas", "a.toml"}).out;
    return readJson(folder.path("result/summary.json"))["areas"];
  }

  // Everything that is found in an area, without its name and corners.
  Json contents(Json area) {
    for (const char* key : {"name", "pixels", "ground_mm"}) area.erase(key);
    return area;
  }

  std::string out;
};

TEST_F(Areas, WhatStandsInIt) {
  // The columns 16 to 19 and the rows 17 to 24: four columns and six rows of the block, and two rows of ground.
  const Json areas = found(area("door", "ground_mm = [[-200, -150], [0, -150], [0, 250], [-200, 250]]"));
  ASSERT_EQ(areas.size(), 1u);
  const Json expected = {
      {"name", "door"},
      {"ground_mm", {{-200, -150}, {0, -150}, {0, 250}, {-200, 250}}},
      {"whole_on_map", true},
      {"cells", 32},
      {"area_m2", 0.08},
      {"seen_cells", 28},
      {"covered_cells", 24},
      {"covered_m2", 0.06},
      {"covered_share", 0.75},
      {"highest_mm", 500},
      {"median_mm", 500},
      {"regions",
       Json::array({{{"label", 1}, {"cells", 24}, {"area_m2", 0.06}, {"highest_mm", 500}, {"median_mm", 500}}})}};
  EXPECT_EQ(areas[0], expected);
  EXPECT_NE(out.find("area \"door\"\n"), std::string::npos) << out;
  EXPECT_NEAR(numberAfter(out, "covered"), 0.06, 1e-9);
}

TEST_F(Areas, NothingStandsInIt) {
  const Json empty = found(area("yard", "ground_mm = [[300, -300], [500, -300], [500, 300]]"))[0];
  EXPECT_TRUE(empty["regions"].empty());
  EXPECT_EQ(empty["covered_cells"], 0);
  EXPECT_TRUE(empty["highest_mm"].is_null());
  EXPECT_NE(out.find("nothing stands in it"), std::string::npos) << out;
}

TEST_F(Areas, OfWhatWasNotSeenNothingIsSaid) {
  // The picture ends 600 mm above the map's middle.
  const Json hidden = found(area("far", "ground_mm = [[-500, -950], [-300, -950], [-300, -750]]"))[0];
  EXPECT_GT(hidden["cells"], 0);
  EXPECT_EQ(hidden["seen_cells"], 0);
  EXPECT_NE(out.find("nothing of it was seen"), std::string::npos) << out;
  EXPECT_EQ(out.find("nothing stands in it"), std::string::npos) << out;
}

TEST_F(Areas, PixelsAndMillimetresGiveTheSameCells) {
  // A pixel is worth 15 mm on the ground.
  const Json areas = found(area("pixels", "pixels = [[46, 29], [59, 29], [59, 50], [46, 50]]") +
                           area("mm", "ground_mm = [[-202, -157], [-7, -157], [-7, 157], [-202, 157]]"));
  EXPECT_EQ(areas[0]["pixels"], Json({{46, 29}, {59, 29}, {59, 50}, {46, 50}}));
  EXPECT_EQ(areas[0]["ground_mm"], areas[1]["ground_mm"]);
  EXPECT_EQ(areas[0]["cells"], 24);
  EXPECT_EQ(contents(areas[0]), contents(areas[1]));
}

TEST_F(Areas, OfTheCameraFileComeFirst) {
  writeFile(folder.path("c.toml"), camera() + area("one", "ground_mm = [[0, 0], [200, 0], [200, 200]]"));
  const Json areas = found(area("two", "ground_mm = [[0, 0], [-200, 0], [-200, -200]]"));
  ASSERT_EQ(areas.size(), 2u);
  EXPECT_EQ(areas[0]["name"], "one");
  EXPECT_EQ(areas[1]["name"], "two");
}

TEST_F(Areas, PartlyBesideTheMap) {
  const Json half = found(area("half", "ground_mm = [[-1100, -1000], [-900, -1000], [-900, -800], [-1100, -800]]"))[0];
  EXPECT_EQ(half["whole_on_map"], false);
  EXPECT_EQ(half["cells"], 2 * 4);
  EXPECT_NE(out.find("area \"half\", which reaches beyond the map"), std::string::npos) << out;
}

TEST_F(Areas, AreDrawnInBothPictures) {
  found(area("door", "pixels = [[5, 5], [30, 5], [30, 70], [5, 70]]"));
  for (const char* name : {"result/regions.preview.png", "result/regions.picture.png"}) {
    const Picture picture = readPng(folder.path(name));
    int pink = 0;
    for (size_t i = 0; i < picture.samples.size(); i += 3)
      pink += picture.samples[i] == 255 && picture.samples[i + 1] == 0 && picture.samples[i + 2] == 200;
    EXPECT_GT(pink, 2 * (25 + 65)) << name;
  }
}

TEST_F(Areas, HaveHeightsOfTheirOwn) {
  const std::string corners = "ground_mm = [[-200, -150], [0, -150], [0, 250], [-200, 250]]\n";
  const auto covered = [&](const std::string& heights) {
    return found(area("a", corners + heights))[0]["covered_cells"].get<int>();
  };
  EXPECT_EQ(covered("min_height_mm = 499.9"), 24);
  EXPECT_EQ(covered("min_height_mm = 500"), 0);
  EXPECT_EQ(covered("max_height_mm = 500"), 24);
  EXPECT_EQ(covered("max_height_mm = 499"), 0);
}

TEST_F(Areas, TellTheHeightsOfTheirOwn) {
  const std::string corners = "ground_mm = [[-200, -150], [0, -150], [0, 250], [-200, 250]]\n";
  const Json areas = found(area("a", corners) + area("b", corners + "min_height_mm = 90\nmax_height_mm = 400"));
  EXPECT_FALSE(areas[0].contains("min_height_mm"));
  EXPECT_FALSE(areas[0].contains("max_height_mm"));
  EXPECT_EQ(areas[1]["min_height_mm"], 90);
  EXPECT_EQ(areas[1]["max_height_mm"], 400);
}

TEST_F(Areas, NamesThatAreNotAscii) {
  EXPECT_EQ(found(area("T\xC3\xBCr", "ground_mm = [[0, 0], [200, 0], [200, 200]]"))[0]["name"], "T\xC3\xBCr");
}

// ---- what can be wrong ----

struct Mistake {
  const char* what;
  std::string file, sentences;
};

std::string cornersInARow(int count) {
  std::string corners;
  for (int i = 0; i < count; ++i) corners += "[" + std::to_string(i) + ", " + std::to_string(i * i) + "], ";
  return "ground_mm = [" + corners + "]";
}

TEST_F(Areas, EveryMistakeIsToldWithItsAreaAndLine) {
  const std::string good = "ground_mm = [[0, 0], [200, 0], [200, 200]]";
  const Mistake mistakes[] = {
      {"crossing edges", area("bow", "pixels = [[0, 0], [50, 50], [50, 0], [0, 50]]"),
       "a.toml:3: area \"bow\": its edges cross each other"},
      {"two corners", area("line", "pixels = [[0, 0], [50, 50]]"),
       "a.toml:3: area \"line\": has 2 corners, needs at least 3"},
      {"too many corners", area("lace", cornersInARow(101)),
       "a.toml:3: area \"lace\": has 101 corners, may have at most 100"},
      {"outside", area("far", "ground_mm = [[9000, 0], [9200, 0], [9200, 200]]"),
       "a.toml:1: area \"far\": holds the centre of no cell of the map, which reaches from x -1000, y -1000 to x 1000, "
       "y 500 mm"},
      {"no corners", area("a", ""), "a.toml:1: area \"a\": needs its corners, either as pixels or as ground_mm"},
      {"both kinds", area("a", good + "\npixels = [[0, 0], [50, 0], [0, 50]]"),
       "a.toml:1: area \"a\": needs its corners, either as pixels or as ground_mm"},
      {"no list", area("a", "pixels = 7"), "a.toml:3: area \"a\": pixels is a whole number, must be a list of corners"},
      {"half a pixel", area("a", "pixels = [[0, 0], [50.5, 0], [0, 50]]"),
       "a.toml:3: area \"a\": corner 2 must be two whole numbers from -23000 to 23000, [x, y]"},
      {"three numbers", area("a", "ground_mm = [[0, 0, 0], [50, 0], [0, 50]]"),
       "a.toml:3: area \"a\": corner 1 must be two numbers from -23000 to 23000, [x, y]"},
      {"not a number", area("a", "ground_mm = [[0, 0], [50, 0], [nan, 50]]"),
       "a.toml:3: area \"a\": corner 3 must be two numbers from -23000 to 23000, [x, y]"},
      {"no name", "[[area]]\n" + good + "\n", "a.toml:1: area.name: must be a text of 1 to 40 bytes"},
      {"long name", area(std::string(41, 'x'), good), "a.toml:2: area.name: must be a text of 1 to 40 bytes"},
      {"two of one name", area("a", good) + area("a", good), "a.toml:5: area \"a\": is the name of two areas"},
      {"unknown key", area("a", good + "\ncolour = 3"), "a.toml:4: area \"a\": colour is no key of an area"},
      {"low height", area("a", good + "\nmin_height_mm = 0"),
       "a.toml:4: area \"a\": min_height_mm must be a number of millimetres from 1 to 65535"},
      {"height in words", area("a", good + "\nmax_height_mm = 'low'"),
       "a.toml:4: area \"a\": max_height_mm must be a number of millimetres from 1 to 65535"},
      {"heights exchanged", area("a", good + "\nmin_height_mm = 500\nmax_height_mm = 500"),
       "a.toml:5: area \"a\": max_height_mm must be a number of millimetres from 1 to 65535, above min_height_mm"},
      {"below all regions", area("a", good + "\nmax_height_mm = 75"),
       "a.toml:1: area \"a\": nothing would be found up to max_height_mm = 75, since regions are higher than 75 mm; "
       "the "
       "area needs a min_height_mm below that"},
      {"misspelt table", "[[aera]]\nname = \"a\"\n", "a.toml:1: aera: is no key of a file of areas"},
      {"one table", "[area]\nname = \"a\"\n", "a.toml:1: area: must be tables that begin with the line [[area]]"},
      {"no TOML", "[[area]\n", "a.toml:1: "},
      {"two mistakes", area("a", "pixels = 7") + area("b", "pixels = [[0, 0], [50, 50]]"),
       "a.toml:3: area \"a\": pixels is a whole number, must be a list of corners\n"
       "a.toml:6: area \"b\": has 2 corners, needs at least 3"},
  };
  const auto before = [this] {
    writeFile(folder.path("a.toml"), "");
    return folder.names();
  }();
  for (const Mistake& mistake : mistakes) {
    writeFile(folder.path("a.toml"), mistake.file);
    const Outcome outcome = folder.run({"ground", "left.png", "right.png", "--camera", "c.toml", "-o", "result",
                                        "--disparity", "d.png", "--areas", "a.toml"});
    EXPECT_EQ(outcome.status, 1) << mistake.what;
    EXPECT_EQ(outcome.err.rfind("nadir: " + mistake.sentences, 0), 0u) << mistake.what << ": " << outcome.err;
    EXPECT_EQ(folder.names(), before) << mistake.what;
  }
}

TEST_F(Areas, NeedAMapAndACameraWithinReach) {
  const auto refuse = [this](const std::string& cameraText, const std::string& areaText, const std::string& sentence) {
    writeFile(folder.path("c.toml"), cameraText);
    writeFile(folder.path("a.toml"), areaText);
    const Outcome outcome =
        folder.run({"ground", "left.png", "right.png", "--camera", "c.toml", "-o", "result", "--areas", "a.toml"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "nadir: a.toml:1: area \"a\": " + sentence + "\n");
  };
  refuse(camera("", "width_cells = 100\nheight_cells = 30\ncell_mm = 500\n"),
         area("a", "ground_mm = [[0, 0], [200, 0], [200, 200]]"),
         "areas need a map that ends within 23 m of the camera, this one reaches from x -25000, y -25000 to x 25000, "
         "y -10000 mm");
  std::string high = camera();
  high.replace(high.find("height_mm = 1500"), 16, "height_mm = 70000");
  refuse(high, area("a", "pixels = [[59, 39], [61, 39], [60, 41]]"),
         "areas in pixels need a camera that is at most 65 m high");
}

TEST_F(Areas, MistakesInTheCameraFile) {
  writeFile(folder.path("c.toml"), camera() + area("bow", "pixels = [[0, 0], [50, 50], [50, 0], [0, 50]]"));
  const Outcome outcome = folder.run({"ground", "left.png", "right.png", "--camera", "c.toml", "-o", "result"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "nadir: c.toml:15: area \"bow\": its edges cross each other\n");
}

// ---- a tilted camera ----

class TiltedAreas : public testing::Test {
 protected:
  Outcome ground(const std::string& tilt, const std::string& areas) {
    EXPECT_EQ(folder.run({"synth", "s", "--size", "160x120", "--scene", "people", "--tilt", tilt}).status, 0);
    writeFile(folder.path("a.toml"), areas);
    return folder.run(
        {"ground", "s/left.png", "s/right.png", "--camera", "s/camera.toml", "-o", "result", "--areas", "a.toml"});
  }

  Json areas() { return readJson(folder.path("result/summary.json"))["areas"]; }

  Folder folder;
};

TEST_F(TiltedAreas, TheCornersOnTheGroundGiveTheSameArea) {
  const std::string polygons[] = {"[[20, 20], [140, 30], [120, 110], [30, 100]]",
                                  "[[80, 10], [100, 60], [150, 60], [110, 80], [120, 115], [80, 90], [40, 115]]",
                                  "[[-10, 60], [60, 130], [60, 60]]"};
  for (const std::string& polygon : polygons) {
    ASSERT_EQ(ground("-30", area("a", "pixels = " + polygon)).status, 0);
    Json drawn = areas()[0];
    ASSERT_EQ(ground("-30", area("a", "ground_mm = " + drawn["ground_mm"].dump())).status, 0);
    drawn.erase("pixels");
    EXPECT_GT(drawn["cells"], 300) << polygon;
    EXPECT_EQ(areas()[0], drawn) << polygon;
  }
}

TEST_F(TiltedAreas, TheSkyIsNoGround) {
  const Outcome outcome = ground("-70", area("sky", "pixels = [[10, 100], [150, 100], [80, 2]]"));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            "nadir: a.toml:1: area \"sky\": corner 3, pixel [80, 2], does not show the ground within 23 m "
            "of the camera\n");
}

}  // namespace
}  // namespace nadir::test
