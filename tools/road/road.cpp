// Options and files become a road, and the files of a pair its frame.
#include "tools/road/road.hpp"

#include <nadir/stereo.h>

#include <algorithm>
#include <cmath>
#include <new>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/camera/camera_file.hpp"
#include "tools/pictures/pictures.hpp"
#include "tools/road/presets.hpp"

namespace nadir::tool {

namespace {

// ---- what is checked before a road is made ----

// Regions are found on small maps only; larger cells cover the same ground.
void checkMap(const Camera& camera, const RoadOptions& options) {
  const uint32_t most = NADIR_LARGEST_REGION_MAP;
  const uint32_t width = camera.mapWidthCells, height = camera.mapHeightCells, larger = std::max(width, height);
  if (options.noRegions || larger <= most) return;
  const uint32_t cell = (larger * camera.cellMm + most - 1) / most;
  const auto fewer = [&](uint32_t cells) { return (cells * camera.cellMm + cell - 1) / cell; };
  throw Error(
      format("the map of %s has %s cells, and regions are found on at most %s: cell_mm = %u with %s cells covers "
             "the same ground (or leave the regions out with --no-regions)",
             options.camera.c_str(), sizeText(width, height).c_str(), sizeText(most, most).c_str(), cell,
             sizeText(fewer(width), fewer(height)).c_str()));
}

void checkHoles(const Camera& camera, const RoadOptions& options) {
  const auto fits = [](uint32_t cells) { return cells >= 2 && cells <= 4095; };
  if (options.fillHolesM2 == 0 || (fits(camera.mapWidthCells) && fits(camera.mapHeightCells))) return;
  throw Error(format("holes can be filled in maps of 2 to 4095 cells a side, this one has %s",
                     sizeText(camera.mapWidthCells, camera.mapHeightCells).c_str()));
}

// Any mount will do where none is asked for.
Camera cameraFor(const RoadOptions& options) {
  if (!options.mountMayLack) return readCamera(options.camera);
  Camera camera = readCameraBeforeMount(options.camera);
  if (std::isnan(camera.heightMm)) camera.heightMm = 1000;
  if (std::isnan(camera.tiltDeg)) camera.tiltDeg = 0;
  return camera;
}

// Pixels become those of the pictures that are measured.
void scaleAreaDown(Area& area, uint32_t scaleDown) {
  const auto scaled = [n = static_cast<double>(scaleDown)](int32_t place) {
    return static_cast<int32_t>(std::floor(place / n));
  };
  if (area.unit != AreaUnit::pixels) return;
  for (Point_s32& corner : area.corners) corner = {scaled(corner.x), scaled(corner.y)};
}

std::vector<Area> readAllAreas(const RoadOptions& options) {
  if (options.noRegions) return {};
  std::vector<Area> areas = readAreasOfCamera(options.camera);
  if (!options.areas.empty()) areas = readAreas(options.areas, areas);
  for (Area& area : areas) scaleAreaDown(area, options.scaleDown);
  return areas;
}

// ---- the way to rectified pictures ----

// The lenses' pictures have the size of the rectified ones where nobody says otherwise.
void setRectifier(const RoadOptions& options, Road& road) {
  CalibrationOptions given = options.calibration;
  if (given.files.empty() && holdsCalibration(options.camera)) given.files = {options.camera};
  if (given.files.empty()) return;
  Calibration calibration = readCalibration(given);
  const bool sizeTold = calibration.lenses && (*calibration.lenses)[0].width_px != 0;
  complete(calibration, sizeTold ? PictureSize() : PictureSize{road.camera.widthPx, road.camera.heightPx});
  checkAgreement(calibration, options.camera);
  road.rectifier = std::make_unique<PairRectifier>(calibration);
  road.calibration = std::move(calibration);
}

void checkSize(const Pair& pair, const Road& road) {
  const PictureSize& taken = road.taken;
  if (pair.left.width == taken.width && pair.left.height == taken.height) return;
  throw UnusableFile(format("the pictures are %s pixels, but the camera of %s takes pictures of %s",
                            sizeText(pair.left.width, pair.left.height).c_str(), road.options.camera.c_str(),
                            sizeText(taken.width, taken.height).c_str()));
}

// ---- the library's records ----

// Things lose their rim where passes must agree: a child seen from 3.5 m a third of its cells.
constexpr double keptByChecks = 2.0 / 3;

// Above the ground: what an automatic range must measure.
constexpr double usualTallestMm = 2000;

// What is wrong with the camera is told when the road is made.
uint32_t rangeFor(double tallestMm, const NadirCamera& camera, NadirSettings settings) {
  uint32_t range = settings.range = NADIR_RANGE_61;
  nadir_road_range(&camera, &settings, tallestMm, &range);
  return range;
}

// The least area of regions that nobody gave.
double usualArea(const NadirSettings& settings, const RoadOptions& options) {
  const bool checked = settings.check != NADIR_CHECK_NONE && options.disparity.empty();
  return checked ? settings.min_area_m2 * keptByChecks : settings.min_area_m2;
}

// What is given stands above the preset, and that above what is usual.
void setRules(const RoadOptions& options, NadirSettings& s) {
  const Preset& preset = presetNamed(options.preset);
  const auto chosen = [](const std::optional<double>& given, const std::optional<double>& ofPreset, double usual) {
    return given.value_or(ofPreset.value_or(usual));
  };
  s.percentile = chosen(options.percentile, preset.percentile, s.percentile);
  s.min_height_mm = chosen(options.minHeightMm, preset.minHeightMm, s.min_height_mm);
  s.max_step_mm = chosen(options.maxStepMm, preset.maxStepMm, s.max_step_mm);
  s.dip_mm = chosen(options.dipMm, preset.dipMm, s.dip_mm);
  s.min_area_m2 = chosen(options.minAreaM2, preset.minAreaM2, usualArea(s, options));
}

double tallestMm(const RoadOptions& options) {
  return options.tallestMm.value_or(presetNamed(options.preset).tallestMm.value_or(usualTallestMm));
}

NadirSettings settingsRecord(const RoadOptions& options, const NadirCamera& camera) {
  NadirSettings s;
  nadir_settings_fill(&s, &camera);
  s.until = options.noRegions ? NADIR_UNTIL_MAP : NADIR_UNTIL_ALL;
  s = withOptions(s, options.match);
  s.min_points = options.minPoints;
  s.fill_holes_m2 = options.fillHolesM2;
  setRules(options, s);
  if (options.match.range == automaticRange) s.range = rangeFor(tallestMm(options), camera, s);
  return s;
}

// ---- smaller pictures ----

// Whether things of the tallest are nearer than the range, somewhere over the map. The longest range is told of what
// none reaches, too, but half a picture needs half of it.
bool exceedsRange(const Camera& camera, uint32_t range, const RoadOptions& options) {
  if (range == NADIR_RANGE_244) return exceedsRange(halved(camera), NADIR_RANGE_122, options);
  const NadirCamera record = cameraRecord(camera);
  NadirSettings settings;
  nadir_settings_fill(&settings, &record);
  return rangeFor(tallestMm(options), record, settings) > range;
}

void setScaleDown(Road& road) {
  RoadOptions& options = road.options;
  if (options.scaleDown != 1 && !options.disparity.empty())
    throw Error("--scale-down is for pairs that are matched, not for --disparity");
  const bool automatic = options.scaleDown == automaticScaleDown;
  const uint32_t range = options.match.range == automaticRange ? NADIR_RANGE_244 : options.match.range;
  const uint32_t most = automatic ? largestScaleDown : options.scaleDown;
  road.taken = {road.camera.widthPx, road.camera.heightPx};
  for (options.scaleDown = 1; options.scaleDown < most; options.scaleDown *= 2) {
    if (automatic && !exceedsRange(road.camera, range, options)) break;
    road.camera = halved(road.camera);
  }
}

std::vector<NadirArea> areaRecords(const std::vector<Area>& areas) {
  std::vector<NadirArea> records;
  for (const Area& a : areas)
    records.push_back({sizeof(NadirArea), a.unit == AreaUnit::pixels ? 0u + NADIR_AREA_PIXELS : NADIR_AREA_GROUND_MM,
                       static_cast<uint32_t>(a.corners.size()), 0, &a.corners[0].x, a.minHeightMm, a.maxHeightMm});
  return records;
}

// ---- what the library finds wrong with an area ----

std::string extentText(const StereoCtx& context) {
  const double cell = context.mapParams.cellSizeX, left = context.lowerLeft.x, top = context.lowerLeft.y;
  return format("x %.0f, y %.0f to x %.0f, y %.0f mm", left, top, left + context.mapParams.width * cell,
                top + context.mapParams.height * cell);
}

std::string reasonOf(NadirStatus status, const NadirFault& fault, const Area& area, const StereoCtx& context) {
  constexpr int reach = NADIR_AREA_REACH / 1000;
  switch (status) {
    case NADIR_MAP_OUT_OF_REACH:
      return format("areas need a map that ends within %d m of the camera, this one reaches from %s", reach,
                    extentText(context).c_str());
    case NADIR_CAMERA_TOO_HIGH: return "areas in pixels need a camera that is at most 65 m high";
    case NADIR_CORNER_OFF_GROUND:
      return format("corner %u, pixel [%d, %d], does not show the ground within %d m of the camera", fault.corner + 1,
                    area.corners[fault.corner].x, area.corners[fault.corner].y, reach);
    case NADIR_AREA_WITHOUT_CELLS:
      return "holds the centre of no cell of the map, which reaches from " + extentText(context);
    default: return nadir_status_text(status);
  }
}

StereoCtx contextOf(const NadirRoad& road) {
  StereoCtx context;
  expect(nadir_road_context(&road, &context));
  return context;
}

RoadHandle made(const NadirCamera& camera, const NadirSettings& settings, const std::vector<Area>& areas) {
  const std::vector<NadirArea> records = areaRecords(areas);
  NadirFault fault = {};
  fault.size = sizeof fault;
  NadirRoad* road = nullptr;
  const NadirStatus status =
      nadir_road_create(&camera, &settings, records.data(), static_cast<uint32_t>(records.size()), &road, &fault);
  if (status >= NADIR_BAD_AREA && status <= NADIR_AREA_WITHOUT_CELLS) {
    const Area& area = areas.at(fault.area);
    const StereoCtx context = contextOf(*made(camera, settings, {}));
    throw Error(format("%s: area \"%s\": %s", area.origin.c_str(), area.name.c_str(),
                       reasonOf(status, fault, area, context).c_str()));
  }
  if (fault.field && status != NADIR_OK) throw Error(format("%s: %s", fault.field, nadir_status_text(status)));
  expect(status);
  return RoadHandle(road);
}

// Throws where an area's greatest height lies below the least one of regions: nothing would ever stand there.
void checkHeights(const std::vector<Area>& areas, const NadirSettings& settings) {
  for (const Area& a : areas)
    if (a.maxHeightMm > 0 && a.minHeightMm == 0 && a.maxHeightMm <= settings.min_height_mm)
      throw Error(
          format("%s: area \"%s\": nothing would be found up to max_height_mm = %u, since regions are higher "
                 "than %g mm; the area needs a min_height_mm below that",
                 a.origin.c_str(), a.name.c_str(), a.maxHeightMm, settings.min_height_mm));
}

std::vector<Area> areasOf(const Road& road) {
  std::vector<Area> areas;
  for (const WatchedArea& watched : road.areas) areas.push_back(watched.area);
  return areas;
}

WatchedArea watchedArea(const NadirRoad& road, const Area& area, uint32_t index) {
  NadirPlacedArea placed;
  placed.size = sizeof placed;
  expect(nadir_road_area(&road, index, &placed));
  WatchedArea watched{area, {}, placed.cells, placed.whole_on_map != 0};
  for (uint32_t i = 0; i < placed.corner_count; ++i)
    watched.ground.push_back({placed.ground_mm[2 * i], placed.ground_mm[2 * i + 1]});
  return watched;
}

// ---- frames ----

Grid<uint8_t> maskOf(const Road& road) {
  Grid<uint8_t> mask = readMaskFor(road.taken, road.options.mask);
  for (uint32_t n = 1; n < road.options.scaleDown; n *= 2) mask = halvedMask(mask);
  return mask;
}

Grid<float> givenDisparities(const RoadOptions& options, const Pair& pair) {
  Grid<float> disparity = readDisparity(options.disparity, options.disparityScale, SGM_DISP_SCALE);
  if (!sameSize(disparity, pair.left))
    throw Error(format("the disparity picture %s is %s pixels, the pictures are %s", options.disparity.c_str(),
                       sizeText(disparity.width, disparity.height).c_str(),
                       sizeText(pair.left.width, pair.left.height).c_str()));
  return disparity;
}

template <class T>
size_t strideOf(const Grid<T>& grid) {
  return grid.width * sizeof(T);
}

void give(NadirFrame& frame, const Grid<float>& disparity) {
  if (disparity.pixels.empty()) return;
  frame.disparity = disparity.pixels.data();
  frame.disparity_stride = strideOf(disparity);
}

NadirFindings process(NadirRoad& road, NadirFrame frame, NadirResult& result, StageTimes& times) {
  StageClock clock(times);
  clock.listenTo(frame);
  expect(nadir_road_process(&road, &frame, &result));
  NadirFindings findings;
  findings.size = sizeof findings;
  expect(nadir_result_read(&result, &findings));
  return findings;
}

// The frame that a result came from, as far as looking at it again needs it.
NadirFrame frameOf(const PairResult& result) {
  NadirFrame frame{};
  frame.size = sizeof frame;
  give(frame, result.given);
  return frame;
}

std::vector<NadirPoint> pointsOf(const Road& road, const PairResult& result) {
  const NadirFrame frame = frameOf(result);
  std::vector<NadirPoint> points(result.findings.points);
  size_t count = 0;
  expect(nadir_road_points(road.handle.get(), &frame, result.memory.get(), points.data(), points.size(), &count));
  return points;
}

std::optional<NadirGroundPlane> planeOf(const Road& road, const PairResult& result) {
  const NadirFrame frame = frameOf(result);
  NadirGroundPlane plane;
  plane.size = sizeof plane;
  const NadirStatus status = nadir_road_ground_plane(road.handle.get(), &frame, result.memory.get(), &plane);
  if (status == NADIR_NOTHING_FOUND) return {};
  expect(status);
  return plane;
}

// The library tells conversions for four doubles at most; those that it does not need are not looked at.
Warning warningOf(const NadirWarning& w) {
  double n[4];
  Warning warning{nadir_warning_name(w.id), "", {}};
  for (uint32_t i = 0; i < w.count; ++i) {
    n[i] = w.numbers[i] * nadir_warning_scale(w.id, i);
    warning.numbers.emplace_back(nadir_warning_number_name(w.id, i), w.numbers[i]);
  }
  std::fill(n + w.count, n + 4, 0.0);
  warning.sentence = format(nadir_warning_sentence(w.id), n[0], n[1], n[2], n[3]);
  return warning;
}

}  // namespace

NadirCamera cameraRecord(const Camera& c) {
  return {sizeof(NadirCamera), c.widthPx, c.heightPx,     c.cellMm,       c.mapWidthCells, c.mapHeightCells,
          c.baselineMm,        c.focalPx, c.principalXPx, c.principalYPx, c.columnShiftPx, c.heightMm,
          c.tiltDeg,           c.panDeg,  c.mapOffsetXMm, c.mapOffsetYMm};
}

void expect(NadirStatus status) {
  if (status == NADIR_NO_MEMORY) throw std::bad_alloc();
  if (status != NADIR_OK) throw Error(nadir_status_text(status));
}

NadirFrame frameOf(const Pair& pair, const Grid<uint8_t>& mask) {
  NadirFrame frame{};
  frame.size = sizeof frame;
  frame.bits = 16;
  frame.left = pair.left.pixels.data();
  frame.right = pair.right.pixels.data();
  frame.left_stride = strideOf(pair.left);
  frame.right_stride = strideOf(pair.right);
  if (mask.pixels.empty()) return frame;
  frame.mask = mask.pixels.data();
  frame.mask_stride = strideOf(mask);
  return frame;
}

ResultHandle newResult(const NadirRoad& road) {
  NadirResult* result = nullptr;
  expect(nadir_result_create(&road, &result));
  return ResultHandle(result);
}

// The areas are read too, so that a mistake in the last one does not wait for the matcher.
Road roadOf(const RoadOptions& options) {
  Road road{options, {}, cameraFor(options), {}, {}, {}, {}, {}, {}};
  setRectifier(options, road);
  setScaleDown(road);
  checkMap(road.camera, options);
  checkHoles(road.camera, options);
  const NadirCamera camera = cameraRecord(road.camera);
  const std::vector<Area> areas = readAllAreas(road.options);
  road.settings = settingsRecord(options, camera);
  checkHeights(areas, road.settings);
  road.handle = made(camera, road.settings, areas);
  road.context = contextOf(*road.handle);
  for (const Area& area : areas)
    road.areas.push_back(watchedArea(*road.handle, area, static_cast<uint32_t>(road.areas.size())));
  return road;
}

std::string rangeSentence(const Road& road) {
  return format("disparities up to %u pixels are looked for, for things up to %g mm high (--range, --tallest)",
                road.settings.range, tallestMm(road.options));
}

std::string scaleDownSentence(const Road& road) {
  return scaleDownSentence({road.camera.widthPx, road.camera.heightPx}, road.options.scaleDown);
}

RoadHandle copyOf(const Road& road) { return made(cameraRecord(road.camera), road.settings, areasOf(road)); }

Pair fittingPair(const Road& road, Pair pair, StageTimes& times) {
  if (road.rectifier) times.measure("rectifying", [&] { pair = road.rectifier->rectified(pair); });
  checkSize(pair, road);
  if (road.options.scaleDown > 1)
    times.measure("halving", [&] { pair = scaledDown(std::move(pair), road.options.scaleDown); });
  return pair;
}

void work(const Road& road, NadirRoad& handle, const std::string& left, const std::string& right, StageTimes& times,
          PairResult& result) {
  const RoadOptions& options = road.options;
  Pair pair = fittingPair(road, times.measure("reading", [&] { return readFrame(left, right); }), times);
  if (!options.disparity.empty()) result.given = givenDisparities(options, pair);
  const Grid<uint8_t> mask = maskOf(road);
  NadirFrame frame = frameOf(pair, mask);
  give(frame, result.given);
  if (!result.memory) result.memory = newResult(handle);
  result.findings = process(handle, frame, *result.memory, times);
  result.picture = std::move(options.match.view == View::left ? pair.left : pair.right);
}

Grid<uint16_t> heightsOfGiven(const Road& road, const Grid<float>& disparity) {
  NadirFrame frame{};
  frame.size = sizeof frame;
  give(frame, disparity);
  StageTimes times;
  const ResultHandle result = newResult(*road.handle);
  return gridOf<uint16_t>(process(*road.handle, frame, *result, times).heights);
}

void addPoints(const Road& road, PairResult& result, StageTimes& times) {
  result.points = times.measure("world points", [&] { return pointsOf(road, result); });
  result.plane = times.measure("ground plane", [&] { return planeOf(road, result); });
}

Warnings warningsOf(const NadirFindings& findings) {
  Warnings warnings;
  for (uint32_t i = 0; i < findings.warning_count; ++i) warnings.push_back(warningOf(findings.warnings[i]));
  return warnings;
}

NadirSettings matchSettings(const MatchOptions& options) {
  NadirSettings settings = withOptions(usualSettings(), options);
  settings.until = NADIR_UNTIL_MATCH;
  return settings;
}

Matching matched(const Pair& pair, const Grid<uint8_t>& mask, const MatchOptions& options, StageTimes& times) {
  NadirCamera camera{};
  camera.size = sizeof camera;
  camera.width_px = pair.left.width;
  camera.height_px = pair.left.height;
  const RoadHandle road = made(camera, matchSettings(options), {});
  const ResultHandle result = newResult(*road);
  const NadirFindings findings = process(*road, frameOf(pair, mask), *result, times);
  return {gridOf<uint16_t>(findings.disparity), *findings.pixels, warningsOf(findings)};
}

}  // namespace nadir::tool
