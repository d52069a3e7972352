// nadir ground over ranges of a sequence and over indexes: joined parts are the run over everything to the byte.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/tool/ground_sequence.hpp"

namespace nadir::test {
namespace {

namespace fs = std::filesystem;

constexpr int length = 14;

class GroundParts : public GroundSequence {
 protected:
  GroundParts() { lengthen(length); }

  Outcome ground(const std::string& output, std::vector<std::string> more = {}, const std::string& source = "s") {
    std::vector<std::string> all = arguments(output, std::move(more));
    all[1] = source;
    return folder.run(all);
  }

  static std::string range(int from, int to) { return std::to_string(from) + ":" + std::to_string(to); }

  // The part's folder, in `parts`.
  std::string work(const std::string& parts, int from, int to, std::vector<std::string> more = {}) {
    fs::create_directories(folder.path(parts));
    const std::string output = parts + "/" + std::to_string(from);
    more.insert(more.end(), {"--frames", range(from, to)});
    const Outcome outcome = ground(output, more);
    EXPECT_TRUE(outcome.status == 0 || outcome.status == 3) << outcome.err;
    return output;
  }

  std::string text(const std::string& file) { return readFile(folder.path(file)); }

  void expectPartOfWhole(const std::string& part) {
    size_t maps = 0;
    for (const std::string kind : {"elevation/", "average/"})
      for (const auto& entry : fs::directory_iterator(folder.path(part + "/" + kind)))
        maps += text(part + "/" + kind + entry.path().filename().string()) ==
                text("whole/" + kind + entry.path().filename().string());
    size_t mapped = 0;
    for (const Json& line : lines(part)) mapped += !line.contains("error");
    EXPECT_EQ(maps, 2 * mapped) << part;
  }

  void expectJoinIsWhole(const std::string& parts, int status) {
    const Outcome joined = ground(parts + "-joined", {"--join", parts});
    EXPECT_EQ(joined.status, status) << joined.err;
    EXPECT_EQ(text(parts + "-joined/frames.jsonl"), text("whole/frames.jsonl")) << parts;
    EXPECT_EQ(text(parts + "-joined/run.json"), text("whole/run.json")) << parts;
  }

