// Frames are averaged over time here, each pixel over those frames that have it.
#include <nadir/imgproc.h>

#include "core/pixels.hpp"
#include "imgproc/smooth_kernels.hpp"
#include "simd/cpu.hpp"

namespace nadir {
namespace {

// The checks that all three functions share, for a frame that goes in or the average that comes out.
bool canAverage(const Img* frame, const Img* sum, const Img* count) {
  return frame && sum && count && frame->type == IMG_TYPE_U16 && sum->type == IMG_TYPE_S32 &&
         count->type == IMG_TYPE_U16 && sameSize(*frame, *sum);
}

void addRow(const uint16_t* pixels, uint32_t* sums, uint16_t* counts, size_t n, uint32_t invalid) {
  forEachPixel(n, [=](size_t i) {
    const uint32_t valid = pixels[i] != invalid;
    sums[i] += valid * pixels[i];
    counts[i] = static_cast<uint16_t>(counts[i] + valid);
  });
}

// A negative limit lets every pixel through that has a count, as 0 does.
int32_t countLimit(const ImgAvrgState& state) {
  const int32_t limit = static_cast<int32_t>(state.minValidPercent * state.frameCount) / 100;
  return limit > 0 ? limit : 0;
}

}  // namespace
}  // namespace nadir

int32_t IP_Utils_ImgAvrgInit(const Img* frame, Img* sum, Img* count, ImgAvrgState* state) {
  if (!nadir::canAverage(frame, sum, count)) return 0;
  *state = {0, 50, 0};
  Img_FillBuffer(sum, 0);
  Img_FillBuffer(count, 0);
  return 1;
}

int32_t IP_Utils_ImgAvrgAdd(const Img* frame, Img* sum, Img* count, ImgAvrgState* state) {
  if (!nadir::canAverage(frame, sum, count)) return 0;
  for (size_t y = 0; y < frame->height; ++y) {
    nadir::addRow(nadir::row<uint16_t>(*frame, y), nadir::row<uint32_t>(*sum, y), nadir::row<uint16_t>(*count, y),
                  frame->width, state->invalidValue);
  }
  ++state->frameCount;
  return 1;
}

uint32_t IP_Utils_ImgAvrgProcess(Img* out, const Img* sum, const Img* count, const ImgAvrgState* state) {
  if (!nadir::canAverage(out, sum, count)) return 0;
  const int32_t limit = nadir::countLimit(*state);
  const nadir::SmoothKernels& kernels = nadir::smoothKernels(nadir::cpu());
  for (size_t y = 0; y < out->height; ++y) {
    kernels.mean(nadir::row<int32_t>(*sum, y), nadir::row<uint16_t>(*count, y), limit, nadir::row<uint16_t>(*out, y),
                 out->width);
  }
  return 1;
}
