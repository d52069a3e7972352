// nadir preview: any disparity picture in colours, for instance the truth in the colours of a result.
#include <CLI/CLI.hpp>
#include <memory>

#include "tools/base/error.hpp"
#include "tools/commands/commands.hpp"
#include "tools/commands/options.hpp"
#include "tools/draw/disparity_plot.hpp"
#include "tools/files/output_files.hpp"
#include "tools/pictures/pictures.hpp"

namespace nadir::tool {

namespace {

struct PreviewOptions {
  std::string input, output;
  double scale = 0;
  std::vector<double> range;
};

void run(const PreviewOptions& options) {
  const Grid<float> disparity = readDisparity(options.input, options.scale, 16);
  std::pair<double, double> range = usualRange(disparity);
  if (!options.range.empty()) range = {options.range[0], options.range[1]};
  if (!(range.first < range.second)) throw Error("the range of colours must rise from its first number to its second");
  OutputFiles files({options.input});
  files.write(options.output, encodeDisparityPlot(disparity, range));
  files.commit();
}

}  // namespace

void addPreviewCommand(CLI::App& app) {
  auto options = std::make_shared<PreviewOptions>();
  CLI::App* command = app.add_subcommand("preview", "Draw a disparity picture in colours with a scale in pixels.");
  command->add_option("DISPARITY", options->input, "16-bit grey PNG of disparities, 0 for none")->required();
  command->add_option("-o,--output", options->output, "PNG that receives the preview")
      ->required()
      ->check(endingIn({".png"}))
      ->type_name("FILE");
  command
      ->add_option("--range", options->range,
                   "Disparities at the two ends of the colours, pixels (default: those of the picture without the "
                   "lowest 3 and the highest 1 percent)")
      ->expected(2)
      ->check(numberFrom(-1e6, 1e6).check)
      ->type_name("LOW HIGH");
  addScaleOption(*command, options->scale);
  command->footer(
      "Example, the truth in the colours of a result:\n"
      "  nadir preview disparity_gt.png --scale 256 --range 6 52 -o truth.preview.png");
  command->callback([options] { run(*options); });
}

}  // namespace nadir::tool
