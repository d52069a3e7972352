#include "stereo/code_row.hpp"

namespace nadir {

bool areCensusCodes(const uint32_t* codes, size_t n) {
  uint32_t strange = 0;
  for (size_t i = 0; i < n; ++i) strange |= codes[i] == censusInvalid ? 0 : codes[i] >> 24;
  return strange == 0;
}

}  // namespace nadir
