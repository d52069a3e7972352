#include <nadir/nadir.h>

#include <utility>

#include "lab/random.hpp"
#include "tests/golden/golden.hpp"

namespace nadir::test::golden {
namespace {

constexpr uint32_t kWidth = 83, kHeight = 21, kPixels = kWidth * kHeight;

uint32_t typeOf(uint8_t) { return IMG_TYPE_U8; }
uint32_t typeOf(int8_t) { return IMG_TYPE_S8; }
uint32_t typeOf(uint16_t) { return IMG_TYPE_U16; }
uint32_t typeOf(int16_t) { return IMG_TYPE_S16; }
uint32_t typeOf(uint32_t) { return IMG_TYPE_U32; }
uint32_t typeOf(int32_t) { return IMG_TYPE_S32; }
uint32_t typeOf(float) { return IMG_TYPE_F32; }

// Pixels with their descriptor.
template <class T>
struct Picture {
  explicit Picture(std::vector<T> values) : pixels(std::move(values)) {
    Img_Init(&img, kWidth, kHeight, typeOf(T{}), pixels.data());
  }
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;

  std::vector<T> pixels;
  Img img;
};

// Full of values that differ from any result, so that pixels left out show.
template <class T>
struct Blank : Picture<T> {
  Blank() : Picture<T>(std::vector<T>(kPixels, static_cast<T>(0x5A))) {}
};

// Values below `bound`, a third of them 0.
template <class T>
struct Holes : Picture<T> {
  explicit Holes(uint64_t seed, uint32_t bound = 65536) : Picture<T>(make(seed, bound)) {}

