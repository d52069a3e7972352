// Decodes binary PGM and PPM.
#include "tools/pictures/pnm.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <system_error>

#include "tools/base/error.hpp"

namespace nadir::tool {

namespace {

// The header: numbers between white space and comments, which run from # to the end of the line.
class Header {
 public:
  explicit Header(const Bytes& bytes) : bytes_(bytes) {}

  uint32_t number() {
    skipSpace();
    const char *const bytes = reinterpret_cast<const char*>(bytes_.data()), *const start = bytes + at_;
    uint32_t value = 0;
    const auto [end, error] = std::from_chars(start, bytes + bytes_.size(), value);
    if (end == start) throw Error("it is damaged (its header is not that of a PGM or PPM picture)");
    if (error != std::errc() || value > 65535) throw Error("a number of its header is too large");
    at_ = static_cast<size_t>(end - bytes);
    return value;
  }

  // One white-space character separates the last number from the pixels.
  size_t end() const { return at_ + 1; }

 private:
  void skipSpace() {
    while (at_ < bytes_.size() && (std::isspace(bytes_[at_]) || bytes_[at_] == '#'))
      if (bytes_[at_++] == '#')
        while (at_ < bytes_.size() && bytes_[at_] != '\n') ++at_;
  }

  const Bytes& bytes_;
  size_t at_ = 2;
};

constexpr const char* tooLargeSample = "it is damaged (a pixel is larger than the header's maximum)";

// The compiler makes vectors of both loops: no sample is looked at by itself.
void takeWide(const uint8_t* in, uint32_t maximum, std::vector<uint16_t>& samples) {
  uint16_t largest = 0;
  for (size_t i = 0; i < samples.size(); ++i) {
    const auto sample = static_cast<uint16_t>(in[2 * i] << 8 | in[2 * i + 1]);
    samples[i] = sample;
    largest = std::max(largest, sample);
  }
  if (largest > maximum) throw Error(tooLargeSample);
}

void takeNarrow(const uint8_t* in, uint32_t maximum, std::vector<uint16_t>& samples) {
  uint8_t largest = 0;
  for (size_t i = 0; i < samples.size(); ++i) {
    samples[i] = in[i];
    largest = std::max(largest, in[i]);
  }
  if (largest > maximum) throw Error(tooLargeSample);
}

// A maximum below 255 is rare.
void stretch(std::vector<uint16_t>& samples, uint32_t maximum) {
  for (uint16_t& sample : samples) sample = static_cast<uint16_t>((sample * 255 + maximum / 2) / maximum);
}

}  // namespace

bool isPnm(const Bytes& bytes) { return bytes.size() >= 2 && bytes[0] == 'P' && (bytes[1] == '5' || bytes[1] == '6'); }

Raster decodePnm(const Bytes& bytes) {
  Header header(bytes);
  Raster raster;
  raster.channels = bytes[1] == '6' ? 3 : 1;
  raster.width = header.number();
  raster.height = header.number();
  const uint32_t maximum = header.number();
  if (maximum == 0 || raster.width == 0 || raster.height == 0) throw Error("it is damaged (a size of 0)");
  checkRasterSize(raster.width, raster.height);
  raster.bits = maximum > 255 ? 16 : 8;

  const size_t count = size_t{raster.width} * raster.height * raster.channels;
  const size_t sampleSize = raster.bits / 8;
  if (bytes.size() < header.end() + count * sampleSize) throw Error("it is damaged (it ends too early)");
  raster.samples.resize(count);
  const uint8_t* in = bytes.data() + header.end();
  (sampleSize == 2 ? takeWide : takeNarrow)(in, maximum, raster.samples);
  if (maximum < 255) stretch(raster.samples, maximum);
  return raster;
}

}  // namespace nadir::tool
