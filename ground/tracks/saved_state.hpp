// Numbers as little-endian bytes, so that a state saved on one machine is taken up on any other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace nadir::ground {

// The walk over a state visits every number in turn; one visitor counts and writes them, the other reads.
class StateWriter {
 public:
  StateWriter(void* memory, size_t room) : memory_(static_cast<uint8_t*>(memory)), room_(memory ? room : 0) {}

  template <class T>
  void visit(const T& value) {
    uint64_t bits = 0;
    bitsOf(value, bits);
    for (size_t i = 0; i < sizeof(T); ++i, bits >>= 8, ++bytes_)
      if (bytes_ < room_) memory_[bytes_] = static_cast<uint8_t>(bits);
  }
  size_t bytes() const { return bytes_; }

 private:
  template <class T>
  static void bitsOf(const T& value, uint64_t& bits) {
    if constexpr (sizeof(T) == 2) {
      uint16_t word;
      std::memcpy(&word, &value, 2);
      bits = word;
    } else if constexpr (sizeof(T) == 4) {
      uint32_t word;
      std::memcpy(&word, &value, 4);
      bits = word;
    } else {
      static_assert(sizeof(T) == 8);
      std::memcpy(&bits, &value, 8);
    }
  }

  uint8_t* memory_;
  size_t room_, bytes_ = 0;
};

// FNV-1a (G. Fowler, L. C. Noll, K.-P. Vo, http://www.isthe.com/chongo/tech/comp/fnv) of the bytes before it ends a
// state, so that damage to any of them is seen.
inline uint64_t stateSum(const void* memory, size_t bytes) {
  uint64_t sum = 0xCBF29CE484222325u;
  const auto* byte = static_cast<const uint8_t*>(memory);
  for (size_t i = 0; i < bytes; ++i) sum = (sum ^ byte[i]) * 0x100000001B3u;
  return sum;
}

class StateReader {
 public:
  StateReader(const void* memory, size_t bytes) : memory_(static_cast<const uint8_t*>(memory)), left_(bytes) {}

  template <class T>
  void visit(T& value) {
    whole_ = whole_ && left_ >= sizeof(T);
    if (!whole_) return;
    uint64_t bits = 0;
    for (size_t i = 0; i < sizeof(T); ++i) bits |= uint64_t{memory_[i]} << 8 * i;
    takeBits(bits, value);
    memory_ += sizeof(T);
    left_ -= sizeof(T);
  }
  bool isWhole() const { return whole_; }

 private:
  template <class T>
  static void takeBits(uint64_t bits, T& value) {
    if constexpr (sizeof(T) == 2) {
      const auto word = static_cast<uint16_t>(bits);
      std::memcpy(&value, &word, sizeof value);
    } else if constexpr (sizeof(T) == 4) {
      const auto word = static_cast<uint32_t>(bits);
      std::memcpy(&value, &word, sizeof value);
    } else {
      static_assert(sizeof(T) == 8);
      std::memcpy(&value, &bits, sizeof value);
    }
  }

  const uint8_t* memory_;
  size_t left_;
  bool whole_ = true;
};

}  // namespace nadir::ground
