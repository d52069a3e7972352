// How the program speaks with whoever types: help, mistyped words, settings in a file, silence, completion.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>

#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

class Manners : public testing::Test {
 protected:
  // The program's one sentence about a mistake.
  std::string mistake(const std::vector<std::string>& arguments, int status = 2) {
    const Outcome outcome = folder.run(arguments);
    EXPECT_EQ(outcome.status, status) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    return outcome.err;
  }

  std::string printed(const std::vector<std::string>& arguments) {
    const Outcome outcome = folder.run(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return outcome.out;
  }

  void makePair() { ASSERT_EQ(folder.run({"synth", ".", "--size", "96x64"}).status, 0); }

  Folder folder;
};

const std::vector<std::vector<std::string>> commands = {{"disparity"}, {"ground"}, {"check"}, {"camera", "import"},
                                                        {"evaluate"},  {"level"},  {"plan"},  {"preview"},
                                                        {"rectify"},   {"synth"},  {"tune"},  {"verify"}};

TEST_F(Manners, HelpOfACommandIsItsHelp) {
  for (const auto& command : commands) {
    std::vector<std::string> before = {"help"}, behind = command;
    before.insert(before.end(), command.begin(), command.end());
    behind.emplace_back("--help");
    EXPECT_EQ(printed(before), printed(behind)) << command.front();
  }
  EXPECT_EQ(printed({"help"}), printed({"--help"}));
}

TEST_F(Manners, HelpOfWhatIsNoCommandIsAMistake) {
  const std::string wrong = "nadir: there is no command \"gruond\"; did you mean ground?; see nadir --help\n";
  EXPECT_EQ(mistake({"help", "gruond"}), wrong);
  EXPECT_EQ(mistake({"gruond", "--help"}), wrong);
}

TEST_F(Manners, CommandsAboutCommandsHaveAHelp) {
  for (const char* command : {"help", "config", "completion"})
    EXPECT_EQ(printed({"help", command}), printed({command, "--help"})) << command;
  EXPECT_NE(printed({"help", "config"}).find("nadir config ground --for people"), std::string::npos);
}

TEST_F(Manners, WordsThatAreTakenAreToldInTheirOrder) {
  EXPECT_EQ(mistake({"disparity", "l.png", "r.png", "-o", "d.png", "--range", "300"}),
            "nadir: --range: 300 not in {61,122,244}; see nadir disparity --help\n");
}

TEST_F(Manners, APictureIsNoText) {
  makePair();
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"plan", "--camera", "left.png"},
        {"camera", "import", "left.png", "-o", "c.toml"},
        {"verify", "--config", "left.png"},
        {"ground", "left.png", "right.png", "--camera", "camera.toml", "--areas", "left.png", "-o", "g"}})
    EXPECT_EQ(mistake(command, 1), "nadir: left.png:3: a byte is 0: this is no text file\n") << command[0];
}

TEST_F(Manners, ShortVersionIsTheVersion) { EXPECT_EQ(printed({"-V"}), printed({"--version"})); }

TEST_F(Manners, NoLineOfAHelpsOptionsIsWiderThan100Columns) {
  for (const auto& command : commands) {
    std::vector<std::string> help = command;
    help.insert(help.begin(), "help");
    std::istringstream lines(printed(help));
    std::string line;
    while (std::getline(lines, line) && line.find("Options:") == std::string::npos) {
    }
    while (std::getline(lines, line) && !line.empty())
      EXPECT_TRUE(line.rfind("    ", 0) != 0 || line.size() <= 100) << line;
  }
}

TEST_F(Manners, MistypedWordsAreGuessed) {
  EXPECT_EQ(mistake({"gruond"}), "nadir: there is no command \"gruond\"; did you mean ground?; see nadir --help\n");
  EXPECT_EQ(mistake({"camera", "imprt"}),
            "nadir: there is no command \"imprt\"; did you mean import?; see nadir camera --help\n");
  EXPECT_EQ(mistake({"ground", "l", "r", "--rnage=61"}),
            "nadir: there is no option --rnage; did you mean --range?; see nadir ground --help\n");
}

TEST_F(Manners, WordsUnlikeAnyAreNotGuessed) {
  EXPECT_EQ(mistake({"xyzzy"}), "nadir: there is no command \"xyzzy\"; see nadir --help\n");
}

TEST_F(Manners, QuietPrintsNoTable) {
  makePair();
  EXPECT_NE(printed({"disparity", "left.png", "right.png", "-o", "d.png"}), "");
  EXPECT_EQ(printed({"disparity", "left.png", "right.png", "-o", "d.png", "-q"}), "");
}

TEST_F(Manners, QuietStillTellsMistakes) {
  EXPECT_NE(mistake({"disparity", "none.png", "none.png", "-o", "d.png", "--quiet"}, 1), "");
}

