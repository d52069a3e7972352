// nadir disparity: from a rectified pair to a disparity picture.
#include <nadir/nadir.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <filesystem>
#include <memory>

#include "tools/base/json_value.hpp"
#include "tools/base/known_values.hpp"
#include "tools/base/statistics.hpp"
#include "tools/base/text.hpp"
#include "tools/base/warnings.hpp"
#include "tools/commands/calibration_options.hpp"
#include "tools/commands/commands.hpp"
#include "tools/commands/options.hpp"
#include "tools/draw/disparity_plot.hpp"
#include "tools/files/encodings.hpp"
#include "tools/pictures/arrays.hpp"
#include "tools/pictures/chunks.hpp"
#include "tools/pictures/formats.hpp"
#include "tools/pictures/png.hpp"
#include "tools/report/json_parts.hpp"
#include "tools/report/setup_json.hpp"
#include "tools/road/halve.hpp"
#include "tools/road/road.hpp"

namespace nadir::tool {

namespace {

struct DisparityOptions {
  std::string left, right, output, preview, mask;
  bool sideBySide = false, noPreview = false, strict = false, json = false, dryRun = false;
  uint32_t scaleDown = 1;
  MatchOptions match;
  CalibrationOptions calibration;
};

void rectify(const CalibrationOptions& options, Pair& pair) {
  Calibration calibration = readCalibration(options);
  complete(calibration, {pair.left.width, pair.left.height});
  for (const std::string& remark : calibration.remarks) say(remark);
  pair = PairRectifier(calibration).rectified(pair);
}

Pair readInputs(const DisparityOptions& options, StageTimes& times) {
  Pair pair = times.measure("reading", [&] { return readFrame(options.left, options.right); });
  if (!options.calibration.files.empty()) times.measure("rectifying", [&] { rectify(options.calibration, pair); });
  return pair;
}

void scalePairDown(Pair& pair, uint32_t scaleDown, StageTimes& times) {
  if (scaleDown == 1) return;
  times.measure("halving", [&] { pair = scaledDown(std::move(pair), scaleDown); });
  say(scaleDownSentence({pair.left.width, pair.left.height}, scaleDown));
}

TextChunks texts(const DisparityOptions& options) {
  TextChunks texts = disparityTexts(SGM_DISP_SCALE, options.match.view);
  texts["nadir:uniqueness"] = std::to_string(uniquenessOf(options.match));
  texts["nadir:check"] = wordOf(checkWords(), options.match.check);
  texts["nadir:support"] = std::to_string(options.match.support);
  texts["nadir:refine"] = wordOf(refineWords(), options.match.refine);
  texts["nadir:range"] = wordOf(rangeWords(), options.match.range);
  texts["nadir:post-processing"] = options.match.noPostprocessing ? "no" : "yes";
  if (options.scaleDown > 1) texts["nadir:scale-down"] = std::to_string(options.scaleDown);
  return texts;
}

// Empty where none is written.
std::string previewName(const DisparityOptions& options) {
  if (!options.preview.empty()) return options.preview;
  if (options.noPreview || options.output == standardStream) return "";
  return std::filesystem::path(options.output).replace_extension(".preview.png").string();
}

Bytes encodedDisparity(const DisparityOptions& options, const Grid<uint16_t>& disparity) {
  const std::string ending = endingOf(options.output);
  if (ending == ".pfm") return encodePfm(unpacked(disparity, SGM_DISP_SCALE));
  if (ending == ".npy") return encodeNpy(unpacked(disparity, SGM_DISP_SCALE));
  return encodePng(disparity, texts(options));
}

void writeOutputs(const DisparityOptions& options, const Grid<uint16_t>& disparity, OutputFiles& files) {
  const auto preview = [&] {
    const Grid<float> pixels = unpacked(disparity, SGM_DISP_SCALE);
    return encodeDisparityPlot(pixels, usualRange(pixels));
  };
  std::vector<Encoding> encodings = {{options.output, [&] { return encodedDisparity(options, disparity); }}};
  if (!previewName(options).empty()) encodings.push_back({previewName(options), preview});
  writeAll(encodings, files);
  files.commit();
}

struct Share {
  const char *label, *key;
  uint64_t pixels;
};

std::vector<Share> sharesOf(const NadirPixelCounts& counts) {
  return {{"with a value", "value", counts.value},
          {"  of these filled from a neighbour", "filled", counts.filled},
          {"rejected, no distinct match", "ambiguous", counts.ambiguous},
          {"removed by post-processing", "removed", counts.removed},
          {"masked", "masked", counts.masked},
          {"border, not matched", "border", counts.border}};
}

std::string table(const Matching& result, const StageTimes& times) {
  const Grid<uint16_t>& disparity = result.disparity;
  Table table;
  table.heading("stage", "time");
  times.addTo(table);
  table.gap();
  table.heading("pixels, " + sizeText(disparity.width, disparity.height), "share");
  for (const Share& share : sharesOf(result.counts))
    table.line(share.label, percentOf(share.pixels, disparity.pixels.size()), "%", 2);
  return table.text();
}

std::string json(const Matching& result) {
  const Grid<uint16_t>& disparity = result.disparity;
  Json shares;
  for (const Share& share : sharesOf(result.counts))
    shares[share.key] = shareJson(share.pixels, disparity.pixels.size());
  const Json all = {{"width_px", disparity.width},
                    {"height_px", disparity.height},
                    {"shares", shares},
                    {"warnings", warningsJson(result.warnings)}};
  return all.dump(2) + "\n";
}

void run(DisparityOptions options) {
  if (options.dryRun) return print(setupJson(matchSettings(options.match)).dump(2) + "\n");
  checkPairNames(options.left, options.right, options.sideBySide);
  StageTimes times;
  Pair pair = readInputs(options, times);
  if (options.scaleDown == automaticScaleDown) options.scaleDown = scaleDownForWidth(pair.left.width);
  scalePairDown(pair, options.scaleDown, times);
  const Grid<uint8_t> mask = readMaskFor({pair.left.width, pair.left.height}, options.mask);
  const Matching result = matched(pair, mask, options.match, times);
  std::vector<std::string> inputs = options.calibration.files;
  inputs.insert(inputs.end(), {options.left, options.right, options.mask});
  OutputFiles files(inputs);
  times.measure("writing", [&] { writeOutputs(options, result.disparity, files); });
  print(options.json ? json(result) : table(result, times) + writtenLine(options.output, previewName(options)));
  const Warnings warnings = result.warnings;
  tell(warnings);
  if (options.strict) throwIfAny(warnings);
}

}  // namespace

void addDisparityCommand(CLI::App& app) {
  auto options = std::make_shared<DisparityOptions>();
  CLI::App* command = app.add_subcommand("disparity", "Match a rectified pair; write its disparities and a preview.");
  command
      ->add_option("LEFT", options->left,
                   "Left picture: PNG, binary PGM or PPM, of 8 or 16 bits, JPEG or BMP, grey or colour (made grey). "
                   "16-bit values are "
                   "taken as they are, best in the range of a 12-bit camera (0 to 4095), and 0 means no data; 8-bit "
                   "values are multiplied by 16, black included (it becomes 1)")
      ->required();
  command->add_option("RIGHT", options->right, "Right picture of the same size; points in it lie further left");
  addSideBySideOption(*command, options->sideBySide, "LEFT holds both pictures in one, left | right");
  command
      ->add_option("-o,--output", options->output,
                   "Receives the disparities: a 16-bit grey PNG of pixels x 16, 0 for none; or, by its ending, "
                   "floating-point pixels as .pfm (infinity for none) or .npy (NaN for none); - is standard output, "
                   "a PNG without a preview")
      ->required()
      ->check(endingIn({".png", ".pfm", ".npy"}))
      ->type_name("FILE");
  CLI::Option* preview =
      command
          ->add_option("--preview", options->preview,
                       "Preview in colours with a scale in pixels, PNG (default: the output's name with .preview.png)")
          ->check(endingIn({".png"}))
          ->type_name("FILE");
  command->add_flag("--no-preview", options->noPreview, "Write no preview")->excludes(preview);
  addCalibrationOptions(*command, options->calibration,
                        "Rectify the pictures on the way, with this calibration, as nadir rectify does");
  addViewOption(*command, "--grid", options->match.view,
                "View whose pixels get the disparities: left or right (default: left)");
  addUniquenessOption(*command, options->match.uniqueness,
                      "How much worse, in 1/128 of the best cost, every other match must be; more rejects more, "
                      "{range} (default: 48, beside checks 40)");
  addMaskOption(*command, options->mask,
                "8-bit grey picture of the output's size (PNG or PGM), on the grid's view: pixels that are not 0 get "
                "no disparity (default: none)");
  addAccuracyOptions(*command, options->match, rangeWordsOfPairs(),
                     "The largest disparity that is found, pixels: 61; 122, which matches pictures of half the size "
                     "too; 244, and of a quarter (default: {default})");
  addRawOption(*command, options->match.noPostprocessing);
  addStrictOption(*command, options->strict);
  addJsonOption(*command, options->json, "shares are fractions of 1");
  addDryRunOption(*command, options->dryRun, "the settings");
  addScaleDownOption(*command, options->scaleDown,
                     "Make both pictures N times smaller first: 2, 4, 8 and so on; auto, until they have at most 1280 "
                     "columns. 0 stays no data, and an odd last row or column is left out; disparities are those of "
                     "the smaller pictures (default: 1)");
  command->footer(
      "Disparities from 2 to 61 pixels are found. A warning on standard error says why they may not be relied on:\n"
      "pictures too dark, overexposed, exchanged or twice the same, little that can be matched, things nearer than "
      "the\n"
      "range; docs/trust.md explains each. Exit status: 0 done, 3 done but with a warning and --strict, 1 failed,\n"
      "2 wrong usage. Examples:\n"
      "  nadir disparity left.png right.png -o disparity.png\n"
      "  nadir disparity left.pgm right.pgm -o d.png --grid right --uniqueness 20 --no-preview\n"
      "  nadir disparity left.png right.png -o d.png --mask sky.png --preview look.png");
  command->callback([options] { run(*options); });
}

}  // namespace nadir::tool
