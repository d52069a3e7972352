// Connected components with their pixels and contours.
#include <gtest/gtest.h>
#include <nadir/segment.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "tests/models/segments.hpp"
#include "tests/support/integers.hpp"
#include "tests/support/pictures.hpp"
#include "tests/support/regions.hpp"
#include "tests/support/rounds.hpp"

namespace nadir::test {
namespace {

using model::Region;
using model::Words;
using HeightPicture = model::Picture<uint16_t>;

constexpr Rect_s32 wholeImage{0, 0, 0, 0};

struct Close {
  void operator()(CompFinder* finder) const { IP_CompFinder_Close(finder); }
};
using FinderPtr = std::unique_ptr<CompFinder, Close>;

// The record is large: one for all tests, at a guard page.
ComponentList& foundComponents() {
  static const Guarded<ComponentList> record(1);
  return record[0];
}

// The slices of the pools follow each other in the order of the labels.
::testing::AssertionResult slicesFollow(const ComponentEntry& entry, size_t offset) {
  if (entry.positions == foundComponents().positionPool + offset &&
      entry.values == foundComponents().valuePool + offset && entry.contour == foundComponents().contourPool + offset)
    return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "slices do not begin at " << offset;
}

void expectList(const std::vector<Region>& want) {
  ASSERT_EQ(foundComponents().count, want.size());
  size_t offset = 0;
  for (uint32_t i = 0; i < want.size(); ++i) {
    SCOPED_TRACE("component " + std::to_string(i + 1));
    const ComponentEntry& entry = foundComponents().entries[i];
    ASSERT_EQ(entry.label, i + 1);
    ASSERT_TRUE(slicesFollow(entry, offset));
    ASSERT_TRUE(sameRegion(want[i], entry));
    ASSERT_TRUE(sameContour(want[i], entry));
    offset += entry.pixelCount;
  }
}

class Finder {
 public:
  int32_t find(const HeightPicture& picture, const Rect_s32& aoi, Guard side = Guard::behind) {
    const auto src = imageOf(picture, side);
    foundComponents().count = 0xFFFFFFFF;
    const int32_t status = IP_CompFinder_ProcessAoi(get(), src, &aoi, &foundComponents());
    EXPECT_EQ(src.pixels(), picture.pixels) << "wrote into its source";
    return status;
  }
  int32_t find(const HeightPicture& picture) {
    const auto src = imageOf(picture, Guard::behind);
    foundComponents().count = 0xFFFFFFFF;
    return IP_CompFinder_Process(get(), src, &foundComponents());
  }

  void expectModel(const HeightPicture& picture, const Rect_s32& aoi, Guard side = Guard::behind) {
    ASSERT_EQ(find(picture, aoi, side), 1);
    expectList(model::componentList(picture, aoi));
    if (::testing::Test::HasFailure()) {
      ADD_FAILURE() << "area " << aoi.x0 << " " << aoi.y0 << " " << aoi.x1 << " " << aoi.y1 << " of " << text(picture);
    }
  }
  void expectModel(const HeightPicture& picture) {
    ASSERT_EQ(find(picture), 1);
    expectList(model::componentList(picture, wholeImage));
    if (::testing::Test::HasFailure()) ADD_FAILURE() << text(picture);
  }

  CompFinder* get() const { return finder_.get(); }

