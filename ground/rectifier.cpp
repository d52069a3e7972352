// The calls of include/nadir/rectify.h.
#include <nadir/rectify.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "ground/kernels/kernels.hpp"
#include "ground/lens/source_map.hpp"
#include "ground/lens/turns.hpp"
#include "ground/lens/views.hpp"
#include "ground/records/checks.hpp"
#include "ground/records/plane_view.hpp"

using namespace nadir::ground;

struct NadirRectifier {
  uint32_t width, height;              // of the view
  uint32_t sourceWidth, sourceHeight;  // of the lens's picture
  SourceMap map;
};

namespace nadir::ground {

namespace {

NadirStatus answered(const Judgement& j, NadirFault* fault) {
  if (fault) *fault = {sizeof *fault, j.area, 0, 0, j.field};
  return j.status;
}

NadirRectifier* rectifierIn(Arena& arena, const NadirRectifiedView& view) {
  NadirRectifier* rectifier = arena.take<NadirRectifier>();
  const SourceMap map = sourceMap(arena, view);
  if (rectifier) *rectifier = {view.width_px, view.height_px, 0, 0, map};
  return rectifier;
}

Judgement judgedPair(const NadirLens& left, const NadirLens& right) {
  if (const Judgement j = judged(left); j.status) return j;
  Judgement ofRight = judged(right);
  ofRight.area = ofRight.status ? 1 : 0;
  return ofRight;
}

Judgement judgedRotation(const NadirRectifiedView& view) {
  Turn turn{};
  std::copy_n(view.rotation, 9, turn.m);
  return isRotation(turn) ? Judgement{} : Judgement{NADIR_BAD_CAMERA, "rotation"};
}

Judgement judgedBoth(const NadirLens& lens, const NadirRectifiedView& view) {
  if (const Judgement j = judged(lens); j.status) return j;
  if (const Judgement j = judged(view); j.status) return j;
  return judgedRotation(view);
}

void rectify(const NadirRectifier& r, RectifyRow row, const void* picture, size_t stride, void* rectified,
             size_t rectifiedStride) {
  auto* out = static_cast<uint8_t*>(rectified);
  for (uint32_t y = 0; y < r.height; ++y)
    row(picture, stride, r.map.row(r.width, y), out + y * rectifiedStride, r.width);
}

}  // namespace

}  // namespace nadir::ground

NadirStatus nadir_rectified_views(const NadirLens* left, const NadirLens* right, const double rotation[9],
                                  const double translationMm[3], NadirRectifiedView* leftView,
                                  NadirRectifiedView* rightView, double* baselineMm, NadirFault* fault) {
  if (!left || !right || !rotation || !translationMm || !leftView || !rightView || !baselineMm)
    return NADIR_NULL_POINTER;
  if (fault && !isWhole(fault)) return NADIR_BAD_RECORD;
  if (!isWhole(leftView) || !isWhole(rightView)) return answered({NADIR_BAD_RECORD, "view"}, fault);
  if (const Judgement j = judgedPair(*left, *right); j.status) return answered(j, fault);
  double turn[9], shift[3];
  std::copy_n(rotation, 9, turn);
  std::copy_n(translationMm, 3, shift);
  Views views{};
  const Judgement found = findViews(*left, *right, turn, shift, views);
  if (found.status) return answered(found, fault);
  *leftView = views.left;
  *rightView = views.right;
  *baselineMm = views.baselineMm;
  return answered({}, fault);
}

size_t nadir_rectifier_bytes(const NadirRectifiedView* view) {
  if (!view || judged(*view).status) return 0;
  Arena counting(nullptr);
  rectifierIn(counting, *view);
  return counting.bytes();
}

NadirStatus nadir_rectifier_create(const NadirLens* lens, const NadirRectifiedView* view, NadirRectifier** rectifier,
                                   NadirFault* fault) {
  if (!lens || !view || !rectifier) return NADIR_NULL_POINTER;
  if (fault && !isWhole(fault)) return NADIR_BAD_RECORD;
  if (const Judgement j = judgedBoth(*lens, *view); j.status) return answered(j, fault);
  void* block = std::malloc(nadir_rectifier_bytes(view));
  if (!block) return answered({NADIR_NO_MEMORY}, fault);
  Arena arena(block);
  NadirRectifier* made = rectifierIn(arena, *view);
  made->sourceWidth = lens->width_px;
  made->sourceHeight = lens->height_px;
  fill(made->map, *lens, *view);
  *rectifier = made;
  return answered({}, fault);
}

void nadir_rectifier_destroy(NadirRectifier* rectifier) { std::free(rectifier); }

NadirStatus nadir_rectifier_process(const NadirRectifier* rectifier, uint32_t bits, const void* picture, size_t stride,
                                    void* rectified, size_t rectifiedStride) {
  if (!rectifier || !picture || !rectified) return NADIR_NULL_POINTER;
  const NadirRectifier& r = *rectifier;
  if (bits != 8 && bits != 16) return NADIR_BAD_FRAME;
  const uint64_t bytes = bits / 8;
  if (!holdsRows(stride, r.sourceWidth * bytes, r.sourceHeight)) return NADIR_BAD_FRAME;
  if (!holdsRows(rectifiedStride, r.width * bytes, r.height)) return NADIR_BAD_FRAME;
  const RoadKernels& kernels = roadKernels();
  rectify(r, bits == 8 ? kernels.rectify8 : kernels.rectify16, picture, stride, rectified, rectifiedStride);
  return NADIR_OK;
}

NadirStatus nadir_rectifier_source(const NadirRectifier* rectifier, uint32_t column, uint32_t row, double* sourceX,
                                   double* sourceY) {
  if (!rectifier || !sourceX || !sourceY) return NADIR_NULL_POINTER;
  if (column >= rectifier->width || row >= rectifier->height) return NADIR_NOTHING_FOUND;
  PlanePoint source{};
  if (!findSource(rectifier->map.row(rectifier->width, row), column, source)) return NADIR_NOTHING_FOUND;
  *sourceX = source.x;
  *sourceY = source.y;
  return NADIR_OK;
}
