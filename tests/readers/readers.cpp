// Runs readers on files in memory, and holds what they accept to the ranges that the rest of the program relies on.
#include "tests/readers/readers.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>

#include "lab/fingerprint.hpp"
#include "tools/base/error.hpp"
#include "tools/base/json_value.hpp"
#include "tools/camera/areas_file.hpp"
#include "tools/camera/camera_file.hpp"
#include "tools/camera/rectification.hpp"
#include "tools/evaluate/region_folders.hpp"
#include "tools/evaluate/track_evaluation.hpp"
#include "tools/files/frame_log.hpp"
#include "tools/pictures/formats.hpp"
#include "tools/pictures/pictures.hpp"
#include "tools/pictures/png.hpp"
#include "tools/sequence/frame_index.hpp"
#include "tools/sequence/settings_difference.hpp"

namespace nadir::test {
namespace {

namespace fs = std::filesystem;
using lab::Fingerprint;
using lab::Grid;
using namespace nadir::tool;

void require(bool good, const char* what) {
  if (good) return;
  std::fprintf(stderr, "a reader accepted something that is out of range: %s\n", what);
  std::abort();
}

// Files in a folder of the process's own, in memory where there is such a place. They stay open and are written over:
// a reader sees plain files, and a million of them cost seconds.
class Files {
 public:
  Files() {
    std::string name =
        (fs::is_directory("/dev/shm") ? "/dev/shm" : fs::temp_directory_path().string()) + "/readersXXXXXX";
    require(mkdtemp(name.data()) != nullptr, "no folder for files");
    root_ = name;
  }
  Files(const Files&) = delete;
  Files& operator=(const Files&) = delete;
  ~Files() { fs::remove_all(root_); }

  std::string path(const std::string& name) const { return root_ + "/" + name; }

