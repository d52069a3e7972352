// Disparities are masked, smoothed and cleaned here.
#include <nadir/imgproc.h>
#include <nadir/stereo.h>

#include <cstring>

#include "core/memory.hpp"
#include "core/pixels.hpp"

namespace nadir {
namespace {

Img imageOver(uint32_t width, uint32_t height, uint32_t type, const void* data) {
  Img img;
  Img_Init(&img, width, height, type, const_cast<void*>(data));
  return img;
}

}  // namespace
}  // namespace nadir

uint32_t IP_SgmPostproc(const uint16_t* disparity, const uint8_t* mask, uint16_t* result, uint32_t width,
                        uint32_t height) {
  if (!disparity || !mask || !result) return 0;
  const Img input = nadir::imageOver(width, height, IMG_TYPE_U16, disparity);
  const Img discarded = nadir::imageOver(width, height, IMG_TYPE_U8, mask);
  Img output = nadir::imageOver(width, height, IMG_TYPE_U16, result);

  const nadir::Scratch<uint16_t> pixels(nadir::pixelCount(input));
  if (!pixels) return 0;
  std::memset(pixels.get(), 0, nadir::pixelCount(input) * sizeof(uint16_t));  // the median leaves its border as it is
  Img smoothed = nadir::imageOver(width, height, IMG_TYPE_U16, pixels.get());

  return IP_Mask(&input, &discarded, &output, MASK_CLEAR_SET) && IP_Median3x3(&output, &smoothed) &&
         IP_Morph3x3(&smoothed, &output, MORPH_CLEAN);
}