  // The link, not what it leads to.
  void damage(int frame) {
    const std::string file = folder.path("s/left/" + number(frame) + ".png"), bytes = readFile(file);
    fs::remove(file);
    writeFile(file, bytes.substr(0, 900));
  }
};

// Damaged frames stand before borders, so that averages that begin behind them have to reach back further.
TEST_F(GroundParts, JoinedPartsAreTheWholeRunWhateverTheirSizes) {
  for (const int frame : {8, 9, 6, 4}) damage(frame);
  EXPECT_EQ(ground("whole").status, 3);
  for (const int size : {1, 5, length}) {
    const std::string parts = "of-" + std::to_string(size);
    for (int from = 0; from < length; from += size)
      expectPartOfWhole(work(parts, from, std::min(from + size, length), {"--threads", std::to_string(1 + from % 3)}));
    expectJoinIsWhole(parts, 3);
  }
  EXPECT_NE(text("whole/frames.jsonl").find("\"tracked_mm\":1"), std::string::npos) << "nothing was tracked";
}

TEST_F(GroundParts, APartThatWasInterruptedGoesOnToTheSame) {
  ground("whole");
  const std::string part = work("parts", 5, length), log = folder.path(part + "/frames.jsonl");
  const std::string whole = readFile(log);
  for (const size_t bytes : {size_t{0}, whole.find('\n') + 1, whole.size() / 2}) {
    writeFile(log, whole.substr(0, bytes));
    for (int frame = length - 3; frame < length; ++frame)
      fs::remove(folder.path(part + "/average/" + number(frame) + ".png"));
    EXPECT_EQ(ground(part, {"--frames", range(5, length), "--resume"}).status, 0);
    EXPECT_EQ(readFile(log), whole);
    expectPartOfWhole(part);
  }
  const Outcome other = ground(part, {"--frames", range(5, length - 1), "--resume"});
  EXPECT_NE(other.err.find("tells of other settings: frames"), std::string::npos) << other.err;
  writeFile(folder.path(part + "/run.json"), readJson(folder.path(part + "/run.json")).dump());
  EXPECT_EQ(ground(part, {"--frames", range(5, length), "--resume"}).status, 0) << "members in another order";
  EXPECT_NE(ground(part, {"--resume"}).err.find("tells of other settings: frames is given there and missing here"),
            std::string::npos);
}

TEST_F(GroundParts, JoiningGoesUpToAGapAndOnWhenItIsFilled) {
  ground("whole", {"--write", "map"});
  work("parts", 0, 3, {"--write", "map"});
  work("parts", 8, length, {"--write", "map"});
  const auto join = [this] {
    return ground("parts-joined", {"--write", "map", "--join", "parts", "--resume", "--json"});
  };
  const Json first = parseJson(join().out);
  EXPECT_EQ(first["frames"], 3);
  EXPECT_EQ(first["frames_in_all"], length);
  work("parts", 3, 8, {"--write", "map"});
  EXPECT_EQ(parseJson(join().out)["frames"], length);
  EXPECT_EQ(text("parts-joined/frames.jsonl"), text("whole/frames.jsonl"));
  EXPECT_EQ(text("parts-joined/run.json"), text("whole/run.json"));
  const std::string log = folder.path("parts-joined/frames.jsonl"), whole = readFile(log);
  writeFile(log, whole.substr(0, whole.size() / 2));
  EXPECT_EQ(join().status, 0);
  EXPECT_EQ(readFile(log), whole);
}

TEST_F(GroundParts, WithoutPartsTheFramesAreCountedAlone) {
  fs::create_directory(folder.path("parts"));
  const Outcome outcome = ground("joined", {"--join", "parts", "--json"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(parseJson(outcome.out)["frames"], 0);
  EXPECT_EQ(parseJson(outcome.out)["frames_in_all"], length);
}

TEST_F(GroundParts, WhatCannotBeJoinedIsRefused) {
  const auto refusal = [this](const std::string& sentence) {
    const Outcome outcome = ground("joined", {"--no-maps", "--join", "parts"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find(sentence), std::string::npos) << outcome.err;
    EXPECT_FALSE(fs::exists(folder.path("joined/frames.jsonl")) && !text("joined/frames.jsonl").empty());
    fs::remove_all(folder.path("joined"));
  };
  refusal("cannot read the folder parts");
  const std::string part = work("parts", 0, 2, {"--no-maps"}), log = part + "/frames.jsonl", run = part + "/run.json";
  const std::string lines = text(log), settings = text(run);
  work("parts", 1, 3, {"--no-maps"});
  refusal("both have the same frames");
  fs::remove_all(folder.path("parts/1"));
  work("parts", 2, 3, {"--no-maps", "--percentile", "80"});
  refusal("cannot join parts/2, which has other settings: percentile is 80.0 there and 90.0 here");
  fs::remove_all(folder.path("parts/2"));
  fs::create_directory(folder.path("parts/2"));
  refusal("parts/2/run.json");
  fs::remove_all(folder.path("parts/2"));
  const auto spoilRun = [&](const std::string& range, const std::string& sentence) {
    Json spoilt = parseJson(settings);
    spoilt["frames"] = parseJson(range);
    writeFile(folder.path(run), spoilt.dump());
    refusal(sentence);
  };
  spoilRun("[0, 15]", "there are 14 frames, and none up to 15");
  spoilRun("[0, -1]", "cannot join parts/0: ");
  spoilRun("[0]", "tells of no range of frames");
  spoilRun("7", "tells of no range of frames");
  writeFile(folder.path(run), std::string(100, '[') + settings);
  refusal("cannot join parts/0: ");
  writeFile(folder.path(run), settings);
  const auto spoilLog = [&](const std::string& spoilt, const std::string& sentence) {
    writeFile(folder.path(log), spoilt);
    const Outcome outcome = ground("joined", {"--no-maps", "--join", "parts"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find(sentence), std::string::npos) << outcome.err;
    fs::remove_all(folder.path("joined"));
  };
  spoilLog(lines.substr(0, lines.find('\n') + 1), "cannot join parts/0: it does not have all of its frames");
  spoilLog(lines + lines, "tells of other frames");
  spoilLog(lines.substr(lines.find('\n') + 1), "tells of other frames");
}

TEST_F(GroundParts, RangesThatAreNoneAreRefused) {
  for (const std::string bad : {"", "3", "3:", ":3", "5:3", "-1:3", "1:2:3", "a:b", "1:99999999999999999999"}) {
    const Outcome outcome = ground("r", {"--frames=" + bad});
    EXPECT_EQ(outcome.status, 2) << bad << outcome.err;
  }
  EXPECT_NE(ground("r", {"--frames", "3:15"}).err.find("there are 14 frames, and none up to 15"), std::string::npos);
  EXPECT_EQ(ground("r", {"--frames", "3:4", "--join", "r"}).status, 2);
  EXPECT_FALSE(fs::exists(folder.path("r")));
  const Outcome nothing = ground("r", {"--frames", "3:3", "--json"});
  EXPECT_EQ(nothing.status, 0) << nothing.err;
  EXPECT_EQ(text("r/frames.jsonl"), "");
}

TEST_F(GroundParts, APartFollowsNoHeightsAndFitsItsSchemas) {
  const std::string part = work("parts", 2, 6);
  const std::vector<Json> told = lines(part);
  ASSERT_EQ(told.size(), 4u);
  EXPECT_EQ(told[0]["frame"], 2);
  EXPECT_EQ(told[0]["time_s"], 0.2);
  for (const Json& line : told)
    for (const Json& area : line["areas"]) EXPECT_TRUE(area["tracked_mm"].is_null());
  EXPECT_EQ(mistakes(NADIR_FRAMES_SCHEMA, told), std::vector<std::string>(4));
  const Json run = readJson(folder.path(part + "/run.json"));
  EXPECT_EQ(run["frames"], parseJson("[2, 6]"));
  EXPECT_EQ(mistakes(NADIR_RUN_SCHEMA, {run}), std::vector<std::string>(1));
}

// ---- indexes ----

class GroundIndex : public GroundParts {
 protected:
  // A row for every frame, in another order, with its time as its file's name has it.
  static std::string rows(const std::string& camera) {
    std::string all;
    for (int frame = length; frame-- > 0;)
      all += "left/" + number(frame) + ".png,right/" + number(frame) + ".png," + number(frame) + camera + "\n";
    return all;
  }

  std::string refusal(const std::string& index, std::vector<std::string> more = {}) {
    writeFile(folder.path("s/bad.csv"), index);
    more.push_back("--no-maps");
    const Outcome outcome = ground("bad", more, "s/bad.csv");
    EXPECT_EQ(outcome.status, 1) << outcome.out;
    EXPECT_FALSE(fs::exists(folder.path("bad")));
    return outcome.err;
  }
};

TEST_F(GroundIndex, GivesWhatTheFolderOfItsFramesGives) {
  ground("whole", {"--no-maps"});
  writeFile(folder.path("s/i.csv"), "left,right,time\n" + rows(""));
  EXPECT_EQ(ground("of-index", {"--no-maps"}, "s/i.csv").status, 0);
  EXPECT_EQ(text("of-index/frames.jsonl"), text("whole/frames.jsonl"));
  EXPECT_EQ(text("of-index/run.json"), text("whole/run.json"));
  fs::create_directory(folder.path("parts"));
  for (const int from : {0, 7})
    EXPECT_EQ(
        ground("parts/" + range(from, from + 7), {"--no-maps", "--frames", range(from, from + 7)}, "s/i.csv").status,
        0);
  EXPECT_EQ(ground("joined", {"--no-maps", "--join", "parts"}, "s/i.csv").status, 0);
  EXPECT_EQ(text("joined/frames.jsonl"), text("whole/frames.jsonl"));
}

TEST_F(GroundIndex, TakesWhatSpreadsheetsWrite) {
  fs::rename(folder.path("s/left/000001.png"), folder.path("s/left/a \"b\", 1.png"));
  writeFile(folder.path("s/i.csv"),
            "\xEF\xBB\xBFtime,note,right,\"left\"\r\n"
            "7,\"\",right/000000.png," +
                folder.path("s/left/000000.png") +
                "\r\n\r\n"
                "0040,\"x, y\",\"right/000001.png\",\"left/a \"\"b\"\", 1.png\"");
  const Outcome outcome = ground("r", {"--times", "ms", "--no-maps"}, "s/i.csv");
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  const std::vector<Json> told = lines("r");
  ASSERT_EQ(told.size(), 2u);
  EXPECT_EQ(told[1]["frame"], 40);
  EXPECT_EQ(told[1]["name"], "0040");
  EXPECT_EQ(told[1]["time_s"], 0.033);
}

TEST_F(GroundIndex, EachCameraHasItsRows) {
  const std::string other = text("s/camera.toml");
  fs::create_directory(folder.path("cameras"));
  writeFile(folder.path("cameras/b.toml"), other);
  writeFile(folder.path("s/i.csv"), "left,right,time,camera\n" + rows(",camera.toml") +
                                        "left/000003.png,right/000003.png,000002,../cameras/b.toml\n"
                                        "left/000001.png,right/000001.png,000077,\n");
  const auto names = [this](const std::string& camera, const std::string& output) {
    EXPECT_EQ(folder.run({"ground", "s/i.csv", "--camera", camera, "-o", output, "--no-maps"}).status, 0);
    std::vector<std::string> all;
    for (const Json& line : lines(output)) all.push_back(line["name"]);
    return all;
  };
  EXPECT_EQ(names("./s/../s/camera.toml", "a").size(), size_t{length + 1});
  EXPECT_EQ(names("cameras/b.toml", "b"), (std::vector<std::string>{"000002", "000077"}));
}

TEST_F(GroundIndex, WhatCannotBeUsedIsRefusedWithItsLine) {
  const std::pair<std::string, std::string> bad[] = {
      {"", "it names no pair of the camera"},
      {"left,right,time\n", "it names no pair of the camera"},
      {"left,right\na,b\n", "line 1: it has to name the columns, left and time among them: there is no time"},
      {"a.png,b.png,7\n", "line 1: it has to name the columns, left and time among them: there is no left"},
      {"left,right,time\na,b,1\na,b\n", "line 3: it has 2 fields for 3 columns"},
      {"left,right,time\na,b,1.5\n", "line 2: the time \"1.5\" is no whole number"},
      {"left,right,time\na,b,\n", "line 2: the time \"\" is no whole number"},
      {"left,right,time\n,b,1\n", "line 2: it names no left picture"},
      {"left,right,time\n\"a,b,1\n", "line 2: a quote is missing"},
      {"left,right,time\n\"a\"c,b,1\n", "line 2: a comma is missing"},
      {"left,right,time\na,,1\n", "names no right picture beside a: --side-by-side"},
      {"left,time\na,1\n", "names no right picture beside a: --side-by-side"},
      {"left,right,time\na,b,1\nc,d,01\n", "have the same number"},
      {"left,right,time\na,b,99999999999999999999\n", "has to fit into 64 bits"},
      {"left,right,time,camera\na,b,1,other.toml\n", "it names no pair of the camera s/camera.toml"},
  };
  for (const auto& [index, sentence] : bad) {
    const std::string told = refusal(index);
    EXPECT_NE(told.find(sentence), std::string::npos) << index << told;
  }
  EXPECT_NE(folder.run({"ground", "s/bad.csv", "s/right", "--camera", "s/camera.toml", "-o", "bad"})
                .err.find("the index s/bad.csv names the right pictures too"),
            std::string::npos);
}

}  // namespace
}  // namespace nadir::test
