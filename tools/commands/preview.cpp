// nadir preview: what a picture holds, disparities, heights, regions or intensities, where people can see it or as
// numbers.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <memory>

#include "tools/base/error.hpp"
#include "tools/base/known_values.hpp"
#include "tools/base/text.hpp"
#include "tools/commands/commands.hpp"
#include "tools/commands/options.hpp"
#include "tools/draw/disparity_plot.hpp"
#include "tools/draw/plot.hpp"
#include "tools/files/output_files.hpp"
#include "tools/pictures/arrays.hpp"
#include "tools/pictures/chunks.hpp"
#include "tools/pictures/formats.hpp"
#include "tools/pictures/pictures.hpp"
#include "tools/report/map_plot.hpp"
#include "tools/report/region_plot.hpp"

namespace nadir::tool {

namespace {

struct PreviewOptions {
  std::string input, output;
  double scale = 0;
  std::vector<double> range;
};

std::pair<double, double> rangeFor(const PreviewOptions& options, const Grid<float>& values) {
  if (options.range.empty()) return usualRange(values);
  return {options.range[0], options.range[1]};
}

Bytes disparityPreview(const PreviewOptions& options) {
  const Grid<float> disparity = readDisparity(options.input, options.scale, 16);
  return encodeDisparityPlot(disparity, rangeFor(options, disparity));
}

Bytes mapPreview(const PreviewOptions& options) {
  const HeightPicture map = readHeights(options.input);
  return encodeMapPlot(map.heights, map.place, rangeFor(options, map.heights));
}

Bytes heightPreview(const PreviewOptions& options) {
  const Grid<float> heights = readHeights(options.input).heights;
  const auto [low, high] = rangeFor(options, heights);
  return encodePng(plot(heights, {low, high, turbo, "mm"}),
                   pictureTexts("Heights above the ground in mm, coloured; grey: unknown."));
}

// From black to white between the ends of the range; what has no data is black.
Bytes intensityPreview(const PreviewOptions& options) {
  const Grid<float> values = unpacked(readGrey(options.input).pixels, 1);
  const auto [low, high] = rangeFor(options, values);
  Grid<uint8_t> grey(values.width, values.height);
  for (size_t i = 0; i < values.pixels.size(); ++i) {
    const double level = (values.pixels[i] - low) / (high - low) * 255;
    if (level > 0) grey.pixels[i] = static_cast<uint8_t>(std::lround(std::min(level, 255.0)));
  }
  return encodePng(grey, pictureTexts(format("Intensities, %g and less in black, %g and more in white.", low, high)));
}

Bytes regionPreview(const PreviewOptions& options) { return encodeLabelMap(readLabels(options.input)); }

Bytes disparityNumbers(const PreviewOptions& options) {
  return encodeNpy(readDisparity(options.input, options.scale, 16));
}

Bytes heightNumbers(const PreviewOptions& options) { return encodeNpy(readHeights(options.input).heights); }

Bytes regionNumbers(const PreviewOptions& options) { return encodeNpy(readLabels(options.input).labels); }

Bytes intensityNumbers(const PreviewOptions& options) {
  const GreyPicture grey = readGrey(options.input);
  if (grey.bits == 16) return encodeNpy(grey.pixels);
  Grid<uint8_t> narrow(grey.pixels.width, grey.pixels.height);
  std::transform(grey.pixels.pixels.begin(), grey.pixels.pixels.end(), narrow.pixels.begin(),
                 [](uint16_t level) { return static_cast<uint8_t>(level); });
  return encodeNpy(narrow);
}

// How a kind of picture is drawn, and written as numbers.
struct Drawing {
  const char* what;  // it holds, in a sentence
  bool hasRange;
  Bytes (*draw)(const PreviewOptions&);
  Bytes (*numbers)(const PreviewOptions&);
};

Drawing drawingOf(PictureKind kind) {
  switch (kind) {
    case PictureKind::disparities: return {"disparities", true, disparityPreview, disparityNumbers};
    case PictureKind::elevationMap: return {"an elevation map", true, mapPreview, heightNumbers};
    case PictureKind::heights: return {"heights", true, heightPreview, heightNumbers};
    case PictureKind::regionMap: return {"a map of regions", false, regionPreview, regionNumbers};
    default: return {"intensities", true, intensityPreview, intensityNumbers};
  }
}

bool numbersWanted(const PreviewOptions& options) { return endingOf(options.output) == ".npy"; }

// Files from elsewhere do not say that they hold disparities; --scale does.
PictureKind shownKind(const PreviewOptions& options) {
  const PictureKind own = pictureKind(options.input);
  if (own == PictureKind::colours && !numbersWanted(options))
    throw Error(options.input +
                " is in colours, which can be looked at as they are: nadir preview draws disparities, maps of heights "
                "and regions, and grey pictures");
  const bool fromElsewhere = own == PictureKind::intensities && options.scale > 0 && readGrey(options.input).bits == 16;
  return fromElsewhere ? PictureKind::disparities : own;
}

void run(const PreviewOptions& options) {
  if (!options.range.empty() && !(options.range[0] < options.range[1]))
    throw Error("the range of colours must rise from its first number to its second");
  const PictureKind kind = shownKind(options);
  const Drawing drawing = drawingOf(kind);
  if (options.scale > 0 && kind != PictureKind::disparities)
    throw Error(
        format("--scale is for disparities, but %s holds %s: leave it out", options.input.c_str(), drawing.what));
  if (!options.range.empty() && numbersWanted(options))
    throw Error("--range is for colours, but " + options.output + " receives numbers: leave it out");
  if (!options.range.empty() && !drawing.hasRange)
    throw Error(
        format("--range is for measurements, but %s holds %s: leave it out", options.input.c_str(), drawing.what));
  OutputFiles files({options.input});
  files.write(options.output, numbersWanted(options) ? drawing.numbers(options) : drawing.draw(options));
  files.commit();
  print(format("wrote %s: %s\n", options.output.c_str(), drawing.what));
}

}  // namespace

void addPreviewCommand(CLI::App& app) {
  auto options = std::make_shared<PreviewOptions>();
  CLI::App* command = app.add_subcommand(
      "preview",
      "Draw what a picture holds: disparities, heights and maps in colours with a scale, regions with their numbers, "
      "intensities from black to white.");
  command
      ->add_option("PICTURE", options->input,
                   "Grey picture; its own texts tell what it holds, and one without any holds intensities, or "
                   "disparities where --scale is given")
      ->required();
  command
      ->add_option(
          "-o,--output", options->output,
          "PNG that receives the preview; or NPY that receives the numbers: pixels and mm (nan where there is none), "
          "numbers of regions, intensities of 8 or 16 bits")
      ->required()
      ->check(endingIn({".png", ".npy"}))
      ->type_name("FILE");
  command
      ->add_option("--range", options->range,
                   "Values at the two ends of the colours: pixels, mm or intensities (default: those of the picture "
                   "without the lowest 3 and the highest 1 percent)")
      ->expected(2)
      ->check(numberFrom(-1e6, 1e6).check)
      ->type_name("LOW HIGH");
  addScaleOption(*command, options->scale);
  command->footer(
      "Examples, the truth in the colours of a result, and a map:\n"
      "  nadir preview disparity_gt.png --scale 256 --range 6 52 -o truth.preview.png\n"
      "  nadir preview result/elevation.png -o map.png\n"
      "  nadir preview left.jpg -o left.npy");
  command->callback([options] { run(*options); });
}

}  // namespace nadir::tool