 private:
  FinderPtr finder_{IP_CompFinder_Init()};
};

// Components as pictures: '.' for none, '1' or 'a' for a pixel of the first one, the letter for its contour.
std::vector<std::string> drawing(uint32_t width, uint32_t height) {
  std::vector<std::string> rows(height, std::string(width, '.'));
  for (uint32_t l = 0; l < foundComponents().count; ++l) {
    const ComponentEntry& entry = foundComponents().entries[l];
    const auto at = [&](uint32_t i) -> char& { return rows[entry.positions[i].y][entry.positions[i].x]; };
    for (uint32_t i = 0; i < entry.pixelCount; ++i) at(i) = static_cast<char>('1' + l);
    for (uint32_t i = 0; i < entry.contourCount; ++i) at(entry.contour[i]) = static_cast<char>('a' + l);
  }
  return rows;
}

using Rows = std::vector<std::string>;

Rows foundIn(const Rows& rows, const Rect_s32& aoi = wholeImage) {
  EXPECT_EQ(Finder().find(drawn(rows), aoi), 1);
  return drawing(static_cast<uint32_t>(rows[0].size()), static_cast<uint32_t>(rows.size()));
}

HeightPicture dust(uint32_t width, uint32_t height) {
  HeightPicture picture = constant<uint16_t>(width, height, 0);
  for (uint32_t y = 0; y < height; y += 2) {
    for (uint32_t x = 0; x < width; x += 2) picture.at(x, y) = static_cast<uint16_t>(1 + x + y);
  }
  return picture;
}

// There are as many runs as rows of 256 columns can have, 128 in each.
HeightPicture fence(uint32_t height) {
  HeightPicture picture = constant<uint16_t>(256, height, 0);
  for (size_t i = 0; i < picture.pixels.size(); i += 2) picture.pixels[i] = static_cast<uint16_t>(1 + i);
  return picture;
}

HeightPicture anyPicture(lab::Random& random, uint32_t width, uint32_t height) {
  return valued<uint16_t>(random, anyShape(random, width, height), 0);
}

// Around the picture, inside it, beyond it, inverted, empty or anything.
Rect_s32 anyArea(lab::Random& random, uint32_t width, uint32_t height) {
  const int32_t w = static_cast<int32_t>(width), h = static_cast<int32_t>(height);
  switch (random.below(8)) {
    case 0: return {anyInteger(random), anyInteger(random), anyInteger(random), anyInteger(random)};
    case 1:
      return {random.between(-3, w + 3), random.between(-3, h + 3), random.between(-3, w + 3),
              random.between(-3, h + 3)};
    case 2: return {-5, random.between(0, h), w + 5, random.between(0, h)};
    case 3: return {random.between(0, w), INT32_MIN, random.between(0, w), INT32_MAX};
    default: {
      const int32_t x0 = random.between(0, w - 1), y0 = random.between(0, h - 1);
      return {x0, y0, random.between(x0 + 1, w), random.between(y0 + 1, h)};
    }
  }
}

// Answers 0 with a count of 0, and changes nothing else of the list.
::testing::AssertionResult refuses(const Img* src) {
  const Finder finder;
  std::memset(&foundComponents(), 0xA7, sizeof(ComponentList));
  std::vector<uint8_t> want(sizeof(ComponentList), 0xA7);
  std::memset(want.data() + offsetof(ComponentList, count), 0, sizeof foundComponents().count);
  const Rect_s32 aoi{0, 0, 2, 2};
  for (const bool whole : {true, false}) {
    foundComponents().count = 5;
    const int32_t status = whole ? IP_CompFinder_Process(finder.get(), src, &foundComponents())
                                 : IP_CompFinder_ProcessAoi(finder.get(), src, &aoi, &foundComponents());
    if (status != 0) return ::testing::AssertionFailure() << "not refused";
    if (foundComponents().count != 0) return ::testing::AssertionFailure() << "count " << foundComponents().count;
    if (std::memcmp(want.data(), &foundComponents(), sizeof(ComponentList)) != 0)
      return ::testing::AssertionFailure() << "wrote more than the count";
  }
  return ::testing::AssertionSuccess();
}

}  // namespace

// ---- what is one component ----

TEST(ComponentFinder, ListsPositionsValuesAndBoxInRasterOrder) {
  const HeightPicture picture{4, 2, {0, 7, 0, 0, 6, 5, 0, 0}};
  EXPECT_EQ(Finder().find(picture), 1);
  Region want;
  want.add(1, 0, 7);
  want.add(0, 1, 6);
  want.add(1, 1, 5);
  want.contour = {0, 1, 2};
  expectList({want});
}

TEST(ComponentFinder, FindsNothingInAnEmptyImage) {
  EXPECT_EQ(Finder().find(constant<uint16_t>(5, 4, 0)), 1);
  EXPECT_EQ(foundComponents().count, 0u);
}

TEST(ComponentFinder, JoinsPixelsThatTouchAtACorner) {
  EXPECT_EQ(foundIn({"#..", ".#.", "#.."}), (Rows{"a..", ".a.", "a.."}));
}

TEST(ComponentFinder, NumbersInTheRasterOrderOfTheFirstPixels) {
  EXPECT_EQ(foundIn({"...#.", ".#.#.", "#..#."}), (Rows{"...a.", ".b.a.", "b..a."}));
  EXPECT_EQ(foundIn({"#.#.#.", "###.#."}), (Rows{"a.a.b.", "aaa.b."}));
}

TEST(ComponentFinder, TakesAnyValueButZero) {
  EXPECT_EQ(Finder().find(row<uint16_t>({1, 0, 0x8000, 0, 0xFFFF, 0})), 1);
  EXPECT_EQ(drawing(6, 1), (Rows{"a.b.c."}));
}

TEST(ComponentFinder, FillsThePoolsWithTheLargestImage) {
  lab::Random random(3);
  HeightPicture picture{256, 256, random.values<uint16_t>(65536, 65535)};
  for (uint16_t& value : picture.pixels) ++value;
  Finder().expectModel(picture);
  EXPECT_EQ(foundComponents().entries[0].pixelCount, 65536u);
}

// ---- the last column ----

TEST(ComponentFinder, KeepsRunsThatEndInTheLastColumn) {
  EXPECT_EQ(foundIn({".###"}), (Rows{".aaa"}));
  EXPECT_EQ(foundComponents().entries[0].xMin, 1);
  EXPECT_EQ(foundComponents().entries[0].xEnd, 4);
  EXPECT_EQ(foundIn({"..##"}), (Rows{"..aa"}));
}

TEST(ComponentFinder, DropsTheRunThatStartsInTheLastColumn) { EXPECT_EQ(foundIn({"#..#"}), (Rows{"a..."})); }

TEST(ComponentFinder, DoesNotJoinThroughADroppedPixel) {
  EXPECT_EQ(foundIn({"..##", "...#", "..##"}), (Rows{"..aa", "....", "..bb"}));
}

TEST(ComponentFinder, FindsNothingInAnImageOfOneColumn) { EXPECT_EQ(foundIn({"#", "#", "#"}), (Rows{".", ".", "."})); }

TEST(ComponentFinder, MeansTheLastColumnOfTheArea) {
  EXPECT_EQ(foundIn({"...##", "..#.#", ".##.#"}, {0, 0, 4, 3}), (Rows{".....", "..a..", ".aa.."}));
}

// ---- contours ----

TEST(ComponentContour, IsAllButTheInside) {
  EXPECT_EQ(foundIn({".....", ".###.", ".###.", ".###.", "....."}),
            (Rows{".....", ".aaa.", ".a1a.", ".aaa.", "....."}));
  const ComponentEntry& entry = foundComponents().entries[0];
  EXPECT_EQ(entry.pixelCount, 9u);
  EXPECT_EQ(entry.contourCount, 8u);
  EXPECT_EQ(boxOf(entry), (std::vector<int32_t>{1, 1, 4, 4}));
}

TEST(ComponentContour, IsEveryPixelOfASingleRow) { EXPECT_EQ(foundIn({".###."}), (Rows{".aaa."})); }

TEST(ComponentContour, IncludesTheImagesBorder) {
  EXPECT_EQ(foundIn({"####", "####", "####"}), (Rows{"aaaa", "a11a", "aaaa"}));
}

TEST(ComponentContour, DoesNotMindMissingCorners) {
  EXPECT_EQ(foundIn({"..#..", ".###.", "..#.."}), (Rows{"..a..", ".a1a.", "..a.."}));
}

TEST(ComponentContour, EndsAtTheAreasFirstAndLastRow) {
  EXPECT_EQ(foundIn({"#####", "#####", "#####", "#####", "#####"}, {0, 1, 5, 4}),
            (Rows{".....", "aaaaa", "a111a", "aaaaa", "....."}));
}

TEST(ComponentContour, EndsAtTheAreasFirstAndLastColumn) {
  EXPECT_EQ(foundIn({"#####", "#####", "#####"}, {1, 0, 4, 3}), (Rows{".aaa.", ".a1a.", ".aaa."}));
}

// ---- areas of interest ----

TEST(ComponentArea, ReportsOnlyThePartInside) {
  EXPECT_EQ(foundIn({"####", "####", "####", "####"}, {1, 1, 3, 3}), (Rows{"....", ".aa.", ".aa.", "...."}));
}

TEST(ComponentArea, CutsAComponentInTwo) {
  EXPECT_EQ(foundIn({"##.##", "##.##", "#####"}, {0, 0, 5, 2}), (Rows{"aa.bb", "aa.bb", "....."}));
}

TEST(ComponentArea, ThatIsEmptyMeansTheWholeImage) {
  const Rows rows{"#..#.", ".....", "..##."}, all{"a..b.", ".....", "..cc."};
  for (const Rect_s32 aoi : {Rect_s32{2, 2, 2, 9}, Rect_s32{0, 0, 0, 0}, Rect_s32{3, 1, 1, 2}, Rect_s32{0, 2, 5, 2},
                             Rect_s32{9, 9, 9, 9}, Rect_s32{INT32_MAX, 0, INT32_MIN, 3}, Rect_s32{-1, -1, -1, 3}}) {
    EXPECT_EQ(foundIn(rows, aoi), all) << aoi.x0 << " " << aoi.y0 << " " << aoi.x1 << " " << aoi.y1;
  }
}

TEST(ComponentArea, IsClampedToTheImage) {
  const Rows rows{"#..#.", ".....", "..##."}, all{"a..b.", ".....", "..cc."};
  EXPECT_EQ(foundIn(rows, {-7, -7, 99, 99}), all);
  EXPECT_EQ(foundIn(rows, {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}), all);
}

TEST(ComponentArea, OutsideTheImageHasNoComponents) {
  const Rows rows{"##", "##"}, none{"..", ".."};
  for (const Rect_s32 aoi : {Rect_s32{2, 0, 4, 2}, Rect_s32{0, 2, 2, 4}, Rect_s32{-4, 0, 0, 2}, Rect_s32{0, -4, 2, 0},
                             Rect_s32{-9, -9, -5, -5}, Rect_s32{65536, 0, 65538, 2}, Rect_s32{INT32_MIN, 0, -1, 2},
                             Rect_s32{2, 0, INT32_MAX, 2}}) {
    EXPECT_EQ(foundIn(rows, aoi), none) << aoi.x0 << " " << aoi.y0 << " " << aoi.x1 << " " << aoi.y1;
    EXPECT_EQ(foundComponents().count, 0u);
  }
}

TEST(ComponentArea, OfOneColumnHasNoComponents) { EXPECT_EQ(foundIn({"##", "##"}, {0, 0, 1, 2}), (Rows{"..", ".."})); }

// ---- refused images ----

TEST(ComponentFinderRefuses, SizesOutside1To256) {
  uint16_t pixel = 1;
  const uint32_t sizes[][2] = {{0, 1}, {1, 0}, {0, 0}, {257, 1}, {1, 257}, {257, 257}, {65535, 1}, {1, 65535}};
  for (const auto& size : sizes) {
    Img src;
    Img_Init(&src, size[0], size[1], IMG_TYPE_U16, &pixel);
    EXPECT_TRUE(refuses(&src)) << size[0] << " x " << size[1];
  }
}

TEST(ComponentFinderRefuses, OtherTypes) {
  Image<uint32_t> src(4, 4);
  for (const uint32_t type : typesOtherThan({IMG_TYPE_U16})) {
    src.retype(type);
    EXPECT_TRUE(refuses(src)) << type;
  }
}

TEST(ComponentFinderRefuses, OtherSizesWhateverTheArea) {
  const Finder finder;
  Image<uint16_t> src(257, 4);
  const Rect_s32 inside{0, 0, 4, 4};
  foundComponents().count = 5;
  EXPECT_EQ(IP_CompFinder_ProcessAoi(finder.get(), src, &inside, &foundComponents()), 0);
  EXPECT_EQ(foundComponents().count, 0u);
}

// ---- against the model, all with one finder ----

TEST(ComponentFinderModel, AgreesOnEveryImageOf4By3Pixels) {
  Finder finder;
  forEachCode(1u << 12, [&](uint32_t bits) { finder.expectModel(ofBits(4, 3, bits)); });
}

TEST(ComponentFinderModel, AgreesOnEveryImageOf3By5Pixels) {
  Finder finder;
  forEachCode(1u << 15, [&](uint32_t bits) { finder.expectModel(ofBits(3, 5, bits)); });
}

TEST(ComponentFinderModel, AgreesOnEveryAreaOfAnImage) {
  Finder finder;
  lab::Random random(5);
  const HeightPicture picture = valued<uint16_t>(random, noise(random, 6, 5, 70), 0);
  for (int32_t x0 = -1; x0 <= 7; ++x0)
    for (int32_t y0 = -1; y0 <= 6; ++y0)
      for (int32_t x1 = -1; x1 <= 7; ++x1)
        for (int32_t y1 = -1; y1 <= 6 && !HasFailure(); ++y1) finder.expectModel(picture, {x0, y0, x1, y1});
}

TEST(ComponentFinderModel, AgreesOnShapesOfEveryKind) {
  Finder finder;
  inRounds(8000, [&](lab::Random& random) {
    const Extent size = anyExtent(random, 256);
    finder.expectModel(anyPicture(random, size.width, size.height));
  });
}

TEST(ComponentFinderModel, AgreesOnAreasOfEveryKind) {
  Finder finder;
  inRounds(8000, [&](lab::Random& random) {
    const Extent size = anyExtent(random, 256);
    finder.expectModel(anyPicture(random, size.width, size.height), anyArea(random, size.width, size.height),
                       anySide(random));
  });
}

TEST(ComponentFinderModel, AgreesOnFullSizeShapes) {
  Finder finder;
  inRounds(12,
           [&](lab::Random& random) { finder.expectModel(anyPicture(random, 256, 256), wholeImage, anySide(random)); });
}

TEST(ComponentFinderModel, AgreesOnNoiseOfEveryDensity) {
  Finder finder;
  lab::Random random(1);
  forEachCode(101, [&](uint32_t percent) {
    const uint32_t width = percent % 10 == 0 ? 256 : 60;
    finder.expectModel(valued<uint16_t>(random, noise(random, width, 40, percent), 0));
  });
}

// ---- the most there can be ----

TEST(ComponentFinderLimits, Finds16383Components) {
  HeightPicture picture = dust(256, 256);
  picture.at(100, 100) = 0;
  Finder().expectModel(picture);
  EXPECT_EQ(foundComponents().count, 16383u);
}

TEST(ComponentFinderLimits, Finds16384Components) {
  Finder().expectModel(dust(256, 256));
  EXPECT_EQ(foundComponents().count, 16384u);
}

TEST(ComponentFinderLimits, Holds16384RunsOf128Components) {
  Finder().expectModel(fence(128));
  EXPECT_EQ(foundComponents().count, 128u);
}

TEST(ComponentFinderLimits, Holds16384RunsOf16381Components) {
  // Dust, with one of its pixels moved to where it joins four others.
  HeightPicture picture = dust(256, 256);
  picture.at(100, 100) = 0;
  picture.at(101, 101) = 1;
  Finder().expectModel(picture);
  EXPECT_EQ(foundComponents().count, 16384u - 3);
}

namespace {

// More than 16384 runs, in every second row and in all rows, regular and not.
std::vector<HeightPicture> manyRuns() {
  lab::Random random(9);
  return {fence(129), fence(256), valued<uint16_t>(random, noise(random, 256, 256, 40), 0),
          valued<uint16_t>(random, maze(random, 256, 256, 30), 0)};
}

}  // namespace

TEST(ComponentFinderLimits, HoldsMoreRunsThanThereCanBeComponents) {
  Finder finder;
  for (const HeightPicture& picture : manyRuns()) finder.expectModel(picture);
}

TEST(ComponentFinderLimits, IsRightAgainAfterThem) {
  Finder finder;
  lab::Random random(4);
  std::vector<HeightPicture> largest = manyRuns();
  largest.push_back(dust(256, 256));
  for (const HeightPicture& picture : largest) {
    finder.find(picture);
    finder.expectModel(anyPicture(random, 200, 90));
    finder.find(picture);
    finder.expectModel(anyPicture(random, 5, 5));
    finder.expectModel(fence(128));
  }
}

// ---- one finder, many calls ----

TEST(ComponentFinderAgain, IsAsGoodAsNew) {
  inRounds(20, [](lab::Random& random) {
    Finder finder;
    for (int i = 0; i < 5; ++i) {
      const Extent size = anyExtent(random, 256);
      const HeightPicture picture = anyPicture(random, size.width, size.height);
      const Rect_s32 aoi = anyArea(random, size.width, size.height);
      finder.expectModel(picture, aoi);
      Finder().expectModel(picture, aoi);
    }
  });
}

TEST(ComponentFinderAgain, IsRightAfterARefusedImage) {
  Finder finder;
  lab::Random random(6);
  Image<uint16_t> large(257, 1), otherType(8, 8), otherBits(8, 8);
  otherType.retype(IMG_TYPE_S16);
  otherBits.retype(IMG_TYPE_U16 | IMG_TYPE_S16);
  for (Image<uint16_t>* refused : {&large, &otherType, &otherBits}) {
    finder.expectModel(anyPicture(random, 120, 120));
    EXPECT_EQ(IP_CompFinder_Process(finder.get(), *refused, &foundComponents()), 0);
    finder.expectModel(anyPicture(random, 100, 130));
  }
}

TEST(ComponentFinderAgain, WorksOnTwoImagesInTurn) {
  Finder one, other;
  inRounds(30, [&](lab::Random& random) {
    one.expectModel(anyPicture(random, 40, 30));
    other.expectModel(anyPicture(random, 30, 40));
  });
}

TEST(ComponentFinderClose, AcceptsNull) { IP_CompFinder_Close(nullptr); }

}  // namespace nadir::test