TEST_F(Manners, TheLastLineTellsWhatWasWrittenAndWhereToLook) {
  makePair();
  const std::string matched = printed({"disparity", "left.png", "right.png", "-o", "d.png"});
  EXPECT_NE(matched.find("\nwrote d.png; look at d.preview.png\n"), std::string::npos) << matched;
  const std::string mapped = printed({"ground", "left.png", "right.png", "--camera", "camera.toml", "-o", "r"});
  EXPECT_NE(mapped.find("\nwrote the results into r; look at r/regions.picture.png\n"), std::string::npos) << mapped;
}

TEST_F(Manners, JsonOfAPairIsItsSummary) {
  makePair();
  const std::string json = printed({"ground", "left.png", "right.png", "--camera", "camera.toml", "-o", "r", "--json"});
  EXPECT_EQ(json, readFile(folder.path("r/summary.json")));
}

TEST_F(Manners, JsonOfDisparitiesHoldsTheSharesOfTheTable) {
  makePair();
  const std::string json = printed({"disparity", "left.png", "right.png", "-o", "d.png", "--json"});
  const Picture picture = readPng(folder.path("d.png"));
  const auto none = std::count(picture.samples.begin(), picture.samples.end(), 0);
  const double all = static_cast<double>(picture.samples.size());
  EXPECT_EQ(numberAfter(json, "\"width_px\""), 96);
  EXPECT_NEAR(numberAfter(json, "\"value\""), 1 - static_cast<double>(none) / all, 0.001);
}

TEST_F(Manners, JsonOfASearchHoldsItsBest) {
  makePair();
  const std::string json = printed({"tune", ".", "--trials", "2", "--json"});
  EXPECT_NE(json.find("\"best\": {\n    \"uniqueness\": "), std::string::npos) << json;
}

TEST_F(Manners, JsonOfASceneHoldsItsMeasures) {
  const std::string json = printed({"synth", ".", "--size", "96x64", "--json"});
  EXPECT_GT(numberAfter(json, "\"largest_disparity_px\""), numberAfter(json, "\"least_disparity_px\""));
}

TEST_F(Manners, JsonOfStagesSaysWhichAreTheSame) {
  const std::string json = printed({"verify", "--json"});
  EXPECT_NE(json.find("\"same\": true"), std::string::npos);
  EXPECT_EQ(json.find("\"same\": false"), std::string::npos);
}

// ---- standard input and output ----

TEST_F(Manners, ADashIsStandardInputAndOutput) {
  makePair();
  printed({"disparity", "left.png", "right.png", "-o", "d.png", "--no-preview"});
  const std::string command =
      "cd '" + folder.path("") + "' && '" + toolPath() + "' disparity - right.png -o - < left.png > piped.png 2> table";
  ASSERT_EQ(std::system(command.c_str()), 0);
  EXPECT_EQ(readFile(folder.path("piped.png")), readFile(folder.path("d.png")));
  EXPECT_NE(readFile(folder.path("table")).find("with a value"), std::string::npos)
      << "tables make room for the result";
}

// It is asked for the camera, its areas and its lenses.
TEST_F(Manners, ACameraFileMayComeThroughAPipe) {
  makePair();
  printed({"ground", "left.png", "right.png", "--camera", "camera.toml", "-o", "plain", "--write", "map"});
  const std::string command = "cd '" + folder.path("") +
                              "' && mkfifo pipe && { cat camera.toml > pipe & } && timeout 20 '" + toolPath() +
                              "' ground left.png right.png --camera pipe -o piped --write map -q";
  ASSERT_EQ(std::system(command.c_str()), 0);
  EXPECT_EQ(readFile(folder.path("piped/elevation.png")), readFile(folder.path("plain/elevation.png")));
}

TEST_F(Manners, AFullStandardOutputLeavesNothing) {
  makePair();
  const auto before = folder.names();
  const std::string command = "cd '" + folder.path("") + "' && '" + toolPath() +
                              "' disparity left.png right.png -o - --preview p.png > /dev/full 2> /dev/null";
  const int status = std::system(command.c_str());
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1) << status;
  EXPECT_EQ(folder.names(), before);
}

// ---- settings in a file ----

TEST_F(Manners, AFilesOptionsAreThoseOfTheCommandLine) {
  makePair();
  printed({"disparity", "left.png", "right.png", "-o", "a.png", "--uniqueness", "20", "--raw", "--check", "flip"});
  writeFile(folder.path("c.toml"),
            "[disparity]\nuniqueness = 20\nraw = true\ncheck = \"flip\"\noutput = \"b.png\"\n"
            "[ground]\nuniqueness = 7\n");
  printed({"disparity", "left.png", "right.png", "--config", "c.toml"});
  EXPECT_EQ(readFile(folder.path("a.png")), readFile(folder.path("b.png")));
}

