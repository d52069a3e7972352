// Hashes of what every exported function makes of fixed inputs, against the hashes in results.txt. They are the same on
// every processor and at every level of vector instructions.
//
//   nadir_golden_tests          compares; prints what differs
//   nadir_golden_tests --write  replaces results.txt by this run, for a change of results that is meant
#include <nadir/nadir.h>

#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/random.hpp"

namespace {

using nadir::test::Random;

// FNV-1a over the values' bytes, the lowest first whatever the processor's order.
class Hash {
 public:
  template <class T>
  Hash& add(T value) {
    if constexpr (std::is_floating_point_v<T>) {
      std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t> bits;
      std::memcpy(&bits, &value, sizeof bits);
      return add(bits);
    } else {
      uint64_t rest = static_cast<uint64_t>(value);
      for (size_t i = 0; i < sizeof value; ++i, rest >>= 8) state_ = (state_ ^ (rest & 255)) * 0x100000001B3u;
      return *this;
    }
  }

  template <class T>
  Hash& add(const std::vector<T>& values) {
    for (const T& value : values) add(value);
    return *this;
  }

  // A refused call would have a hash too, and nobody would see that it says nothing.
  Hash& done(int64_t status) {
    if (status == 1) return *this;
    std::cerr << "a call was refused\n";
    std::abort();
  }

  uint64_t value() const { return state_; }

 private:
  uint64_t state_ = 0xCBF29CE484222325u;
};

struct Case {
  std::string name;
  std::function<Hash()> run;
};

// ---- images ----

constexpr uint32_t kWidth = 83, kHeight = 21, kPixels = kWidth * kHeight;

uint32_t typeOf(uint8_t) { return IMG_TYPE_U8; }
uint32_t typeOf(int8_t) { return IMG_TYPE_S8; }
uint32_t typeOf(uint16_t) { return IMG_TYPE_U16; }
uint32_t typeOf(int16_t) { return IMG_TYPE_S16; }
uint32_t typeOf(uint32_t) { return IMG_TYPE_U32; }
uint32_t typeOf(int32_t) { return IMG_TYPE_S32; }
uint32_t typeOf(float) { return IMG_TYPE_F32; }

// Pixels with their descriptor.
template <class T>
struct Picture {
  explicit Picture(std::vector<T> values) : pixels(std::move(values)) {
    Img_Init(&img, kWidth, kHeight, typeOf(T{}), pixels.data());
  }
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;

  std::vector<T> pixels;
  Img img;
};

// Full of values that differ from any result, so that pixels left out show.
template <class T>
struct Blank : Picture<T> {
  Blank() : Picture<T>(std::vector<T>(kPixels, static_cast<T>(0x5A))) {}
};

// Values below `bound`, a third of them 0.
template <class T>
struct Holes : Picture<T> {
  explicit Holes(uint64_t seed, uint32_t bound = 65536) : Picture<T>(make(seed, bound)) {}

