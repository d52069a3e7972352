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

std::string noneOfThem() {
  std::string names;
  for (const PictureFormat& format : formats)
    names += (names.empty() ? "neither " : " nor ") + std::string(format.name);
  return "it is " + names + " picture";
}

}  // namespace

std::string endingOf(const std::string& name) {
  std::string ending = std::filesystem::path(name).extension().string();
  for (char& letter : ending) letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
  return ending;
}

bool hasPictureEnding(const std::string& name) {
  return std::any_of(std::begin(formats), std::end(formats), [ending = endingOf(name)](const PictureFormat& format) {
    return std::find(format.endings.begin(), format.endings.end(), ending) != format.endings.end();
  });
}

Raster decodedPicture(const Bytes& bytes) {
  for (const PictureFormat& format : formats)
    if (format.probe(bytes)) return format.decode(bytes);
  throw Error(noneOfThem());
}

}  // namespace nadir::tool
