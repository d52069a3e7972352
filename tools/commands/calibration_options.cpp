// From a calibration and what the user knows besides to a camera file.
#include "tools/commands/calibration_options.hpp"

#include <zlib.h>

#include <algorithm>
#include <filesystem>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/commands/options.hpp"

namespace nadir::tool {

namespace {

// A map to begin with, which fits in what region growing takes.
constexpr uint32_t usualCells = 128;
constexpr uint32_t usualCellMm = 50;

std::string optionName(const CameraKey& key) {
  std::string name = std::string("--") + key.name;
  std::replace(name.begin(), name.end(), '_', '-');
  return name;
}

// Those that a calibration knows: all at the top but the mount.
bool isOfPictures(const CameraKey& key) {
  const std::string name = key.name;
  return !*key.table && name != "height_mm" && name != "tilt_deg" && name != "pan_deg";
}

void addKeyOption(CLI::App& command, const CameraKey& key, std::optional<double>& value) {
  CLI::Option* option = command.add_option(optionName(key), value, key.meaning)->group("Keys of the camera file");
  option->type_name(isCount(key) ? "N" : "NUMBER");
  if (isCount(key)) option->check(wholeNumberFrom(0, UINT32_MAX).check);
}

void chooseMap(ImportedCamera& imported) {
  imported.camera.mapWidthCells = imported.camera.mapHeightCells = usualCells;
  imported.camera.cellMm = usualCellMm;
  for (const char* key : {"width_cells", "height_cells", "cell_mm"}) imported.origins[key] = "chosen to begin with";
}

// The mount cannot be known from a calibration, everything about the pictures' geometry must be.
bool mayBeUnknown(const CameraKey& key, bool baselineToo) {
  const std::string name = key.name;
  return name == "height_mm" || name == "tilt_deg" || name == "width_px" || name == "height_px" ||
         (baselineToo && name == "baseline_mm");
}

std::string originOf(const ImportedCamera& imported, const CameraKey& key) {
  const auto found = imported.origins.find(key.name);
  return found == imported.origins.end() ? "default" : found->second;
}

// ---- whether a file was edited ----

const char* const seal = "\n# nadir wrote the lines above, and replaces them while nobody edits them: ";

std::string sumOf(const std::string& text) {
  return format("%08lx", crc32_z(0, reinterpret_cast<const Bytef*>(text.data()), text.size()));
}

std::string sealed(const std::string& text) { return text + seal + sumOf(text) + "\n"; }

bool isAsWritten(const std::string& text) {
  const size_t place = text.rfind(seal);
  return place != std::string::npos && text == sealed(text.substr(0, place));
}

}  // namespace

void addUnitAndLens(CLI::App& command, CalibrationOptions& options) {
  addNumber(command, "--unit-mm", options.unitMm, positiveNumber(),
            "The millimetres of one unit of length of the calibration, 1000 for metres (default: what its kind has: "
            "ROS and Kalibr metres, a calib.txt mm; an OpenCV file does not say it)",
            "N");
  command
      .add_option("--lens", options.lens,
                  "What the lenses' coefficients are where a file does not say it: plumb-bob or fisheye (default: "
                  "plumb-bob)")
      ->check(CLI::IsMember({"plumb-bob", "fisheye"}).description(""))
      ->type_name("MODEL");
}

CLI::Option* addCalibrationOptions(CLI::App& command, CalibrationOptions& options, const char* help) {
  CLI::Option* option = command.add_option("--calibration", options.files, help)->expected(1, 2)->type_name("FILE");
  addUnitAndLens(command, options);
  for (const char* name : {"--unit-mm", "--lens"}) command.get_option(name)->needs(option);
  return option;
}

void KeyOptions::addTo(CLI::App& command, bool onlyMount) {
  values_.resize(cameraKeys().size());
  for (size_t i = 0; i < cameraKeys().size(); ++i)
    if (const CameraKey& key = cameraKeys()[i]; !onlyMount || !isOfPictures(key))
      addKeyOption(command, key, values_[i]);
}

void KeyOptions::take(ImportedCamera& imported) const {
  chooseMap(imported);
  for (size_t i = 0; i < values_.size(); ++i) {
    if (!values_[i]) continue;
    const CameraKey& key = cameraKeys()[i];
    const std::string mistake = mistakeIn(*values_[i], key);
    if (!mistake.empty()) throw Error(optionName(key) + ": " + mistake);
    setValue(imported.camera, key, *values_[i]);
    imported.origins[key.name] = optionName(key);
  }
}

std::optional<double> KeyOptions::given(const std::string& key) const {
  for (size_t i = 0; i < values_.size(); ++i)
    if (key == cameraKeys()[i].name) return values_[i];
  return {};
}

void checkImported(const Camera& camera, bool baselineMayBeUnknown) {
  for (const CameraKey& key : cameraKeys()) {
    if (!isKnown(camera, key)) {
      if (mayBeUnknown(key, baselineMayBeUnknown)) continue;
      throw Error(format("%s is not known: give a calibration file or %s", key.name, optionName(key).c_str()));
    }
    const std::string mistake = mistakeIn(valueOf(camera, key), key);
    if (!mistake.empty()) throw Error(std::string(key.name) + ": " + mistake);
  }
}

void writeCamera(const std::string& path, const Camera& camera, bool force, OutputFiles& files) {
  const bool isOurs = force || !std::filesystem::exists(path) || isAsWritten(readText(path));
  files.write(path, bytesOf(sealed(cameraText(camera))));
  if (!isOurs)
    throw Error(path +
                " is there and was edited, or made by somebody else: name another file, or replace it with --force");
}

void addForceOption(CLI::App& command, bool& force) {
  command.add_flag("--force", force, "Replace a camera file that was edited");
}

Json importJson(const ImportedCamera& imported, const Calibration* calibration, const std::string& path) {
  Json taken = Json::object(), from = Json::object(), missing = Json::array();
  for (const CameraKey& key : cameraKeys())
    if (isKnown(imported.camera, key)) {
      const double value = valueOf(imported.camera, key);
      taken[key.name] = isCount(key) ? Json(static_cast<uint64_t>(value)) : Json(value);
      from[key.name] = originOf(imported, key);
    } else {
      missing.push_back(key.name);
    }
  return {{"schema", 1},
          {"camera_file", path},
          {"taken", taken},
          {"taken_from", from},
          {"missing", missing},
          {"remarks", calibration ? Json(calibration->remarks) : Json::array()},
          {"unused", calibration ? Json(calibration->unused) : Json::array()}};
}

std::string importReport(const ImportedCamera& imported, const Calibration* calibration, const std::string& path) {
  Table table;
  table.heading("taken", "");
  for (const CameraKey& key : cameraKeys())
    if (isKnown(imported.camera, key))
      table.line(key.name, valueOf(imported.camera, key), originOf(imported, key), isCount(key) ? 0 : 3);
  std::string text = table.text(), missing;
  if (calibration)
    for (const auto* sentences : {&calibration->remarks, &calibration->unused})
      for (const std::string& sentence : *sentences) text += "\n" + sentence + "\n";
  for (const CameraKey& key : cameraKeys())
    if (!isKnown(imported.camera, key)) missing += format("  %s: %s\n", key.name, key.meaning);
  if (!missing.empty()) text += "\nnot known from this; fill it in in " + path + ":\n" + missing;
  if (imported.origins.count("tilt_deg") == 0 || imported.origins.count("height_mm") == 0)
    text += "\nA calibration tells nothing about the mount: measure height and tilt, and pan unless it is 0.\n";
  return text;
}

}  // namespace nadir::tool
