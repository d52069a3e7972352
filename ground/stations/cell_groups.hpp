// Cells of a map sorted into groups, and what is said of each group's heights.
#pragma once

#include <cstddef>
#include <cstdint>

namespace nadir::ground {

struct CellSet {
  uint32_t cells, highestMm, medianMm;  // the median is the lower of the two middle heights; 0 without a cell
};

// heights  of the cells, mm, in any order.
CellSet cellSet(const uint16_t* heights, uint32_t cells);

// Sorts the heights of the cells that are taken by their group, groups[i] from 1 to `count` or 0 for none, by counting.
//
// begins  receives for each group, 1 to `count`, where its heights begin among the sorted ones; they end where those of
//         the next group begin, begins[count + 1].
// sorted  room for as many heights as there are cells.
//
// Returns how many were sorted.
template <class Taken>
uint32_t sortByGroup(const uint16_t* groups, const uint16_t* heights, uint32_t cells, uint32_t count, Taken taken,
                     uint32_t* begins, uint16_t* sorted) {
  for (uint32_t g = 0; g <= count; ++g) begins[g] = 0;
  for (uint32_t i = 0; i < cells; ++i)
    if (groups[i] != 0 && taken(i)) ++begins[groups[i]];
  uint32_t sum = 0;
  for (uint32_t g = 1; g <= count; ++g) begins[g] = sum += begins[g];
  for (uint32_t i = 0; i < cells; ++i)
    if (groups[i] != 0 && taken(i)) sorted[--begins[groups[i]]] = heights[i];
  return begins[count + 1] = sum;
}

}  // namespace nadir::ground
