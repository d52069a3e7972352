// Every call that allocates, with every one of its allocations failing in turn: the stated result, outputs as stated,
// nothing leaked. A new allocating function is one more Case, named in INSTANTIATE_TEST_SUITE_P(Calls, ...).
#include <gtest/gtest.h>
#include <nadir/nadir.h>
#include <signal.h>
#include <sys/mman.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "lab/heap.hpp"
#include "lab/random.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

using Values = std::vector<uint32_t>;

constexpr uint32_t columnCount = 30, rowCount = 9, pixelCount = columnCount * rowCount, searched = 64;
constexpr uint32_t untouched = 0xA7;

// The status of a call, 1 where it has none, and what it left in its outputs.
struct Outcome {
  int64_t status;
  Values output;
};

struct Case {
  std::string name;
  size_t blocks, bytes;                     // at most asked for by one call
  std::function<Outcome()> call;            // on fresh outputs; gives back what it was given
  std::function<Outcome(size_t n)> failed;  // what the failure of the n-th allocation leaves
};

template <class T>
Values valuesOf(const std::vector<T>& data) {
  return Values(data.begin(), data.end());
}

Values pixelsOf(uint32_t value) { return Values(pixelCount, value); }

// ---- path costs ----

Values stateOf(const PcBuffer& pc) {
  return {pc.width,
          pc.numDisparities,
          pc.costsA != nullptr,
          pc.costsB != nullptr,
          pc.costsSize,
          pc.costStride,
          pc.minA != nullptr,
          pc.minB != nullptr,
          pc.minSize,
          pc.minStride,
          pc.prevCosts != nullptr,
          pc.curCosts != nullptr,
          pc.prevMin != nullptr,
          pc.curMin != nullptr,
          pc.dir,
          pc.p1,
          pc.fillValue};
}

size_t pathBytes(uint32_t dir) {
  const size_t slots[] = {1, columnCount + 1, columnCount, columnCount + 1};
  return 2 * slots[dir] * (searched + 16 + 1);
}

Case pathCosts(uint32_t dir) {
  const auto call = [dir] {
    PcBuffer pc;
    const int64_t status = PC_Init(&pc, dir, columnCount, searched, 7);
    const Outcome outcome{status, stateOf(pc)};
    PC_Destroy(&pc);
    return outcome;
  };
  return {"PathCosts" + std::to_string(dir), 4, pathBytes(dir), call, [](size_t) {
            return Outcome{0, stateOf(PcBuffer{})};
          }};
}

TEST(PathCostMemory, IsAskedForInTheOrderCostsCostsMinimaMinima) {
  lab::heap::watch();
  PcBuffer pc;
  ASSERT_EQ(PC_Init(&pc, PC_DIR_UP, columnCount, searched, 7), 1);
  const size_t costs = columnCount * (searched + 16), minima = columnCount;
  EXPECT_EQ(lab::heap::bytes(1), costs);
  EXPECT_EQ(lab::heap::bytes(2), costs);
  EXPECT_EQ(lab::heap::bytes(3), minima);
  EXPECT_EQ(lab::heap::bytes(4), minima);
  PC_Destroy(&pc);
}

// ---- matching ----

struct Pair {
  std::vector<uint32_t> first, ref;
  std::vector<uint16_t> image;
};

const Pair& somePair() {
  static const Pair pair = [] {
    lab::Random random(1);
    Pair made{random.values<uint32_t>(pixelCount, 1u << 24), {}, random.values<uint16_t>(pixelCount, 65536)};
    made.ref = made.first;
    std::rotate(made.ref.begin(), made.ref.begin() + 5, made.ref.end());
    return made;
  }();
  return pair;
}

Outcome matchFull(SgmDebugData* debug) {
  std::vector<uint16_t> disparity(pixelCount, untouched);
  const SgmParams params{searched, 10};
  const Pair& pair = somePair();
  IP_SgmFull(pair.first.data(), pair.ref.data(), pair.image.data(), columnCount, rowCount, &params, disparity.data(),
             debug);
  return {1, valuesOf(disparity)};
}

Outcome matchDistinct(SgmDebugData* debug) {
  std::vector<uint8_t> distinctiveness(pixelCount, untouched);
  const Pair& pair = somePair();
  IP_Sgm(pair.first.data(), pair.ref.data(), pair.image.data(), columnCount, rowCount, distinctiveness.data(), debug);
  return {1, valuesOf(distinctiveness)};
}

