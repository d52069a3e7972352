// nadir evaluate: how near disparities, heights, regions or tracked heights come to the truth.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <optional>

#include "tools/base/error.hpp"
#include "tools/base/map_place.hpp"
#include "tools/base/text.hpp"
#include "tools/base/view.hpp"
#include "tools/base/warnings.hpp"
#include "tools/commands/commands.hpp"
#include "tools/commands/options.hpp"
#include "tools/draw/plot.hpp"
#include "tools/evaluate/evaluation.hpp"
#include "tools/evaluate/evaluation_report.hpp"
#include "tools/evaluate/region_folders.hpp"
#include "tools/evaluate/region_report.hpp"
#include "tools/evaluate/track_evaluation.hpp"
#include "tools/files/output_files.hpp"
#include "tools/pictures/chunks.hpp"
#include "tools/pictures/pictures.hpp"
#include "tools/pictures/png.hpp"

namespace nadir::tool {

namespace {

struct EvaluateOptions {
  std::vector<std::string> given;  // names of the options on the command line
  std::string input, truth, errorMap, plot, area;
  std::optional<View> visible;
  double scale = 0, truthScale = 0, errorRange = 0;
  bool heights = false, json = false, strict = false;
};

Bytes errorMap(const Grid<float>& values, const Grid<float>& truth, double range, const char* unit) {
  const Grid<Rgb> picture = plot(errors(values, truth), {-range, range, blueRed, unit});
  return encodePng(picture, pictureTexts(format("Value - truth in %s, coloured; grey: no value or no truth.", unit)));
}

template <class Value>
void checkSize(const Grid<Value>& values, const Grid<Value>& truth, const char* name) {
  if (!sameSize(values, truth))
    throw Error(format("the %s is %s pixels, the truth %s", name, sizeText(values.width, values.height).c_str(),
                       sizeText(truth.width, truth.height).c_str()));
}

void checkPlace(const MapPlace& map, const MapPlace& truth) {
  if (liesElsewhere(map, truth))
    throw Error(
        format("the elevation map begins at %.1f, %.1f mm with cells of %g mm, the truth at %.1f, %.1f mm with "
               "cells of %g mm",
               map.leftMm, map.topMm, map.cellMm, truth.leftMm, truth.topMm, truth.cellMm));
}

// The right picture, seen in a mirror, is a left one.
Grid<float> visibleTruth(Grid<float> truth, View grid) {
  if (grid == View::left) return visibleInRight(truth);
  mirror(truth);
  truth = visibleInRight(truth);
  mirror(truth);
  return truth;
}

// What the two pictures say of themselves must agree with the option and with each other.
Warnings gridWarnings(const EvaluateOptions& options) {
  Warnings warnings;
  for (const std::string& path : {options.input, options.truth})
    if (options.visible)
      for (const Warning& warning : gridWarnings(path, *options.visible, "--visible")) warnings.push_back(warning);
  const std::optional<View> truth = gridOfDisparity(options.truth);
  return warnings.empty() && truth ? gridWarnings(options.input, *truth, options.truth) : warnings;
}

struct Compared {
  Grid<float> values, truth;
};

Compared readDisparities(const EvaluateOptions& options) {
  Compared c{readDisparity(options.input, options.scale, 16), readDisparity(options.truth, options.truthScale, 256)};
  checkSize(c.values, c.truth, "disparity picture");
  if (options.visible) c.truth = visibleTruth(std::move(c.truth), *options.visible);
  return c;
}

Compared readMaps(const EvaluateOptions& options) {
  HeightPicture map = readHeights(options.input), truth = readHeights(options.truth);
  checkSize(map.heights, truth.heights, "elevation map");
  checkPlace(map.place, truth.place);
  return {std::move(map.heights), std::move(truth.heights)};
}

std::string report(const Compared& c, bool heights, bool json) {
  const Evaluation e = evaluate(c.values, c.truth);
  const std::string size = sizeText(c.truth.width, c.truth.height);
  if (heights) return json ? heightJson(e) : heightTable(e, size);
  return json ? disparityJson(e) : disparityTable(e, size);
}

const AreaTrack& plotted(const std::vector<AreaTrack>& areas, const std::string& name) {
  for (const AreaTrack& area : areas)
    if (name.empty() || area.name == name) return area;
  throw Error("there is no area \"" + name + "\" to plot");
}

// An option that is passed over would promise what is not done.
void allowOnly(const std::vector<std::string>& meant, const EvaluateOptions& options, const char* kind) {
  for (const std::string& name : options.given)
    if (std::find(meant.begin(), meant.end(), name) == meant.end())
      throw Error(format("%s is not for %s, %s", name.c_str(), options.input.c_str(), kind));
}

std::string written(const std::string& picture) { return picture.empty() ? "" : writtenLine(picture); }

void runOnSequences(const EvaluateOptions& options) {
  allowOnly({"--plot", "--area", "--json"}, options, "a folder of a sequence");
  const std::vector<AreaTrack> areas = readTracks(options.input, options.truth);
  OutputFiles files({options.input + "/frames.jsonl", options.truth + "/truth.jsonl"});
  if (!options.plot.empty()) files.write(options.plot, trackPlot(plotted(areas, options.area)));
  files.commit();
  print(options.json ? trackJson(areas) : trackTable(areas) + written(options.plot));
}

// No option is for regions but --json, because all that the two folders hold is compared.
void runOnFolders(const EvaluateOptions& options) {
  if (!std::filesystem::is_directory(options.truth))
    throw Error(options.truth + " must be a folder that nadir synth wrote, because " + options.input + " is a folder");
  allowOnly({"--json"}, options, "a folder of a pair");
  const RegionEvaluation evaluation = evaluateRegionFolders(options.input, options.truth);
  print(options.json ? regionJson(evaluation) : regionTable(evaluation));
}

void runOnPictures(const EvaluateOptions& options) {
  const bool heights = options.heights || pictureKind(options.input) == PictureKind::elevationMap;
  if (heights)
    allowOnly({"--heights", "--error-map", "--error-range", "--json"}, options, "an elevation map");
  else
    allowOnly({"--scale", "--truth-scale", "--visible", "--strict", "--error-map", "--error-range", "--json"}, options,
              "a picture of disparities");
  const Compared compared = heights ? readMaps(options) : readDisparities(options);
  const double range = options.errorRange > 0 ? options.errorRange : heights ? 100 : 2;
  OutputFiles files({options.input, options.truth});
  if (!options.errorMap.empty())
    files.write(options.errorMap, errorMap(compared.values, compared.truth, range, heights ? "mm" : "pixels"));
  files.commit();
  print(report(compared, heights, options.json) + (options.json ? "" : written(options.errorMap)));
  if (heights) return;
  const Warnings warnings = gridWarnings(options);
  tell(warnings);
  if (options.strict) throwIfAny(warnings);
}

void run(const EvaluateOptions& options) {
  if (isSequenceResult(options.input)) return runOnSequences(options);
  if (std::filesystem::is_directory(options.input)) return runOnFolders(options);
  runOnPictures(options);
}

std::vector<std::string> givenOptions(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* option : command.get_options())
    if (option->nonpositional() && option->count() > 0) names.push_back(option->get_name());
  return names;
}

}  // namespace

