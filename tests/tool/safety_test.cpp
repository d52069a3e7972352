// What is lost when writing fails, and what the files of others can do: nothing.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <set>
#include <sstream>

#include "tests/tool/json.hpp"
#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

namespace fs = std::filesystem;

class Safety : public testing::Test {
 protected:
  void makePair() { ASSERT_EQ(folder.run({"synth", ".", "--size", "96x64"}).status, 0); }
  void makeSequence() {
    ASSERT_EQ(folder.run({"synth", "s", "--frames", "4", "--size", "64x64", "--no-truth-pictures"}).status, 0);
  }
  Outcome ground(std::vector<std::string> more = {}) {
    std::vector<std::string> all = {"ground", "s", "--camera", "s/camera.toml", "-o", "r"};
    all.insert(all.end(), more.begin(), more.end());
    return folder.run(all);
  }
  Outcome disparity(const std::string& output) {
    return folder.run({"disparity", "left.png", "right.png", "-o", output});
  }

  // Every file below a folder, with its bytes.
  std::map<std::string, Bytes> contents(const std::string& name) {
    std::map<std::string, Bytes> all;
    for (const auto& entry : fs::recursive_directory_iterator(folder.path(name)))
      if (entry.is_regular_file()) all[entry.path().string()] = readFile(entry.path().string());
    return all;
  }

  bool anyPart() {
    const std::vector<std::string> names = folder.names();
    return std::any_of(names.begin(), names.end(),
                       [](const std::string& name) { return name.find(".part") != std::string::npos; });
  }

  mode_t modeOf(const std::string& name) {
    struct stat status {};
    EXPECT_EQ(stat(folder.path(name).c_str(), &status), 0);
    return status.st_mode & 0777;
  }

  void expectRefused(const Outcome& outcome, const std::string& reason) {
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find(reason), std::string::npos) << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
  }

  Folder folder;
};

// ---- the disk ----

// The calls of a run, as tests/tool/calls writes them down.
class Calls : public Safety {
 protected:
  Calls() {
    setenv("LD_PRELOAD", NADIR_CALLS_LIBRARY, 1);
    setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);
  }
  ~Calls() override {
    for (const char* name : {"LD_PRELOAD", "ASAN_OPTIONS", "NADIR_CALLS", "NADIR_FAILING_RENAME", "NADIR_FAILING_LINK",
                             "NADIR_INTERRUPTED", "NADIR_LATE_READ"})
      unsetenv(name);
  }

  struct Call {
    std::string what, path;
  };
  // A program that counts its lines (gcov) opens its counts at the end, which is no doing of its own.
  std::vector<Call> calls() {
    std::vector<Call> all;
    std::istringstream in(readFile(folder.path("calls")));
    for (Call call; in >> call.what >> call.path;)
      if (fs::path(call.path).extension() != ".gcda") all.push_back(call);
    return all;
  }
  void listen() { setenv("NADIR_CALLS", folder.path("calls").c_str(), 1); }

  // Every file is on the disk before it gets its name, and the name's folder afterwards. Returns the names.
  std::set<std::string> expectDurable(const std::vector<Call>& all) {
    std::set<std::string> synced, named, foldersToCome;
    for (const Call& call : all) {
      if (call.what == "sync") synced.insert(call.path), foldersToCome.erase(call.path);
      EXPECT_TRUE(call.what != "from" || synced.count(call.path) == 1) << call.path;
      if (call.what == "to") named.insert(call.path), foldersToCome.insert(fs::path(call.path).parent_path());
      const bool isLog = fs::path(call.path).filename() == "frames.jsonl";
      EXPECT_TRUE(!isLog || foldersToCome.empty()) << "maps come first";
    }
    EXPECT_TRUE(foldersToCome.empty());
    return named;
  }
};

TEST_F(Calls, APairIsOnTheDiskWhenItHasItsNames) {
  makePair();
  listen();
  ASSERT_EQ(folder.run({"ground", "left.png", "right.png", "--camera", "camera.toml", "-o", "r"}).status, 0);
  EXPECT_EQ(expectDurable(calls()).size(), 7u);
}

TEST_F(Calls, MapsAreOnTheDiskBeforeTheLogTellsOfThem) {
  makeSequence();
  listen();
  ASSERT_EQ(ground().status, 0);
  const std::vector<Call> all = calls();
  EXPECT_EQ(expectDurable(all).size(), 9u) << "run.json and two maps of each frame";
  EXPECT_EQ(all.back().what, "sync");
  EXPECT_EQ(fs::path(all.back().path).filename(), "frames.jsonl");
}

