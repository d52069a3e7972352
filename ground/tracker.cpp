// What outlives a frame: a height for each area and a window of maps, stepped in the order of the frames.
#include <cmath>
#include <cstdlib>
#include <initializer_list>

#include "ground/records/checks.hpp"
#include "ground/records/plane_view.hpp"
#include "ground/result.hpp"
#include "ground/road.hpp"
#include "ground/tracks/average.hpp"
#include "ground/tracks/height_track.hpp"
#include "ground/tracks/saved_state.hpp"

using namespace nadir::ground;

struct NadirTracker {
  Shape shape;
  NadirTrackSettings settings;
  uint32_t begun;  // 0 before the first frame
  int64_t timeNs;
  HeightTrack* tracks;
  Point_f32* centres;  // of the areas, world
  StereoCtx context;
  MapWindow window;
};

namespace nadir::ground {

namespace {

constexpr uint32_t stateMark = 0x5254444E;  // the bytes NDTR
constexpr uint32_t stateVersion = 3;

// The mean of its cells' centres, which are at least one.
Point_f32 centreOf(const PlacedArea& area, const Shape& shape, const StereoCtx& context) {
  double columns = 0, rows = 0;
  for (uint32_t y = 0; y < shape.mapHeight; ++y)
    for (uint32_t x = 0; x < shape.mapWidth; ++x) {
      if (area.mask[uint64_t{y} * shape.mapWidth + x] == 0) continue;
      columns += x + 0.5;
      rows += y + 0.5;
    }
  const Point_f32 cell = {static_cast<float>(columns / area.cells), static_cast<float>(rows / area.cells)};
  Point_f32 world;
  ip_elev2world(&cell, &world, &context.mapParams, &context.lowerLeft);
  return world;
}

NadirTracker* trackerIn(Arena& arena, const NadirRoad& road, const NadirTrackSettings& settings) {
  const Shape& shape = road.shape;
  NadirTracker* tracker = arena.take<NadirTracker>();
  NadirTracker pieces{};
  pieces.shape = shape;
  pieces.settings = settings;
  pieces.context = road.context;
  pieces.tracks = arena.take<HeightTrack>(shape.areas);
  pieces.centres = arena.take<Point_f32>(shape.areas);
  pieces.window = mapWindow(arena, shape, settings.average_frames);
  if (tracker) *tracker = pieces;
  for (uint32_t i = 0; tracker && i < shape.areas; ++i) {
    pieces.tracks[i] = {};
    pieces.centres[i] = centreOf(road.areas[i], shape, road.context);
  }
  return tracker;
}

// How much lower a point over the area's centre seems for a disparity that is one pixel too small, mm: along its ray,
// as far as all of the depth's change goes. 0 where the camera does not see it.
double millimetresOfPixel(const NadirTracker& t, uint32_t area, double heightMm) {
  const IntCalib& optics = t.context.intCalib;
  const auto below = static_cast<float>(static_cast<double>(t.context.orientation.height) - heightMm);
  const Point3_f32 world = {t.centres[area].x, t.centres[area].y, below};
  Point3_f32 seen;
  ip_stereo_world2cam(&t.context, &world, &seen);
  if (!(below > 0 && seen.z > 0)) return 0;
  return static_cast<double>(seen.z) * static_cast<double>(below) /
         (static_cast<double>(optics.focalLength) * static_cast<double>(optics.baseline));
}

// Of a disparity's error the larger part belongs to its fraction of a pixel and to what is seen.
constexpr double changingShare = 0.4;

Precision precisionAt(const NadirTracker& t, uint32_t area, double heightMm) {
  if (t.settings.disparity_px == 0 || std::isnan(heightMm)) return {t.settings.noise_mm, 0};
  const double off = t.settings.disparity_px * millimetresOfPixel(t, area, heightMm), changing = changingShare * off;
  return {changing > t.settings.noise_mm ? changing : t.settings.noise_mm, off};
}

void step(NadirTracker& t, int64_t timeNs, const NadirPlane& heights) {
  if (heights.data) addMap(t.window, t.shape, heights);
  t.timeNs = timeNs;
  t.begun = 1;
}

double sinceLast(const NadirTracker& t, int64_t timeNs) { return t.begun ? secondsBetween(t.timeNs, timeNs) : 0; }

// Regions that are higher than all that is half a region have few cells in the area: they are no measurement.
MeasuredHeight measuredHeight(double highestMm, double pieceMm) {
  if (std::isnan(pieceMm)) highestMm = NAN;
  return {pieceMm, highestMm > pieceMm ? pieceMm : highestMm};
}

MeasuredHeight measuredIn(const NadirOccupancy& area) {
  return measuredHeight(area.covered_cells == 0 ? double{NAN} : area.highest_mm,
                        area.piece_mm == 0 ? double{NAN} : area.piece_mm);
}

MeasuredHeight measuredIn(const NadirMeasurement& m, uint32_t area) {
  return measuredHeight(m.highest_mm[area], m.piece_mm ? m.piece_mm[area] : m.highest_mm[area]);
}

void stepTrack(NadirTracker& t, uint32_t area, int64_t timeNs, const MeasuredHeight& measured) {
  const Precision precision = precisionAt(t, area, measured.piece);
  stepTrack(t.tracks[area], t.settings, precision, timeNs, sinceLast(t, timeNs), measured);
}

bool isMap(const NadirPlane& plane, const Shape& shape) {
  return plane.width == shape.mapWidth && plane.height == shape.mapHeight &&
         holdsRows(plane.stride, shape.mapWidth * sizeof(uint16_t), shape.mapHeight);
}

// What a saved state has to agree on with the tracker that takes it up.
struct StateHead {
  uint32_t mark, version, areas, mapWidth, mapHeight, averageFrames;
  double noise, acceleration, patience, disparity;

