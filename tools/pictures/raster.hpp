// The samples and texts that a picture file holds, whatever its format.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace nadir::tool {

using TextChunks = std::map<std::string, std::string>;

struct Raster {
  uint32_t width = 0;
  uint32_t height = 0;
  uint32_t channels = 1;          // 1 grey, 3 red, green and blue
  uint32_t bits = 8;              // of a sample, 8 or 16
  std::vector<uint16_t> samples;  // height * width * channels
  TextChunks text;                // of a PNG
};

// Throws where a picture is larger than the library's 16-bit sizes or than 2^25 pixels, which a damaged header may
// claim and which would take gigabytes.
void checkRasterSize(uint32_t width, uint32_t height);

}  // namespace nadir::tool