// A debug record over the test's own memory, so that only the driver's allocations count.
class DebugBlocks {
 public:
  SgmDebugData* record() { return &record_; }

 private:
  std::vector<uint8_t> volumes_[2] = {std::vector<uint8_t>(pixelCount * searched),
                                      std::vector<uint8_t>(pixelCount* searched)};
  std::vector<uint8_t> maps_ = std::vector<uint8_t>(5 * pixelCount);
  uint8_t* map(size_t i) { return maps_.data() + i * pixelCount; }
  SgmDebugData record_{volumes_[0].data(), pixelCount* searched, map(0), map(1),    map(2), map(3), pixelCount,
                       volumes_[1].data(), pixelCount* searched, map(4), pixelCount};
};

constexpr size_t penaltyBytes = 4 * pixelCount;
size_t allPathBytes() { return pathBytes(0) + pathBytes(1) + pathBytes(2) + pathBytes(3); }

Case driver(const std::string& name, Outcome (*match)(SgmDebugData*), bool withDebug, size_t peakRows, uint32_t left) {
  const auto call = [match, withDebug] {
    DebugBlocks blocks;
    return match(withDebug ? blocks.record() : nullptr);
  };
  const size_t rows = withDebug ? 0 : 2 + peakRows;
  const size_t rowBytes = withDebug ? 0 : (2 * searched + peakRows) * columnCount;
  return {name, 4 + rows + 4 * 4, penaltyBytes + rowBytes + allPathBytes(), call, [left](size_t) {
            return Outcome{1, pixelsOf(left)};
          }};
}

Outcome debugOutcome(int64_t status, const SgmDebugData& debug) {
  return {status,
          {debug.costVolume != nullptr, debug.costVolumeSize, debug.p2Left != nullptr, debug.p2UpLeft != nullptr,
           debug.p2Up != nullptr, debug.p2UpRight != nullptr, debug.p2Size, debug.aggregatedVolume != nullptr,
           debug.aggregatedVolumeSize, debug.peakMap != nullptr, debug.peakMapSize}};
}

// Sizes are stored just before their blocks: sums first, then costs, the four P2 maps, the peak map.
Outcome debugWithout(size_t n) {
  SgmDebugData debug{};
  debug.aggregatedVolumeSize = pixelCount * searched;
  debug.costVolumeSize = n >= 2 ? pixelCount * searched : 0;
  debug.p2Size = n >= 3 ? pixelCount : 0;
  debug.peakMapSize = n >= 7 ? pixelCount : 0;
  return debugOutcome(0, debug);
}

Case debugRecord() {
  const auto call = [] {
    SgmDebugData debug;
    const int64_t status = IP_SgmMakeDebugData(columnCount, rowCount, searched, &debug);
    const Outcome outcome = debugOutcome(status, debug);
    IP_SgmFreeDebugData(&debug);
    return outcome;
  };
  return {"DebugRecord", 7, 2 * pixelCount * searched + 5 * pixelCount, call, debugWithout};
}

Case postproc() {
  const auto call = [] {
    const std::vector<uint16_t> disparity = lab::Random(2).values<uint16_t>(pixelCount, 985);
    const std::vector<uint8_t> mask = lab::Random(3).values<uint8_t>(pixelCount, 2);
    std::vector<uint16_t> result(pixelCount, untouched);
    const int64_t status = IP_SgmPostproc(disparity.data(), mask.data(), result.data(), columnCount, rowCount);
    return Outcome{status, valuesOf(result)};
  };
  return {"Postproc", 1, 2 * pixelCount, call, [](size_t) { return Outcome{0, pixelsOf(untouched)}; }};
}

// ---- image operations ----

template <class T>
Case morphology(const std::string& name, uint32_t type, int32_t op) {
  const auto call = [type, op] {
    std::vector<T> pixels = lab::Random(4).values<T>(pixelCount, 5), result(pixelCount, untouched);
    Img src, dst;
    Img_Init(&src, columnCount, rowCount, type, pixels.data());
    Img_Init(&dst, columnCount, rowCount, type, result.data());
    const int64_t status = IP_Morph3x3(&src, &dst, op);
    return Outcome{status, valuesOf(result)};
  };
  return {name, 1, pixelCount * sizeof(T), call, [](size_t) { return Outcome{0, pixelsOf(untouched)}; }};
}