TEST_F(Calls, AFailedCommitLeavesTheOldResults) {
  makePair();
  ASSERT_EQ(disparity("d.png").status, 0);
  writeFile(folder.path("d.png"), "old");
  writeFile(folder.path("d.preview.png"), "older");
  const auto before = folder.names();
  for (const char* which : {"1", "2"}) {
    setenv("NADIR_FAILING_RENAME", which, 1);
    expectRefused(disparity("d.png"), "Input/output error");
    EXPECT_EQ(folder.names(), before);
    EXPECT_EQ(readFile(folder.path("d.png")), "old");
    EXPECT_EQ(readFile(folder.path("d.preview.png")), "older");
  }
}

// One picture comes late, so that a group ends with its frame; the others follow at once.
TEST_F(Calls, FramesThatFollowAtOnceGoToTheDiskTogether) {
  constexpr int frames = 24;
  const std::vector<std::string> made = {"synth",  "s",     "--frames",           std::to_string(frames),
                                         "--size", "64x64", "--no-truth-pictures"};
  ASSERT_EQ(folder.run(made).status, 0);
  listen();
  setenv("NADIR_LATE_READ", "20", 1);
  ASSERT_EQ(ground({"--no-maps"}).status, 0);
  const std::vector<Call> all = calls();
  const auto groups = std::count_if(all.begin(), all.end(), [](const Call& call) {
    return call.what == "sync" && fs::path(call.path).filename() == "frames.jsonl";
  });
  EXPECT_GT(groups, 1);
  EXPECT_LT(groups, frames / 2);
}

TEST_F(Calls, WhatIsReadAndWrittenInPiecesIsWhole) {
  makePair();
  ASSERT_EQ(disparity("whole.png").status, 0);
  setenv("NADIR_INTERRUPTED", "1", 1);
  ASSERT_EQ(disparity("pieces.png").status, 0);
  EXPECT_EQ(readFile(folder.path("pieces.png")), readFile(folder.path("whole.png")));
}

TEST_F(Calls, ALogThatIsReadAndWrittenInPiecesIsWhole) {
  makeSequence();
  ASSERT_EQ(ground().status, 0);
  const Bytes whole = readFile(folder.path("r/frames.jsonl"));
  fs::remove_all(folder.path("r"));
  setenv("NADIR_INTERRUPTED", "1", 1);
  ASSERT_EQ(ground().status, 0);
  ASSERT_EQ(ground({"--resume"}).status, 0);
  EXPECT_EQ(readFile(folder.path("r/frames.jsonl")), whole);
}

TEST_F(Calls, WhereNothingCanBeLinkedResultsAreReplacedAllTheSame) {
  makePair();
  setenv("NADIR_FAILING_LINK", "1", 1);
  ASSERT_EQ(disparity("d.png").status, 0);
  const auto names = folder.names();
  const Bytes whole = readFile(folder.path("d.png"));
  writeFile(folder.path("d.png"), "old");
  ASSERT_EQ(disparity("d.png").status, 0);
  EXPECT_EQ(readFile(folder.path("d.png")), whole);
  EXPECT_EQ(folder.names(), names);
}

TEST_F(Calls, NoFileIsLeftOpenForChildren) {
  makeSequence();
  listen();
  ASSERT_EQ(ground().status, 0);
  for (const Call& call : calls()) EXPECT_TRUE(call.what != "inherited" || call.path == "/dev/null") << call.path;
}

// ---- temporary names, modes, links ----

TEST_F(Safety, FilesOfOthersStay) {
  makeSequence();
  fs::create_directories(folder.path("r/kept.2.part"));
  for (const char* name : {"r/holiday.mp4.1.part", "r/run.json.1.part"}) writeFile(folder.path(name), "mine");
  ASSERT_EQ(ground().status, 0);
  ASSERT_EQ(ground({"--resume"}).status, 0);
  for (const char* name : {"r/holiday.mp4.1.part", "r/run.json.1.part"}) EXPECT_EQ(readFile(folder.path(name)), "mine");
  EXPECT_TRUE(fs::exists(folder.path("r/kept.2.part")));
}

TEST_F(Safety, AnOutputKeepsItsMode) {
  makePair();
  writeFile(folder.path("d.png"), "old");
  chmod(folder.path("d.png").c_str(), 0600);
  ASSERT_EQ(disparity("d.png").status, 0);
  EXPECT_EQ(modeOf("d.png"), 0600u);
  EXPECT_NE(readFile(folder.path("d.png")), "old");
}

