// A line of text that tells the size, and then the numbers as they are.
#include "tools/pictures/arrays.hpp"

#include <cmath>
#include <cstring>
#include <limits>

#include "tools/base/text.hpp"

namespace nadir::tool {

namespace {

void append(Bytes& bytes, const std::string& text) { bytes.insert(bytes.end(), text.begin(), text.end()); }

void append(Bytes& bytes, uint8_t number) { bytes.push_back(number); }

void append(Bytes& bytes, uint16_t number) {
  for (int shift = 0; shift < 16; shift += 8) bytes.push_back(static_cast<uint8_t>(number >> shift));
}

void append(Bytes& bytes, float number) {
  uint32_t bits;
  std::memcpy(&bits, &number, sizeof bits);
  for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<uint8_t>(bits >> shift));
}

// `type` is NumPy's name of the numbers.
template <class Number>
Bytes npyOf(const Grid<Number>& numbers, const char* type) {
  constexpr size_t preamble = 10, alignment = 64;  // of the numbers in the file
  std::string header =
      format("{'descr': '%s', 'fortran_order': False, 'shape': (%u, %u), }", type, numbers.height, numbers.width);
  header.append(alignment - 1 - (preamble + header.size()) % alignment, ' ') += '\n';
  Bytes bytes;
  append(bytes, std::string("\x93NUMPY\x01\0", 8));
  append(bytes, static_cast<uint16_t>(header.size()));
  append(bytes, header);
  for (const Number number : numbers.pixels) append(bytes, number);
  return bytes;
}

}  // namespace

Bytes encodePfm(const Grid<float>& numbers) {
  Bytes bytes;
  append(bytes, format("Pf\n%u %u\n-1.0\n", numbers.width, numbers.height));
  for (uint32_t y = numbers.height; y-- > 0;)
    for (uint32_t x = 0; x < numbers.width; ++x) {
      const float number = numbers.at(x, y);
      append(bytes, std::isnan(number) ? std::numeric_limits<float>::infinity() : number);
    }
  return bytes;
}

Bytes encodeNpy(const Grid<float>& numbers) { return npyOf(numbers, "<f4"); }

Bytes encodeNpy(const Grid<uint16_t>& numbers) { return npyOf(numbers, "<u2"); }

Bytes encodeNpy(const Grid<uint8_t>& numbers) { return npyOf(numbers, "|u1"); }

}  // namespace nadir::tool