template <class Status>
Case smoothing(const std::string& name, size_t bytes, int64_t statusOfFailure, Status operation) {
  const auto call = [operation] {
    std::vector<uint16_t> pixels = lab::Random(6).values<uint16_t>(pixelCount, 5), result(pixelCount, untouched);
    Img src, dst;
    Img_Init(&src, columnCount, rowCount, IMG_TYPE_U16, pixels.data());
    Img_Init(&dst, columnCount, rowCount, IMG_TYPE_U16, result.data());
    const int64_t status = operation(&src, &dst);
    return Outcome{status, valuesOf(result)};
  };
  return {name, 1, bytes, call, [=](size_t) { return Outcome{statusOfFailure, pixelsOf(untouched)}; }};
}

Case gauss() {
  return smoothing("Gauss", 6 * columnCount * sizeof(uint32_t), 0,
                   [](Img* src, Img* dst) { return IP_Gauss(src, dst, 0); });
}

Case pullPush() { return smoothing("PullPush", pixelCount, 1, IP_PullPush); }

// ---- list ----

Case append() {
  const auto call = [] {
    const uint32_t item = 11;
    List list;
    List_Init(&list, 5);
    const ListNode* node = List_Append(&list, &item, sizeof item);
    const Outcome outcome{node != nullptr, {list.count, list.head != nullptr, list.tail != nullptr}};
    List_Clear(&list);
    return outcome;
  };
  return {"Append", 2, sizeof(ListNode) + sizeof(uint32_t), call, [](size_t) { return Outcome{0, {0, 0, 0}}; }};
}

// ---- numbers and ground ----

Case radixSort() {
  const auto call = [] {
    const std::vector<uint16_t> keys = lab::Random(5).values<uint16_t>(pixelCount, 65536);
    std::vector<uint16_t> indices(pixelCount, untouched);
    const int64_t status = IP_Utl_RadixIdxSort(keys.data(), indices.data(), pixelCount, RADIX_UNSIGNED);
    return Outcome{status, valuesOf(indices)};
  };
  return {"RadixSort", 1, 2 * pixelCount, call, [](size_t) { return Outcome{1, pixelsOf(untouched)}; }};
}

constexpr size_t elevationMaskBytes = 614400;

StereoCtx someCamera() {
  const IntCalibParams inner{120 * 256, 400 * 256, 160 * 16, 120 * 16};
  const Orientation mount{2000, -60, 0};
  const ElevMapParams map{columnCount, rowCount, 100, 100};
  StereoCtx ctx;
  ip_stereo_init(&ctx, &inner, &mount, &map);
  return ctx;
}

// The mask of a square in a picture of the plane 2 m away.
int32_t maskSquare(uint8_t* cells) {
  const StereoCtx ctx = someCamera();
  std::vector<uint32_t> square{4, 100, 60, 220, 60, 220, 180, 100, 180};  // a count and four vertices
  const Polygon_s32* polygon = reinterpret_cast<Polygon_s32*>(square.data());
  const std::vector<uint16_t> heights(320 * 240, 2000);
  ImgC values;
  Img mask;
  ImgC_Init(&values, 320, 240, IMG_TYPE_U16, heights.data());
  Img_Init(&mask, columnCount, rowCount, IMG_TYPE_U8, cells);
  return IP_Utils_CreateElevMaskFromImgPoly(polygon, &ctx, &values, &mask);
}

Case elevationMask() {
  const auto call = [] {
    std::vector<uint8_t> cells(pixelCount, untouched);
    const int64_t status = maskSquare(cells.data());
    return Outcome{status, valuesOf(cells)};
  };
  return {"ElevationMask", 1, elevationMaskBytes, call, [](size_t) { return Outcome{0, pixelsOf(untouched)}; }};
}

// A page that the first write into it opens. Who writes is then held up until the handler has counted the heap's
// blocks.
class PageThatOpens {
 public:
  PageThatOpens() : page_(mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
    opening = this;
    struct sigaction action {};
    action.sa_handler = [](int) { opening->open(); };
    sigemptyset(&action.sa_mask);
    sigaction(SIGSEGV, &action, &before_);
  }
  ~PageThatOpens() {
    sigaction(SIGSEGV, &before_, nullptr);
    munmap(page_, bytes);
  }
  PageThatOpens(const PageThatOpens&) = delete;
  PageThatOpens& operator=(const PageThatOpens&) = delete;

