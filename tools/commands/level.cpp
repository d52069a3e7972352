// nadir level: from pictures of open floor to the camera's height and tilt.
#include <CLI/CLI.hpp>
#include <cmath>
#include <memory>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/camera/camera_file.hpp"
#include "tools/camera/mount_text.hpp"
#include "tools/commands/calibration_options.hpp"
#include "tools/commands/commands.hpp"
#include "tools/commands/options.hpp"
#include "tools/draw/canvas.hpp"
#include "tools/files/encodings.hpp"
#include "tools/plan/plan.hpp"
#include "tools/report/json_parts.hpp"
#include "tools/road/levelling.hpp"

namespace nadir::tool {

namespace {

struct LevelOptions {
  std::vector<std::string> pictures;
  std::string picture;
  RoadOptions road;
  bool write = false, layMap = false, json = false;
};

std::vector<PairFiles> pairsIn(const std::vector<std::string>& pictures) {
  if (pictures.size() % 2 != 0)
    throw CLI::ValidationError(
        "PICTURES", "pictures come in pairs, left and right; " + std::to_string(pictures.size()) + " are given");
  std::vector<PairFiles> pairs;
  for (size_t i = 0; i < pictures.size(); i += 2) pairs.push_back({pictures[i], pictures[i + 1]});
  return pairs;
}

// ---- for people ----

std::string withDeviation(double deviation) { return format("+- %.3g", deviation); }

// What a level on the camera would show. Of a camera that looks down itself there is no roll to tell.
std::string rollSentence(const NadirLevelled& mount) {
  constexpr double leastDeg = 0.1;  // nobody turns a camera by less
  if (!(std::fabs(mount.roll_deg) > std::fmax(leastDeg, mount.roll_deviation_deg)) || mount.axis_below_horizon_deg > 60)
    return "";
  return format(
      "\nThe picture's %s side lies %.2f degrees lower than the other one (+- %.2g): turned that far %s, seen from "
      "behind, the camera would stand level. A camera file has no such turn; pan_deg stands for it.\n",
      mount.roll_deg > 0 ? "right" : "left", std::fabs(mount.roll_deg), mount.roll_deviation_deg,
      mount.roll_deg > 0 ? "anticlockwise" : "clockwise");
}

std::string tableOf(const NadirLevelled& mount) {
  Table table;
  table.heading("mount", "");
  table.line("height_mm", mount.height_mm, withDeviation(mount.height_deviation_mm), 1);
  table.line("tilt_deg", mount.tilt_deg, withDeviation(mount.tilt_deviation_deg), 3);
  if (!std::isnan(mount.pan_deg)) table.line("pan_deg", mount.pan_deg, withDeviation(mount.pan_deviation_deg), 3);
  table.gap();
  table.line("axis below horizon", mount.axis_below_horizon_deg, withDeviation(mount.axis_deviation_deg), 3);
  if (!std::isnan(mount.roll_deg)) table.line("roll", mount.roll_deg, withDeviation(mount.roll_deviation_deg), 3);
  table.line("pairs with a floor", mount.pairs, "", 0);
  return table.text() + "An error is larger than what stands behind +- in one of ten cases.\n" + rollSentence(mount);
}

// ---- for programs ----

Json jsonOf(const NadirLevelled& mount, const Levelling& found) {
  Json json;
  const std::pair<const char*, double> numbers[] = {{"height_mm", mount.height_mm},
                                                    {"height_deviation_mm", mount.height_deviation_mm},
                                                    {"tilt_deg", mount.tilt_deg},
                                                    {"tilt_deviation_deg", mount.tilt_deviation_deg},
                                                    {"pan_deg", mount.pan_deg},
                                                    {"pan_deviation_deg", mount.pan_deviation_deg},
                                                    {"axis_below_horizon_deg", mount.axis_below_horizon_deg},
                                                    {"axis_deviation_deg", mount.axis_deviation_deg},
                                                    {"roll_deg", mount.roll_deg},
                                                    {"roll_deviation_deg", mount.roll_deviation_deg}};
  for (const auto& [name, value] : numbers) json[name] = roundedNumber(value, 10000);
  json["pairs"] = mount.pairs;
  json["pairs_without_floor"] = found.withoutFloor.size();
  json["range_px"] = found.range;
  return json;
}

// ---- the picture ----

constexpr Rgb takenGreen{40, 200, 80}, leftOutRed{230, 60, 50};

Grid<Rgb> drawn(const Levelling& found) {
  Grid<Rgb> picture(found.picture.width, found.picture.height);
  for (size_t i = 0; i < picture.pixels.size(); ++i) {
    const auto grey = static_cast<uint8_t>(std::min<uint32_t>(found.picture.pixels[i] / 16, 255));
    const Rgb pixel{grey, grey, grey};
    const uint8_t mark = found.taken.pixels[i];
    picture.pixels[i] =
        mark == NADIR_LEVEL_UNKNOWN ? pixel : blended(pixel, mark == NADIR_LEVEL_TAKEN ? takenGreen : leftOutRed, 0.35);
  }
  return picture;
}

// ---- the command ----

void tellWithoutFloor(const Levelling& found) {
  for (const PairFiles& pair : found.withoutFloor)
    say(format("%s and %s show no floor and are left out", pair.left.c_str(), pair.right.c_str()));
}

[[noreturn]] void refuse(const std::vector<PairFiles>& pairs) {
  throw Error(
      format("no floor is seen in %s%s: it must fill a fifth of what is seen at least, have a texture, and "
             "nothing may lie below it; `nadir disparity` shows what is matched",
             pairs.front().left.c_str(), pairs.size() > 1 ? " and the others" : ""));
}

Bytes newCameraText(const LevelOptions& options, const NadirLevelled& mount, const Camera& camera) {
  std::vector<NewNumber> numbers = {{"height_mm", mount.height_mm}, {"tilt_deg", mount.tilt_deg}};
  if (!std::isnan(mount.pan_deg)) numbers.push_back({"pan_deg", mount.pan_deg});
  if (options.layMap)
    numbers.insert(numbers.end(), {{"map.width_cells", double(camera.mapWidthCells)},
                                   {"map.height_cells", double(camera.mapHeightCells)},
                                   {"map.cell_mm", double(camera.cellMm)},
                                   {"map.offset_x_mm", camera.mapOffsetXMm},
                                   {"map.offset_y_mm", camera.mapOffsetYMm}});
  const std::string& path = options.road.camera;
  return bytesOf(textWithNumbers(readText(path), path, numbers));
}

// The file's camera with the mount that was found and, if that is asked for, a map over the ground that it sees well.
Camera newCamera(const LevelOptions& options, const NadirLevelled& mount) {
  Camera camera = readCameraBeforeMount(options.road.camera);
  camera.heightMm = mount.height_mm;
  camera.tiltDeg = mount.tilt_deg;
  if (!std::isnan(mount.pan_deg)) camera.panDeg = mount.pan_deg;
  if (!options.layMap) return camera;
  camera.cellMm = camera.mapWidthCells = camera.mapHeightCells = unknownCount;
  constexpr double usualTallestMm = 2000;  // it bears on the range alone
  return planOf(camera, usualTallestMm).camera;
}

void writeOutputs(const LevelOptions& options, const NadirLevelled& mount, const Levelling& found) {
  std::vector<std::string> inputs = options.pictures;
  if (!options.write) inputs.push_back(options.road.camera);
  OutputFiles files(inputs);
  if (options.write) files.write(options.road.camera, newCameraText(options, mount, newCamera(options, mount)));
  if (!options.picture.empty()) files.write(options.picture, encodePng(drawn(found), {}));
  files.commit();
}

std::string writtenSentence(const LevelOptions& options) {
  std::string text;
  if (options.write)
    text +=
        format("wrote height_mm, tilt_deg%s pan_deg%s into %s\n", options.layMap ? "," : " and",
               options.layMap ? " and the map" : "",
               options.road.camera == standardStream ? "what went to standard output" : options.road.camera.c_str());
  if (!options.picture.empty())
    text += format("wrote %s: green is the floor that was taken, red what was left out\n", options.picture.c_str());
  return text.empty() ? "" : "\n" + text;
}

void run(const LevelOptions& options) {
  const std::vector<PairFiles> pairs = pairsIn(options.pictures);
  StageTimes times;
  const Levelling found = levelled(options.road, pairs, times);
  if (!found.mount) refuse(pairs);
  tellWithoutFloor(found);
  writeOutputs(options, *found.mount, found);
  print(options.json ? jsonOf(*found.mount, found).dump(2) + "\n" : tableOf(*found.mount) + writtenSentence(options));
}

void addRange(CLI::App& command, MatchOptions& match) {
  match.range = automaticRange;
  addWord(command, "--range", rangeWords(), match.range,
          "Largest disparity that is looked for: 61, 122, 244, or auto, the least of them with which a floor is found "
          "(default: {default})",
          "PIXELS");
}

}  // namespace

void addLevelCommand(CLI::App& app) {
  auto options = std::make_shared<LevelOptions>();
  CLI::App* command = app.add_subcommand("level", "Find the camera's height and tilt in pictures of open floor.");
  command->add_option("PICTURES", options->pictures, "Pairs: left and right picture, left and right picture, ...")
      ->required();
  command
      ->add_option("--camera", options->road.camera,
                   "Camera file; its height_mm and tilt_deg may be missing, and are not used")
      ->required()
      ->type_name("FILE");
  command->add_flag("--write", options->write,
                    "Put height_mm, tilt_deg and pan_deg into the camera file; all else in it stays, comments too");
  command
      ->add_flag("--lay-map", options->layMap,
                 "Lay the map out anew over the ground that both pictures show well from there; with --write it goes "
                 "into the camera file, too")
      ->needs("--write");
  command
      ->add_option(
          "-o,--output", options->picture,
          "Picture of what was taken for the floor, and of what was left out, in the last pair that has one, PNG")
      ->check(endingIn({".png"}))
      ->type_name("FILE");
  addCalibrationOptions(*command, options->road.calibration,
                        "Calibration of pictures that are not rectified, as for nadir rectify");
  addRange(*command, options->road.match);
  addJsonOption(*command, options->json, "its members say their units");
  command->footer(
      "The floor is the plane that most of the picture lies on. What stands on it is left out, but the less there is, "
      "the\n"
      "better. More pairs, of other parts of the floor, make the result more certain. A floor tells height, tilt and "
      "pan of\n"
      "the camera over it; which way it looks over it, it does not. Examples:\n"
      "  nadir level left.png right.png --camera camera.toml\n"
      "  nadir level l1.png r1.png l2.png r2.png --camera camera.toml --write -o floor.png");
  command->callback([options] { run(*options); });
}

}  // namespace nadir::tool
