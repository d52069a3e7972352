// Reads tracked heights and the truth about them, frame by frame, and tells how far they are apart.
#include "tools/evaluate/track_evaluation.hpp"

#include <nadir/nadir.h>

#include <cmath>
#include <filesystem>

#include "tools/base/error.hpp"
#include "tools/base/json_value.hpp"
#include "tools/base/text.hpp"
#include "tools/camera/areas_file.hpp"
#include "tools/draw/line_plot.hpp"
#include "tools/files/frame_log.hpp"

namespace nadir::tool {

namespace {

constexpr double farthestMeasured = 1e9;  // mm

float millimetres(const nlohmann::json& value) {
  return value.is_number() ? static_cast<float>(numberIn(value, -farthestMeasured, farthestMeasured)) : std::nanf("");
}

// An object of the truth at the time of one frame.
struct TrueObject {
  Point_s32 place;
  float height;
};
using TrueObjects = std::vector<TrueObject>;

TrueObjects objectsOf(const nlohmann::json& line) {
  TrueObjects objects;
  for (const nlohmann::json& object : line.at("objects")) {
    const auto whole = [&object](const char* key) {
      return static_cast<int32_t>(std::lround(numberIn(object.at(key), -farthestMeasured, farthestMeasured)));
    };
    objects.push_back({{whole("x_mm"), whole("y_mm")}, millimetres(object.at("height_mm"))});
  }
  return objects;
}

float tallestIn(const PolygonRecord& area, const TrueObjects& objects) {
  float tallest = std::nanf("");
  for (const TrueObject& o : objects)
    if (IP_Polygon_IsInside(area.get(), &o.place)) tallest = std::fmax(tallest, o.height);
  return tallest;
}

std::vector<Point_s32> cornersOf(const nlohmann::json& area) {
  std::vector<Point_s32> corners;
  const auto whole = [](const nlohmann::json& value) {
    return wholeNumberIn<int32_t>(value, -NADIR_AREA_REACH, NADIR_AREA_REACH);
  };
  for (const nlohmann::json& corner : area.at("ground_mm"))
    corners.push_back({whole(corner.at(0)), whole(corner.at(1))});
  if (corners.size() < 3 || corners.size() > 100) refuseNumber();
  return corners;
}

// The areas and their corners, without a frame yet.
void readAreas(const std::string& path, std::vector<AreaTrack>& areas, std::vector<PolygonRecord>& places) {
  const std::string text = readText(path);
  try {
    const nlohmann::json settings = parsedJson(text);
    for (const nlohmann::json& area : settings.at("areas")) {
      areas.push_back({area.at("name"), {}, {}, {}, {}});
      places.emplace_back(cornersOf(area));
    }
  } catch (const nlohmann::json::exception&) {
    throw UnusableFile("cannot use " + path + ": it does not name areas as nadir ground does");
  } catch (const UnusableFile& reason) {
    throw UnusableFile("cannot use " + path + ": " + reason.what());
  }
}

void addFrame(std::vector<AreaTrack>& areas, const std::vector<PolygonRecord>& places, const nlohmann::json& line,
              const TrueObjects& objects) {
  for (size_t i = 0; i < areas.size(); ++i) {
    const bool skipped = line.contains("error");
    const nlohmann::json none, &found = skipped ? none : line.at("areas").at(i);
    areas[i].seconds.push_back(numberIn(line.at("time_s"), 0, 1e10));
    areas[i].truth.push_back(tallestIn(places[i], objects));
    areas[i].tracked.push_back(skipped ? std::nanf("") : millimetres(found.at("tracked_mm")));
    areas[i].single.push_back(skipped ? std::nanf("") : millimetres(found.at("highest_mm")));
  }
}

std::vector<AreaTrack> joinedTracks(const std::string& result, const std::string& sequence) {
  std::vector<TrueObjects> truth;
  forEachLine(sequence + "/truth.jsonl", [&](const nlohmann::json& line) { truth.push_back(objectsOf(line)); });
  std::vector<AreaTrack> areas;
  std::vector<PolygonRecord> places;
  readAreas(result + "/run.json", areas, places);
  if (areas.empty()) throw Error(result + " has no areas of interest, and heights are tracked in areas");
  forEachLine(result + "/frames.jsonl", [&](const nlohmann::json& line) {
    const auto frame = wholeNumberIn<uint64_t>(line.at("frame"), 0, UINT64_MAX);
    if (frame >= truth.size()) throw Error(sequence + " has fewer frames than " + result);
    addFrame(areas, places, line, truth[frame]);
  });
  return areas;
}

Evaluation evaluationOf(const std::vector<float>& values, const AreaTrack& area) {
  const auto row = [](const std::vector<float>& v) {
    Grid<float> grid(static_cast<uint32_t>(v.size()), 1);
    grid.pixels = v;
    return grid;
  };
  return evaluate(row(values), row(area.truth));
}

void addErrors(Table& table, const char* what, const Evaluation& e) {
  table.line(format("  %s, frames with a height", what), 100 * e.density, "%", 1);
  table.line("    mean error", e.mean, "mm", 1);
  table.line("    rms error", e.rms, "mm", 1);
  table.line("    95 % are within", e.percentile95, "mm", 1);
}

Json errorsJson(const Evaluation& e) {
  const auto rounded = [](double value) { return roundedNumber(value, 1000); };
  return {{"frames", e.compared},       {"share", rounded(e.density)},
          {"mean_mm", rounded(e.mean)}, {"mean_absolute_mm", rounded(e.meanAbsolute)},
          {"rms_mm", rounded(e.rms)},   {"percentile_95_absolute_mm", rounded(e.percentile95)}};
}

std::vector<PlotPoint> pointsOf(const AreaTrack& area, const std::vector<float>& heights) {
  std::vector<PlotPoint> points;
  for (size_t i = 0; i < heights.size(); ++i) points.push_back({area.seconds[i], heights[i]});
  return points;
}

}  // namespace

bool isSequenceResult(const std::string& folder) { return std::filesystem::exists(folder + "/frames.jsonl"); }

std::vector<AreaTrack> readTracks(const std::string& result, const std::string& sequence) {
  if (!std::filesystem::exists(sequence + "/truth.jsonl"))
    throw Error(sequence + " is no sequence of nadir synth: it has no truth.jsonl");
  return joinedTracks(result, sequence);
}

std::string trackTable(const std::vector<AreaTrack>& areas) {
  Table table;
  for (const AreaTrack& area : areas) {
    const Evaluation tracked = evaluationOf(area.tracked, area);
    table.heading(area.name, "");
    table.line("  frames with somebody", static_cast<double>(tracked.truth), format("of %zu", tracked.pixels), 0);
    addErrors(table, "tracked", tracked);
    addErrors(table, "single", evaluationOf(area.single, area));
  }
  return table.text();
}

std::string trackJson(const std::vector<AreaTrack>& areas) {
  Json json = {{"areas", Json::array()}};
  for (const AreaTrack& area : areas) {
    const Evaluation tracked = evaluationOf(area.tracked, area);
    json["areas"].push_back({{"name", area.name},
                             {"frames", tracked.pixels},
                             {"frames_with_truth", tracked.truth},
                             {"tracked", errorsJson(tracked)},
                             {"single", errorsJson(evaluationOf(area.single, area))}});
  }
  return json.dump(2) + "\n";
}

Bytes trackPlot(const AreaTrack& area) {
  return encodeLinePlot({"Height in the area " + area.name,
                         "time, s",
                         "height, mm",
                         {{"single frames", "#aec7e8", false, 2.5, pointsOf(area, area.single)},
                          {"truth", "#000000", true, 0, pointsOf(area, area.truth)},
                          {"tracked", "#d62728", true, 0, pointsOf(area, area.tracked)}}});
}

}  // namespace nadir::tool
