// The same bits on every processor: hashes that were recorded once, on x86-64.
#include <gtest/gtest.h>

#include <cstring>

#include "lab/scene/ready_scenes.hpp"
#include "tests/lab/scene/eye.hpp"

namespace nadir::test {
namespace {

// FNV-1a over the values, each from its lowest byte up.
class Fingerprint {
 public:
  template <class T>
  void add(const std::vector<T>& values) {
    for (const T& value : values) addBits(bitsOf(value), sizeof(T));
  }
  uint64_t value() const { return hash_; }

 private:
  template <class T>
  static uint64_t bitsOf(T value) {
    return value;
  }
  static uint64_t bitsOf(double value) {
    if (std::isnan(value)) return 1;
    uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
  }
  void addBits(uint64_t bits, size_t bytes) {
    for (size_t i = 0; i < bytes; ++i) hash_ = (hash_ ^ (bits >> 8 * i & 255)) * 0x100000001B3u;
  }

  uint64_t hash_ = 0xCBF29CE484222325u;
};

struct Prints {
  uint64_t left, right, leftTruth, rightTruth, map;
};

uint64_t print(const scene::ViewTruth& truth) {
  Fingerprint print;
  print.add(truth.disparity.pixels);
  print.add(truth.height.pixels);
  print.add(truth.occluded.pixels);
  return print.value();
}

template <class T>
uint64_t print(const lab::Grid<T>& grid) {
  Fingerprint print;
  print.add(grid.pixels);
  return print.value();
}

Prints prints(const std::string& name, uint64_t seed, double seconds = 0, uint32_t frame = 0) {
  const scene::Rig rig = makeRig(cameraAt(-45, 17));
  const scene::Scene scene = scene::makeScene(name, rig, seed, seconds);
  const scene::Sensor sensor{7.5, true, frame};
  const scene::MapTruth map = mapTruth(scene, rig, {64, 48, 100});
  Fingerprint mapPrint;
  mapPrint.add(map.elevation.pixels);
  mapPrint.add(map.region.pixels);
  mapPrint.add(map.inPicture.pixels);
  return {print(picture(scene, rig, Side::left, sensor, nothing)),
          print(picture(scene, rig, Side::right, sensor, nothing)), print(truth(scene, rig, Side::left, nothing)),
          print(truth(scene, rig, Side::right, nothing)), mapPrint.value()};
}

void expectEqual(const Prints& got, const Prints& recorded) {
  EXPECT_EQ(got.left, recorded.left);
  EXPECT_EQ(got.right, recorded.right);
  EXPECT_EQ(got.leftTruth, recorded.leftTruth);
  EXPECT_EQ(got.rightTruth, recorded.rightTruth);
  EXPECT_EQ(got.map, recorded.map);
}

TEST(SceneGolden, SameBitsOnEveryMachine) {
  expectEqual(prints("boxes", 1), {0x3B6629ECC858B9B3u, 0x4F148BD80DE74470u, 0xE5C4EB86F8193738u, 0x3FE9A35836FA4915u,
                                   0xF5C1CE132A2840D5u});
  expectEqual(prints("people", 2), {0x7B2A4183C360B62Du, 0x19401504893F2DABu, 0x686E3CC1B551862Cu, 0x8453BB9129FE70E1u,
                                    0xC66DB3B8ED41A0B7u});
  expectEqual(prints("slope", 3), {0xB0EBDB7227ED96EEu, 0x80FCB33851B62462u, 0xAFEBF103E3449EADu, 0x5A026D3AB1900B47u,
                                   0x1DFF86A79358ED9Cu});
  expectEqual(prints("crop-rows", 4), {0x956E38F7ACF27BEDu, 0x91406E3E6477DFD0u, 0x9C642B56F994D97Eu,
                                       0xA74D8B0B59039532u, 0xFF209CAD50C3397Cu});
  expectEqual(prints("walkers", 5, 3.3, 33), {0xA23DEFFB7724D37Du, 0x3BD85FB53BB0B6D1u, 0xC4DBDB9DA81657A9u,
                                              0xD32202535A31C5DFu, 0xCFC1D61BF60B30DBu});
}

TEST(SceneGolden, AnotherFrameOfAStillSceneDiffersInNoiseAlone) {
  const Prints a = prints("boxes", 1, 0, 0), b = prints("boxes", 1, 1.5, 1);
  EXPECT_NE(a.left, b.left);
  EXPECT_NE(a.right, b.right);
  EXPECT_EQ(a.leftTruth, b.leftTruth);
  EXPECT_EQ(a.map, b.map);
}

TEST(SceneGolden, AnotherSeedIsAnotherScene) {
  const Prints a = prints("boxes", 1), b = prints("boxes", 2);
  EXPECT_NE(a.left, b.left);
  EXPECT_NE(a.leftTruth, b.leftTruth);
  EXPECT_NE(a.map, b.map);
}

}  // namespace
}  // namespace nadir::test
