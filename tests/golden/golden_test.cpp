// Hashes of what every exported function makes of fixed inputs, against the hashes in results.txt. They are the same on
// every processor and at every level of vector instructions.
//
//   nadir_golden_tests          compares; prints what differs
//   nadir_golden_tests --write  replaces results.txt by this run, for a change of results that is meant
#include <cinttypes>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "tests/golden/golden.hpp"

namespace nadir::test::golden {
namespace {

std::vector<Case> allCases() {
  std::vector<Case> all;
  for (const auto& cases :
       {imageCases(), stereoCases(), numberCases(), geometryCases(), cameraCases(), segmentCases(), groundCases()}) {
    all.insert(all.end(), cases.begin(), cases.end());
  }
  return all;
}

std::string hex(uint64_t value) {
  char text[17];
  std::snprintf(text, sizeof text, "%016" PRIx64, value);
  return text;
}

int write(const std::vector<Case>& cases) {
  std::ofstream file(NADIR_GOLDEN);
  for (const Case& c : cases) file << c.name << ' ' << hex(c.run().value()) << '\n';
  return file.good() ? 0 : 1;
}

std::map<std::string, std::string> readGolden() {
  std::ifstream file(NADIR_GOLDEN);
  std::map<std::string, std::string> hashes;
  for (std::string name, hash; file >> name >> hash;) hashes[name] = hash;
  return hashes;
}

// Every case must be in the file and every line of the file must have its case.
int compare(const std::vector<Case>& cases) {
  auto golden = readGolden();
  int wrong = 0;
  for (const Case& c : cases) {
    const std::string got = hex(c.run().value()), want = golden.count(c.name) ? golden[c.name] : "nothing";
    golden.erase(c.name);
    if (got == want) continue;
    std::cout << c.name << ": wanted " << want << ", got " << got << '\n';
    ++wrong;
  }
  for (const auto& line : golden) std::cout << line.first << ": in the file, but there is no such case\n";
  std::cout << cases.size() << " results, " << wrong << " differ\n";
  return wrong == 0 && golden.empty() ? 0 : 1;
}

int run(int argc, char** argv) {
  const bool writes = argc == 2 && std::string(argv[1]) == "--write";
  if (argc > 1 && !writes) {
    std::cerr << "usage: nadir_golden_tests [--write]\n";
    return 2;
  }
  return writes ? write(allCases()) : compare(allCases());
}

}  // namespace
}  // namespace nadir::test::golden

int main(int argc, char** argv) { return nadir::test::golden::run(argc, argv); }
