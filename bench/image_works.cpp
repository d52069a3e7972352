// The functions of image.h.
#include "bench/picture.hpp"
#include "bench/work.hpp"

namespace nadir::bench {

void addImageWorks(Works& works, const lab::TexturedPair& pair) {
  const uint32_t width = pair.width, height = pair.height;
  const uint64_t pixels = uint64_t{width} * height;
  const auto u16 = makePicture(width, height, pair.reference);
  const auto u8 = makePicture(width, height, pair.mask);
  const auto s16 = makePicture(width, height, std::vector<int16_t>(pixels, -5));
  const auto out = makePicture(width, height, std::vector<uint16_t>(pixels));
  const auto view = [](const Img& img) { return ImgC{img.width, img.height, img.bytesPerPixel, img.type, img.data}; };

  works.push_back(
      {"Img_Init", 0, 0, [=] { Img_Init(&u16->image, width, height, IMG_TYPE_U16, u16->grid.pixels.data()); }});
  works.push_back({"ImgC_Init", 0, 0, [=] {
                     ImgC img;
                     ImgC_Init(&img, width, height, IMG_TYPE_U16, u16->grid.pixels.data());
                   }});
  works.push_back({"Img_FillBuffer", pixels, 2 * pixels, [=] { Img_FillBuffer(&out->image, 77); }});
  works.push_back({"Img_Copy U16", pixels, 4 * pixels, [=] {
                     const ImgC from = view(u16->image);
                     Img_Copy(&from, &out->image);
                   }});
  works.push_back({"Img_Copy U8 to U16", pixels, 3 * pixels, [=] {
                     const ImgC from = view(u8->image);
                     Img_Copy(&from, &out->image);
                   }});
  works.push_back({"Img_Convert_I", pixels, 4 * pixels, [=] {
                     s16->image.type = IMG_TYPE_S16;
                     Img_Convert_I(&s16->image, IMG_TYPE_U16);
                   }});
}

}  // namespace nadir::bench
