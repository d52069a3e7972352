// nadir plan: what a stereo camera will see and measure, and which one sees what is asked for.
#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/camera/camera_file.hpp"
#include "tools/commands/calibration_options.hpp"
#include "tools/commands/commands.hpp"
#include "tools/commands/options.hpp"
#include "tools/files/output_files.hpp"
#include "tools/plan/plan_drawing.hpp"
#include "tools/plan/plan_report.hpp"
#include "tools/plan/proposal.hpp"

namespace nadir::tool {

namespace {

struct PlanOptions {
  std::string camera, size = "640x480", see, folder;
  std::optional<double> focalPx, fovDeg, baselineMm, heightMm, tiltDeg;
  double tallestMm = 2000;
  bool json = false, force = false;
};

struct Sides {
  uint32_t width = 0, height = 0;
};

// "640x480"
Sides sidesIn(const std::string& text, const char* option, uint32_t low, uint32_t high) {
  Sides s;
  char rest = 0;
  const int read = std::sscanf(text.c_str(), "%7ux%7u%c", &s.width, &s.height, &rest);
  const auto fits = [&](uint32_t side) { return side >= low && side <= high; };
  if (read != 2 || !fits(s.width) || !fits(s.height))
    throw CLI::ValidationError(option, text + format(" is not WxH with sides from %u to %u", low, high));
  return s;
}

double needed(const std::optional<double>& value, const char* option) {
  if (value) return *value;
  throw CLI::ValidationError(option, "is needed, or a camera file (--camera)");
}

double focalOf(const PlanOptions& options, uint32_t widthPx) {
  if (!options.fovDeg) return needed(options.focalPx, "--focal (or --fov)");
  return widthPx / 2.0 / std::tan(*options.fovDeg * degree / 2);
}

Camera cameraOfNumbers(const PlanOptions& options) {
  const Sides size = sidesIn(options.size, "--size", 5, 65535);
  Camera camera;
  camera.widthPx = size.width, camera.heightPx = size.height;
  camera.focalPx = focalOf(options, size.width);
  camera.principalXPx = (size.width - 1) / 2.0, camera.principalYPx = (size.height - 1) / 2.0;
  camera.baselineMm = needed(options.baselineMm, "--baseline");
  camera.heightMm = needed(options.heightMm, "--height");
  camera.tiltDeg = needed(options.tiltDeg, "--tilt");
  return camera;
}

Camera wishedCamera(const PlanOptions& options) {
  const Sides size = sidesIn(options.size, "--size", 5, 65535), ground = sidesIn(options.see, "--see", 100, 1000000);
  const double heightMm = needed(options.heightMm, "--height");
  return proposedCamera(
      {double(ground.width), double(ground.height), options.tallestMm, heightMm, size.width, size.height});
}

Camera chosenCamera(const PlanOptions& options) {
  if (!options.see.empty()) return wishedCamera(options);
  return options.camera.empty() ? cameraOfNumbers(options) : readCamera(options.camera);
}

void write(const PlanOptions& options, const Plan& plan) {
  OutputFiles files({options.camera});
  files.makeFolder(options.folder);
  writeCamera(options.folder + "/camera.toml", plan.camera, options.force, files);
  files.write(options.folder + "/plan.svg", encodePlanDrawing(plan));
  files.commit();
}

void run(const PlanOptions& options) {
  const Plan plan = planOf(chosenCamera(options), options.tallestMm);
  checkImported(plan.camera, false);
  if (!options.folder.empty()) write(options, plan);
  if (options.json) return print(planJson(plan));
  print(planTable(plan));
  if (!options.folder.empty())
    print(format("\nwrote camera.toml and plan.svg, the drawing to look at, in %s\n", options.folder.c_str()));
}

void addNumbers(CLI::App& command, PlanOptions& options) {
  command.add_option("--size", options.size, "Width and height of the pictures, pixels (default: 640x480)")
      ->type_name("WxH");
  CLI::Option* focal =
      addNumber(command, "--focal", options.focalPx, numberFrom(1, 100000), "Focal length, {range}", "PIXELS");
  addNumber(command, "--fov", options.fovDeg, numberFrom(1, 170), "Field of view along the rows instead, {range}",
            "DEGREES")
      ->excludes(focal);
  addNumber(command, "--baseline", options.baselineMm, numberFrom(0.01, 100000), "Distance of the two cameras, {range}",
            "MM");
  addNumber(command, "--height", options.heightMm, numberFrom(1, 1000000), "Height above the ground, {range}", "MM");
  addNumber(command, "--tilt", options.tiltDeg, numberFrom(-89.9, 89.9),
            "Tilt, {range}; 0 looks straight down, negative raises the view to the picture's upper side", "DEGREES");
}

}  // namespace

void addPlanCommand(CLI::App& app) {
  auto options = std::make_shared<PlanOptions>();
  CLI::App* command = app.add_subcommand("plan", "Tell what a stereo camera will see and measure, before it hangs.");
  CLI::Option* camera =
      command->add_option("--camera", options->camera, "Camera file, instead of the numbers below")->type_name("FILE");
  addNumbers(*command, *options);
  CLI::Option* see =
      command
          ->add_option("--see", options->see,
                       "The other way round: ground that is to be seen, mm along the rows and away from the camera; "
                       "focal length, baseline, tilt and range are proposed, for --height and --tallest")
          ->type_name("WxD");
  for (const char* name : {"--focal", "--fov", "--baseline", "--tilt"}) {
    see->excludes(command->get_option(name));
    camera->excludes(command->get_option(name));
  }
  camera->excludes(see)->excludes(command->get_option("--height"))->excludes(command->get_option("--size"));
  addNumber(*command, "--tallest", options->tallestMm, numberFrom(0, 65534),
            "Height of the tallest things, {range} (default: {default})", "MM");
  addJsonOption(*command, options->json, "docs/plan.schema.json describes it");
  command
      ->add_option(
          "-o,--output", options->folder,
          "Receives camera.toml, ready to use, and plan.svg, a drawing from the side and from above; made unless "
          "it exists (default: nothing is written)")
      ->type_name("FOLDER");
  addForceOption(*command, options->force);
  command->footer(
      "Near, middle and far lie on the map, in the middle of what both pictures show. A map is laid where 1/16 pixel "
      "of\n"
      "disparity is worth at most 20 mm of height, or on what --see asks for; ground is seen to where its disparity is "
      "2\n"
      "pixels, the least that is found. A person is 500 x 300 mm from above. Examples:\n"
      "  nadir plan --fov 65 --baseline 120 --height 3000 --tilt -30\n"
      "  nadir plan --camera camera.toml --json\n"
      "  nadir plan --see 3000x2000 --tallest 2000 --height 2600 -o plan");
  command->callback([options] { run(*options); });
}

}  // namespace nadir::tool
