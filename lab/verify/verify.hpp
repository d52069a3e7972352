// Compares this processor's results with recorded ones.
#pragma once

#include <optional>

#include "lab/verify/stages.hpp"

namespace nadir::verify {

struct Record {
  std::string stage;
  uint64_t hash;
};

using Table = std::vector<Record>;

// The hashes that the tested processors agree on: x86-64 at every level of its vector instructions, armv7, aarch64,
// s390x.
const Table& builtInTable();

struct Finding {
  std::string stage;
  uint64_t got;
  std::optional<uint64_t> wanted;  // nothing where the table does not know the stage
  bool same() const { return wanted == got; }
};

using Findings = std::vector<Finding>;

// Runs every stage.
Table hashesOf(const Stages& stages, const Material& material);

// Each stage that was run, against what the table says of it.
Findings compared(const Table& got, const Table& wanted);

// Stages of the table that were not run: a table of another version.
std::vector<std::string> unknownStages(const Findings& findings, const Table& table);

// A stage that was run and that the table knows has another hash there.
bool anyDiffers(const Findings& findings);

// All stages are the same and no stage of the table is missing.
bool isVerified(const Findings& findings, const Table& table);

// "NAME HASH" with 16 hexadecimal digits; a name may have spaces.
std::string recordLine(const Record& record);

// Lines as recordLine() writes them; nothing where one is not.
std::optional<Table> parseTable(const std::string& text);

}  // namespace nadir::verify
