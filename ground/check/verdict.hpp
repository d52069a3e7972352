// What the numbers of a pair amount to.
#pragma once

#include <nadir/check.h>

namespace nadir::ground {

// How disparities lie in the picture, as far as a turned picture has to be told from a scaled one.
struct Depths {
  double mean;    // pixels
  double spread;  // standard deviation, pixels
  double perRow;  // slope down the picture
};

// The first verdict that holds of a pair of the checker's size. `identical`: all bytes of both pictures are the same.
uint32_t verdictOf(const NadirCheckup& checkup, const Depths& depths, bool identical);

}  // namespace nadir::ground
