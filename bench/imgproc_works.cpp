// The functions of imgproc.h, on 16-bit images.
#include <nadir/imgproc.h>

#include <algorithm>

#include "bench/picture.hpp"
#include "bench/work.hpp"

namespace nadir::bench {
namespace {

struct Images {
  std::shared_ptr<lab::Picture<uint16_t>> src, other, dst, changed;
  std::shared_ptr<lab::Picture<uint8_t>> mask;
};

Images makeImages(const lab::TexturedPair& pair) {
  const uint32_t w = pair.width, h = pair.height;
  std::vector<uint16_t> divisors = pair.first;
  std::replace(divisors.begin(), divisors.end(), uint16_t{0}, uint16_t{1});
  return {makePicture(w, h, pair.reference), makePicture(w, h, divisors), makePicture(w, h, pair.reference),
          makePicture(w, h, pair.reference), makePicture(w, h, pair.mask)};
}

void addPointWorks(Works& works, uint64_t pixels, const Images& i) {
  const uint64_t bytes = 4 * pixels;
  works.push_back({"IP_Threshold", pixels, bytes, [=] { IP_Threshold(&i.src->image, &i.dst->image, 1800, 0); }});
  works.push_back({"IP_Threshold_I", pixels, bytes, [=] { IP_Threshold_I(&i.changed->image, 1800, 0); }});
  works.push_back(
      {"IP_ThresholdRange", pixels, bytes, [=] { IP_ThresholdRange(&i.src->image, &i.dst->image, 900, 2500, 5); }});
  works.push_back(
      {"IP_ThresholdRange_I", pixels, bytes, [=] { IP_ThresholdRange_I(&i.changed->image, 900, 2500, 5); }});
  works.push_back({"IP_Mask", pixels, bytes + pixels,
                   [=] { IP_Mask(&i.src->image, &i.mask->image, &i.dst->image, MASK_CLEAR_SET); }});
  works.push_back(
      {"IP_Mask_I", pixels, bytes + pixels, [=] { IP_Mask_I(&i.changed->image, &i.mask->image, MASK_CLEAR_SET); }});
}

void addArithmeticWorks(Works& works, uint64_t pixels, const Images& i) {
  const char* const names[] = {"add", "subtract", "multiply", "divide", "shift right", "shift left"};
  for (uint32_t op = IMGOP_ADD; op <= IMGOP_SHL; ++op) {
    works.push_back({std::string("IP_ImgOpImg ") + names[op], pixels, 6 * pixels,
                     [=] { IP_ImgOpImg(&i.src->image, &i.other->image, &i.dst->image, op); }});
  }
  works.push_back(
      {"IP_ImgOpImg_I add", pixels, 6 * pixels, [=] { IP_ImgOpImg_I(&i.changed->image, &i.other->image, IMGOP_ADD); }});
}

void addNeighbourhoodWorks(Works& works, uint64_t pixels, const Images& i) {
  const uint64_t bytes = 4 * pixels;
  works.push_back({"IP_Median3x3", pixels, bytes, [=] { IP_Median3x3(&i.src->image, &i.dst->image); }});
  works.push_back({"IP_Maximum3x3", pixels, bytes, [=] { IP_Maximum3x3(&i.src->image, &i.dst->image); }});
  const char* const names[] = {"erode", "dilate", "open", "close", "clean"};
  for (int32_t op = MORPH_ERODE; op <= MORPH_CLEAN; ++op) {
    works.push_back({std::string("IP_Morph3x3 ") + names[op], pixels, bytes,
                     [=] { IP_Morph3x3(&i.src->image, &i.dst->image, op); }});
  }
}

void addSmoothingWorks(Works& works, uint64_t pixels, const Images& i) {
  works.push_back({"IP_Gauss", pixels, 4 * pixels, [=] { IP_Gauss(&i.src->image, &i.dst->image, 0); }});
  works.push_back({"IP_PullPush", pixels, 4 * pixels, [=] { IP_PullPush(&i.src->image, &i.dst->image); }});
}

// An average of frames, with eight of them in it.
struct Average {
  std::shared_ptr<lab::Picture<uint16_t>> frame, count, out;
  std::shared_ptr<lab::Picture<int32_t>> sum;
  ImgAvrgState state;

  explicit Average(const lab::TexturedPair& pair)
      : frame(makePicture(pair.width, pair.height, pair.reference)),
        count(makePicture(pair.width, pair.height, pair.reference)),
        out(makePicture(pair.width, pair.height, pair.reference)),
        sum(makePicture(pair.width, pair.height, std::vector<int32_t>(pair.reference.size()))) {
    begin();
    for (int i = 0; i < 8; ++i) add();
  }
  void begin() { IP_Utils_ImgAvrgInit(&frame->image, &sum->image, &count->image, &state); }
  void add() { IP_Utils_ImgAvrgAdd(&frame->image, &sum->image, &count->image, &state); }
  void process() { IP_Utils_ImgAvrgProcess(&out->image, &sum->image, &count->image, &state); }
};

void addStreamWorks(Works& works, uint64_t pixels, const lab::TexturedPair& pair, const Images& i) {
  if (pair.width == 640 && pair.height == 480) {
    const auto half = makePicture(320, 240, std::vector<uint16_t>(320 * 240));
    works.push_back({"IP_ScaleVga2Qvga", pixels, 2 * pixels, [=] { IP_ScaleVga2Qvga(&i.src->image, &half->image); }});
  }
  const auto cleared = std::make_shared<Average>(pair), added = std::make_shared<Average>(pair),
             averaged = std::make_shared<Average>(pair);
  works.push_back({"IP_Utils_ImgAvrgInit", pixels, 6 * pixels, [=] { cleared->begin(); }});
  works.push_back({"IP_Utils_ImgAvrgAdd", pixels, 14 * pixels, [=] { added->add(); }});
  works.push_back({"IP_Utils_ImgAvrgProcess", pixels, 8 * pixels, [=] { averaged->process(); }});
}

}  // namespace

void addImgprocWorks(Works& works, const lab::TexturedPair& pair) {
  const Images images = makeImages(pair);
  const uint64_t pixels = uint64_t{pair.width} * pair.height;
  addPointWorks(works, pixels, images);
  addArithmeticWorks(works, pixels, images);
  addNeighbourhoodWorks(works, pixels, images);
  addSmoothingWorks(works, pixels, images);
  addStreamWorks(works, pixels, pair, images);
}

}  // namespace nadir::bench
