// Each format's own file knows how to tell and decode it.
#include "tools/pictures/formats.hpp"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <iterator>

#include "tools/base/error.hpp"
#include "tools/pictures/bmp.hpp"
#include "tools/pictures/jpeg.hpp"
#include "tools/pictures/png.hpp"
#include "tools/pictures/pnm.hpp"

namespace nadir::tool {

namespace {

const PictureFormat formats[] = {
    {{".png"}, "a PNG", isPng, decodePng},
    {{".pgm", ".ppm", ".pnm"}, "a binary PGM or PPM", isPnm, decodePnm},
    {{".jpg", ".jpeg"}, "a JPEG", isJpeg, decodeJpeg},
    {{".bmp"}, "a BMP", isBmp, decodeBmp},
};

std::string inCapitals(std::string letters) {
  for (char& letter : letters) letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  return letters;
}

std::string noneOfThem() {
  std::string names;
  for (const PictureFormat& format : formats)
    names += (names.empty() ? "neither " : " nor ") + std::string(format.name);
  return "it is " + names + " picture";
}

}  // namespace

bool hasPictureEnding(const std::string& name) {
  const std::string ending = std::filesystem::path(name).extension().string();
  const auto isThis = [&](const char* known) { return ending == known || ending == inCapitals(known); };
  return std::any_of(std::begin(formats), std::end(formats), [&](const PictureFormat& format) {
    return std::any_of(format.endings.begin(), format.endings.end(), isThis);
  });
}

Raster decodedPicture(const Bytes& bytes) {
  for (const PictureFormat& format : formats)
    if (format.probe(bytes)) return format.decode(bytes);
  throw Error(noneOfThem());
}

}  // namespace nadir::tool
