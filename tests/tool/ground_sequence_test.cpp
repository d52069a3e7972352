// nadir ground over sequences: what comes out, what a damaged frame does, and that an interrupted run goes on as if
// nothing had happened.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <nadir/nadir.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>

#include "tests/tool/schema.hpp"

namespace nadir::test {
namespace {

namespace fs = std::filesystem;

constexpr int frames = 6;

std::string number(int frame) {
  const std::string digits = std::to_string(frame);
  return std::string(6 - digits.size(), '0') + digits;
}

class GroundSequence : public testing::Test {
 protected:
  GroundSequence() {
    EXPECT_EQ(folder
                  .run({"synth", "s", "--frames", std::to_string(frames), "--size", "160x120", "--no-truth-pictures",
                        "--height", "3500"})
                  .status,
              0);
    writeFile(folder.path("a.toml"),
              "[[area]]\nname = \"left\"\nground_mm = [[-1400, -2200], [-250, -2200], [-250, 200], [-1400, 200]]\n"
              "[[area]]\nname = \"nobody\"\nground_mm = [[-200, -100], [100, -100], [100, 400], [-200, 400]]\n");
  }

  std::vector<std::string> arguments(const std::string& output, std::vector<std::string> more = {}) {
    std::vector<std::string> all = {"ground", "s",  "--camera", "s/camera.toml", "--areas",
                                    "a.toml", "-o", output,     "--average",     "3"};
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }

  Outcome ground(const std::string& output, std::vector<std::string> more = {}) {
    return folder.run(arguments(output, std::move(more)));
  }

  std::vector<Json> lines(const std::string& output) {
    std::vector<Json> all;
    std::istringstream in(readFile(folder.path(output + "/frames.jsonl")));
    for (std::string line; std::getline(in, line) && !in.eof();) all.push_back(parseJson(line));
    return all;
  }

  Picture map(const std::string& output, const char* kind, int frame) {
    return readPng(folder.path(output + "/" + kind + "/" + number(frame) + ".png"));
  }

  // Every file of the two results.
  void expectSame(const std::string& a, const std::string& b) {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(folder.path(a)))
      if (entry.is_regular_file()) names.push_back(fs::relative(entry.path(), folder.path(a)).string());
    EXPECT_GT(names.size(), 2u);
    for (const std::string& name : names)
      EXPECT_EQ(readFile(folder.path(a + "/" + name)), readFile(folder.path(b + "/" + name))) << name;
    const auto count = [this](const std::string& result) {
      return std::distance(fs::recursive_directory_iterator(folder.path(result)), fs::recursive_directory_iterator());
    };
    EXPECT_EQ(count(a), count(b));
  }

  // The six frames over and over, under new numbers.
  void lengthen(int to) {
    for (const std::string side : {"left", "right"})
      for (int frame = frames; frame < to; ++frame)
        fs::create_symlink(number(frame % frames) + ".png", folder.path("s/" + side + "/" + number(frame) + ".png"));
  }

  void damage(const std::string& file) { writeFile(folder.path(file), readFile(folder.path(file)).substr(0, 900)); }

  Folder folder;
};

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

// ---- times ----

// The frames under other names; numbers holds what stands in them.
class FrameTimesOfNames : public GroundSequence {
 protected:
  void rename(const std::vector<uint64_t>& numbers) {
    fs::remove_all(folder.path("t"));
    for (const std::string side : {"left/", "right/"}) {
      fs::create_directories(folder.path("t/" + side));
      for (size_t i = 0; i < numbers.size(); ++i)
        fs::create_symlink("../../s/" + side + number(static_cast<int>(i) % frames) + ".png",
                           folder.path("t/" + side + "f" + std::to_string(numbers[i]) + ".png"));
    }
  }

  static std::vector<uint64_t> regular(uint64_t first, uint64_t step) {
    std::vector<uint64_t> numbers;
    for (uint64_t i = 0; i < frames; ++i) numbers.push_back(first + i * step);
    return numbers;
  }

  Outcome run(const std::string& output, std::vector<std::string> more = {}) {
    std::vector<std::string> all = arguments(output, {"--no-maps"});
    all[1] = "t";
    all.insert(all.end(), more.begin(), more.end());
    return folder.run(all);
  }

