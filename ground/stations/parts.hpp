// What touches is parted where its heights sink between two tops: people who stand shoulder to shoulder.
#pragma once

#include <cstdint>

#include "ground/records/shape.hpp"

namespace nadir::ground {

// What is known of a cell while its region is parted.
struct PartCell {
  uint16_t order;    // the cells by their heights: which one comes at this place
  uint16_t towards;  // the part that a cell belongs to is told by the end of this chain, which leads to itself
  uint16_t cells;    // of the part that ends here
  uint16_t top;      // its height, mm; 0 as long as it is too small to have one
};

struct PartRule {
  uint16_t dip;         // mm
  uint32_t leastCells;  // which reach a part's top, at least 1: a single wrong cell is none
};

// Cells are taken from the highest down. One that touches no part begins a part, others join one. Where parts meet that
// both have a top so far above the meeting place, they stay apart; else they become one. The source of the method
// stands in the public header.
//
// heights  of the map.
// memory   room for a record of each cell; a map of regions has at most 128 x 128.
// labels   of joined cells; receives their parts', numbered anew in the order of their first cells.
void part(const uint16_t* heights, const PartRule& rule, const Shape& shape, PartCell* memory, uint16_t* labels);

}  // namespace nadir::ground
