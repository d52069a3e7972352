// What the library's checker found of a pair, as a sentence, a table, JSON and a picture.
#pragma once

#include <nadir/check.h>

#include <string>

#include "lab/grid.hpp"
#include "tools/base/json_value.hpp"
#include "tools/files/files.hpp"

namespace nadir::tool {

using lab::Grid;

// A pair and what was found of it.
struct CheckedPair {
  const Grid<uint16_t>&left, &right;
  uint32_t wantedWidth, wantedHeight;  // the left picture's, or the camera file's
  uint32_t range;                      // NADIR_RANGE_..., which disparities were held to
  NadirCheckup checkup;
};

// "offset: the left picture shows everything 2.0 rows further down than the right one."
std::string verdictSentence(const CheckedPair& pair);

// All numbers, for people.
std::string checkTable(const CheckedPair& pair);

Json checkJson(const CheckedPair& pair);

// The right picture with a colour where rows were compared: how many further down the left one shows the same.
Bytes encodeCheckPlot(const CheckedPair& pair);

}  // namespace nadir::tool
