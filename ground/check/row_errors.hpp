// By what fraction of a row a field is still off, told by the costs of the rows above and below.
#pragma once

#include "ground/check/looks.hpp"
#include "ground/check/row_field.hpp"

namespace nadir::ground {

constexpr uint32_t errorSide = 8;  // pixels of a block

inline size_t largestErrorCount(uint32_t width, uint32_t height) {
  return size_t{width / errorSide} * (height / errorSide);
}

// The picture with its rows moved so that row y shows what was `field` rows further up: where the field is right, both
// pictures then show the same rows. A pixel any of whose sources is missing has no data.
void moveRows(const uint16_t* picture, uint32_t width, uint32_t height, const RowField& field, uint16_t* moved);

// Lists the blocks with a match of one surface and a distinct row. The pair's disparities must be those of a look
// without a shift, with as many columns.
size_t listErrors(const LookPair& pair, int32_t columns, RowError* errors);

}  // namespace nadir::ground
