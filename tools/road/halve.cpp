// Each block of 2 x 2 pixels becomes one.
#include "tools/road/halve.hpp"

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"

namespace nadir::tool {

namespace {

uint16_t meanOfData(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
  const uint32_t count = (a != 0) + (b != 0) + (c != 0) + (d != 0);
  return static_cast<uint16_t>(count == 0 ? 0 : (a + b + c + d + count / 2) / count);
}

}  // namespace

Grid<uint16_t> halved(const Grid<uint16_t>& picture) {
  if (picture.width != 640 || picture.height != 480)
    throw tool::Error("only pictures of 640 x 480 pixels can be halved, these are " +
                      tool::sizeText(picture.width, picture.height));
  Grid<uint16_t> half(320, 240);
  for (uint32_t y = 0; y < half.height; ++y) {
    const uint16_t *top = picture.row(2 * y), *bottom = picture.row(2 * y + 1);
    for (uint32_t x = 0; x < half.width; ++x)
      half.at(x, y) = meanOfData(top[2 * x], top[2 * x + 1], bottom[2 * x], bottom[2 * x + 1]);
  }
  return half;
}

}  // namespace nadir::tool
