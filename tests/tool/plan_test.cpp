// Tests of nadir plan: its numbers against rendered scenes, its proposals, its refusals.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/tool/schema.hpp"
#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

class Plan : public testing::Test {
 protected:
  Json planned(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "plan");
    arguments.push_back("--json");
    const Outcome outcome = folder.run(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return Json::parse(outcome.out, nullptr, false);
  }

  void render(const std::vector<std::string>& camera) {
    std::vector<std::string> arguments = {"synth", "s", "--scene", "empty-floor", "--noise", "0", "--size", "320x240"};
    arguments.insert(arguments.end(), camera.begin(), camera.end());
    ASSERT_EQ(folder.run(arguments).status, 0);
  }

  void expectRefused(const std::vector<std::string>& arguments, int status, const std::string& sentence) {
    const Outcome outcome = folder.run(arguments);
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.err, "nadir: " + sentence + "\n");
  }

  Folder folder;
};

constexpr double truthScale = 256;

double disparityAt(const Picture& truth, double column, double row) {
  return truth.at(static_cast<uint32_t>(std::lround(column)), static_cast<uint32_t>(std::lround(row))) / truthScale;
}

const std::vector<std::vector<std::string>> cameras = {
    {}, {"--tilt", "0", "--height", "2000"}, {"--tilt", "-45", "--pan", "20"}, {"--tilt", "25", "--baseline", "200"}};

TEST_F(Plan, DisparitiesAndTheSharedGroundAreThoseOfRenderedFloors) {
  for (const auto& camera : cameras) {
    render(camera);
    const Picture truth = readPng(folder.path("s/disparity_left_gt.png"));
    const Json plan = planned({"--camera", "s/camera.toml"});
    for (const Json& place : plan["places"]) {
      const double column = place["column_px"], row = place["row_px"];
      // Neighbouring rows differ by less than 0.2 pixels, and the picture has one of them.
      EXPECT_NEAR(disparityAt(truth, column, row), place["disparity_px"], 0.11) << place.dump();
      const double first = 2 * column - 319;
      EXPECT_NEAR(disparityAt(truth, first, row), first, 0.6) << "where the right picture begins, " << place.dump();
    }
  }
}

// A floor that is four sixteenths of a pixel nearer comes out so much higher.
TEST_F(Plan, AStepOfDisparityIsWorthThePlannedHeight) {
  render({"--tilt", "-40", "--height", "4000"});
  Picture truth = readPng(folder.path("s/disparity_left_gt.png"));
  for (uint16_t& sample : truth.samples) sample = static_cast<uint16_t>(sample + (sample > 0) * 4 * truthScale / 16);
  truth.text.clear();
  writePng(folder.path("nearer.png"), truth);
  const Json plan = planned({"--camera", "s/camera.toml"});
  ASSERT_EQ(folder
                .run({"ground", "s/left.png", "s/right.png", "--camera", "s/camera.toml", "--disparity", "nearer.png",
                      "--disparity-scale", "256", "--percentile", "50", "-o", "g"})
                .status,
            0);
  const Picture map = readPng(folder.path("g/elevation.png"));
  const Json& middle = plan["places"][1];
  const Json& mapOfCamera = plan["camera"]["map"];
  const double cell = mapOfCamera["cell_mm"], tilt = 40 * 3.14159265358979 / 180;
  const double left = -std::floor(map.width / 2.0) * cell, top = -4000 * std::tan(tilt) + left;
  const auto column = static_cast<uint32_t>((middle["ground_mm"][0].get<double>() - left) / cell);
  const auto row = static_cast<uint32_t>((middle["ground_mm"][1].get<double>() - top) / cell);
  const double disparity = middle["disparity_px"], four = 4 * middle["height_step_mm"].get<double>();
  EXPECT_NEAR(map.at(column, row), four * disparity / (disparity + 0.25), 3) << "steps shrink with nearness";
}

// The library says of a frame how high above its blocks it could have measured.
TEST_F(Plan, TheGreatestHeightIsWhatTheRoadTells) {
  render({"--tilt", "0"});
  const Json plan = planned({"--camera", "s/camera.toml", "--tallest", "500"});
  EXPECT_EQ(plan["range_px"], 61);
  ASSERT_EQ(folder.run({"ground", "s/left.png", "s/right.png", "--camera", "s/camera.toml", "--range", "61", "-o", "g"})
                .status,
            0);
  const Json trust = Json::parse(readFile(folder.path("g/summary.json")))["trust"];
  EXPECT_EQ(plan["places"][1]["limited_by"], "range");
  EXPECT_NEAR(plan["places"][1]["greatest_height_mm"], trust["greatest_top_mm"], 30);
}