 private:
  static std::vector<T> make(uint64_t seed, uint32_t bound) {
    Random random(seed);
    std::vector<T> values(kPixels);
    for (T& value : values) value = random.below(3) == 0 ? T{0} : static_cast<T>(random.below(bound));
    return values;
  }
};

// ---- thresholds, arithmetic, masks, filters ----

template <class T>
Hash threshold(uint32_t mode) {
  Holes<T> src(1, 4096), inPlace(1, 4096);
  Blank<T> dst;
  Hash hash;
  hash.done(IP_Threshold(&src.img, &dst.img, 2000, mode)).add(dst.pixels);
  return hash.done(IP_Threshold_I(&inPlace.img, 0x8FFFF, mode)).add(inPlace.pixels);
}

template <class T>
Hash thresholdRange(int32_t mode) {
  Holes<T> src(2), inPlace(2);
  Blank<T> dst;
  Hash hash;
  hash.done(IP_ThresholdRange(&src.img, &dst.img, 1000, 30000, mode)).add(dst.pixels);
  return hash.done(IP_ThresholdRange_I(&inPlace.img, 0xC000, 0x3000, mode)).add(inPlace.pixels);
}

template <class T>
Hash arithmetic(uint32_t op) {
  Holes<T> a(3), inPlace(4);
  Picture<T> b(Random(5).values<T>(kPixels, 65536));
  for (size_t i = 0; i < kPixels; ++i) {
    if (op == IMGOP_SHL || op == IMGOP_SHR) b.pixels[i] = static_cast<T>(i % 40 == 39 ? 255 : i % 40);
    if (b.pixels[i] == 0) b.pixels[i] = 1;
  }
  Blank<T> out;
  Hash hash;
  hash.done(IP_ImgOpImg(&a.img, &b.img, &out.img, op)).add(out.pixels);
  return hash.done(IP_ImgOpImg_I(&inPlace.img, &b.img, op)).add(inPlace.pixels);
}

template <class T>
Hash mask(uint32_t mode) {
  Picture<T> src(Random(6).values<T>(kPixels, 65536)), inPlace(Random(7).values<T>(kPixels, 65536));
  Holes<uint8_t> shape(8, 256);
  Blank<T> dst;
  Hash hash;
  hash.done(IP_Mask(&src.img, &shape.img, &dst.img, mode)).add(dst.pixels);
  return hash.done(IP_Mask_I(&inPlace.img, &shape.img, mode)).add(inPlace.pixels);
}

template <class T>
Hash filter(uint32_t (*operation)(const Img*, Img*), uint64_t seed) {
  Holes<T> src(seed);
  Blank<T> dst;
  return Hash().done(operation(&src.img, &dst.img)).add(dst.pixels);
}

template <class T>
Hash morphology(int32_t op) {
  Holes<T> src(9);
  Blank<T> dst;
  return Hash().done(IP_Morph3x3(&src.img, &dst.img, op)).add(dst.pixels);
}

// ---- smoothing, hole filling, halving, averages over time ----

Hash gauss() {
  Picture<uint16_t> src(Random(30).values<uint16_t>(kPixels, 65536));
  Blank<uint16_t> dst;
  Hash hash;
  hash.done(IP_Gauss(&src.img, &dst.img, 0)).add(dst.pixels);
  return hash.done(IP_Gauss(&src.img, &src.img, 0)).add(src.pixels);
}

Hash pullPush(uint32_t bound) {
  Holes<uint16_t> src(31, bound);
  Blank<uint16_t> dst;
  return Hash().done(IP_PullPush(&src.img, &dst.img)).add(dst.pixels);
}

Hash halving() {
  std::vector<uint16_t> pixels = Random(32).values<uint16_t>(640 * 480, 65536), half(320 * 240);
  Img src, dst;
  Img_Init(&src, 640, 480, IMG_TYPE_U16, pixels.data());
  Img_Init(&dst, 320, 240, IMG_TYPE_U16, half.data());
  return Hash().done(IP_ScaleVga2Qvga(&src, &dst)).add(half);
}

Hash averages(uint32_t invalidValue, uint32_t minValidPercent) {
  Blank<uint16_t> count, out;
  Blank<int32_t> sum;
  ImgAvrgState state;
  Hash hash;
  hash.done(IP_Utils_ImgAvrgInit(&out.img, &sum.img, &count.img, &state));
  state.invalidValue = invalidValue;
  state.minValidPercent = minValidPercent;
  for (uint64_t seed = 33; seed < 42; ++seed) {
    Holes<uint16_t> frame(seed);
    hash.done(IP_Utils_ImgAvrgAdd(&frame.img, &sum.img, &count.img, &state)).add(sum.pixels).add(count.pixels);
    hash.done(IP_Utils_ImgAvrgProcess(&out.img, &sum.img, &count.img, &state)).add(out.pixels);
  }
  return hash;
}

// ---- fill, copy, convert ----

template <class T>
Hash fill() {
  Blank<T> img;
  return Hash().done(Img_FillBuffer(&img.img, 0xF1234567)).add(img.pixels);
}

template <class From, class To>
Hash copy() {
  Picture<From> src(Random(10).values<From>(kPixels, 0xFFFFFFFF));
  Blank<To> dst;
  ImgC from;
  ImgC_Init(&from, kWidth, kHeight, typeOf(From{}), src.pixels.data());
  return Hash().done(Img_Copy(&from, &dst.img)).add(dst.pixels);
}

Hash convert() {
  Picture<int16_t> img(Random(11).values<int16_t>(kPixels, 65536));
  return Hash().done(Img_Convert_I(&img.img, IMG_TYPE_U16)).add(img.pixels).add(img.img.type);
}

// ---- the table ----

template <class T>
void addImageOperations(std::vector<Case>& cases, const std::string& type) {
  for (uint32_t mode = 0; mode <= 4; ++mode) {
    cases.push_back({"Threshold" + type + "_" + std::to_string(mode), [mode] { return threshold<T>(mode); }});
  }
  for (int32_t mode = 5; mode <= 6; ++mode) {
    cases.push_back({"ThresholdRange" + type + "_" + std::to_string(mode), [mode] { return thresholdRange<T>(mode); }});
  }
  for (uint32_t op = 0; op <= 5; ++op) {
    cases.push_back({"ImgOp" + type + "_" + std::to_string(op), [op] { return arithmetic<T>(op); }});
  }
  cases.push_back({"Median" + type, [] { return filter<T>(IP_Median3x3, 22); }});
}

template <class T>
void addMasksAndMorphology(std::vector<Case>& cases, const std::string& type) {
  for (uint32_t mode = 0; mode <= 1; ++mode) {
    cases.push_back({"Mask" + type + "_" + std::to_string(mode), [mode] { return mask<T>(mode); }});
  }
  for (int32_t op = 0; op <= 4; ++op) {
    cases.push_back({"Morph" + type + "_" + std::to_string(op), [op] { return morphology<T>(op); }});
  }
}

}  // namespace

std::vector<Case> imageCases() {
  std::vector<Case> cases{
      {"FillU8", fill<uint8_t>},
      {"FillS16", fill<int16_t>},
      {"FillU32", fill<uint32_t>},
      {"FillF32", fill<float>},
      {"CopyS8U16", copy<int8_t, uint16_t>},
      {"CopyU8S32", copy<uint8_t, int32_t>},
      {"CopyS16U32", copy<int16_t, uint32_t>},
      {"CopyU16S32", copy<uint16_t, int32_t>},
      {"CopyU16U16", copy<uint16_t, uint16_t>},
      {"ConvertS16U16", convert},
      {"Maximum", [] { return filter<uint16_t>(IP_Maximum3x3, 23); }},
      {"Gauss", gauss},
      {"PullPush", [] { return pullPush(65536); }},
      {"PullPushOfZeros", [] { return pullPush(2); }},
      {"Halving", halving},
      {"Averages", [] { return averages(0, 50); }},
      {"AveragesOfAll", [] { return averages(65536, 0); }},
  };
  addImageOperations<uint16_t>(cases, "U16");
  addImageOperations<int16_t>(cases, "S16");
  addMasksAndMorphology<uint8_t>(cases, "U8");
  addMasksAndMorphology<uint16_t>(cases, "U16");
  return cases;
}

}  // namespace nadir::test::golden