  // What a run that is not told makes of them: the unit in run.json, with a mark behind it where that is doubtful.
  std::string guess(const std::vector<uint64_t>& numbers) {
    rename(numbers);
    fs::remove_all(folder.path("guess"));
    const Outcome outcome = run("guess");
    const bool doubtful = outcome.err.find("doubtful") != std::string::npos;
    EXPECT_NE(outcome.err.find("are taken as "), std::string::npos) << outcome.err;
    return readJson(folder.path("guess/run.json"))["times"].get<std::string>() + (doubtful ? "?" : "");
  }
};

TEST_F(FrameTimesOfNames, EveryUnitGivesTheTracksOfCountedFrames) {
  ground("counted", {"--no-maps"});
  const std::vector<Json> counted = lines("counted");
  const std::pair<std::string, uint64_t> clocks[] = {
      {"ns", 1732199999123456789}, {"us", 1732199999123456}, {"ms", 1732199999123}};
  uint64_t step = 100000000;
  for (const auto& [unit, first] : clocks) {
    rename(regular(first, step));
    const Outcome outcome = run(unit);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.err.find("seconds\n"), std::string::npos) << outcome.err;
    const std::vector<Json> all = lines(unit);
    ASSERT_EQ(all.size(), size_t{frames});
    for (size_t i = 0; i < frames; ++i) {
      EXPECT_EQ(all[i]["time_s"], counted[i]["time_s"]);
      EXPECT_EQ(all[i]["areas"], counted[i]["areas"]) << unit << ' ' << i;
    }
    EXPECT_EQ(readJson(folder.path(unit + "/run.json"))["times"], unit);
    EXPECT_TRUE(readJson(folder.path(unit + "/run.json"))["fps"].is_null());
    step /= 1000;
  }
}

TEST_F(FrameTimesOfNames, TheFirstFramesTellTheUnit) {
  // dates
  EXPECT_EQ(guess(regular(1732199999, 1)), "s");
  EXPECT_EQ(guess(regular(1732199999123, 40)), "ms");
  EXPECT_EQ(guess(regular(1732199999123, 3000)), "ms");
  EXPECT_EQ(guess(regular(1732199999123456, 8333)), "us");
  EXPECT_EQ(guess(regular(1732199999123456789, 33333333)), "ns");
  EXPECT_EQ(guess(regular(1732199999, 60)), "s?");
  // counts
  EXPECT_EQ(guess(regular(0, 1)), "frames");
  EXPECT_EQ(guess(regular(123456, 2)), "frames");
  EXPECT_EQ(guess({3, 4, 5, 7, 90, 91}), "frames");
  EXPECT_EQ(guess({10, 15, 20, 35, 40, 45}), "frames");
  EXPECT_EQ(guess({7}), "frames");
  EXPECT_EQ(guess({0, 40000000}), "ns");
  EXPECT_EQ(guess(regular(20241122000001, 1)), "frames?");
  // since the machine was started
  EXPECT_EQ(guess({0, 33, 67, 100, 133, 167}), "ms");
  EXPECT_EQ(guess({81234, 81267, 81301, 81367, 81401, 81434}), "ms") << "one is missing";
  EXPECT_EQ(guess(regular(0, 33333)), "us");
  EXPECT_EQ(guess(regular(1800000000, 33333)), "us") << "half an hour, no seconds since 1970";
  EXPECT_EQ(guess(regular(0, 40000000)), "ns");
  EXPECT_EQ(guess(regular(2500000000000, 40000000)), "ns") << "no milliseconds since 1970";
  // what could be this or that
  EXPECT_EQ(guess(regular(0, 100)), "frames?");
  EXPECT_EQ(guess({0, 1, 12, 30, 100, 400}), "frames?");
  EXPECT_EQ(guess(regular(0, 2000)), "ms?");
  EXPECT_EQ(guess(regular(0, 2000000)), "us?");
  EXPECT_EQ(guess(regular(0, 2000000000)), "ns?");
  EXPECT_EQ(guess({0, 1000}), "ms?");
  EXPECT_EQ(guess({0, 5000}), "us");
  EXPECT_EQ(guess({0, 1000000}), "us?");
  EXPECT_EQ(guess({0, 5000000}), "ns");
  EXPECT_EQ(guess(regular(1732199999123456, 33000000)), "us?") << "or nanoseconds, twenty days after the start";
}

