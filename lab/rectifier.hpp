// libnadirground's rectifiers run from C++, and lenses of every model to run them on.
#pragma once

#include <nadir/rectify.h>

#include <algorithm>
#include <vector>

#include "lab/road.hpp"

namespace nadir::lab {

struct LensKind {
  const char* name;
  uint32_t model;
  std::vector<double> coefficients;
};

// One of each number of coefficients that calibrations have. They bend as lenses do that one can buy.
inline const std::vector<LensKind>& lensKinds() {
  static const std::vector<LensKind> kinds = {
      {"none", NADIR_LENS_NONE, {}},
      {"plumb bob of 4", NADIR_LENS_BROWN, {-0.28, 0.09, 0.001, -0.0008}},
      {"plumb bob of 5", NADIR_LENS_BROWN, {-0.28, 0.09, 0.001, -0.0008, -0.01}},
      {"rational", NADIR_LENS_BROWN, {0.3, 0.05, 0.001, -0.0008, 0.01, 0.6, 0.1, 0.02}},
      {"thin prism",
       NADIR_LENS_BROWN,
       {-0.28, 0.09, 0.001, -0.0008, -0.01, 0.01, 0.002, 0.001, 0.003, -0.001, 0.002, -0.002}},
      {"fisheye", NADIR_LENS_FISHEYE, {-0.02, 0.004, -0.001, 0.0003}}};
  return kinds;
}

inline NadirLens lensOf(const LensKind& kind, uint32_t width, uint32_t height) {
  NadirLens lens = emptyRecord<NadirLens>();
  lens.width_px = width;
  lens.height_px = height;
  lens.model = kind.model;
  lens.focal_x_px = 0.78 * width;
  lens.focal_y_px = 0.8 * width;
  lens.principal_x_px = 0.49 * width;
  lens.principal_y_px = 0.51 * height;
  std::copy(kind.coefficients.begin(), kind.coefficients.end(), lens.coefficients);
  return lens;
}

// Turned by about three degrees, with a little of the picture's surroundings in sight.
inline NadirRectifiedView turnedView(uint32_t width, uint32_t height) {
  NadirRectifiedView view = emptyRecord<NadirRectifiedView>();
  view.width_px = width;
  view.height_px = height;
  const double rotation[] = {0.998300538265,  -0.030480845296, -0.049668434337, 0.029481161923, 0.999350205807,
                             -0.020737098270, 0.050268244361,  0.019237573210,  0.998550459109};
  std::copy(rotation, rotation + 9, view.rotation);
  view.focal_px = 0.68 * width;
  view.principal_x_px = 0.48 * width;
  view.principal_y_px = 0.52 * height;
  return view;
}

class Rectifier {
 public:
  Rectifier(const NadirLens& lens, const NadirRectifiedView& view) : view_(view) {
    demand(nadir_rectifier_create(&lens, &view, &rectifier_, nullptr));
  }
  ~Rectifier() { nadir_rectifier_destroy(rectifier_); }
  Rectifier(const Rectifier&) = delete;
  Rectifier& operator=(const Rectifier&) = delete;
  NadirRectifier* get() const { return rectifier_; }

  // Of a picture of the lens's width without gaps between its rows.
  template <class Pixel>
  std::vector<Pixel> rectified(const std::vector<Pixel>& picture, uint32_t width) const {
    std::vector<Pixel> out(size_t{view_.width_px} * view_.height_px);
    demand(nadir_rectifier_process(rectifier_, 8 * sizeof(Pixel), picture.data(), width * sizeof(Pixel), out.data(),
                                   view_.width_px * sizeof(Pixel)));
    return out;
  }

 private:
  NadirRectifiedView view_;
  NadirRectifier* rectifier_ = nullptr;
};

}  // namespace nadir::lab
