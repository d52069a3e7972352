#include <gtest/gtest.h>

#include <cmath>

#include "tool.hpp"

namespace nadir::test {
namespace {

void synth(const Folder& folder, const std::string& name, std::vector<std::string> options) {
  options.insert(options.begin(), {"synth", name});
  const Outcome outcome = folder.run(options);
  ASSERT_EQ(outcome.status, 0) << outcome.err;
}

// FNV-1a over the samples, the low byte first.
uint64_t fingerprint(const Picture& picture) {
  uint64_t hash = 0xCBF29CE484222325u;
  for (const uint16_t v : picture.samples)
    for (const int byte : {v & 0xFF, v >> 8}) hash = (hash ^ static_cast<uint64_t>(byte)) * 0x100000001B3u;
  return hash;
}

TEST(Synth, SameSeedSameBytes) {
  const Folder folder;
  const std::vector<std::string> options = {"--width", "96", "--height", "64", "--seed", "5"};
  synth(folder, "a", options);
  synth(folder, "b", options);
  synth(folder, "c", {"--width", "96", "--height", "64", "--seed", "6"});
  for (const char* name : {"/left.png", "/right.png", "/disparity_gt.png"}) {
    const Bytes a = readFile(folder.path("a") + name);
    EXPECT_EQ(a, readFile(folder.path("b") + name)) << name;
    EXPECT_NE(a, readFile(folder.path("c") + name)) << name;
  }
}

// Recorded once; a machine on which they differ would see other scenes.
TEST(Synth, SamePixelsOnEveryMachine) {
  const Folder folder;
  synth(folder, "s", {"--width", "96", "--height", "64", "--seed", "7"});
  EXPECT_EQ(fingerprint(readPng(folder.path("s/left.png"))), 0xAE9BC4F9D6FF9CE5u);
  EXPECT_EQ(fingerprint(readPng(folder.path("s/right.png"))), 0x70C37D0CBFFD409Bu);
  EXPECT_EQ(fingerprint(readPng(folder.path("s/disparity_gt.png"))), 0x00968E372BC80948u);
}

// The right picture at column x, between pixels.
double between(const Picture& picture, double x, uint32_t y) {
  const auto column = static_cast<uint32_t>(x);
  const double share = x - column;
  const uint32_t next = std::min(column + 1, picture.width - 1);
  return picture.at(column, y) * (1 - share) + picture.at(next, y) * share;
}

// The mean difference between a left pixel and the right one that the truth, moved by `shift` pixels, names.
double meanDifference(const Folder& folder, double shift) {
  const Picture left = readPng(folder.path("s/left.png")), right = readPng(folder.path("s/right.png"));
  const Picture truth = readPng(folder.path("s/disparity_gt.png"));
  double sum = 0, count = 0;
  for (uint32_t y = 0; y < left.height; ++y)
    for (uint32_t x = 0; x < left.width; ++x) {
      const double column = x - truth.at(x, y) / 256.0 + shift;
      if (truth.at(x, y) == 0 || column < 0 || column > left.width - 1) continue;
      sum += std::abs(left.at(x, y) - between(right, column, y));
      ++count;
    }
  EXPECT_GT(count, 0.8 * left.width * left.height);
  return sum / count;
}

TEST(Synth, TheTruthNamesTheMatchingPixel) {
  const Folder folder;
  synth(folder, "s", {"--noise", "0"});
  const double right = meanDifference(folder, 0);
  EXPECT_LT(right, 60);
  for (const double shift : {-1.0, -0.5, 0.5, 1.0}) EXPECT_GT(meanDifference(folder, shift), 2 * right) << shift;
}

TEST(Synth, TruthIsOnTheGroundAndInTheMatchersRange) {
  const Folder folder;
  synth(folder, "s", {});
  const Picture truth = readPng(folder.path("s/disparity_gt.png"));
  for (const uint16_t v : truth.samples) ASSERT_TRUE(v == 0 || (v > 2 * 256 && v < 61 * 256)) << v;
  EXPECT_GT(truth.at(639, 478), truth.at(639, 1) + 30 * 256);
  EXPECT_EQ(truth.text.at("nadir:scale"), "256");
  EXPECT_EQ(truth.text.at("nadir:grid"), "left");
}

}  // namespace
}  // namespace nadir::test
