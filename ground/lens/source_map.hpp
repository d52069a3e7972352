// Where the pixels of a rectified picture come from.
#pragma once

#include <nadir/rectify.h>

#include "ground/kernels/kernels.hpp"
#include "ground/lens/lens_model.hpp"
#include "ground/records/arena.hpp"

namespace nadir::ground {

// The sources of all pixels, row by row.
struct SourceMap {
  uint32_t* corners;
  uint8_t* across;
  uint8_t* down;

  Sources row(uint32_t width, uint32_t y) const {
    const size_t begin = size_t{width} * y;
    return {corners + begin, across + begin, down + begin};
  }
};

SourceMap sourceMap(Arena& arena, const NadirRectifiedView& view);

// Of a lens and a view that were found good.
void fill(const SourceMap& map, const NadirLens& lens, const NadirRectifiedView& view);

// False where pixel i comes from nowhere.
bool findSource(const Sources& sources, uint32_t i, PlanePoint& source);

}  // namespace nadir::ground
