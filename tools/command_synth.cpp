// nadir synth: a stereo pair with known disparities.
#include <CLI/CLI.hpp>
#include <memory>

#include "chunks.hpp"
#include "commands.hpp"
#include "files.hpp"
#include "png.hpp"
#include "scene.hpp"
#include "text.hpp"

namespace nadir::tool {

namespace {

struct Options {
  std::string folder;
  SceneOptions scene;
};

TextChunks pictureTexts(const Options& options, const char* view) {
  return {{"Description", format("The %s picture of a rendered pair, 12-bit intensities.", view)},
          {"nadir:seed", std::to_string(options.scene.seed)},
          {"Software", software()}};
}

void run(const Options& options) {
  const Scene scene = renderScene(options.scene);
  OutputFiles files;
  files.makeFolder(options.folder);
  files.write(options.folder + "/left.png", encodePng(scene.left, pictureTexts(options, "left")));
  files.write(options.folder + "/right.png", encodePng(scene.right, pictureTexts(options, "right")));
  files.write(options.folder + "/disparity_gt.png", encodePng(scene.truth, disparityTexts(truthScale, "left")));
  files.commit();
}

}  // namespace

void addSynthCommand(CLI::App& app) {
  auto options = std::make_shared<Options>();
  SceneOptions& scene = options->scene;
  CLI::App* command = app.add_subcommand("synth", "Render a stereo pair with exactly known disparities.");
  command
      ->add_option("FOLDER", options->folder,
                   "Receives left.png, right.png (12-bit intensities) and disparity_gt.png (left grid, pixels x 256, 0 "
                   "where the right picture does not show the point); made unless it exists")
      ->required();
  command->add_option("--seed", scene.seed, "Another number gives other boxes and other textures (default: 1)")
      ->type_name("N");
  const auto side = CLI::Range(64, 4096).description("");
  command->add_option("--width", scene.width, "Pixels, 64 to 4096 (default: 640)")->check(side)->type_name("N");
  command->add_option("--height", scene.height, "Pixels, 64 to 4096 (default: 480)")->check(side)->type_name("N");
  command
      ->add_option("--noise", scene.noise,
                   "Largest sensor noise, in intensity levels out of 4095, 0 to 1000 (default: 8)")
      ->check(CLI::Range(0, 1000).description(""))
      ->type_name("N");
  command->footer(
      "The scene: ground that falls away upwards, three upright boxes, a slanted wall, a step. A seed gives\n"
      "the same pixels on every machine. Examples:\n"
      "  nadir synth scene\n"
      "  nadir synth small --width 320 --height 240 --seed 7 --noise 0");
  command->callback([options] { run(*options); });
}

}  // namespace nadir::tool
