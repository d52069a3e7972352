// Image descriptors are made, filled, copied and converted here.
#include <nadir/image.h>

#include "core/memory.hpp"
#include "core/pixels.hpp"

namespace nadir {
namespace {

template <class Descriptor, class Data>
uint32_t describe(Descriptor* img, uint32_t width, uint32_t height, uint32_t type, Data* data) {
  if (!img) return 0;
  img->width = static_cast<uint16_t>(width);
  img->height = static_cast<uint16_t>(height);
  img->bytesPerPixel = static_cast<uint16_t>(pixelBytes(type));
  img->type = type;
  img->data = data;
  return 1;
}

template <class T>
uint32_t fill(const Img& img, T value) {
  T* pixels = static_cast<T*>(img.data);
  forEachPixel(pixelCount(img), [=](size_t i) { pixels[i] = value; });
  return 1;
}

// The conversion keeps the source's signedness: first to a 32-bit value, then to the destination's bits.
template <class From, class To>
uint32_t widen(const ImgC& src, const Img& dst) {
  const From* from = static_cast<const From*>(src.data);
  To* to = static_cast<To*>(dst.data);
  forEachPixel(pixelCount(dst),
               [=](size_t i) { to[i] = static_cast<To>(from[i]); });  // NOLINT(*-signed-char-misuse,*-str34-c)
  return 1;
}

uint32_t widenTo16(const ImgC& src, const Img& dst) {
  return src.type == IMG_TYPE_U8 ? widen<uint8_t, uint16_t>(src, dst) : widen<int8_t, uint16_t>(src, dst);
}

uint32_t widenTo32(const ImgC& src, const Img& dst) {
  switch (src.type) {
    case IMG_TYPE_U8: return widen<uint8_t, uint32_t>(src, dst);
    case IMG_TYPE_S8: return widen<int8_t, uint32_t>(src, dst);
    case IMG_TYPE_U16: return widen<uint16_t, uint32_t>(src, dst);
    default: return widen<int16_t, uint32_t>(src, dst);
  }
}

uint32_t copyBytes(const ImgC& src, const Img& dst) {
  const size_t bytes = rowBytes(dst) * dst.height;
  if (bytes) std::memmove(dst.data, src.data, bytes);
  return 1;
}

}  // namespace
}  // namespace nadir

uint32_t Img_Init(Img* img, uint32_t width, uint32_t height, uint32_t type, void* data) {
  return nadir::describe(img, width, height, type, data);
}

uint32_t ImgC_Init(ImgC* img, uint32_t width, uint32_t height, uint32_t type, const void* data) {
  return nadir::describe(img, width, height, type, data);
}

uint32_t Img_FillBuffer(Img* img, uint32_t value) {
  if (!img) return 0;
  if (value == 0) {
    nadir::clear(img->data, nadir::rowBytes(*img) * img->height);
    return 1;
  }
  if (img->type == IMG_TYPE_F32) return nadir::fill(*img, static_cast<float>(static_cast<int32_t>(value)));
  switch (nadir::pixelBytes(img->type)) {
    case 1: return nadir::fill(*img, static_cast<uint8_t>(value));
    case 2: return nadir::fill(*img, static_cast<uint16_t>(value));
    case 4: return nadir::fill(*img, value);
    default: return 0;
  }
}

uint32_t Img_Copy(const ImgC* src, Img* dst) {
  if (!src || !dst || !nadir::sameSize(*src, *dst)) return 0;
  const uint32_t from = nadir::pixelBytes(src->type), to = nadir::pixelBytes(dst->type);
  if (from == to) return nadir::copyBytes(*src, *dst);
  if (from == 0 || to < from || dst->type == IMG_TYPE_F32) return 0;
  return to == 2 ? nadir::widenTo16(*src, *dst) : nadir::widenTo32(*src, *dst);
}

uint32_t Img_Convert_I(Img* img, uint32_t newType) {
  if (!img || img->type != IMG_TYPE_S16 || newType != IMG_TYPE_U16) return 0;
  int16_t* pixels = static_cast<int16_t*>(img->data);
  nadir::forEachPixel(nadir::pixelCount(*img), [=](size_t i) { pixels[i] = pixels[i] < 0 ? int16_t{0} : pixels[i]; });
  img->type = IMG_TYPE_U16;
  return 1;
}