void addEvaluateCommand(CLI::App& app) {
  auto options = std::make_shared<EvaluateOptions>();
  CLI::App* command =
      app.add_subcommand("evaluate", "Compare disparities, an elevation map or regions with the truth.");
  command
      ->add_option(
          "PICTURE", options->input,
          "16-bit grey PNG of disparities, 0 for none; or of heights in mm, as nadir ground writes it; or the folder "
          "that nadir ground wrote, to judge its regions or, of a sequence, its tracked heights")
      ->required();
  command
      ->add_option("TRUTH", options->truth,
                   "The same of the true ones, of equal size and on the same view's grid; or the folder of nadir synth")
      ->required();
  addScaleOption(*command, options->scale);
  addNumber(*command, "--truth-scale", options->truthScale, positiveNumber(),
            "The same of the truth (default: the file's own text nadir:scale, else 256)", "N");
  addViewOption(
      *command, "--visible", options->visible,
      "Of disparities leave out those that the other picture does not show, as far as the truth tells; VIEW is the "
      "picture that the truth belongs to, left or right (default: none are left out)");
  CLI::Option* errorMap =
      command
          ->add_option("--error-map", options->errorMap,
                       "PNG that receives a picture of the signed errors: blue too small, red too large, grey unknown")
          ->check(endingIn({".png"}))
          ->type_name("FILE");
  addNumber(*command, "--error-range", options->errorRange, positiveNumber(),
            "Error at the ends of the map's colours (default: 2 pixels, 100 mm)", "N")
      ->needs(errorMap);
  command->add_flag("--heights", options->heights,
                    "Take both pictures for elevation maps in mm (default: where the first one says so itself)");
  CLI::Option* plot = command
                          ->add_option("--plot", options->plot,
                                       "SVG that receives the tracked height of an area over time, of a sequence")
                          ->check(endingIn({".svg"}))
                          ->type_name("FILE");
  command->add_option("--area", options->area, "The area that is plotted (default: the first)")
      ->needs(plot)
      ->type_name("NAME");
  addStrictOption(*command, options->strict);
  addJsonOption(*command, options->json, "shares are fractions of 1, errors in pixels or mm");
  command->footer(
      "density is the share of the pixels with a known truth that have a value; bad-N is the share of the\n"
      "pixels with both whose error exceeds N pixels; an error is disparity - truth. Heights below 1 mm count as\n"
      "1 mm in both maps, because seen cells of a map store at least that.\n"
      "Of two folders the regions are compared with the scene's objects. A region belongs to an object if they share\n"
      "at least half of the cells of the smaller of the two. An object is missed if its regions hold less than a\n"
      "quarter of its cells, merged if one of them belongs to another object too, split if there are several, else\n"
      "found. A region that belongs to no object is false, unless it stands on or beside one that is cut off: the\n"
      "picture does not show all of such an object, or its region lies at a picture's edge. The area of a region is\n"
      "compared with that of the whole object, where it was found and is not cut off.\n"
      "Of two folders of sequences the heights in the areas of interest are compared, frame by frame, with that of "
      "the\n"
      "tallest figure that stands in the area: tracked, and of single frames.\n"
      "A picture of disparities says in its text nadir:grid whose pixels it has. Where that contradicts --visible or\n"
      "the other picture's, a warning (grid-contradicts) on standard error says so; --strict makes the exit status 3.\n"
      "Examples:\n"
      "  nadir evaluate disparity.png disparity_gt.png\n"
      "  nadir evaluate disparity.png disparity_gt.png --visible left\n"
      "  nadir evaluate disparity.png truth.png --truth-scale 64 --error-map errors.png --json\n"
      "  nadir evaluate result/elevation.png elevation_gt.png\n"
      "  nadir evaluate result scene\n"
      "  nadir evaluate result walk --plot heights.svg");
  command->callback([options, command] {
    options->given = givenOptions(*command);
    run(*options);
  });
}

}  // namespace nadir::tool
