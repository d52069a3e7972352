// nadir verify, and its tables of other machines.
#include <gtest/gtest.h>
#include <nadir/nadir.h>

#include <algorithm>

#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

TEST(VerifyCommand, SaysThatEveryStageIsTheSame) {
  const Folder folder;
  const Outcome outcome = folder.run({"verify"});
  EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.err;
  EXPECT_NE(outcome.out.find(nadir_simd_level()), std::string::npos);
  EXPECT_NE(outcome.out.find("stages are the same"), std::string::npos);
  EXPECT_EQ(outcome.out.find("DIFFERS"), std::string::npos);
  EXPECT_GE(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 41);
}

TEST(VerifyCommand, ComparesWithAnotherMachinesHashes) {
  const Folder folder;
  std::string hashes = folder.run({"verify", "--print-hashes"}).out;
  writeFile(folder.path("hashes.txt"), hashes);
  EXPECT_EQ(folder.run({"verify", "--against", "hashes.txt"}).status, 0);

  char& digit = hashes[hashes.find("\ncensus ") + 8];
  digit = digit == '0' ? '1' : '0';
  writeFile(folder.path("hashes.txt"), hashes);
  const Outcome outcome = folder.run({"verify", "--against", "hashes.txt"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("results DIFFER"), std::string::npos) << outcome.err;
  EXPECT_NE(outcome.out.find("census               DIFFERS, got "), std::string::npos) << outcome.out;
  EXPECT_NE(outcome.out.find("matching             same"), std::string::npos) << outcome.out;
}

TEST(VerifyCommand, WhatWasNotComparedDoesNotDiffer) {
  const Folder folder;
  const std::string hashes = folder.run({"verify", "--print-hashes"}).out;
  const std::string shorter = hashes.substr(hashes.find('\n') + 1), longer = hashes + "later 0123456789abcdef\n";
  for (const std::string& table : {shorter, longer}) {
    writeFile(folder.path("hashes.txt"), table);
    const Outcome outcome = folder.run({"verify", "--against", "hashes.txt"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.err.find("DIFFER"), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find("that were compared are the same, but 1 were not"), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.out.find("scene                not compared, got ") != std::string::npos, table == shorter);
  }
}

// Results of 0.1.0 are results of today, and its table vouches for a processor as far as it goes.
TEST(VerifyCommand, AgreesWithTheTableOfAnOlderVersion) {
  const Folder folder;
  const Outcome outcome = folder.run({"verify", "--against", NADIR_OLDER_TABLE});
  EXPECT_EQ(outcome.status, 3) << "the stages that it lacks are vouched for by nobody";
  EXPECT_NE(outcome.err.find("all 49 stages that were compared are the same"), std::string::npos) << outcome.err;
  EXPECT_EQ((outcome.out + outcome.err).find("DIFFER"), std::string::npos) << outcome.out;
  EXPECT_NE(outcome.out.find("matching             same\n"), std::string::npos) << outcome.out;
  EXPECT_NE(outcome.out.find("road: heights        not compared, got "), std::string::npos) << outcome.out;
}

TEST(VerifyCommand, ATableOfOtherStagesAloneComparesNothing) {
  const Folder folder;
  writeFile(folder.path("hashes.txt"), "later 0123456789abcdef\n");
  const Outcome outcome = folder.run({"verify", "--against", "hashes.txt"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_NE(outcome.err.find("nothing was compared"), std::string::npos) << outcome.err;
}

TEST(VerifyCommand, RefusesAFileOfSomethingElse) {
  const Folder folder;
  for (const char* text : {"", "something else\n"}) {
    writeFile(folder.path("hashes.txt"), text);
    const Outcome outcome = folder.run({"verify", "--against", "hashes.txt"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find("cannot use hashes.txt"), std::string::npos) << outcome.err;
  }
  EXPECT_EQ(folder.run({"verify", "--against", "nowhere.txt"}).status, 1);
}

}  // namespace
}  // namespace nadir::test
