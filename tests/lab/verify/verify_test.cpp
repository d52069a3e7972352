// The stages of nadir verify: this processor gives the recorded bits, and another bit would be noticed.
#include "lab/verify/verify.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace nadir::test {
namespace {

using verify::Finding;
using verify::Findings;
using verify::Material;
using verify::Table;

const Material& material() {
  static const Material rendered = verify::renderedMaterial();
  return rendered;
}

std::vector<std::string> differing(const Findings& findings) {
  std::vector<std::string> names;
  for (const Finding& f : findings)
    if (!f.same()) names.push_back(f.stage);
  return names;
}

Table hashes(const Material& of) { return verify::hashesOf(verify::allStages(), of); }

// The hashes that this processor makes of the material.
const Table& ownHashes() {
  static const Table own = hashes(material());
  return own;
}

TEST(Verify, ThisProcessorGivesTheRecordedBits) {
  const Findings findings = compared(ownHashes(), verify::builtInTable());
  EXPECT_GE(findings.size(), 40u);
  for (const Finding& f : findings) {
    ASSERT_TRUE(f.wanted) << f.stage << ": run scripts/record/verify-table";
    EXPECT_EQ(f.got, *f.wanted) << f.stage;
  }
  EXPECT_TRUE(isVerified(findings, verify::builtInTable()));
}

TEST(Verify, RunsEveryRecordedStageOnce) {
  std::vector<std::string> run, recorded;
  for (const verify::Stage& stage : verify::allStages()) run.push_back(stage.name);
  for (const verify::Record& record : verify::builtInTable()) recorded.push_back(record.stage);
  EXPECT_EQ(run, recorded);
  std::sort(run.begin(), run.end());
  EXPECT_EQ(std::adjacent_find(run.begin(), run.end()), run.end());
}

TEST(Verify, AWrongBitIsFoundInItsStage) {
  for (size_t i : {size_t{0}, size_t{7}, verify::builtInTable().size() - 1}) {
    Table table = verify::builtInTable();
    table[i].hash ^= 1;
    const Findings findings = compared(ownHashes(), table);
    EXPECT_EQ(differing(findings), std::vector<std::string>{table[i].stage});
    EXPECT_FALSE(isVerified(findings, table));
  }
}

// No stage has a hash of nothing.
TEST(Verify, EveryStageDependsOnWhatItWorksOn) {
  Material other = verify::renderedMaterial(2);
  other.orientation.tilt += 1;
  for (const Finding& f : compared(hashes(other), ownHashes())) EXPECT_FALSE(f.same()) << f.stage;
}

TEST(Verify, OneBitOfAPictureIsEnough) {
  Material other = material();
  other.left.at(110, 75) ^= 64;
  const std::vector<std::string> names = differing(compared(hashes(other), ownHashes()));
  for (const char* stage : {"scene", "arithmetic", "smoothing", "averages", "sorting"})
    EXPECT_EQ(std::count(names.begin(), names.end(), stage), 1) << stage;
}

TEST(Verify, AStageThatTheTableDoesNotKnowIsNotVerified) {
  Table table = verify::builtInTable();
  table.pop_back();
  const Findings findings = compared(ownHashes(), table);
  EXPECT_EQ(differing(findings).size(), 1u);
  EXPECT_FALSE(isVerified(findings, table));
}

TEST(Verify, AStageThatWasNotRunIsNotVerified) {
  Table table = verify::builtInTable();
  table.push_back({"a later stage", 1});
  const Findings findings = compared(ownHashes(), table);
  EXPECT_EQ(unknownStages(findings, table), std::vector<std::string>{"a later stage"});
  EXPECT_FALSE(isVerified(findings, table));
}

TEST(VerifyTable, ReadsWhatItWrites) {
  const Table table = {{"a b, c", 0x0123456789abcdefu}, {"d", 0}};
  const std::string text = recordLine(table[0]) + "\n" + recordLine(table[1]) + "\n";
  EXPECT_EQ(text, "a b, c 0123456789abcdef\nd 0000000000000000\n");
  const auto read = verify::parseTable(text);
  ASSERT_TRUE(read);
  ASSERT_EQ(read->size(), 2u);
  EXPECT_EQ((*read)[0].stage, "a b, c");
  EXPECT_EQ((*read)[0].hash, table[0].hash);
  EXPECT_EQ((*read)[1].hash, 0u);
}

TEST(VerifyTable, RefusesOtherText) {
  for (const char* text : {"a 0123", "a 0123456789abcdeg\n", "0123456789abcdef\n", "a 0123456789abcdef\n\n"})
    EXPECT_FALSE(verify::parseTable(text)) << text;
}

// Values that differ in one bit, in their order or in their number have other hashes.
TEST(Fingerprint, TellsBitsApart) {
  const auto of = [](const std::vector<uint16_t>& values) { return lab::Fingerprint().add(values).value(); };
  const std::vector<uint64_t> hashes = {of({}), of({0}), of({0, 0}), of({1, 0}), of({0, 1}), of({256, 0})};
  for (size_t i = 0; i < hashes.size(); ++i) EXPECT_EQ(std::count(hashes.begin(), hashes.end(), hashes[i]), 1) << i;
  EXPECT_NE(lab::Fingerprint().add(0.0f).value(), lab::Fingerprint().add(-0.0f).value());
}

TEST(Fingerprint, IsTheKnownFunction) {
  EXPECT_EQ(lab::Fingerprint().value(), 0xcbf29ce484222325u);
  EXPECT_EQ(lab::Fingerprint().add(uint8_t{'a'}).value(), 0xaf63dc4c8601ec8cu);
}

}  // namespace
}  // namespace nadir::test
