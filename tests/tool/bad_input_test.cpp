// Whatever goes wrong: one sentence on standard error, status 1, and the folder as it was.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

class BadInput : public testing::Test {
 protected:
  BadInput() { EXPECT_EQ(folder.run({"synth", ".", "--size", "96x64"}).status, 0); }

  void expectRefused(const std::vector<std::string>& arguments, const std::string& reason, uint64_t fileLimit = 0) {
    const auto before = folder.names();
    const Outcome outcome = folder.run(arguments, fileLimit);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err.rfind("nadir: ", 0), 0u) << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_NE(outcome.err.find(reason), std::string::npos) << outcome.err;
    EXPECT_EQ(folder.names(), before);
  }

  void expectLeftRefused(const Bytes& bytes, const std::string& reason) {
    writeFile(folder.path("odd"), bytes);
    expectRefused({"disparity", "odd", "right.png", "-o", "d.png"}, reason);
  }

  std::string rootName() { return std::filesystem::path(folder.path("")).parent_path().filename(); }

  Folder folder;
};

TEST_F(BadInput, MissingFile) {
  expectRefused({"disparity", "none.png", "right.png", "-o", "d.png"}, "cannot read none.png: No such file");
  expectRefused({"evaluate", "disparity_gt.png", "none.png"}, "cannot read none.png: No such file");
}

TEST_F(BadInput, FolderInsteadOfFile) {
  expectRefused({"disparity", ".", "right.png", "-o", "d.png"}, "cannot read .:");
}

TEST_F(BadInput, DamagedPng) {
  const Bytes whole = readFile(folder.path("left.png"));
  for (const size_t size : {size_t{8}, size_t{20}, size_t{40}, whole.size() / 2, whole.size() - 13, whole.size() - 1})
    expectLeftRefused(whole.substr(0, size), "cannot use odd: it is damaged (it ends too early)");
  Bytes flipped = whole;
  flipped[whole.size() / 2] = static_cast<char>(flipped[whole.size() / 2] ^ 1);
  expectLeftRefused(flipped, "cannot use odd: it is damaged (");
}

// One bit of every byte, each of the eight in its turn.
TEST_F(BadInput, ADamagedBitIsNoticedWhereverItIs) {
  Picture small = picture(5, 5, 16, std::vector<uint16_t>(25, 800));
  small.text["nadir:scale"] = "16";
  writePng(folder.path("odd"), small);
  const Bytes whole = readFile(folder.path("odd"));
  ASSERT_EQ(folder.run({"evaluate", "odd", "odd"}).status, 0);
  ASSERT_NE(whole.find("nadir:scale"), Bytes::npos);
  for (size_t i = 0; i < whole.size(); ++i) {
    Bytes flipped = whole;
    flipped[i] = static_cast<char>(flipped[i] ^ (1 << i % 8));
    writeFile(folder.path("odd"), flipped);
    const Outcome outcome = folder.run({"evaluate", "odd", "odd"});
    EXPECT_EQ(outcome.status, 1) << "byte " << i;
    EXPECT_EQ(outcome.err.rfind("nadir: cannot use odd: it is ", 0), 0u) << i << ": " << outcome.err;
  }
}

TEST_F(BadInput, DamagedPgm) {
  const Bytes whole = pgm(picture(96, 64, 16, std::vector<uint16_t>(96 * 64, 100)));
  expectLeftRefused(whole.substr(0, whole.size() - 1), "it ends too early");
  expectLeftRefused("P5", "header");
  expectLeftRefused("P5\n# 96 64 255", "header");
  expectLeftRefused("P5 96 x 255\n", "header");
  expectLeftRefused("P5 0 64 255\n", "a size of 0");
  expectLeftRefused("P5 96 64 0\n", "a size of 0");
  expectLeftRefused("P5 1 1 100\n\xC8", "larger than the header's maximum");
  expectLeftRefused(Bytes("P5 2 1 4095\n\x0F\xFF\x10\x00", 16), "larger than the header's maximum");
}

TEST_F(BadInput, DamagedBmp) {
  const Bytes whole = bmp(picture(96, 64, 8, std::vector<uint16_t>(96 * 64, 100)));
  expectLeftRefused(whole.substr(0, whole.size() - 1), "it ends too early");
  expectLeftRefused(whole.substr(0, 10), "it is damaged");
  Bytes flat = whole;
  flat[22] = flat[23] = 0;  // the height
  expectLeftRefused(flat, "it is damaged");
  Bytes squeezed = whole;
  squeezed[30] = 1;  // run lengths
  expectLeftRefused(squeezed, "of a kind that is not read");
}

