// The median, the maximum and the morphology of 3x3 pixels walk over images here.
#include <nadir/imgproc.h>

#include <cstring>

#include "core/memory.hpp"
#include "core/pixels.hpp"
#include "imgproc/filter3x3_kernels.hpp"
#include "simd/cpu.hpp"

namespace nadir {
namespace {

// Filters columns 1 to `columns` of every row that has a row above and below.
template <class T>
void filterInterior(const Img& src, const Img& dst, size_t columns, Filter3x3<T> filter) {
  if (src.height < 3) return;
  filter(row<T>(src, 0), rowBytes(src) / sizeof(T), row<T>(dst, 1) + 1, rowBytes(dst) / sizeof(T), src.height - 2u,
         columns);
}

size_t interiorColumns(const Img& img) { return img.width > 2 ? img.width - 2u : 0; }

template <class T>
void copyRow(const Img& src, const Img& dst, size_t y) {
  std::memcpy(row<T>(dst, y), row<T>(src, y), src.width * sizeof(T));
}

// The frame is copied, the interior filtered; at least 2 rows.
template <class T>
void morphPass(const Img& src, const Img& dst, Filter3x3<T> filter) {
  const size_t lastRow = src.height - 1u, lastColumn = src.width - 1u;
  if (src.width == 0) return;
  copyRow<T>(src, dst, 0);
  for (size_t y = 1; y < lastRow; ++y) {
    row<T>(dst, y)[0] = row<T>(src, y)[0];
    row<T>(dst, y)[lastColumn] = row<T>(src, y)[lastColumn];
  }
  filterInterior<T>(src, dst, interiorColumns(src), filter);
  copyRow<T>(src, dst, lastRow);
}

template <class T>
uint32_t morphTwice(const Img& src, const Img& dst, Filter3x3<T> first, Filter3x3<T> second) {
  const Scratch<unsigned char> pixels(uint64_t{rowBytes(src)} * src.height);
  if (!pixels) return 0;
  Img between = src;
  between.data = pixels.get();
  morphPass<T>(src, between, first);
  morphPass<T>(between, dst, second);
  return 1;
}

template <class T>
uint32_t morph(const Img& src, const Img& dst, int32_t op, const MorphFilters<T>& filters) {
  switch (op) {
    case MORPH_ERODE: morphPass<T>(src, dst, filters.erode); return 1;
    case MORPH_DILATE: morphPass<T>(src, dst, filters.dilate); return 1;
    case MORPH_OPEN: return morphTwice<T>(src, dst, filters.erode, filters.dilate);
    case MORPH_CLOSE: return morphTwice<T>(src, dst, filters.dilate, filters.erode);
    case MORPH_CLEAN: morphPass<T>(src, dst, filters.clean); return 1;
    default: return 1;
  }
}

}  // namespace
}  // namespace nadir

uint32_t IP_Median3x3(const Img* src, Img* dst) {
  if (!src || !dst || !nadir::matches(*src, *dst) || !nadir::isType(src->type, IMG_TYPE_U16 | IMG_TYPE_S16)) return 0;
  if (src->height < 3) return 1;
  if (src->width < 4) return 0;
  const size_t columns = (src->width - 2u) & ~1u;  // made in pairs
  const nadir::Filter3x3Kernels& kernels = nadir::filter3x3Kernels(nadir::cpu());
  if (src->type == IMG_TYPE_S16) {
    nadir::filterInterior<int16_t>(*src, *dst, columns, kernels.medianS16);
  } else {
    nadir::filterInterior<uint16_t>(*src, *dst, columns, kernels.medianU16);
  }
  return 1;
}

uint32_t IP_Maximum3x3(const Img* src, Img* dst) {
  if (!src || !dst || !nadir::matches(*src, *dst) || src->type != IMG_TYPE_U16) return 0;
  nadir::filterInterior<uint16_t>(*src, *dst, nadir::interiorColumns(*src),
                                  nadir::filter3x3Kernels(nadir::cpu()).maximum);
  return 1;
}

uint32_t IP_Morph3x3(const Img* src, Img* dst, int32_t op) {
  if (!src || !dst || !nadir::matches(*src, *dst) || !nadir::isType(src->type, IMG_TYPE_U8 | IMG_TYPE_U16)) return 0;
  if (src->height == 0) return 1;
  if (src->height == 1) return 0;
  const nadir::Filter3x3Kernels& kernels = nadir::filter3x3Kernels(nadir::cpu());
  return src->type == IMG_TYPE_U8 ? nadir::morph(*src, *dst, op, kernels.morphU8)
                                  : nadir::morph(*src, *dst, op, kernels.morphU16);
}
