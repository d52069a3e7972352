// Results of the functions that make images from images.
#include <nadir/nadir.h>

#include <utility>

#include "lab/image.hpp"
#include "lab/random.hpp"
#include "tests/golden/golden.hpp"

namespace nadir::test::golden {
namespace {

constexpr uint32_t pictureWidth = 83, pictureHeight = 21, picturePixels = pictureWidth * pictureHeight;

template <class T>
lab::Picture<T> pictureOf(std::vector<T> pixels) {
  return lab::Picture<T>(pictureWidth, pictureHeight, std::move(pixels));
}

// Full of values that differ from any result, so that pixels left out show.
template <class T>
lab::Picture<T> blank() {
  return lab::Picture<T>(pictureWidth, pictureHeight, static_cast<T>(0x5A));
}

// Values below `bound`, a third of them 0.
template <class T>
lab::Picture<T> holes(uint64_t seed, uint32_t bound = 65536) {
  lab::Random random(seed);
  std::vector<T> values(picturePixels);
  for (T& value : values) value = random.below(3) == 0 ? T{0} : static_cast<T>(random.below(bound));
  return pictureOf(std::move(values));
}

// ---- thresholds, arithmetic, masks, filters ----

template <class T>
Fingerprint threshold(uint32_t mode) {
  auto src = holes<T>(1, 4096), inPlace = holes<T>(1, 4096);
  auto dst = blank<T>();
  Fingerprint hash;
  hash.done(IP_Threshold(&src.image, &dst.image, 2000, mode)).add(dst.grid.pixels);
  return hash.done(IP_Threshold_I(&inPlace.image, 0x8FFFF, mode)).add(inPlace.grid.pixels);
}

template <class T>
Fingerprint thresholdRange(int32_t mode) {
  auto src = holes<T>(2), inPlace = holes<T>(2);
  auto dst = blank<T>();
  Fingerprint hash;
  hash.done(IP_ThresholdRange(&src.image, &dst.image, 1000, 30000, mode)).add(dst.grid.pixels);
  return hash.done(IP_ThresholdRange_I(&inPlace.image, 0xC000, 0x3000, mode)).add(inPlace.grid.pixels);
}

template <class T>
Fingerprint arithmetic(uint32_t op) {
  auto a = holes<T>(3), inPlace = holes<T>(4);
  auto b = pictureOf(lab::Random(5).values<T>(picturePixels, 65536));
  for (size_t i = 0; i < picturePixels; ++i) {
    if (op == IMGOP_SHL || op == IMGOP_SHR) b.grid.pixels[i] = static_cast<T>(i % 40 == 39 ? 255 : i % 40);
    if (b.grid.pixels[i] == 0) b.grid.pixels[i] = 1;
  }
  auto out = blank<T>();
  Fingerprint hash;
  hash.done(IP_ImgOpImg(&a.image, &b.image, &out.image, op)).add(out.grid.pixels);
  return hash.done(IP_ImgOpImg_I(&inPlace.image, &b.image, op)).add(inPlace.grid.pixels);
}

template <class T>
Fingerprint mask(uint32_t mode) {
  auto src = pictureOf(lab::Random(6).values<T>(picturePixels, 65536)),
       inPlace = pictureOf(lab::Random(7).values<T>(picturePixels, 65536));
  auto shape = holes<uint8_t>(8, 256);
  auto dst = blank<T>();
  Fingerprint hash;
  hash.done(IP_Mask(&src.image, &shape.image, &dst.image, mode)).add(dst.grid.pixels);
  return hash.done(IP_Mask_I(&inPlace.image, &shape.image, mode)).add(inPlace.grid.pixels);
}

template <class T>
Fingerprint filter(uint32_t (*operation)(const Img*, Img*), uint64_t seed) {
  auto src = holes<T>(seed);
  auto dst = blank<T>();
  return Fingerprint().done(operation(&src.image, &dst.image)).add(dst.grid.pixels);
}

template <class T>
Fingerprint morphology(int32_t op) {
  auto src = holes<T>(9);
  auto dst = blank<T>();
  return Fingerprint().done(IP_Morph3x3(&src.image, &dst.image, op)).add(dst.grid.pixels);
}

// ---- smoothing, hole filling, halving, averages over time ----

Fingerprint gauss() {
  auto src = pictureOf(lab::Random(30).values<uint16_t>(picturePixels, 65536));
  auto dst = blank<uint16_t>();
  Fingerprint hash;
  hash.done(IP_Gauss(&src.image, &dst.image, 0)).add(dst.grid.pixels);
  return hash.done(IP_Gauss(&src.image, &src.image, 0)).add(src.grid.pixels);
}

Fingerprint pullPush(uint32_t bound) {
  auto src = holes<uint16_t>(31, bound);
  auto dst = blank<uint16_t>();
  return Fingerprint().done(IP_PullPush(&src.image, &dst.image)).add(dst.grid.pixels);
}

Fingerprint halving() {
  std::vector<uint16_t> pixels = lab::Random(32).values<uint16_t>(640 * 480, 65536), half(320 * 240);
  Img src, dst;
  Img_Init(&src, 640, 480, IMG_TYPE_U16, pixels.data());
  Img_Init(&dst, 320, 240, IMG_TYPE_U16, half.data());
  return Fingerprint().done(IP_ScaleVga2Qvga(&src, &dst)).add(half);
}

Fingerprint averages(uint32_t invalidValue, uint32_t minValidPercent) {
  auto count = blank<uint16_t>(), out = blank<uint16_t>();
  auto sum = blank<int32_t>();
  ImgAvrgState state;
  Fingerprint hash;
  hash.done(IP_Utils_ImgAvrgInit(&out.image, &sum.image, &count.image, &state));
  state.invalidValue = invalidValue;
  state.minValidPercent = minValidPercent;
  for (uint64_t seed = 33; seed < 42; ++seed) {
    auto frame = holes<uint16_t>(seed);
    hash.done(IP_Utils_ImgAvrgAdd(&frame.image, &sum.image, &count.image, &state))
        .add(sum.grid.pixels)
        .add(count.grid.pixels);
    hash.done(IP_Utils_ImgAvrgProcess(&out.image, &sum.image, &count.image, &state)).add(out.grid.pixels);
  }
  return hash;
}

// ---- fill, copy, convert ----

template <class T>
Fingerprint fill() {
  auto img = blank<T>();
  return Fingerprint().done(Img_FillBuffer(&img.image, 0xF1234567)).add(img.grid.pixels);
}

template <class From, class To>
Fingerprint copy() {
  auto src = pictureOf(lab::Random(10).values<From>(picturePixels, 0xFFFFFFFF));
  auto dst = blank<To>();
  ImgC from;
  ImgC_Init(&from, pictureWidth, pictureHeight, lab::typeOf<From>, src.grid.pixels.data());
  return Fingerprint().done(Img_Copy(&from, &dst.image)).add(dst.grid.pixels);
}

Fingerprint convert() {
  auto img = pictureOf(lab::Random(11).values<int16_t>(picturePixels, 65536));
  return Fingerprint().done(Img_Convert_I(&img.image, IMG_TYPE_U16)).add(img.grid.pixels).add(img.image.type);
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
