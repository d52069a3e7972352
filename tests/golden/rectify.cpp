// Results of rectification: maps and pictures of every kind of lens, and the views that are found for a pair.
#include "lab/random.hpp"
#include "lab/rectifier.hpp"
#include "tests/golden/golden.hpp"

namespace nadir::test::golden {
namespace {

constexpr uint32_t width = 160, height = 120;

void addMap(Fingerprint& hash, const lab::Rectifier& rectifier) {
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x) {
      double fromX = -1, fromY = -1;
      hash.add(nadir_rectifier_source(rectifier.get(), x, y, &fromX, &fromY)).add(fromX).add(fromY);
    }
}

Fingerprint rectified() {
  Fingerprint hash;
  lab::Random random(3);
  const auto wide = random.values<uint16_t>(width * height, 65536);
  const auto narrow = random.values<uint8_t>(width * height, 256);
  for (const lab::LensKind& kind : lab::lensKinds()) {
    const lab::Rectifier rectifier(lab::lensOf(kind, width, height), lab::turnedView(width, height));
    addMap(hash, rectifier);
    hash.add(rectifier.rectified(wide, width)).add(rectifier.rectified(narrow, width));
  }
  return hash;
}

Fingerprint& addView(Fingerprint& hash, const NadirRectifiedView& view) {
  hash.add(view.width_px).add(view.height_px).add(view.rotation, 9).add(view.focal_px);
  return hash.add(view.principal_x_px).add(view.principal_y_px);
}

Fingerprint views() {
  Fingerprint hash;
  const NadirRectifiedView turned = lab::turnedView(width, height);
  for (const lab::LensKind& kind : lab::lensKinds()) {
    const NadirLens left = lab::lensOf(kind, width, height), right = lab::lensOf(kind, 140, 110);
    const double translation[] = {-190.5, 3.25, 7};
    NadirRectifiedView first = lab::emptyRecord<NadirRectifiedView>(), second = first;
    double baseline = 0;
    lab::demand(
        nadir_rectified_views(&left, &right, turned.rotation, translation, &first, &second, &baseline, nullptr));
    addView(addView(hash, first), second).add(baseline);
  }
  return hash;
}

}  // namespace

std::vector<Case> rectifyCases() { return {{"Rectified", rectified}, {"RectifiedViews", views}}; }

}  // namespace nadir::test::golden
