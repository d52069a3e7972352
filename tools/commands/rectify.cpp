// nadir rectify: from the pictures of two cameras to rectified ones and their camera file.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "tools/base/error.hpp"
#include "tools/base/progress.hpp"
#include "tools/base/text.hpp"
#include "tools/commands/calibration_options.hpp"
#include "tools/commands/commands.hpp"
#include "tools/commands/options.hpp"
#include "tools/files/encodings.hpp"
#include "tools/pictures/chunks.hpp"
#include "tools/pictures/pictures.hpp"
#include "tools/pictures/png.hpp"
#include "tools/report/json_parts.hpp"
#include "tools/road/pair_rectifier.hpp"
#include "tools/sequence/frame_source.hpp"

namespace nadir::tool {

namespace {

struct RectifyOptions {
  std::string left, right, folder;
  CalibrationOptions calibration;
  KeyOptions keys;
  bool sideBySide = false, force = false, json = false;
};

// ---- what is rectified ----

struct Frame {
  std::string left, right;  // files; the right one is empty where the left one holds both
  std::string outLeft, outRight;
};

// Whether nadir ground would find the frames' numbers in their names, too.
bool namesEndInNumbers(const FrameSource& source) {
  for (size_t i = 0; i < source.size(); ++i) {
    const std::string &name = source.name(i), number = std::to_string(source.number(i));
    if (name.size() < number.size() || name.compare(name.size() - number.size(), number.size(), number) != 0)
      return false;
  }
  return true;
}

std::vector<Frame> framesOf(const RectifyOptions& options) {
  if (!FrameSource::isSequence(options.left)) {
    checkPairNames(options.left, options.right, options.sideBySide);
    return {{options.left, options.right, options.folder + "/left.png", options.folder + "/right.png"}};
  }
  if (options.sideBySide) checkPairNames(options.left, options.right, true);
  const FrameSource source(options.left, options.right, options.sideBySide, options.calibration.files.front());
  const bool keepsNames = namesEndInNumbers(source);
  std::vector<Frame> frames;
  for (size_t i = 0; i < source.size(); ++i) {
    const std::string name = (keepsNames ? source.name(i) : std::to_string(source.number(i))) + ".png";
    frames.push_back(
        {source.left(i), source.right(i), options.folder + "/left/" + name, options.folder + "/right/" + name});
  }
  return frames;
}

struct Input {
  Pair pair;
  uint32_t bits;
};

Input readInput(const Frame& frame) {
  GreyPicture left = readGrey(frame.left);
  if (frame.right.empty()) return {halvesOf(left.pixels, frame.left), left.bits};
  GreyPicture right = readGrey(frame.right);
  if (!sameSize(left.pixels, right.pixels) || left.bits != right.bits)
    throw UnusableFile(format("the pictures differ: %s is %s pixels of %u bits, %s is %s of %u", frame.left.c_str(),
                              sizeText(left.pixels.width, left.pixels.height).c_str(), left.bits, frame.right.c_str(),
                              sizeText(right.pixels.width, right.pixels.height).c_str(), right.bits));
  return {{std::move(left.pixels), std::move(right.pixels)}, left.bits};
}

// ---- what becomes of it ----

// 0 of 16 bits is no data anywhere; of 8 bits a file has to say so.
Bytes encoded(const Grid<uint16_t>& picture, uint32_t bits) {
  if (bits == 16) return encodePng(picture, {});
  return encodePng(lab::converted<uint8_t>(picture, [](uint16_t value) { return value; }), {{chunks::noValue, "0"}});
}

double shareWithoutData(const Grid<uint16_t>& picture) {
  const auto empty = std::count(picture.pixels.begin(), picture.pixels.end(), 0);
  return static_cast<double>(empty) / static_cast<double>(picture.pixels.size());
}

struct Tally {
  size_t done = 0, skipped = 0;
  double leftShare = 0, rightShare = 0;  // without data, of all that are done

  double ofDone(double sum) const { return done > 0 ? sum / static_cast<double>(done) : 0; }
};

class Rectifying {
 public:
  explicit Rectifying(const RectifyOptions& options)
      : options_(options), frames_(framesOf(options)), calibration_(readCalibration(options.calibration)) {
    std::vector<std::string> inputs = options.calibration.files;
    for (const Frame& frame : frames_) inputs.insert(inputs.end(), {frame.left, frame.right});
    inputs_ = std::make_shared<const FileMarks>(inputs);
  }

  void run() {
    const Input first = firstUsable();
    complete(calibration_, {first.pair.left.width, first.pair.left.height});
    const PairRectifier rectifier(calibration_);
    imported_ = cameraOf(calibration_);
    options_.keys.take(imported_);
    checkImported(imported_.camera, calibration_.unitMm == 0);
    isSequence() ? rectifyAll(rectifier) : rectifyOne(first, rectifier);
    print(options_.json ? json().dump(2) + "\n" : report());
    if (tally_.skipped > 0)
      throw Error(format("%zu of %zu frames were skipped", tally_.skipped, frames_.size()), notAllReliable);
  }

 private:
  bool isSequence() const { return FrameSource::isSequence(options_.left); }
  std::string cameraPath() const { return options_.folder + "/camera.toml"; }

  // Those before it are named when their turn comes.
  Input firstUsable() const {
    for (size_t i = 0; i + 1 < frames_.size(); ++i) {
      try {
        return readInput(frames_[i]);
      } catch (const UnusableFile&) {
      }
    }
    return readInput(frames_.back());
  }

  void rectifyOne(const Input& input, const PairRectifier& rectifier) {
    OutputFiles files(inputs_);
    files.makeFolder(options_.folder);
    writeCamera(cameraPath(), imported_.camera, options_.force, files);
    write(frames_.front(), input, rectifier, files);
  }

