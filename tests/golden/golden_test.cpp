// Hashes of what every exported function makes of fixed inputs, against the hashes in results.txt. They are the same on
// every processor and at every level of vector instructions.
//
//   nadir_golden_tests            compares; prints what differs
//   nadir_golden_tests --write    replaces results.txt by this run, for a change of results that is meant
//   nadir_golden_tests --rounding
//                                 compares what nadir.h says is the same whichever way the caller rounds, in every way
//   nadir_golden_tests --threads  compares what two threads find at once; ThreadSanitizer watches this
#include <algorithm>
#include <cfenv>
#include <cinttypes>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/golden/golden.hpp"

namespace nadir::test::golden {
namespace {

std::vector<Case> allCases() {
  std::vector<Case> all;
  for (const auto& cases : {imageCases(), stereoCases(), numberCases(), geometryCases(), cameraCases(), segmentCases(),
                            groundCases(), rectifyCases(), checkCases()}) {
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

// Every case must be in the file and every line of the file must have its case, but for those passed over.
int compare(const std::vector<Case>& cases, const std::vector<std::string>& passedOver = {}) {
  auto golden = readGolden();
  for (const std::string& name : passedOver) golden.erase(name);
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

std::vector<Case> casesWithout(const std::vector<std::string>& names, std::vector<Case> cases) {
  const auto isNamed = [&names](const Case& c) { return std::find(names.begin(), names.end(), c.name) != names.end(); };
  cases.erase(std::remove_if(cases.begin(), cases.end(), isNamed), cases.end());
  return cases;
}

// What image.h, imgproc.h, segment.h, stereo.h, vector.h and list.h compute, medians and sorting.
std::vector<Case> roundingFreeCases() {
  std::vector<Case> all;
  for (const auto& cases : {imageCases(), stereoCases(), segmentCases(), numberCases()}) {
    all.insert(all.end(), cases.begin(), cases.end());
  }
  return casesWithout({"FillF32", "Matrices", "Covariances", "Tracking", "Searches", "Digits"}, std::move(all));
}

uint64_t resultRounded(int mode, const Case& c) {
  if (std::fesetround(mode) != 0) return 0;
  const uint64_t value = c.run().value();
  std::fesetround(FE_TONEAREST);
  return value;
}

int countRoundedDifferently(int mode, const std::vector<Case>& cases) {
  return static_cast<int>(std::count_if(cases.begin(), cases.end(), [mode](const Case& c) {
    const bool differs = resultRounded(mode, c) != c.run().value();
    if (differs) std::cout << c.name << " differs\n";
    return differs;
  }));
}

// Matrices are products of floats: that they differ shows that the mode is set at all.
int compareRoundings() {
  const std::vector<Case> cases = roundingFreeCases();
  const std::vector<Case> numbers = numberCases();
  const auto matrices =
      std::find_if(numbers.begin(), numbers.end(), [](const Case& c) { return c.name == "Matrices"; });
  int wrong = 0;
  for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    wrong += countRoundedDifferently(mode, cases);
    if (resultRounded(mode, *matrices) != matrices->run().value()) continue;
    std::cout << "rounding " << mode << ": the products of matrices should differ\n";
    ++wrong;
  }
  std::cout << cases.size() << " results in three ways of rounding, " << wrong << " wrong\n";
  return wrong == 0 ? 0 : 1;
}

// IP_RGE_* share one state, and what prints digits the standard output, which the test diverts.
const std::vector<std::string> forOneThread{"ElevationRegions", "Digits"};

std::vector<Case> casesOfResults(const std::vector<Case>& cases) {
  std::vector<Case> found;
  for (const Case& c : cases) found.push_back({c.name, [hash = c.run()] { return hash; }});
  return found;
}

// Both begin with the same functions, so that whatever is worked out once for the process is worked out by two at once;
// the second then goes backwards through them, so that different ones meet.
int compareThreads() {
  const std::vector<Case> cases = casesWithout(forOneThread, allCases());
  std::vector<Case> found[2], backwards(cases.rbegin(), cases.rend());
  std::thread first([&] { found[0] = casesOfResults(cases); });
  std::thread second([&] {
    casesOfResults(cases);
    found[1] = casesOfResults(backwards);
  });
  first.join();
  second.join();
  return compare(found[0], forOneThread) + compare(found[1], forOneThread);
}

int run(int argc, char** argv) {
  const std::string option = argc == 2 ? argv[1] : "";
  if (option == "--rounding") return compareRoundings();
  if (option == "--threads") return compareThreads();
  if (argc > 1 && option != "--write") {
    std::cerr << "usage: nadir_golden_tests [--write|--rounding|--threads]\n";
    return 2;
  }
  return option == "--write" ? write(allCases()) : compare(allCases());
}

}  // namespace
}  // namespace nadir::test::golden

int main(int argc, char** argv) { return nadir::test::golden::run(argc, argv); }
