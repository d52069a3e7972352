// Makes the library's rectifiers and hands them pictures.
#include "tools/road/pair_rectifier.hpp"

#include <new>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"

namespace nadir::tool {

PairRectifier::PairRectifier(const Calibration& calibration)
    : path_(calibration.path),
      left_(sideOf((*calibration.lenses)[0], viewsOf(calibration)[0], path_)),
      right_(sideOf((*calibration.lenses)[1], viewsOf(calibration)[1], path_)) {}

PairRectifier::Side PairRectifier::sideOf(const NadirLens& lens, const NadirRectifiedView& view,
                                          const std::string& path) {
  NadirFault fault = {};
  fault.size = sizeof fault;
  NadirRectifier* handle = nullptr;
  const NadirStatus status = nadir_rectifier_create(&lens, &view, &handle, &fault);
  if (status == NADIR_NO_MEMORY) throw std::bad_alloc();
  if (status != NADIR_OK)
    throw Error(format("%s: %s: %s", path.c_str(), fault.field ? fault.field : "lens", nadir_status_text(status)));
  return {lens, view, std::unique_ptr<NadirRectifier, Destroy>(handle)};
}

Grid<uint16_t> PairRectifier::rectified(const Side& side, const Grid<uint16_t>& picture) const {
  if (picture.width != side.lens.width_px || picture.height != side.lens.height_px)
    throw UnusableFile(format("the pictures are %s pixels, but the cameras of %s take pictures of %s",
                              sizeText(picture.width, picture.height).c_str(), path_.c_str(),
                              sizeText(side.lens.width_px, side.lens.height_px).c_str()));
  Grid<uint16_t> view(side.view.width_px, side.view.height_px);
  const NadirStatus status =
      nadir_rectifier_process(side.handle.get(), 16, picture.pixels.data(), picture.width * sizeof(uint16_t),
                              view.pixels.data(), view.width * sizeof(uint16_t));
  if (status != NADIR_OK) throw Error(nadir_status_text(status));
  return view;
}

Pair PairRectifier::rectified(const Pair& pair) const {
  return {rectified(left_, pair.left), rectified(right_, pair.right)};
}

}  // namespace nadir::tool
