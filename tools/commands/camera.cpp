// nadir camera import: from a calibration to a camera file.
#include <CLI/CLI.hpp>
#include <memory>
#include <optional>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/camera/camera_import.hpp"
#include "tools/commands/commands.hpp"
#include "tools/commands/options.hpp"
#include "tools/files/output_files.hpp"

namespace nadir::tool {

namespace {

struct CameraOptions {
  std::vector<std::string> calibrations;
  std::string output;
  double unitMm = 0;
  std::vector<std::optional<double>> values;  // of cameraKeys(), in their order
};

// A map to begin with, which fits in what region growing takes.
constexpr uint32_t usualCells = 128;
constexpr uint32_t usualCellMm = 50;

std::string optionName(const CameraKey& key) {
  std::string name = std::string("--") + key.name;
  std::replace(name.begin(), name.end(), '_', '-');
  return name;
}

ImportedCamera importCalibration(const CameraOptions& options) {
  const auto& files = options.calibrations;
  if (files.empty()) return {};
  if (files.size() > 2) throw CLI::ValidationError("CALIBRATION", "one or two files are used, not more");
  if (files.size() == 1) return importOpenCv(readCalibration(files[0]), options.unitMm);
  return importRos(readCalibration(files[0]), readCalibration(files[1]), options.unitMm);
}

void chooseMap(ImportedCamera& imported) {
  imported.camera.mapWidthCells = imported.camera.mapHeightCells = usualCells;
  imported.camera.cellMm = usualCellMm;
  for (const char* key : {"width_cells", "height_cells", "cell_mm"}) imported.origins[key] = "chosen to begin with";
}

void takeOptions(const CameraOptions& options, ImportedCamera& imported) {
  for (size_t i = 0; i < options.values.size(); ++i) {
    if (!options.values[i]) continue;
    const CameraKey& key = cameraKeys()[i];
    const std::string mistake = mistakeIn(*options.values[i], key);
    if (!mistake.empty()) throw Error(optionName(key) + ": " + mistake);
    setValue(imported.camera, key, *options.values[i]);
    imported.origins[key.name] = optionName(key);
  }
}

// The mount cannot be known from a calibration, everything about the pictures' geometry must be.
bool mayBeUnknown(const CameraKey& key) {
  const std::string name = key.name;
  return name == "height_mm" || name == "tilt_deg" || name == "width_px" || name == "height_px";
}

void check(const Camera& camera) {
  for (const CameraKey& key : cameraKeys()) {
    if (!isKnown(camera, key)) {
      if (mayBeUnknown(key)) continue;
      throw Error(format("%s is not known: give a calibration file or %s", key.name, optionName(key).c_str()));
    }
    const std::string mistake = mistakeIn(valueOf(camera, key), key);
    if (!mistake.empty()) throw Error(std::string(key.name) + ": " + mistake);
  }
}

std::string originOf(const ImportedCamera& imported, const CameraKey& key) {
  const auto found = imported.origins.find(key.name);
  return found == imported.origins.end() ? "default" : found->second;
}

std::string report(const ImportedCamera& imported, const std::string& output) {
  Table table;
  table.heading("taken", "");
  for (const CameraKey& key : cameraKeys())
    if (isKnown(imported.camera, key))
      table.line(key.name, valueOf(imported.camera, key), originOf(imported, key), isCount(key) ? 0 : 3);
  std::string text = table.text(), missing;
  for (const CameraKey& key : cameraKeys())
    if (!isKnown(imported.camera, key)) missing += format("  %s: %s\n", key.name, key.meaning);
  if (!missing.empty()) text += "\nnot known from this; fill it in in " + output + ":\n" + missing;
  if (imported.origins.count("tilt_deg") == 0 || imported.origins.count("height_mm") == 0)
    text += "\nA calibration tells nothing about the mount: measure height and tilt, and pan unless it is 0.\n";
  return text;
}

void run(const CameraOptions& options) {
  ImportedCamera imported = importCalibration(options);
  chooseMap(imported);
  takeOptions(options, imported);
  check(imported.camera);
  OutputFiles files(options.calibrations);
  files.write(options.output, cameraBytes(imported.camera));
  files.commit();
  print(report(imported, options.output));
}

void addKeyOption(CLI::App& command, const CameraKey& key, std::optional<double>& value) {
  CLI::Option* option = command.add_option(optionName(key), value, key.meaning)->group("Keys of the camera file");
  option->type_name(isCount(key) ? "N" : "NUMBER");
  if (isCount(key)) option->check(wholeNumberFrom(0, UINT32_MAX).check);
}

}  // namespace

void addCameraCommand(CLI::App& app) {
  auto options = std::make_shared<CameraOptions>();
  CLI::App* camera = app.add_subcommand("camera", "Make a camera file.");
  camera->require_subcommand(1);
  CLI::App* command = camera->add_subcommand("import", "Make a camera file from a calibration or from plain numbers.");
  command->add_option("CALIBRATION", options->calibrations,
                      "One OpenCV stereo YAML file (P1 and P2, or Q), or two ROS camera_info YAML files, the left "
                      "camera's first; none where the options below say everything");
  command->add_option("-o,--output", options->output, "Camera file to write")->required()->type_name("FILE");
  addNumber(*command, "--unit-mm", options->unitMm, positiveNumber(),
            "The millimetres of one unit of length of the calibration, 1000 for metres (default for ROS: 1000; an "
            "OpenCV file needs it, since it does not say)",
            "N");
  options->values.resize(cameraKeys().size());
  for (size_t i = 0; i < cameraKeys().size(); ++i) addKeyOption(*command, cameraKeys()[i], options->values[i]);
  command->footer(
      "Every key of the camera file is an option, too, and goes before what the calibration says. Examples:\n"
      "  nadir camera import extrinsics.yml --unit-mm 1 --width-px 640 --height-px 480 -o camera.toml\n"
      "  nadir camera import left.yaml right.yaml --height-mm 1200 --tilt-deg -35 -o camera.toml\n"
      "  nadir camera import --baseline-mm 120 --focal-px 610 --principal-x-px 319.5 --principal-y-px 239.5 \\\n"
      "      --width-px 640 --height-px 480 --height-mm 1200 --tilt-deg -35 -o camera.toml");
  command->callback([options] { run(*options); });
}

}  // namespace nadir::tool
