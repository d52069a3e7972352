#include <nadir/image.h>
#include <nadir/imgproc.h>

#include <vector>

#include "lab/random.hpp"
#include "tests/counts/calls.hpp"

namespace nadir::test::counts {
namespace {

// Not a multiple of any vector.
constexpr uint16_t kWidth = 167, kHeight = 61;
constexpr size_t kPixels = size_t{kWidth} * kHeight;

template <class T>
struct Picture {
  Picture(uint32_t type, std::vector<T> values, uint16_t width = kWidth, uint16_t height = kHeight)
      : pixels(std::move(values)), img{width, height, sizeof(T), type, pixels.data()} {}
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;
  operator Img*() { return &img; }

  std::vector<T> pixels;
  Img img;
};

// Below `bound`, a third of them 0.
std::vector<uint16_t> holes(uint64_t seed, uint32_t bound = 65536) {
  Random random(seed);
  std::vector<uint16_t> values = random.values<uint16_t>(kPixels, bound);
  for (uint16_t& value : values) value = random.below(3) == 0 ? uint16_t{0} : value;
  return values;
}

struct Inputs {
  Picture<uint16_t> a{IMG_TYPE_U16, holes(1, 4096)}, b{IMG_TYPE_U16, holes(2)}, out{IMG_TYPE_U16, holes(3)};
  Picture<uint8_t> shape{IMG_TYPE_U8, Random(4).values<uint8_t>(kPixels, 2)};
};

void callDescriptors() {
  Inputs in;
  Img img;
  ImgC imgC;
  done(Img_Init(&img, kWidth, kHeight, IMG_TYPE_U16, in.a.pixels.data()));
  done(ImgC_Init(&imgC, kWidth, kHeight, IMG_TYPE_U16, in.b.pixels.data()));
  done(Img_FillBuffer(&img, 1234));
  done(Img_Copy(&imgC, &img));
  Picture<int32_t> wide(IMG_TYPE_S32, std::vector<int32_t>(kPixels));
  done(Img_Copy(&imgC, wide));
  Picture<int16_t> sign(IMG_TYPE_S16, Random(5).values<int16_t>(kPixels, 65536));
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
  Picture<uint16_t> amounts(IMG_TYPE_U16, Random(6).values<uint16_t>(kPixels, 15));
  for (uint16_t& amount : amounts.pixels) ++amount;
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
  Picture<uint16_t> vga(IMG_TYPE_U16, Random(7).values<uint16_t>(640 * 480, 65536), 640, 480);
  Picture<uint16_t> qvga(IMG_TYPE_U16, std::vector<uint16_t>(320 * 240), 320, 240);
  done(IP_ScaleVga2Qvga(vga, qvga));
}

void callAverages() {
  Inputs in;
  Picture<int32_t> sum(IMG_TYPE_S32, std::vector<int32_t>(kPixels));
  Picture<uint16_t> count(IMG_TYPE_U16, std::vector<uint16_t>(kPixels));
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