TEST_F(Plan, AProposalSeesAllThatWasAskedFor) {
  ASSERT_EQ(folder.run({"plan", "--see", "3000x2000", "--tallest", "2000", "--height", "2600", "-o", "p"}).status, 0);
  const Json plan = planned({"--camera", "p/camera.toml"});
  const Json& camera = plan["camera"];
  const double nearMm = plan["places"][0]["forward_mm"], farMm = plan["places"][2]["forward_mm"];
  EXPECT_NEAR(farMm - nearMm, 2000, 60) << "to a cell";
  for (const Json& place : plan["places"]) EXPECT_GE(place["greatest_height_mm"], 2000) << place.dump();
  const auto number = [&](const char* key) { return std::to_string(camera[key].get<double>()); };
  ASSERT_EQ(
      folder
          .run({"synth", "s", "--scene", "empty-floor", "--noise", "2", "--focal", number("focal_px"), "--baseline",
                number("baseline_mm"), "--height", number("height_mm"), "--tilt", number("tilt_deg")})
          .status,
      0);
  ASSERT_EQ(folder.run({"ground", "s/left.png", "s/right.png", "--camera", "p/camera.toml", "-o", "g"}).status, 0);
  const Picture map = readPng(folder.path("g/elevation.png"));
  const auto seen = map.samples.size() - static_cast<size_t>(std::count(map.samples.begin(), map.samples.end(), 0));
  EXPECT_GE(seen, map.samples.size() * 9 / 10) << "cells of the map";
  EXPECT_GE(map.width * camera["map"]["cell_mm"].get<double>(), 3000);
}

TEST_F(Plan, NumbersAndTheirCameraFileGiveTheSame) {
  const std::vector<std::string> numbers = {"--fov", "65", "--baseline", "120", "--height", "3000", "--tilt", "-30"};
  const Json plan = planned(numbers);
  std::vector<std::string> writing = numbers;
  writing.insert(writing.begin(), "plan");
  writing.insert(writing.end(), {"-o", "p"});
  const Outcome outcome = folder.run(writing);
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_NE(outcome.out.find("wrote camera.toml and plan.svg, the drawing to look at, in p"), std::string::npos);
  EXPECT_EQ(planned({"--camera", "p/camera.toml"}), plan);
  EXPECT_NEAR(plan["camera"]["focal_px"], 320 / std::tan(32.5 * 3.14159265358979 / 180), 1e-6);
  const std::string drawing = readFile(folder.path("p/plan.svg"));
  EXPECT_EQ(drawing.rfind("<svg ", 0), 0u);
  EXPECT_NE(drawing.find("From above"), std::string::npos);
}

// A ground that ends with the pictures, one that reaches the horizon, and things that are nowhere measured.
TEST_F(Plan, ItsJsonFitsTheSchema) {
  std::vector<std::string> numbers = {"--focal", "500", "--baseline", "120", "--height", "3000"};
  const std::vector<std::string> further = {"--tilt", "-30", "--tilt", "-80", "--tilt", "0"};
  std::vector<Json> plans;
  for (size_t i = 0; i < further.size(); i += 2) {
    std::vector<std::string> arguments = numbers;
    arguments.insert(arguments.end(), {further[i], further[i + 1], "--tallest", i == 4 ? "2999" : "2000"});
    plans.push_back(planned(arguments));
  }
  EXPECT_TRUE(plans[1]["ground"]["reaches_horizon"].get<bool>());
  EXPECT_TRUE(plans[2]["tallest_from_mm"].is_null());
  plans.push_back(extended(plans[0]));
  for (const std::string& mistake : mistakes(NADIR_PLAN_SCHEMA, plans)) EXPECT_EQ(mistake, "");
  expectMisfits(NADIR_PLAN_SCHEMA, spoilt(plans[0]));
}

TEST_F(Plan, WhatCannotBePlannedIsRefused) {
  expectRefused({"plan", "--see", "3000x2000", "--tallest", "2700", "--height", "2600"}, 1,
                "--tallest 2700 is not below the camera, --height 2600; hang it higher");
  expectRefused({"plan", "--focal", "500", "--baseline", "0.1", "--height", "9000", "--tilt", "-30"}, 1,
                "no ground is seen with 2 pixels of disparity: hang the cameras lower, or farther apart");
  expectRefused({"plan", "--fov", "65", "--baseline", "120", "--height", "3000", "--tilt", "89.9"}, 1,
                "with a tilt of 89.9 degrees the ground lies too far off for a map: turn the cameras down");
  expectRefused({"plan", "--see", "1000000x1000000", "--height", "2600"}, 1,
                "no camera at 2600 mm sees things of 2000 mm on 1000000 x 1000000 mm; hang it higher, or see less");
  expectRefused({"plan", "--focal", "500", "--height", "9000", "--tilt", "-30"}, 2,
                "--baseline: is needed, or a camera file (--camera); see nadir plan --help");
  expectRefused({"plan", "--see", "3000", "--height", "2600"}, 2,
                "--see: 3000 is not WxH with sides from 100 to 1000000; see nadir plan --help");
}

}  // namespace
}  // namespace nadir::test
