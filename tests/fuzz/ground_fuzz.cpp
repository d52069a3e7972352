// Any numbers as the records of libnadirground, any bytes as its pictures and saved states: bad ones are refused, good
// ones are worked on within the buffers, and what is found agrees with itself at every level.
#include <nadir/ground.h>
#include <nadir/level.h>

#include <cstring>
#include <memory>

#include "lab/checker.hpp"
#include "lab/fingerprint.hpp"
#include "lab/rectifier.hpp"
#include "lab/road.hpp"
#include "simd/cpu.hpp"
#include "tests/fuzz/input.hpp"
#include "tests/support/levels.hpp"

namespace nadir::test {
namespace {

constexpr size_t largestBlock = size_t{1} << 21;  // beyond it a run takes seconds

template <class T>
T anyBits(Input& in) {
  const std::vector<uint8_t> bytes = in.values<uint8_t>(sizeof(T));
  T value;
  std::memcpy(&value, bytes.data(), sizeof value);
  return value;
}

// Mostly within lo and hi, now and then at an edge, a little beyond it, or any bits.
double anyNumber(Input& in, double lo, double hi) {
  switch (in.below(64)) {
    case 0: return anyBits<double>(in);
    case 1: return lo;
    case 2: return hi;
    case 3: return hi + 1;
    default: return lo + (hi - lo) * in.below(65536) / 65535;
  }
}

uint32_t anyCount(Input& in, uint32_t lo, uint32_t hi) {
  const uint32_t kind = in.below(64);
  return kind == 0 ? anyBits<uint32_t>(in) : kind == 1 ? hi + 1 : lo + in.below(hi - lo + 1);
}

NadirCamera anyCamera(Input& in) {
  NadirCamera c = lab::emptyRecord<NadirCamera>();
  if (in.below(64) == 0) c.size = in.below(300);
  c.width_px = anyCount(in, 5, 40);
  c.height_px = anyCount(in, 5, 24);
  c.cell_mm = anyCount(in, 1, 300);
  c.map_width_cells = anyCount(in, 1, 24);
  c.map_height_cells = anyCount(in, 1, 24);
  c.baseline_mm = anyNumber(in, 20, 400);
  c.focal_px = anyNumber(in, 5, 60);
  c.principal_x_px = anyNumber(in, 0, 40);
  c.principal_y_px = anyNumber(in, 0, 24);
  c.column_shift_px = anyNumber(in, -3, 3);
  c.height_mm = anyNumber(in, 100, 4000);
  c.tilt_deg = anyNumber(in, -90, 90);
  c.pan_deg = anyNumber(in, -30, 30);
  c.map_offset_x_mm = anyNumber(in, -500, 500);
  c.map_offset_y_mm = anyNumber(in, -500, 500);
  return c;
}

NadirSettings anySettings(Input& in) {
  NadirSettings s = lab::emptyRecord<NadirSettings>();
  if (in.below(64) == 0) s.size = in.below(300);
  s.until = anyCount(in, 0, 2);
  s.grid = anyCount(in, 0, 1);
  s.uniqueness = in.below(200);
  s.postprocess = anyCount(in, 0, 1);
  s.min_points = anyCount(in, 1, 4);
  s.percentile = anyNumber(in, 1, 100);
  s.fill_holes_m2 = in.below(2) ? 0 : anyNumber(in, 0, 3);
  s.min_height_mm = anyNumber(in, 0, 500);
  s.max_step_mm = anyNumber(in, 0, 500);
  s.min_area_m2 = anyNumber(in, 0, 0.1);
  return s;
}

// The corners lie on the heap, so that the sanitizer sees their end.
struct Areas {
  std::vector<std::vector<int32_t>> corners;
  std::vector<NadirArea> records;
};

Areas anyAreas(Input& in) {
  Areas areas;
  for (uint32_t n = in.below(4); n > 0; --n) {
    const uint32_t count = 3 + in.below(5);
    std::vector<int32_t> corners(2 * count);
    for (int32_t& c : corners) c = in.below(64) ? static_cast<int32_t>(in.below(4000)) - 1000 : anyBits<int32_t>(in);
    areas.corners.push_back(corners);
    areas.records.push_back({sizeof(NadirArea), in.below(2), count, 0, nullptr, 0, 0});
  }
  for (size_t i = 0; i < areas.records.size(); ++i) areas.records[i].corners = areas.corners[i].data();
  return areas;
}

// A frame and the bytes that it needs, each row's padding but the last one's included.
struct Frame {
  std::vector<uint8_t> left, right, mask;
  std::vector<float> disparity;
  NadirFrame record = lab::emptyRecord<NadirFrame>();
};

size_t bytesOf(uint32_t height, size_t stride, size_t row) { return (height - 1) * stride + row; }

void fillPictures(Input& in, const NadirCamera& c, Frame& f) {
  const size_t row = size_t{c.width_px} * f.record.bits / 8;
  f.record.left_stride = row + in.below(4);
  f.record.right_stride = row + in.below(4);
  f.left = in.values<uint8_t>(bytesOf(c.height_px, f.record.left_stride, row));
  f.right = in.below(3) ? f.left : in.values<uint8_t>(bytesOf(c.height_px, f.record.right_stride, row));
  f.right.resize(bytesOf(c.height_px, f.record.right_stride, row));
  f.record.left = f.left.data();
  f.record.right = f.right.data();
  if (in.below(2)) return;
  f.record.mask_stride = c.width_px + in.below(3);
  f.mask = in.values<uint8_t>(bytesOf(c.height_px, f.record.mask_stride, c.width_px));
  for (uint8_t& m : f.mask) m &= 1;
  f.record.mask = f.mask.data();
}

void fillDisparities(Input& in, const NadirCamera& c, Frame& f) {
  const size_t stride = c.width_px + in.below(3);
  f.disparity.resize(bytesOf(c.height_px, stride, c.width_px));
  const bool wild = in.below(4) == 0;
  for (float& d : f.disparity) d = wild ? anyBits<float>(in) : static_cast<float>(in.below(500)) / 16;
  f.record.disparity = f.disparity.data();
  f.record.disparity_stride = stride * sizeof(float);
}

std::unique_ptr<Frame> anyFrame(Input& in, const NadirCamera& c) {
  auto f = std::make_unique<Frame>();
  f->record.bits = in.below(2) ? 8 : 16;
  if (in.below(2))
    fillPictures(in, c, *f);
  else
    fillDisparities(in, c, *f);
  return f;
}

// What is wrong with a frame must be seen before anything is read.
void expectRefusal(Input& in, const lab::Road& road, Frame frame) {
  NadirFrame& f = frame.record;
  switch (in.below(3)) {
    case 0: f.disparity ? f.disparity_stride -= f.disparity_stride % 8 + 1 : f.bits = 9 + in.below(7); break;
    case 1: f.disparity ? f.disparity_stride = 4 : f.left_stride = in.below(4); break;
    default: f.disparity = nullptr; f.left = nullptr;
  }
  expect("refused frame", NADIR_BAD_FRAME, nadir_road_process(road.road(), &f, road.result()));
}

void expectSums(const NadirFindings& f, const NadirCamera& c) {
  const NadirPixelCounts& p = *f.pixels;
  expect("pixels", c.width_px * c.height_px, p.value + p.ambiguous + p.removed + p.masked + p.border);
  uint32_t cells = 0, labelled = 0, counted = 0;
  for (uint32_t i = 0; i < f.region_count; ++i) cells += f.regions[i].cells;
  const auto* labels = static_cast<const uint16_t*>(f.labels.data);
  const auto* counts = static_cast<const uint32_t*>(f.point_counts.data);
  for (uint32_t i = 0; labels && i < f.labels.width * f.labels.height; ++i) {
    expect("label", true, labels[i] <= f.region_count);
    labelled += labels[i] != 0;
  }
  for (uint32_t i = 0; counts && i < f.point_counts.width * f.point_counts.height; ++i) counted += counts[i];
  expect("cells of regions", labelled, cells);
  expect("points over cells", f.points_inside, counted);
  for (uint32_t i = 0; i < f.area_count; ++i) {
    const NadirOccupancy& a = f.areas[i];
    uint32_t shared = 0;
    for (uint32_t s = 0; s < a.share_count; ++s) shared += f.shares[a.first_share + s].cells;
    expect("cells of shares", a.covered_cells, shared);
  }
}

uint64_t found(lab::Road& road, const NadirFrame& frame, const NadirCamera& camera) {
  const NadirFindings findings = road.findings(frame);
  expectSums(findings, camera);
  lab::Fingerprint print;
  lab::addFindings(print, findings);
  return findings.heights.data ? lab::addPoints(print, road, frame).value() : print.value();
}

// Every level, on a road that has worked and on a new one.
void expectSameEverywhere(lab::Road& worn, const lab::RoadPlan& plan, const NadirFrame& frame) {
  static const std::vector<unsigned> levels = cumulativeLevels();
  setCpu(levels.front());
  const uint64_t want = found(worn, frame, plan.camera);
  for (const unsigned level : levels) {
    setCpu(level);
    lab::Road fresh(plan);
    expect("findings", want, found(fresh, frame, plan.camera));
  }
}

NadirTrackSettings anyTracking(Input& in) {
  NadirTrackSettings s = lab::emptyRecord<NadirTrackSettings>();
  s.average_frames = anyCount(in, 0, 4);
  s.noise_mm = anyNumber(in, 1, 100);
  s.acceleration_mm_per_s2 = anyNumber(in, 0, 3000);
  s.patience_s = anyNumber(in, 0, 2);
  s.disparity_px = in.below(2) ? 0 : anyNumber(in, 0, 2);
  return s;
}

// The saved bytes with some of them changed, and with the right sum or without.
std::vector<uint8_t> anyState(Input& in, std::vector<uint8_t> state) {
  if (in.below(8) == 0) return in.values<uint8_t>(in.below(300));
  for (uint32_t n = in.below(4); n > 0; --n) state[in.below(static_cast<uint32_t>(state.size()))] = in.byte();
  if (in.below(8) == 0) state.resize(in.below(static_cast<uint32_t>(state.size())));
  if (state.size() < 8 || in.below(4) == 0) return state;
  uint64_t sum = lab::Fingerprint().add(state.data(), state.size() - 8).value();
  for (size_t i = state.size() - 8; i < state.size(); ++i, sum >>= 8) state[i] = static_cast<uint8_t>(sum);
  return state;
}

void trackSomeFrames(Input& in, const lab::Road& road, NadirTracker* tracker) {
  int64_t time = in.below(16) ? 0 : anyBits<int64_t>(in);
  for (uint32_t n = in.below(6); n > 0; --n) {
    const NadirStatus status = nadir_tracker_step(tracker, road.result(), time);
    expect("stepped", true, status == NADIR_OK || status == NADIR_BAD_TIME);
    NadirPlane mean;
    nadir_tracker_average(tracker, &mean);
    NadirTrack track = lab::emptyRecord<NadirTrack>();
    nadir_tracker_read(tracker, in.below(4), &track);
    time = in.below(16) ? time / 2 + in.below(60000) * int64_t{10000} : anyBits<int64_t>(in);
  }
}

void fuzzTracker(Input& in, const lab::Road& road) {
  const NadirTrackSettings settings = anyTracking(in);
  NadirTracker* tracker = nullptr;
  if (nadir_tracker_bytes(road.road(), &settings) > largestBlock) return;
  if (nadir_tracker_create(road.road(), &settings, &tracker, nullptr) != NADIR_OK) return;
  trackSomeFrames(in, road, tracker);
  std::vector<uint8_t> saved(nadir_tracker_save(tracker, nullptr, 0));
  expect("saved", saved.size(), nadir_tracker_save(tracker, saved.data(), saved.size()));
  const std::vector<uint8_t> state = anyState(in, saved);
  const NadirStatus status = nadir_tracker_load(tracker, state.data(), state.size());
  expect("loaded", true, status == NADIR_OK || status == NADIR_BAD_STATE || state.empty());
  std::vector<uint8_t> again(saved.size());
  nadir_tracker_save(tracker, again.data(), again.size());
  expect("state after loading", status == NADIR_OK ? state : saved, again);
  trackSomeFrames(in, road, tracker);
  nadir_tracker_destroy(tracker);
}

// Whatever was matched or given, there is a floor with numbers or none.
void fuzzLevel(Input& in, const lab::Road& road, const NadirCamera& camera, Frame frame) {
  NadirLevel* level = nullptr;
  const bool can = nadir_level_bytes(road.road()) > 0;
  expect("a level", can ? NADIR_OK : NADIR_BAD_SETTING, nadir_level_create(road.road(), &level));
  if (!can) return;
  fillPictures(in, camera, frame);
  if (in.below(8) == 0) frame.record.left_stride = in.below(8);
  const NadirStatus added = nadir_level_add(level, &frame.record, road.result());
  expect("added", true, added == NADIR_OK || added == NADIR_NOTHING_FOUND || added == NADIR_BAD_FRAME);
  NadirLevelled mount = lab::emptyRecord<NadirLevelled>();
  expect("read", added == NADIR_OK ? NADIR_OK : NADIR_NOTHING_FOUND, nadir_level_read(level, &mount));
  if (added == NADIR_OK) expect("a mount", true, mount.height_mm > 0 && mount.height_deviation_mm >= 0);
  NadirPlane taken;
  const NadirStatus shown = nadir_level_taken(level, &taken);
  expect("taken", added == NADIR_BAD_FRAME ? NADIR_NOTHING_FOUND : NADIR_OK, shown);
  const auto* marks = static_cast<const uint8_t*>(taken.data);
  for (size_t i = 0; shown == NADIR_OK && i < size_t{taken.width} * taken.height; ++i)
    expect("a mark", true, marks[i] <= NADIR_LEVEL_TAKEN);
  nadir_level_destroy(level);
}

void fuzzRoad(Input& in) {
  const Areas areas = anyAreas(in);
  const lab::RoadPlan plan{anyCamera(in), anySettings(in), areas.records};
  const auto count = static_cast<uint32_t>(plan.areas.size());
  const size_t bytes = nadir_road_bytes(&plan.camera, &plan.settings, count);
  if (bytes > largestBlock || nadir_result_bytes(&plan.camera, &plan.settings, count) > largestBlock) return;
  NadirRoad* made = nullptr;
  NadirFault fault = lab::emptyRecord<NadirFault>();
  const NadirStatus status = nadir_road_create(&plan.camera, &plan.settings, plan.areas.data(), count, &made, &fault);
  expect("a road where there is no fault", status == NADIR_OK, made != nullptr);
  expect("bytes where the camera and the settings are good", true, bytes > 0 || status != NADIR_OK);
  nadir_road_destroy(made);
  if (status != NADIR_OK) return;
  lab::Road road(plan);
  for (uint32_t n = 1 + in.below(2); n > 0; --n) {
    const std::unique_ptr<Frame> frame = anyFrame(in, plan.camera);
    if (in.below(8) == 0) expectRefusal(in, road, *frame);
    expectSameEverywhere(road, plan, frame->record);
    if (in.below(4) == 0) fuzzLevel(in, road, plan.camera, *frame);
  }
  fuzzTracker(in, road);
}

NadirLens anyLens(Input& in) {
  NadirLens lens = lab::lensOf(lab::lensKinds()[in.below(6)], anyCount(in, 5, 40), anyCount(in, 5, 24));
  if (in.below(8) == 0) lens.focal_x_px = anyNumber(in, 1, 60);
  if (in.below(8) == 0) lens.principal_y_px = anyNumber(in, -9, 24);
  for (uint32_t n = in.below(3); n > 0; --n) lens.coefficients[in.below(12)] = anyNumber(in, -1, 1);
  return lens;
}

NadirRectifiedView anyView(Input& in) {
  NadirRectifiedView view = lab::turnedView(anyCount(in, 5, 40), anyCount(in, 5, 24));
  view.focal_px = anyNumber(in, 1, 60);
  if (in.below(8) == 0) view.rotation[in.below(9)] = anyNumber(in, -1, 1);
  return view;
}

void expectSourcesWithin(const lab::Rectifier& rectifier, const NadirLens& lens, const NadirRectifiedView& view) {
  for (uint32_t i = 0; i < view.width_px * view.height_px; ++i) {
    double x = 0, y = 0;
    nadir_rectifier_source(rectifier.get(), i % view.width_px, i / view.width_px, &x, &y);
    expect("source", true, x >= 0 && y >= 0 && x <= lens.width_px - 1 && y <= lens.height_px - 1);
  }
}

template <class Pixel>
void expectSameRectified(Input& in, const lab::Rectifier& rectifier, const NadirLens& lens) {
  static const std::vector<unsigned> levels = cumulativeLevels();
  const auto picture = in.values<Pixel>(size_t{lens.width_px} * lens.height_px);
  setCpu(levels.front());
  const auto want = rectifier.rectified(picture, lens.width_px);
  for (const unsigned level : levels) {
    setCpu(level);
    expect("rectified", true, want == rectifier.rectified(picture, lens.width_px));
  }
}

void fuzzViews(Input& in) {
  const NadirLens left = anyLens(in), right = anyLens(in);
  double rotation[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1}, translation[3] = {-100, 0, 0}, baseline = 0;
  for (uint32_t n = in.below(3); n > 0; --n) rotation[in.below(9)] = anyNumber(in, -1, 1);
  for (uint32_t n = in.below(3); n > 0; --n) translation[in.below(3)] = anyNumber(in, -200, 200);
  auto leftView = lab::emptyRecord<NadirRectifiedView>(), rightView = leftView;
  NadirFault fault = lab::emptyRecord<NadirFault>();
  const NadirStatus status =
      nadir_rectified_views(&left, &right, rotation, translation, &leftView, &rightView, &baseline, &fault);
  expect("views or a field", status == NADIR_OK, fault.field == nullptr);
  expect("a baseline", true, status != NADIR_OK || baseline > 0);
}

void fuzzRectifier(Input& in) {
  const NadirLens lens = anyLens(in);
  const NadirRectifiedView view = anyView(in);
  if (nadir_rectifier_bytes(&view) > largestBlock || lens.width_px > 100 || lens.height_px > 100) return;
  NadirRectifier* made = nullptr;
  NadirFault fault = lab::emptyRecord<NadirFault>();
  const NadirStatus status = nadir_rectifier_create(&lens, &view, &made, &fault);
  expect("a rectifier or a field", status != NADIR_OK, made == nullptr && fault.field != nullptr);
  nadir_rectifier_destroy(made);
  if (status != NADIR_OK) return;
  const lab::Rectifier rectifier(lens, view);
  expectSourcesWithin(rectifier, lens, view);
  expectSameRectified<uint8_t>(in, rectifier, lens);
  expectSameRectified<uint16_t>(in, rectifier, lens);
}

NadirPlane anyPlane(Input& in, const std::vector<uint16_t>& picture, uint32_t width, uint32_t height) {
  NadirPlane plane{picture.data(), 2 * size_t{width}, width, height};
  if (in.below(16) == 0) plane.width = anyCount(in, 0, width);
  if (in.below(16) == 0) plane.stride = anyCount(in, 0, 4 * width);
  if (plane.stride > 2 * size_t{width}) plane.height = height / 2;
  return plane;
}

// Whatever the pictures are there is one verdict, the same at the highest level as at the lowest.
void fuzzChecker(Input& in) {
  if (in.below(256) != 7) return;  // it takes as long as some hundred small frames
  const uint32_t width = 64 + in.below(9), height = 64 + in.below(5);
  const auto left = in.values<uint16_t>(size_t{width} * height);
  const auto right = in.below(4) == 0 ? left : in.values<uint16_t>(size_t{width} * height);
  NadirPair pair = lab::emptyRecord<NadirPair>();
  pair.bits = in.below(4) == 0 ? 8 : 16;
  pair.range = NADIR_RANGE_122;
  pair.left = anyPlane(in, left, width, height);
  pair.right = anyPlane(in, right, width, height);
  const lab::Checker checker(width, height);
  uint64_t want = 0;
  const std::vector<unsigned> all = cumulativeLevels();
  for (const unsigned level : {all.front(), all.back()}) {
    setCpu(level);
    NadirCheckup checkup = lab::emptyRecord<NadirCheckup>();
    lab::Fingerprint hash;
    hash.add(nadir_checker_process(checker.get(), &pair, &checkup));
    lab::addCheckup(hash, checkup);
    expect("a verdict", true, nadir_verdict_name(checkup.verdict) != nullptr);
    if (want == 0) want = hash.value();
    expect("checkup", want, hash.value());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in(data, size);
  fuzzRoad(in);
  fuzzRectifier(in);
  fuzzViews(in);
  fuzzChecker(in);
  return 0;
}

}  // namespace nadir::test
