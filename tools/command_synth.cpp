// nadir synth: a stereo pair of a rendered scene, with the truth about it.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>

#include "commands.hpp"
#include "error.hpp"
#include "number_range.hpp"
#include "scene/ready_scenes.hpp"
#include "synth_files.hpp"
#include "text.hpp"

namespace nadir::tool {

namespace {

using scene::Side;

struct Options {
  std::string folder;
  SynthSettings settings;
  bool focalGiven = false;
};

// Says how far the work is, on a terminal and when it takes longer than a second.
class Progress {
 public:
  explicit Progress(uint32_t rows) : rows_(rows) {}
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() {
    if (shown_ >= 0) std::fputs("\r\033[K", stderr);
  }

  void rowDone() {
    const int percent = static_cast<int>(100.0 * ++done_ / rows_);
    if (!terminal_ || percent == shown_ || std::chrono::steady_clock::now() - start_ < std::chrono::seconds(1)) return;
    shown_ = percent;
    std::fprintf(stderr, "\rrendering, %d %%", percent);
  }

 private:
  uint32_t rows_, done_ = 0;
  int shown_ = -1;
  bool terminal_ = isatty(STDERR_FILENO) != 0;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

constexpr double clearance = 300;

void checkHeight(const scene::Scene& what, const scene::Rig& rig) {
  const double highest = std::max(rig.left.centre.z, rig.right.centre.z);
  if (rig.mountingHeight - highest < what.tallest + clearance)
    throw Error(format("the scene %s is up to %.0f mm high; a camera must be mounted at least %.0f mm above that",
                       what.name.c_str(), what.tallest, clearance));
}

Rendering render(const SynthSettings& settings) {
  Rendering r{};
  r.rig = scene::makeRig(settings.camera);
  r.scene = scene::makeScene(settings.scene, r.rig, settings.seed);
  checkHeight(r.scene, r.rig);
  // A map of 128 cells is as large as the library's region growing takes; at this size it covers what the default
  // camera sees.
  r.mapLayout.cell = static_cast<uint32_t>(std::max(1.0, std::floor(settings.camera.mountingHeight / 75 + 0.5)));
  Progress progress(4 * settings.camera.height);
  const auto rowDone = [&progress] { progress.rowDone(); };
  r.left = picture(r.scene, r.rig, Side::left, settings.sensor, rowDone);
  r.right = picture(r.scene, r.rig, Side::right, settings.sensor, rowDone);
  r.leftTruth = truth(r.scene, r.rig, Side::left, rowDone);
  r.rightTruth = truth(r.scene, r.rig, Side::right, rowDone);
  r.map = mapTruth(r.scene, r.rig, r.mapLayout);
  return r;
}

double percent(size_t count, size_t all) { return 100.0 * static_cast<double>(count) / static_cast<double>(all); }

std::string report(const SynthSettings& settings, const Rendering& r) {
  const std::vector<double>& disparities = r.leftTruth.disparity.pixels;
  const std::vector<uint8_t>& occluded = r.leftTruth.occluded.pixels;
  const auto [least, most] = std::minmax_element(disparities.begin(), disparities.end());
  const auto hidden = static_cast<size_t>(std::count(occluded.begin(), occluded.end(), 1));
  Table table;
  table.heading(
      settings.scene + ", left picture, " + sizeText(settings.camera.width, settings.camera.height) + " pixels", "");
  table.line("least disparity", *least, *least > 0 ? "pixels" : "pixels, there is sky");
  table.line("largest disparity", *most, "pixels (nadir disparity finds 2 to 61)");
  table.line("occluded", percent(hidden, occluded.size()), "% are not in the right picture");
  table.line("objects", static_cast<double>(r.scene.objects.size() - 1), "", 0);
  table.line("tallest", r.scene.tallest, "mm", 0);
  return table.text();
}

void run(Options& options) {
  scene::CameraSettings& camera = options.settings.camera;
  if (!options.focalGiven) camera.focal *= camera.width / 640.0;
  const Rendering rendering = render(options.settings);
  OutputFiles files;
  files.makeFolder(options.folder);
  for (const NamedFile& file : synthFiles(options.settings, rendering))
    files.write(options.folder + "/" + file.name, file.bytes);
  print(report(options.settings, rendering));
  files.commit();
}

// ---- the command line ----

std::string parseSize(const std::string& text, scene::CameraSettings& camera) {
  unsigned width = 0, height = 0;
  char rest = 0;
  if (std::sscanf(text.c_str(), "%5ux%5u%c", &width, &height, &rest) != 2 || width < 64 || height < 64 ||
      width > 4096 || height > 4096)
    return "is not two numbers from 64 to 4096 with an x between them";
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

void addCameraOptions(CLI::App& command, Options& options) {
  scene::CameraSettings& camera = options.settings.camera;
  const auto number = [&command](const char* name, double& value, double low, double high, const char* text,
                                 const char* type) {
    return command.add_option(name, value, format("%s, %g to %g (default: %g)", text, low, high, value))
        ->check(numberFrom(low, high))
        ->type_name(type);
  };
  command.add_option("--size", "Width and height of the pictures, 64 to 4096 pixels each (default: 640x480)")
      ->each([&camera](const std::string& text) {
        const std::string fault = parseSize(text, camera);
        if (!fault.empty()) throw CLI::ValidationError("--size", text + " " + fault);
      })
      ->type_name("WxH");
  number("--baseline", camera.baseline, 1, 10000, "Distance of the two cameras", "MM");
  number("--focal", camera.focal, 10, 100000, "Focal length; without this option in proportion to the width", "PIXELS")
      ->each([&options](const std::string&) { options.focalGiven = true; });
  number("--height", camera.mountingHeight, 100, 100000, "Height above the ground", "MM");
  number("--tilt", camera.tilt, -75, 75, "Tilt; negative raises the optical axis towards the picture's upper edge",
         "DEGREES");
  number("--pan", camera.pan, -60, 60, "Pan; positive turns the optical axis towards the picture's left edge",
         "DEGREES");
  command
      .add_option("--grid", camera.reference,
                  "View whose camera is the world's origin and has the given height, left or right (default: left)")
      ->transform(CLI::CheckedTransformer(std::map<std::string, Side>{{"left", Side::left}, {"right", Side::right}})
                      .description(""))
      ->type_name("VIEW");
}

}  // namespace

void addSynthCommand(CLI::App& app) {
  auto options = std::make_shared<Options>();
  SynthSettings& settings = options->settings;
  CLI::App* command = app.add_subcommand("synth", "Render a stereo pair of a scene whose every measure is known.");
  command->add_option("FOLDER", options->folder, "Receives the files below; made unless it exists")->required();
  command->add_option("--scene", settings.scene, "One of the scenes below (default: boxes)")
      ->check(CLI::IsMember(sceneNames()).description(""))
      ->type_name("NAME");
  command
      ->add_option("--seed", settings.seed,
                   "Another number gives other textures and noise and moves the objects a little (default: 1)")
      ->type_name("N");
  command
      ->add_option("--noise", settings.sensor.noise,
                   "Standard deviation of the sensor's noise, in levels of the 12-bit range, 0 to 500 (default: 5)")
      ->check(numberFrom(0, 500))
      ->type_name("SIGMA");
  command->add_flag("--dead-area", settings.sensor.deadArea,
                    "Give both pictures a disc without data (0), right of and below the centre");
  addCameraOptions(*command, *options);
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
      "A seed gives the same pixels on every machine. Examples:\n"
      "  nadir synth scene\n"
      "  nadir synth walkers --scene people --height 4000 --tilt -20 --seed 7\n"
      "  nadir synth small --scene crop-rows --size 320x240 --noise 0 --dead-area");
  command->callback([options] { run(*options); });
}

}  // namespace nadir::tool