TEST_F(Safety, AReadOnlyOutputIsRefused) {
  makePair();
  writeFile(folder.path("d.png"), "old");
  chmod(folder.path("d.png").c_str(), 0444);
  expectRefused(disparity("d.png"), "cannot write d.png: it is read-only");
  EXPECT_EQ(readFile(folder.path("d.png")), "old");
}

TEST_F(Safety, ALinkToNothingStaysALink) {
  makePair();
  fs::create_directory(folder.path("far"));
  fs::create_symlink("far/d.png", folder.path("d.png"));
  ASSERT_EQ(disparity("d.png").status, 0);
  EXPECT_TRUE(fs::is_symlink(folder.path("d.png")));
  EXPECT_TRUE(fs::is_regular_file(folder.path("far/d.png")));
}

TEST_F(Safety, AsManyLinksAreFollowedAsTheSystemFollows) {
  makePair();
  for (int i = 0; i < 41; ++i)
    fs::create_symlink(i == 0 ? "end.png" : std::to_string(i) + ".png", folder.path(std::to_string(i + 1) + ".png"));
  fs::create_symlink("loop.png", folder.path("loop.png"));
  expectRefused(disparity("41.png"), "Too many levels of symbolic links");
  expectRefused(disparity("loop.png"), "Too many levels of symbolic links");
  EXPECT_EQ(disparity("40.png").status, 0);
  EXPECT_EQ(readPng(folder.path("end.png")).width, 96u);
}

TEST_F(Safety, OfHardLinksTheNamedOneIsReplaced) {
  makePair();
  writeFile(folder.path("d.png"), "old");
  fs::create_hard_link(folder.path("d.png"), folder.path("kept"));
  ASSERT_EQ(disparity("d.png").status, 0);
  EXPECT_EQ(readFile(folder.path("kept")), "old");
  EXPECT_EQ(readPng(folder.path("d.png")).width, 96u);
}

TEST_F(Safety, ALogThatIsALinkIsRefused) {
  makeSequence();
  ASSERT_EQ(ground({"--no-maps"}).status, 0);
  fs::remove(folder.path("r/frames.jsonl"));
  writeFile(folder.path("theirs"), "no line end");
  fs::create_symlink("../theirs", folder.path("r/frames.jsonl"));
  expectRefused(ground({"--no-maps", "--resume"}), "cannot write r/frames.jsonl: it is a link");
  EXPECT_EQ(readFile(folder.path("theirs")), "no line end");
}

// ---- sequences ----

TEST_F(Safety, ASequenceNeverReplacesItsPictures) {
  makeSequence();
  fs::create_directory(folder.path("r"));
  fs::copy(folder.path("s/left"), folder.path("r/elevation"));
  fs::copy(folder.path("s/right"), folder.path("r/right"));
  const auto before = contents("r");
  expectRefused(
      folder.run({"ground", "r/elevation/%06d.png", "r/right/%06d.png", "--camera", "s/camera.toml", "-o", "r"}),
      "the output r/elevation/000000.png is one of the inputs");
  EXPECT_EQ(contents("r"), before);
  fs::remove_all(folder.path("r"));
  fs::create_directory(folder.path("r"));
  fs::create_symlink("../s/left", folder.path("r/elevation"));
  const auto pictures = contents("s");
  expectRefused(ground(), "is one of the inputs");
  EXPECT_EQ(contents("s"), pictures);
}

TEST_F(Safety, APassingFaultEndsTheRunAndResumeTriesAgain) {
  makeSequence();
  ASSERT_EQ(ground().status, 0);
  fs::rename(folder.path("r"), folder.path("whole"));
  fs::rename(folder.path("s/right/000002.png"), folder.path("later"));
  const Outcome cut = ground();
  EXPECT_EQ(cut.status, 1);
  EXPECT_NE(cut.err.find("cannot read s/right/000002.png: No such file"), std::string::npos) << cut.err;
  EXPECT_EQ(folder.linesOf("r/frames.jsonl"), 2);
  fs::rename(folder.path("later"), folder.path("s/right/000002.png"));
  ASSERT_EQ(ground({"--resume"}).status, 0);
  for (const char* name : {"/frames.jsonl", "/average/000003.png"})
    EXPECT_EQ(readFile(folder.path(std::string("r") + name)), readFile(folder.path(std::string("whole") + name)));
}

