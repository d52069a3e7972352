// The limits that no implementation can be much faster than.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "lab/textured_pair.hpp"

namespace nadir::bench {

struct Limit {
  std::string name, against;
  std::function<void()> ours, theirs;
};

std::vector<Limit> memoryLimits(const lab::TexturedPair& pair);
std::vector<Limit> sortingLimits();

}  // namespace nadir::bench
