// The functions of imgproc.h, on 16-bit images.
#include <nadir/imgproc.h>

#include <algorithm>

#include "bench/picture.hpp"
#include "bench/work.hpp"

namespace nadir::bench {
namespace {

struct Images {
  std::shared_ptr<Picture<uint16_t>> src, other, dst, changed;
  std::shared_ptr<Picture<uint8_t>> mask;
};

Images makeImages(const Scene& scene) {
  const uint32_t w = scene.width, h = scene.height;
  std::vector<uint16_t> divisors = scene.first;
  std::replace(divisors.begin(), divisors.end(), uint16_t{0}, uint16_t{1});
  return {makePicture(w, h, IMG_TYPE_U16, scene.reference), makePicture(w, h, IMG_TYPE_U16, divisors),
          makePicture(w, h, IMG_TYPE_U16, scene.reference), makePicture(w, h, IMG_TYPE_U16, scene.reference),
          makePicture(w, h, IMG_TYPE_U8, scene.mask)};
}

void addPointWorks(Works& works, uint64_t pixels, const Images& i) {
  const uint64_t bytes = 4 * pixels;
  works.push_back({"IP_Threshold", pixels, bytes, [=] { IP_Threshold(&i.src->img, &i.dst->img, 1800, 0); }});
  works.push_back({"IP_Threshold_I", pixels, bytes, [=] { IP_Threshold_I(&i.changed->img, 1800, 0); }});
  works.push_back(
      {"IP_ThresholdRange", pixels, bytes, [=] { IP_ThresholdRange(&i.src->img, &i.dst->img, 900, 2500, 5); }});
  works.push_back({"IP_ThresholdRange_I", pixels, bytes, [=] { IP_ThresholdRange_I(&i.changed->img, 900, 2500, 5); }});
  works.push_back(
      {"IP_Mask", pixels, bytes + pixels, [=] { IP_Mask(&i.src->img, &i.mask->img, &i.dst->img, MASK_CLEAR_SET); }});
  works.push_back(
      {"IP_Mask_I", pixels, bytes + pixels, [=] { IP_Mask_I(&i.changed->img, &i.mask->img, MASK_CLEAR_SET); }});
}

void addArithmeticWorks(Works& works, uint64_t pixels, const Images& i) {
  const char* const names[] = {"add", "subtract", "multiply", "divide", "shift right", "shift left"};
  for (uint32_t op = IMGOP_ADD; op <= IMGOP_SHL; ++op) {
    works.push_back({std::string("IP_ImgOpImg ") + names[op], pixels, 6 * pixels,
                     [=] { IP_ImgOpImg(&i.src->img, &i.other->img, &i.dst->img, op); }});
  }
  works.push_back(
      {"IP_ImgOpImg_I add", pixels, 6 * pixels, [=] { IP_ImgOpImg_I(&i.changed->img, &i.other->img, IMGOP_ADD); }});
}

void addNeighbourhoodWorks(Works& works, uint64_t pixels, const Images& i) {
  const uint64_t bytes = 4 * pixels;
  works.push_back({"IP_Median3x3", pixels, bytes, [=] { IP_Median3x3(&i.src->img, &i.dst->img); }});
  works.push_back({"IP_Maximum3x3", pixels, bytes, [=] { IP_Maximum3x3(&i.src->img, &i.dst->img); }});
  const char* const names[] = {"erode", "dilate", "open", "close", "clean"};
  for (int32_t op = MORPH_ERODE; op <= MORPH_CLEAN; ++op) {
    works.push_back(
        {std::string("IP_Morph3x3 ") + names[op], pixels, bytes, [=] { IP_Morph3x3(&i.src->img, &i.dst->img, op); }});
  }
}

void addSmoothingWorks(Works& works, uint64_t pixels, const Images& i) {
  works.push_back({"IP_Gauss", pixels, 4 * pixels, [=] { IP_Gauss(&i.src->img, &i.dst->img, 0); }});
  works.push_back({"IP_PullPush", pixels, 4 * pixels, [=] { IP_PullPush(&i.src->img, &i.dst->img); }});
}

// An average of frames, with eight of them in it.
struct Average {
  std::shared_ptr<Picture<uint16_t>> frame, count, out;
  std::shared_ptr<Picture<int32_t>> sum;
  ImgAvrgState state;

  explicit Average(const Scene& scene)
      : frame(makePicture(scene.width, scene.height, IMG_TYPE_U16, scene.reference)),
        count(makePicture(scene.width, scene.height, IMG_TYPE_U16, scene.reference)),
        out(makePicture(scene.width, scene.height, IMG_TYPE_U16, scene.reference)),
        sum(makePicture(scene.width, scene.height, IMG_TYPE_S32, std::vector<int32_t>(scene.reference.size()))) {
    begin();
    for (int i = 0; i < 8; ++i) add();
  }
  void begin() { IP_Utils_ImgAvrgInit(&frame->img, &sum->img, &count->img, &state); }
  void add() { IP_Utils_ImgAvrgAdd(&frame->img, &sum->img, &count->img, &state); }
  void process() { IP_Utils_ImgAvrgProcess(&out->img, &sum->img, &count->img, &state); }
};

void addStreamWorks(Works& works, uint64_t pixels, const Scene& scene, const Images& i) {
  if (scene.width == 640 && scene.height == 480) {
    const auto half = makePicture(320, 240, IMG_TYPE_U16, std::vector<uint16_t>(320 * 240));
    works.push_back({"IP_ScaleVga2Qvga", pixels, 2 * pixels, [=] { IP_ScaleVga2Qvga(&i.src->img, &half->img); }});
  }
  const auto cleared = std::make_shared<Average>(scene), added = std::make_shared<Average>(scene),
             averaged = std::make_shared<Average>(scene);
  works.push_back({"IP_Utils_ImgAvrgInit", pixels, 6 * pixels, [=] { cleared->begin(); }});
  works.push_back({"IP_Utils_ImgAvrgAdd", pixels, 14 * pixels, [=] { added->add(); }});
  works.push_back({"IP_Utils_ImgAvrgProcess", pixels, 8 * pixels, [=] { averaged->process(); }});
}

}  // namespace

void addImgprocWorks(Works& works, const Scene& scene) {
  const Images images = makeImages(scene);
  const uint64_t pixels = uint64_t{scene.width} * scene.height;
  addPointWorks(works, pixels, images);
  addArithmeticWorks(works, pixels, images);
  addNeighbourhoodWorks(works, pixels, images);
  addSmoothingWorks(works, pixels, images);
  addStreamWorks(works, pixels, scene, images);
}

}  // namespace nadir::bench