  uint8_t* data() { return static_cast<uint8_t*>(page_); }
  std::optional<size_t> liveBlocksAtFirstWrite() const { return live_; }

 private:
  static constexpr size_t bytes = 65536;  // a page of any processor
  static inline PageThatOpens* opening = nullptr;

  void open() {
    if (live_) std::abort();  // the fault was somewhere else
    live_ = lab::heap::liveBlocks();
    mprotect(page_, bytes, PROT_READ | PROT_WRITE);
  }

  void* page_;
  std::optional<size_t> live_;
  struct sigaction before_ {};
};

TEST(ElevationMaskMemory, IsGivenBackBeforeTheMaskIsFilled) {
  const size_t live = lab::heap::liveBlocks();
  PageThatOpens cells;
  lab::heap::watch();
  EXPECT_EQ(maskSquare(cells.data()), 1);
  EXPECT_EQ(cells.liveBlocksAtFirstWrite(), live);
  EXPECT_EQ(lab::heap::bytes(), elevationMaskBytes);
}

// ---- segmentation ----

Case componentFinder() {
  const auto call = [] {
    CompFinder* finder = IP_CompFinder_Init();
    const uint32_t made = finder != nullptr;
    IP_CompFinder_Close(finder);
    return Outcome{made, {made}};
  };
  return {"ComponentFinder", 1, 400 << 10, call, [](size_t) { return Outcome{0, {0}}; }};
}

// Room for the labels of the largest image and for the sizes of as many components as it can have.
constexpr size_t labellingBytes = 2 * 128 * 128 + 2 * 4097;

Case contourFilter() {
  const auto call = [] {
    std::vector<uint16_t> pixels = lab::Random(6).values<uint16_t>(pixelCount, 2), result(pixelCount, untouched);
    Img src, dst;
    Img_Init(&src, columnCount, rowCount, IMG_TYPE_U16, pixels.data());
    Img_Init(&dst, columnCount, rowCount, IMG_TYPE_U16, result.data());
    const int64_t status = IP_ContourFilter(&src, &dst, 4);
    return Outcome{status, valuesOf(result)};
  };
  return {"ContourFilter", 2, labellingBytes, call, [](size_t) { return Outcome{0, pixelsOf(untouched)}; }};
}

Case contourFilterInPlace() {
  const auto call = [] {
    std::vector<uint16_t> pixels = lab::Random(6).values<uint16_t>(pixelCount, 2);
    Img img;
    Img_Init(&img, columnCount, rowCount, IMG_TYPE_U16, pixels.data());
    const int64_t status = IP_ContourFilter_I(&img, 4);
    return Outcome{status, valuesOf(pixels)};
  };
  return {"ContourFilterInPlace", 2, labellingBytes, call, [](size_t) {
            return Outcome{0, valuesOf(lab::Random(6).values<uint16_t>(pixelCount, 2))};
          }};
}

Case regionGrowing() {
  const auto call = [] {
    std::vector<uint16_t> pixels = lab::Random(7).values<uint16_t>(pixelCount, 5), result(pixelCount, untouched);
    const int32_t params[] = {0, 1};
    Img src, labels;
    Img_Init(&src, columnCount, rowCount, IMG_TYPE_U16, pixels.data());
    Img_Init(&labels, columnCount, rowCount, IMG_TYPE_U16, result.data());
    const int64_t status = IP_RGrow_Process(&src, params, &labels);
    return Outcome{status, valuesOf(result)};
  };
  return {"RegionGrowing", 1, 4 * pixelCount, call, [](size_t) { return Outcome{0, pixelsOf(untouched)}; }};
}

// ---- every row, every failure ----

class Allocating : public ::testing::TestWithParam<Case> {
 protected:
  void SetUp() override { lab::heap::watch(); }

  void expectOutcome(const Outcome& want, const Outcome& got) const {
    EXPECT_EQ(got.status, want.status);
    EXPECT_TRUE(same(want.output, got.output));
  }

