// Checks, times or lists the kernels. `nadir_kernels --help` tells how.
#include <setjmp.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>

#include "ground/kernels/kernels.hpp"
#include "imgproc/filter3x3_kernels.hpp"
#include "imgproc/point_kernels.hpp"
#include "imgproc/smooth_kernels.hpp"
#include "simd/cpu.hpp"
#include "stereo/kernels.hpp"
#include "tests/kernels/harness.hpp"
#include "tests/support/levels.hpp"

namespace nadir::test {
namespace {

struct Options {
  enum { check, bench, list } mode = check;
  uint64_t seed = 1;
  std::string only;
};

struct Variant {
  unsigned level;
  AnyKernel kernel;
};

// The different kernels of a case, the scalar one first.
std::vector<Variant> variants(const Case& c) {
  std::vector<Variant> found;
  std::set<AnyKernel> seen;
  for (unsigned level : cumulativeLevels()) {
    const AnyKernel kernel = c.kernel(level);
    if (seen.insert(kernel).second) found.push_back({level, kernel});
  }
  return found;
}

sigjmp_buf afterCrash;

extern "C" void onCrash(int signal) { siglongjmp(afterCrash, signal); }

void catchCrashes() {
  struct sigaction action = {};
  action.sa_handler = onCrash;
  action.sa_flags = SA_NODEFER;
  for (int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE}) sigaction(signal, &action, nullptr);
}

// A crash is this kernel's failure; the next kernel is tested all the same.
bool checkOne(const Case& c, const Variant& variant, uint64_t seed) {
  static Check* current;
  Check check(seed);
  current = &check;
  const int signal = sigsetjmp(afterCrash, 1);
  if (signal == 0) c.check(check, variant.kernel);
  const char* level = cpuName(variant.level);
  if (signal) {
    std::printf("FAILED  %-24s %-7s seed %llu, %s: %s\n", c.name(), level, static_cast<unsigned long long>(seed),
                current->inputs().c_str(), strsignal(signal));
  } else if (check.failed()) {
    std::printf("FAILED  %-24s %-7s seed %llu, %s\n", c.name(), level, static_cast<unsigned long long>(seed),
                check.message().c_str());
  } else {
    std::printf("ok      %-24s %-7s %zu comparisons\n", c.name(), level, check.comparisons());
  }
  return !signal && !check.failed() && check.comparisons() > 0;
}

double secondsOf(const Case& c, AnyKernel kernel) {
  const auto start = std::chrono::steady_clock::now();
  c.bench(kernel);
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The variants run in turn, so that a busy machine slows them alike; the fastest of the runs counts.
void benchOne(const Case& c) {
  const std::vector<Variant> all = variants(c);
  std::vector<double> best(all.size(), 1e9);
  for (int round = 0; round < 15; ++round) {
    for (size_t i = 0; i < all.size(); ++i) best[i] = std::min(best[i], secondsOf(c, all[i].kernel));
  }
  std::printf("%-24s", c.name());
  for (size_t i = 0; i < all.size(); ++i) std::printf("  %s %.2fx", cpuName(all[i].level), best[0] / best[i]);
  std::printf("\n");
}

void listOne(const Case& c) {
  std::printf("| `%s` |", c.name());
  const std::vector<Variant> all = variants(c);
  for (unsigned level : cumulativeLevels()) {
    const bool own = std::any_of(all.begin(), all.end(), [=](const Variant& v) { return v.level == level; });
    std::printf(" %s |", own ? "yes" : "");
  }
  std::printf("\n");
}

void listHeader() {
  std::printf("| kernel |");
  for (unsigned level : cumulativeLevels()) std::printf(" %s |", cpuName(level));
  std::printf("\n|---|");
  for (size_t i = 0; i < cumulativeLevels().size(); ++i) std::printf("---|");
  std::printf("\n");
}

// The cases of a family test every kernel of one table.
struct Family {
  const char* table;
  size_t kernels;
  std::vector<void (*)(Registry&)> add;
};

std::vector<Family> families() {
  constexpr size_t field = sizeof(AnyKernel);
  static_assert(sizeof(StereoKernels::pathLanes) == field, "the number of lanes is as large as a kernel's address");
  return {{"Filter3x3Kernels", sizeof(Filter3x3Kernels) / field, {addFilter3x3Cases}},
          {"PointKernels", sizeof(PointKernels) / field, {addPointCases}},
          {"SmoothKernels", sizeof(SmoothKernels) / field, {addSmoothCases}},
          {"StereoKernels", sizeof(StereoKernels) / field - 1, {addStereoRowCases, addSelectionCases, addWalkCases}},
          {"RoadKernels", sizeof(ground::RoadKernels) / field, {addRoadCases, addRectifyCases}}};
}

Registry casesOf(const Family& family) {
  Registry cases;
  for (const auto add : family.add) add(cases);
  return cases;
}

Registry chosenCases(const std::string& only) {
  Registry chosen;
  for (const Family& family : families()) {
    for (auto& c : casesOf(family)) {
      if (std::strstr(c->name(), only.c_str())) chosen.push_back(std::move(c));
    }
  }
  return chosen;
}

// Two cases of one kernel do not make up for a kernel without any.
bool everyKernelHasACase(const Family& family) {
  std::set<AnyKernel> tested;
  for (const auto& c : casesOf(family)) tested.insert(c->kernel(cpuScalar));
  if (tested.size() == family.kernels) return true;
  std::printf("FAILED  %s has %zu kernels, and its cases test %zu\n", family.table, family.kernels, tested.size());
  return false;
}

bool hasItsKernels(const Case& c) {
  for (unsigned level : cumulativeLevels()) {
    if (c.kernel(level)) continue;
    std::printf("FAILED  %s: no %s kernel in its table\n", c.name(), cpuName(level));
    return false;
  }
  return true;
}

// The road's library asks libnadir for its level's name.
bool roadFollowsTheLevel() {
  const unsigned own = cpu();
  bool follows = true;
  for (unsigned level : cumulativeLevels()) {
    setCpu(level);
    follows = follows && &ground::roadKernels() == &ground::roadKernels(level);
    setCpu(own);
  }
  if (!follows) std::printf("FAILED  RoadKernels are not those of the level at which the library runs\n");
  return follows;
}

// Without a kernel there is nothing to compare, to time or to list.
bool tablesAreComplete(const Registry& cases) {
  bool complete = roadFollowsTheLevel();
  for (const Family& family : families()) complete = everyKernelHasACase(family) && complete;
  for (const auto& c : cases) complete = hasItsKernels(*c) && complete;
  return complete;
}

int checkAll(const Registry& cases, uint64_t seed) {
  unsigned passed = 0, failed = 0;
  catchCrashes();
  for (const auto& c : cases) {
    for (const Variant& variant : variants(*c)) {
      if (variant.level != cpuScalar || c->hasModel()) ++(checkOne(*c, variant, seed) ? passed : failed);
    }
  }
  if (cpu() == cpuScalar)
    std::printf("this processor has scalar kernels only: those without a model are not checked\n");
  std::printf("%u passed, %u failed\n", passed, failed);
  return failed || (passed == 0 && cpu() != cpuScalar) ? 1 : 0;
}

int run(const Options& options) {
  const Registry cases = chosenCases(options.only);
  if (!tablesAreComplete(cases)) return 1;
  if (options.mode == Options::check) return checkAll(cases, options.seed);
  if (options.mode == Options::list) listHeader();
  for (const auto& c : cases) (options.mode == Options::list ? listOne : benchOne)(*c);
  return 0;
}

constexpr const char* help =
    "Checks every vector kernel of this processor against the scalar one, and those with a model, the scalar one too,\n"
    "against that.\n"
    "  --bench      time them instead: speed as a multiple of the scalar kernel's, all in one run\n"
    "  --list       print which kernel has which levels, as a table for the README\n"
    "  --seed N     random inputs from this seed (default 1)\n"
    "  --only TEXT  only kernels whose name contains this text\n";

}  // namespace
}  // namespace nadir::test

int main(int argc, char** argv) {
  nadir::test::Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    const bool hasValue = i + 1 < argc;
    if (arg == "--bench") {
      options.mode = options.bench;
    } else if (arg == "--list") {
      options.mode = options.list;
    } else if (arg == "--seed" && hasValue) {
      options.seed = std::strtoull(argv[++i], nullptr, 10);
    } else if (arg == "--only" && hasValue) {
      options.only = argv[++i];
    } else {
      std::fputs(nadir::test::help, arg == "--help" ? stdout : stderr);
      return arg == "--help" ? 0 : 2;
    }
  }
  return nadir::test::run(options);
}
