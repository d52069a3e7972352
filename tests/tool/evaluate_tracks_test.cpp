// nadir evaluate on tracked heights: results made by hand, so that every number is known.
#include <gtest/gtest.h>

#include "tests/tool/json.hpp"

namespace nadir::test {
namespace {

class EvaluateTracks : public testing::Test {
 protected:
  EvaluateTracks() {
    EXPECT_EQ(folder.run({"synth", "s", "--frames", "1", "--size", "64x64", "--no-truth-pictures"}).status, 0);
    EXPECT_EQ(folder.run({"synth", "r", "--frames", "1", "--size", "64x64", "--no-truth-pictures"}).status, 0);
    writeFile(folder.path("r/run.json"),
              R"({"areas": [{"name": "here", "ground_mm": [[0, 0], [1000, 0], [1000, 1000], [0, 1000]]},
                            {"name": "there", "ground_mm": [[5000, 0], [6000, 0], [6000, 1000]]}]})");
    // Two stand here in the first frame, the taller counts; one has left in the third; nobody is here in the last.
    writeFile(folder.path("s/truth.jsonl"), truth(0, 500, 1700, 600, 1200) + truth(1, 500, 1710, 600, 1200) +
                                                truth(2, 9000, 1720, 600, 1200) + truth(3, 9000, 1730, 9000, 1200));
    writeFile(folder.path("r/frames.jsonl"), frame(0, "1704", "1709.5") + frame(1, "null", "1701") +
                                                 "{\"frame\":2,\"name\":\"2\",\"time_s\":0.2,\"error\":\"bad\"}\n" +
                                                 frame(3, "900", "null"));
  }

  static std::string object(double x, double height) {
    return "{\"kind\":\"walker\",\"region\":1,\"x_mm\":" + std::to_string(x) +
           ",\"y_mm\":400.0,\"height_mm\":" + std::to_string(height) + "}";
  }

  static std::string truth(int frame, double x, double height, double otherX, double otherHeight) {
    return "{\"frame\":" + std::to_string(frame) + ",\"time_s\":0.0,\"objects\":[" + object(x, height) + "," +
           object(otherX, otherHeight) + "]}\n";
  }

  static std::string area(const std::string& name, const std::string& highest, const std::string& tracked) {
    return "{\"name\":\"" + name + "\",\"highest_mm\":" + highest + ",\"tracked_mm\":" + tracked + "}";
  }

  static std::string frame(int number, const std::string& highest, const std::string& tracked) {
    return "{\"frame\":" + std::to_string(number) + ",\"name\":\"x\",\"time_s\":" + std::to_string(number / 10.0) +
           ",\"areas\":[" + area("here", highest, tracked) + "," + area("there", "null", "null") + "]}\n";
  }

  Folder folder;
};

TEST_F(EvaluateTracks, ErrorsOfTrackedAndSingleHeights) {
  const Outcome outcome = folder.run({"evaluate", "r", "s", "--json"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  const Json here = parseJson(outcome.out)["areas"][0];
  EXPECT_EQ(here["name"], "here");
  EXPECT_EQ(here["frames"], 4);
  EXPECT_EQ(here["frames_with_truth"], 3);
  EXPECT_EQ(here["tracked"]["frames"], 2);
  EXPECT_NEAR(here["tracked"]["share"], 2.0 / 3, 0.001);
  EXPECT_NEAR(here["tracked"]["mean_mm"], (9.5 - 9) / 2, 0.001);
  EXPECT_NEAR(here["tracked"]["rms_mm"], 9.253, 0.001);
  EXPECT_EQ(here["single"]["frames"], 1);
  EXPECT_NEAR(here["single"]["mean_mm"], 4, 0.001);
}

TEST_F(EvaluateTracks, AnAreaWithNobodyHasNoErrors) {
  const Json there = parseJson(folder.run({"evaluate", "r", "s", "--json"}).out)["areas"][1];
  EXPECT_EQ(there["frames_with_truth"], 0);
  EXPECT_TRUE(there["tracked"]["rms_mm"].is_null());
}

TEST_F(EvaluateTracks, TableAndPlot) {
  const Outcome outcome = folder.run({"evaluate", "r", "s", "--plot", "p.svg", "--area", "here"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NEAR(numberAfter(outcome.out, "frames with somebody"), 3, 0);
  EXPECT_NEAR(numberAfter(outcome.out, "mean error"), 0.25, 0.06);
  const std::string svg = readFile(folder.path("p.svg"));
  EXPECT_NE(svg.find("Height in the area here"), std::string::npos);
  EXPECT_NE(svg.find("tracked"), std::string::npos);
}

TEST_F(EvaluateTracks, RefusesInOneSentence) {
  const auto refuse = [&](std::vector<std::string> arguments, const std::string& sentence) {
    arguments.insert(arguments.begin(), "evaluate");
    const Outcome outcome = folder.run(arguments);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find(sentence), std::string::npos) << outcome.err;
  };
  refuse({"r", "s", "--plot", "p.svg", "--area", "nowhere"}, "there is no area \"nowhere\"");
  refuse({"r", "nowhere"}, "nowhere is no sequence of nadir synth");
  refuse({"s", "s", "--plot", "p.svg"}, "--plot is not for s, a folder of a pair");
  refuse({"r", "s", "--error-map", "o.png"}, "--error-map is not for r, a folder of a sequence");
  refuse({"r", "s", "--heights"}, "--heights is not for r, a folder of a sequence");
  writeFile(folder.path("s/truth.jsonl"), truth(0, 0, 1, 0, 1));
  refuse({"r", "s"}, "s has fewer frames than r");
  writeFile(folder.path("r/run.json"), "{\"areas\": [{\"name\": 1}]}");
  refuse({"r", "s"}, "cannot use r/run.json: it does not name areas as nadir ground does");
  writeFile(folder.path("r/run.json"), "{\n\n\"areas\" []}");
  refuse({"r", "s"}, "cannot use r/run.json: line 3 is no JSON");
  writeFile(folder.path("r/run.json"), "{\"areas\": []}");
  refuse({"r", "s"}, "r has no areas of interest");
}

}  // namespace
}  // namespace nadir::test
