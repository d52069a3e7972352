// nadir preview: a picture is drawn as what it says that it holds.
#include <gtest/gtest.h>

#include <fstream>

#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

class PreviewCommand : public testing::Test {
 protected:
  Picture preview(const std::string& file, const std::vector<std::string>& options = {}) {
    std::vector<std::string> arguments = {"preview", file, "-o", "p.png"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = folder.run(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return readPng(folder.path("p.png"));
  }

  void expectRefused(const std::string& file, const std::vector<std::string>& options, const std::string& sentence) {
    std::vector<std::string> arguments = {"preview", file, "-o", "refused.png"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = folder.run(arguments);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "nadir: " + sentence + "\n");
    EXPECT_EQ(std::ifstream(folder.path("refused.png")).is_open(), false);
  }

  void write(const std::string& name, const Picture& content) { writePng(folder.path(name), content); }

  Folder folder;
};

std::vector<uint16_t> colourAt(const Picture& p, uint32_t x, uint32_t y) {
  const auto first = p.samples.begin() + 3 * (std::ptrdiff_t{y} * p.width + x);
  return {first, first + 3};
}

Picture withTexts(Picture p, const std::map<std::string, std::string>& texts) {
  p.text = texts;
  return p;
}

const std::map<std::string, std::string> placeOfAMap = {
    {"nadir:cell-mm", "50"}, {"nadir:left-mm", "-100.000"}, {"nadir:top-mm", "200.000"}};

Picture mapPicture(const std::string& units, std::vector<uint16_t> cells) {
  std::map<std::string, std::string> texts = placeOfAMap;
  texts["nadir:units"] = units;
  return withTexts(picture(4, 2, 16, std::move(cells)), texts);
}

// Where a map of 4 cells begins, which are drawn with 90 pixels each, and 160 where they are regions.
constexpr uint32_t left = 52, top = 16, cell = 90, regionCell = 160;

TEST_F(PreviewCommand, DisparitiesAreToldByTheirTextOrByTheScale) {
  const Picture plain = picture(60, 70, 16, std::vector<uint16_t>(60 * 70, 800));
  write("plain.png", plain);
  write("told.png", withTexts(plain, {{"nadir:scale", "16"}}));
  const Picture told = preview("told.png", {"--range", "40", "60"});
  EXPECT_EQ(told.channels, 3u);
  EXPECT_EQ(preview("plain.png", {"--range", "40", "60", "--scale", "16"}).samples, told.samples);
  EXPECT_NE(preview("plain.png", {"--range", "40", "60", "--scale", "15"}).samples, told.samples);
  EXPECT_EQ(preview("plain.png").channels, 1u);
}

TEST_F(PreviewCommand, ElevationMapsHaveTheColoursOfTheirHeights) {
  write("map.png", mapPicture("mm", {0, 100, 100, 900, 900, 900, 500, 500}));
  const Picture drawn = preview("map.png", {"--range", "100", "900"});
  const auto colour = [&](uint32_t column, uint32_t row) {
    return colourAt(drawn, left + column * cell + cell / 2, top + row * cell + cell / 2);
  };
  EXPECT_EQ(colour(0, 0), (std::vector<uint16_t>{150, 150, 150}));
  EXPECT_EQ(colour(1, 0), colour(2, 0));
  EXPECT_EQ(colour(3, 0), colour(0, 1));
  EXPECT_NE(colour(1, 0), colour(0, 1));
  EXPECT_NE(colour(2, 1), colour(0, 1));
}

TEST_F(PreviewCommand, AMapIsDrawnAsGroundDrawsIt) {
  ASSERT_EQ(folder.run({"synth", "s", "--size", "160x120"}).status, 0);
  ASSERT_EQ(folder.run({"ground", "s/left.png", "s/right.png", "--camera", "s/camera.toml", "-o", "r"}).status, 0);
  preview("r/elevation.png");
  EXPECT_EQ(readFile(folder.path("p.png")), readFile(folder.path("r/elevation.preview.png")));
}

TEST_F(PreviewCommand, AMapThatDoesNotSayWhereItLiesHasNoAxes) {
  Picture placeless = mapPicture("mm", {1, 2, 3, 4, 5, 6, 7, 8});
  write("placed.png", placeless);
  placeless.text.erase("nadir:left-mm");
  write("placeless.png", placeless);
  const Picture with = preview("placed.png"), without = preview("placeless.png");
  ASSERT_EQ(with.width, without.width);
  for (uint32_t x = 0; x < left; ++x)
    for (uint32_t y = 0; y < without.height; ++y)
      ASSERT_EQ(colourAt(without, x, y), (std::vector<uint16_t>{255, 255, 255})) << x << ' ' << y;
  EXPECT_EQ(colourAt(with, left - 1, top), (std::vector<uint16_t>{0, 0, 0}));
}

TEST_F(PreviewCommand, EveryRegionHasAColour) {
  write("regions.png", mapPicture("region", {0, 1, 1, 2, 0, 1, 3, 2}));
  const Picture drawn = preview("regions.png");
  const auto colour = [&](uint32_t column, uint32_t row) {
    return colourAt(drawn, left + column * regionCell + 3, top + row * regionCell + 3);
  };
  EXPECT_EQ(colour(0, 0), (std::vector<uint16_t>{150, 150, 150}));
  EXPECT_EQ(colour(1, 0), colour(2, 0));
  EXPECT_EQ(colour(1, 0), colour(1, 1));
  EXPECT_EQ(colour(3, 0), colour(3, 1));
  EXPECT_NE(colour(1, 0), colour(3, 0));
  EXPECT_NE(colour(2, 1), colour(3, 0));
  EXPECT_NE(colour(2, 1), colour(1, 0));
}

TEST_F(PreviewCommand, HeightsOfAPictureAreInMm) {
  const auto stored = [](uint16_t scale) {
    const std::string text = std::to_string(scale);
    return withTexts(picture(2, 80, 16, std::vector<uint16_t>(160, static_cast<uint16_t>(300 * scale))),
                     {{"nadir:scale", text}, {"nadir:units", "1/" + text + " mm"}, {"nadir:no-value", "65535"}});
  };
  write("8.png", stored(8));
  write("4.png", stored(4));
  EXPECT_EQ(preview("8.png", {"--range", "200", "500"}).samples, preview("4.png", {"--range", "200", "500"}).samples);
}

TEST_F(PreviewCommand, IntensitiesAreStretched) {
  for (const uint32_t bits : {8u, 16u}) {
    std::vector<uint16_t> samples(1000, 100);
    std::fill(samples.begin() + 500, samples.end(), 150);
    samples[0] = 0;
    writeFile(folder.path("i.pgm"), pgm(picture(100, 10, bits, samples)));
    const Picture drawn = preview("i.pgm");
    EXPECT_EQ(drawn.channels, 1u);
    EXPECT_EQ(drawn.bits, 8u);
    EXPECT_EQ(drawn.at(1, 0), 0);
    EXPECT_EQ(drawn.at(0, 0), 0);
    EXPECT_EQ(drawn.at(99, 9), 255);
    EXPECT_EQ(preview("i.pgm", {"--range", "100", "200"}).at(99, 9), 128);
  }
}

TEST_F(PreviewCommand, NumbersComeAsTheyAreRead) {
  const auto numbers = [&](const std::string& file) {
    EXPECT_EQ(folder.run({"preview", file, "-o", "n.npy"}).status, 0);
    const Bytes npy = readFile(folder.path("n.npy"));
    EXPECT_EQ((npy.find('\n') + 1) % 64, 0u);
    return std::pair<Bytes, Bytes>(npy.substr(10, 15), npy.substr(npy.find('\n') + 1));
  };
  const auto is = [](const std::string& type, const std::string& bytes) {
    return std::pair<Bytes, Bytes>(Bytes("{'descr': '" + type + "'"), Bytes(bytes));
  };
  write("8.png", picture(2, 2, 8, {0, 2, 3, 255}));
  EXPECT_EQ(numbers("8.png"), is("|u1", "\x01\x02\x03\xff"));
  write("16.png", picture(2, 1, 16, {0, 0x1234}));
  EXPECT_EQ(numbers("16.png"), is("<u2", std::string("\0\0\x34\x12", 4)));
  write("regions.png", mapPicture("region", {0, 1, 1, 2, 0, 1, 3, 0x102}));
  EXPECT_EQ(numbers("regions.png"), is("<u2", std::string("\0\0\1\0\1\0\2\0\0\0\1\0\3\0\2\1", 16)));
  const std::string none("\0\0\xc0\x7f", 4), one("\0\0\x80\x3f", 4);
  write("disparities.png", withTexts(picture(2, 1, 16, {0, 16}), {{"nadir:scale", "16"}}));
  EXPECT_EQ(numbers("disparities.png"), is("<f4", none + one));
  write("map.png", mapPicture("mm", {0, 1, 1, 1, 1, 1, 1, 1}));
  EXPECT_EQ(numbers("map.png"), is("<f4", none + one + one + one + one + one + one + one));
  Picture colours = picture(2, 1, 8, {90, 90, 90, 7, 7, 7});
  colours.channels = 3;
  write("colours.png", colours);
  EXPECT_EQ(numbers("colours.png"), is("|u1", "\x5a\x07"));
}

TEST_F(PreviewCommand, WhatDoesNotFitIsRefused) {
  Picture colours = picture(2, 2, 8, std::vector<uint16_t>(12, 90));
  colours.channels = 3;
  write("c.png", colours);
  expectRefused("c.png", {},
                "c.png is in colours, which can be looked at as they are: nadir preview draws disparities, maps of "
                "heights and regions, and grey pictures");
  write("i.png", picture(2, 2, 8, {1, 2, 3, 4}));
  expectRefused("i.png", {"--scale", "16"}, "--scale is for disparities, but i.png holds intensities: leave it out");
  write("m.png", mapPicture("mm", {1, 2, 3, 4, 5, 6, 7, 8}));
  expectRefused("m.png", {"--scale", "16"},
                "--scale is for disparities, but m.png holds an elevation map: leave it out");
  write("r.png", mapPicture("region", {1, 2, 3, 4, 5, 6, 7, 8}));
  expectRefused("r.png", {"--range", "1", "2"},
                "--range is for measurements, but r.png holds a map of regions: leave it out");
  const Outcome outcome = folder.run({"preview", "m.png", "--range", "1", "2", "-o", "m.npy"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "nadir: --range is for colours, but m.npy receives numbers: leave it out\n");
}

}  // namespace
}  // namespace nadir::test
