// A road: a camera's numbers worked out once, and the memory that a frame needs.
#pragma once

#include <nadir/ground.h>

#include "ground/stations/areas.hpp"
#include "ground/stations/holes.hpp"
#include "ground/stations/map.hpp"
#include "ground/stations/match.hpp"
#include "ground/stations/regions.hpp"
#include "ground/trust/near_plane.hpp"
#include "ground/trust/trust.hpp"

struct NadirRoad {
  nadir::ground::Shape shape;
  NadirSettings settings;
  float columnShift;
  StereoCtx context;  // lowerLeft is the map's corner
  nadir::ground::Placing placing;
  nadir::ground::PlacedArea* areas;
  nadir::ground::MatchMemory match;
  nadir::ground::SortMemory sort;
  nadir::ground::HoleMemory holes;
  nadir::ground::RegionMemory regions;
  nadir::ground::TrustMemory trust;
  nadir::ground::MountView mount;  // whose context is this road's
};
