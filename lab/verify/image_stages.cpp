// The stages that make images from images.
#include "lab/verify/stages.hpp"

namespace nadir::verify {

namespace {

Grid<int16_t> asSigned(const Grid<uint16_t>& grid) {
  return converted<int16_t>(grid, [](int v) { return v - 2000; });
}

Fingerprint copies(const Material& m) {
  Picture<uint8_t> bytes(m.occluded);
  Picture<uint16_t> source(m.left), words(m.left.width, m.left.height);
  Picture<int16_t> differences(asSigned(m.left));
  Picture<int32_t> wide(m.left.width, m.left.height);
  const auto readOnly = [](const Img& image) {
    ImgC view;
    ImgC_Init(&view, image.width, image.height, image.type, image.data);
    return view;
  };
  Fingerprint print;
  const ImgC fromBytes = readOnly(bytes.image), fromWords = readOnly(differences.image);
  print.done(Img_Copy(&fromBytes, &words.image)).add(words.grid);
  print.done(Img_Copy(&fromWords, &wide.image)).add(wide.grid);
  print.done(Img_FillBuffer(&words.image, 0x1234)).add(words.grid);
  return print.done(Img_Convert_I(&differences.image, IMG_TYPE_U16)).add(differences.grid);
}

template <class T>
void addThresholds(Fingerprint& print, const Grid<T>& grid) {
  Picture<T> source(grid), result(grid.width, grid.height);
  for (const uint32_t mode :
       {THRESH_ZERO_BELOW, THRESH_KEEP_ABOVE, THRESH_ZERO_EQUAL, THRESH_KEEP_BELOW, THRESH_ZERO_ABOVE})
    print.done(IP_Threshold(&source.image, &result.image, 1500, mode)).add(result.grid);
  for (const int32_t mode : {THRESH_ZERO_INSIDE, THRESH_ZERO_OUTSIDE})
    print.done(IP_ThresholdRange(&source.image, &result.image, 1000, 2000, mode)).add(result.grid);
  print.done(IP_Threshold_I(&source.image, 700, THRESH_ZERO_BELOW));
  print.done(IP_ThresholdRange_I(&source.image, 900, 950, THRESH_ZERO_INSIDE)).add(source.grid);
}

Fingerprint thresholds(const Material& m) {
  Fingerprint print;
  addThresholds(print, m.left);
  addThresholds(print, asSigned(m.left));
  return print;
}

template <class T>
void addArithmetic(Fingerprint& print, const Grid<T>& grid, const Grid<T>& other) {
  const Grid<T> amounts = converted<T>(other, [](int v) { return v & 31; });
  const Grid<T> divisors = converted<T>(other, [](int v) { return v | 1; });
  Picture<T> a(grid), b(other), shift(amounts), divisor(divisors), out(grid.width, grid.height);
  for (const uint32_t op : {IMGOP_ADD, IMGOP_SUB, IMGOP_MUL})
    print.done(IP_ImgOpImg(&a.image, &b.image, &out.image, op)).add(out.grid);
  for (const uint32_t op : {IMGOP_SHR, IMGOP_SHL})
    print.done(IP_ImgOpImg(&a.image, &shift.image, &out.image, op)).add(out.grid);
  print.done(IP_ImgOpImg_I(&a.image, &divisor.image, IMGOP_DIV)).add(a.grid);
}

Fingerprint arithmetic(const Material& m) {
  Fingerprint print;
  addArithmetic(print, m.left, m.right);
  addArithmetic(print, asSigned(m.left), asSigned(m.right));
  return print;
}

Fingerprint masks(const Material& m) {
  Picture<uint16_t> source(m.right), result(m.right.width, m.right.height);
  Picture<uint8_t> mask(m.occluded);
  Fingerprint print;
  for (const uint32_t mode : {MASK_KEEP_SET, MASK_CLEAR_SET})
    print.done(IP_Mask(&source.image, &mask.image, &result.image, mode)).add(result.grid);
  return print.done(IP_Mask_I(&source.image, &mask.image, MASK_CLEAR_SET)).add(source.grid);
}

template <class T>
Fingerprint filtered(const Grid<T>& grid, uint32_t (*filter)(const Img*, Img*)) {
  Picture<T> source(grid), result(grid.width, grid.height);
  Fingerprint print;
  return print.done(filter(&source.image, &result.image)).add(result.grid);
}

Fingerprint medians(const Material& m) {
  return filtered(m.disparity, IP_Median3x3).add(filtered(asSigned(m.left), IP_Median3x3).value());
}

Fingerprint maxima(const Material& m) { return filtered(m.disparity, IP_Maximum3x3); }

Fingerprint morphology(const Material& m) {
  Picture<uint16_t> source(m.disparity), result(m.disparity.width, m.disparity.height);
  Fingerprint print;
  for (const int32_t op : {MORPH_ERODE, MORPH_DILATE, MORPH_OPEN, MORPH_CLOSE, MORPH_CLEAN})
    print.done(IP_Morph3x3(&source.image, &result.image, op)).add(result.grid);
  return print;
}

Fingerprint smoothing(const Material& m) {
  Picture<uint16_t> source(m.left), result(m.left.width, m.left.height);
  Fingerprint print;
  return print.done(IP_Gauss(&source.image, &result.image, 0)).add(result.grid);
}

Fingerprint holeFilling(const Material& m) {
  Picture<uint16_t> source(m.disparity), result(m.disparity.width, m.disparity.height);
  const auto side = [](uint32_t pixels) { return static_cast<uint16_t>(pixels); };
  std::vector<uint16_t> memory(nadir_pull_push_bytes(side(m.disparity.width), side(m.disparity.height)) / 2 + 1);
  Fingerprint print;
  return print.done(nadir_pull_push(&source.image, &result.image, memory.data(), 2 * memory.size())).add(result.grid);
}

// The picture, spread over the only size that the library halves.
Fingerprint halving(const Material& m) {
  Picture<uint16_t> source(640, 480), result(320, 240);
  for (uint32_t y = 0; y < 480; ++y)
    for (uint32_t x = 0; x < 640; ++x)
      source.grid.at(x, y) = m.left.at(x * m.left.width / 640, y * m.left.height / 480);
  Fingerprint print;
  return print.done(IP_ScaleVga2Qvga(&source.image, &result.image)).add(result.grid);
}

Fingerprint averages(const Material& m) {
  const uint32_t w = m.disparity.width, h = m.disparity.height;
  Picture<int32_t> sum(w, h);
  Picture<uint16_t> first(m.left), second(m.right), third(m.disparity), count(w, h), out(w, h);
  ImgAvrgState state;
  Fingerprint print;
  print.done(IP_Utils_ImgAvrgInit(&first.image, &sum.image, &count.image, &state));
  for (const Picture<uint16_t>* frame : {&first, &second, &third})
    print.done(IP_Utils_ImgAvrgAdd(&frame->image, &sum.image, &count.image, &state));
  for (const uint32_t percent : {0u, 50u, 90u}) {
    state.minValidPercent = percent;
    print.done(IP_Utils_ImgAvrgProcess(&out.image, &sum.image, &count.image, &state)).add(out.grid);
  }
  return print.add(sum.grid).add(count.grid);
}

}  // namespace

Stages imageStages() {
  return {{"copies", copies},   {"thresholds", thresholds}, {"arithmetic", arithmetic},   {"masks", masks},
          {"median", medians},  {"maximum", maxima},        {"morphology", morphology},   {"smoothing", smoothing},
          {"halving", halving}, {"averages", averages},     {"hole filling", holeFilling}};
}

}  // namespace nadir::verify
