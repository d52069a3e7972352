// Outputs whose bytes take long to make.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/files/output_files.hpp"

namespace nadir::tool {

struct Encoding {
  std::string path;
  std::function<Bytes()> bytes;
};

// Makes the bytes of several on as many threads as there are processors, and writes the files in their order.
void writeAll(const std::vector<Encoding>& encodings, OutputFiles& files);

}  // namespace nadir::tool
