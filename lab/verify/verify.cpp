// Hashes against a table, and tables as text.
#include "lab/verify/verify.hpp"

#include <algorithm>
#include <cinttypes>
#include <cstdio>

namespace nadir::verify {

namespace {

std::optional<uint64_t> wantedFor(const std::string& stage, const Table& table) {
  for (const Record& record : table)
    if (record.stage == stage) return record.hash;
  return {};
}

std::optional<Record> parseLine(const std::string& line) {
  const size_t gap = line.rfind(' ');
  const std::string digits = gap == std::string::npos ? "" : line.substr(gap + 1);
  if (digits.size() != 16 || digits.find_first_not_of("0123456789abcdef") != std::string::npos) return {};
  return Record{line.substr(0, gap), std::stoull(digits, nullptr, 16)};
}

}  // namespace

Table hashesOf(const Stages& stages, const Material& material) {
  Table hashes;
  for (const Stage& stage : stages) hashes.push_back({stage.name, stage.run(material).value()});
  return hashes;
}

Findings compared(const Table& got, const Table& wanted) {
  Findings findings;
  for (const Record& record : got) findings.push_back({record.stage, record.hash, wantedFor(record.stage, wanted)});
  return findings;
}

std::vector<std::string> unknownStages(const Findings& findings, const Table& table) {
  std::vector<std::string> names;
  for (const Record& record : table)
    if (std::none_of(findings.begin(), findings.end(), [&](const Finding& f) { return f.stage == record.stage; }))
      names.push_back(record.stage);
  return names;
}

bool anyDiffers(const Findings& findings) {
  return std::any_of(findings.begin(), findings.end(), [](const Finding& f) { return f.wanted && !f.same(); });
}

bool isVerified(const Findings& findings, const Table& table) {
  return unknownStages(findings, table).empty() &&
         std::all_of(findings.begin(), findings.end(), [](const Finding& f) { return f.same(); });
}

std::string recordLine(const Record& record) {
  char digits[17];
  std::snprintf(digits, sizeof digits, "%016" PRIx64, record.hash);
  return record.stage + ' ' + digits;
}

std::optional<Table> parseTable(const std::string& text) {
  Table table;
  for (size_t begin = 0, end; begin < text.size(); begin = end + 1) {
    end = std::min(text.find('\n', begin), text.size());
    const std::optional<Record> record = parseLine(text.substr(begin, end - begin));
    if (!record) return {};
    table.push_back(*record);
  }
  return table;
}

}  // namespace nadir::verify