 private:
  static std::vector<T> make(uint64_t seed, uint32_t bound) {
    Random random(seed);
    std::vector<T> values(kPixels);
    for (T& value : values) value = random.below(3) == 0 ? T{0} : static_cast<T>(random.below(bound));
    return values;
  }
};

// ---- thresholds, arithmetic, masks, filters ----

template <class T>
Hash threshold(uint32_t mode) {
  Holes<T> src(1, 4096), inPlace(1, 4096);
  Blank<T> dst;
  Hash hash;
  hash.done(IP_Threshold(&src.img, &dst.img, 2000, mode)).add(dst.pixels);
  return hash.done(IP_Threshold_I(&inPlace.img, 0x8FFFF, mode)).add(inPlace.pixels);
}

template <class T>
Hash thresholdRange(int32_t mode) {
  Holes<T> src(2), inPlace(2);
  Blank<T> dst;
  Hash hash;
  hash.done(IP_ThresholdRange(&src.img, &dst.img, 1000, 30000, mode)).add(dst.pixels);
  return hash.done(IP_ThresholdRange_I(&inPlace.img, 0xC000, 0x3000, mode)).add(inPlace.pixels);
}

template <class T>
Hash arithmetic(uint32_t op) {
  Holes<T> a(3), inPlace(4);
  Picture<T> b(Random(5).values<T>(kPixels, 65536));
  for (size_t i = 0; i < kPixels; ++i) {
    if (op == IMGOP_SHL || op == IMGOP_SHR) b.pixels[i] = static_cast<T>(i % 40 == 39 ? 255 : i % 40);
    if (b.pixels[i] == 0) b.pixels[i] = 1;
  }
  Blank<T> out;
  Hash hash;
  hash.done(IP_ImgOpImg(&a.img, &b.img, &out.img, op)).add(out.pixels);
  return hash.done(IP_ImgOpImg_I(&inPlace.img, &b.img, op)).add(inPlace.pixels);
}

template <class T>
Hash mask(uint32_t mode) {
  Picture<T> src(Random(6).values<T>(kPixels, 65536)), inPlace(Random(7).values<T>(kPixels, 65536));
  Holes<uint8_t> shape(8, 256);
  Blank<T> dst;
  Hash hash;
  hash.done(IP_Mask(&src.img, &shape.img, &dst.img, mode)).add(dst.pixels);
  return hash.done(IP_Mask_I(&inPlace.img, &shape.img, mode)).add(inPlace.pixels);
}

template <class T>
Hash filter(uint32_t (*operation)(const Img*, Img*), uint64_t seed) {
  Holes<T> src(seed);
  Blank<T> dst;
  return Hash().done(operation(&src.img, &dst.img)).add(dst.pixels);
}

template <class T>
Hash morphology(int32_t op) {
  Holes<T> src(9);
  Blank<T> dst;
  return Hash().done(IP_Morph3x3(&src.img, &dst.img, op)).add(dst.pixels);
}

// ---- fill, copy, convert ----

template <class T>
Hash fill() {
  Blank<T> img;
  return Hash().done(Img_FillBuffer(&img.img, 0xF1234567)).add(img.pixels);
}

template <class From, class To>
Hash copy() {
  Picture<From> src(Random(10).values<From>(kPixels, 0xFFFFFFFF));
  Blank<To> dst;
  ImgC from;
  ImgC_Init(&from, kWidth, kHeight, typeOf(From{}), src.pixels.data());
  return Hash().done(Img_Copy(&from, &dst.img)).add(dst.pixels);
}

Hash convert() {
  Picture<int16_t> img(Random(11).values<int16_t>(kPixels, 65536));
  return Hash().done(Img_Convert_I(&img.img, IMG_TYPE_U16)).add(img.pixels).add(img.img.type);
}

// ---- stereo ----

constexpr uint32_t kD = 64;

struct Stereo {
  uint32_t width = 121, height = 15;
  std::vector<uint16_t> image;
  std::vector<uint32_t> first, ref;

