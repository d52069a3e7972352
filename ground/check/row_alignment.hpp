// Finds which rows of two pictures belong together, whichever of them is the left one.
#pragma once

#include "ground/check/looks.hpp"
#include "ground/check/row_errors.hpp"
#include "ground/check/row_field.hpp"
#include "ground/check/row_votes.hpp"

namespace nadir::ground {

struct RowAlignmentMemory {
  LookPair look;
  Densities* densities;
  uint16_t* moved;   // a picture
  RowError* errors;  // room for largestErrorCount
};

RowAlignmentMemory rowAlignmentMemory(Arena& arena, uint32_t width, uint32_t height);

struct RowAlignment {
  double matched;         // share of the pixels as the pictures are
  double matchedAligned;  // and with their rows where they belong
  RowField field;         // left rows to be added to the right picture's
  size_t errors;          // in memory: what the field is still off, and the disparities of left columns to right ones
};

// The pictures have the size that the memory was made for.
RowAlignment rowAlignment(RowAlignmentMemory& memory, const uint16_t* left, const uint16_t* right);

}  // namespace nadir::ground