TEST_F(Manners, TheCommandLineHoldsAgainstTheFile) {
  makePair();
  writeFile(folder.path("c.toml"), "[disparity]\nuniqueness = 20\noutput = \"b.png\"\n");
  printed({"disparity", "left.png", "right.png", "--config=c.toml", "-o", "a.png", "--uniqueness=31"});
  EXPECT_EQ(readPng(folder.path("a.png")).text.at("nadir:uniqueness"), "31");
}

TEST_F(Manners, SeveralValuesAreAnArray) {
  makePair();
  printed({"preview", "disparity_gt.png", "-o", "a.png", "--range", "5", "20"});
  writeFile(folder.path("c.toml"), "[preview]\nrange = [5, 20]\n");
  printed({"preview", "disparity_gt.png", "-o", "b.png", "--config", "c.toml"});
  EXPECT_EQ(readFile(folder.path("a.png")), readFile(folder.path("b.png")));
}

TEST_F(Manners, TablesOfNestedCommandsAreNested) {
  writeFile(folder.path("c.toml"), "[camera.import]\nunit-mn = 1\n");
  EXPECT_EQ(mistake({"camera", "import", "c.yml", "--config", "c.toml"}, 1),
            "nadir: c.toml:2: unit-mn: there is no such option; did you mean unit-mm?\n");
}

TEST_F(Manners, WhatIsWrongInAFileIsToldWithItsLine) {
  const auto refused = [&](const std::string& text, int status) {
    writeFile(folder.path("c.toml"), text);
    return mistake({"disparity", "left.png", "right.png", "-o", "d.png", "--config", "c.toml"}, status);
  };
  EXPECT_EQ(refused("[disparity]\nuniqueness = 900\n", 2),
            "nadir: --uniqueness: 900 is not a whole number from 0 to 128 (c.toml:2); see nadir disparity --help\n");
  EXPECT_EQ(refused("[disparity]\nraw = 1\n", 1), "nadir: c.toml:2: raw: it is true or false\n");
  EXPECT_EQ(refused("[disparity]\nuniqueness = true\n", 1),
            "nadir: c.toml:2: uniqueness: it is no flag, but has a value\n");
  EXPECT_EQ(refused("[disparity]\nuniqueness = 1979-05-27\n", 1).rfind("nadir: c.toml:2: uniqueness: it is a", 0), 0u);
  EXPECT_EQ(refused("uniqueness = 3\n", 1), "nadir: c.toml:1: uniqueness: there is no such command\n");
  EXPECT_EQ(refused("[disparty]\nuniqueness = 3\n", 1), "nadir: c.toml:1: disparty: there is no such command\n");
  EXPECT_NE(refused("[disparity\n", 1).find("c.toml"), std::string::npos);
}

TEST_F(Manners, ConfigPrintsTheSettingsInForce) {
  const std::string text = printed({"config", "ground", "--for", "people", "--uniqueness", "20", "--raw"});
  EXPECT_EQ(text.rfind("[ground]\n", 0), 0u);
  for (const char* line : {"for = \"people\"\n", "uniqueness = 20\n", "raw = true\n", "strict = false\n",
                           "check = \"flip\"\n", "grid = \"left\"\n", "# mask is not given\n"})
    EXPECT_NE(text.find(line), std::string::npos) << line << "in:\n" << text;
}

TEST_F(Manners, WhatConfigPrintsIsTaken) {
  for (const auto& command : commands) {
    std::vector<std::string> ask = command;
    ask.insert(ask.begin(), "config");
    const std::string text = printed(ask);
    writeFile(folder.path("c.toml"), text);
    ask.insert(ask.end(), {"--config", "c.toml"});
    EXPECT_EQ(printed(ask), text);
  }
}

TEST_F(Manners, ConfigNeedsACommand) { EXPECT_EQ(mistake({"config"}), "nadir: name a command: nadir config ground\n"); }

// ---- completion ----

TEST_F(Manners, BashCompletesCommandsAndOptions) {
  writeFile(folder.path("nadir.bash"), printed({"completion", "bash"}));
  writeFile(folder.path("try.bash"),
            "source nadir.bash\n"
            "complete_words() { COMP_WORDS=(nadir \"$@\"); COMP_CWORD=$#; _nadir; echo \"${COMPREPLY[@]}\"; }\n"
            "complete_words gr\ncomplete_words ground --ran\ncomplete_words camera imp\n");
  ASSERT_EQ(std::system(("cd '" + folder.path("") + "' && bash try.bash > out").c_str()), 0);
  EXPECT_EQ(readFile(folder.path("out")), "ground\n--range\nimport\n");
}

TEST_F(Manners, EveryShellGetsItsScript) {
  EXPECT_EQ(printed({"completion", "zsh"}).rfind("#compdef nadir\n", 0), 0u);
  EXPECT_NE(printed({"completion", "fish"}).find("__fish_seen_subcommand_from ground' -l range -d "),
            std::string::npos);
  EXPECT_NE(mistake({"completion", "tcsh"}).find("tcsh"), std::string::npos);
}

}  // namespace
}  // namespace nadir::test
