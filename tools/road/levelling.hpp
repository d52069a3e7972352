// The mount as pairs of open floor show it.
#pragma once

#include <nadir/level.h>

#include <string>
#include <vector>

#include "tools/road/road.hpp"

namespace nadir::tool {

struct PairFiles {
  std::string left, right;
};

struct Levelling {
  std::optional<NadirLevelled> mount;  // nothing where no pair shows a floor
  std::vector<PairFiles> withoutFloor;
  uint32_t range = 0;      // NADIR_RANGE_...
  Grid<uint16_t> picture;  // the left one of the last pair with a floor, and
  Grid<uint8_t> taken;     // which of its pixels were taken: NADIR_LEVEL_...
};

// The camera's mount may be missing, and is not used. An automatic range is the least with which a floor is found.
Levelling levelled(RoadOptions options, const std::vector<PairFiles>& pairs, StageTimes& times);

}  // namespace nadir::tool
