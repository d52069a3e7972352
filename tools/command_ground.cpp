// nadir ground: from a rectified pair to heights above the ground.
#include <nadir/nadir.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "chunks.hpp"
#include "commands.hpp"
#include "disparity_plot.hpp"
#include "error.hpp"
#include "ground_report.hpp"
#include "map_plot.hpp"
#include "pair_input.hpp"
#include "pictures.hpp"
#include "ply.hpp"
#include "png.hpp"

namespace nadir::tool {

namespace {

struct Options {
  std::string left, right, camera, folder, mask, disparity;
  std::string grid = "left";
  bool noPostprocessing = false;
  uint32_t uniqueness = MatchOptions().uniqueness;
  double disparityScale = 0;
  CellRule rule;
};

void checkSize(const Pair& pair, const Camera& camera, const Options& options) {
  if (pair.left.width == camera.widthPx && pair.left.height == camera.heightPx) return;
  throw Error(format("the pictures are %s pixels, but the camera of %s takes pictures of %s",
                     sizeText(pair.left.width, pair.left.height).c_str(), options.camera.c_str(),
                     sizeText(camera.widthPx, camera.heightPx).c_str()));
}

Grid<uint16_t> matched(const Options& options, View view, Pair pair, StageTimes& times) {
  const MatchOptions settings{view, options.uniqueness, !options.noPostprocessing, readMaskFor(pair, options.mask)};
  return match(std::move(pair), settings, times).disparity;
}

Grid<float> givenDisparities(const Options& options, const Pair& pair) {
  Grid<float> disparity = readDisparity(options.disparity, options.disparityScale, SGM_DISP_SCALE);
  if (!sameSize(disparity, pair.left))
    throw Error(format("the disparity picture %s is %s pixels, the pictures are %s", options.disparity.c_str(),
                       sizeText(disparity.width, disparity.height).c_str(),
                       sizeText(pair.left.width, pair.left.height).c_str()));
  return disparity;
}

// From disparities to heights.
void measure(GroundResult& r, const Grid<uint16_t>& picture, StageTimes& times) {
  const StereoCtx context = stereoContext(r.camera, r.view);
  const auto shift = static_cast<float>(r.camera.columnShiftPx);
  r.points = times.measure("world points", [&] { return worldPoints(r.disparity, picture, context, shift); });
  r.frame = mapFrame(context, r.camera);
  r.map = times.measure("elevation map",
                        [&] { return elevationMap(r.points, r.frame, context.orientation.height, r.rule); });
  r.plane = times.measure("ground plane", [&] { return fitGroundPlane(r.points, context); });
}

GroundResult work(const Options& options, StageTimes& times) {
  GroundResult r;
  r.camera = readCamera(options.camera);
  r.view = options.grid == "left" ? View::left : View::right;
  r.rule = options.rule;
  const Pair pair = times.measure("reading", [&] { return readPair(options.left, options.right); });
  checkSize(pair, r.camera, options);
  if (options.disparity.empty()) {
    r.matched = matched(options, r.view, pair, times);
    r.disparity = inPixels(r.matched, SGM_DISP_SCALE);
  } else {
    r.disparity = givenDisparities(options, pair);
  }
  measure(r, r.view == View::left ? pair.left : pair.right, times);
  return r;
}

TextChunks mapTexts(const GroundResult& r) {
  TextChunks texts = elevationTexts(r.frame.cells.cellSizeX, r.frame.corner.x, r.frame.corner.y);
  texts["nadir:percentile"] = format("%g", r.rule.percentile);
  return texts;
}

void writeOutputs(const std::string& folder, const GroundResult& r, OutputFiles& files) {
  const std::string summary = groundJson(r);
  files.makeFolder(folder);
  if (!r.matched.pixels.empty())
    files.write(folder + "/disparity.png", encodePng(r.matched, disparityTexts(SGM_DISP_SCALE, nameOf(r.view))));
  files.write(folder + "/elevation.png", encodePng(r.map.heights, mapTexts(r)));
  files.write(folder + "/elevation.preview.png", encodeMapPlot(r.map.heights, r.frame));
  files.write(folder + "/points.ply", encodePly(r.points, static_cast<float>(r.camera.heightMm)));
  files.write(folder + "/summary.json", Bytes(summary.begin(), summary.end()));
}

void run(const Options& options) {
  StageTimes times;
  const GroundResult result = work(options, times);
  OutputFiles files;
  times.measure("writing", [&] { writeOutputs(options.folder, result, files); });
  print(groundTable(result, times));
  files.commit();
}

void addInputs(CLI::App& command, Options& options) {
  command.add_option("LEFT", options.left, "Left picture, rectified, as for nadir disparity")->required();
  command.add_option("RIGHT", options.right, "Right picture of the same size")->required();
  command.add_option("--camera", options.camera, "Camera file; nadir camera import makes one")
      ->required()
      ->type_name("FILE");
  command
      .add_option("-o,--output", options.folder,
                  "Receives disparity.png, elevation.png (16 bits, mm above the ground: 0 unseen, seen cells 1 to "
                  "65535), elevation.preview.png (in colours), points.ply (mm), summary.json; made unless it exists")
      ->required()
      ->type_name("FOLDER");
}

void addMapOptions(CLI::App& command, Options& options) {
  command
      .add_option("--percentile", options.rule.percentile,
                  format("How the points of one cell become its height: this percentile of their heights; 50 is the "
                         "median, 100 the highest point (default: %g)",
                         options.rule.percentile))
      ->check(CLI::Range(1.0, 100.0).description(""))
      ->type_name("P");
  command
      .add_option("--min-points", options.rule.minPoints,
                  format("Cells with fewer points stay unseen (default: %u)", options.rule.minPoints))
      ->check(CLI::Range(1, 1000000).description(""))
      ->type_name("N");
}

void addMatchOptions(CLI::App& command, Options& options) {
  CLI::Option* given =
      command
          .add_option("--disparity", options.disparity,
                      "Do not match: take these disparities of the view, a 16-bit grey PNG with 0 for none")
          ->type_name("FILE");
  command
      .add_option("--disparity-scale", options.disparityScale,
                  "What one pixel of disparity is stored as there (default: the file's own text nadir:scale, else 16)")
      ->check(CLI::PositiveNumber.description(""))
      ->needs(given)
      ->type_name("N");
  command
      .add_option("--grid", options.grid,
                  "View that is measured, left or right; its camera is the world's origin (default: left)")
      ->check(CLI::IsMember({"left", "right"}).description(""))
      ->type_name("VIEW");
  command
      .add_option("--uniqueness", options.uniqueness,
                  format("As for nadir disparity, 0 to 128 (default: %u)", options.uniqueness))
      ->check(CLI::Range(0, 128).description(""))
      ->excludes(given)
      ->type_name("N");
  command
      .add_option("--mask", options.mask,
                  "8-bit grey picture of that view's size: pixels that are not 0 are left out (default: none)")
      ->excludes(given)
      ->type_name("FILE");
  command
      .add_flag("--raw,--no-postproc", options.noPostprocessing,
                "Leave out the 3x3 median and the removal and filling of single pixels")
      ->excludes(given);
}

}  // namespace

void addGroundCommand(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command =
      app.add_subcommand("ground", "Match a pair and map heights above the ground; write map, points, summary.");
  addInputs(*command, *options);
  addMapOptions(*command, *options);
  addMatchOptions(*command, *options);
  command->footer(
      "World x points to the picture's right, y to its lower edge, z down; the origin is the camera. The map shows\n"
      "the ground from above, row 0 at the smallest y. The fitted ground plane tells whether the camera file's mount\n"
      "is right. Example:\n"
      "  nadir ground left.png right.png --camera camera.toml -o result");
  command->callback([options] { run(*options); });
}

}  // namespace nadir::tool
