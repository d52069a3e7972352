// nadir check: what is wrong with a pair, if anything.
#include <nadir/check.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/camera/camera_file.hpp"
#include "tools/commands/commands.hpp"
#include "tools/commands/options.hpp"
#include "tools/files/output_files.hpp"
#include "tools/pictures/pictures.hpp"
#include "tools/report/check_report.hpp"

namespace nadir::tool {

namespace {

struct CheckOptions {
  std::string left, right, camera, output;
  uint32_t range = NADIR_RANGE_61;
  bool json = false;
};

struct GiveBack {
  void operator()(NadirChecker* checker) const { nadir_checker_destroy(checker); }
};
using CheckerHandle = std::unique_ptr<NadirChecker, GiveBack>;

CheckerHandle checkerFor(uint32_t width, uint32_t height) {
  NadirChecker* checker = nullptr;
  const NadirStatus status = nadir_checker_create(width, height, &checker, nullptr);
  if (status == NADIR_BAD_CAMERA)
    throw Error("pictures of " + sizeText(width, height) +
                " pixels cannot be checked: the least is 64 x 64, the most are 65535 a side and 33554432 in all");
  if (status != NADIR_OK) throw std::bad_alloc();
  return CheckerHandle(checker);
}

NadirPlane planeOfPicture(const Grid<uint16_t>& picture) {
  return {picture.pixels.data(), picture.width * sizeof(uint16_t), picture.width, picture.height};
}

NadirCheckup checkupOf(NadirChecker* checker, const CheckedPair& pair) {
  const NadirPair asked{sizeof asked, 16, pair.range, 0, planeOfPicture(pair.left), planeOfPicture(pair.right)};
  NadirCheckup found{};
  found.size = sizeof found;
  if (nadir_checker_process(checker, &asked, &found) != NADIR_OK) throw Error("the library refuses the pictures");
  return found;
}

// Without a word of the pictures themselves, whose findings stand above.
void throwUnlessGood(const NadirCheckup& checkup) {
  if (checkup.verdict == NADIR_VERDICT_GOOD) return;
  throw Error(format("the pair is not good but %s. %s", nadir_verdict_name(checkup.verdict),
                     nadir_verdict_advice(checkup.verdict)),
              notAllReliable);
}

void report(const CheckedPair& pair, const CheckOptions& options) {
  OutputFiles files({options.left, options.right, options.camera});
  if (!options.output.empty()) files.write(options.output, encodeCheckPlot(pair));
  files.commit();
  if (options.json)
    print(checkJson(pair).dump(2) + "\n");
  else
    print(verdictSentence(pair) + "\n" + checkTable(pair) +
          (options.output.empty() ? "" : writtenLine(options.output)));
}

void run(const CheckOptions& options) {
  const Grid<uint16_t> left = readIntensity(options.left), right = readIntensity(options.right);
  CheckedPair pair{left, right, left.width, left.height, options.range, {}};
  if (!options.camera.empty()) {
    const Camera camera = readCamera(options.camera);
    pair.wantedWidth = camera.widthPx;
    pair.wantedHeight = camera.heightPx;
  }
  const CheckerHandle checker = checkerFor(pair.wantedWidth, pair.wantedHeight);
  pair.checkup = checkupOf(checker.get(), pair);
  report(pair, options);
  throwUnlessGood(pair.checkup);
}

}  // namespace

void addCheckCommand(CLI::App& app) {
  auto options = std::make_shared<CheckOptions>();
  CLI::App* command = app.add_subcommand("check", "Say what is wrong with a pair, if anything: a verdict and numbers.");
  command->add_option("LEFT", options->left, "Left picture, as for nadir disparity")->required();
  command->add_option("RIGHT", options->right, "Right picture")->required();
  command->add_option("--camera", options->camera, "Camera file; pictures must have its size (default: none)")
      ->type_name("FILE");
  addWord(*command, "--range", rangeWordsOfPairs(), options->range,
          "Largest disparity that will be searched, pixels: 61, 122 or 244; what is nearer is beyond the range "
          "(default: {default})",
          "PIXELS");
  addJsonOption(*command, options->json, "docs/check.schema.json describes it");
  command
      ->add_option("-o,--output", options->output,
                   "PNG that receives the row offsets in colours over the right picture (default: none)")
      ->check(endingIn({".png"}))
      ->type_name("FILE");
  command->footer(
      "The verdict is the first of these that holds: size, same (picture twice), exposure, textureless, blurred,\n"
      "swapped, offset (of rows), turned, unrectified, range; else good. Offset and turned are named where they are\n"
      "all that is wrong with the rows. docs/check.md explains them. Nothing is written without -o.\n"
      "Exit status: 0 good, 3 a fault, 1 failed, 2 wrong usage. Examples:\n"
      "  nadir check left.png right.png\n"
      "  nadir check left.png right.png --camera camera.toml --json\n"
      "  nadir check left.png right.png -o rows.png");
  command->callback([options] { run(*options); });
}

}  // namespace nadir::tool
