// Any bytes as the inputs of the stereo functions: at every level of this processor the results are those of the model,
// and nothing is touched outside the buffers.
#include <nadir/stereo.h>

#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "tests/fuzz/input.hpp"
#include "tests/models/stereo.hpp"
#include "tests/support/levels.hpp"

namespace nadir::test {
namespace {

using model::Bytes;
using model::Codes;
using model::Variant;
using model::Words;

constexpr uint32_t searched = model::searchedDisparities;

template <class F>
void atEveryLevel(F check) {
  static const std::vector<unsigned> levels = cumulativeLevels();
  for (unsigned level : levels) {
    setCpu(level);
    check();
  }
}

void fuzzCensus(Input& in) {
  const uint32_t width = in.below(90), height = in.below(8);
  const Words picture = in.values<uint16_t>(width * height);
  const Codes before(picture.size(), 0x01234567);
  const Codes want = model::census(picture, width, height, before);
  atEveryLevel([&] {
    Codes got = before;
    IP_Census_5x5(picture.data(), got.data(), width, height);
    expect("IP_Census_5x5", want, got);
  });
}

// The codes of a picture, whose top byte says that they are codes, or anything at all.
Codes anyCodes(Input& in, size_t count, bool ofPicture) {
  Codes codes = in.values<uint32_t>(count);
  for (uint32_t& code : codes) {
    if (ofPicture) code = code >> 24 == 0 ? model::invalidCode : code & 0xFFFFFF;
  }
  return codes;
}

void fuzzCostRow(Input& in) {
  const uint32_t width = 3 + in.below(90), count = 1 + in.below(searched);
  const bool ofPicture = in.below(2);
  const Codes first = anyCodes(in, width, ofPicture), ref = anyCodes(in, width, ofPicture);
  const Bytes scalar = model::costRow(first, ref, 5, count, 2, Variant::scalar);
  const Bytes vector = model::costRow(first, ref, 5, count, 2, Variant::vector);
  atEveryLevel([&] {
    Bytes got(scalar.size());
    SGM_CalcDsiRow(first.data(), ref.data(), width, 5, count, 2, got.data());
    expect("SGM_CalcDsiRow", scalar, got);
    got.assign(vector.size(), 0);
    SGM_CalcDsiRow_neon(first.data(), ref.data(), width, 5, count, 2, got.data());
    for (size_t i = 0; i < got.size(); ++i) {
      if (i % searched < count) expect("SGM_CalcDsiRow_neon", vector[i], got[i]);
    }
  });
}

struct PathRows {
  uint32_t dir, width, count, rows, p1;
  Bytes costs, p2;  // of all rows
};

Bytes sumsOf(const PathRows& in, decltype(PC_NextRow)* nextRow) {
  Bytes sums(in.costs.size());
  PcBuffer path;
  if (!PC_Init(&path, in.dir, in.width, in.count, static_cast<int32_t>(in.p1))) std::abort();
  PC_NextFrame(&path);
  for (size_t at = 0; at < in.p2.size(); at += in.width) {
    nextRow(&path, &in.costs[at * in.count], &in.p2[at], &sums[at * in.count]);
  }
  PC_Destroy(&path);
  return sums;
}

Bytes modelSums(const PathRows& in) {
  model::Path path(in.dir, in.width, in.count, static_cast<int32_t>(in.p1));
  Bytes sums;
  for (uint32_t y = 0; y < in.rows; ++y) {
    Bytes row(in.width * in.count);
    path.nextRow(model::rowOf(in.costs, in.width * in.count, y), model::rowOf(in.p2, in.width, y), row);
    sums.insert(sums.end(), row.begin(), row.end());
  }
  return sums;
}

void fuzzPath(Input& in) {
  PathRows rows{in.below(4), 1 + in.below(20), 1 + in.below(80), 1 + in.below(3), in.below(256), {}, {}};
  if (in.below(2)) rows.count = 16 * (1 + rows.count % 5);  // what vectors are made for
  rows.costs = in.values<uint8_t>(rows.rows * rows.width * rows.count);
  rows.p2 = in.values<uint8_t>(rows.rows * rows.width);
  const Bytes want = modelSums(rows);
  atEveryLevel([&] {
    expect("PC_NextRow", want, sumsOf(rows, PC_NextRow));
    expect("PC_NextRow_neon", want, sumsOf(rows, PC_NextRow_neon));
  });
}

void expectMinimum(const Bytes& costs, Variant variant, decltype(SGM_FindMinIdx)* find) {
  const uint32_t count = static_cast<uint32_t>(costs.size());
  const model::Minimum want = model::findMin(costs.data(), count, variant);
  model::Minimum got = {};
  expect("minimum's index", want.index, find(costs.data(), count, &got.value, &got.index));
  expect("stored index", want.index, got.index);
  expect("minimum", want.value, got.value);
}

void fuzzSelection(Input& in) {
  const uint32_t count = 1 + in.below(256), ratio = in.below(300);
  Bytes costs = in.values<uint8_t>(count);
  if (in.below(8) == 0) costs.assign(count, 255);
  const int32_t peak = model::peakCheck(costs.data(), count - 1, ratio);
  atEveryLevel([&] {
    expectMinimum(costs, Variant::scalar, SGM_FindMinIdx);
    expectMinimum(costs, Variant::vector, SGM_FindMinIdx_neon);
    expect("SGM_PeakCheckExtended", peak, SGM_PeakCheckExtended(costs.data(), count - 1, ratio));
    expect("SGM_PeakCheckExtended_neon", peak, SGM_PeakCheckExtended_neon(costs.data(), count - 1, ratio));
  });
}

struct Pair {
  uint32_t width, height, ratio;
  Codes first, ref;
  Words image;
  Bytes mask;
};

Bytes bytesOf(const uint8_t* data, size_t count) { return Bytes(data, data + count); }

void expectSteps(const model::Matching& want, const SgmDebugData& got) {
  expect("costs", want.costs, bytesOf(got.costVolume, want.costs.size()));
  expect("sums", want.sums, bytesOf(got.aggregatedVolume, want.sums.size()));
  const uint8_t* const maps[4] = {got.p2Left, got.p2UpLeft, got.p2Up, got.p2UpRight};
  for (size_t dir = 0; dir < 4; ++dir) expect("penalties", want.p2[dir], bytesOf(maps[dir], want.p2[dir].size()));
}

Words matched(const Pair& pair, SgmDebugData* debug) {
  const SgmParams params = {searched, pair.ratio};
  Words disparity(pair.image.size());
  IP_SgmFull(pair.first.data(), pair.ref.data(), pair.image.data(), pair.width, pair.height, &params, disparity.data(),
             debug);
  return disparity;
}

void checkDrivers(const Pair& pair, const model::Matching& steps) {
  const Bytes peaks = model::peaks(steps.sums, pair.width, pair.height, pair.ratio);
  const Words disparity = model::disparities(steps.sums, peaks);
  SgmDebugData debug;
  if (!IP_SgmMakeDebugData(pair.width, pair.height, searched, &debug)) std::abort();
  expect("IP_SgmFull with debug data", disparity, matched(pair, &debug));
  expectSteps(steps, debug);
  expect("peaks", peaks, bytesOf(debug.peakMap, peaks.size()));
  IP_SgmFreeDebugData(&debug);
  expect("IP_SgmFull", disparity, matched(pair, nullptr));

  Bytes distinct(peaks.size());
  IP_Sgm(pair.first.data(), pair.ref.data(), pair.image.data(), pair.width, pair.height, distinct.data(), nullptr);
  expect("IP_Sgm", model::distinctivenessMap(steps.sums, pair.width, pair.height), distinct);

  Words clean(disparity.size());
  const uint32_t done = IP_SgmPostproc(disparity.data(), pair.mask.data(), clean.data(), pair.width, pair.height);
  if (done) expect("IP_SgmPostproc", model::postproc(disparity, pair.mask, pair.width, pair.height), clean);
}

void fuzzDrivers(Input& in) {
  Pair pair{5 + in.below(70), 1 + in.below(7), in.below(300), {}, {}, {}, {}};
  const size_t pixels = pair.width * pair.height;
  const bool ofPicture = in.below(4) != 0;
  pair.first = anyCodes(in, pixels, ofPicture);
  pair.ref = anyCodes(in, pixels, ofPicture);
  pair.image = in.values<uint16_t>(pixels);
  pair.mask = in.values<uint8_t>(pixels);
  const model::Matching steps = model::match(pair.first, pair.ref, pair.image, pair.width, pair.height);
  atEveryLevel([&] { checkDrivers(pair, steps); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr void (*targets[])(Input&) = {fuzzCensus, fuzzCostRow, fuzzPath, fuzzSelection, fuzzDrivers};
  Input in(data, size);
  targets[in.below(5)](in);
  return 0;
}

}  // namespace nadir::test
