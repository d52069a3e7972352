// All that is asked about a frame, from its pictures to its warnings, in memory of the caller's.
#pragma once

#include <nadir/ground.h>

#include <cstddef>

#include "ground/records/arena.hpp"
#include "ground/records/shape.hpp"
#include "ground/trust/blocks.hpp"
#include "ground/trust/map_view.hpp"
#include "ground/trust/matched.hpp"
#include "ground/trust/near_plane.hpp"
#include "ground/trust/second_look.hpp"

namespace nadir::ground {

// What a camera's mount says about its map, worked out once.
struct MountView {
  const StereoCtx* context;  // its lowerLeft is the map's corner
  double columnShift;
  MapView map;
};

// A frame that was matched; null where disparities were given.
struct MatchedFrame {
  MatchedPictures pictures;
  LookMemory look;
  bool isMirrored;      // the measured view is the left one, which the matcher has mirrored
  uint32_t uniqueness;  // of the matcher's peak check
};

// The view's disparities, as matched or as given.
struct ViewDisparities {
  const uint16_t* stored;  // 1/16 pixel; null where there are `given` ones
  const float* given;      // pixels, not-a-number for none
  size_t givenStride;      // bytes
  uint32_t width, height;
};

// Memory that judging needs.
struct TrustMemory {
  Block* blocks;     // largestBlockCount of them; nothing without a mount
  RayPoint* judges;  // nearPlaneJudges of them, likewise
};

TrustMemory trustMemory(Arena& arena, const Shape& shape);

// frame, mount  null where there is none. The frame's strip may be the memory of its raw disparities, which are read
//               before anything is written there
// blocks        room for largestBlockCount of them; only a mount needs it
// warnings      room for NADIR_WARNINGS
// Returns how many warnings there are.
size_t judge(const MatchedFrame* frame, const MountView* mount, const ViewDisparities& disparities, Block* blocks,
             NadirTrust& trust, NadirWarning* warnings);

}  // namespace nadir::ground
