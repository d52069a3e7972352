// Random numbers as functions of a place, the same on every machine.
#pragma once

#include <cstdint>

namespace nadir::scene {

// The finalizer of splitmix64 (G. Steele et al., "Fast splittable pseudorandom number generators", OOPSLA 2014).
inline uint64_t mixed(uint64_t v) {
  v = (v ^ v >> 30) * 0xBF58476D1CE4E5B9u;
  v = (v ^ v >> 27) * 0x94D049BB133111EBu;
  return v ^ v >> 31;
}

inline uint64_t hashAt(uint64_t key, int64_t x, int64_t y, int64_t z = 0) {
  return mixed(key + static_cast<uint64_t>(x) * 0x9E3779B97F4A7C15u + static_cast<uint64_t>(y) * 0xC2B2AE3D27D4EB4Fu +
               static_cast<uint64_t>(z) * 0x165667B19E3779F9u);
}

// The upper 53 bits as a number in [0, 1).
inline double fraction(uint64_t bits) { return static_cast<double>(bits >> 11) / 9007199254740992.0; }

// The draws that lay out a scene, one after the other. lab has another generator; this one stays, because every scene
// that a seed has given so far follows from these very numbers.
class SceneDraws {
 public:
  explicit SceneDraws(uint64_t seed) : key_(mixed(seed + 1)) {}
  uint64_t bits() { return hashAt(key_, ++drawn_, 0); }
  double between(double low, double high) { return low + (high - low) * fraction(bits()); }

 private:
  uint64_t key_;
  int64_t drawn_ = 0;
};

}  // namespace nadir::scene
