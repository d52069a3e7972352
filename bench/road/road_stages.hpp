// The road's stages timed beside the matcher.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "lab/textured_pair.hpp"

namespace nadir::bench {

// Seconds of one frame at one level; the fastest of many that took turns with IP_SgmFull on the same pictures.
struct RoadTimes {
  double matcher = 0, whole = 0;
  std::vector<std::pair<std::string, double>> stages;  // in the road's order; a name that comes twice is added up

  double stage(const std::string& name) const;
  double afterCleanUp() const;  // the stages behind the matcher's
};

// With the left view, the defaults and two areas, at the level that is set.
RoadTimes roadTimes(const lab::TexturedPair& pair, double percentile);

// How a pair may be matched; zeros are one pass of the matcher.
struct MatchMode {
  const char* name;
  uint32_t check, refine, range, support;
};

// Seconds from two pictures to the disparities, of each mode, taking turns.
std::vector<double> modeTimes(const lab::TexturedPair& pair, const std::vector<MatchMode>& modes);

}  // namespace nadir::bench
