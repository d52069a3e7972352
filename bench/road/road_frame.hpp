// A textured pair on the road, as benchmarks run it.
#pragma once

#include <nadir/stereo.h>

#include <cmath>
#include <vector>

#include "lab/road.hpp"

namespace nadir::bench {

struct RoadFrame {
  RoadFrame(const lab::TexturedPair& pictures, uint32_t until, double percentile)
      : pair(pictures), plan(planOf(pair, until, percentile)), road(plan) {
    if (until != NADIR_UNTIL_MATCH) lab::demand(nadir_road_context(road.road(), &context));
  }

  // Two areas lie on the map, which reaches from -4160 mm to 4160 across the view.
  static std::vector<NadirArea> areas() {
    static constexpr int32_t left[] = {-3000, 1500, -500, 1500, -500, 4500, -3000, 4500};
    static constexpr int32_t right[] = {500, 1500, 3000, 1500, 3000, 4500, 500, 4500};
    return {{sizeof(NadirArea), NADIR_AREA_GROUND_MM, 4, 0, left, 0, 0},
            {sizeof(NadirArea), NADIR_AREA_GROUND_MM, 4, 0, right, 0, 0}};
  }
  static lab::RoadPlan planOf(const lab::TexturedPair& pair, uint32_t until, double percentile) {
    lab::RoadPlan plan = lab::planOf(lab::cameraOver(pair));
    plan.camera.map_height_cells = 64;
    plan.settings.until = until;
    plan.settings.percentile = percentile;
    plan.areas = areas();
    return plan;
  }
  NadirFrame matched() const { return lab::frameOf(pair.first.data(), pair.reference.data(), pair.width); }
  NadirFrame given() const { return lab::givenFrame(disparity.data(), pair.width); }
  void keepDisparities() {
    const NadirPlane found = road.findings(matched()).disparity;
    const auto* pixels = static_cast<const uint16_t*>(found.data);
    for (size_t i = 0; i < pair.first.size(); ++i)
      disparity.push_back(pixels[i] ? static_cast<float>(pixels[i]) / SGM_DISP_SCALE : NAN);
  }

  lab::TexturedPair pair;
  lab::RoadPlan plan;
  lab::Road road;
  StereoCtx context{};  // what other libraries are told about the camera and the map
  std::vector<float> disparity;
};

}  // namespace nadir::bench
