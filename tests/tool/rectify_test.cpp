// Tests of nadir rectify, and of rectifying on the way: pictures with the pixels that they must have, and a real pair.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>

#include "tests/tool/schema.hpp"
#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

namespace fs = std::filesystem;

// The rectified principal points lie 2 columns right and 1 row below the lenses': a pixel comes from there.
const char* const moved =
    "%YAML:1.0\n"
    "M1: { data: [ 40., 0., 20., 0., 40., 15., 0., 0., 1. ] }\n"
    "D1: { data: [ 0., 0., 0., 0. ] }\n"
    "M2: { data: [ 40., 0., 20., 0., 40., 15., 0., 0., 1. ] }\n"
    "D2: { data: [ 0., 0., 0., 0. ] }\n"
    "R1: { data: [ 1., 0., 0., 0., 1., 0., 0., 0., 1. ] }\n"
    "R2: { data: [ 1., 0., 0., 0., 1., 0., 0., 0., 1. ] }\n"
    "P1: { data: [ 40., 0., 22., 0., 0., 40., 16., 0., 0., 0., 1., 0. ] }\n"
    "P2: { data: [ 40., 0., 22., -4800., 0., 40., 16., 0., 0., 0., 1., 0. ] }\n";

Picture ramp(uint32_t bits) {
  std::vector<uint16_t> samples;
  for (uint32_t y = 0; y < 30; ++y)
    for (uint32_t x = 0; x < 40; ++x) samples.push_back(static_cast<uint16_t>(x == 10 && y == 10 ? 0 : 5 * x + y + 1));
  return picture(40, 30, bits, samples);
}

class Rectify : public testing::Test {
 protected:
  void make(uint32_t bits) {
    writePng(folder.path("l.png"), ramp(bits));
    writePng(folder.path("r.png"), ramp(bits));
    writeFile(folder.path("c.yml"), moved);
  }

  Outcome rectify(std::vector<std::string> options) {
    options.insert(options.begin(), {"rectify", "l.png", "r.png", "--calibration", "c.yml", "-o", "out"});
    return folder.run(options);
  }

  void expectMoved(uint32_t bits) {
    for (const char* name : {"out/left.png", "out/right.png"}) {
      const Picture view = readPng(folder.path(name));
      ASSERT_EQ(view.width, 40u);
      ASSERT_EQ(view.height, 30u);
      EXPECT_EQ(view.bits, bits);
      for (uint32_t y = 0; y < 30; ++y)
        for (uint32_t x = 0; x < 40; ++x) {
          const bool seen = x >= 2 && y >= 1 && !(x == 12 && y == 11);
          const uint16_t black = bits == 8 && x == 12 && y == 11;  // with 8 bits it is a measurement
          ASSERT_EQ(view.at(x, y), seen ? ramp(bits).at(x - 2, y - 1) : black) << name << " " << x << " " << y;
        }
    }
  }

  Folder folder;
};

TEST_F(Rectify, PixelsComeFromWhereTheCalibrationSaysInTheirDepth) {
  for (const uint32_t bits : {8u, 16u}) {
    make(bits);
    const Outcome outcome = rectify({"--unit-mm", "1", "--height-mm", "1200", "--tilt-deg", "-35"});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    expectMoved(bits);
  }
}

TEST_F(Rectify, TheCameraFileIsComplete) {
  make(16);
  ASSERT_EQ(rectify({"--unit-mm", "1", "--height-mm", "1200", "--tilt-deg", "-35"}).status, 0);
  const std::string text = "\n" + readFile(folder.path("out/camera.toml"));
  EXPECT_EQ(numberAfter(text, "\nbaseline_mm ="), 120);
  EXPECT_EQ(numberAfter(text, "\nprincipal_x_px ="), 22);
  EXPECT_EQ(numberAfter(text, "\nwidth_px ="), 40);
  EXPECT_EQ(folder.run({"ground", "a.png", "b.png", "--camera", "out/camera.toml", "-o", "g"}).err,
            "nadir: cannot read a.png: No such file or directory\n");
}

