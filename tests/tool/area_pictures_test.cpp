// Areas of interest as they are drawn on the map and on the picture.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/tool/straight_down.hpp"

namespace nadir::test {
namespace {

struct AreaOnGround {
  std::string name, corners;
};

// A map of 40 x 30 cells, 16 pixels each, from x -1000 and y -1000 mm; the picture shows x to 900 and y to 600 mm.
class AreaPictures : public StraightDown {
 protected:
  AreaPictures() {
    give([](uint32_t, uint32_t) { return uint16_t{213}; });
  }

  Picture drawn(const std::string& name, const std::vector<AreaOnGround>& areas) {
    std::string text;
    for (const AreaOnGround& area : areas)
      text += "[[area]]\nname = \"" + area.name + "\"\nground_mm = " + area.corners + "\n";
    writeFile(folder.path("a.toml"), text);
    std::vector<std::string> options = {"--disparity", "d.png"};
    if (!areas.empty()) options.insert(options.end(), {"--areas", "a.toml"});
    ground(options);
    return readPng(folder.path("result/" + name));
  }

  // The areas change pixels, but no pixel of the axes and of the scale of colours.
  void expectWithinTheMap(const std::vector<AreaOnGround>& areas) {
    const char* const name = "regions.preview.png";
    const Picture with = drawn(name, areas), without = drawn(name, {});
    const uint32_t scale = 60, left = with.width - scale - 640, top = 16;
    size_t inside = 0, outside = 0;
    for (uint32_t y = 0; y < with.height; ++y)
      for (uint32_t x = 0; x < with.width; ++x) {
        const size_t i = 3 * (size_t{y} * with.width + x);
        if (std::equal(&with.samples[i], &with.samples[i] + 3, &without.samples[i])) continue;
        ++(x >= left && x < left + 640 && y >= top && y < top + 480 ? inside : outside);
      }
    EXPECT_GT(inside, 0u);
    EXPECT_EQ(outside, 0u);
  }

  static size_t boxPixels(const Picture& picture) {
    size_t count = 0;
    for (size_t i = 0; i < picture.samples.size(); i += 3)
      count += picture.samples[i] == 255 && picture.samples[i + 1] == 190 && picture.samples[i + 2] == 240;
    return count;
  }
};

TEST_F(AreaPictures, AnAreaEndsWhereTheMapEnds) {
  expectWithinTheMap({{"wide", "[[-9000, -300], [9000, -300], [0, 9000]]"}});
  expectWithinTheMap({{"corner", "[[800, 300], [1400, 300], [1400, 900], [800, 900]]"}});
}

TEST_F(AreaPictures, ALongNameStaysOnTheMap) {
  expectWithinTheMap({{"a rather long name near the edge", "[[900, 0], [980, 0], [980, 200], [900, 200]]"}});
  expectWithinTheMap({{std::string(40, 'm'), "[[900, 0], [980, 0], [980, 200], [900, 200]]"}});
}

TEST_F(AreaPictures, AnAreaThatThePictureDoesNotShowIsNotDrawnThere) {
  const Picture with = drawn("regions.picture.png", {{"far", "[[-500, -950], [-300, -950], [-300, -750]]"}});
  EXPECT_EQ(with.samples, drawn("regions.picture.png", {}).samples);
}

TEST_F(AreaPictures, NamesDoNotHideEachOther) {
  const AreaOnGround one{"one", "[[0, 0], [300, 0], [300, 300]]"}, two{"two", "[[5, 0], [290, 5], [310, 300]]"};
  for (const char* name : {"regions.preview.png", "regions.picture.png"}) {
    const size_t each = boxPixels(drawn(name, {one})) + boxPixels(drawn(name, {two}));
    EXPECT_GT(each, 0u);
    EXPECT_EQ(boxPixels(drawn(name, {one, two})), each);
  }
}

}  // namespace
}  // namespace nadir::test