TEST_F(Safety, ResumeLooksAtTheMapsThatItReliesOn) {
  makeSequence();
  ASSERT_EQ(ground().status, 0);
  const Bytes map = readFile(folder.path("r/elevation/000001.png"));
  for (const char* name : {"r/elevation/000001.png", "r/average/000001.png"}) {
    const Bytes whole = readFile(folder.path(name));
    fs::remove(folder.path(name));
    expectRefused(ground({"--resume"}), std::string("tells of ") + name + ", which is missing or empty");
    writeFile(folder.path(name), "");
    expectRefused(ground({"--resume"}), std::string("tells of ") + name + ", which is missing or empty");
    writeFile(folder.path(name), whole);
  }
  EXPECT_EQ(ground({"--resume"}).status, 0);
}

TEST_F(Safety, ALoopedLinkIsNoFrame) {
  makeSequence();
  fs::create_symlink("000009.png", folder.path("s/left/000009.png"));
  EXPECT_EQ(ground().status, 0);
  EXPECT_EQ(folder.linesOf("r/frames.jsonl"), 4);
}

TEST_F(Safety, ARenderedSequenceGoesOnAfterAKill) {
  makeSequence();
  const auto whole = contents("s");
  fs::remove(folder.path("s/left/000003.png"));
  fs::remove(folder.path("s/right/000002.png"));
  writeFile(folder.path("s/left/000002.png.nadir-0123456789abcdef.part"), "half");
  const std::vector<std::string> again = {"synth", "s", "--frames", "4", "--size", "64x64", "--no-truth-pictures"};
  std::vector<std::string> resumed = again, noisier = again;
  resumed.push_back("--resume");
  noisier.insert(noisier.end(), {"--resume", "--noise", "9"});
  expectRefused(folder.run(again), "s holds a sequence already");
  expectRefused(folder.run(noisier), "cannot resume: s/left/000000.png is of another sequence");
  EXPECT_EQ(folder.run(resumed).status, 0);
  EXPECT_EQ(contents("s"), whole);
}

// ---- streams and signals ----

TEST_F(Safety, ResultsComeBeforeTheTableThatNobodyReads) {
  makePair();
  const Outcome closed = folder.runWithout(STDOUT_FILENO, {"disparity", "left.png", "right.png", "-o", "d.png"});
  EXPECT_EQ(closed.status, 1);
  EXPECT_NE(closed.err.find("cannot write to standard output"), std::string::npos) << closed.err;
  EXPECT_EQ(readPng(folder.path("d.png")).width, 96u);
  EXPECT_EQ(folder.runWithout(STDOUT_FILENO, {"evaluate", "d.png", "disparity_gt.png"}).status, 1);
  EXPECT_FALSE(anyPart());
}

TEST_F(Safety, AReaderWhoLeavesTakesNoResultAlong) {
  makePair();
  const std::string command = "cd '" + folder.path("") + "' && { '" + toolPath() +
                              "' disparity left.png right.png -o d.png 2> err; echo $? > status; } | true";
  ASSERT_EQ(std::system(command.c_str()), 0);
  EXPECT_EQ(readPng(folder.path("d.png")).width, 96u);
  EXPECT_FALSE(anyPart());
  EXPECT_TRUE(readFile(folder.path("status")) == "1\n" || readFile(folder.path("status")) == "0\n");
}

TEST_F(Safety, AFileThatMayNotGrowIsToldInASentence) {
  makePair();
  const auto before = folder.names();
  const std::string command = "cd '" + folder.path("") + "' && ulimit -f 1 && '" + toolPath() +
                              "' disparity left.png right.png -o d.png > /dev/null 2>&1";
  const int status = std::system(command.c_str());
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1) << status;
  EXPECT_EQ(folder.names(), before);
}

TEST_F(Safety, TheEndOfTheTerminalIsAnOrderlyEnd) {
  ASSERT_EQ(folder.run({"synth", "s", "--frames", "2", "--size", "64x64", "--no-truth-pictures"}).status, 0);
  for (const std::string side : {"left", "right"})
    for (int frame = 2; frame < 400; ++frame)
      fs::create_symlink(frame % 2 ? "000001.png" : "000000.png",
                         folder.path("s/" + side + "/000" + std::to_string(1000 + frame).substr(1) + ".png"));
  const Outcome cut = folder.runUntil(
      {"ground", "s", "--camera", "s/camera.toml", "-o", "r"},
      [&] { return fs::exists(folder.path("r/frames.jsonl")) && folder.linesOf("r/frames.jsonl") > 0; }, SIGHUP);
  EXPECT_EQ(cut.status, 130) << cut.err;
  EXPECT_NE(cut.err.find("--resume goes on there"), std::string::npos) << cut.err;
  EXPECT_FALSE(anyPart());
}

