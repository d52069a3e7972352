// docs/ground.schema.json describes every summary that nadir ground writes, and lets later versions add to it.
#include <gtest/gtest.h>

#include "tests/tool/schema.hpp"

namespace nadir::test {
namespace {

class GroundSchema : public testing::Test {
 protected:
  GroundSchema() {
    EXPECT_EQ(folder.run({"synth", "s", "--size", "320x240", "--scene", "people"}).status, 0);
    writeFile(folder.path("a.toml"),
              "[[area]]\nname = \"drawn\"\npixels = [[20, 20], [300, 20], [160, 230]]\n"
              "[[area]]\nname = \"measured\"\nground_mm = [[-9000, -3000], [900, -3000], [900, -2500]]\n");
  }

  Json summary(std::vector<std::string> options) {
    options.insert(options.begin(),
                   {"ground", "s/left.png", "s/right.png", "--camera", "s/camera.toml", "-o", "result"});
    const Outcome outcome = folder.run(options);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return readJson(folder.path("result/summary.json"));
  }

  // The place that does not fit, "" where everything does.
  static std::string mistakesIn(const Json& json) { return mistakes(NADIR_SCHEMA, {json})[0]; }

  Folder folder;
};

TEST_F(GroundSchema, RegionsAndAreas) {
  const Json json = summary({"--areas", "a.toml", "--fill-holes", "0.02"});
  EXPECT_GE(json["regions"].size(), 4u);
  EXPECT_EQ(json["areas"].size(), 2u);
  EXPECT_EQ(mistakesIn(json), "");
}

TEST_F(GroundSchema, UnknownMembersFitEverywhere) {
  const Json json = summary({"--areas", "a.toml"});
  EXPECT_EQ(json["schema"], 2);
  EXPECT_EQ(extended(json)["areas"][0]["surprise"], 1);
  EXPECT_EQ(mistakesIn(extended(json)), "");
}

TEST_F(GroundSchema, NoWarningsWhereAllIsWell) { EXPECT_EQ(summary({"--strict"})["warnings"], Json::array()); }

TEST_F(GroundSchema, WithoutRegions) { EXPECT_EQ(mistakesIn(summary({"--no-regions"})), ""); }

TEST_F(GroundSchema, NothingMeasured) {
  writePng(folder.path("none.png"), picture(320, 240, 16, std::vector<uint16_t>(320 * 240)));
  const Json json = summary({"--disparity", "none.png", "--areas", "a.toml"});
  EXPECT_TRUE(json["ground_plane"].is_null());
  EXPECT_EQ(mistakesIn(json), "");
}

TEST_F(GroundSchema, WhatIsMissingOrOfAnotherKindDoesNotFit) {
  const Json good = warned(summary({"--areas", "a.toml"}));
  EXPECT_EQ(mistakesIn(good), "");
  EXPECT_TRUE(good["ground_plane"].is_object()) << "its members are spoilt too";
  expectMisfits(NADIR_SCHEMA, spoilt(good, "pixels"));  // areas on the ground have none
}

}  // namespace
}  // namespace nadir::test
