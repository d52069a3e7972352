// Calls of image.h and imgproc.h.
#include <nadir/image.h>
#include <nadir/imgproc.h>

#include <vector>

#include "lab/image.hpp"
#include "lab/random.hpp"
#include "tests/counts/calls.hpp"

namespace nadir::test::counts {
namespace {

// Not a multiple of any vector.
constexpr uint16_t pictureWidth = 167, pictureHeight = 61;
constexpr size_t picturePixels = size_t{pictureWidth} * pictureHeight;

template <class T>
lab::Picture<T> pictureOf(std::vector<T> pixels) {
  return lab::Picture<T>(pictureWidth, pictureHeight, std::move(pixels));
}

template <class T>
lab::Picture<T> zeros() {
  return lab::Picture<T>(pictureWidth, pictureHeight);
}

// Values below `bound`, a third of them 0.
lab::Picture<uint16_t> holes(uint64_t seed, uint32_t bound = 65536) {
  lab::Random random(seed);
  std::vector<uint16_t> values = random.values<uint16_t>(picturePixels, bound);
  for (uint16_t& value : values) value = random.below(3) == 0 ? uint16_t{0} : value;
  return pictureOf(std::move(values));
}

struct Inputs {
  lab::Picture<uint16_t> a = holes(1, 4096), b = holes(2), out = holes(3);
  lab::Picture<uint8_t> shape = pictureOf(lab::Random(4).values<uint8_t>(picturePixels, 2));
};

void callDescriptors() {
  Inputs in;
  Img img;
  ImgC imgC;
  done(Img_Init(&img, pictureWidth, pictureHeight, IMG_TYPE_U16, in.a.grid.pixels.data()));
  done(ImgC_Init(&imgC, pictureWidth, pictureHeight, IMG_TYPE_U16, in.b.grid.pixels.data()));
  done(Img_FillBuffer(&img, 1234));
  done(Img_Copy(&imgC, &img));
  auto wide = zeros<int32_t>();
  done(Img_Copy(&imgC, wide));
  auto sign = pictureOf(lab::Random(5).values<int16_t>(picturePixels, 65536));
  done(Img_Convert_I(sign, IMG_TYPE_U16));
}

void callPointOperations() {
  Inputs in;
  for (uint32_t mode = THRESH_ZERO_BELOW; mode <= THRESH_ZERO_ABOVE; ++mode) {
    done(IP_Threshold(in.a, in.out, 2000, mode));
    done(IP_Threshold_I(in.out, 1000, mode));
  }
  for (int32_t mode = THRESH_ZERO_INSIDE; mode <= THRESH_ZERO_OUTSIDE; ++mode) {
    done(IP_ThresholdRange(in.b, in.out, 1000, 30000, mode));
    done(IP_ThresholdRange_I(in.out, 2000, 20000, mode));
  }
  auto amounts = pictureOf(lab::Random(6).values<uint16_t>(picturePixels, 15));
  for (uint16_t& amount : amounts.grid.pixels) ++amount;
  for (uint32_t op = IMGOP_ADD; op <= IMGOP_SHL; ++op) {
    done(IP_ImgOpImg(in.b, amounts, in.out, op));
    done(IP_ImgOpImg_I(in.out, amounts, op));
  }
  for (const uint32_t mode : {MASK_KEEP_SET, MASK_CLEAR_SET}) {
    done(IP_Mask(in.a, in.shape, in.out, mode));
    done(IP_Mask_I(in.out, in.shape, mode));
  }
}

void callFilters() {
  Inputs in;
  done(IP_Median3x3(in.b, in.out));
  done(IP_Maximum3x3(in.b, in.out));
  for (int32_t op = MORPH_ERODE; op <= MORPH_CLEAN; ++op) done(IP_Morph3x3(in.b, in.out, op));
  done(IP_Gauss(in.b, in.out, 0));
  done(IP_PullPush(in.b, in.out));
  const Img& holes = *static_cast<Img*>(in.b);
  std::vector<uint8_t> memory(nadir_pull_push_bytes(holes.width, holes.height));
  done(nadir_pull_push(in.b, in.out, memory.data(), memory.size()));
  lab::Picture<uint16_t> vga(640, 480, lab::Random(7).values<uint16_t>(640 * 480, 65536)), qvga(320, 240);
  done(IP_ScaleVga2Qvga(vga, qvga));
}

void callAverages() {
  Inputs in;
  auto sum = zeros<int32_t>();
  auto count = zeros<uint16_t>();
  ImgAvrgState state;
  done(IP_Utils_ImgAvrgInit(in.out, sum, count, &state));
  state.invalidValue = 0;
  state.minValidPercent = 50;
  done(IP_Utils_ImgAvrgAdd(in.a, sum, count, &state));
  done(IP_Utils_ImgAvrgAdd(in.b, sum, count, &state));
  done(IP_Utils_ImgAvrgProcess(in.out, sum, count, &state));
}

}  // namespace

void callImages() {
  callDescriptors();
  callPointOperations();
  callFilters();
  callAverages();
}

}  // namespace nadir::test::counts
