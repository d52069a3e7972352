// nadir evaluate: how near a disparity picture comes to the truth.
#include <CLI/CLI.hpp>
#include <cmath>
#include <memory>

#include "chunks.hpp"
#include "commands.hpp"
#include "error.hpp"
#include "evaluation.hpp"
#include "files.hpp"
#include "pictures.hpp"
#include "plot.hpp"
#include "png.hpp"
#include "text.hpp"

namespace nadir::tool {

namespace {

struct Options {
  std::string disparity, truth, errorMap, visible;
  double scale = 0, truthScale = 0, errorRange = 2;
  bool json = false;
};

std::string table(const Evaluation& e, const Grid<float>& truth) {
  const double share =
      e.pixels == 0 ? std::nan("") : 100.0 * static_cast<double>(e.truth) / static_cast<double>(e.pixels);
  Table table;
  table.heading("pixels, " + sizeText(truth.width, truth.height), "");
  table.line("truth known", share, "% of all pixels", 2);
  table.line("density", 100 * e.density, "% of the pixels with truth have a value", 2);
  table.line("bad-0.5", 100 * e.bad05, "% of the pixels with both are off by more than 0.5 pixel", 2);
  table.line("bad-1", 100 * e.bad1, "% ... by more than 1 pixel", 2);
  table.line("bad-2", 100 * e.bad2, "% ... by more than 2 pixels", 2);
  table.gap();
  table.heading("error, disparity - truth", "");
  table.line("mean (bias)", e.mean, "pixels", 3);
  table.line("median", e.median, "pixels", 3);
  table.line("mean absolute", e.meanAbsolute, "pixels", 3);
  table.line("median absolute", e.medianAbsolute, "pixels", 3);
  table.line("root mean square", e.rms, "pixels", 3);
  return table.text();
}

// JSON has no NaN.
std::string jsonNumber(double value) { return std::isnan(value) ? "null" : format("%.9g", value); }

std::string json(const Evaluation& e) {
  std::string text = format("{\n  \"pixels\": %zu,\n  \"truth_pixels\": %zu,\n  \"compared_pixels\": %zu", e.pixels,
                            e.truth, e.compared);
  const std::pair<const char*, double> numbers[] = {{"density", e.density},
                                                    {"bad_0.5", e.bad05},
                                                    {"bad_1", e.bad1},
                                                    {"bad_2", e.bad2},
                                                    {"mean", e.mean},
                                                    {"median", e.median},
                                                    {"mean_absolute", e.meanAbsolute},
                                                    {"median_absolute", e.medianAbsolute},
                                                    {"rms", e.rms}};
  for (const auto& [name, value] : numbers) text += format(",\n  \"%s\": %s", name, jsonNumber(value).c_str());
  return text + "\n}\n";
}

Bytes errorMap(const Grid<float>& disparity, const Grid<float>& truth, double range) {
  const Grid<Rgb> picture = plot(errors(disparity, truth), {-range, range, blueRed, "pixels"});
  return encodePng(picture, {{"Description", "Disparity - truth in pixels, coloured; grey: no value or no truth."},
                             {"Software", software()}});
}

// Seen in a mirror the right picture is a left one.
Grid<float> visible(Grid<float> truth, const std::string& grid) {
  if (grid == "left") return visibleInRight(truth);
  mirror(truth);
  truth = visibleInRight(truth);
  mirror(truth);
  return truth;
}

void run(const Options& options) {
  const Grid<float> disparity = readDisparity(options.disparity, options.scale, 16);
  Grid<float> truth = readDisparity(options.truth, options.truthScale, 256);
  if (!options.visible.empty()) truth = visible(std::move(truth), options.visible);
  if (!sameSize(disparity, truth))
    throw Error(format("the disparity picture is %s pixels, the truth %s",
                       sizeText(disparity.width, disparity.height).c_str(),
                       sizeText(truth.width, truth.height).c_str()));
  OutputFiles files;
  if (!options.errorMap.empty()) files.write(options.errorMap, errorMap(disparity, truth, options.errorRange));
  const Evaluation evaluation = evaluate(disparity, truth);
  print(options.json ? json(evaluation) : table(evaluation, truth));
  files.commit();
}

}  // namespace

void addEvaluateCommand(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("evaluate", "Compare a disparity picture with the truth.");
  command->add_option("DISPARITY", options->disparity, "16-bit grey PNG of disparities, 0 for none")->required();
  command->add_option("TRUTH", options->truth, "The same of the true ones, of equal size and on the same view's grid")
      ->required();
  command
      ->add_option("--scale", options->scale,
                   "What one pixel of disparity is stored as (default: the file's own text nadir:scale, else 16)")
      ->check(CLI::PositiveNumber.description(""))
      ->type_name("N");
  command
      ->add_option("--truth-scale", options->truthScale,
                   "The same of the truth (default: the file's own text nadir:scale, else 256)")
      ->check(CLI::PositiveNumber.description(""))
      ->type_name("N");
  command
      ->add_option("--visible", options->visible,
                   "Leave out the pixels that the other picture does not show, as far as the truth tells; VIEW is the "
                   "picture that the truth belongs to, left or right (default: none are left out)")
      ->check(CLI::IsMember({"left", "right"}).description(""))
      ->type_name("VIEW");
  command
      ->add_option("--error-map", options->errorMap,
                   "PNG that receives a picture of the signed errors: blue too small, red too large, grey unknown")
      ->type_name("FILE");
  command
      ->add_option("--error-range", options->errorRange, "Error at the ends of the map's colours, pixels (default: 2)")
      ->check(CLI::PositiveNumber.description(""))
      ->type_name("N");
  command->add_flag("--json", options->json, "Print a JSON object; shares are fractions of 1, errors in pixels");
  command->footer(
      "density is the share of the pixels with a known truth that have a value; bad-N is the share of the\n"
      "pixels with both whose error exceeds N pixels; an error is disparity - truth. Examples:\n"
      "  nadir evaluate disparity.png disparity_gt.png\n"
      "  nadir evaluate disparity.png disparity_gt.png --visible left\n"
      "  nadir evaluate disparity.png truth.png --truth-scale 64 --error-map errors.png --json");
  command->callback([options] { run(*options); });
}

}  // namespace nadir::tool
