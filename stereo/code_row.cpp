#include "stereo/code_row.hpp"

#include <cstring>
#include <initializer_list>

#include "core/pixels.hpp"

namespace nadir {

bool areCensusCodes(const uint32_t* codes, size_t n) {
  uint32_t strange = 0;
  for (size_t i = 0; i < n; ++i) strange |= (codes[i] >> 24 != 0) & (codes[i] != censusInvalid);
  return strange == 0;
}

CodePlanes splitCodes(const uint32_t* codes, size_t n, uint8_t* memory) {
  const size_t length = n + disparities - 1;
  uint8_t* const top = memory;
  uint8_t* const high = top + length;
  uint8_t* const mid = high + length;
  uint8_t* const low = mid + length;
  for (size_t i = 0; i < n; ++i) {
    top[i] = static_cast<uint8_t>(codes[i] >> 24);
    high[i] = static_cast<uint8_t>(codes[i] >> 16);
    mid[i] = static_cast<uint8_t>(codes[i] >> 8);
    low[i] = static_cast<uint8_t>(codes[i]);
  }
  for (uint8_t* plane : {top, high, mid, low}) std::memset(plane + n, 255, disparities - 1);
  return {top, high, mid, low};
}

}  // namespace nadir
