// nadir ground over sequences: what comes out, and what a damaged frame does.
#include <gtest/gtest.h>
#include <nadir/nadir.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "tests/tool/ground_sequence.hpp"

namespace nadir::test {
namespace {

namespace fs = std::filesystem;

TEST_F(GroundSequence, ALineAndTwoMapsAFrame) {
  const Outcome outcome = ground("r");
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  const std::vector<Json> all = lines("r");
  ASSERT_EQ(all.size(), size_t{frames});
  for (int frame = 0; frame < frames; ++frame) {
    const Json& line = all[static_cast<size_t>(frame)];
    EXPECT_EQ(line["frame"], frame);
    EXPECT_EQ(line["name"], number(frame));
    EXPECT_DOUBLE_EQ(line["time_s"], frame / 10.0);
    EXPECT_EQ(map("r", "elevation", frame).width, 128u);
    EXPECT_EQ(map("r", "average", frame).text.at("nadir:units"), "mm");
  }
  EXPECT_NE(outcome.out.find("frames   6  of 6"), std::string::npos) << outcome.out;
}

TEST_F(GroundSequence, WhereAllIsWellNothingIsWarnedOf) {
  EXPECT_EQ(ground("r", {"--strict"}).status, 0);
  for (const Json& line : lines("r")) EXPECT_EQ(line["warnings"], Json::array());
  ground("loose");
  expectSame("loose", "r");
}

TEST_F(GroundSequence, AFrameIsWhatThePairGives) {
  ground("r");
  ASSERT_EQ(folder
                .run({"ground", "s/left/000004.png", "s/right/000004.png", "--camera", "s/camera.toml", "--areas",
                      "a.toml", "-o", "pair"})
                .status,
            0);
  const Json pair = readJson(folder.path("pair/summary.json")), line = lines("r")[4];
  EXPECT_EQ(line["regions"], pair["regions"]);
  EXPECT_EQ(line["areas"][0]["highest_mm"], pair["areas"][0]["highest_mm"]);
  EXPECT_EQ(line["areas"][0]["covered_cells"], pair["areas"][0]["covered_cells"]);
  EXPECT_EQ(map("r", "elevation", 4).samples, readPng(folder.path("pair/elevation.png")).samples);
}

TEST_F(GroundSequence, ThreadsDoNotMatter) {
  ground("one", {"--threads", "1"});
  ground("many", {"--threads", "5"});
  expectSame("one", "many");
}

TEST_F(GroundSequence, PatternsNameTheSameFrames) {
  ground("folder");
  std::vector<std::string> other = arguments("pattern");
  other[1] = "s/left/%06d.png";
  other.insert(other.begin() + 2, "s/right/%06d.png");
  ASSERT_EQ(folder.run(other).status, 0);
  EXPECT_EQ(readFile(folder.path("folder/frames.jsonl")), readFile(folder.path("pattern/frames.jsonl")));
}

// What two recordings of the frames are named, and how a run names them.
struct Recording {
  std::string leftFolder, leftName, rightFolder, rightName, left, right;  // a name's # stands for the number
};

const Recording recordings[] = {
    {"cam0", "#.png", "cam1", "#.png", "cam0", "cam1"},
    {"a", "left_#.png", "b", "r#.png", "a", "b"},
    {"g", "#.png", "h", "#.png", "g/*.png", "h/0*[0-9].png"},
    {"shots", "#_left.png", "shots", "#_right.png", "shots/*_left.png", "shots/*_right.png"},
    {"m", "#.png", "n", "x#.png", "m", "n/x%06d.png"},
};

std::string named(std::string name, int frame) { return name.replace(name.find('#'), 1, number(frame)); }

TEST_F(GroundSequence, TwoFoldersGlobsAndPatternsNameTheSameFrames) {
  ground("whole", {"--write", "none"});
  const auto heightsOf = [this](const std::string& output) {
    std::vector<Json> all = lines(output);
    for (Json& line : all) line["name"] = "";
    return all;
  };
  for (const Recording& r : recordings) {
    for (const std::string& made : {r.leftFolder, r.rightFolder}) fs::create_directory(folder.path(made));
    for (int frame = 0; frame < frames; ++frame) {
      const std::string digits = number(frame) + ".png";
      fs::create_symlink("../s/left/" + digits, folder.path(r.leftFolder + "/" + named(r.leftName, frame)));
      fs::create_symlink("../s/right/" + digits, folder.path(r.rightFolder + "/" + named(r.rightName, frame)));
    }
    writeFile(folder.path(r.leftFolder + "/notes.txt"), "");
    const std::string output = "of-" + r.leftFolder;
    std::vector<std::string> other = arguments(output, {"--write", "none"});
    other[1] = r.left;
    other.insert(other.begin() + 2, r.right);
    const Outcome outcome = folder.run(other);
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(heightsOf(output), heightsOf("whole")) << r.left;
  }
}

// Both pictures of a frame in one, left | right.
Picture sideBySide(const Picture& left, const Picture& right) {
  Picture both = picture(2 * left.width, left.height, left.bits, {});
  for (uint32_t y = 0; y < left.height; ++y)
    for (const Picture* side : {&left, &right})
      for (uint32_t x = 0; x < left.width; ++x) both.samples.push_back(side->at(x, y));
  return both;
}

TEST_F(GroundSequence, SideBySidePicturesAreTheSameFrames) {
  fs::create_directory(folder.path("both"));
  for (int frame = 0; frame < frames; ++frame) {
    const std::string file = number(frame) + ".png";
    writePng(folder.path("both/" + file),
             sideBySide(readPng(folder.path("s/left/" + file)), readPng(folder.path("s/right/" + file))));
  }
  ground("two");
  for (const std::string both : {"both", "both/*.png", "both/%06d.png"}) {
    std::vector<std::string> one = arguments("one", {"--side-by-side"});
    one[1] = both;
    ASSERT_EQ(folder.run(one).status, 0);
    EXPECT_EQ(readFile(folder.path("one/frames.jsonl")), readFile(folder.path("two/frames.jsonl")));
    EXPECT_EQ(map("one", "average", 5).samples, map("two", "average", 5).samples);
    fs::remove_all(folder.path("one"));
  }
  const auto pair = [this](std::vector<std::string> pictures, const std::string& output) {
    pictures.insert(pictures.begin(), "ground");
    pictures.insert(pictures.end(), {"--camera", "s/camera.toml", "-o", output});
    EXPECT_EQ(folder.run(pictures).status, 0);
    return readPng(folder.path(output + "/elevation.png")).samples;
  };
  EXPECT_EQ(pair({"both/000003.png", "--side-by-side"}, "p"), pair({"s/left/000003.png", "s/right/000003.png"}, "q"));
}

TEST_F(GroundSequence, ResumeNoticesOtherPictures) {
  fs::create_directory_symlink("s/left", folder.path("cam0"));
  fs::create_directory_symlink("s/right", folder.path("cam1"));
  const auto resumed = [this](std::vector<std::string> pictures) {
    pictures.insert(pictures.begin(), "ground");
    pictures.insert(pictures.end(), {"--camera", "s/camera.toml", "-o", "r", "--resume", "--write", "none"});
    return folder.run(pictures);
  };
  EXPECT_EQ(resumed({"cam0", "cam1"}).status, 0);
  EXPECT_EQ(resumed({"s"}).status, 0);
  EXPECT_EQ(resumed({"s/left/*.png", "cam1/%06d.png"}).status, 0);
  EXPECT_NE(resumed({"cam1", "cam0"}).err.find("tells of other settings: first_left is "), std::string::npos);
  EXPECT_NE(resumed({"cam0", "cam0"}).err.find("tells of other settings: first_right is "), std::string::npos);
  EXPECT_NE(resumed({"cam0/00000[1-9].png", "cam1"}).err.find("tells of other settings: first_left is "),
            std::string::npos);
}

TEST_F(GroundSequence, TimeFollowsTheNumbers) {
  for (const std::string side : {"s/left/", "s/right/"}) {
    fs::rename(folder.path(side + number(5) + ".png"), folder.path(side + number(25) + ".png"));
    fs::remove(folder.path(side + number(0) + ".png"));
  }
  ground("r", {"--fps", "20"});
  const std::vector<Json> all = lines("r");
  ASSERT_EQ(all.size(), 5u);
  EXPECT_EQ(all[0]["frame"], 1);
  EXPECT_EQ(all[0]["time_s"], 0);
  EXPECT_EQ(all[4]["frame"], 25);
  EXPECT_DOUBLE_EQ(all[4]["time_s"], 1.2);
}
TEST_F(GroundSequence, NumbersHave64Bits) {
  const std::string clock = "1732199999000000000", largest = "18446744073709551615";
  for (const std::string side : {"s/left/", "s/right/"}) {
    fs::rename(folder.path(side + number(0) + ".png"), folder.path(side + clock + ".png"));
    fs::rename(folder.path(side + number(1) + ".png"), folder.path(side + largest + ".png"));
  }
  EXPECT_EQ(ground("r").status, 0);
  const std::vector<Json> all = lines("r");
  ASSERT_EQ(all.size(), size_t{frames});
  EXPECT_EQ(all[4]["frame"], std::stoull(clock));
  EXPECT_EQ(all[5]["frame"], std::stoull(largest));
  EXPECT_EQ(ground("r", {"--resume"}).status, 0);
}

TEST_F(GroundSequence, PicturesWithoutANumberAreNoFrames) {
  ground("whole");
  fs::copy_file(folder.path("s/left/000002.png"), folder.path("s/left/notes.png"));
  EXPECT_EQ(ground("r").status, 0);
  expectSame("whole", "r");
}

TEST_F(GroundSequence, FilesThatAreNoPicturesAreNoFrames) {
  ground("whole");
  for (const std::string side : {"left", "right"}) writeFile(folder.path("s/" + side + "/000009.txt"), "notes");
  EXPECT_EQ(ground("r").status, 0);
  expectSame("whole", "r");
}

TEST_F(GroundSequence, AFileWithAPercentSignIsAFile) {
  fs::copy_file(folder.path("s/left/000002.png"), folder.path("100%d.png"));
  const Outcome outcome =
      folder.run({"ground", "100%d.png", "s/right/000002.png", "--camera", "s/camera.toml", "-o", "r"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_TRUE(fs::exists(folder.path("r/summary.json")));
}

TEST_F(GroundSequence, AverageIsTheMeanOfTheLastMaps) {
  ground("r");
  std::vector<Picture> maps;
  for (int frame = 0; frame < frames; ++frame) maps.push_back(map("r", "elevation", frame));
  for (const int frame : {0, 1, 5}) {
    const Picture average = map("r", "average", frame);
    const int first = std::max(0, frame - 2), count = frame - first + 1;
    for (size_t i = 0; i < average.samples.size(); ++i) {
      int sum = 0, seen = 0;
      for (int k = first; k <= frame; ++k) {
        const uint16_t height = maps[static_cast<size_t>(k)].samples[i];
        sum += height;
        seen += height != 0;
      }
      ASSERT_EQ(average.samples[i], 2 * seen > count ? sum / seen : 0) << frame << ' ' << i;
    }
  }
}

TEST_F(GroundSequence, TrackedHeightIsTheFiltersOfTheHighestCells) {
  ground("r", {"--track-noise", "20"});
  Kalman1d filter;
  bool begun = false;
  for (const Json& line : lines("r")) {
    const Json& left = line["areas"][0];
    ASSERT_TRUE(left["highest_mm"].is_number());
    if (begun) {
      IP_Kalman1d_Predict(&filter, 0.1f);
      IP_Kalman1d_Update(&filter, left["highest_mm"]);
    } else {
      IP_Kalman1d_Create(&filter, left["highest_mm"], 0, 20, 300, 1500);
    }
    begun = true;
    EXPECT_NEAR(left["tracked_mm"], filter.x, 0.06);
    EXPECT_NEAR(left["tracked_mm_per_s"], filter.v, 0.06);
    EXPECT_DOUBLE_EQ(left["tracked_mm"], std::round(10 * double{left["tracked_mm"]}) / 10);
    EXPECT_TRUE(line["areas"][1]["tracked_mm"].is_null());
    EXPECT_EQ(line["areas"][1]["covered_cells"], 0);
  }
}

TEST_F(GroundSequence, ATrackEndsWhenNothingIsMeasuredForHalfASecond) {
  writePng(folder.path("grey.png"), picture(160, 120, 16, std::vector<uint16_t>(160 * 120, 900)));
  for (const std::string side : {"s/left/", "s/right/"})
    for (int frame = 2; frame < 10; ++frame)
      fs::copy_file(folder.path("grey.png"), folder.path(side + number(frame) + ".png"),
                    fs::copy_options::overwrite_existing);
  ground("r");
  const std::vector<Json> all = lines("r");
  ASSERT_EQ(all.size(), 10u);
  for (size_t frame = 0; frame < 10; ++frame)
    EXPECT_EQ(all[frame]["areas"][0]["tracked_mm"].is_null(), frame > 6) << frame;
  EXPECT_GT(all[6]["areas"][0]["tracked_deviation_mm"], all[2]["areas"][0]["tracked_deviation_mm"]);
}

// ---- damage ----

TEST_F(GroundSequence, DamagedFramesAreNamedCountedAndSkipped) {
  ground("whole");
  damage("s/left/000002.png");
  writeFile(folder.path("s/right/000004.png"), "");
  const Outcome outcome = ground("r");
  EXPECT_EQ(outcome.status, 3);
  EXPECT_NE(outcome.err.find("frame 000002 is skipped: cannot use s/left/000002.png"), std::string::npos)
      << outcome.err;
  EXPECT_NE(outcome.err.find("frame 000004 is skipped: cannot use s/right/000004.png"), std::string::npos);
  EXPECT_NE(outcome.err.find("2 of 6 frames were skipped"), std::string::npos);
  const std::vector<Json> whole = lines("whole"), all = lines("r");
  ASSERT_EQ(all.size(), 6u);
  for (const size_t frame : {0u, 1u, 3u, 5u}) EXPECT_EQ(all[frame]["regions"], whole[frame]["regions"]) << frame;
  for (const size_t frame : {2u, 4u}) {
    EXPECT_TRUE(all[frame]["error"].is_string());
    EXPECT_EQ(all[frame]["warnings"], Json::array());
    EXPECT_FALSE(fs::exists(folder.path("r/elevation/" + number(static_cast<int>(frame)) + ".png")));
  }
}

TEST_F(GroundSequence, APictureOfAnotherSizeIsADamagedFrame) {
  writePng(folder.path("s/left/000001.png"), picture(60, 60, 16, std::vector<uint16_t>(3600, 7)));
  const Outcome outcome = ground("r");
  EXPECT_EQ(outcome.status, 3);
  EXPECT_NE(lines("r")[1]["error"].get<std::string>().find("differ in size"), std::string::npos);
}

TEST_F(GroundSequence, APairOfAnotherSizeIsADamagedFrame) {
  for (const char* file : {"s/left/000001.png", "s/right/000001.png"})
    writePng(folder.path(file), picture(60, 60, 16, std::vector<uint16_t>(3600, 7)));
  EXPECT_EQ(ground("r").status, 3);
  EXPECT_EQ(lines("r")[1]["error"],
            "the pictures are 60 x 60 pixels, but the camera of s/camera.toml takes pictures of 160 x 120");
  EXPECT_FALSE(lines("r")[2].contains("error"));
}

TEST_F(GroundSequence, ACameraOfAnotherSizeIsRefusedAtOnce) {
  ASSERT_EQ(folder.run({"synth", "other", "--size", "200x120"}).status, 0);
  damage("s/left/000000.png");
  std::vector<std::string> all = arguments("r");
  all[3] = "other/camera.toml";
  const Outcome outcome = folder.run(all);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            "nadir: the pictures are 160 x 120 pixels, but the camera of other/camera.toml takes pictures of "
            "200 x 120\n");
  EXPECT_FALSE(fs::exists(folder.path("r")));
}

TEST_F(GroundSequence, WhereNoFrameCanBeReadAllAreSkipped) {
  for (int frame = 0; frame < frames; ++frame) damage("s/left/" + number(frame) + ".png");
  EXPECT_EQ(ground("r").status, 3);
  EXPECT_EQ(lines("r").size(), size_t{frames});
}
// ---- the rest ----

TEST_F(GroundSequence, WithoutMaps) {
  ground("r", {"--no-maps"});
  EXPECT_EQ(lines("r").size(), size_t{frames});
  EXPECT_FALSE(fs::exists(folder.path("r/elevation")));
  ground("whole");
  EXPECT_EQ(readFile(folder.path("r/frames.jsonl")), readFile(folder.path("whole/frames.jsonl")));
}

TEST_F(GroundSequence, WritesTheMapsThatAreNamed) {
  ground("whole");
  ground("maps", {"--write", "map"});
  EXPECT_FALSE(fs::exists(folder.path("maps/average")));
  for (int frame = 0; frame < frames; ++frame)
    EXPECT_EQ(readFile(folder.path("maps/elevation/" + number(frame) + ".png")),
              readFile(folder.path("whole/elevation/" + number(frame) + ".png")));
  EXPECT_EQ(ground("none", {"--write", "none"}).status, 0);
  ground("no", {"--no-maps"});
  for (const char* file : {"/run.json", "/frames.jsonl"})
    EXPECT_EQ(readFile(folder.path(std::string("no") + file)), readFile(folder.path(std::string("none") + file)));
  EXPECT_FALSE(fs::exists(folder.path("none/elevation")));
  EXPECT_EQ(ground("all", {"--write", "all"}).status, 0);
  expectSame("whole", "all");
  EXPECT_EQ(ground("r", {"--write", "map,points"}).err, "nadir: --write points: a sequence has only map, average\n");
  EXPECT_EQ(ground("r", {"--write", "average"}).err,
            "nadir: --write average needs map too: a resumed run makes its first means of the maps that are there\n");
  EXPECT_EQ(ground("r", {"--write", "map", "--no-maps"}).status, 2);
  EXPECT_FALSE(fs::exists(folder.path("r")));
}

TEST_F(GroundSequence, TheSchemaDescribesEveryLine) {
  damage("s/left/000002.png");
  ground("r");
  folder.run({"ground", "s", "--camera", "s/camera.toml", "-o", "bare", "--no-regions", "--no-maps"});
  for (const std::string& mistake : mistakes(NADIR_FRAMES_SCHEMA, lines("r"))) EXPECT_EQ(mistake, "");
  for (const std::string& mistake : mistakes(NADIR_FRAMES_SCHEMA, lines("bare"))) EXPECT_EQ(mistake, "");
  const Json good = lines("r")[0], damaged = lines("r")[2];
  for (const std::string& mistake : mistakes(NADIR_FRAMES_SCHEMA, {extended(good), extended(damaged), warned(good)}))
    EXPECT_EQ(mistake, "");
  std::vector<Spoilt> bad = spoilt(warned(good));
  bad.push_back({"a warning about a skipped frame", warned(damaged)});
  for (const Spoilt& more : spoilt(damaged)) bad.push_back(more);
  for (const auto& [key, value] : good.items()) {
    if (damaged.contains(key)) continue;
    bad.push_back({"an error and " + key, damaged});
    bad.back().document[key] = value;
  }
  expectMisfits(NADIR_FRAMES_SCHEMA, bad);
}

TEST_F(GroundSequence, TheSchemaDescribesTheSettings) {
  writePng(folder.path("m.png"), picture(160, 120, 8, std::vector<uint16_t>(160 * 120)));
  ground("r", {"--mask", "m.png"});
  ground("clock", {"--times", "ms", "--no-maps"});
  folder.run({"ground", "s", "--camera", "s/camera.toml", "-o", "bare", "--no-regions"});
  const Json good = readJson(folder.path("r/run.json")), clock = readJson(folder.path("clock/run.json"));
  const Json bare = readJson(folder.path("bare/run.json"));
  EXPECT_EQ(good["areas"].size(), 2u);
  for (const std::string& mistake : mistakes(NADIR_RUN_SCHEMA, {good, clock, bare, extended(good)}))
    EXPECT_EQ(mistake, "");
  std::vector<Spoilt> bad = spoilt(good);
  bad.push_back({"a rate and times", clock});
  bad.back().document["fps"] = 10;
  expectMisfits(NADIR_RUN_SCHEMA, bad);
}

TEST_F(GroundSequence, TellsHowFarItIs) {
  const Outcome outcome = ground("r");
  EXPECT_NE(outcome.err.find("mapping 3 of 6 frames, "), std::string::npos) << outcome.err;
  EXPECT_NE(outcome.err.find("mapping 6 of 6 frames, "), std::string::npos) << outcome.err;
  EXPECT_EQ(outcome.err.find('\r'), std::string::npos) << "no bar in a file";
}

TEST_F(GroundSequence, MessagesForAClosedStreamDoNotLandInTheResult) {
  ground("whole");
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    const std::string output = "without" + std::to_string(stream);
    EXPECT_EQ(folder.runWithout(stream, arguments(output)).status, stream == STDOUT_FILENO ? 1 : 0);
    expectSame("whole", output);
  }
}

TEST_F(GroundSequence, RefusesInOneSentence) {
  for (const char* name : {"empty", "unnumbered", "twice", "large"})
    fs::create_directories(folder.path(name + std::string("/left")));
  for (const char* name :
       {"unnumbered/left/notes.png", "twice/left/a7.png", "twice/left/b07.png", "large/left/18446744073709551616.png"})
    writeFile(folder.path(name), "");
  fs::create_directory(folder.path("few"));
  fs::copy_file(folder.path("s/right/000000.png"), folder.path("few/000000.png"));
  writePng(folder.path("odd.png"), picture(61, 60, 8, std::vector<uint16_t>(3660)));
  writePng(folder.path("small.png"), picture(60, 60, 8, std::vector<uint16_t>(3600)));
  const auto before = folder.names();
  const auto refuse = [&](std::vector<std::string> arguments, const std::string& sentence) {
    arguments.insert(arguments.begin(), "ground");
    arguments.insert(arguments.end(), {"--camera", "s/camera.toml", "-o", "r"});
    const Outcome outcome = folder.run(arguments);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find(sentence), std::string::npos) << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_EQ(folder.names(), before);
  };
  refuse({"empty"}, "there is no frame in empty");
  refuse({"unnumbered"},
         "there is no frame in unnumbered/left/: none of the pictures in it has a number at the end of its name");
  refuse({"twice"}, "the frames a7 and b07 of twice have the same number");
  refuse({"large"}, "the frame number 18446744073709551616 is too large");
  refuse({"nowhere"}, "there is no file or folder nowhere");
  refuse({"nowhere", "--fps", "15"}, "there is no file or folder nowhere");
  refuse({"s/left"}, "there is no folder left in s/left: name two folders, one for each camera, or say --side-by-side");
  refuse({"s", "s"}, "there is no frame in s/: none of the pictures in it has a number at the end of its name");
  refuse({"s", "s", "--side-by-side"}, "s holds both pictures of each pair: name no second one");
  refuse({"s/left", "twice/left"}, "the frames a7 and b07 of twice/left have the same number");
  refuse({"s/left", "few"}, "frame 000001 of s/left has no right picture: none in few has its number");
  refuse({"s/left/*.png", "s/right/*.bmp"}, "there is no frame in s/right/*.bmp");
  refuse({"odd.png", "--side-by-side"}, "odd.png does not hold two pictures side by side: it has 61 columns");
  refuse({"s/left/%06d.png"}, "is no pattern of numbered pictures");
  refuse({"s/left/%06d.png", "s/right/%s.png"}, "is no pattern of numbered pictures");
  refuse({"s/left/no%06d.png", "s/right/%06d.png"}, "there is no frame in");
  refuse({"s/left/000000.png"},
         "a right picture is needed beside s/left/000000.png, or --side-by-side where it holds both");
  refuse({"s/left/000000.png", "s/right/000000.png", "--fps", "5"}, "is one picture");
  refuse({"s", "--disparity", "d.png"}, "--disparity is for one pair");
  refuse({"s", "--mask", "m.png"}, "cannot read m.png");
  refuse({"s", "--mask", "small.png"},
         "the mask small.png is 60 x 60 pixels, but the camera of s/camera.toml takes pictures of 160 x 120");
}

}  // namespace
}  // namespace nadir::test