TEST_F(BadInput, DamagedJpeg) {
  const Bytes whole = jpeg(picture(96, 64, 8, std::vector<uint16_t>(96 * 64, 100)));
  for (const size_t size : {size_t{3}, size_t{20}, whole.size() / 2, whole.size() - 2, whole.size() - 1})
    expectLeftRefused(whole.substr(0, size),
                      "it is damaged or of a kind that is not read (Premature end of JPEG file)");
  Bytes flat = whole;
  const size_t frame = whole.find("\xFF\xC0");
  ASSERT_NE(frame, Bytes::npos);
  flat[frame + 5] = flat[frame + 6] = 0;  // the height
  expectLeftRefused(flat, "it is damaged");
  Bytes huge = whole;
  huge[frame + 5] = huge[frame + 7] = static_cast<char>(0xEA);
  expectLeftRefused(huge, "it is too large (");
}

TEST_F(BadInput, WrongKindOfFile) {
  const std::string none = "neither a PNG nor a binary PGM or PPM nor a JPEG nor a BMP picture";
  expectLeftRefused("", none);
  expectLeftRefused("GIF89a", none);
  expectLeftRefused("P2 1 1 255 7\n", none);
}

TEST_F(BadInput, SizesThatDiffer) {
  expectLeftRefused(pgm(picture(95, 64, 8, std::vector<uint16_t>(95 * 64, 100))),
                    "the pictures differ in size: odd is 95 x 64 pixels, right.png is 96 x 64");
  writeFile(folder.path("odd"), pgm(picture(8, 8, 16, std::vector<uint16_t>(64, 100))));
  expectRefused({"evaluate", "odd", "disparity_gt.png"}, "the disparity picture is 8 x 8 pixels, the truth 96 x 64");
}

TEST_F(BadInput, TooSmall) {
  writeFile(folder.path("odd"), pgm(picture(4, 9, 16, std::vector<uint16_t>(36, 100))));
  expectRefused({"disparity", "odd", "odd", "-o", "d.png"}, "too small: 4 x 9 pixels");
}

TEST_F(BadInput, TooLarge) {
  expectLeftRefused("P5 60000 60000 255\n", "it is too large (60000 x 60000 pixels)");
  expectLeftRefused("P5 99999 1 255\n", "a number of its header is too large");
}

TEST_F(BadInput, Mask) {
  writeFile(folder.path("odd"), pgm(picture(95, 64, 8, std::vector<uint16_t>(95 * 64, 0))));
  expectRefused({"disparity", "left.png", "right.png", "-o", "d.png", "--mask", "odd"},
                "the mask odd is 95 x 64 pixels, the disparity picture 96 x 64");
  expectRefused({"disparity", "left.png", "right.png", "-o", "d.png", "--mask", "left.png"},
                "the mask left.png is not an 8-bit grey picture");
}

TEST_F(BadInput, ScalingDownUntilNothingIsLeft) {
  expectRefused({"disparity", "left.png", "right.png", "-o", "d.png", "--scale-down", "16"},
                "pictures of 96 x 64 pixels cannot be scaled down by 16: at least 5 x 5 must be left");
}

TEST_F(BadInput, WrongKindOfDisparityPicture) {
  writeFile(folder.path("odd"), pgm(picture(96, 64, 8, std::vector<uint16_t>(96 * 64, 100))));
  expectRefused({"evaluate", "odd", "disparity_gt.png"}, "odd is not a 16-bit grey picture");
  Picture nonsense = picture(96, 64, 16, std::vector<uint16_t>(96 * 64, 100));
  nonsense.text["nadir:scale"] = "many";
  writePng(folder.path("odd"), nonsense);
  expectRefused({"preview", "odd", "-o", "p.png"}, "odd holds a text \"nadir:scale\" that is not a positive number");
}

TEST_F(BadInput, EmptyColourRange) {
  expectRefused({"preview", "disparity_gt.png", "-o", "p.png", "--range", "5", "5"}, "the range of colours must rise");
}

TEST_F(BadInput, UnwritableTarget) {
  expectRefused({"disparity", "left.png", "right.png", "-o", "none/d.png"}, "cannot write none/d.png: No such file");
  std::filesystem::create_symlink("/dev/null", folder.path("null.png"));
  expectRefused({"disparity", "left.png", "right.png", "-o", "null.png"}, "it is not a plain file");
  std::filesystem::create_directory(folder.path("taken.png"));
  expectRefused({"disparity", "left.png", "right.png", "-o", "taken.png"}, "it is not a plain file");
  expectRefused({"synth", "none/below"}, "cannot make the folder none/below");
  expectRefused({"synth", "left.png"}, "cannot make the folder left.png");
}

TEST_F(BadInput, CameraBelowTheHeads) {
  expectRefused({"synth", "fresh", "--scene", "people", "--height", "2000"}, "must be mounted at least 300 mm above");
}

TEST_F(BadInput, OneOfTwoTargetsUnwritable) {
  expectRefused({"disparity", "left.png", "right.png", "-o", "d.png", "--preview", "none/p.png"},
                "cannot write none/p.png: No such file");
  expectRefused({"disparity", "left.png", "right.png", "-o", "d.png", "--preview", "./d.png"}, "the same name");
}

