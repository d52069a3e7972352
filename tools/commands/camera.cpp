// nadir camera import: from a calibration to a camera file; nadir camera show: what one holds.
#include <CLI/CLI.hpp>
#include <memory>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/commands/calibration_options.hpp"
#include "tools/commands/commands.hpp"
#include "tools/commands/options.hpp"
#include "tools/report/setup_json.hpp"

namespace nadir::tool {

namespace {

struct CameraOptions {
  CalibrationOptions calibration;
  KeyOptions keys;
  std::string output;
  bool force = false, json = false;
};

PictureSize givenSize(const KeyOptions& keys) {
  return {static_cast<uint32_t>(keys.given("width_px").value_or(0)),
          static_cast<uint32_t>(keys.given("height_px").value_or(0))};
}

// A calibration of pictures that are rectified already may hold no lenses; one that holds nothing else needs them.
ImportedCamera importedCamera(Calibration& calibration, const KeyOptions& keys) {
  if (!calibration.optics) complete(calibration, givenSize(keys));
  if (calibration.unitMm == 0)
    throw Error(calibration.path +
                " does not say in which unit its lengths are; give --unit-mm (1 for mm, 1000 for m)");
  return cameraOf(calibration);
}

void run(const CameraOptions& options) {
  if (options.calibration.files.size() > 2)
    throw CLI::ValidationError("CALIBRATION", "one or two files are used, not more");
  std::optional<Calibration> calibration;
  if (!options.calibration.files.empty()) calibration = readCalibration(options.calibration);
  ImportedCamera imported = calibration ? importedCamera(*calibration, options.keys) : ImportedCamera();
  options.keys.take(imported);
  checkImported(imported.camera, false);
  OutputFiles files(options.calibration.files);
  writeCamera(options.output, imported.camera, options.force, files);
  files.commit();
  const Calibration* source = calibration ? &*calibration : nullptr;
  print(options.json ? importJson(imported, source, options.output).dump(2) + "\n"
                     : importReport(imported, source, options.output) + writtenLine(options.output));
}

struct ShowOptions {
  std::string camera;
  bool json = false;
};

void show(const ShowOptions& options) {
  const Json json = cameraFileJson(options.camera);
  print(options.json ? json.dump(2) + "\n" : cameraText(readCameraBeforeMount(options.camera)));
}

void addShowCommand(CLI::App& camera) {
  auto options = std::make_shared<ShowOptions>();
  CLI::App* command = camera.add_subcommand("show", "Read a camera file and print what it holds.");
  command->add_option("CAMERA", options->camera, "Camera file; its height_mm and tilt_deg may be missing")->required();
  addJsonOption(*command, options->json, "its numbers, null for a mount that is missing; its areas and lenses");
  command->callback([options] { show(*options); });
}

void addImportCommand(CLI::App& camera) {
  auto options = std::make_shared<CameraOptions>();
  CLI::App* command = camera.add_subcommand("import", "Make a camera file from a calibration or from plain numbers.");
  command->add_option(
      "CALIBRATION", options->calibration.files,
      "OpenCV's stereo calibration, one file or the two of its samples, YAML or XML; two ROS camera_info "
      "files, the left camera's first; a Kalibr camchain; a Middlebury calib.txt; a camera file with "
      "lenses. None where the options below say everything");
  command->add_option("-o,--output", options->output, "Camera file to write")->required()->type_name("FILE");
  addUnitAndLens(*command, options->calibration);
  addForceOption(*command, options->force);
  addJsonOption(*command, options->json, "docs/import.schema.json describes it");
  options->keys.addTo(*command, false);
  command->footer(
      "Every key of the camera file is an option, too, and goes before what the calibration says. Examples:\n"
      "  nadir camera import extrinsics.yml --unit-mm 1 --width-px 640 --height-px 480 -o camera.toml\n"
      "  nadir camera import left.yaml right.yaml --height-mm 1200 --tilt-deg -35 -o camera.toml\n"
      "  nadir camera import --baseline-mm 120 --focal-px 610 --principal-x-px 319.5 --principal-y-px 239.5 \\\n"
      "      --width-px 640 --height-px 480 --height-mm 1200 --tilt-deg -35 -o camera.toml\n"
      "nadir rectify makes the camera file together with the rectified pictures.");
  command->callback([options] { run(*options); });
}

}  // namespace

void addCameraCommand(CLI::App& app) {
  CLI::App* camera = app.add_subcommand("camera", "Make a camera file, or read one.");
  camera->require_subcommand(1);
  addImportCommand(*camera);
  addShowCommand(*camera);
}

}  // namespace nadir::tool
