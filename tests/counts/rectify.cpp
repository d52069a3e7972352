// Calls of rectify.h: a quarter of a VGA picture through a lens of the usual model.
#include "lab/random.hpp"
#include "lab/rectifier.hpp"
#include "tests/counts/calls.hpp"

namespace nadir::test::counts {
namespace {

constexpr uint32_t width = 320, height = 240;

void found(NadirStatus status) { done(status == NADIR_OK); }

void callViews(const NadirLens& lens, const NadirRectifiedView& turned) {
  const double translation[] = {-190.5, 3.25, 7};
  NadirRectifiedView left = lab::emptyRecord<NadirRectifiedView>(), right = left;
  double baseline;
  found(nadir_rectified_views(&lens, &lens, turned.rotation, translation, &left, &right, &baseline, nullptr));
}

}  // namespace

void callRectify() {
  lab::Random random(1);
  const auto picture = random.values<uint16_t>(width * height, 4000);
  std::vector<uint16_t> out(width * height);
  const NadirLens lens = lab::lensOf(lab::lensKinds()[2], width, height);
  const NadirRectifiedView view = lab::turnedView(width, height);
  NadirRectifier* rectifier;
  double x, y;
  callViews(lens, view);
  done(nadir_rectifier_bytes(&view) > 0);
  found(nadir_rectifier_create(&lens, &view, &rectifier, nullptr));
  found(nadir_rectifier_process(rectifier, 16, picture.data(), 2 * width, out.data(), 2 * width));
  found(nadir_rectifier_source(rectifier, width / 2, height / 2, &x, &y));
  nadir_rectifier_destroy(rectifier);
}

}  // namespace nadir::test::counts