  std::string write(const std::string& name, const std::string& bytes) {
    const auto [entry, isNew] = open_.try_emplace(name, -1);
    if (isNew) entry->second = open(path(name).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const auto size = static_cast<ssize_t>(bytes.size());
    require(pwrite(entry->second, bytes.data(), bytes.size(), 0) == size, "a file was not written");
    require(ftruncate(entry->second, size) == 0, "a file was not cut");
    return path(name);
  }

 private:
  std::string root_;
  std::map<std::string, int> open_;
};

Files& files() {
  static Files made;
  return made;
}

std::vector<std::string> partsOf(const std::string& bytes, size_t count) {
  std::vector<std::string> parts(1);
  for (const char c : bytes) {
    if (c == between && parts.size() < count) {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  parts.resize(count);
  return parts;
}

Bytes bytesIn(const std::string& text) { return Bytes(text.begin(), text.end()); }

void add(Fingerprint& print, const std::string& text) { print.add(text.size()).add(text.data(), text.size()); }

void add(Fingerprint& print, const Raster& raster) {
  print.add(raster.width).add(raster.height).add(raster.channels).add(raster.bits).add(raster.samples);
  for (const auto& [key, text] : raster.text) {
    add(print, key);
    add(print, text);
  }
}

// ---- pictures ----

void check(const Raster& raster) {
  require(raster.width > 0 && raster.height > 0, "sides of a picture");
  require(raster.width <= 65535 && raster.height <= 65535, "sides of a picture");
  require(raster.channels == 1 || raster.channels == 3, "channels of a picture");
  require(raster.bits == 8 || raster.bits == 16, "bits of a picture");
  require(raster.samples.size() == size_t{raster.width} * raster.height * raster.channels, "samples of a picture");
  for (const uint16_t sample : raster.samples) require(raster.bits == 16 || sample <= 255, "a sample of 8 bits");
}

// Whatever was read can be written, and reads the same.
void checkEncoding(const Raster& raster) {
  if (raster.channels != 1 || raster.bits != 16) return;
  Grid<uint16_t> grid(raster.width, raster.height);
  grid.pixels = raster.samples;
  require(decodedPicture(encodePng(grid, {})).samples == raster.samples, "a picture that was written and read again");
}

void readPicture(const std::string& bytes, Fingerprint& print) {
  const Raster raster = decodedPicture(bytesIn(bytes));
  check(raster);
  checkEncoding(raster);
  add(print, raster);
}

// A call whose refusal does not keep others from being tried.
template <class Read>
void attempt(Read read) {
  try {
    read();
  } catch (const Error&) {
  }
}

template <class T>
void checkGrid(const Grid<T>& grid) {
  require(grid.pixels.size() == size_t{grid.width} * grid.height && !grid.pixels.empty(), "size of a picture");
}

// As what the commands take a picture for, whose texts then count.
void readMeasurement(const std::string& bytes, Fingerprint& print) {
  const std::string path = files().write("picture", bytes);
  print.add(static_cast<int>(pictureKind(path)));
  attempt([&] { print.add(readIntensity(path)); });
  attempt([&] { print.add(readMask(path)); });
  attempt([&] { print.add(readElevation(path)); });
  attempt([&] {
    const Grid<float> disparity = readDisparity(path, 0, 16);
    checkGrid(disparity);
    for (const float d : disparity.pixels) require(std::isnan(d) || (d > 0 && d <= 65535e6f), "a disparity");
    print.add(disparity);
  });
  attempt([&] {
    const HeightPicture picture = readHeights(path);
    checkGrid(picture.heights);
    for (const float h : picture.heights.pixels) require(std::isnan(h) || (h >= 1 && h <= 65535), "a height");
    print.add(picture.heights).add(picture.place.cellMm).add(picture.place.leftMm).add(picture.place.topMm);
  });
  attempt([&] { print.add(readLabels(path).labels); });
}

// ---- camera, areas, calibrations ----

void checkCamera(const Camera& camera, bool complete) {
  for (const CameraKey& key : cameraKeys()) {
    require(!complete || key.optional || isKnown(camera, key), "a number of a camera that is missing");
    if (isKnown(camera, key) && complete) require(mistakeIn(valueOf(camera, key), key).empty(), "a number of a camera");
  }
}

void readCameraText(const std::string& bytes, Fingerprint& print) {
  const Camera camera = readCamera(files().write("camera.toml", bytes));
  checkCamera(camera, true);
  const Camera again = parseCamera(cameraText(camera), "written");
  for (const CameraKey& key : cameraKeys()) {
    require(valueOf(again, key) == valueOf(camera, key), "a camera that was written and read again");
    print.add(valueOf(camera, key));
  }
}

void checkAreas(const std::vector<Area>& areas, Fingerprint& print) {
  for (const Area& area : areas) {
    require(!area.name.empty() && area.name.size() <= 40, "the name of an area");
    require(area.corners.size() >= 3 && area.corners.size() <= 100, "corners of an area");
    add(print, area.name);
    for (const Point_s32& corner : area.corners) {
      require(std::abs(corner.x) <= NADIR_AREA_REACH && std::abs(corner.y) <= NADIR_AREA_REACH, "a corner");
      print.add(corner.x).add(corner.y);
    }
  }
}

void readAreasText(const std::string& bytes, Fingerprint& print) {
  const std::string path = files().write("areas.toml", bytes);
  attempt([&] { checkAreas(readAreasOfCamera(path), print); });
  checkAreas(readAreas(path, {{"door", AreaUnit::groundMm, {{0, 0}, {9, 0}, {0, 9}}, "other:1"}}), print);
}

void addImported(const ImportedCamera& imported, Fingerprint& print) {
  for (const CameraKey& key : cameraKeys()) print.add(valueOf(imported.camera, key));
  // What is unknown is a comment there, so that the file is no camera yet; it must be written all the same.
  add(print, cameraText(imported.camera));
}

void checkCalibration(const Calibration& calibration) {
  if (calibration.lenses)
    for (const NadirLens& lens : *calibration.lenses) {
      require(lens.focal_x_px >= 1 && lens.focal_y_px >= 1, "a focal length of a lens");
      require(lens.model <= NADIR_LENS_FISHEYE, "a model of a lens");
      for (const double c : lens.coefficients) require(std::abs(c) <= 1e6, "a coefficient of a lens");
    }
  if (calibration.optics) require(calibration.optics->focalPx > 0 && calibration.optics->baseline > 0, "optics");
  if (calibration.rotations)
    for (const Rotation& rotation : *calibration.rotations)
      for (const double r : rotation) require(std::abs(r) <= 1.001, "a rotation");
}

// One file or two, whatever kind they are of.
void readCalibrations(const std::string& bytes, Fingerprint& print) {
  const bool areTwo = bytes.find(between) != std::string::npos;
  const std::vector<std::string> parts = partsOf(bytes, 2);
  std::vector<CalibrationFile> given = {{files().path("one.yaml"), parts[0]}};
  if (areTwo) given.push_back({files().path("two.yaml"), parts[1]});
  CalibrationOptions options;
  options.unitMm = 1;
  Calibration calibration = parsedCalibration(given, options);
  checkCalibration(calibration);
  if (calibration.optics) addImported(cameraOf(calibration), print);
  const PictureSize pictures =
      calibration.lenses && (*calibration.lenses)[0].width_px > 0 ? PictureSize() : PictureSize{64, 48};
  complete(calibration, pictures);
  checkCalibration(calibration);
  for (const NadirRectifiedView& view : viewsOf(calibration))
    print.add(view.focal_px).add(view.principal_x_px).add(view.rotation[0]);
}

// ---- results that are read again ----

void readFrameLog(const std::string& bytes, Fingerprint& print) {
  const uintmax_t whole = forEachLine(files().write("frames.jsonl", bytes), [&](const nlohmann::json& line) {
    add(print, line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
  });
  require(whole <= bytes.size(), "the end of the last line");
  print.add(whole);
}

// frames.jsonl, run.json and truth.jsonl, as a sequence is evaluated.
void readTrackFiles(const std::string& bytes, Fingerprint& print) {
  const std::vector<std::string> parts = partsOf(bytes, 3);
  fs::create_directories(files().path("tracks"));
  files().write("tracks/frames.jsonl", parts[0]);
  files().write("tracks/run.json", parts[1]);
  files().write("tracks/truth.jsonl", parts[2]);
  const std::vector<AreaTrack> areas = readTracks(files().path("tracks"), files().path("tracks"));
  for (const AreaTrack& area : areas) {
    require(area.seconds.size() == area.truth.size() && area.seconds.size() == area.tracked.size(),
            "frames of an area");
    print.add(area.seconds).add(area.truth).add(area.tracked).add(area.single);
  }
  add(print, trackTable(areas) + trackJson(areas));
}

// Rows of which some may name the camera file.
void readIndex(const std::string& bytes, Fingerprint& print) {
  for (const IndexRow& row : indexRows(files().write("index.csv", bytes), files().path("camera.toml"))) {
    require(!row.left.empty() && !row.time.empty(), "a row of an index");
    for (const char digit : row.time) require(digit >= '0' && digit <= '9', "a time of an index");
    for (const std::string& field : {row.left, row.right, row.time}) add(print, field);
  }
}

Grid<uint16_t> fewLabels() {
  Grid<uint16_t> labels(12, 8);
  for (size_t i = 0; i < labels.pixels.size(); ++i) labels.pixels[i] = static_cast<uint16_t>(i / 4 % 3);
  return labels;
}

// summary.json and scene.json, beside pictures that are always the same.
void readRegionFiles(const std::string& bytes, Fingerprint& print) {
  static const bool picturesThere = [] {
    fs::create_directories(files().path("regions"));
    const Bytes labels = encodePng(fewLabels(), {}), heights = encodePng(Grid<uint16_t>(12, 8, 40), {});
    files().write("regions/regions.png", {labels.begin(), labels.end()});
    files().write("regions/regions_gt.png", {labels.begin(), labels.end()});
    files().write("regions/elevation_gt.png", {heights.begin(), heights.end()});
    return true;
  }();
  require(picturesThere, "no pictures");
  const std::vector<std::string> parts = partsOf(bytes, 2);
  files().write("regions/summary.json", parts[0]);
  files().write("regions/scene.json", parts[1]);
  const RegionEvaluation evaluation = evaluateRegionFolders(files().path("regions"), files().path("regions"));
  for (const Judged& object : evaluation.objects) print.add(object.object.number).add(object.object.highestMm);
  for (const Thing& region : evaluation.falseRegions) print.add(region.number).add(region.highestMm);
}

// run.json as --resume compares it with the settings in force, which the program has written itself.
void readSettings(const std::string& bytes, Fingerprint& print) {
  const std::vector<std::string> parts = partsOf(bytes, 2);
  checkNesting(parts[0]);
  checkNesting(parts[1]);
  if (!nlohmann::json::parse(parts[1], nullptr, false).is_object()) return;
  add(print, otherVersion(parts[0], parts[1]));
  add(print, settingsDifference(parts[0], parts[1]));
  require(settingsDifference(parts[1], parts[1]).empty(), "settings that differ from themselves");
}

template <void read(const std::string&, Fingerprint&)>
Answer answerOf(const std::string& bytes) {
  Fingerprint print;
  try {
    read(bytes, print);
    return {false, "", print.value()};
  } catch (const Error& error) {
    return {true, error.what(), 0};
  }
}

}  // namespace

const std::vector<Reader>& readers() {
  static const std::vector<Reader> all = {
      {"picture", answerOf<readPicture>},          {"measurement", answerOf<readMeasurement>},
      {"camera", answerOf<readCameraText>},        {"areas", answerOf<readAreasText>},
      {"calibration", answerOf<readCalibrations>}, {"log", answerOf<readFrameLog>},
      {"tracks", answerOf<readTrackFiles>},        {"regions", answerOf<readRegionFiles>},
      {"settings", answerOf<readSettings>},        {"index", answerOf<readIndex>}};
  return all;
}

const Reader& readerNamed(const std::string& name) {
  for (const Reader& reader : readers())
    if (name == reader.name) return reader;
  std::fprintf(stderr, "there is no reader called %s\n", name.c_str());
  std::abort();
}

}  // namespace nadir::test
