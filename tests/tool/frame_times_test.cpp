// The times of frames, from the numbers in their names.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/tool/ground_sequence.hpp"

namespace nadir::test {
namespace {

namespace fs = std::filesystem;

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

}  // namespace
}  // namespace nadir::test
