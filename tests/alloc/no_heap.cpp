// Calls every exported function once or more and sees which of them take memory: those in `allocating` and no others.
// watched_calls.hpp, made by CMake and included first everywhere, has every call in the files of tests/counts watched.
#include <cstdio>
#include <initializer_list>
#include <map>
#include <set>
#include <string>

#include "lab/heap.hpp"
#include "tests/alloc/watched.hpp"
#include "tests/counts/calls.hpp"

namespace nadir::test {
namespace {

// Each of these has a Case in alloc_test.cpp, where its allocations fail.
const std::set<std::string> allocating{"IP_CompFinder_Init",  "IP_ContourFilter",
                                       "IP_ContourFilter_I",  "IP_Gauss",
                                       "IP_Morph3x3",         "IP_PullPush",
                                       "IP_RGrow_Process",    "IP_Sgm",
                                       "IP_SgmFull",          "IP_SgmMakeDebugData",
                                       "IP_SgmPostproc",      "IP_Utils_CreateElevMaskFromImgPoly",
                                       "IP_Utl_RadixIdxSort", "List_Append",
                                       "List_InsertAfter",    "List_InsertBefore",
                                       "List_Prepend",        "PC_Init"};

std::map<std::string, size_t>& allocationsOf() {
  static std::map<std::string, size_t> counts;
  return counts;
}

}  // namespace

Watched::Watched(const char* function) : function_(function) { lab::heap::watch(); }

Watched::~Watched() { allocationsOf()[function_] += lab::heap::allocations(); }

namespace {

const char* faultOf(const std::string& function) {
  const auto seen = allocationsOf().find(function);
  if (seen == allocationsOf().end()) return "is not called in tests/counts";
  if (seen->second > 0 && !allocating.count(function)) return "allocates";
  if (seen->second == 0 && allocating.count(function)) return "does not allocate, but is listed";
  return nullptr;
}

int countFaults(std::initializer_list<const char*> exported) {
  int faults = 0;
  for (const char* function : exported) {
    const char* const fault = faultOf(function);
    if (!fault) continue;
    std::printf("%s %s\n", function, fault);
    ++faults;
  }
  std::printf("%zu functions, %zu of which allocate, %d faults\n", exported.size(), allocating.size(), faults);
  return faults;
}

}  // namespace
}  // namespace nadir::test

int main() {
  using namespace nadir::test::counts;
  callImages();
  callStereo();
  callSegments();
  callGeometry();
  callCamera();
  callNumbers();
  return nadir::test::countFaults({NADIR_EXPORTED}) == 0 ? 0 : 1;
}