  void failEachInTurn(lab::heap::Failing failing) const {
    const Outcome whole = GetParam().call();
    const size_t live = lab::heap::liveBlocks();
    for (size_t n = 1;; ++n) {
      SCOPED_TRACE(testing::Message() << "allocation " << n << " fails");
      lab::heap::watch(failing, n);
      const Outcome got = GetParam().call();
      const bool failed = lab::heap::failures() > 0;
      lab::heap::watch();
      EXPECT_EQ(lab::heap::liveBlocks(), live) << "leaked";
      expectOutcome(failed ? GetParam().failed(n) : whole, got);
      if (!failed) break;
    }
  }
};

TEST_P(Allocating, SucceedsAndGivesEverythingBack) {
  const size_t live = lab::heap::liveBlocks();
  const Outcome outcome = GetParam().call();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.output, GetParam().failed(1).output) << "a failure would not be noticed";
  EXPECT_EQ(lab::heap::liveBlocks(), live);
}

TEST_P(Allocating, AsksForNoMoreThanItsBounds) {
  GetParam().call();
  EXPECT_GE(lab::heap::allocations(), 1u);
  EXPECT_LE(lab::heap::allocations(), GetParam().blocks);
  EXPECT_LE(lab::heap::bytes(), GetParam().bytes);
}

TEST_P(Allocating, SurvivesTheFailureOfEachAllocation) { failEachInTurn(lab::heap::Failing::once); }

TEST_P(Allocating, SurvivesTheFailureOfEachAllocationAndAllBehindIt) { failEachInTurn(lab::heap::Failing::fromThenOn); }

INSTANTIATE_TEST_SUITE_P(Calls, Allocating,
                         ::testing::Values(pathCosts(PC_DIR_LEFT), pathCosts(PC_DIR_UPLEFT), pathCosts(PC_DIR_UP),
                                           pathCosts(PC_DIR_UPRIGHT),                                  //
                                           driver("SgmFull", matchFull, false, 1, 0),                  //
                                           driver("SgmFullDebug", matchFull, true, 1, 0),              //
                                           driver("Sgm", matchDistinct, false, 0, untouched),          //
                                           driver("SgmDebug", matchDistinct, true, 0, untouched),      //
                                           debugRecord(), postproc(), radixSort(), elevationMask(),    //
                                           gauss(), pullPush(), append(),                              //
                                           componentFinder(), contourFilter(),                         //
                                           contourFilterInPlace(), regionGrowing(),                    //
                                           morphology<uint8_t>("OpenU8", IMG_TYPE_U8, MORPH_OPEN),     //
                                           morphology<uint8_t>("CloseU8", IMG_TYPE_U8, MORPH_CLOSE),   //
                                           morphology<uint16_t>("OpenU16", IMG_TYPE_U16, MORPH_OPEN),  //
                                           morphology<uint16_t>("CloseU16", IMG_TYPE_U16, MORPH_CLOSE)),
                         [](const auto& row) { return row.param.name; });

// ---- a list that fills up as memory runs out ----

TEST(ListMemory, AFailedInsertionLeavesTheListAsItWas) {
  const uint32_t items[] = {11, 22, 33};
  for (const size_t failing : {size_t{1}, size_t{2}}) {
    List list;
    List_Init(&list, 5);
    ListNode* head = List_Append(&list, &items[0], sizeof items[0]);
    ListNode* tail = List_Append(&list, &items[1], sizeof items[1]);
    const size_t live = lab::heap::liveBlocks();
    lab::heap::watch(lab::heap::Failing::once, failing);
    EXPECT_EQ(List_InsertAfter(&list, head, &items[2], sizeof items[2]), nullptr);
    lab::heap::watch();
    EXPECT_EQ(lab::heap::liveBlocks(), live);
    EXPECT_EQ(list.count, 2u);
    EXPECT_EQ(head->next, tail);
    EXPECT_EQ(tail->prev, head);
    List_Clear(&list);
  }
}

TEST(ListMemory, ErasingAndClearingGiveEverythingBack) {
  const size_t live = lab::heap::liveBlocks();
  List list;
  List_Init(&list, -1);
  for (uint32_t i = 0; i < 9; ++i) List_Prepend(&list, &i, sizeof i);
  EXPECT_EQ(lab::heap::liveBlocks(), live + 18);
  List_Erase(&list, list.head->next);
  EXPECT_EQ(lab::heap::liveBlocks(), live + 16);
  List_Clear(&list);
  EXPECT_EQ(lab::heap::liveBlocks(), live);
}

