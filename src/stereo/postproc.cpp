// Disparities are masked, smoothed and cleaned here.
#include <nadir/imgproc.h>
#include <nadir/stereo.h>

#include <cstring>

#include "core/given_memory.hpp"
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

size_t nadir_sgm_postproc_bytes(uint16_t width, uint16_t height) {
  return nadir::bytesFor<uint16_t>(uint64_t{width} * height);
}

uint32_t nadir_sgm_postproc(const uint16_t* disparity, const uint8_t* mask, uint16_t* result, uint16_t width,
                            uint16_t height, void* memory, size_t bytes) {
  if (!disparity || !mask || !result) return 0;
  const uint64_t pixels = uint64_t{width} * height;
  uint16_t* const smoothedPixels = nadir::asArray<uint16_t>(memory, bytes, pixels);
  if (!smoothedPixels) return 0;
  nadir::clear(smoothedPixels, pixels * sizeof(uint16_t));  // the median leaves its border as it is
  const Img input = nadir::imageOver(width, height, IMG_TYPE_U16, disparity);
  const Img discarded = nadir::imageOver(width, height, IMG_TYPE_U8, mask);
  Img output = nadir::imageOver(width, height, IMG_TYPE_U16, result);
  Img smoothed = nadir::imageOver(width, height, IMG_TYPE_U16, smoothedPixels);

  return IP_Mask(&input, &discarded, &output, MASK_CLEAR_SET) && IP_Median3x3(&output, &smoothed) &&
         IP_Morph3x3(&smoothed, &output, MORPH_CLEAN);
}

uint32_t IP_SgmPostproc(const uint16_t* disparity, const uint8_t* mask, uint16_t* result, uint32_t width,
                        uint32_t height) {
  if (!disparity || !mask || !result) return 0;
  const uint16_t columns = static_cast<uint16_t>(width), rows = static_cast<uint16_t>(height);
  const size_t bytes = nadir_sgm_postproc_bytes(columns, rows);
  const nadir::Scratch<uint8_t> memory(bytes);
  return nadir_sgm_postproc(disparity, mask, result, columns, rows, memory.get(), bytes);
}
