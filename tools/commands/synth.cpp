// nadir synth: a stereo pair of a rendered scene, or a sequence of them, with the truth about it.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "lab/scene/ready_scenes.hpp"
#include "tools/base/json_value.hpp"
#include "tools/base/progress.hpp"
#include "tools/base/statistics.hpp"
#include "tools/base/text.hpp"
#include "tools/commands/commands.hpp"
#include "tools/commands/options.hpp"
#include "tools/files/output_files.hpp"
#include "tools/synth/scene_files.hpp"
#include "tools/synth/scene_sequence.hpp"

namespace nadir::tool {

namespace {

struct SynthOptions {
  std::string folder;
  SynthSettings settings;
  SequenceSettings sequence;
  View grid = View::left;
  bool focalGiven = false, noTruthPictures = false, json = false;
};

Rendering render(const SynthSettings& settings) {
  Rendering r = arranged(settings, {});
  Progress progress("rendering", "rows", 4 * settings.camera.height, Progress::Elsewhere::silent);
  const auto rowDone = [&progress] { progress.advance(); };
  renderPictures(r, settings, {}, rowDone);
  renderTruth(r, rowDone);
  return r;
}

struct SceneFigures {
  double leastDisparity, largestDisparity, occludedPercent;
  size_t objects;
  double tallestMm;
};

SceneFigures figuresOf(const Rendering& r) {
  const std::vector<double>& disparities = r.leftTruth.disparity.pixels;
  const std::vector<uint8_t>& occluded = r.leftTruth.occluded.pixels;
  const auto [least, most] = std::minmax_element(disparities.begin(), disparities.end());
  const auto hidden = static_cast<size_t>(std::count(occluded.begin(), occluded.end(), 1));
  return {*least, *most, percentOf(hidden, occluded.size()), r.scene.objects.size() - 1, r.scene.tallest};
}

std::string report(const SynthSettings& settings, const SceneFigures& figures) {
  Table table;
  table.heading(
      settings.scene + ", left picture, " + sizeText(settings.camera.width, settings.camera.height) + " pixels", "");
  table.line("least disparity", figures.leastDisparity, figures.leastDisparity > 0 ? "pixels" : "pixels, there is sky");
  table.line("largest disparity", figures.largestDisparity, "pixels (nadir disparity finds 2 to 61)");
  table.line("occluded", figures.occludedPercent, "% are not in the right picture");
  table.line("objects", static_cast<double>(figures.objects), "", 0);
  table.line("tallest", figures.tallestMm, "mm", 0);
  return table.text();
}

std::string json(const SynthSettings& settings, const SceneFigures& figures) {
  const Json all = {{"scene", settings.scene},
                    {"least_disparity_px", significantNumber(figures.leastDisparity)},
                    {"largest_disparity_px", significantNumber(figures.largestDisparity)},
                    {"occluded_percent", significantNumber(figures.occludedPercent)},
                    {"objects", figures.objects},
                    {"tallest_mm", significantNumber(figures.tallestMm)}};
  return all.dump(2) + "\n";
}

void writePair(const std::string& folder, const SynthSettings& settings, bool asJson) {
  const Rendering rendering = render(settings);
  OutputFiles files;
  files.makeFolder(folder);
  for (const auto& group : {synthPictures(settings, rendering), synthTruth(rendering), synthTexts(settings, rendering)})
    for (const NamedFile& file : group) files.write(folder + "/" + file.name, file.bytes);
  files.commit();
  const SceneFigures figures = figuresOf(rendering);
  print(asJson
            ? json(settings, figures)
            : report(settings, figures) + writtenLine("the pair and its truth into " + folder, folder + "/left.png"));
}

void run(SynthOptions& options) {
  SynthSettings& settings = options.settings;
  if (!options.focalGiven) settings.camera.focal *= settings.camera.width / 640.0;
  settings.camera.reference = options.grid == View::left ? scene::Side::left : scene::Side::right;
  const bool isSequence = options.sequence.frames > 0;
  options.sequence.truthPictures = !options.noTruthPictures;
  if (settings.scene.empty()) settings.scene = isSequence ? "walkers" : "boxes";
  if (isSequence)
    writeSequence(options.folder, settings, options.sequence);
  else
    writePair(options.folder, settings, options.json);
}

// ---- the command line ----

constexpr unsigned leastSide = 64, largestSide = 4096;  // pixels

bool isSide(unsigned side) { return side >= leastSide && side <= largestSide; }

std::string sideRange() { return format("%u to %u", leastSide, largestSide); }

std::string takeSize(const std::string& text, scene::CameraSettings& camera) {
  unsigned width = 0, height = 0;
  char rest = 0;
  if (std::sscanf(text.c_str(), "%5ux%5u%c", &width, &height, &rest) != 2 || !isSide(width) || !isSide(height))
    return "is not two numbers from " + sideRange() + " with an x between them";
  camera.width = width;
  camera.height = height;
  return "";
}

std::string sceneList() {
  std::string text = "Scenes:\n";
  for (const scene::ReadyScene& s : scene::readyScenes()) text += format("  %-12s %s\n", s.name, s.description);
  return text;
}

std::vector<std::string> sceneNames() {
  std::vector<std::string> names;
  for (const scene::ReadyScene& s : scene::readyScenes()) names.emplace_back(s.name);
  return names;
}

void addCameraOptions(CLI::App& command, SynthOptions& options) {
  scene::CameraSettings& camera = options.settings.camera;
  const std::string sizeHelp = format("Width and height of the pictures, %s pixels each (default: %ux%u)",
                                      sideRange().c_str(), camera.width, camera.height);
  command.add_option("--size", sizeHelp)
      ->each([&camera](const std::string& text) {
        const std::string fault = takeSize(text, camera);
        if (!fault.empty()) throw CLI::ValidationError(text + " " + fault);
      })
      ->type_name("WxH");
  addNumber(command, "--baseline", camera.baseline, numberFrom(1, 10000),
            "Distance of the two cameras, {range} (default: {default})", "MM");
  addNumber(command, "--focal", camera.focal, numberFrom(10, 100000),
            "Focal length; without this option in proportion to the width, {range} (default: {default})", "PIXELS")
      ->each([&options](const std::string&) { options.focalGiven = true; });
  addNumber(command, "--height", camera.mountingHeight, numberFrom(100, 100000),
            "Height above the ground, {range} (default: {default})", "MM");
  addNumber(command, "--tilt", camera.tilt, numberFrom(-75, 75),
            "Tilt; negative raises the optical axis towards the picture's upper edge, {range} (default: {default})",
            "DEGREES");
  addNumber(command, "--pan", camera.pan, numberFrom(-60, 60),
            "Pan; positive turns the optical axis towards the picture's left edge, {range} (default: {default})",
            "DEGREES");
  addViewOption(command, "--grid", options.grid,
                "View whose camera is the world's origin and has the given height, left or right (default: left)");
}

void addSequenceOptions(CLI::App& command, SynthOptions& options) {
  SequenceSettings& sequence = options.sequence;
  CLI::Option* frames = addNumber(command, "--frames", sequence.frames, wholeNumberFrom(1, 1000000),
                                  "Render so many frames instead of one pair, {range}", "N");
  addNumber(command, "--fps", sequence.framesPerSecond, numberFrom(0.1, 1000),
            "Frames per second, {range} (default: {default})", "RATE")
      ->needs(frames);
  addThreadsOption(command, sequence.threads,
                   "Frames that are rendered at a time, {range} (default: one for each processor)")
      ->needs(frames);
  command.add_flag("--resume", sequence.resume, "Go on where an interrupted run has ended, or begin")->needs(frames);
  command
      .add_flag("--no-truth-pictures", options.noTruthPictures,
                "Leave out the pictures of the truth, which take half of the time; truth.jsonl stays")
      ->needs(frames);
}

}  // namespace

void addSynthCommand(CLI::App& app) {
  auto options = std::make_shared<SynthOptions>();
  SynthSettings& settings = options->settings;
  CLI::App* command = app.add_subcommand(
      "synth", "Render a stereo pair, or a sequence of pairs, of a scene whose every measure is known.");
  command->add_option("FOLDER", options->folder, "Receives the files below; made unless it exists")->required();
  command->add_option("--scene", settings.scene, "One of the scenes below (default: boxes, of a sequence walkers)")
      ->check(CLI::IsMember(sceneNames()).description(""))
      ->type_name("NAME");
  addNumber(*command, "--seed", settings.seed, wholeNumberFrom(0, UINT64_MAX),
            "Another number gives other textures and noise and moves the objects a little, a whole number below 2^64 "
            "(default: {default})",
            "N");
  addNumber(*command, "--noise", settings.sensor.noise, numberFrom(0, 500),
            "Standard deviation of the sensor's noise, in levels of the 12-bit range, {range} (default: {default})",
            "SIGMA");
  command->add_flag("--dead-area", settings.sensor.deadArea,
                    "Give both pictures a disc without data (0), right of and below the centre");
  addSequenceOptions(*command, *options);
  addCameraOptions(*command, *options);
  addJsonOption(*command, options->json, "of a pair")->excludes(command->get_option("--frames"));
  command->footer(
      sceneList() +
      "\nThe world: millimetres, the origin in the centre of the camera of --grid, z straight down. Tilt and pan 0\n"
      "look straight down, columns along world x, rows along world y. The other camera is the baseline further\n"
      "along the picture's rows. The centre of the top left pixel is (0, 0).\n"
      "\nFiles:\n"
      "  left.png right.png        the pictures, 12-bit intensities\n"
      "  disparity_gt.png          left grid, pixels x 256, 0 where the right picture does not show the point\n"
      "  disparity_left_gt.png disparity_right_gt.png\n"
      "                            on either grid, occluded points too; 0 only for the sky or above 255 pixels\n"
      "  occlusion_left.png occlusion_right.png\n"
      "                            255 where the other picture does not show the point\n"
      "  height_left_gt.png height_right_gt.png\n"
      "                            height above the ground, mm x 8, 65535 unknown (the sky)\n"
      "  elevation_gt.png          the map as nadir ground writes it: mm above the ground at each cell's centre\n"
      "  regions_gt.png            the map: number of the object at each cell's centre, 0 for the ground\n"
      "  camera.toml scene.json    the camera, the map's size; the objects\n"
      "\nA sequence has a folder for each kind of picture, left/000000.png, left/000001.png ..., right/000000.png "
      "...;\n"
      "camera.toml; scene.json of the first frame; and truth.jsonl, a line per frame with the place (mm) and the "
      "height\n"
      "(mm) of everything at its time; areas.toml, an area of interest around each walker's way. What walks goes at an "
      "even pace and bobs by 35 mm with every step.\n"
      "\nA seed gives the same pixels on every machine. Examples:\n"
      "  nadir synth scene\n"
      "  nadir synth walkers --scene people --height 4000 --tilt -20 --seed 7\n"
      "  nadir synth walk --frames 200 --fps 15 --height 4000\n"
      "  nadir synth small --scene crop-rows --size 320x240 --noise 0 --dead-area");
  command->callback([options] { run(*options); });
}

}  // namespace nadir::tool