// ---- calls that must not allocate ----

TEST(NotAllocating, AListInPools) {
  std::vector<ListNode> nodes(3);
  std::vector<uint32_t> items(3);
  List list;
  List_Init(&list, 3);
  ListStatic_Init(&list, 3, nodes.data(), items.data());
  lab::heap::watch();
  for (uint32_t i = 0; i < 4; ++i) List_Append(&list, &i, sizeof i);
  List_Erase(&list, list.head);
  List_Clear(&list);
  EXPECT_EQ(lab::heap::allocations(), 0u);
}

TEST(NotAllocating, RefusedPathCosts) {
  PcBuffer pc;
  lab::heap::watch();
  PC_Init(nullptr, PC_DIR_UP, columnCount, searched, 7);
  PC_Init(&pc, 4, columnCount, searched, 7);
  EXPECT_EQ(lab::heap::allocations(), 0u);
}

TEST(NotAllocating, RowsOfPathCosts) {
  PcBuffer pc;
  ASSERT_EQ(PC_Init(&pc, PC_DIR_UPLEFT, columnCount, searched, 7), 1);
  const std::vector<uint8_t> costs(columnCount * searched, 3), p2(columnCount, 20);
  std::vector<uint8_t> sums(columnCount * searched, 0);
  lab::heap::watch();
  PC_NextFrame(&pc);
  PC_NextRow(&pc, costs.data(), p2.data(), sums.data());
  PC_NextRow_neon(&pc, costs.data(), p2.data(), sums.data());
  EXPECT_EQ(lab::heap::allocations(), 0u);
  PC_Destroy(&pc);
}

TEST(NotAllocating, PostprocOfNullPointers) {
  uint16_t pixels[16] = {};
  uint8_t mask[16] = {};
  lab::heap::watch();
  IP_SgmPostproc(nullptr, mask, pixels, 4, 4);
  IP_SgmPostproc(pixels, nullptr, pixels, 4, 4);
  IP_SgmPostproc(pixels, mask, nullptr, 4, 4);
  EXPECT_EQ(lab::heap::allocations(), 0u);
}

// A matching keeps a few rows: what it asks for depends on the width alone.
struct Asked {
  size_t blocks, bytes;
};

Asked askedByMatching(uint32_t width, uint32_t height) {
  const std::vector<uint32_t> codes(size_t{width} * height, 5);
  const std::vector<uint16_t> image(codes.size(), 5);
  std::vector<uint16_t> disparity(codes.size());
  const SgmParams params{searched, 10};
  lab::heap::watch();
  IP_SgmFull(codes.data(), codes.data(), image.data(), width, height, &params, disparity.data(), nullptr);
  return {lab::heap::allocations(), lab::heap::bytes()};
}

TEST(MatchingMemory, DoesNotGrowWithTheHeight) {
  const Asked low = askedByMatching(columnCount, 5), high = askedByMatching(columnCount, 40);
  EXPECT_EQ(low.blocks, high.blocks);
  EXPECT_EQ(low.bytes, high.bytes);
}

TEST(MatchingMemory, IsAbout260BytesPerColumn) {
  const size_t perColumn = (askedByMatching(600, 5).bytes - askedByMatching(200, 5).bytes) / 400;
  EXPECT_GE(perColumn, 250u);
  EXPECT_LE(perColumn, 270u);
}

