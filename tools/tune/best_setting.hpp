// The best whole number for a setting, by golden-section search.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace nadir::tool {

using Objective = std::function<double(uint32_t setting)>;  // larger is better

struct Trial {
  double x;          // where the search asked
  uint32_t setting;  // the whole number next to it
  double score;
};

struct SearchResult {
  std::vector<Trial> trials;  // in the order of the search
  Trial best;                 // of all trials; of equal ones the one where the search ended, else the first
  bool onePeak;               // the search ended at the best trial: nothing contradicts that the score has one peak
};

// The search is for real numbers and a score of one peak. A setting is a whole number: x stands for the one next to it,
// halves for the upper one. So that both ends have their share, x goes from half a step below `low` to half a step
// above `high`. No setting is worked out twice. The search ends when its two inner points are no more than half a step
// apart, or after `maxTrials` (at least 2).
SearchResult searchBest(const Objective& objective, uint32_t low, uint32_t high, uint32_t maxTrials);

}  // namespace nadir::tool
