// Pictures of half the width and height, where what is too near for the matcher has half the disparity.
#pragma once

#include <nadir/ground.h>

#include <cstdint>

#include "ground/records/shape.hpp"

namespace nadir::ground {

// How often pictures are halved for a range; less often where they would become narrower than 64 columns.
uint32_t halvings(uint32_t range, const Shape& shape);

// The shape of pictures that were halved so often. An odd last row or column is left out.
Shape halvedShape(Shape shape, uint32_t times);

// In place: each block of 2 x 2 pixels becomes the mean of those with data, 0 without any. `row` is room for one.
void halve(uint16_t* pixels, const Shape& shape, uint16_t* row);

// In place: each block becomes 1 where all of it is masked, else 0.
void halve(uint8_t* mask, const Shape& shape);

// coarse   disparities of the view in halved pictures.
// own, raw disparities on the matcher's grid, whose columns count from the view's last one where it is mirrored. Both
//          take what coarse pixels say where that is beyond the matcher's range, and near its end where they say
//          nothing themselves: there either of two neighbours may be missing.
void takeNearer(const uint16_t* coarse, const Shape& shape, bool mirrored, uint16_t* own, uint16_t* raw);

}  // namespace nadir::ground
