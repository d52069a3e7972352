// nadir synth --frames: sequences with their truth.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

Outcome renderedSequence(const Folder& folder, const std::string& name, std::vector<std::string> options) {
  options.insert(options.begin(), {"synth", name, "--size", "64x64"});
  return folder.run(options);
}

const std::vector<std::string> series = {
    "left",           "right",           "disparity_gt",   "disparity_left_gt", "disparity_right_gt",
    "occlusion_left", "occlusion_right", "height_left_gt", "height_right_gt",   "elevation_gt",
    "regions_gt"};

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> all;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) all.push_back(line);
  return all;
}

TEST(SynthSequence, NumbersEveryKindOfPicture) {
  const Folder folder;
  ASSERT_EQ(renderedSequence(folder, "s", {"--frames", "3"}).status, 0);
  std::vector<std::string> expected = {"s", "areas.toml", "camera.toml", "scene.json", "truth.jsonl"};
  for (const std::string& name : series) {
    expected.push_back(name);
    for (const char* frame : {"000000.png", "000001.png", "000002.png"}) {
      expected.push_back(frame);
      EXPECT_EQ(readPng(folder.path("s/" + name + "/" + frame)).samples.empty(), false);
    }
  }
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(folder.names(), expected);
}

TEST(SynthSequence, FirstFrameIsThePair) {
  const Folder folder;
  renderedSequence(folder, "s", {"--frames", "1", "--seed", "4"});
  renderedSequence(folder, "p", {"--scene", "walkers", "--seed", "4"});
  for (const std::string& name : series)
    EXPECT_EQ(readFile(folder.path("s/" + name + "/000000.png")), readFile(folder.path("p/" + name + ".png"))) << name;
  for (const char* name : {"camera.toml", "scene.json"})
    EXPECT_EQ(readFile(folder.path(std::string("s/") + name)), readFile(folder.path(std::string("p/") + name)));
}

TEST(SynthSequence, ThreadsDoNotMatter) {
  const Folder folder;
  renderedSequence(folder, "one", {"--frames", "5", "--threads", "1"});
  renderedSequence(folder, "many", {"--frames", "5", "--threads", "7"});
  for (const std::string& name : series)
    for (int frame = 0; frame < 5; ++frame) {
      const std::string file = "/" + name + "/00000" + std::to_string(frame) + ".png";
      EXPECT_EQ(readFile(folder.path("one" + file)), readFile(folder.path("many" + file))) << file;
    }
  EXPECT_EQ(readFile(folder.path("one/truth.jsonl")), readFile(folder.path("many/truth.jsonl")));
}

TEST(SynthSequence, TruthTellsTimePlaceAndHeight) {
  const Folder folder;
  renderedSequence(folder, "s", {"--frames", "4", "--fps", "20", "--no-truth-pictures"});
  const std::vector<std::string> truth = lines(readFile(folder.path("s/truth.jsonl")));
  ASSERT_EQ(truth.size(), 4u);
  for (int frame = 0; frame < 4; ++frame) {
    const std::string& line = truth[static_cast<size_t>(frame)];
    EXPECT_EQ(numberAfter(line, "\"frame\""), frame);
    EXPECT_DOUBLE_EQ(numberAfter(line, "\"time_s\""), frame / 20.0);
    EXPECT_EQ(numberAfter(line, "\"region\""), 1);
    EXPECT_NEAR(numberAfter(line, "\"height_mm\""), 1760, 80);
  }
  const auto speed = [&](const char* axis) { return (numberAfter(truth[1], axis) - numberAfter(truth[0], axis)) * 20; };
  EXPECT_NEAR(std::hypot(speed("\"x_mm\""), speed("\"y_mm\"")), 900, 61);
}

// The heights that the pictures show are those of truth.jsonl.
TEST(SynthSequence, TruthAgreesWithTheMap) {
  const Folder folder;
  renderedSequence(folder, "s", {"--frames", "8", "--fps", "4"});
  const std::vector<std::string> truth = lines(readFile(folder.path("s/truth.jsonl")));
  ASSERT_EQ(truth.size(), 8u);
  for (int frame = 0; frame < 8; ++frame) {
    const std::string file = "/00000" + std::to_string(frame) + ".png";
    const Picture map = readPng(folder.path("s/elevation_gt" + file)),
                  regions = readPng(folder.path("s/regions_gt" + file));
    uint16_t highest = 0;
    for (size_t i = 0; i < map.samples.size(); ++i)
      if (regions.samples[i] == 1) highest = std::max(highest, map.samples[i]);
    // No cell's centre need be below the summit: 20 mm beside it a head of 230 mm radius is 2 mm lower.
    EXPECT_NEAR(highest, numberAfter(truth[static_cast<size_t>(frame)], "\"height_mm\""), 3) << frame;
  }
}

TEST(SynthSequence, LeavesOutThePicturesOfTheTruth) {
  const Folder folder;
  renderedSequence(folder, "s", {"--frames", "1", "--no-truth-pictures"});
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"000000.png", "000000.png", "areas.toml", "camera.toml", "left",
                                                      "right", "s", "scene.json", "truth.jsonl"}));
}

TEST(SynthSequence, TellsHowFarItIs) {
  const Folder folder;
  const std::vector<std::string> told =
      lines(renderedSequence(folder, "s", {"--frames", "20", "--no-truth-pictures"}).err);
  ASSERT_EQ(told.size(), 10u) << "a line after every tenth";
  EXPECT_EQ(told[0].rfind("rendering 2 of 20 frames, ", 0), 0u) << told[0];
  EXPECT_EQ(told[9].rfind("rendering 20 of 20 frames, ", 0), 0u) << told[9];
}

TEST(SynthSequence, RefusesToMixSequences) {
  const Folder folder;
  renderedSequence(folder, "s", {"--frames", "2", "--no-truth-pictures"});
  const Outcome again = renderedSequence(folder, "s", {"--frames", "1", "--no-truth-pictures"});
  EXPECT_EQ(again.status, 1);
  EXPECT_NE(again.err.find("s holds a sequence already"), std::string::npos) << again.err;
  EXPECT_EQ(lines(readFile(folder.path("s/truth.jsonl"))).size(), 2u);
}

TEST(SynthSequence, RefusesOptionsOfASequenceForAPair) {
  const Folder folder;
  for (const std::vector<std::string>& option : {std::vector<std::string>{"--fps", "5"},
                                                 {"--no-truth-pictures"},
                                                 {"--frames", "0"},
                                                 {"--frames", "2", "--fps", "0"}})
    EXPECT_EQ(renderedSequence(folder, "s", option).status, 2) << option[0];
  EXPECT_TRUE(folder.names().empty());
}

}  // namespace
}  // namespace nadir::test