  template <class Visitor>
  void visit(Visitor& visitor) {
    for (uint32_t* number : {&mark, &version, &areas, &mapWidth, &mapHeight, &averageFrames}) visitor.visit(*number);
    for (double* number : {&noise, &acceleration, &patience, &disparity}) visitor.visit(*number);
  }
  bool equals(const StateHead& other) const {
    return mark == other.mark && version == other.version && areas == other.areas && mapWidth == other.mapWidth &&
           mapHeight == other.mapHeight && averageFrames == other.averageFrames && noise == other.noise &&
           acceleration == other.acceleration && patience == other.patience && disparity == other.disparity;
  }
};

StateHead headOf(const NadirTracker& t) {
  const NadirTrackSettings& s = t.settings;
  return {stateMark,         stateVersion,     t.shape.areas, t.shape.mapWidth,
          t.shape.mapHeight, s.average_frames, s.noise_mm,    s.acceleration_mm_per_s2,
          s.patience_s,      s.disparity_px};
}

template <class Visitor>
void visitMotion(Visitor& visitor, Motion& motion) {
  visitor.visit(motion.height);
  visitor.visit(motion.rate);
  for (float& number : motion.covariance) visitor.visit(number);
}

template <class Visitor>
void visitTrack(Visitor& visitor, HeightTrack& track) {
  visitor.visit(track.active);
  visitor.visit(track.measuredAtNs);
  visitMotion(visitor, track.motion);
  visitor.visit(track.doubts);
  visitMotion(visitor, track.doubted);
}

template <class Visitor>
void visitState(Visitor& visitor, NadirTracker& t) {
  visitor.visit(t.begun);
  visitor.visit(t.timeNs);
  for (uint32_t i = 0; i < t.shape.areas; ++i) visitTrack(visitor, t.tracks[i]);
  visitor.visit(t.window.count);
  visitor.visit(t.window.next);
  for (uint64_t i = 0; i < t.window.room * t.shape.cells(); ++i) visitor.visit(t.window.maps[i]);
}

// The last bytes of a state are the sum of those before.
bool isUndamaged(const void* memory, size_t bytes) {
  const size_t summed = bytes - sizeof(uint64_t);
  uint64_t sum = 0;
  StateReader(static_cast<const uint8_t*>(memory) + summed, sizeof sum).visit(sum);
  return sum == stateSum(memory, summed);
}

// A sum can be made for any numbers, but a tracker goes on with none that it cannot come to by itself.
bool holdsGoodNumbers(const NadirTracker& t, StateReader reader) {
  uint32_t begun{}, count{}, next{};
  int64_t timeNs{};
  bool good = true;
  reader.visit(begun);
  reader.visit(timeNs);
  for (uint32_t i = 0; i < t.shape.areas; ++i) {
    HeightTrack track{};
    visitTrack(reader, track);
    good &= track.active <= begun && (!track.active || track.measuredAtNs <= timeNs) && isPossible(track);
  }
  reader.visit(count);
  reader.visit(next);
  const uint32_t room = t.window.room;
  return good && begun <= 1 && count <= room && next == (count < room ? count : room == 0 ? 0 : next % room);
}

// The bytes of a state do not depend on what it holds.
bool isState(const NadirTracker& t, const void* memory, size_t bytes) {
  if (bytes != nadir_tracker_save(&t, nullptr, 0)) return false;
  StateReader reader(memory, bytes);
  StateHead head{};
  head.visit(reader);
  return head.equals(headOf(t)) && isUndamaged(memory, bytes) && holdsGoodNumbers(t, reader);
}

// No map holds more, and no filter has to be told of more.
bool areHeights(const double* mm, uint32_t count) {
  for (uint32_t i = 0; i < count; ++i)
    if (!std::isnan(mm[i]) && !(mm[i] >= 0 && mm[i] <= UINT16_MAX)) return false;
  return true;
}

}  // namespace

}  // namespace nadir::ground

size_t nadir_tracker_bytes(const NadirRoad* road, const NadirTrackSettings* settings) {
  if (!road || !settings || judged(*settings).status) return 0;
  Arena counting(nullptr);
  trackerIn(counting, *road, *settings);
  return counting.bytes();
}

