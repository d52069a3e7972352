// The stages of matching.
#include "lab/verify/stages.hpp"

namespace nadir::verify {

namespace {

constexpr uint32_t disparities = 64;

struct Codes {
  Grid<uint32_t> left, right;
};

Grid<uint32_t> censusOf(const Grid<uint16_t>& picture) {
  Grid<uint32_t> codes(picture.width, picture.height);
  IP_Census_5x5(picture.pixels.data(), codes.pixels.data(), picture.width, picture.height);
  return codes;
}

Codes codesOf(const Material& m) { return {censusOf(m.left), censusOf(m.right)}; }

Fingerprint census(const Material& m) {
  const Codes codes = codesOf(m);
  return Fingerprint().add(codes.left).add(codes.right);
}

// What the kernels of every instruction set compute, and what the plain functions do: two results, both fixed.
struct RowFunctions {
  decltype(&SGM_CalcDsiRow) costs;
  decltype(&PC_NextRow) paths;
  decltype(&SGM_FindMinIdx) minimum;
  decltype(&SGM_PeakCheckExtended) peak;
};
constexpr RowFunctions plain = {SGM_CalcDsiRow, PC_NextRow, SGM_FindMinIdx, SGM_PeakCheckExtended};
constexpr RowFunctions vectorised = {SGM_CalcDsiRow_neon, PC_NextRow_neon, SGM_FindMinIdx_neon,
                                     SGM_PeakCheckExtended_neon};

std::vector<uint8_t> costRow(const RowFunctions& f, const Codes& codes, uint32_t row) {
  const uint32_t w = codes.left.width;
  std::vector<uint8_t> costs(size_t{w} * disparities);
  f.costs(codes.left.row(row), codes.right.row(row), w, codes.left.height, disparities, row, costs.data());
  return costs;
}

constexpr uint32_t someRows = 24;

Fingerprint costsBy(const RowFunctions& f, const Material& m) {
  const Codes codes = codesOf(m);
  Fingerprint print;
  for (uint32_t row = 0; row < someRows; ++row) print.add(costRow(f, codes, row));
  return print;
}

Fingerprint pathsBy(const RowFunctions& f, const Material& m) {
  const Codes codes = codesOf(m);
  const uint32_t w = codes.left.width;
  Fingerprint print;
  for (const uint32_t direction : {PC_DIR_LEFT, PC_DIR_UPLEFT, PC_DIR_UP, PC_DIR_UPRIGHT}) {
    PcBuffer buffer;
    print.done(PC_Init(&buffer, direction, w, disparities, 7));
    PC_NextFrame(&buffer);
    const std::vector<uint8_t> penalty(w, 23);
    for (uint32_t row = 2; row < someRows; ++row) {
      std::vector<uint8_t> sums(size_t{w} * disparities);
      f.paths(&buffer, costRow(f, codes, row).data(), penalty.data(), sums.data());
      print.add(sums);
      if (row == someRows / 2) PC_SwapBuffer(&buffer);  // the row before the last comes once more
    }
    PC_ResetBuffer(&buffer);
    print.add(buffer.costsA, buffer.costsSize).add(buffer.minA, buffer.minSize);
    PC_Destroy(&buffer);
  }
  return print;
}

Fingerprint selectionBy(const RowFunctions& f, const Material& m) {
  const Codes codes = codesOf(m);
  Fingerprint print;
  for (uint32_t row = 2; row < someRows; ++row) {
    const std::vector<uint8_t> costs = costRow(f, codes, row);
    for (uint32_t x = disparities; x + 4 < codes.left.width; ++x) {
      const uint8_t* of = &costs[size_t{x} * disparities];
      uint8_t least = 0;
      uint32_t index = 0;
      print.add(f.minimum(of, disparities, &least, &index)).add(least).add(index);
      print.add(f.peak(of, disparities - 3, 48));
    }
  }
  return print;
}

Fingerprint penalties(const Material& m) {
  const size_t pixels = m.right.pixels.size();
  std::vector<uint8_t> left(pixels), upLeft(pixels), up(pixels), upRight(pixels);
  SGM_CalcP2(m.right.pixels.data(), m.right.width, m.right.height, left.data(), upLeft.data(), up.data(),
             upRight.data());
  return Fingerprint().add(left).add(upLeft).add(up).add(upRight);
}

Fingerprint matching(const Material& m) {
  const Codes codes = codesOf(m);
  std::vector<uint8_t> memory(nadir_sgm_bytes(m.right.width));  // a lack of it is no difference of the processor's
  Fingerprint print;
  for (const uint32_t uniqueness : {0u, 48u}) {
    const SgmParams params{disparities, uniqueness};
    Grid<uint16_t> disparity(m.right.width, m.right.height);
    nadir_sgm_full(codes.left.pixels.data(), codes.right.pixels.data(), m.right.pixels.data(), m.right.width,
                   m.right.height, &params, disparity.pixels.data(), nullptr, memory.data(), memory.size());
    print.add(disparity);
  }
  return print;
}

Fingerprint distinctiveness(const Material& m) {
  const Codes codes = codesOf(m);
  Grid<uint8_t> map(m.right.width, m.right.height);
  IP_Sgm(codes.left.pixels.data(), codes.right.pixels.data(), m.right.pixels.data(), m.right.width, m.right.height,
         map.pixels.data(), nullptr);
  return Fingerprint().add(map);
}

Fingerprint postProcessing(const Material& m) {
  Grid<uint16_t> result(m.disparity.width, m.disparity.height);
  Fingerprint print;
  print.done(IP_SgmPostproc(m.disparity.pixels.data(), m.occluded.pixels.data(), result.pixels.data(), result.width,
                            result.height));
  return print.add(result);
}

}  // namespace

Stages stereoStages() {
  return {{"census", census},
          {"costs", [](const Material& m) { return costsBy(plain, m); }},
          {"costs, vector", [](const Material& m) { return costsBy(vectorised, m); }},
          {"penalties", penalties},
          {"paths", [](const Material& m) { return pathsBy(plain, m); }},
          {"paths, vector", [](const Material& m) { return pathsBy(vectorised, m); }},
          {"selection", [](const Material& m) { return selectionBy(plain, m); }},
          {"selection, vector", [](const Material& m) { return selectionBy(vectorised, m); }},
          {"matching", matching},
          {"distinctiveness", distinctiveness},
          {"post-processing", postProcessing}};
}

}  // namespace nadir::verify
