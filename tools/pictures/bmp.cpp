// Decodes BMP by stb_image, which takes what is missing at the end of a file for zeros: the end is looked for here.
#include "tools/pictures/bmp.hpp"

#include <memory>
#include <new>

#include "tools/base/error.hpp"

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_BMP
#define STBI_NO_STDIO
#define STBI_NO_LINEAR
#include <stb_image.h>

namespace nadir::tool {

namespace {

constexpr const char* endsTooEarly = "it is damaged (it ends too early)";

[[noreturn]] void refuse() {
  const std::string reason = stbi_failure_reason() ? stbi_failure_reason() : "no reason is known";
  if (reason == "outofmem") throw std::bad_alloc();
  throw Error("it is damaged or of a kind that is not read (" + reason + ")");
}

// Sizes are checked before memory is asked for. Files are far shorter than an int can tell.
Raster decoded(const Bytes& bytes) {
  int width = 0, height = 0, channels = 0;
  const int size = static_cast<int>(bytes.size());
  if (!stbi_info_from_memory(bytes.data(), size, &width, &height, &channels)) refuse();
  if (width <= 0 || height <= 0) throw Error("it is damaged (a size of 0)");
  Raster raster;
  raster.width = static_cast<uint32_t>(width);
  raster.height = static_cast<uint32_t>(height);
  raster.channels = channels < 3 ? 1 : 3;
  checkRasterSize(raster.width, raster.height);
  const std::unique_ptr<stbi_uc, void (*)(void*)> samples(
      stbi_load_from_memory(bytes.data(), size, &width, &height, &channels, static_cast<int>(raster.channels)),
      stbi_image_free);
  if (!samples) refuse();
  raster.samples.assign(samples.get(), samples.get() + size_t{raster.width} * raster.height * raster.channels);
  return raster;
}

uint32_t littleEndian(const Bytes& bytes, size_t at, size_t count) {
  if (bytes.size() < at + count) throw Error(endsTooEarly);
  uint32_t value = 0;
  while (count-- > 0) value = value << 8 | bytes[at + count];
  return value;
}

// Rows are filled up to multiples of four bytes. In the oldest header the sides take two bytes each.
void checkThatBmpEnds(const Bytes& bytes, const Raster& raster) {
  constexpr uint32_t oldest = 12;
  const uint64_t bits = littleEndian(bytes, littleEndian(bytes, 14, 4) == oldest ? 24 : 28, 2);
  const uint64_t row = (raster.width * bits + 31) / 32 * 4;
  if (bytes.size() < littleEndian(bytes, 10, 4) + row * raster.height) throw Error(endsTooEarly);
}

}  // namespace

bool isBmp(const Bytes& bytes) { return bytes.size() >= 2 && bytes[0] == 'B' && bytes[1] == 'M'; }

Raster decodeBmp(const Bytes& bytes) {
  const Raster raster = decoded(bytes);
  checkThatBmpEnds(bytes, raster);
  return raster;
}

}  // namespace nadir::tool