TEST_F(BadInput, AnOutputThatIsAnInput) {
  std::filesystem::create_symlink("left.png", folder.path("link.png"));
  std::filesystem::create_directory(folder.path("result"));
  writeFile(folder.path("result/regions.png"), pgm(picture(96, 64, 8, std::vector<uint16_t>(96 * 64, 0))));
  writeFile(folder.path("c.yml"),
            "Q: [1, 0, 0, -48, 0, 1, 0, -32, 0, 0, 0, 90, 0, 0, 0.01, 0]\nimage_width: 96\nimage_height: 64\n");
  const std::pair<std::vector<std::string>, std::string> runs[] = {
      {{"disparity", "left.png", "right.png", "-o", "left.png"}, "left.png"},
      {{"disparity", "left.png", "right.png", "-o", "../" + rootName() + "/right.png"}, "right.png"},
      {{"disparity", "left.png", "right.png", "-o", "link.png"}, "left.png"},
      {{"disparity", "link.png", "right.png", "-o", "left.png"}, "left.png"},
      {{"disparity", "left.png", "right.png", "-o", "d.png", "--preview", "right.png"}, "right.png"},
      {{"check", "left.png", "right.png", "-o", "left.png"}, "left.png"},
      {{"preview", "disparity_gt.png", "-o", "disparity_gt.png"}, "disparity_gt.png"},
      {{"evaluate", "disparity_left_gt.png", "disparity_gt.png", "--error-map", "disparity_gt.png"},
       "disparity_gt.png"},
      {{"ground", "left.png", "right.png", "--camera", "camera.toml", "-o", "result", "--mask", "result/regions.png"},
       "result/regions.png"},
      {{"camera", "import", "c.yml", "--unit-mm", "1", "-o", "c.yml"}, "c.yml"}};
  for (const auto& [arguments, input] : runs) {
    const Bytes before = readFile(folder.path(input));
    expectRefused(arguments, "is one of the inputs");
    EXPECT_EQ(readFile(folder.path(input)), before) << input;
  }
}

TEST_F(BadInput, NamelessTargets) {
  expectRefused({"disparity", "left.png", "right.png", "-o", ""}, "the name of an output is empty");
  expectRefused({"ground", "left.png", "right.png", "--camera", "camera.toml", "-o", ""},
                "the name of the output folder is empty");
  expectRefused({"synth", ""}, "the name of the output folder is empty");
}

TEST_F(BadInput, FullDisk) {
  expectRefused({"disparity", "left.png", "right.png", "-o", "d.png"}, "cannot write d.", 100);
  expectRefused({"synth", "fresh"}, "cannot write fresh/left.png", 1000);
}

TEST_F(BadInput, AnOldResultSurvivesAFailure) {
  writeFile(folder.path("d.png"), "old");
  expectRefused({"disparity", "left.png", "right.png", "-o", "d.png", "--preview", "none/p.png"}, "cannot write");
  EXPECT_EQ(readFile(folder.path("d.png")), "old");
}

TEST_F(BadInput, FullStandardOutput) {
  const auto before = folder.names();
  const Outcome outcome = folder.run({"disparity", "left.png", "right.png", "-o", "d.png"}, 1);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(folder.names(), before);
}

TEST_F(BadInput, WrongUsage) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{},
        {"disparity"},
        {"disparity", "left.png", "right.png"},
        {"teleport"},
        {"disparity", "left.png", "right.png", "-o", "d.png", "--grid", "top"},
        {"disparity", "left.png", "right.png", "-o", "d.png", "--uniqueness", "129"},
        {"disparity", "left.png", "right.png", "-o", "d.png", "--preview", "p.png", "--no-preview"},
        {"evaluate", "disparity_gt.png", "disparity_gt.png", "--truth-scale", "0"},
        {"synth", "fresh", "--size", "10x64"},
        {"synth", "fresh", "--size", "640"},
        {"synth", "fresh", "--size", "64x64x64"},
        {"synth", "fresh", "--scene", "moon"},
        {"synth", "fresh", "--tilt", "-80"},
        {"synth", "fresh", "--tilt", "nan"},
        {"ground", "left.png", "right.png", "--camera", "camera.toml", "-o", "fresh", "--min-height", "nan"},
        {"ground", "left.png", "right.png", "--camera", "camera.toml", "-o", "fresh", "--max-step", "-1"},
        {"ground", "left.png", "right.png", "--camera", "camera.toml", "-o", "fresh", "--min-area", "large"},
        {"ground", "left.png", "right.png", "--camera", "camera.toml", "-o", "fresh", "--fill-holes", "-0.1"},
        {"ground", "left.png", "right.png", "--camera", "camera.toml", "-o", "fresh", "--no-regions", "--max-step",
         "9"},
        {"ground", "left.png", "right.png", "--camera", "camera.toml", "-o", "fresh", "--areas"}}) {
    const auto before = folder.names();
    const Outcome outcome = folder.run(arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err.rfind("nadir: ", 0), 0u) << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_EQ(folder.names(), before);
  }
}

}  // namespace
}  // namespace nadir::test
