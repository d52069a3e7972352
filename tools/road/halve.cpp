// Each block of 2 x 2 pixels becomes one.
#include "tools/road/halve.hpp"

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"

namespace nadir::tool {

namespace {

constexpr uint32_t mostColumns = 1280;

uint16_t meanOfData(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
  const uint32_t count = (a != 0) + (b != 0) + (c != 0) + (d != 0);
  return static_cast<uint16_t>(count == 0 ? 0 : (a + b + c + d + count / 2) / count);
}

}  // namespace

Grid<uint16_t> halved(const Grid<uint16_t>& picture) {
  Grid<uint16_t> half(picture.width / 2, picture.height / 2);
  for (uint32_t y = 0; y < half.height; ++y) {
    const uint16_t *top = picture.row(2 * y), *bottom = picture.row(2 * y + 1);
    for (uint32_t x = 0; x < half.width; ++x)
      half.at(x, y) = meanOfData(top[2 * x], top[2 * x + 1], bottom[2 * x], bottom[2 * x + 1]);
  }
  return half;
}

// A block's middle, 0.5 from its first pixel's, becomes a pixel's.
Camera halved(Camera camera) {
  camera.widthPx /= 2;
  camera.heightPx /= 2;
  camera.focalPx /= 2;
  camera.principalXPx = (camera.principalXPx - 0.5) / 2;
  camera.principalYPx = (camera.principalYPx - 0.5) / 2;
  camera.columnShiftPx /= 2;
  return camera;
}

Grid<uint8_t> halvedMask(const Grid<uint8_t>& mask) {
  Grid<uint8_t> half(mask.width / 2, mask.height / 2);
  for (uint32_t y = 0; y < half.height; ++y) {
    const uint8_t *top = mask.row(2 * y), *bottom = mask.row(2 * y + 1);
    for (uint32_t x = 0; x < half.width; ++x)
      half.at(x, y) = top[2 * x] || top[2 * x + 1] || bottom[2 * x] || bottom[2 * x + 1];
  }
  return half;
}

uint32_t scaleDownForWidth(uint32_t width) {
  uint32_t scaleDown = 1;
  while (width / scaleDown > mostColumns) scaleDown *= 2;
  return scaleDown;
}

Pair scaledDown(Pair pair, uint32_t scaleDown) {
  const uint32_t width = pair.left.width, height = pair.left.height;
  if (width / scaleDown < smallestSide || height / scaleDown < smallestSide)
    throw UnusableFile(format("pictures of %s pixels cannot be scaled down by %u: at least %s must be left",
                              sizeText(width, height).c_str(), scaleDown,
                              sizeText(smallestSide, smallestSide).c_str()));
  for (uint32_t n = 1; n < scaleDown; n *= 2) pair = {halved(pair.left), halved(pair.right)};
  return pair;
}

std::string scaleDownSentence(const PictureSize& size, uint32_t scaleDown) {
  return format("both pictures are scaled down to %s pixels (--scale-down %u)",
                sizeText(size.width, size.height).c_str(), scaleDown);
}

}  // namespace nadir::tool
