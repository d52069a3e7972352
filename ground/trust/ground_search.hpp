// Where the ground is: on the camera file's plane, or else on which one.
#pragma once

#include "ground/trust/blocks.hpp"

namespace nadir::ground {

struct FoundGround {
  DisparityPlane plane;
  Agreement agreement;
};

// Looks at planes of every direction for the one with the most blocks on it and the fewest below it. Without
// three blocks that span a plane the agreement is empty. The generator's numbers are the same everywhere, and so
// is the plane.
FoundGround searchedGround(const Block* blocks, size_t count);

// True where blocks lie on a plane in one piece with little below it: the ground, whatever else fills the picture.
bool clusters(const Agreement& agreement);

// True where the expected ground holds its own against the best plane there is, or is ground for itself: see
// docs/trust.md for the figures.
bool isThere(const Agreement& expected, const Agreement& best);

// True where two planes differ by no more than what blocks on one of them may, all over the picture.
bool areAlike(const DisparityPlane& a, const DisparityPlane& b, uint32_t width, uint32_t height);

}  // namespace nadir::ground
