// nadir ground: from a rectified pair to heights above the ground, and what stands there.
#include <nadir/stereo.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <filesystem>
#include <functional>
#include <memory>

#include "tools/base/error.hpp"
#include "tools/base/known_values.hpp"
#include "tools/base/text.hpp"
#include "tools/base/warnings.hpp"
#include "tools/commands/calibration_options.hpp"
#include "tools/commands/commands.hpp"
#include "tools/commands/options.hpp"
#include "tools/draw/plot.hpp"
#include "tools/files/encodings.hpp"
#include "tools/pictures/arrays.hpp"
#include "tools/pictures/chunks.hpp"
#include "tools/pictures/pictures.hpp"
#include "tools/pictures/png.hpp"
#include "tools/report/ground_json.hpp"
#include "tools/report/ground_report.hpp"
#include "tools/report/map_plot.hpp"
#include "tools/report/map_texts.hpp"
#include "tools/report/ply.hpp"
#include "tools/report/products.hpp"
#include "tools/report/region_plot.hpp"
#include "tools/report/setup_json.hpp"
#include "tools/road/presets.hpp"
#include "tools/road/road.hpp"
#include "tools/road/timed_stages.hpp"
#include "tools/sequence/ground_sequence.hpp"

namespace nadir::tool {

namespace {

struct GroundOptions {
  RoadOptions road;
  std::string left, right, folder, write;
  bool sideBySide = false, strict = false, noMaps = false, json = false, dryRun = false;
  SequenceOptions sequence;
};

struct Output {
  Product product;
  const char* name;
  std::function<Bytes()> bytes;
};

std::vector<Output> outputsOf(const Road& road, const PairResult& r) {
  const double percentile = road.settings.percentile;
  const auto disparity = [&] {
    return encodePng(gridOf<uint16_t>(r.findings.disparity), disparityTexts(SGM_DISP_SCALE, road.options.match.view));
  };
  const auto map = [&, percentile] {
    return encodePng(gridOf<uint16_t>(r.findings.heights), mapTexts(road.context, percentile));
  };
  const auto mapPreview = [&] {
    const Grid<float> heights = unpacked(gridOf<uint16_t>(r.findings.heights), 1);
    return encodeMapPlot(heights, placeOf(road.context), usualRange(heights));
  };
  const auto points = [&] { return encodePly(r.points, r.picture, static_cast<float>(road.camera.heightMm)); };
  const auto regions = [&, percentile] {
    return encodePng(gridOf<uint16_t>(r.findings.labels), regionTexts(road.context, percentile));
  };
  const auto pixels = [&] { return unpacked(gridOf<uint16_t>(r.findings.disparity), SGM_DISP_SCALE); };
  const auto heights = [&] { return unpacked(gridOf<uint16_t>(r.findings.heights), 1); };
  std::vector<Output> outputs;
  if (r.findings.disparity.data) outputs.push_back({Product::disparity, "disparity.png", disparity});
  outputs.push_back({Product::map, "elevation.png", map});
  outputs.push_back({Product::preview, "elevation.preview.png", mapPreview});
  outputs.push_back({Product::points, "points.ply", points});
  outputs.push_back({Product::npy, "elevation.npy", [=] { return encodeNpy(heights()); }});
  outputs.push_back({Product::pfm, "elevation.pfm", [=] { return encodePfm(heights()); }});
  if (r.findings.disparity.data) {
    outputs.push_back({Product::npy, "disparity.npy", [=] { return encodeNpy(pixels()); }});
    outputs.push_back({Product::pfm, "disparity.pfm", [=] { return encodePfm(pixels()); }});
  }
  if (!road.findsRegions()) return outputs;
  outputs.push_back({Product::regions, "regions.png", regions});
  outputs.push_back({Product::preview, "regions.preview.png", [&] { return encodeRegionMap(road, r); }});
  outputs.push_back({Product::preview, "regions.picture.png", [&] { return encodeRegionPicture(road, r); }});
  return outputs;
}

// Throws for a file that was asked for and that this run has not.
void checkProducts(const GroundOptions& options) {
  const auto asks = [products = productsNamed(options.write, Source::pair)](Product p) {
    return products.count(p) > 0;
  };
  if (options.write == "all") return;
  if (asks(Product::regions) && options.road.noRegions) throw Error("--write regions: --no-regions leaves them out");
  if (asks(Product::disparity) && !options.road.disparity.empty())
    throw Error("--write disparity: with --disparity nothing is matched");
}

Products productsOf(const GroundOptions& options, Source source) {
  return options.write.empty() ? usualProducts(source) : productsNamed(options.write, source);
}

void writeOutputs(const GroundOptions& options, const Road& road, const PairResult& r, const std::string& summary,
                  OutputFiles& files) {
  const Products wanted = productsOf(options, Source::pair);
  std::vector<Encoding> encodings;
  for (const Output& output : outputsOf(road, r))
    if (wanted.count(output.product) > 0) encodings.push_back({options.folder + "/" + output.name, output.bytes});
  files.makeFolder(options.folder);
  writeAll(encodings, files);
  files.write(options.folder + "/summary.json", bytesOf(summary));
  files.commit();
}

std::string pictureToLookAt(const GroundOptions& options, const Road& road) {
  if (productsOf(options, Source::pair).count(Product::preview) == 0) return "";
  return options.folder + (road.findsRegions() ? "/regions.picture.png" : "/elevation.preview.png");
}

// Those of the library's, and what given disparities say of themselves.
Warnings allWarnings(const RoadOptions& options, const NadirFindings& findings) {
  Warnings warnings = warningsOf(findings);
  if (!options.disparity.empty())
    for (const Warning& warning : gridWarnings(options.disparity, options.match.view, "--grid"))
      warnings.push_back(warning);
  return warnings;
}

// Says what its calibration was taken for.
Road toldRoad(const RoadOptions& options) {
  Road road = roadOf(options);
  if (road.calibration)
    for (const std::string& remark : road.calibration->remarks) say(remark);
  if (road.options.scaleDown > 1) say(scaleDownSentence(road));
  return road;
}

void runOnPair(const GroundOptions& options) {
  checkPairNames(options.left, options.right, options.sideBySide);
  checkProducts(options);
  StageTimes times;
  const Road road = toldRoad(options.road);
  PairResult result;
  work(road, *road.handle, options.left, options.right, times, result);
  addPoints(road, result, times);
  const Warnings warnings = allWarnings(options.road, result.findings);
  std::vector<std::string> inputs = options.road.calibration.files;
  inputs.insert(inputs.end(), {options.left, options.right, options.road.camera, options.road.areas,
                               options.road.disparity, options.road.mask});
  OutputFiles files(inputs);
  const std::string summary = groundJson(road, result, warnings);
  times.measure("writing", [&] { writeOutputs(options, road, result, summary, files); });
  print(options.json ? summary
                     : groundTable(road, result, times) +
                           writtenLine("the results into " + options.folder, pictureToLookAt(options, road)));
  tell(warnings);
  if (options.strict) throwIfAny(warnings);
}

void runOnSequence(const GroundOptions& options) {
  SequenceOptions sequence = options.sequence;
  sequence.folder = options.folder;
  sequence.strict = options.strict;
  sequence.json = options.json;
  sequence.rule.products = options.noMaps ? Products() : productsOf(options, Source::sequence);
  if (sequence.rule.products == Products{Product::average})
    throw Error("--write average needs map too: a resumed run makes its first means of the maps that are there");
  if (!options.road.disparity.empty()) throw Error("--disparity is for one pair, not for a sequence");
  const Road road = toldRoad(options.road);
  groundSequence(FrameSource(options.left, options.right, options.sideBySide, options.road.camera), road, sequence);
}

void printSetup(const GroundOptions& options) {
  Json setup = setupJson(roadOf(options.road));
  setup["track"] = setupJson(options.sequence.rule.track);
  print(setup.dump(2) + "\n");
}

void run(const GroundOptions& options, bool sequenceAsked) {
  if (options.dryRun) return printSetup(options);
  if (options.sideBySide) checkPairNames(options.left, options.right, true);
  if (FrameSource::isSequence(options.left)) return runOnSequence(options);
  if (options.right.empty() && !std::filesystem::exists(options.left))
    throw Error("there is no file or folder " + options.left);
  if (sequenceAsked)
    throw Error(options.left +
                " is one picture: --fps, --times, --average, --track-noise, --frames, --join, --threads, --resume "
                "and --no-maps are for sequences");
  runOnPair(options);
}

void addInputs(CLI::App& command, GroundOptions& options) {
  command
      .add_option("LEFT", options.left,
                  "Left picture, rectified, as for nadir disparity. Or of a sequence: a folder that holds the pictures "
                  "in left and right, each with its frame's number at the end of its name (others are left out); a "
                  "folder of the left camera's; a glob in quotes, 'left/*.png'; a pattern, left/%06d.png; an index, a "
                  ".csv whose rows name left, right, time and camera")
      ->required();
  command.add_option("RIGHT", options.right,
                     "Right picture of the same size, or the folder, glob or pattern of the right ones: those with "
                     "the number of a left one");
  addSideBySideOption(command, options.sideBySide,
                      "LEFT holds both pictures of a pair in one, left | right, or is a folder, a glob or a pattern of "
                      "such");
  command.add_option("--camera", options.road.camera, "Camera file; nadir camera import makes one")
      ->required()
      ->type_name("FILE");
  addCalibrationOptions(command, options.road.calibration,
                        "Rectify the pictures on the way, with this calibration, as nadir rectify does (default: the "
                        "camera file's own lenses, if it has them)");
  command.add_option("-o,--output", options.folder, "Receives the files below; made unless it exists")
      ->required()
      ->type_name("FOLDER");
}

void addMapOptions(CLI::App& command, RoadOptions& options) {
  addNumber(command, "--percentile", options.percentile, numberFrom(1, 100),
            "How the points of one cell become its height: this percentile of their heights; 50 is the median, 100 the "
            "highest point; {range} (default: 90)",
            "P");
  addNumber(command, "--min-points", options.minPoints, wholeNumberFrom(1, 1000000),
            "Cells with fewer points stay unseen, {range} (default: {default})", "N");
  addNumber(command, "--fill-holes", options.fillHolesM2, numberFrom(0, 1e6),
            "Fill patches of unseen cells up to this area from the heights around them (default: {default}, fill none)",
            "M2");
}

void addPresetOption(CLI::App& command, RoadOptions& options) {
  std::vector<std::string> names;
  std::string meanings;
  for (const Preset& preset : presets()) {
    names.push_back(preset.name);
    meanings += (meanings.empty() ? "" : "; ") + preset.name + ": " + optionsOf(preset);
  }
  const std::string help = "What is looked for, short for other options, which may still be given: " + meanings;
  command.add_option("--for", options.preset, help)->check(CLI::IsMember(names).description(""))->type_name("THINGS");
}

void addRegionOptions(CLI::App& command, RoadOptions& options) {
  CLI::Option* without =
      command.add_flag("--no-regions", options.noRegions,
                       "Stop at the elevation map, which may then have more than 128 x 128 cells; areas are not read");
  addNumber(command, "--min-height", options.minHeightMm, numberFrom(0, 65534),
            "Regions are cells higher than this (default: one and a half sides of a cell, 60 mm for cells of 40 mm)",
            "MM")
      ->excludes(without);
  addNumber(command, "--max-step", options.maxStepMm, numberFrom(0, 65535),
            "Neighbouring cells that differ in height by more than this are not joined (default: the side of a cell, a "
            "slope of 45 degrees)",
            "MM")
      ->excludes(without);
  addNumber(command, "--min-area", options.minAreaM2, numberFrom(0, 1e6),
            "Smaller regions are dropped (default: 20 cells, 0.032 m2 for cells of 40 mm; with --check none 30 cells)",
            "M2")
      ->excludes(without);
  addNumber(command, "--dip", options.dipMm, numberFrom(0, 65535),
            "Part a region where it sinks by so much between two tops, as between people who touch (default: 0, "
            "nothing is parted)",
            "MM")
      ->excludes(without);
  command
      .add_option("--areas", options.areas,
                  "Areas of interest, TOML, besides those of the camera file (default: those alone)")
      ->excludes(without)
      ->type_name("FILE");
}

CLI::Option* addTimesOption(CLI::App& command, TimeRule& rule) {
  const auto choose = [&rule](const std::string& word) { rule.unit = timeUnitNamed(word); };
  return command
      .add_option_function<std::string>("--times", choose,
                                        "What the numbers in the frames' names are: frames, which --fps makes times "
                                        "of; or ns, us, ms, s of a clock (default: guessed from the first frames)")
      ->check(CLI::IsMember(timeUnitNames()).description(""))
      ->type_name("UNIT");
}

void addWriteOption(CLI::App& command, std::string& words) {
  const std::string help =
      "What to write beside summary.json or frames.jsonl, words with commas between them: " + productNames() +
      "; a sequence has map and average alone (default: all but points, npy and pfm)";
  command.add_option("--write", words, help)->check(CLI::Validator(mistakeInProducts, ""))->type_name("WORDS");
}

// Throws where the text is no FROM:TO.
FrameRange frameRange(const std::string& text) {
  FrameRange range{};
  const char* end = text.data() + text.size();
  const auto from = std::from_chars(text.data(), end, range.begin);
  const bool parted = from.ec == std::errc() && from.ptr != end && *from.ptr == ':';
  const auto to = parted ? std::from_chars(from.ptr + 1, end, range.end) : from;
  if (!parted || to.ec != std::errc() || to.ptr != end || range.end < range.begin)
    throw CLI::ValidationError("--frames", text + " is not FROM:TO with whole numbers, FROM no larger than TO");
  return range;
}

CLI::Option* addFramesOption(CLI::App& command, std::optional<FrameRange>& range) {
  const auto choose = [&range](const std::string& text) { range = frameRange(text); };
  return command
      .add_option_function<std::string>("--frames", choose,
                                        "Work on these alone, counted from 0 in their order, TO left out: a part of a "
                                        "run, for --join. Averages begin with what they hold in the whole run; heights "
                                        "are not followed (default: all frames)")
      ->type_name("FROM:TO");
}

// Returns whether one of them is given.
std::function<bool()> addSequenceOptions(CLI::App& command, GroundOptions& ofCommand) {
  SequenceOptions& options = ofCommand.sequence;
  std::vector<CLI::Option*> all;
  const auto number = [&](const char* name, auto& value, const NumberRange& range, const char* help, const char* unit) {
    all.push_back(addNumber(command, name, value, range, help, unit));
  };
  SequenceRule& rule = options.rule;
  number("--fps", rule.times.framesPerSecond, numberFrom(0.001, 100000),
         "Frames per second of a sequence whose names count its frames, {range} (default: {default})", "RATE");
  all.back()->each([&rule](const std::string&) { rule.times.rateGiven = true; });
  all.push_back(addTimesOption(command, rule.times)->excludes(all.back()));
  number("--average", rule.track.average_frames, wholeNumberFrom(1, 1000),
         "Frames in the window that the averaged maps are means of, {range} (default: {default})", "N");
  number("--track-noise", rule.track.noise_mm, numberFrom(0.1, 10000),
         "How uncertain a frame's height in an area is at least, standard deviation, {range} (default: {default})",
         "MM");
  all.push_back(addFramesOption(command, rule.range));
  all.push_back(command
                    .add_option("--join", options.join,
                                "Map nothing: join the lines of the runs with --frames that FOLDER's folders hold, "
                                "without a gap from the first frame on, and follow heights through them")
                    ->excludes(all.back())
                    ->type_name("FOLDER"));
  all.push_back(addThreadsOption(command, options.threads,
                                 "Frames worked on at a time, {range} (default: one for each processor)"));
  all.push_back(command.add_flag("--resume", options.resume, "Go on where an interrupted run has ended, or begin"));
  all.push_back(
      command.add_flag("--no-maps", ofCommand.noMaps, "Write frames.jsonl alone, not the maps of every frame"));
  all.back()->excludes("--write");
  return [all] { return std::any_of(all.begin(), all.end(), [](const CLI::Option* o) { return o->count() > 0; }); };
}

void addMatchOptions(CLI::App& command, RoadOptions& options) {
  CLI::Option* given =
      command
          .add_option("--disparity", options.disparity,
                      "Do not match: take these disparities of the view, a 16-bit grey PNG with 0 for none")
          ->type_name("FILE");
  addNumber(command, "--disparity-scale", options.disparityScale, positiveNumber(),
            "What one pixel of disparity is stored as there (default: the file's own text nadir:scale, else 16)", "N")
      ->needs(given);
  addViewOption(command, "--grid", options.match.view,
                "View that is measured, left or right; its camera is the world's origin (default: left)");
  addUniquenessOption(command, options.match.uniqueness,
                      "As for nadir disparity, {range} (default: 48, beside checks 40)")
      ->excludes(given);
  const char* range =
      "The largest disparity that is found, pixels: 61; 122, which matches pictures of half the size too; 244, and of "
      "a quarter; auto, the least that measures things of --tallest all over the map (default: {default})";
  for (CLI::Option* option : addAccuracyOptions(command, options.match, rangeWords(), range)) option->excludes(given);
  addNumber(command, "--tallest", options.tallestMm, numberFrom(0, 65534),
            "Height of the tallest things, for --range auto, {range} (default: 2000)", "MM")
      ->excludes(given);
  addMaskOption(command, options.mask,
                "8-bit grey picture of that view's size: pixels that are not 0 are left out (default: none)")
      ->excludes(given);
  addRawOption(command, options.match.noPostprocessing)->excludes(given);
  addScaleDownOption(command, options.scaleDown,
                     "Make both pictures N times smaller first: 2, 4, 8 and so on; auto, until --range suffices for "
                     "things of --tallest. Areas in pixels and the mask stay those of the pictures as they are; all "
                     "that is written is of the smaller ones (default: 1)");
}

}  // namespace

void addGroundCommand(CLI::App& app) {
  auto options = std::make_shared<GroundOptions>();
  CLI::App* command =
      app.add_subcommand("ground", "Map heights above the ground and find what stands there and in areas of interest.");
  addInputs(*command, *options);
  addPresetOption(*command, options->road);
  addMapOptions(*command, options->road);
  addRegionOptions(*command, options->road);
  addMatchOptions(*command, options->road);
  addStrictOption(*command, options->strict);
  addJsonOption(*command, options->json, "of a pair it is summary.json");
  addDryRunOption(*command, options->dryRun,
                  "the camera, the settings, areas, rectifiers and what tracks are made with");
  addWriteOption(*command, options->write);
  const std::function<bool()> sequenceAsked = addSequenceOptions(*command, *options);
  command->footer(
      "Files, with the words of --write:\n"
      "  elevation.png           map: the elevation map, 16 bits: mm above the ground, 0 unseen, seen cells 1 to "
      "65535\n"
      "  elevation.preview.png   preview: the same in colours, with its axes in mm\n"
      "  regions.png             regions: the region of each cell of the map, 16 bits, 0 none\n"
      "  regions.preview.png     preview: regions and areas of interest on the elevation map\n"
      "  regions.picture.png     preview: the same on the measured picture\n"
      "  disparity.png           disparity: pixels x 16, 0 none\n"
      "  points.ply              points: the measured points, mm; it and those below are written where they are named\n"
      "  elevation.npy/.pfm      npy, pfm: the elevation map as floating-point mm, NaN or infinity unseen\n"
      "  disparity.npy/.pfm      npy, pfm: disparities as floating-point pixels, NaN or infinity for none\n"
      "  summary.json            always: every region and what stands in every area, in mm and m2, warnings and how "
      "far\n"
      "                          the result can be trusted; see docs/ground.md\n"
      "\nFiles of a sequence, written frame by frame:\n"
      "  frames.jsonl            always: a line of JSON per frame: regions, areas, the height in each area, tracked\n"
      "                          from frame to frame, warnings, the mount's drift; see docs/sequences.md\n"
      "  elevation/NAME.png      map: the frame's map\n"
      "  average/NAME.png        average: cell by cell the mean of the last maps, where more than half of them have a "
      "height\n"
      "  run.json                always: every setting in force, which --resume compares\n"
      "Killed at any time, or when the power is cut, a sequence keeps what frames.jsonl tells of, and --resume goes "
      "on\n"
      "there. Runs with --frames into folders of one folder may be done anywhere, and --join makes one of them.\n"
      "A picture has at most 2^25 pixels and a file 256 MiB; SECURITY.md has all limits.\n"
      "\nExit status: 0 done; 3 done, but not all of it can be relied on: a frame that could not be used was named "
      "and\n"
      "skipped, or with --strict there was a warning; 1 failed, 2 wrong usage, 130 a sequence ended by Ctrl-C.\n"
      "A warning says why a result may not be relied on, on standard error and in summary.json or frames.jsonl: "
      "pictures\n"
      "too dark, overexposed, exchanged or twice the same, little that can be matched, things nearer than the range\n"
      "of disparities, ground that lies elsewhere than the camera file says, or below it, a map beside the view.\n"
      "docs/trust.md explains each. Where all is well there is none.\n"
      "\nAn area of interest is a polygon of 3 to 100 corners, in the camera file or a file for --areas:\n"
      "  [[area]]\n"
      "  name = \"door\"\n"
      "  pixels = [[220, 90], [410, 90], [450, 300], [190, 300]]   # on the measured picture, where the ground shows\n"
      "  [[area]]\n"
      "  name = \"table\"\n"
      "  ground_mm = [[-500, -1200], [500, -1200], [500, -400]]    # world x, y\n"
      "  min_height_mm = 300    # in this area alone, as --min-height\n"
      "  max_height_mm = 2200   # and nothing that is higher\n"
      "\nWorld x points to the picture's right, y to its lower edge, z down; the origin is the camera. The map shows\n"
      "the ground from above, row 0 at the smallest y. The fitted ground plane tells whether the camera file's mount\n"
      "is right. Examples:\n"
      "  nadir ground left.png right.png --camera camera.toml -o result\n"
      "  nadir ground left.png right.png --camera camera.toml -o result --areas areas.toml --for people\n"
      "  nadir ground left.png right.png --camera camera.toml -o result --fill-holes 0.02\n"
      "  nadir ground walk --camera walk/camera.toml -o result --fps 15 --resume\n"
      "  nadir ground cam0 cam1 --camera camera.toml -o result\n"
      "  nadir ground 'shots/*_left.png' 'shots/*_right.png' --camera camera.toml -o result\n"
      "  nadir ground recording.csv --camera camera.toml -o parts/b --frames 1000:2000\n"
      "  nadir ground recording --side-by-side --camera camera.toml -o result");
  command->callback([options, sequenceAsked] { run(*options, sequenceAsked()); });
}

}  // namespace nadir::tool
