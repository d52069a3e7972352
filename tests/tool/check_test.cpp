// nadir check: verdicts, numbers, JSON and the picture of row offsets.
#include <gtest/gtest.h>

#include "tests/tool/json.hpp"
#include "tests/tool/schema.hpp"
#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

class Check : public testing::Test {
 protected:
  Check() { folder.run({"synth", ".", "--size", "160x120"}); }

  void expectVerdict(const std::string& verdict, std::vector<std::string> pictures) {
    pictures.insert(pictures.begin(), "check");
    const Outcome outcome = folder.run(pictures);
    EXPECT_EQ(outcome.status, verdict == "good" ? 0 : 3) << outcome.err;
    EXPECT_EQ(outcome.out.substr(0, outcome.out.find(':')), verdict) << outcome.out;
    EXPECT_EQ(outcome.err.empty(), verdict == "good");
  }

  // The picture with every row so much lower.
  void writeLower(const std::string& name, const std::string& from, uint32_t rows) {
    Picture lower = readPng(folder.path(from));
    const size_t moved = size_t{rows} * lower.width;
    lower.samples.insert(lower.samples.begin(), moved, uint16_t{0});
    lower.samples.resize(lower.samples.size() - moved);
    writePng(folder.path(name), lower);
  }

  Folder folder;
};

TEST_F(Check, NamesFaults) {
  writeLower("lower.png", "left.png", 2);
  writePng(folder.path("small.png"), picture(80, 70, 16, std::vector<uint16_t>(80 * 70, 900)));
  expectVerdict("good", {"left.png", "right.png"});
  expectVerdict("swapped", {"right.png", "left.png"});
  expectVerdict("same", {"left.png", "left.png"});
  expectVerdict("size", {"left.png", "small.png"});
  expectVerdict("textureless", {"small.png", "small.png"});
  expectVerdict("offset", {"lower.png", "right.png"});
}

TEST_F(Check, SaysWhatToDoAndWithWhichNumbers) {
  writeLower("lower.png", "left.png", 2);
  const Outcome outcome = folder.run({"check", "lower.png", "right.png"});
  EXPECT_EQ(outcome.out.find("offset: the left picture shows everything 2.0 rows further down than the right one.\n"),
            0u);
  EXPECT_NE(outcome.err.find("the pair is not good but offset. Rectify the pair"), std::string::npos) << outcome.err;
  EXPECT_NEAR(numberAfter(outcome.out, "row offset"), 2, 0.1);
  EXPECT_NEAR(numberAfter(outcome.out, "upper third"), 2, 0.2);
  const std::string higher = folder.run({"check", "right.png", "lower.png"}).out;
  EXPECT_EQ(higher.find("swapped: "), 0u) << "the first that holds";
}

TEST_F(Check, HalvedPicturesAreSaidAloud) {
  folder.run({"synth", "large", "--size", "320x240"});
  const std::string out = folder.run({"check", "large/left.png", "large/right.png"}).out;
  EXPECT_NE(out.find("Halved to 160 x 120 pixels to compare rows.\n"), std::string::npos) << out;
  EXPECT_EQ(folder.run({"check", "left.png", "right.png"}).out.find("Halved"), std::string::npos);
}

TEST_F(Check, JsonIsAllThatIsPrinted) {
  writeLower("lower.png", "left.png", 2);
  std::vector<Json> documents;
  for (const char* left : {"left.png", "lower.png", "right.png"})
    documents.push_back(parseJson(folder.run({"check", left, "right.png", "--json"}).out));
  writePng(folder.path("small.png"), picture(80, 70, 16, std::vector<uint16_t>(80 * 70, 900)));
  documents.push_back(parseJson(folder.run({"check", "left.png", "small.png", "--json"}).out));
  for (const std::string& mistake : mistakes(NADIR_CHECK_SCHEMA, documents)) EXPECT_EQ(mistake, "");
  EXPECT_EQ(documents[0]["verdict"], "good");
  EXPECT_EQ(documents[1]["verdict"], "offset");
  EXPECT_NEAR(documents[1]["rows"]["offset_px"].get<double>(), 2, 0.1);
  EXPECT_EQ(documents[2]["verdict"], "same");
  EXPECT_EQ(documents[3]["verdict"], "size");
  EXPECT_TRUE(documents[3]["rows"]["turn_deg"].is_null());
  expectMisfits(NADIR_CHECK_SCHEMA, spoilt(documents[0]));
}

TEST_F(Check, WritesWhatIsAskedForAndNoMore) {
  const std::vector<std::string> before = folder.names();
  folder.run({"check", "left.png", "right.png", "--json"});
  EXPECT_EQ(folder.names(), before);
  writeLower("lower.png", "left.png", 2);
  EXPECT_EQ(folder.run({"check", "lower.png", "right.png", "-o", "rows.png"}).status, 3);
  const Picture rows = readPng(folder.path("rows.png"));
  EXPECT_EQ(rows.channels, 3u);
  EXPECT_GT(rows.width, 160u) << "with a scale";
  size_t red = 0;
  for (uint32_t y = 0; y < 120; ++y)
    for (uint32_t x = 0; x < 160; ++x)
      red += rows.samples[3 * (size_t{y} * rows.width + x)] > rows.samples[3 * (size_t{y} * rows.width + x) + 2] + 20;
  EXPECT_GT(red, 160u * 120 / 2) << "left is further down nearly everywhere";
}

TEST_F(Check, TheCameraFileHasTheSize) {
  EXPECT_EQ(folder.run({"check", "left.png", "right.png", "--camera", "camera.toml"}).status, 0);
  folder.run({"synth", "large", "--size", "320x240"});
  const Outcome outcome = folder.run({"check", "left.png", "right.png", "--camera", "large/camera.toml"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.out, "size: the pictures are 160 x 120, the camera file is for 320 x 240.\n");
}

TEST_F(Check, RefusesWhatItCannotCheck) {
  writePng(folder.path("tiny.png"), picture(63, 70, 16, std::vector<uint16_t>(63 * 70, 900)));
  const Outcome tiny = folder.run({"check", "tiny.png", "tiny.png"});
  EXPECT_EQ(tiny.status, 1);
  EXPECT_NE(tiny.err.find("pictures of 63 x 70 pixels cannot be checked: the least is 64 x 64"), std::string::npos);
  EXPECT_EQ(folder.run({"check", "left.png", "none.png"}).status, 1);
  EXPECT_EQ(folder.run({"check", "left.png", "right.png", "--camera", "left.png"}).status, 1);
  EXPECT_EQ(folder.run({"check", "left.png", "right.png", "--range", "62"}).status, 2);
  EXPECT_EQ(folder.run({"check", "left.png", "right.png", "-o", "rows.jpg"}).status, 2);
  EXPECT_EQ(folder.run({"check", "left.png"}).status, 2);
  EXPECT_EQ(folder.run({"check", "left.png", "right.png", "-o", "none/rows.png"}).status, 1);
}

TEST_F(Check, ALongerRangeIsAskedFor) {
  Picture near = readPng(folder.path("left.png"));
  for (uint32_t y = 0; y < near.height; ++y) {
    const auto row = near.samples.begin() + y * near.width;
    std::rotate(row, row + (near.width - 70), row + near.width);
  }
  writePng(folder.path("near.png"), near);
  expectVerdict("range", {"near.png", "right.png"});
  expectVerdict("good", {"near.png", "right.png", "--range", "122"});
}

}  // namespace
}  // namespace nadir::test
