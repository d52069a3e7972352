// Small pictures that are hard to segment, each in its own way.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace nadir::bench {

struct Content {
  std::string name;
  std::vector<uint16_t> (*draw)(uint32_t side);  // side x side pixels, 0 is background
};

std::vector<Content> contents();

}  // namespace nadir::bench
