// docs/ground.schema.json describes every summary that nadir ground writes, and nothing else.
#include <gtest/gtest.h>

#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

#include "json.hpp"

namespace nadir::test {
namespace {

class GroundSchema : public testing::Test {
 protected:
  GroundSchema() {
    const Json text = readJson(NADIR_SCHEMA);
    valijson::SchemaParser().populateSchema(valijson::adapters::NlohmannJsonAdapter(text), schema);
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

  // What does not fit, "" where everything does.
  std::string mistakes(const Json& json) {
    valijson::ValidationResults results;
    valijson::Validator().validate(schema, valijson::adapters::NlohmannJsonAdapter(json), &results);
    std::string text;
    for (const auto& error : results) text += error.description + "\n";
    return text;
  }

  Folder folder;
  valijson::Schema schema;
};

TEST_F(GroundSchema, RegionsAndAreas) {
  const Json json = summary({"--areas", "a.toml", "--fill-holes", "0.02"});
  EXPECT_GE(json["regions"].size(), 4u);
  EXPECT_EQ(json["areas"].size(), 2u);
  EXPECT_EQ(mistakes(json), "");
}

TEST_F(GroundSchema, WithoutRegions) { EXPECT_EQ(mistakes(summary({"--no-regions"})), ""); }

TEST_F(GroundSchema, NothingMeasured) {
  writePng(folder.path("none.png"), picture(320, 240, 16, std::vector<uint16_t>(320 * 240)));
  const Json json = summary({"--disparity", "none.png", "--areas", "a.toml"});
  EXPECT_TRUE(json["ground_plane"].is_null());
  EXPECT_EQ(mistakes(json), "");
}

TEST_F(GroundSchema, WhatIsMissingOrOfAnotherKindDoesNotFit) {
  const Json good = summary({"--areas", "a.toml"});
  for (const auto& [key, value] : good.items()) {
    Json less = good;
    less.erase(key);
    EXPECT_NE(mistakes(less), "") << key;
    Json other = good;
    other[key] = Json::array({true});
    EXPECT_NE(mistakes(other), "") << key;
  }
  for (const char* place :
       {"/regions/0", "/regions/0/box_mm", "/areas/0", "/areas/0/regions/0", "/map", "/region_rule"}) {
    Json more = good;
    more[Json::json_pointer(place)]["surprise"] = 1;
    EXPECT_NE(mistakes(more), "") << place;
    for (const auto& [key, value] : good[Json::json_pointer(place)].items()) {
      if (key == std::string("pixels")) continue;  // areas on the ground have none
      Json less = good;
      less[Json::json_pointer(place)].erase(key);
      EXPECT_NE(mistakes(less), "") << place << "/" << key;
    }
  }
}

}  // namespace
}  // namespace nadir::test
