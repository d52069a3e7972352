// Several outputs are encoded at a time; a command that waited for each would leave processors idle.
#include "tools/files/encodings.hpp"

#include "tools/base/in_order.hpp"

namespace nadir::tool {

void writeAll(const std::vector<Encoding>& encodings, OutputFiles& files) {
  const auto encode = [&](uint64_t i) { return encodings[i].bytes(); };
  inOrder(0, encodings.size(), processors(), encode, [&](uint64_t i, const Bytes& bytes) {
    files.write(encodings[i].path, bytes);
    return true;
  });
}

}  // namespace nadir::tool
