// Floats compared by their bits, and floats to try.
#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <ios>
#include <ostream>
#include <vector>

#include "lab/random.hpp"

namespace nadir::test {

inline uint32_t bitsOf(float value) {
  uint32_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

inline float floatOf(uint32_t bits) {
  float value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

// Equal when all bits are. Every NaN equals every other: each processor makes NaNs of its own sign and payload.
class Floats {
 public:
  Floats(std::initializer_list<float> values) : values_(values) {}
  Floats(const float* first, size_t count) : values_(first, first + count) {}

  friend bool operator==(const Floats& a, const Floats& b) { return a.bits() == b.bits(); }
  friend std::ostream& operator<<(std::ostream& out, const Floats& floats) {
    for (float v : floats.values_) out << std::defaultfloat << v << " (" << std::hexfloat << v << ") ";
    return out << std::defaultfloat;
  }

 private:
  std::vector<uint32_t> bits() const {
    std::vector<uint32_t> all;
    for (float v : values_) all.push_back(v == v ? bitsOf(v) : 0x7FC00000u);
    return all;
  }
  std::vector<float> values_;
};

// The numbers of a record, or an array, that is made of floats and nothing else.
template <class Record>
Floats floats(const Record& record) {
  float values[sizeof(Record) / sizeof(float)];
  std::memcpy(values, &record, sizeof record);
  return Floats(values, sizeof(Record) / sizeof(float));
}

// A number in (-range, range), with a full mantissa.
inline float anyWithin(lab::Random& random, float range) {
  return static_cast<float>(random.between(-8388607, 8388607)) / 8388608.0f * range;
}

// Any number but a NaN: of every magnitude, both zeros, infinities, subnormals.
inline float anyNumber(lab::Random& random) {
  const float value = floatOf(random.next());
  return value == value ? value : floatOf(random.next() & 0x80000000u);
}

}  // namespace nadir::test
