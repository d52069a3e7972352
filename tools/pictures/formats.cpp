// Each format's own file knows how to tell and decode it.
#include "tools/pictures/formats.hpp"

#include "tools/base/error.hpp"
#include "tools/pictures/pgm.hpp"
#include "tools/pictures/png.hpp"

namespace nadir::tool {

namespace {

constexpr PictureFormat formats[] = {
    {"a PNG", isPng, decodePng},
    {"a binary PGM", isPgm, decodePgm},
};

std::string noneOfThem() {
  std::string names;
  for (const PictureFormat& format : formats)
    names += (names.empty() ? "neither " : " nor ") + std::string(format.name);
  return "it is " + names + " picture";
}

}  // namespace

Raster decodedPicture(const Bytes& bytes) {
  for (const PictureFormat& format : formats)
    if (format.probe(bytes)) return format.decode(bytes);
  throw Error(noneOfThem());
}

}  // namespace nadir::tool
