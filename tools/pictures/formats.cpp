// Each format's own file knows how to tell and decode it.
#include "tools/pictures/formats.hpp"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <iterator>

#include "tools/base/error.hpp"
#include "tools/pictures/pgm.hpp"
#include "tools/pictures/png.hpp"

namespace nadir::tool {

namespace {

constexpr PictureFormat formats[] = {
    {".png", "a PNG", isPng, decodePng},
    {".pgm", "a binary PGM", isPgm, decodePgm},
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
  return std::any_of(std::begin(formats), std::end(formats), [&](const PictureFormat& format) {
    return ending == format.ending || ending == inCapitals(format.ending);
  });
}

Raster decodedPicture(const Bytes& bytes) {
  for (const PictureFormat& format : formats)
    if (format.probe(bytes)) return format.decode(bytes);
  throw Error(noneOfThem());
}

}  // namespace nadir::tool
