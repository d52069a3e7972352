// Changes of a PNG that libpng does not refuse at once: sums that hold, chunks that come and go, pixels that unpack.
// Linked with the targets that read pictures.
#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t largest);

namespace nadir::test {
namespace {

const std::string signature = "\x89PNG\r\n\x1a\n";

std::string bigEndian(size_t value) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 255);
  return bytes;
}

std::string chunk(const std::string& type, const std::string& data) {
  const std::string summed = type + data;
  const auto* bytes = reinterpret_cast<const Bytef*>(summed.data());
  return bigEndian(data.size()) + summed + bigEndian(crc32_z(0, bytes, summed.size()));
}

std::string packed(const std::string& bytes) {
  uLongf size = compressBound(bytes.size());
  std::string out(size, 0);
  compress2(reinterpret_cast<Bytef*>(out.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size(), 1);
  return out.substr(0, size);
}

class Maker {
 public:
  explicit Maker(unsigned seed) : random_(seed) {}

  bool oneOf(unsigned n) { return below(n) == 0; }

  // A picture of some size and kind, with texts, whose rows have the length that its header tells, mostly.
  std::string picture() {
    const unsigned width = 1 + below(20), height = 1 + below(20), bits = 1u << below(5);
    const unsigned kinds[] = {0, 2, 3, 4, 6}, kind = kinds[below(5)], interlaced = oneOf(4);
    const unsigned channels[] = {1, 0, 3, 1, 2, 0, 4};
    const size_t rows = height * (1 + (size_t{width} * bits * channels[kind] + 7) / 8) * (interlaced ? 2 : 1);
    std::string out =
        signature + chunk("IHDR", bigEndian(width) + bigEndian(height) + static_cast<char>(bits) +
                                      static_cast<char>(kind) + std::string(2, 0) + static_cast<char>(interlaced));
    if (kind == 3) out += chunk("PLTE", bytes(3 * (1 + below(256))));
    for (unsigned n = below(4); n > 0; --n) out += text();
    out += chunk("IDAT", packed(bytes(oneOf(8) ? below(400) : rows)));
    for (unsigned n = below(2); n > 0; --n) out += text();
    return out + chunk("IEND", "");
  }

 private:
  unsigned below(unsigned n) { return std::uniform_int_distribution<unsigned>(0, n - 1)(random_); }

  // Small bytes mostly, so that a row's filter is one that there is.
  std::string bytes(size_t count) {
    std::string made(count, 0);
    const unsigned most = oneOf(3) ? 256 : 5;
    for (char& c : made) c = static_cast<char>(below(most));
    return made;
  }

  std::string text() {
    const char* const keys[] = {"nadir:scale",   "nadir:units",  "nadir:grid",    "nadir:no-value",
                                "nadir:left-mm", "nadir:top-mm", "nadir:cell-mm", "Software"};
    const char* const values[] = {"16", "mm", "left", "right", "0", "-2.5e3", "nan", "1e999", "-0", "256 ", ""};
    const std::string key = std::string(keys[below(8)]) + '\0';
    const std::string value = oneOf(4) ? bytes(below(300)) : values[below(11)];
    switch (below(4)) {
      case 0: return chunk("zTXt", key + '\0' + packed(value));
      case 1: return chunk("iTXt", key + std::string(4, 0) + value);
      default: return chunk("tEXt", key + value);
    }
  }

  std::mt19937 random_;
};

size_t lengthAt(const uint8_t* data) { return size_t{data[0]} << 24 | data[1] << 16 | data[2] << 8 | data[3]; }

// Gives every chunk its sum.
void repair(uint8_t* data, size_t size) {
  for (size_t at = signature.size(); at + 12 <= size;) {
    const size_t length = lengthAt(data + at);
    if (length > size - at - 12) return;
    const std::string sum = bigEndian(crc32_z(0, data + at + 4, length + 4));
    std::memcpy(data + at + 8 + length, sum.data(), sum.size());
    at += 12 + length;
  }
}

}  // namespace

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t largest, unsigned seed) {
  Maker maker(seed);
  if (maker.oneOf(16)) {
    const std::string made = maker.picture();
    size = std::min(made.size(), largest);
    std::memcpy(data, made.data(), size);
    if (maker.oneOf(2)) return size;
  }
  size = LLVMFuzzerMutate(data, size, largest);
  if (!maker.oneOf(8)) repair(data, size);
  return size;
}

}  // namespace nadir::test