// Tens could be every tenth of the frames; one step of 15 among them makes them a clock's.
TEST_F(FrameTimesOfNames, TheThirtyFourthFrameTellsNothing) {
  std::vector<uint64_t> numbers;
  for (uint64_t i = 0; i < 33; ++i) numbers.push_back(10 * i);
  numbers.push_back(335);
  EXPECT_EQ(guess(numbers), "frames?");
  numbers[32] = 325;
  EXPECT_EQ(guess(numbers), "ms");
}

TEST_F(FrameTimesOfNames, ASingleFrameIsTakenAsOneOfACount) {
  rename({20241122000001});
  EXPECT_NE(run("r").err.find("names, 1 apart, are taken as counted frames"), std::string::npos);
}

TEST_F(FrameTimesOfNames, ADoubtfulGuessIsAWarning) {
  rename(regular(0, 100));
  const std::string sentence =
      "nadir: the numbers in the frames' names, 100 apart, are taken as counted frames, 10 a second, which is "
      "doubtful: --times says what they are\n";
  EXPECT_NE(run("a").err.find(sentence), std::string::npos);
  const Outcome strict = run("b", {"--strict"});
  EXPECT_EQ(strict.status, 3);
  EXPECT_NE(strict.err.find("warnings: 1 (--strict)"), std::string::npos) << strict.err;
  const Outcome told = run("c", {"--strict", "--times", "ms"});
  EXPECT_EQ(told.status, 0);
  EXPECT_EQ(told.err.find("taken as"), std::string::npos) << told.err;
  EXPECT_DOUBLE_EQ(lines("c")[5]["time_s"], 0.5);
}