TEST_F(Rectify, SaysWhatIsMissing) {
  make(16);
  const Outcome outcome = rectify({});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  for (const char* text :
       {"  baseline_mm: ", "  height_mm: ", "  tilt_deg: ", "--unit-mm (1 for mm, 1000 for m)",
        "without data: 8.2 % of the left picture", "wrote left.png, right.png and camera.toml in out"})
    EXPECT_NE(outcome.out.find(text), std::string::npos) << text << " is not in\n" << outcome.out;
}

TEST_F(Rectify, KeepsACameraFileThatWasEditedAndThenWritesNothing) {
  make(16);
  ASSERT_EQ(rectify({"--unit-mm", "1"}).status, 0);
  ASSERT_EQ(rectify({"--unit-mm", "1"}).status, 0);
  const std::string pixels = readFile(folder.path("out/left.png"));
  writeFile(folder.path("out/camera.toml"), readFile(folder.path("out/camera.toml")) + "# mine\n");
  make(8);
  const Outcome outcome = rectify({"--unit-mm", "1"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("out/camera.toml is there and was edited"), std::string::npos) << outcome.err;
  EXPECT_EQ(readFile(folder.path("out/left.png")), pixels);
  EXPECT_EQ(rectify({"--unit-mm", "1", "--force"}).status, 0);
}

TEST_F(Rectify, RefusesPicturesOfOtherSizes) {
  make(16);
  writePng(folder.path("r.png"), picture(40, 29, 16, std::vector<uint16_t>(40 * 29, 9)));
  EXPECT_EQ(rectify({}).err,
            "nadir: the pictures differ: l.png is 40 x 30 pixels of 16 bits, r.png is 40 x 29 of 16\n");
  make(16);
  writeFile(folder.path("c.yml"), std::string(moved) + "image_size: [ 41, 30 ]\n");
  EXPECT_EQ(rectify({}).err,
            "nadir: the pictures are 40 x 30 pixels, but the cameras of c.yml take pictures of 41 x 30\n");
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"c.yml", "l.png", "r.png"}));
}

TEST_F(Rectify, NeverReplacesItsInputs) {
  make(16);
  ASSERT_EQ(rectify({}).status, 0);
  const std::string before = readFile(folder.path("out/left.png"));
  const Outcome outcome =
      folder.run({"rectify", "out/left.png", "out/right.png", "--calibration", "c.yml", "-o", "out"});
  EXPECT_EQ(outcome.status, 1) << outcome.err;
  EXPECT_EQ(readFile(folder.path("out/left.png")), before);
}

TEST_F(Rectify, OnTheWayIsTheSameAsBefore) {
  make(16);
  ASSERT_EQ(rectify({"--unit-mm", "1", "--height-mm", "1200", "--tilt-deg", "-35"}).status, 0);
  ASSERT_EQ(folder.run({"disparity", "out/left.png", "out/right.png", "-o", "a.png", "--no-preview"}).status, 0);
  ASSERT_EQ(folder.run({"disparity", "l.png", "r.png", "--calibration", "c.yml", "-o", "b.png", "--no-preview"}).status,
            0);
  EXPECT_EQ(readFile(folder.path("a.png")), readFile(folder.path("b.png")));
  const Outcome first =
      folder.run({"ground", "out/left.png", "out/right.png", "--camera", "out/camera.toml", "-o", "g"});
  ASSERT_EQ(first.status, 0) << first.err;
  const Outcome second = folder.run({"ground", "l.png", "r.png", "--camera", "out/camera.toml", "--calibration",
                                     "c.yml", "--write", "all", "-o", "h"});
  ASSERT_EQ(second.status, 0) << second.err;
  for (const char* name : {"elevation.png", "disparity.png", "regions.png"})
    EXPECT_EQ(readFile(folder.path(std::string("g/") + name)), readFile(folder.path(std::string("h/") + name))) << name;
}