// What a terminal would get; the keyboard's side of it is the test's.
TEST_F(Safety, NamesCannotSteerTheTerminal) {
  makePair();
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_GE(terminal, 0);
  ASSERT_EQ(grantpt(terminal) + unlockpt(terminal), 0);
  writeFile(folder.path("a.toml"),
            "[[area]]\nname = \"\\u001b]0;owned\\u0007door\"\nground_mm = [[-200, -200], [200, -200], [200, 200]]\n");
  const std::string command = "cd '" + folder.path("") + "' && '" + toolPath() +
                              "' ground left.png right.png --camera camera.toml --areas a.toml -o r > '" +
                              std::string(ptsname(terminal)) + "'";
  const int other = open(ptsname(terminal), O_RDWR | O_NOCTTY);
  ASSERT_EQ(std::system(command.c_str()), 0);
  close(other);
  std::string shown;
  char block[4096];
  for (ssize_t count = 0; (count = read(terminal, block, sizeof block)) > 0;)
    shown.append(block, static_cast<size_t>(count));
  close(terminal);
  EXPECT_EQ(shown.find('\x1b'), std::string::npos);
  EXPECT_NE(shown.find("?]0;owned?door"), std::string::npos) << shown;
}

// ---- files that are too much ----

TEST_F(Safety, KeysThatNestTooDeeplyAreRefused) {
  makePair();
  std::string key = "a";
  for (int i = 0; i < 50000; ++i) key += ".a";
  for (const std::string& text : {key + " = 1\n", "[" + key + "]\n"}) {
    writeFile(folder.path("deep.toml"), "\n" + text);
    expectRefused(folder.run({"ground", "left.png", "right.png", "--camera", "deep.toml", "-o", "r"}), "deep.toml:2: ");
    expectRefused(
        folder.run({"ground", "left.png", "right.png", "--camera", "camera.toml", "--areas", "deep.toml", "-o", "r"}),
        "deep.toml:2: ");
  }
  writeFile(folder.path("deep.toml"), std::string((1 << 20) + 1, '\n'));
  expectRefused(folder.run({"ground", "left.png", "right.png", "--camera", "deep.toml", "-o", "r"}), "is larger than");
}

TEST_F(Safety, LongCommentsNestNothing) {
  makePair();
  writeFile(folder.path("long.toml"), readFile(folder.path("camera.toml")) + "# 0.5" + std::string(9000, 'a') + "\n");
  EXPECT_EQ(folder.run({"ground", "left.png", "right.png", "--camera", "long.toml", "-o", "r"}).status, 0);
}

TEST_F(Safety, ListsThatNestTooDeeplyAreRefused) {
  makePair();
  ASSERT_EQ(folder.run({"ground", "left.png", "right.png", "--camera", "camera.toml", "-o", "r"}).status, 0);
  writeFile(folder.path("r/summary.json"), "{\"regions\": " + std::string(100000, '['));
  expectRefused(folder.run({"evaluate", "r", "."}), "cannot use r/summary.json: it is nested too deeply");
}

TEST_F(Safety, NumbersOutOfRangeAreRefused) {
  ASSERT_EQ(folder.run({"synth", ".", "--size", "160x120", "--scene", "people"}).status, 0);
  ASSERT_EQ(folder.run({"ground", "left.png", "right.png", "--camera", "camera.toml", "-o", "r"}).status, 0);
  ASSERT_EQ(folder.run({"evaluate", "r", "."}).status, 0);
  const Json whole = readJson(folder.path("r/summary.json"));
  for (const Json& label : {Json(65538), Json(1e20), Json(-1), Json(0), Json(1.5)}) {
    Json summary = whole;
    summary["regions"].at(0)["label"] = label;
    writeFile(folder.path("r/summary.json"), summary.dump());
    expectRefused(folder.run({"evaluate", "r", "."}), "cannot use r/summary.json: a number is out of its range");
  }
}

