// What can be set on the road from a pair to what stands on the ground.
#pragma once

#include <optional>

#include "ground/map.hpp"
#include "ground/match.hpp"
#include "ground/regions.hpp"

namespace nadir::ground {

struct Settings {
  View view = View::left;  // that is measured: its camera is the world's origin
  uint32_t uniqueness = MatchOptions().uniqueness;
  bool postprocess = true;
  CellRule cells;
  double fillHolesM2 = 0;             // patches of unseen cells up to this area are filled
  std::optional<RegionRule> regions;  // without one the road ends at the elevation map
};

}  // namespace nadir::ground
