// The limits: a copy of as many bytes for point operations, the standard sort for sorting.
#include "bench/limits.hpp"

#include <nadir/numeric.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <numeric>

#include "bench/work.hpp"
#include "lab/random.hpp"

namespace nadir::bench {
namespace {

// Copies half of the bytes that the work touches: a copy touches each of its own twice.
Limit againstCopy(const Work& work) {
  const auto from = std::make_shared<std::vector<char>>(work.bytes / 2, 1),
             to = std::make_shared<std::vector<char>>(*from);
  return {work.name, "memcpy", work.run, [=] { std::memcpy(to->data(), from->data(), from->size()); }};
}

bool isPointOperation(const std::string& name) {
  for (const char* family : {"IP_Threshold", "IP_ImgOpImg", "IP_Mask"})
    if (name.find(family) == 0) return name.find("_I", 3) == std::string::npos;
  return false;
}

}  // namespace

std::vector<Limit> memoryLimits(const lab::TexturedPair& pair) {
  Works works;
  addImgprocWorks(works, pair);
  std::vector<Limit> found;
  for (const Work& work : works)
    if (isPointOperation(work.name)) found.push_back(againstCopy(work));
  return found;
}

std::vector<Limit> sortingLimits() {
  constexpr uint32_t count = 65536;
  const auto keys = std::make_shared<std::vector<uint16_t>>(lab::Random(3).values<uint16_t>(count, 65536));
  const auto indices = std::make_shared<std::vector<uint16_t>>(count);
  const auto byKey = [=](uint16_t a, uint16_t b) { return (*keys)[a] < (*keys)[b]; };
  return {{"IP_Utl_RadixIdxSort", "std::stable_sort",
           [=] { IP_Utl_RadixIdxSort(keys->data(), indices->data(), count, 0); },
           [=] {
             std::iota(indices->begin(), indices->end(), uint16_t{0});
             std::stable_sort(indices->begin(), indices->end(), byKey);
           }}};
}

}  // namespace nadir::bench
