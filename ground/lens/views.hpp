// The views of a rectified pair, from two cameras and how they stand to each other.
#pragma once

#include <nadir/rectify.h>

#include "ground/records/checks.hpp"

namespace nadir::ground {

struct Views {
  NadirRectifiedView left, right;
  double baselineMm;
};

// Of lenses that were found good and any rotation and translation.
Judgement findViews(const NadirLens& left, const NadirLens& right, const double (&rotation)[9],
                    const double (&translation)[3], Views& views);

}  // namespace nadir::ground
