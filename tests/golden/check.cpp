// Results of looking at pairs: good ones, and such as were spoilt.
#include "lab/checker.hpp"
#include "lab/spoilt.hpp"
#include "lab/textured_pair.hpp"
#include "tests/golden/golden.hpp"

namespace nadir::test::golden {
namespace {

constexpr uint32_t width = 163, height = 97;

// Every third row goes down by one, as it does in pictures that are sheared: whole numbers alone.
lab::Intensities sheared(const lab::Intensities& picture) {
  lab::Intensities out(width, height);
  for (uint32_t y = 3; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x) out.at(x, y) = picture.at(x, y - 3 * x / width);
  return out;
}

Fingerprint checked() {
  const lab::TexturedPair pair = lab::texturedPair(width, height);
  const lab::Intensities left(width, height, pair.first), right(width, height, pair.reference);
  lab::Checker checker(width, height);
  Fingerprint hash;
  for (const auto& [first, second] :
       {lab::PicturePair{left, right}, {right, left}, {left, sheared(right)}, {left, left}})
    lab::addCheckup(hash, checker.checkup(lab::pairOf(first, second)));
  return hash;
}

}  // namespace

std::vector<Case> checkCases() { return {{"Checked", checked}}; }

}  // namespace nadir::test::golden
