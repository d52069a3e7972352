// Works of rectify.h: pictures through a lens of the usual model.
#include <memory>

#include "bench/work.hpp"
#include "lab/rectifier.hpp"

namespace nadir::bench {
namespace {

template <class Pixel>
void addPicture(Works& works, const std::string& name, const lab::TexturedPair& pair) {
  const auto picture = std::make_shared<std::vector<Pixel>>(pair.first.begin(), pair.first.end());
  const auto rectifier = std::make_shared<lab::Rectifier>(lab::lensOf(lab::lensKinds()[2], pair.width, pair.height),
                                                          lab::turnedView(pair.width, pair.height));
  const uint64_t pixels = pair.first.size();
  const auto out = std::make_shared<std::vector<Pixel>>(pixels);
  const size_t stride = pair.width * sizeof(Pixel);
  works.push_back({name, pixels, (6 + 2 * sizeof(Pixel)) * pixels, [=] {
                     lab::demand(nadir_rectifier_process(rectifier->get(), 8 * sizeof(Pixel), picture->data(), stride,
                                                         out->data(), stride));
                   }});
}

void addSources(Works& works, const lab::TexturedPair& pair) {
  const auto rectifier = std::make_shared<lab::Rectifier>(lab::lensOf(lab::lensKinds()[2], pair.width, pair.height),
                                                          lab::turnedView(pair.width, pair.height));
  const uint64_t pixels = pair.first.size();
  works.push_back({"nadir_rectifier_source of all pixels", pixels, 22 * pixels,
                   [rectifier, width = pair.width, height = pair.height] {
                     double x, y;
                     for (uint32_t v = 0; v < height; ++v)
                       for (uint32_t u = 0; u < width; ++u) nadir_rectifier_source(rectifier->get(), u, v, &x, &y);
                   }});
}

}  // namespace

void addRectifyWorks(Works& works, const lab::TexturedPair& pair) {
  addPicture<uint8_t>(works, "nadir_rectifier_process, 8 bits", pair);
  addPicture<uint16_t>(works, "nadir_rectifier_process, 16 bits", pair);
  addSources(works, pair);
  const NadirLens lens = lab::lensOf(lab::lensKinds()[2], pair.width, pair.height);
  const NadirRectifiedView view = lab::turnedView(pair.width, pair.height);
  works.push_back({"nadir_rectifier_create and destroy", pair.first.size(), 6 * pair.first.size(),
                   [=] { const lab::Rectifier rectifier(lens, view); }});
}

}  // namespace nadir::bench