NadirStatus nadir_tracker_create(const NadirRoad* road, const NadirTrackSettings* settings, NadirTracker** tracker,
                                 NadirFault* fault) {
  if (!road || !settings || !tracker) return NADIR_NULL_POINTER;
  if (fault && !isWhole(fault)) return NADIR_BAD_RECORD;
  const Judgement j = judged(*settings);
  if (fault) *fault = {sizeof *fault, 0, 0, 0, j.field};
  if (j.status) return j.status;
  const size_t bytes = nadir_tracker_bytes(road, settings);
  void* block = bytes ? std::calloc(1, bytes) : nullptr;  // a state is saved whole, unused maps too
  if (!block) return NADIR_NO_MEMORY;
  Arena arena(block);
  *tracker = trackerIn(arena, *road, *settings);
  return NADIR_OK;
}

void nadir_tracker_destroy(NadirTracker* tracker) { std::free(tracker); }

NadirStatus nadir_tracker_step(NadirTracker* tracker, const NadirResult* result, int64_t timeNs) {
  if (!tracker || !result) return NADIR_NULL_POINTER;
  if (!areEqual(tracker->shape, result->shape)) return NADIR_FOREIGN_RESULT;
  if (!result->holdsFrame) return NADIR_NOTHING_FOUND;
  if (tracker->begun && timeNs < tracker->timeNs) return NADIR_BAD_TIME;
  for (uint32_t i = 0; i < tracker->shape.areas; ++i) stepTrack(*tracker, i, timeNs, measuredIn(result->areas[i]));
  const bool hasMap = tracker->shape.hasMap();
  step(*tracker, timeNs, planeOf(hasMap ? result->heights : nullptr, result->shape.mapWidth, result->shape.mapHeight));
  return NADIR_OK;
}

NadirStatus nadir_tracker_replay(NadirTracker* tracker, const NadirMeasurement* measurement) {
  if (!tracker || !measurement) return NADIR_NULL_POINTER;
  const NadirMeasurement& m = *measurement;
  if (!isWhole(measurement)) return NADIR_BAD_RECORD;
  if (m.area_count != tracker->shape.areas) return NADIR_FOREIGN_RESULT;
  if (m.area_count > 0 && !m.highest_mm) return NADIR_NULL_POINTER;
  if (m.heights.data && !isMap(m.heights, tracker->shape)) return NADIR_FOREIGN_RESULT;
  if (!areHeights(m.highest_mm, m.area_count)) return NADIR_BAD_FRAME;
  if (m.piece_mm && !areHeights(m.piece_mm, m.area_count)) return NADIR_BAD_FRAME;
  if (tracker->begun && m.time_ns < tracker->timeNs) return NADIR_BAD_TIME;
  for (uint32_t i = 0; i < m.area_count; ++i) stepTrack(*tracker, i, m.time_ns, measuredIn(m, i));
  step(*tracker, m.time_ns, m.heights);
  return NADIR_OK;
}

NadirStatus nadir_tracker_read(const NadirTracker* tracker, uint32_t area, NadirTrack* track) {
  if (!tracker || !track) return NADIR_NULL_POINTER;
  if (!isWhole(track)) return NADIR_BAD_RECORD;
  if (area >= tracker->shape.areas) return NADIR_NOTHING_FOUND;
  const HeightTrack& followed = tracker->tracks[area];
  const double height = static_cast<double>(followed.motion.height);
  *track = described(followed, precisionAt(*tracker, area, height).lasting);
  return NADIR_OK;
}

NadirStatus nadir_tracker_average(NadirTracker* tracker, NadirPlane* heights) {
  if (!tracker || !heights) return NADIR_NULL_POINTER;
  if (tracker->window.count == 0) return NADIR_NOTHING_FOUND;
  *heights = planeOf(meanOf(tracker->window, tracker->shape), tracker->shape.mapWidth, tracker->shape.mapHeight);
  return NADIR_OK;
}

size_t nadir_tracker_save(const NadirTracker* tracker, void* memory, size_t room) {
  if (!tracker) return 0;
  StateWriter counting(nullptr, 0), writing(memory, room);
  StateHead head = headOf(*tracker);
  auto& state = const_cast<NadirTracker&>(*tracker);  // a writer only looks, and one walk serves writers and readers
  head.visit(counting);
  visitState(counting, state);
  const size_t summed = counting.bytes(), whole = summed + sizeof(uint64_t);
  if (room < whole || !memory) return whole;
  head.visit(writing);
  visitState(writing, state);
  writing.visit(stateSum(memory, summed));
  return whole;
}

NadirStatus nadir_tracker_load(NadirTracker* tracker, const void* memory, size_t bytes) {
  if (!tracker || !memory) return NADIR_NULL_POINTER;
  if (!isState(*tracker, memory, bytes)) return NADIR_BAD_STATE;
  StateReader reader(memory, bytes);
  StateHead head{};
  head.visit(reader);
  visitState(reader, *tracker);
  return NADIR_OK;
}
