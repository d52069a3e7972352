// Parts of the picture vote for a shift, a turn and a scale of the rows by how much of them is matched.
#pragma once

#include "ground/check/looks.hpp"
#include "ground/check/row_field.hpp"

namespace nadir::ground {

constexpr int32_t farthestShift = 16;  // rows
constexpr uint32_t shifts = 2 * farthestShift + 1;
constexpr uint32_t partsAcross = 6, partsDown = 4, partCount = partsAcross * partsDown;

// Of each part of the picture, the share of its pixels that is matched with the rows shifted so far.
struct Densities {
  float share[shifts][partCount];
};

struct Vote {
  RowField field;
  double share;  // of the picture, that would be matched with the rows moved so
};

// Looks at the pair with every shift; the codes must be there.
Vote vote(const LookPair& pair, int32_t columns, Densities& densities);

}  // namespace nadir::ground
