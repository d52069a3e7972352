// libnadirground's checkers run from C++, and what they find as a hash.
#pragma once

#include <nadir/check.h>

#include <memory>

#include "lab/grid.hpp"
#include "lab/road.hpp"

namespace nadir::lab {

template <class Pixel>
NadirPlane planeOf(const Grid<Pixel>& picture) {
  return {picture.pixels.data(), picture.width * sizeof(Pixel), picture.width, picture.height};
}

template <class Pixel>
NadirPair pairOf(const Grid<Pixel>& left, const Grid<Pixel>& right) {
  NadirPair pair = emptyRecord<NadirPair>();
  pair.bits = 8 * sizeof(Pixel);
  pair.range = NADIR_RANGE_61;
  pair.left = planeOf(left);
  pair.right = planeOf(right);
  return pair;
}

class Checker {
 public:
  Checker(uint32_t width, uint32_t height) {
    NadirChecker* made = nullptr;
    demand(nadir_checker_create(width, height, &made, nullptr));
    checker_.reset(made);
  }
  NadirChecker* get() const { return checker_.get(); }

  // Its offsets last until the next pair.
  NadirCheckup checkup(const NadirPair& pair) {
    NadirCheckup found = emptyRecord<NadirCheckup>();
    demand(nadir_checker_process(get(), &pair, &found));
    return found;
  }

 private:
  struct Destroy {
    void operator()(NadirChecker* checker) const { nadir_checker_destroy(checker); }
  };
  std::unique_ptr<NadirChecker, Destroy> checker_;
};

// Every member of a checkup that is a number of its own.
inline std::vector<double> numbersOf(const NadirCheckup& c) {
  return {c.mean_left,
          c.mean_right,
          c.dark_left,
          c.dark_right,
          c.clipped_left,
          c.clipped_right,
          c.gain,
          c.noise_left,
          c.noise_right,
          c.texture_left,
          c.texture_right,
          c.blur_left_px,
          c.blur_right_px,
          c.matched,
          c.matched_aligned,
          c.unmoved,
          c.row_offset_px,
          c.row_offset_left_px,
          c.row_offset_middle_px,
          c.row_offset_right_px,
          c.row_offset_top_px,
          c.row_offset_centre_px,
          c.row_offset_bottom_px,
          c.turn_deg,
          c.scale_percent,
          c.bend_px,
          c.least_disparity_px,
          c.largest_disparity_px,
          c.nearer,
          c.behind};
}

inline Fingerprint& addCheckup(Fingerprint& print, const NadirCheckup& c) {
  print.add(c.verdict).add(c.halvings).add(c.range).add(uint64_t{c.offset_count});
  for (const double number : numbersOf(c)) addReal(print, number);
  for (size_t i = 0; i < c.offset_count; ++i) {
    const NadirRowOffset& o = c.offsets[i];
    print.add(o.column).add(o.row).add(o.rows).add(o.disparity_px);
  }
  return print;
}

}  // namespace nadir::lab