  size_t pixels() const { return size_t{width} * height; }
};

std::vector<uint32_t> censusOf(const std::vector<uint16_t>& image, const Stereo& stereo) {
  std::vector<uint32_t> codes(image.size(), CENSUS_INVALID);
  IP_Census_5x5(image.data(), codes.data(), stereo.width, stereo.height);
  return codes;
}

// A textured ground whose disparity grows with y, with noise and pixels without data.
Stereo ground() {
  Stereo stereo;
  Random random(12);
  std::vector<uint16_t> first(stereo.pixels());
  stereo.image.resize(stereo.pixels());
  for (uint32_t y = 0; y < stereo.height; ++y) {
    const std::vector<uint16_t> texture = random.values<uint16_t>(stereo.width + 60, 5000);
    const auto seen = [&](uint32_t x) {
      return static_cast<uint16_t>(texture[x] % 97 ? texture[x] + random.below(90) : 0);
    };
    for (uint32_t x = 0; x < stereo.width; ++x) {
      first[y * stereo.width + x] = seen(x);
      stereo.image[y * stereo.width + x] = seen(x + 4 + 2 * y);
    }
  }
  stereo.first = censusOf(first, stereo);
  stereo.ref = censusOf(stereo.image, stereo);
  return stereo;
}

// Codes that no census makes.
Stereo anyCodes() {
  Stereo stereo = ground();
  stereo.first = Random(13).values<uint32_t>(stereo.pixels(), 0xFFFFFFFF);
  stereo.ref = Random(14).values<uint32_t>(stereo.pixels(), 0xFFFFFFFF);
  return stereo;
}

Hash census() { return Hash().add(ground().first).add(ground().ref); }

using CostRow = void (*)(const uint32_t*, const uint32_t*, uint32_t, uint32_t, uint32_t, uint32_t, uint8_t*);

Hash costRows(CostRow function, uint32_t numDisparities) {
  Hash hash;
  for (const Stereo& stereo : {ground(), anyCodes()}) {
    for (uint32_t y = 0; y < stereo.height; ++y) {
      std::vector<uint8_t> costs(stereo.width * kD, 0);
      function(&stereo.first[y * stereo.width], &stereo.ref[y * stereo.width], stereo.width, stereo.height,
               numDisparities, y, costs.data());
      hash.add(costs);
    }
  }
  return hash;
}

using NextRow = void (*)(PcBuffer*, const uint8_t*, const uint8_t*, uint8_t*);

Hash pathCosts(NextRow function, uint32_t dir, uint32_t numDisparities) {
  constexpr uint32_t width = 37;
  Random random(15 + dir);
  PcBuffer pc;
  Hash hash;
  hash.done(PC_Init(&pc, dir, width, numDisparities, 7));
  PC_NextFrame(&pc);
  for (int y = 0; y < 5; ++y) {
    const auto costs = random.values<uint8_t>(width * numDisparities, y < 3 ? 25 : 256);
    const auto p2 = random.values<uint8_t>(width, y < 3 ? 40 : 256);
    auto sums = random.values<uint8_t>(width * numDisparities, 256);
    function(&pc, costs.data(), p2.data(), sums.data());
    hash.add(sums);
  }
  PC_Destroy(&pc);
  return hash;
}

Hash penalties() {
  const Stereo stereo = ground();
  std::array<std::vector<uint8_t>, 4> maps;
  for (auto& map : maps) map.resize(stereo.pixels());
  SGM_CalcP2(stereo.image.data(), stereo.width, stereo.height, maps[0].data(), maps[1].data(), maps[2].data(),
             maps[3].data());
  Hash hash;
  for (const auto& map : maps) hash.add(map);
  return hash;
}

using FindMin = uint32_t (*)(const uint8_t*, uint32_t, uint8_t*, uint32_t*);

Hash minima(FindMin function) {
  Hash hash;
  for (uint32_t count = 0; count <= 256; ++count) {
    const auto costs = Random(count).values<uint8_t>(count + 1, count % 5 ? 256 : 3);
    uint8_t value = 0;
    uint32_t index = 0;
    function(costs.data(), count, &value, &index);
    hash.add(value).add(index);
  }
  return hash;
}

using PeakCheck = int32_t (*)(const uint8_t*, uint32_t, uint32_t);

Hash peaks(PeakCheck function) {
  Hash hash;
  for (uint32_t maxIndex = 0; maxIndex < 256; ++maxIndex) {
    for (const uint32_t ratio : {0u, 10u, 128u, 700u, 0xFFFFFFFFu}) {
      auto costs = Random(maxIndex).values<uint8_t>(maxIndex + 1, 230);
      costs[maxIndex / 2] = static_cast<uint8_t>(maxIndex % 16);
      hash.add(function(costs.data(), maxIndex, ratio));
    }
  }
  return hash;
}

void addBlock(Hash& hash, const uint8_t* block, size_t bytes) { hash.add(std::vector<uint8_t>(block, block + bytes)); }

void addDebug(Hash& hash, const SgmDebugData& debug) {
  addBlock(hash, debug.costVolume, debug.costVolumeSize);
  addBlock(hash, debug.aggregatedVolume, debug.aggregatedVolumeSize);
  for (const uint8_t* map : {debug.p2Left, debug.p2UpLeft, debug.p2Up, debug.p2UpRight}) {
    addBlock(hash, map, debug.p2Size);
  }
}

Hash full(const Stereo& stereo, uint32_t ratio, bool withDebug) {
  const SgmParams params{kD, ratio};
  std::vector<uint16_t> disparity(stereo.pixels());
  SgmDebugData debug;
  Hash hash;
  hash.done(IP_SgmMakeDebugData(stereo.width, stereo.height, kD, &debug));
  IP_SgmFull(stereo.first.data(), stereo.ref.data(), stereo.image.data(), stereo.width, stereo.height, &params,
             disparity.data(), withDebug ? &debug : nullptr);
  hash.add(disparity);
  if (withDebug) {
    addDebug(hash, debug);
    addBlock(hash, debug.peakMap, debug.peakMapSize);
  }
  IP_SgmFreeDebugData(&debug);
  return hash;
}

Hash distinct(const Stereo& stereo, bool withDebug) {
  std::vector<uint8_t> map(stereo.pixels());
  SgmDebugData debug;
  Hash hash;
  hash.done(IP_SgmMakeDebugData(stereo.width, stereo.height, kD, &debug));
  IP_Sgm(stereo.first.data(), stereo.ref.data(), stereo.image.data(), stereo.width, stereo.height, map.data(),
         withDebug ? &debug : nullptr);
  hash.add(map);
  if (withDebug) addDebug(hash, debug);
  IP_SgmFreeDebugData(&debug);
  return hash;
}

Hash postproc() {
  Holes<uint16_t> disparity(20, 985);
  const auto shape = Random(21).values<uint8_t>(kPixels, 2);
  std::vector<uint16_t> result(kPixels);
  return Hash().done(IP_SgmPostproc(disparity.pixels.data(), shape.data(), result.data(), kWidth, kHeight)).add(result);
}

// ---- the table ----

template <class T>
void addImageOperations(std::vector<Case>& cases, const std::string& type) {
  for (uint32_t mode = 0; mode <= 4; ++mode) {
    cases.push_back({"Threshold" + type + "_" + std::to_string(mode), [mode] { return threshold<T>(mode); }});
  }
  for (int32_t mode = 5; mode <= 6; ++mode) {
    cases.push_back({"ThresholdRange" + type + "_" + std::to_string(mode), [mode] { return thresholdRange<T>(mode); }});
  }
  for (uint32_t op = 0; op <= 5; ++op) {
    cases.push_back({"ImgOp" + type + "_" + std::to_string(op), [op] { return arithmetic<T>(op); }});
  }
  cases.push_back({"Median" + type, [] { return filter<T>(IP_Median3x3, 22); }});
}

template <class T>
void addMasksAndMorphology(std::vector<Case>& cases, const std::string& type) {
  for (uint32_t mode = 0; mode <= 1; ++mode) {
    cases.push_back({"Mask" + type + "_" + std::to_string(mode), [mode] { return mask<T>(mode); }});
  }
  for (int32_t op = 0; op <= 4; ++op) {
    cases.push_back({"Morph" + type + "_" + std::to_string(op), [op] { return morphology<T>(op); }});
  }
}

void addPathCosts(std::vector<Case>& cases) {
  for (uint32_t dir = 0; dir < 4; ++dir) {
    for (const uint32_t d : {16u, 64u}) {
      const std::string name = std::to_string(dir) + "_" + std::to_string(d);
      cases.push_back({"PathCosts" + name, [dir, d] { return pathCosts(PC_NextRow, dir, d); }});
      cases.push_back({"PathCostsVector" + name, [dir, d] { return pathCosts(PC_NextRow_neon, dir, d); }});
    }
  }
}

std::vector<Case> allCases() {
  std::vector<Case> cases{
      {"FillU8", fill<uint8_t>},
      {"FillS16", fill<int16_t>},
      {"FillU32", fill<uint32_t>},
      {"FillF32", fill<float>},
      {"CopyS8U16", copy<int8_t, uint16_t>},
      {"CopyU8S32", copy<uint8_t, int32_t>},
      {"CopyS16U32", copy<int16_t, uint32_t>},
      {"CopyU16S32", copy<uint16_t, int32_t>},
      {"CopyU16U16", copy<uint16_t, uint16_t>},
      {"ConvertS16U16", convert},
      {"Maximum", [] { return filter<uint16_t>(IP_Maximum3x3, 23); }},
      {"Census", census},
      {"CostRow", [] { return costRows(SGM_CalcDsiRow, 64); }},
      {"CostRow40", [] { return costRows(SGM_CalcDsiRow, 40); }},
      {"CostRowVector", [] { return costRows(SGM_CalcDsiRow_neon, 64); }},
      {"CostRowVector40", [] { return costRows(SGM_CalcDsiRow_neon, 40); }},
      {"Penalties", penalties},
      {"FindMin", [] { return minima(SGM_FindMinIdx); }},
      {"FindMinVector", [] { return minima(SGM_FindMinIdx_neon); }},
      {"PeakCheck", [] { return peaks(SGM_PeakCheckExtended); }},
      {"PeakCheckVector", [] { return peaks(SGM_PeakCheckExtended_neon); }},
      {"SgmFull", [] { return full(ground(), 10, false); }},
      {"SgmFullDebug", [] { return full(ground(), 10, true); }},
      {"SgmFullAnyCodes", [] { return full(anyCodes(), 0, true); }},
      {"Sgm", [] { return distinct(ground(), false); }},
      {"SgmDebug", [] { return distinct(ground(), true); }},
      {"SgmAnyCodes", [] { return distinct(anyCodes(), true); }},
      {"SgmPostproc", postproc},
  };
  addImageOperations<uint16_t>(cases, "U16");
  addImageOperations<int16_t>(cases, "S16");
  addMasksAndMorphology<uint8_t>(cases, "U8");
  addMasksAndMorphology<uint16_t>(cases, "U16");
  addPathCosts(cases);
  return cases;
}

// ---- comparing and writing ----

std::string hex(uint64_t value) {
  char text[17];
  std::snprintf(text, sizeof text, "%016" PRIx64, value);
  return text;
}

int write(const std::vector<Case>& cases) {
  std::ofstream file(NADIR_GOLDEN);
  for (const Case& c : cases) file << c.name << ' ' << hex(c.run().value()) << '\n';
  return file.good() ? 0 : 1;
}

std::map<std::string, std::string> readGolden() {
  std::ifstream file(NADIR_GOLDEN);
  std::map<std::string, std::string> hashes;
  for (std::string name, hash; file >> name >> hash;) hashes[name] = hash;
  return hashes;
}

// Every case must be in the file and every line of the file must have its case.
int compare(const std::vector<Case>& cases) {
  auto golden = readGolden();
  int wrong = 0;
  for (const Case& c : cases) {
    const std::string got = hex(c.run().value()), want = golden.count(c.name) ? golden[c.name] : "nothing";
    golden.erase(c.name);
    if (got == want) continue;
    std::cout << c.name << ": wanted " << want << ", got " << got << '\n';
    ++wrong;
  }
  for (const auto& line : golden) std::cout << line.first << ": in the file, but there is no such case\n";
  std::cout << cases.size() << " results, " << wrong << " differ\n";
  return wrong == 0 && golden.empty() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const bool writes = argc == 2 && std::string(argv[1]) == "--write";
  if (argc > 1 && !writes) {
    std::cerr << "usage: nadir_golden_tests [--write]\n";
    return 2;
  }
  return writes ? write(allCases()) : compare(allCases());
}
