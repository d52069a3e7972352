// What the matcher leaves of a fraction of a pixel is read from the pictures themselves.
#pragma once

#include <cstdint>

#include "ground/records/arena.hpp"
#include "ground/records/shape.hpp"

namespace nadir::ground {

// The compared rows around the one that is moved.
struct CompareMemory {
  float* rows;
};

CompareMemory compareMemory(Arena& arena, const Shape& shape);

// Moves each disparity to where both pictures look most alike about it, by no more than a quarter of a pixel.
//
// first, reference  the pictures as the matcher takes them; disparities are the reference's.
void compare(const CompareMemory& memory, const Shape& shape, const uint16_t* first, const uint16_t* reference,
             uint16_t* disparity);

}  // namespace nadir::ground