  // Frame by frame: what is there is whole whenever the run ends.
  void rectifyAll(const PairRectifier& rectifier) {
    makeFolders();
    Progress progress("rectifying", "frames", frames_.size(), Progress::Elsewhere::silent);
    for (const Frame& frame : frames_) {
      try {
        OutputFiles files(inputs_);
        write(frame, readInput(frame), rectifier, files);
      } catch (const UnusableFile& reason) {
        ++tally_.skipped;
        progress.say(format("frame %s is skipped: %s", frame.left.c_str(), reason.what()));
      }
      progress.advance();
    }
  }

  void makeFolders() const {
    OutputFiles outer(inputs_);
    outer.makeFolder(options_.folder);
    writeCamera(cameraPath(), imported_.camera, options_.force, outer);
    outer.commit();
    OutputFiles inner(inputs_);
    for (const char* view : {"/left", "/right"}) inner.makeFolder(options_.folder + view);
    inner.commit();
  }

  void write(const Frame& frame, const Input& input, const PairRectifier& rectifier, OutputFiles& files) {
    const Pair pair = rectifier.rectified(input.pair);
    writeAll({{frame.outLeft, [&] { return encoded(pair.left, input.bits); }},
              {frame.outRight, [&] { return encoded(pair.right, input.bits); }}},
             files);
    files.commit();
    ++tally_.done;
    tally_.leftShare += shareWithoutData(pair.left);
    tally_.rightShare += shareWithoutData(pair.right);
  }

  Json json() const {
    Json all = importJson(imported_, &calibration_, cameraPath());
    all["pairs"] = tally_.done;
    all["skipped"] = tally_.skipped;
    all["left_without_data_share"] = measuredJson(tally_.ofDone(tally_.leftShare));
    all["right_without_data_share"] = measuredJson(tally_.ofDone(tally_.rightShare));
    return all;
  }

  std::string report() const {
    std::string text = importReport(imported_, &calibration_, cameraPath());
    if (calibration_.unitMm == 0)
      text += "\n" + calibration_.path +
              " does not say in which unit its lengths are: --unit-mm (1 for mm, 1000 for m) "
              "would tell baseline_mm.\n";
    text += format("\nwithout data: %.1f %% of the left picture%s, %.1f %% of the right one%s\n",
                   100 * tally_.ofDone(tally_.leftShare), isSequence() ? "s" : "",
                   100 * tally_.ofDone(tally_.rightShare), isSequence() ? "s" : "");
    if (!isSequence())
      return text + format("wrote left.png, right.png and camera.toml in %s\n", options_.folder.c_str());
    return text + format("wrote %zu pairs into left and right, and camera.toml, in %s\n", tally_.done,
                         options_.folder.c_str());
  }

  const RectifyOptions& options_;
  std::vector<Frame> frames_;
  Calibration calibration_;
  ImportedCamera imported_;
  std::shared_ptr<const FileMarks> inputs_;
  Tally tally_;
};

}  // namespace

void addRectifyCommand(CLI::App& app) {
  auto options = std::make_shared<RectifyOptions>();
  CLI::App* command =
      app.add_subcommand("rectify", "Make a rectified pair and its camera file of what two cameras took.");
  command
      ->add_option(
          "LEFT", options->left,
          "Left picture, as the camera took it; colours are made grey. Or of a sequence, as for nadir ground: a "
          "folder that holds left and right, a folder of the left camera's, a glob in quotes, a pattern")
      ->required();
  command->add_option("RIGHT", options->right, "Right picture of the same size and depth, or folder, glob or pattern");
  addSideBySideOption(*command, options->sideBySide,
                      "LEFT holds both pictures of a pair in one, left | right, or is a folder, a glob or a pattern "
                      "of such");
  addCalibrationOptions(
      *command, options->calibration,
      "The cameras' calibration, told by what it holds: OpenCV's, one file or the two of its samples, YAML or XML (M1 "
      "D1 M2 D2 R T and, where they are, R1 R2 P1 P2 or Q); two ROS camera_info files, the left camera's first; a "
      "Kalibr camchain; a Middlebury calib.txt; a camera file with lenses")
      ->required();
  command
      ->add_option(
          "-o,--output", options->folder,
          "Receives left.png, right.png and camera.toml, of a sequence the folders left and right; made unless it "
          "exists")
      ->required()
      ->type_name("FOLDER");
  addForceOption(*command, options->force);
  addJsonOption(*command, options->json, "docs/import.schema.json describes it");
  options->keys.addTo(*command, true);
  command->footer(
      "The pictures keep their depth; where it is 8 bits, a text in the files says that 0 stands for none. A pixel "
      "that comes from outside of the camera's picture, or from 0 in one of 16 "
      "bits,\nis 0: no data. Lenses: none, plumb bob (4 or 5 coefficients), rational (8), thin prism (12), equidistant "
      "fisheye (4).\nWhat else a calibration holds is refused or named. The camera file lacks the mount unless the "
      "options say it. Examples:\n"
      "  nadir rectify l.png r.png --calibration intrinsics.yml extrinsics.yml --unit-mm 1 -o rectified\n"
      "  nadir rectify l.png r.png --calibration camchain.yaml --height-mm 2600 --tilt-deg -40 -o rectified\n"
      "  nadir rectify cam0 cam1 --calibration camchain.yaml -o rectified\n"
      "  nadir ground rectified/left.png rectified/right.png --camera rectified/camera.toml -o result");
  command->callback([options] { Rectifying(*options).run(); });
}

}  // namespace nadir::tool
