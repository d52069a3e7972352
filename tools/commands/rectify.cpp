// nadir rectify: from the pictures of two cameras to a rectified pair and its camera file.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/commands/calibration_options.hpp"
#include "tools/commands/commands.hpp"
#include "tools/files/encodings.hpp"
#include "tools/pictures/pictures.hpp"
#include "tools/pictures/png.hpp"
#include "tools/road/pair_rectifier.hpp"

namespace nadir::tool {

namespace {

struct RectifyOptions {
  std::string left, right, folder;
  CalibrationOptions calibration;
  KeyOptions keys;
  bool force = false;
};

struct Input {
  Pair pair;
  uint32_t bits;
};

Input readInput(const RectifyOptions& options) {
  GreyPicture left = readGrey(options.left), right = readGrey(options.right);
  if (!sameSize(left.pixels, right.pixels) || left.bits != right.bits)
    throw UnusableFile(format("the pictures differ: %s is %s pixels of %u bits, %s is %s of %u", options.left.c_str(),
                              sizeText(left.pixels.width, left.pixels.height).c_str(), left.bits, options.right.c_str(),
                              sizeText(right.pixels.width, right.pixels.height).c_str(), right.bits));
  return {{std::move(left.pixels), std::move(right.pixels)}, left.bits};
}

Bytes encoded(const Grid<uint16_t>& picture, uint32_t bits) {
  if (bits == 16) return encodePng(picture, {});
  return encodePng(lab::converted<uint8_t>(picture, [](uint16_t value) { return value; }), {});
}

double shareWithoutData(const Grid<uint16_t>& picture) {
  const auto empty = std::count(picture.pixels.begin(), picture.pixels.end(), 0);
  return 100.0 * static_cast<double>(empty) / static_cast<double>(picture.pixels.size());
}

void run(const RectifyOptions& options) {
  const Input input = readInput(options);
  Calibration calibration = readCalibration(options.calibration);
  complete(calibration, {input.pair.left.width, input.pair.left.height});
  const Pair pair = PairRectifier(calibration).rectified(input.pair);
  ImportedCamera imported = cameraOf(calibration);
  options.keys.take(imported);
  checkImported(imported.camera, calibration.unitMm == 0);
  std::vector<std::string> inputs = options.calibration.files;
  inputs.insert(inputs.end(), {options.left, options.right});
  OutputFiles files(inputs);
  files.makeFolder(options.folder);
  const std::string camera = options.folder + "/camera.toml";
  writeCamera(camera, imported.camera, options.force, files);
  writeAll({{options.folder + "/left.png", [&] { return encoded(pair.left, input.bits); }},
            {options.folder + "/right.png", [&] { return encoded(pair.right, input.bits); }}},
           files);
  files.commit();
  std::string text = importReport(imported, &calibration, camera);
  if (calibration.unitMm == 0)
    text += "\n" + calibration.path +
            " does not say in which unit its lengths are: --unit-mm (1 for mm, 1000 for m) "
            "would tell baseline_mm.\n";
  print(text +
        format("\nwithout data: %.1f %% of the left picture, %.1f %% of the right one\nwrote left.png, right.png "
               "and camera.toml in %s\n",
               shareWithoutData(pair.left), shareWithoutData(pair.right), options.folder.c_str()));
}

}  // namespace

void addRectifyCommand(CLI::App& app) {
  auto options = std::make_shared<RectifyOptions>();
  CLI::App* command =
      app.add_subcommand("rectify", "Make a rectified pair and its camera file of what two cameras took.");
  command->add_option("LEFT", options->left, "Left picture, as the camera took it; colours are made grey")->required();
  command->add_option("RIGHT", options->right, "Right picture of the same size and depth")->required();
  addCalibrationOptions(
      *command, options->calibration,
      "The cameras' calibration, told by what it holds: OpenCV's, one file or the two of its samples, YAML or XML (M1 "
      "D1 M2 D2 R T and, where they are, R1 R2 P1 P2 or Q); two ROS camera_info files, the left camera's first; a "
      "Kalibr camchain; a Middlebury calib.txt; a camera file with lenses")
      ->required();
  command
      ->add_option("-o,--output", options->folder,
                   "Receives left.png, right.png and camera.toml; made unless it exists")
      ->required()
      ->type_name("FOLDER");
  addForceOption(*command, options->force);
  options->keys.addTo(*command, true);
  command->footer(
      "The pictures keep their depth. A pixel that comes from outside of the camera's picture, or from 0 in one of 16 "
      "bits,\nis 0: no data. Lenses: none, plumb bob (4 or 5 coefficients), rational (8), thin prism (12), equidistant "
      "fisheye (4).\nWhat else a calibration holds is refused or named. The camera file lacks the mount unless the "
      "options say it. Examples:\n"
      "  nadir rectify l.png r.png --calibration intrinsics.yml extrinsics.yml --unit-mm 1 -o rectified\n"
      "  nadir rectify l.png r.png --calibration camchain.yaml --height-mm 2600 --tilt-deg -40 -o rectified\n"
      "  nadir ground rectified/left.png rectified/right.png --camera rectified/camera.toml -o result");
  command->callback([options] { run(*options); });
}

}  // namespace nadir::tool
