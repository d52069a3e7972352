// Pairs as cameras give them, made into rectified ones.
#pragma once

#include <memory>
#include <string>

#include "tools/camera/rectification.hpp"
#include "tools/road/pair_input.hpp"

namespace nadir::tool {

// It is made once; any number of threads may then rectify with it.
class PairRectifier {
 public:
  // The calibration is complete.
  explicit PairRectifier(const Calibration& calibration);

  // Samples of 0 are no data, before and after. Throws UnusableFile where a picture is not of its lens's size.
  Pair rectified(const Pair& pair) const;

 private:
  struct Destroy {
    void operator()(NadirRectifier* rectifier) const { nadir_rectifier_destroy(rectifier); }
  };
  struct Side {
    NadirLens lens;
    NadirRectifiedView view;
    std::unique_ptr<NadirRectifier, Destroy> handle;
  };

  static Side sideOf(const NadirLens& lens, const NadirRectifiedView& view, const std::string& path);
  Grid<uint16_t> rectified(const Side& side, const Grid<uint16_t>& picture) const;

  std::string path_;  // of the calibration
  Side left_, right_;
};

}  // namespace nadir::tool