TEST_F(Rectify, ACameraFileThatDisagreesIsNamed) {
  make(16);
  ASSERT_EQ(rectify({"--unit-mm", "1", "--height-mm", "1200", "--tilt-deg", "-35"}).status, 0);
  const std::string text = readFile(folder.path("out/camera.toml"));
  const auto refused = [&](const std::string& from, const std::string& to) {
    std::string other = text;
    writeFile(folder.path("other.toml"), other.replace(other.find(from), from.size(), to));
    return folder
        .run({"ground", "l.png", "r.png", "--camera", "other.toml", "--calibration", "c.yml", "--unit-mm", "1", "-o",
              "g"})
        .err;
  };
  EXPECT_EQ(refused("focal_px = 40 ", "focal_px = 41 "),
            "nadir: other.toml:3: focal_px: is 41, but the calibration c.yml says 40; nadir camera import makes the "
            "camera file that fits it\n");
  EXPECT_NE(refused("baseline_mm = 120", "baseline_mm = 125").find("other.toml:2: baseline_mm: is 125, but"),
            std::string::npos);
  EXPECT_NE(refused("principal_y_px = 16", "principal_y_px = 17").find("other.toml:5: principal_y_px: is 17, but"),
            std::string::npos);
}

TEST_F(Rectify, ACameraFileWithLensesRectifiesByItself) {
  make(16);
  ASSERT_EQ(rectify({"--unit-mm", "1", "--height-mm", "1200", "--tilt-deg", "-35"}).status, 0);
  const std::string lens =
      "model = \"none\"\nfocal_x_px = 40\nfocal_y_px = 40\nprincipal_x_px = 20\nprincipal_y_px = 15\n";
  writeFile(folder.path("with.toml"), readFile(folder.path("out/camera.toml")) + "[left_lens]\n" + lens +
                                          "[right_lens]\n" + lens +
                                          "[pose]\nrotation = [1, 0, 0, 0, 1, 0, 0, 0, 1]\ntranslation_mm = [-120, 0, "
                                          "0]\n");
  const Outcome outcome =
      folder.run({"ground", "l.png", "r.png", "--camera", "with.toml", "--write", "disparity", "-o", "g"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  ASSERT_EQ(folder
                .run({"disparity", "out/left.png", "out/right.png", "-o", "a.png", "--no-preview", "--check", "both",
                      "--refine", "surface"})
                .status,
            0);
  EXPECT_EQ(readPng(folder.path("g/disparity.png")).samples, readPng(folder.path("a.png")).samples);
}

TEST_F(Rectify, SequencesAreRectifiedFrameByFrameAndResumedWithTheSameCalibration) {
  make(16);
  ASSERT_EQ(rectify({"--unit-mm", "1", "--height-mm", "1200", "--tilt-deg", "-35"}).status, 0);
  for (const char* frame : {"1", "2"}) {
    writePng(folder.path(std::string("l") + frame + ".png"), ramp(16));
    writePng(folder.path(std::string("r") + frame + ".png"), ramp(16));
  }
  const auto run = [this](std::vector<std::string> options) {
    options.insert(options.begin(), {"ground", "l%d.png", "r%d.png", "--camera", "out/camera.toml", "-o", "s"});
    return folder.run(options);
  };
  const Outcome outcome = run({"--calibration", "c.yml"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  ASSERT_EQ(folder.run({"ground", "out/left.png", "out/right.png", "--camera", "out/camera.toml", "-o", "g"}).status,
            0);
  EXPECT_EQ(readPng(folder.path("s/elevation/l2.png")).samples, readPng(folder.path("g/elevation.png")).samples);
  EXPECT_NE(run({"--resume"}).err.find("calibration is"), std::string::npos);
  EXPECT_EQ(run({"--calibration", "c.yml", "--resume"}).status, 0);
}

// Where the rectified picture shows nothing, the matcher is to know: in 8 bits 0 is black unless a file says otherwise.
TEST_F(Rectify, WhatHasNoDataIn8BitsIsNoneForOtherCommands) {
  make(8);
  ASSERT_EQ(rectify({}).status, 0);
  EXPECT_EQ(readPng(folder.path("out/left.png")).text.at("nadir:no-value"), "0");
  ASSERT_EQ(rectify({}).status, 0);
  ASSERT_EQ(folder.run({"rectify", "out/left.png", "out/right.png", "--calibration", "c.yml", "-o", "twice"}).status,
            0);
  const Picture once = readPng(folder.path("out/left.png")), twice = readPng(folder.path("twice/left.png"));
  EXPECT_EQ(once.at(3, 0), 0);
  EXPECT_EQ(twice.at(5, 1), 0) << "moved, and not black";
  EXPECT_EQ(twice.at(10, 5), once.at(8, 4));
}

TEST_F(Rectify, FoldersGlobsAndPatternsAreRectifiedFrameByFrame) {
  make(16);
  ASSERT_EQ(rectify({"--unit-mm", "1", "--height-mm", "1200", "--tilt-deg", "-35"}).status, 0);
  for (const char* camera : {"cam0", "cam1"}) {
    fs::create_directory(folder.path(camera));
    for (const char* frame : {"1", "2"}) writePng(folder.path(std::string(camera) + "/f" + frame + ".png"), ramp(16));
  }
  const auto run = [this](const std::string& left, const std::string& right, const std::string& out) {
    return folder.run({"rectify", left, right, "--calibration", "c.yml", "-o", out}).status;
  };
  ASSERT_EQ(run("cam0", "cam1", "a"), 0);
  ASSERT_EQ(run("cam0/*.png", "cam1/*.png", "b"), 0);
  ASSERT_EQ(run("cam0/f%d.png", "cam1/f%d.png", "c"), 0);
  const Bytes expected = readFile(folder.path("out/left.png"));
  for (const char* frame : {"a/left/f1.png", "a/right/f2.png", "b/left/f2.png", "b/right/f1.png", "c/left/f1.png"})
    EXPECT_EQ(readFile(folder.path(frame)), expected) << frame;
  EXPECT_EQ(folder.run({"ground", "a", "--camera", "out/camera.toml", "-o", "g"}).status, 0) << "takes what was made";
}

TEST_F(Rectify, FramesAreNamedSoThatTheirNumbersAreFoundAgain) {
  make(16);
  for (const char* side : {"left", "right"}) writePng(folder.path(std::string("shot_07_") + side + ".png"), ramp(16));
  ASSERT_EQ(folder.run({"rectify", "shot_*_left.png", "shot_*_right.png", "--calibration", "c.yml", "-o", "o"}).status,
            0);
  EXPECT_EQ(readPng(folder.path("o/left/7.png")).samples, readPng(folder.path("o/right/7.png")).samples);
}

TEST_F(Rectify, PicturesSideBySide) {
  make(16);
  ASSERT_EQ(rectify({}).status, 0);
  Picture both = picture(80, 30, 16, {});
  for (uint32_t y = 0; y < 30; ++y)
    for (uint32_t x = 0; x < 80; ++x) both.samples.push_back(ramp(16).at(x % 40, y));
  writePng(folder.path("both.png"), both);
  ASSERT_EQ(folder.run({"rectify", "both.png", "--side-by-side", "--calibration", "c.yml", "-o", "o"}).status, 0);
  for (const char* name : {"/left.png", "/right.png"})
    EXPECT_EQ(readFile(folder.path(std::string("o") + name)), readFile(folder.path(std::string("out") + name)));
  EXPECT_EQ(folder.run({"rectify", "both.png", "--calibration", "c.yml", "-o", "o"}).err,
            "nadir: a right picture is needed beside both.png, or --side-by-side where it holds both\n");
}

TEST_F(Rectify, AFirstFrameThatCannotBeUsedIsNamedAndLeftOut) {
  make(16);
  for (const char* camera : {"cam0", "cam1"}) {
    fs::create_directory(folder.path(camera));
    for (const char* frame : {"1", "2"}) writePng(folder.path(std::string(camera) + "/f" + frame + ".png"), ramp(16));
  }
  writeFile(folder.path("cam1/f1.png"), "no picture");
  const Outcome outcome = folder.run({"rectify", "cam0", "cam1", "--calibration", "c.yml", "-o", "o"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_NE(outcome.err.find("frame cam0/f1.png is skipped: cannot use cam1/f1.png"), std::string::npos) << outcome.err;
  EXPECT_NE(outcome.err.find("1 of 2 frames were skipped\n"), std::string::npos) << outcome.err;
  EXPECT_TRUE(fs::exists(folder.path("o/left/f2.png")));
  EXPECT_FALSE(fs::exists(folder.path("o/left/f1.png")));
}

TEST_F(Rectify, ItsJsonAndThatOfAnImportFitTheSchema) {
  make(16);
  const Json pair = parseJson(rectify({"--json"}).out);
  const Json file =
      parseJson(folder.run({"camera", "import", "c.yml", "--unit-mm", "1", "--json", "-o", "c.toml"}).out);
  Json more = extended(pair);
  more["taken_from"].erase("surprise");  // its members are words
  for (const std::string& mistake : mistakes(NADIR_IMPORT_SCHEMA, {pair, file, more})) EXPECT_EQ(mistake, "");
  EXPECT_NEAR(pair["left_without_data_share"], 0.0825, 0.001);
  EXPECT_EQ(pair["pairs"], 1);
  EXPECT_EQ(pair["missing"], (Json{"baseline_mm", "height_mm", "tilt_deg"}));
  EXPECT_EQ(file["taken"]["baseline_mm"], 120);
  EXPECT_EQ(file["camera_file"], "c.toml");
  Json good = pair;
  for (const char* optional : {"pairs", "skipped", "left_without_data_share", "right_without_data_share"})
    good.erase(optional);
  good["taken"] = good["taken_from"] = Json::object();
  expectMisfits(NADIR_IMPORT_SCHEMA, spoilt(good));
}

// ---- a real pair with lenses ----

class RawPair : public testing::Test {
 protected:
  void SetUp() override {
    const char* data = std::getenv("NADIR_DATA");
    if (!data) GTEST_SKIP() << "NADIR_DATA names no folder with pairs";
    rectified = std::string(data) + "/motorcycle-floor/";
    const std::string raw = std::string(data) + "/motorcycle-floor-raw/";
    const Outcome outcome =
        folder.run({"rectify", raw + "left_raw.png", raw + "right_raw.png", "--calibration", raw + "intrinsics.yml",
                    raw + "extrinsics.yml", "--unit-mm", "1", "--height-mm", "1064.6", "--tilt-deg", "-75.44",
                    "--cell-mm", "25", "--offset-y-mm", "300", "-o", "out"});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
  }

  double bad1(const std::string& pair) {
    folder.run({"disparity", pair + "left.png", pair + "right.png", "-o", "d.png", "--no-preview"});
    return numberAfter(folder.run({"evaluate", "d.png", rectified + "disparity_gt.png", "--visible", "left"}).out,
                       "bad-1");
  }

  struct Floor {
    double heightMm, tiltDeg;
  };
  Floor floorOf(const std::string& pair) {
    folder.run({"ground", pair + "left.png", pair + "right.png", "--camera", "out/camera.toml", "-o", "g"});
    const std::string text = readFile(folder.path("g/summary.json"));
    const std::string plane = text.substr(text.find("\"ground_plane\""));
    return {numberAfter(plane, "\"height_mm\":"), numberAfter(plane, "\"tilt_deg\":")};
  }

  Folder folder;
  std::string rectified;
};

TEST_F(RawPair, HasTheFloorOfTheRectifiedPair) {
  const Floor ours = floorOf("out/"), given = floorOf(rectified);
  EXPECT_NEAR(ours.heightMm, given.heightMm, 2);
  EXPECT_NEAR(ours.tiltDeg, given.tiltDeg, 0.05);
}

// Resampled twice, pictures lose detail: OpenCV's remap loses as much of this pair.
TEST_F(RawPair, IsMatchedNearlyAsWell) { EXPECT_NEAR(bad1("out/"), bad1(rectified), 1); }

}  // namespace
}  // namespace nadir::test
