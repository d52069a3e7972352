// Options that are wrong: one short sentence that names them, status 2, and nothing is done.
#include <gtest/gtest.h>

#include <regex>

#include <algorithm>

#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

using Arguments = std::vector<std::string>;

void expectMisused(const Arguments& arguments, const std::string& sentence) {
  const Folder folder;
  const Outcome outcome = folder.run(arguments);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err, "nadir: " + sentence + " --help\n");
  EXPECT_TRUE(folder.names().empty());
}

const Arguments disparity = {"disparity", "left.png", "right.png", "-o", "d.png"};
const Arguments ground = {"ground", "left.png", "right.png", "--camera", "c.toml", "-o", "result"};

TEST(Options, AScaleOrToleranceIsAPositiveNumber) {
  const std::pair<Arguments, std::string> options[] = {
      {{"tune", "scene", "--tolerance"}, "nadir tune"},
      {{"preview", "d.png", "-o", "p.png", "--scale"}, "nadir preview"},
      {{"evaluate", "d.png", "t.png", "--scale"}, "nadir evaluate"},
      {{"evaluate", "d.png", "t.png", "--truth-scale"}, "nadir evaluate"},
      {{"evaluate", "d.png", "t.png", "--error-map", "e.png", "--error-range"}, "nadir evaluate"},
      {with(ground, {"--disparity", "d.png", "--disparity-scale"}), "nadir ground"},
      {{"camera", "import", "c.yml", "-o", "c.toml", "--unit-mm"}, "nadir camera import"}};
  for (const auto& [arguments, command] : options)
    for (const std::string text : {"nan", "inf", "-1", "0", "1e400", "many"})
      expectMisused(with(arguments, {text}),
                    arguments.back() + ": " + text + " is not a number from 1e-06 to 1000000; see " + command);
}

TEST(Options, ColoursHaveAFiniteRange) {
  const Arguments preview = {"preview", "d.png", "-o", "p.png", "--range"};
  expectMisused(with(preview, {"-inf", "inf"}),
                "--range: -inf is not a number from -1000000 to 1000000; see nadir preview");
  expectMisused(with(preview, {"1e300", "1e308"}),
                "--range: 1e300 is not a number from -1000000 to 1000000; see nadir preview");
  expectMisused(with(preview, {"0", "nan"}),
                "--range: nan is not a number from -1000000 to 1000000; see nadir preview");
}

TEST(Options, AWholeNumberHasDigitsAlone) {
  for (const std::string text : {"3.7", "-1", "129", "x", "0x10", "010", "+5", " 5"})
    expectMisused(with(disparity, {"--uniqueness", text}),
                  "--uniqueness: " + text + " is not a whole number from 0 to 128; see nadir disparity");
}

TEST(Options, AWindowHasWholeFrames) {
  expectMisused(with(ground, {"--average", "2.5"}),
                "--average: 2.5 is not a whole number from 1 to 1000; see nadir ground");
}

TEST(Options, ASeedIsNotTakenModulo) {
  for (const std::string text : {"-1", "18446744073709551616", "99999999999999999999999", "1.5"})
    expectMisused({"synth", "scene", "--seed", text},
                  "--seed: " + text + " is not a whole number from 0 to 18446744073709551615; see nadir synth");
}

TEST(Options, TheLargestSeedIsOne) {
  const Folder folder;
  EXPECT_EQ(folder.run({"synth", ".", "--size", "64x64", "--seed", "18446744073709551615"}).status, 0);
}

TEST(Options, AViewIsLeftOrRight) {
  for (const Arguments& arguments : {disparity, ground, Arguments{"synth", "scene"}})
    for (const std::string text : {"up", "1"})
      expectMisused(with(arguments, {"--grid", text}),
                    "--grid: " + text + " not in {left,right}; see nadir " + arguments.front());
}

TEST(Options, WhatWasMistypedIsNamed) {
  expectMisused({"foo"}, "there is no command \"foo\"; see nadir");
  expectMisused({"camera", "foo"}, "there is no command \"foo\"; see nadir camera");
  expectMisused({"--frobnicate"}, "there is no option --frobnicate; see nadir");
  expectMisused({"ground", "--frobnicate"}, "there is no option --frobnicate; see nadir ground");
  expectMisused(with(disparity, {"third.png"}), "\"third.png\" is one argument too many; see nadir disparity");
}

TEST(Options, WhatIsMissingIsNamed) {
  expectMisused({}, "A subcommand is required; see nadir");
  expectMisused({"camera"}, "A subcommand is required; see nadir camera");
  expectMisused({"ground"}, "LEFT is required; see nadir ground");
}

TEST(Options, ASizeIsNamedOnce) {
  expectMisused({"synth", "scene", "--size", "640"},
                "--size: 640 is not two numbers from 64 to 4096 with an x between them; see nadir synth");
}

TEST(Options, HelpThatCannotBeWrittenFails) {
  const Folder folder;
  for (const Arguments& arguments : {Arguments{"--help"}, {"ground", "--help"}, {"--version"}}) {
    EXPECT_EQ(folder.run(arguments).status, 0);
    const Outcome full = folder.run(arguments, 1);
    EXPECT_EQ(full.status, 1);
  }
}

TEST(Options, HelpShowsOptionsAsTheyAreTyped) {
  const Folder folder;
  for (const Arguments& arguments : {Arguments{"camera", "import"},
                                     {"check"},
                                     {"disparity"},
                                     {"evaluate"},
                                     {"ground"},
                                     {"preview"},
                                     {"synth"},
                                     {"tune"},
                                     {"verify"}}) {
    const std::string text = folder.run(with(arguments, {"--help"})).out;
    EXPECT_EQ(text.find("(0x)"), std::string::npos) << text;
    EXPECT_EQ(text.find("{false}"), std::string::npos) << text;
  }
}

TEST(Options, HelpTellsTheRangesOfGround) {
  const Folder folder;
  const std::string text = std::regex_replace(folder.run({"ground", "--help"}).out, std::regex("\\s+"), " ");
  for (const char* range : {"1 to 100 (", "1 to 1000000 (", "0.001 to 100000 (", "1 to 1000 (", "0.1 to 10000 ("})
    EXPECT_NE(text.find(range), std::string::npos) << range << " is not in\n" << text;
}

TEST(Options, ThreeCalibrationsAreTooMany) {
  expectMisused({"camera", "import", "a", "b", "c", "-o", "c.toml"},
                "CALIBRATION: one or two files are used, not more; see nadir camera import");
}

}  // namespace
}  // namespace nadir::test
