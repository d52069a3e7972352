// A signal in the midst of the writing: nothing half-written stays, and the status is the signal's.
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

namespace fs = std::filesystem;

class Interrupt : public testing::TestWithParam<int> {
 protected:
  // Temporary files that are there now. Names come and go while they are listed.
  bool writing() {
    bool found = false;
    std::error_code gone;
    for (fs::recursive_directory_iterator entry(folder.path(""), gone), end; !gone && entry != end;
         entry.increment(gone))
      found = found || entry->path().extension() == ".part";
    return found;
  }

  // On a busy machine the writing can be over before it is noticed: then again.
  int interruptWriting(const std::vector<std::string>& arguments) {
    for (int attempt = 0; attempt < 20; ++attempt) {
      const Outcome outcome = folder.runUntil(
          arguments, [this] { return writing(); }, GetParam());
      EXPECT_FALSE(writing());
      if (outcome.status != 0) return outcome.status;
    }
    return 0;
  }

  Folder folder;
};

TEST_P(Interrupt, APairsFilesAreWholeOrAbsent) {
  ASSERT_EQ(folder.run({"synth", "s"}).status, 0);
  const int status = interruptWriting({"ground", "s/left.png", "s/right.png", "--camera", "s/camera.toml", "-o", "r"});
  EXPECT_EQ(status, 128 + GetParam());
  EXPECT_EQ(readPng(folder.path("r/elevation.png")).width, 128u);
  EXPECT_TRUE(fs::exists(folder.path("r/summary.json")));
}

TEST_P(Interrupt, ARenderedPairIsWhole) {
  EXPECT_EQ(interruptWriting({"synth", "s"}), 128 + GetParam());
  EXPECT_EQ(readPng(folder.path("s/left.png")).width, 640u);
  EXPECT_TRUE(fs::exists(folder.path("s/camera.toml")));
}

TEST_P(Interrupt, ARenderedSequenceEndsBetweenTwoFrames) {
  const Outcome outcome = folder.runUntil(
      {"synth", "s", "--frames", "500", "--size", "160x120", "--threads", "2"},
      [&] { return fs::exists(folder.path("s/left/000004.png")) && writing(); }, GetParam());
  EXPECT_EQ(outcome.status, 130);
  EXPECT_NE(outcome.err.find("nadir: interrupted after "), std::string::npos) << outcome.err;
  EXPECT_FALSE(writing());
  const auto pictures = [&](const char* side) {
    return std::distance(fs::directory_iterator(folder.path(std::string("s/") + side)), fs::directory_iterator());
  };
  EXPECT_EQ(pictures("left"), numberAfter(outcome.err, "interrupted after"));
  EXPECT_EQ(pictures("left"), pictures("right"));
}

INSTANTIATE_TEST_SUITE_P(Signals, Interrupt, testing::Values(SIGINT, SIGTERM, SIGHUP));

}  // namespace
}  // namespace nadir::test
