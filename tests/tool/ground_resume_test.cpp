// A run over a sequence that was interrupted goes on as if nothing had happened, or says why it cannot.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <nadir/nadir.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>

#include "tests/tool/ground_sequence.hpp"

namespace nadir::test {
namespace {

namespace fs = std::filesystem;

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

}  // namespace
}  // namespace nadir::test