TEST(NotAllocating, WorkInMemoryOfTheCallers) {
  std::vector<uint16_t> pixels(pixelCount, 300), result(pixelCount);
  const std::vector<uint32_t> codes(pixelCount, 0x00555555);
  const std::vector<uint8_t> mask(pixelCount, 0);
  std::vector<uint8_t> memory(nadir_elevation_regions_bytes() + nadir_sgm_bytes(columnCount));
  const auto list = std::make_unique<RegionList>();
  const SgmParams params{searched, 10};
  const int32_t growth[] = {0, 1};
  Img src, dst;
  ImgC map;
  Img_Init(&src, columnCount, rowCount, IMG_TYPE_U16, pixels.data());
  Img_Init(&dst, columnCount, rowCount, IMG_TYPE_U16, result.data());
  ImgC_Init(&map, columnCount, rowCount, IMG_TYPE_U16, pixels.data());
  lab::heap::watch();
  EXPECT_EQ(nadir_sgm_full(codes.data(), codes.data(), pixels.data(), columnCount, rowCount, &params, result.data(),
                           nullptr, memory.data(), memory.size()),
            1);
  EXPECT_EQ(nadir_sgm_postproc(pixels.data(), mask.data(), result.data(), columnCount, rowCount, memory.data(),
                               memory.size()),
            1u);
  EXPECT_EQ(nadir_pull_push(&src, &dst, memory.data(), memory.size()), 1);
  EXPECT_EQ(nadir_region_growing(&src, growth, &dst, memory.data(), memory.size()), 1);
  NadirElevationRegions* state = nadir_elevation_regions_init(memory.data(), memory.size());
  EXPECT_EQ(nadir_elevation_regions_process(state, &map, nullptr), 1);
  EXPECT_EQ(nadir_elevation_regions_label_map(state, &dst), 1);
  EXPECT_EQ(nadir_elevation_regions_list(state, list.get()), 1);
  EXPECT_EQ(lab::heap::allocations(), 0u);
}

TEST(NotAllocating, SinglePassMorphologyAndMedian) {
  std::vector<uint16_t> pixels(64, 3), result(64);
  Img src, dst;
  Img_Init(&src, 8, 8, IMG_TYPE_U16, pixels.data());
  Img_Init(&dst, 8, 8, IMG_TYPE_U16, result.data());
  lab::heap::watch();
  for (const int32_t op : {MORPH_ERODE, MORPH_DILATE, MORPH_CLEAN}) IP_Morph3x3(&src, &dst, op);
  IP_Median3x3(&src, &dst);
  IP_Maximum3x3(&src, &dst);
  EXPECT_EQ(lab::heap::allocations(), 0u);
}

TEST(NotAllocating, LabellingAndFindingComponents) {
  std::vector<uint16_t> pixels = lab::Random(8).values<uint16_t>(64, 2), labels(128 * 128), sizes(4096);
  Img src, map;
  Vector counts;
  Img_Init(&src, 8, 8, IMG_TYPE_U16, pixels.data());
  const auto list = std::make_unique<ComponentList>();
  CompFinder* finder = IP_CompFinder_Init();
  const int32_t threshold = 0;
  lab::heap::watch();
  IP_CompFind_CreateLabelMap(&map, labels.data(), 32768);
  IP_CompFind_CreateComponentSizes(&counts, sizes.data(), 8192);
  EXPECT_EQ(IP_CompFind_Process(&src, &map, &counts, &threshold), 1);
  EXPECT_EQ(IP_CompFinder_Process(finder, &src, list.get()), 1);
  EXPECT_EQ(lab::heap::allocations(), 0u);
  IP_CompFinder_Close(finder);
}

TEST(NotAllocating, RegionsOfElevationMaps) {
  std::vector<uint16_t> heights = lab::Random(9).values<uint16_t>(64, 5), labels(64);
  ImgC elevation;
  Img map;
  ImgC_Init(&elevation, 8, 8, IMG_TYPE_U16, heights.data());
  Img_Init(&map, 8, 8, IMG_TYPE_U16, labels.data());
  const auto list = std::make_unique<RegionList>();
  lab::heap::watch();
  EXPECT_EQ(IP_RGE_Init(), 1);
  EXPECT_EQ(IP_RGE_Process(&elevation, nullptr), 1);
  EXPECT_EQ(IP_RGE_CreateLabelMap(&map), 1);
  EXPECT_EQ(IP_RGE_CreateRegionList(list.get()), 1);
  EXPECT_EQ(lab::heap::allocations(), 0u);
}

TEST(NotAllocating, RefusedSegmentation) {
  uint16_t pixels[4] = {};
  const int32_t params[] = {0, 1};
  Img small, large;
  Img_Init(&small, 2, 2, IMG_TYPE_U16, pixels);
  Img_Init(&large, 129, 2, IMG_TYPE_U16, pixels);
  lab::heap::watch();
  EXPECT_EQ(IP_ContourFilter(&small, &large, 2), 0);
  EXPECT_EQ(IP_ContourFilter(nullptr, &small, 2), 0);
  EXPECT_EQ(IP_RGrow_Process(&small, params, &large), 0);
  EXPECT_EQ(lab::heap::allocations(), 0u);
}

}  // namespace
}  // namespace nadir::test
