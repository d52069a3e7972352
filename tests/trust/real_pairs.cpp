// PNG pictures of 16 bits, read by libpng's simple interface would be 8: this reads their samples as they are.
#include "tests/trust/real_pairs.hpp"

#ifdef NADIR_READS_PNG
#include <png.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#endif

namespace nadir::ground::test {

#ifdef NADIR_READS_PNG

namespace {

struct Closing {
  void operator()(FILE* file) const { std::fclose(file); }
};

// Without pixels where there is no such file.
lab::Grid<uint16_t> readPng(const std::string& path) {
  const std::unique_ptr<FILE, Closing> file(std::fopen(path.c_str(), "rb"));
  if (!file) return {};
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file.get());
  png_read_info(png, info);
  lab::Grid<uint16_t> picture(png_get_image_width(png, info), png_get_image_height(png, info));
  std::vector<uint8_t> row(png_get_rowbytes(png, info));
  for (uint32_t y = 0; y < picture.height; ++y) {
    png_read_row(png, row.data(), nullptr);
    for (uint32_t x = 0; x < picture.width; ++x)
      picture.at(x, y) = static_cast<uint16_t>(row[2 * x] << 8 | row[2 * x + 1]);
  }
  png_destroy_read_struct(&png, &info, nullptr);
  return picture;
}

}  // namespace

// The mount of motorcycle-floor stands in its calib.json.
std::vector<RealPair> realPairs() {
  std::vector<RealPair> pairs;
  const char* folder = std::getenv("NADIR_DATA");
  if (!folder) return pairs;
  CameraNumbers floor{193.001, 608.138, 190.009, 155.588, 1064.647, -75.44, 0};
  floor.cell = 25;
  floor.offsetY = 300;
  for (const char* name : {"aloe", "bull", "motorcycle", "teddy", "motorcycle-floor"}) {
    const std::string path = std::string(folder) + "/" + name;
    const Pair pair{readPng(path + "/left.png"), readPng(path + "/right.png")};
    if (!pair.left.pixels.empty()) pairs.push_back({name, {pair, floor}, std::string(name) == "motorcycle-floor"});
  }
  return pairs;
}

#else

std::vector<RealPair> realPairs() { return {}; }

#endif

}  // namespace nadir::ground::test
