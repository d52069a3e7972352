// The stages of the road from a pair of pictures to what stands on the ground, as libnadirground walks it.
#include <cmath>

#include "lab/road.hpp"
#include "lab/verify/stages.hpp"

namespace nadir::verify {

namespace {

NadirCamera cameraOf(const Material& m) {
  NadirCamera camera = lab::emptyRecord<NadirCamera>();
  camera.width_px = m.right.width;
  camera.height_px = m.right.height;
  camera.cell_mm = m.map.cellSizeX;
  camera.map_width_cells = m.map.width;
  camera.map_height_cells = m.map.height;
  camera.baseline_mm = m.calibration.baseline / 256.0;
  camera.focal_px = m.calibration.focalLength / 256.0;
  camera.principal_x_px = m.calibration.principalX / 16.0;
  camera.principal_y_px = m.calibration.principalY / 16.0;
  camera.height_mm = static_cast<double>(m.orientation.height);
  camera.tilt_deg = static_cast<double>(m.orientation.tilt);
  camera.pan_deg = static_cast<double>(m.orientation.pan);
  return camera;
}

// One area for each unit that corners may have; both lie in the middle of the picture.
lab::RoadPlan planOf(const Material& m, uint32_t grid = NADIR_GRID_LEFT) {
  static constexpr int32_t pixels[] = {40, 30, 170, 40, 160, 120, 60, 140};
  static constexpr int32_t ground[] = {-1500, -3000, 1200, -2500, 300, -200};
  lab::RoadPlan plan = lab::planOf(cameraOf(m));
  plan.settings.grid = grid;
  plan.areas = {{sizeof(NadirArea), NADIR_AREA_PIXELS, 4, 0, pixels, 0, 0},
                {sizeof(NadirArea), NADIR_AREA_GROUND_MM, 3, 0, ground, 0, 0}};
  return plan;
}

NadirFrame pairOf(const Material& m) {
  return lab::frameOf(m.left.pixels.data(), m.right.pixels.data(), m.right.width);
}

// Runs the material's pair through the road and hashes what `add` takes of the findings.
template <class Add>
Fingerprint found(const Material& m, const lab::RoadPlan& plan, Add add) {
  lab::Road road(plan);
  Fingerprint print;
  return add(print, road.findings(pairOf(m)));
}

template <class Add>
Fingerprint foundOnBothGrids(const Material& m, Add add) {
  Fingerprint print;
  for (const uint32_t grid : lab::bothGrids) print.add(found(m, planOf(m, grid), add).value());
  return print;
}

Fingerprint disparities(const Material& m) { return foundOnBothGrids(m, lab::addDisparities); }
Fingerprint heights(const Material& m) { return foundOnBothGrids(m, lab::addHeights); }
Fingerprint regions(const Material& m) { return foundOnBothGrids(m, lab::addRegions); }
Fingerprint areas(const Material& m) { return foundOnBothGrids(m, lab::addAreas); }

// Where the areas lie, and the camera as libnadir's own calls take it.
Fingerprint places(const Material& m) {
  const lab::Road road(planOf(m));
  StereoCtx context;
  Fingerprint print;
  lab::demand(nadir_road_context(road.road(), &context));
  print.add(context.extCalib.R, 9).add(context.extCalib.T, 3).add(context.lowerLeft.x).add(context.lowerLeft.y);
  for (uint32_t i = 0; i < 2; ++i) {
    NadirPlacedArea area = lab::emptyRecord<NadirPlacedArea>();
    lab::demand(nadir_road_area(road.road(), i, &area));
    print.add(area.cells).add(area.whole_on_map).add(area.ground_mm, 2 * area.corner_count);
    lab::addPlane<uint8_t>(print, area.mask);
  }
  return print;
}

Fingerprint eightBits(const Material& m) {
  const auto narrow = [](uint16_t value) { return value / 16 > 255 ? 255 : value / 16; };
  const Grid<uint8_t> left = converted<uint8_t>(m.left, narrow), right = converted<uint8_t>(m.right, narrow);
  lab::Road road(planOf(m));
  Fingerprint print;
  return lab::addFindings(print, road.findings(lab::frameOf(left.pixels.data(), right.pixels.data(), left.width)));
}

Fingerprint filledHoles(const Material& m) {
  lab::RoadPlan plan = planOf(m);
  plan.settings.fill_holes_m2 = 0.5;
  return found(m, plan, lab::addFindings);
}

// The material's own disparities instead of matched ones; a few cells ask for fewer points and another percentile.
Fingerprint givenDisparities(const Material& m) {
  const auto inPixels = [](uint16_t d) { return d == 0 ? NAN : static_cast<float>(d) / SGM_DISP_SCALE; };
  const Grid<float> disparity = converted<float>(m.disparity, inPixels);
  lab::RoadPlan plan = planOf(m, NADIR_GRID_RIGHT);
  plan.settings.percentile = 37.5;
  plan.settings.min_points = 3;
  lab::Road road(plan);
  const NadirFrame frame = lab::givenFrame(disparity.pixels.data(), disparity.width);
  Fingerprint print;
  return lab::addPoints(lab::addFindings(print, road.findings(frame)), road, frame);
}

Fingerprint points(const Material& m) {
  lab::Road road(planOf(m));
  const NadirFrame frame = pairOf(m);
  road.findings(frame);
  Fingerprint print;
  return lab::addPoints(print, road, frame);
}

// The same frame is met again and again, at the material's rate; between two of them a log tells that nothing stood
// there. What is saved has to be the same bytes on every machine.
Fingerprint heightTracks(const Material& m) {
  lab::Road road(planOf(m));
  road.findings(pairOf(m));
  NadirTrackSettings settings;
  lab::demand(nadir_track_settings_fill(&settings));
  settings.average_frames = 3;
  const lab::Tracker tracker(road, settings), other(road, settings);
  const double nothing[] = {NAN, NAN};
  NadirMeasurement logged = lab::emptyRecord<NadirMeasurement>();
  logged.area_count = 2;
  logged.highest_mm = nothing;
  Fingerprint print;
  for (int64_t ns = 0; ns < 400000000; ns += 100000000) {
    lab::demand(nadir_tracker_step(tracker.get(), road.result(), ns));
    logged.time_ns = ns + 40000000;
    lab::demand(nadir_tracker_replay(tracker.get(), &logged));
    lab::addTrack(lab::addTrack(print, tracker, 0), tracker, 1);
  }
  const std::vector<uint8_t> saved = tracker.saved();
  lab::demand(nadir_tracker_load(other.get(), saved.data(), saved.size()));
  return lab::addAverage(lab::addTrack(print.add(saved), other, 0), other);
}

}  // namespace

Stages groundStages() {
  return {{"road: disparities", disparities},
          {"road: heights", heights},
          {"road: regions", regions},
          {"road: areas", areas},
          {"road: places", places},
          {"road: 8 bits", eightBits},
          {"road: holes filled", filledHoles},
          {"road: given", givenDisparities},
          {"road: points", points},
          {"road: tracks", heightTracks}};
}

}  // namespace nadir::verify
