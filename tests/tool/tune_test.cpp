// nadir tune on rendered pairs.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

class Tune : public testing::Test {
 protected:
  Tune() {
    synth("a", "boxes");
    synth("b", "people");
  }

  void synth(const std::string& name, const std::string& scene) {
    EXPECT_EQ(folder.run({"synth", name, "--scene", scene, "--size", "320x240", "--noise", "40"}).status, 0);
  }

  std::string tune(std::vector<std::string> options) {
    options.insert(options.begin(), {"tune", "a", "b"});
    const Outcome outcome = folder.run(options);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return outcome.out;
  }

  // The score by the commands that a user has.
  double score(const std::string& name, int uniqueness, double wrongCosts) {
    const std::string n = std::to_string(uniqueness);
    EXPECT_EQ(folder
                  .run({"disparity", name + "/left.png", name + "/right.png", "-o", "d.png", "--no-preview",
                        "--uniqueness", n})
                  .status,
              0);
    const std::string json = folder.run({"evaluate", "d.png", name + "/disparity_gt.png", "--json"}).out;
    const double density = numberAfter(json, "\"density\""), wrong = density * numberAfter(json, "\"bad_2\"");
    return 100 * (density - wrong - wrongCosts * wrong);
  }

  Folder folder;
};

// A line of the table: "  49   79.841  x = 48.77".
double scoreOf(const std::string& table, int setting) {
  return numberAfter(table, "\n  " + std::to_string(setting) + " ");
}

int best(const std::string& table, const std::string& setting) {
  return static_cast<int>(numberAfter(table, "\nbest, " + setting));
}

TEST_F(Tune, ScoreIsRightMinusWrong) {
  for (const double costs : {1.0, 0.25}) {
    const std::string table = tune({"--wrong-costs", std::to_string(costs)});
    const int found = best(table, "uniqueness");
    for (const int setting : {found, 49, 79})
      EXPECT_NEAR(scoreOf(table, setting), (score("a", setting, costs) + score("b", setting, costs)) / 2, 0.002)
          << setting;
    EXPECT_NEAR(numberAfter(table, "\ndefault, uniqueness 48"), (score("a", 48, costs) + score("b", 48, costs)) / 2,
                0.002);
  }
}

TEST_F(Tune, BestIsTheHighestThatWasTried) {
  const std::string table = tune({});
  double highest = -1e9;
  for (size_t at = table.find("\n  "); at != std::string::npos; at = table.find("\n  ", at + 1)) {
    const int setting = std::stoi(table.substr(at));
    highest = std::max(highest, scoreOf(table, setting));
  }
  EXPECT_EQ(scoreOf(table, best(table, "uniqueness")), highest);
}

TEST_F(Tune, ReachesBothEndsOfTheRange) {
  // A setting that costs nothing is worth keeping; one that costs much is not.
  EXPECT_LE(best(tune({"--wrong-costs", "0", "--to", "20"}), "uniqueness"), 20);
  EXPECT_GE(best(tune({"--wrong-costs", "1000", "--from", "100"}), "uniqueness"), 115);
  EXPECT_EQ(best(tune({"--setting", "min-points", "--to", "6", "--wrong-costs", "0"}), "min-points"), 1);
}

TEST_F(Tune, MapSettingsAreJudgedByTheMap) {
  const std::string table = tune({"--setting", "percentile", "--from", "80", "--to", "90", "--tolerance", "60"});
  const int found = best(table, "percentile");
  double mean = 0;
  for (const std::string name : {"a", "b"}) {
    EXPECT_EQ(folder
                  .run({"ground", name + "/left.png", name + "/right.png", "--camera", name + "/camera.toml", "-o", "g",
                        "--percentile", std::to_string(found)})
                  .status,
              0);
    const Picture map = readPng(folder.path("g/elevation.png"));
    const Picture truth = readPng(folder.path(name + "/elevation_gt.png"));
    double right = 0, wrong = 0, known = 0;
    for (size_t i = 0; i < map.samples.size(); ++i) {
      known += truth.samples[i] != 0;
      if (truth.samples[i] == 0 || map.samples[i] == 0) continue;
      ++(std::abs(map.samples[i] - truth.samples[i]) <= 60 ? right : wrong);
    }
    mean += 50 * (right - wrong) / known;
  }
  EXPECT_NEAR(scoreOf(table, found), mean, 0.001);
}

TEST_F(Tune, PlotShowsEveryTrial) {
  const std::string table = tune({"-o", "plot.svg", "--trials", "6"});
  const std::string svg = readFile(folder.path("plot.svg"));
  EXPECT_EQ(svg.rfind("<svg xmlns=", 0), 0u);
  EXPECT_EQ(svg.substr(svg.size() - 7), "</svg>\n");
  const auto count = [](const std::string& text, const std::string& what) {
    int found = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++found;
    return found;
  };
  EXPECT_EQ(count(table, "  x = "), 6);
  EXPECT_EQ(count(svg, "<circle"), 7) << "six trials and the best once more";
}

TEST_F(Tune, RefusesInOneSentence) {
  const auto before = folder.names();
  const auto refuse = [&](std::vector<std::string> arguments, int status, const std::string& sentence) {
    arguments.insert(arguments.begin(), {"tune", "-o", "plot.svg"});
    const Outcome outcome = folder.run(arguments);
    EXPECT_EQ(outcome.status, status);
    EXPECT_NE(outcome.err.find(sentence), std::string::npos) << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_EQ(folder.names(), before);
  };
  refuse({"nowhere"}, 1, "cannot read nowhere/left.png");
  refuse({"a", "--from", "50", "--to", "50"}, 1, "--from and --to must be a range within 0 to 128 for uniqueness");
  refuse({"a", "--to", "129"}, 1, "within 0 to 128");
  refuse({"a", "--setting", "colour"}, 2, "--setting");
  refuse({}, 2, "FOLDER");
}

TEST_F(Tune, RefusesTruthOfAnotherSize) {
  Picture truth = readPng(folder.path("a/disparity_gt.png"));
  truth.height -= 1;
  truth.samples.resize(size_t{truth.width} * truth.height);
  writePng(folder.path("a/disparity_gt.png"), truth);
  const Outcome outcome = folder.run({"tune", "a"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("a/disparity_gt.png is 320 x 239"), std::string::npos) << outcome.err;
}

TEST_F(Tune, RefusesPicturesOfAnotherSize) {
  EXPECT_EQ(folder.run({"synth", "small", "--size", "160x120"}).status, 0);
  writeFile(folder.path("a/left.png"), readFile(folder.path("small/left.png")));
  const Outcome differ = folder.run({"tune", "a"});
  EXPECT_EQ(differ.status, 1);
  EXPECT_NE(differ.err.find("the pictures differ in size: a/left.png is 160 x 120"), std::string::npos) << differ.err;
  writeFile(folder.path("a/right.png"), readFile(folder.path("small/right.png")));
  const Outcome other = folder.run({"tune", "a", "--setting", "percentile"});
  EXPECT_EQ(other.status, 1);
  EXPECT_EQ(other.err,
            "nadir: the pictures are 160 x 120 pixels, but the camera of a/camera.toml takes pictures of 320 x 240\n");
}

TEST_F(Tune, RefusesATruthThatKnowsNothing) {
  Picture truth = readPng(folder.path("a/disparity_gt.png"));
  std::fill(truth.samples.begin(), truth.samples.end(), uint16_t{0});
  writePng(folder.path("a/disparity_gt.png"), truth);
  EXPECT_NE(folder.run({"tune", "a"}).err.find("knows no truth"), std::string::npos);
}

}  // namespace
}  // namespace nadir::test