TEST_F(FrameTimesOfNames, ARateMakesThemCountedFrames) {
  rename(regular(1732199999123456789, 100000000));
  const Outcome outcome = run("r", {"--fps", "10"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.err.find("look like nanoseconds, but --fps takes them as counted frames"), std::string::npos);
  EXPECT_DOUBLE_EQ(lines("r")[1]["time_s"], 1e7);
  const Outcome both = run("both", {"--fps", "10", "--times", "ns"});
  EXPECT_EQ(both.status, 2);
  EXPECT_NE(both.err.find("--fps excludes --times"), std::string::npos) << both.err;
}

TEST_F(FrameTimesOfNames, AResumedRunKeepsItsUnit) {
  rename(regular(0, 100));
  ASSERT_EQ(run("r", {"--times", "ms"}).status, 0);
  std::vector<uint64_t> more = regular(0, 100);
  more.push_back(600);
  rename(more);
  const Outcome outcome = run("r", {"--resume", "--strict"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.err.find("taken as"), std::string::npos) << outcome.err;
  EXPECT_DOUBLE_EQ(lines("r").at(6)["time_s"], 0.6);
  const Outcome other = run("r", {"--resume", "--times", "us"});
  EXPECT_EQ(other.status, 1);
  EXPECT_NE(other.err.find("times is \"ms\" there and \"us\" here"), std::string::npos) << other.err;
}

TEST_F(FrameTimesOfNames, TimesOfCenturiesDoNotOverflow) {
  rename({0, 1, 2, 18446744073709551615u});
  ASSERT_EQ(run("r", {"--times", "s"}).status, 0);
  EXPECT_DOUBLE_EQ(lines("r")[2]["time_s"], 2);
  EXPECT_NEAR(lines("r")[3]["time_s"], 9223372036.854775807, 1e-3);
}

// At this rate the second frame comes 2 to the power of 63 nanoseconds after the first, one more than is counted.
TEST_F(FrameTimesOfNames, TheLastNanosecondIsNotPassed) {
  rename({0, uint64_t{1} << 33});
  EXPECT_EQ(run("r", {"--fps", "0.931322574615478515625"}).status, 0);
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

// ---- interruptions ----

TEST_F(GroundSequence, ASignalLeavesWholeFilesAndResumeGoesOn) {
  constexpr int many = 200;  // which take longer than the lines of the first ones wait for their maps
  lengthen(many);
  damage("s/right/000003.png");
  EXPECT_EQ(ground("whole").status, 3);
  for (const int signal : {SIGINT, SIGTERM, SIGKILL}) {
    const std::string output = "r" + std::to_string(signal);
    const Outcome cut = folder.runUntil(
        arguments(output), [&] { return folder.linesOf(output + "/frames.jsonl") >= 9; }, signal);
    EXPECT_EQ(cut.status, signal == SIGKILL ? 128 + SIGKILL : 130) << cut.err;
    EXPECT_EQ(cut.err.find("--resume goes on there") == std::string::npos, signal == SIGKILL) << cut.err;
    const size_t done = lines(output).size();
    EXPECT_GE(done, 9u);
    EXPECT_LT(done, size_t{many});
    for (const Json& line : lines(output))
      EXPECT_TRUE(line.contains("error") || map(output, "average", line["frame"]).width == 128u);
    EXPECT_EQ(ground(output, {"--resume"}).status, 3);
    expectSame("whole", output);
  }
}

TEST_F(GroundSequence, ResumeCutsOffALineThatWasBeingWritten) {
  ground("whole");
  ground("r");
  const Bytes log = readFile(folder.path("r/frames.jsonl"));
  writeFile(folder.path("r/frames.jsonl"), log.substr(0, log.find("\n{\"schema\":2,\"frame\":3") + 40));
  EXPECT_EQ(ground("r", {"--resume"}).status, 0);
  expectSame("whole", "r");
}

TEST_F(GroundSequence, ResumeBeginsWhereThereIsNothing) {
  ground("whole");
  EXPECT_EQ(ground("r", {"--resume"}).status, 0);
  EXPECT_EQ(ground("r", {"--resume"}).status, 0) << "nothing is left to do";
  expectSame("whole", "r");
}

// Between the first folder and the first frame there are few moments; each leaves one of these states.
TEST_F(GroundSequence, ResumeGoesOnAfterAKillBeforeTheFirstFrame) {
  ground("whole");
  const Bytes settings = readFile(folder.path("whole/run.json"));
  for (const std::string state : {"empty", "part", "run.json", "one folder"}) {
    fs::create_directory(folder.path(state));
    if (state == "part")
      writeFile(folder.path(state + "/run.json.nadir-0123456789abcdef.part"), settings.substr(0, 50));
    if (state == "run.json" || state == "one folder") writeFile(folder.path(state + "/run.json"), settings);
    if (state == "one folder") fs::create_directory(folder.path(state + "/elevation"));
    const Outcome outcome = ground(state, {"--resume"});
    EXPECT_EQ(outcome.status, 0) << state << ": " << outcome.err;
    expectSame("whole", state);
  }
}

TEST_F(GroundSequence, ResumeRemovesWhatAKilledRunWasWriting) {
  ground("whole");
  ground("r");
  for (const char* name : {"r/run.json", "r/elevation/000003.png", "r/average/000003.png"})
    writeFile(folder.path(name + std::string(".nadir-00112233aabbccdd.part")), "half");
  EXPECT_EQ(ground("r", {"--resume"}).status, 0);
  expectSame("whole", "r");
}

TEST_F(GroundSequence, ALogWithoutItsSettingsIsNotGoneOnWith) {
  ground("r");
  fs::remove(folder.path("r/run.json"));
  const Bytes before = readFile(folder.path("r/frames.jsonl"));
  EXPECT_NE(ground("r").err.find("r holds a run already"), std::string::npos);
  EXPECT_NE(ground("r", {"--resume"}).err.find("cannot read r/run.json"), std::string::npos);
  EXPECT_EQ(readFile(folder.path("r/frames.jsonl")), before);
}

TEST_F(GroundSequence, AFolderThatAnotherRunWritesIntoIsRefused) {
  const int other = open(folder.path("s").c_str(), O_RDONLY | O_DIRECTORY);
  ASSERT_EQ(flock(other, LOCK_EX), 0);
  const auto before = folder.names();
  for (const std::vector<std::string>& more : {std::vector<std::string>{}, {"--resume"}}) {
    const Outcome outcome = ground("s", more);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find("another run is writing into s:"), std::string::npos) << outcome.err;
    EXPECT_EQ(folder.names(), before);
  }
  close(other);
  EXPECT_EQ(ground("s", {"--resume"}).status, 0);
}

TEST_F(GroundSequence, ResumeTakesInNewFrames) {
  ground("r");
  lengthen(8);
  EXPECT_EQ(ground("r", {"--resume"}).status, 0);
  ground("whole");
  expectSame("whole", "r");
}

TEST_F(GroundSequence, AResultIsNeverMixedWithAnother) {
  ground("r");
  const Bytes before = readFile(folder.path("r/frames.jsonl"));
  const auto refuse = [&](std::vector<std::string> more, const std::string& sentence) {
    const Outcome outcome = ground("r", std::move(more));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find(sentence), std::string::npos) << outcome.err;
    EXPECT_EQ(readFile(folder.path("r/frames.jsonl")), before);
  };
  refuse({}, "r holds a run already");
  refuse({"--resume", "--percentile", "50"},
         "cannot resume: r/run.json tells of other settings: percentile is 90.0 there and 50.0 here");
  for (const std::string side : {"s/left/", "s/right/"}) fs::remove(folder.path(side + number(2) + ".png"));
  refuse({"--resume"}, "tells of other frames");
}

TEST_F(GroundSequence, ARunOfAnotherVersionIsNotGoneOnWith) {
  ground("r");
  const Bytes log = readFile(folder.path("r/frames.jsonl"));
  Json run = readJson(folder.path("r/run.json"));
  EXPECT_EQ(run["schema"], 2);
  EXPECT_EQ(run["software"], std::string("nadir ") + nadir_version());
  run["software"] = "nadir 0.1.0";
  run.erase("schema");
  writeFile(folder.path("r/run.json"), run.dump());
  const Outcome outcome = ground("r", {"--resume"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, std::string("nadir: cannot resume: r was begun by nadir 0.1.0, this is ") + nadir_version() +
                             ": go on with that version, or name another folder for a run from the beginning\n");
  EXPECT_EQ(readFile(folder.path("r/frames.jsonl")), log);
}

// run.json must hold what each of these options says. Each has a value here that is not its default, or "" where it
// takes none, and what --resume says about it.
struct Setting {
  std::string option, value, difference;
};

const std::vector<Setting> settings = {
    {"--camera", "higher.toml", "camera/height_mm is 3500.0 there and 3600.0 here"},
    {"--calibration", "calib.txt", "calibration is missing there and given here"},
    {"--percentile", "50", "percentile is 90.0 there and 50.0 here"},
    {"--min-points", "7", "min_points is "},
    {"--fill-holes", "0.5", "fill_holes_m2 is 0.0 there and 0.5 here"},
    {"--no-regions", "", "region_rule is given there and null here"},
    {"--min-height", "111", "region_rule/min_height_mm is "},
    {"--max-step", "112", "region_rule/max_step_mm is "},
    {"--min-area", "0.25", "region_rule/min_area_m2 is "},
    {"--dip", "31", "region_rule/dip_mm is "},
    {"--for", "people", "region_rule/min_height_mm is "},
    {"--areas", "a.toml", "areas/0 is missing there and given here"},
    {"--grid", "right", "view is "},
    {"--uniqueness", "7", "uniqueness is "},
    {"--check", "sides", "check is "},
    {"--support", "9", "support is "},
    {"--refine", "none", "refine is "},
    {"--range", "244", "range_px is "},
    {"--tallest", "3450", "range_px is "},
    {"--mask", "m.png", "mask is null there and given here"},
    {"--scale-down", "2", "camera/focal_px is "},
    {"--half", "", "camera/focal_px is "},
    {"--raw", "", "post_processing is true there and false here"},
    {"--fps", "11", "fps is 10.0 there and 11.0 here"},
    {"--times", "ms", "times is \"frames\" there and \"ms\" here"},
    {"--average", "3", "average_frames is 10 there and 3 here"},
    {"--track-noise", "21", "track/noise_mm is "},
    {"--frames", "0:3", "frames is missing there and given here"},
    {"--no-maps", "", "maps is true there and false here"},
    {"--write", "map", "averages is true there and false here"},
};

// The results of a sequence do not depend on these. It refuses the two that give disparities, the two about a
// calibration's numbers show in those, and --side-by-side in which files are read. With --join they are those of the
// parts.
const std::set<std::string> noSettings = {"--json",    "--config", "--quiet",        "--help",      "--output",
                                          "--threads", "--resume", "--unit-mm",      "--disparity", "--disparity-scale",
                                          "--strict",  "--lens",   "--side-by-side", "--join",      "--dry-run"};

// Of a camera file's pictures, which are rectified: it changes nothing.
std::string calibrationOf(const std::string& camera) {
  const auto number = [&camera](const char* key) {
    return std::to_string(numberAfter(camera, std::string(key) + " ="));
  };
  const std::string focal = number("focal_px"), row = number("principal_y_px");
  const std::string lens = "=[" + focal + " 0 " + number("principal_x_px") + "; 0 " + focal + " " + row + "; 0 0 1]\n";
  return "cam0" + lens + "cam1" + lens + "baseline=" + number("baseline_mm") + "\nwidth=160\nheight=120\n";
}

TEST_F(GroundSequence, EveryOptionIsASettingOrIsKnownToBeNone) {
  std::set<std::string> told, known = noSettings;
  std::istringstream help(folder.run({"ground", "--help"}).out);
  const std::regex option("^  (?:-[a-z],)?(--[a-z-]+)");
  std::smatch found;
  for (std::string line; std::getline(help, line);)
    if (std::regex_search(line, found, option)) told.insert(found[1]);
  for (const Setting& setting : settings) known.insert(setting.option);
  EXPECT_EQ(told, known);
}

TEST_F(GroundSequence, ResumeNoticesEverySetting) {
  Bytes camera = readFile(folder.path("s/camera.toml"));
  writeFile(folder.path("higher.toml"), camera.replace(camera.find("height_mm = 3500"), 16, "height_mm = 3600"));
  writePng(folder.path("m.png"), picture(160, 120, 8, std::vector<uint16_t>(160 * 120)));
  writeFile(folder.path("calib.txt"), calibrationOf(readFile(folder.path("s/camera.toml"))));
  const std::vector<std::string> bare = {"ground", "s", "-o", "r", "--resume"};
  const auto resumed = [&](std::vector<std::string> more) {
    more.insert(more.begin(), bare.begin(), bare.end());
    if (std::count(more.begin(), more.end(), "--camera") == 0) more.insert(more.end(), {"--camera", "s/camera.toml"});
    return folder.run(more);
  };
  ASSERT_EQ(resumed({}).status, 0);
  for (const Setting& setting : settings) {
    const Outcome outcome =
        setting.value.empty() ? resumed({setting.option}) : resumed({setting.option, setting.value});
    EXPECT_EQ(outcome.status, 1) << setting.option;
    EXPECT_NE(outcome.err.find("tells of other settings: " + setting.difference), std::string::npos)
        << setting.option << ": " << outcome.err;
  }
  EXPECT_EQ(resumed({"--threads", "2"}).status, 0);
}

TEST_F(GroundSequence, AMaskThatWasDrawnAnewIsAnotherSetting) {
  std::vector<uint16_t> pixels(160 * 120);
  writePng(folder.path("m.png"), picture(160, 120, 8, pixels));
  ASSERT_EQ(ground("r", {"--mask", "m.png"}).status, 0);
  EXPECT_EQ(ground("r", {"--resume", "--mask", folder.path("m.png")}).status, 0) << "the same mask by another path";
  pixels[7000] = 255;
  writePng(folder.path("m.png"), picture(160, 120, 8, pixels));
  const Outcome outcome = ground("r", {"--resume", "--mask", "m.png"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("tells of other settings: mask/crc32 is "), std::string::npos) << outcome.err;
}

TEST_F(GroundSequence, CameraAndAreasAreComparedByWhatTheyHold) {
  ASSERT_EQ(ground("r").status, 0);
  const auto refuse = [&](const std::string& file, const std::string& from, const std::string& to,
                          const std::string& sentence) {
    const Bytes before = readFile(folder.path(file));
    Bytes after = before;
    after.replace(after.find(from), from.size(), to);
    writeFile(folder.path(file), after);
    const Outcome outcome = ground("r", {"--resume"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find(sentence), std::string::npos) << outcome.err;
    writeFile(folder.path(file), before);
  };
  refuse("s/camera.toml", "height_mm = 3500", "height_mm = 3600", "camera/height_mm is 3500.0 there and 3600.0");
  refuse("a.toml", "[-1400, 200]", "[-1400, 300]", "areas/0/");
  const Bytes areas = readFile(folder.path("a.toml")), last = areas.substr(areas.rfind("[[area]]"));
  refuse("a.toml", last, last + "[[area]]\nname = \"one more\"\nground_mm = [[0, 0], [100, 0], [100, 100]]\n",
         "areas/2 is missing there and given here");
  refuse("a.toml", last, "", "areas/1 is given there and missing here");
  EXPECT_EQ(ground("r", {"--resume"}).status, 0);
}

TEST_F(GroundSequence, AFolderIsTheSameByEveryPath) {
  ground("r");
  for (const std::string& path : {std::string("s/"), std::string("./s"), folder.path("s")}) {
    std::vector<std::string> all = arguments("r", {"--resume"});
    all[1] = path;
    const Outcome outcome = folder.run(all);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
  }
}

TEST_F(GroundSequence, DamagedSettingsAreNotGoneOnWith) {
  ground("r");
  writeFile(folder.path("r/run.json"), readFile(folder.path("r/run.json")).substr(0, 99));
  EXPECT_NE(ground("r", {"--resume"}).err.find("r/run.json tells of other settings: it is no JSON object"),
            std::string::npos);
}

TEST_F(GroundSequence, LinesOfALogHaveALimit) {
  ground("r");
  const Bytes log = readFile(folder.path("r/frames.jsonl"));
  const size_t end = log.find('\n');
  const auto resumed = [&](size_t length) {
    writeFile(folder.path("r/frames.jsonl"), log.substr(0, end) + Bytes(length - end, ' ') + log.substr(end));
    return ground("r", {"--resume"});
  };
  EXPECT_EQ(resumed(1 << 24).status, 0);
  EXPECT_EQ(resumed((1 << 24) + (1 << 14)).err, "nadir: cannot use r/frames.jsonl: line 1: it is too long\n");
}

TEST_F(GroundSequence, ADamagedLogIsNamed) {
  ground("r");
  const Bytes log = readFile(folder.path("r/frames.jsonl"));
  const size_t second = log.find('\n') + 1;
  const auto refuse = [&](const Bytes& line) {
    writeFile(folder.path("r/frames.jsonl"), log.substr(0, second) + line + "\n");
    const Outcome outcome = ground("r", {"--resume"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "nadir: cannot use r/frames.jsonl: line 2 is not what nadir writes there\n") << line;
  };
  refuse("mapping 6 of 60 frames");
  refuse("[]");
  refuse("{\"frame\": 1, \"areas\": []}");
  refuse("{\"frame\": 1, \"areas\": [{\"highest_mm\": \"tall\"}, {\"highest_mm\": null}]}");
  refuse("{\"frame\": \"one\"}");
}

TEST_F(GroundSequence, ALogThatCannotBeWrittenIsNamed) {
  ground("r");
  fs::remove(folder.path("r/frames.jsonl"));
  fs::create_directory(folder.path("r/frames.jsonl"));
  const Outcome outcome = ground("r", {"--resume"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "nadir: cannot write r/frames.jsonl: Is a directory\n");
}

TEST_F(GroundSequence, AFullDiskEndsTheRunAndResumeGoesOn) {
  ground("whole");
  const Outcome full = folder.run(arguments("r"), 3000);
  EXPECT_EQ(full.status, 1);
  EXPECT_NE(full.err.find("cannot write r/elevation/000000.png: File too large"), std::string::npos) << full.err;
  EXPECT_EQ(lines("r").size(), 0u);
  EXPECT_EQ(ground("r", {"--resume"}).status, 0);
  expectSame("whole", "r");
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