TEST_F(Safety, AreasOutOfRangeAreRefused) {
  makeSequence();
  ASSERT_EQ(ground({"--areas", "s/areas.toml"}).status, 0);
  ASSERT_EQ(folder.run({"evaluate", "r", "s"}).status, 0);
  const Json whole = readJson(folder.path("r/run.json"));
  for (const Json& corners : {Json::parse("[[9223372036854775807, -1], [0, 0], [1, 1]]"),
                              Json::parse("[[1e20, 0], [0, 0], [1, 1]]"), Json::array()}) {
    Json run = whole;
    run["areas"].at(0)["ground_mm"] = corners;
    writeFile(folder.path("r/run.json"), run.dump());
    expectRefused(folder.run({"evaluate", "r", "s"}), "cannot use r/run.json: a number is out of its range");
  }
}

Bytes bigEndian(uint32_t number) {
  Bytes bytes;
  for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift & 255);
  return bytes;
}

Bytes chunk(const Bytes& body) {  // its name, and what it holds
  const auto* data = reinterpret_cast<const Bytef*>(body.data());
  return bigEndian(static_cast<uint32_t>(body.size()) - 4) + body +
         bigEndian(static_cast<uint32_t>(crc32_z(0, data, body.size())));
}

Bytes unpackingTo(size_t size) {
  const Bytes zeros(size, 'A');
  uLongf packedSize = compressBound(size);
  Bytes packed(packedSize, 0);
  EXPECT_EQ(compress2(reinterpret_cast<Bytef*>(packed.data()), &packedSize,
                      reinterpret_cast<const Bytef*>(zeros.data()), size, 9),
            Z_OK);
  return Bytes("zTXtk\0\0", 7) + packed.substr(0, packedSize);
}

TEST_F(Safety, TextsOfAPictureHaveALimit) {
  writePng(folder.path("p.png"), picture(9, 9, 16, std::vector<uint16_t>(81, 800)));
  const Bytes whole = readFile(folder.path("p.png"));
  constexpr size_t headerEnd = 8 + 25;
  const auto expect = [&](const Bytes& texts, int status) {
    writeFile(folder.path("odd.png"), whole.substr(0, headerEnd) + texts + whole.substr(headerEnd));
    const Outcome outcome = folder.run({"preview", "odd.png", "-o", "o.png"});
    EXPECT_EQ(outcome.status, status) << outcome.err;
    EXPECT_EQ(outcome.err.rfind("nadir: cannot use odd.png: it is damaged (zTXt", 0) == 0, status != 0) << outcome.err;
  };
  expect(chunk(unpackingTo(100000)), 0);
  expect(chunk(unpackingTo((1 << 20) - 100)), 0);
  expect(chunk(unpackingTo((1 << 20) + 1)), 1);
  const auto many = [](int count) {
    Bytes texts;
    for (int i = 0; i < count; ++i) texts += chunk(unpackingTo(10));
    return texts;
  };
  expect(many(62), 0);
  expect(many(63), 1);
}

TEST_F(Safety, DevicesAreRefusedAndPipesAreRead) {
  makePair();
  expectRefused(folder.run({"disparity", "/dev/zero", "right.png", "-o", "d.png"}),
                "cannot read /dev/zero: it is a device");
  const std::string command = "cd '" + folder.path("") + "' && mkfifo pipe && { cat left.png > pipe & } && '" +
                              toolPath() + "' disparity pipe right.png -o d.png > /dev/null";
  EXPECT_EQ(std::system(command.c_str()), 0);
  EXPECT_EQ(readPng(folder.path("d.png")).width, 96u);
}

TEST_F(Safety, PipesOfAnyLengthAreRead) {
  makePair();
  writeFile(folder.path("long.png"), readFile(folder.path("left.png")) + Bytes(3000000, 'x'));
  const std::string command = "cd '" + folder.path("") +
                              "' && mkfifo pipe && { cat long.png > pipe & } && timeout 20 '" + toolPath() +
                              "' disparity pipe right.png -o d.png > /dev/null";
  EXPECT_EQ(std::system(command.c_str()), 0);
}

TEST_F(Safety, NumbersOfOptionsAreDecimal) {
  makePair();
  for (const char* number : {"0x10", " 5", "5 ", "nan", "inf"})
    EXPECT_EQ(folder.run({"evaluate", "disparity_gt.png", "disparity_gt.png", "--truth-scale", number}).status, 2)
        << number;
  EXPECT_EQ(folder.run({"evaluate", "disparity_gt.png", "disparity_gt.png", "--truth-scale", "2.56e2"}).status, 0);
}

}  // namespace
}  // namespace nadir::test
