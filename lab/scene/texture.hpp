// The pattern on every surface: a function of the place in space, so that both cameras see the same one.
#pragma once

#include <cstdint>

#include "lab/scene/vector.hpp"

namespace nadir::scene {

// Between about -1 and 1, around 0.
//
// pixel  the side of a picture's pixel at this place, mm. The pattern has no detail finer than two of them, nor any
//        coarser than 64: what is seen is sharp enough to match at every distance, and never aliased. Both cameras have
//        the same depth to a point and so agree on it.
double texture(uint64_t key, const Vec& place, double pixel);

}  // namespace nadir::scene
