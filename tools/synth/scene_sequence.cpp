// Renders the frames of a sequence, several at a time, and writes each as a whole.
#include "tools/synth/scene_sequence.hpp"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <map>

#include "lab/scene/ready_scenes.hpp"
#include "tools/base/error.hpp"
#include "tools/base/in_order.hpp"
#include "tools/base/interrupt.hpp"
#include "tools/base/progress.hpp"
#include "tools/base/text.hpp"
#include "tools/files/output_files.hpp"

namespace nadir::tool {

namespace fs = std::filesystem;

namespace {

Moment momentOf(uint32_t frame, const SequenceSettings& sequence) { return {frame, frame / sequence.framesPerSecond}; }

// The rectangle in which a walker has been.
struct Way {
  double left = std::numeric_limits<double>::infinity(), top = left, right = -left, bottom = -left;
  void add(const scene::Vec& place) {
    left = std::min(left, place.x);
    top = std::min(top, place.y);
    right = std::max(right, place.x);
    bottom = std::max(bottom, place.y);
  }
};

// Both texts tell about all frames; they are known before anything is rendered.
struct SequenceTexts {
  std::string truth;
  std::map<uint32_t, Way> ways;  // by region
};

SequenceTexts textsOf(const SynthSettings& settings, const SequenceSettings& sequence) {
  const scene::Rig rig = makeRig(settings.camera);
  SequenceTexts texts;
  for (uint32_t frame = 0; frame < sequence.frames; ++frame) {
    const Moment moment = momentOf(frame, sequence);
    const scene::Scene now = makeScene(settings.scene, rig, settings.seed, moment.seconds);
    texts.truth += momentLine(now, moment);
    for (const scene::Object& object : now.objects)
      if (object.kind == "walker") texts.ways[object.region].add(object.anchor);
  }
  return texts;
}

// Each area holds a walker's way, and an arm's length around it for the walker's body.
std::string areasText(const std::map<uint32_t, Way>& ways) {
  constexpr double around = 400;
  std::string text;
  for (const auto& [region, way] : ways)
    text += areaText(format("walker %u", region), way.left - around, way.top - around, way.right + around,
                     way.bottom + around);
  return text;
}

std::vector<NamedFile> frameFiles(const SynthSettings& settings, const SequenceSettings& sequence, uint32_t frame) {
  const auto nothing = [] {};
  const Moment moment = momentOf(frame, sequence);
  Rendering rendering = arranged(settings, moment);
  renderPictures(rendering, settings, moment, nothing);
  std::vector<NamedFile> files = synthPictures(settings, rendering);
  if (!sequence.truthPictures) return files;
  renderTruth(rendering, nothing);
  for (NamedFile& file : synthTruth(rendering)) files.push_back(std::move(file));
  return files;
}

// left.png of frame 7 is left/000007.png.
std::string pathOf(const std::string& folder, uint32_t frame, const NamedFile& file) {
  return (fs::path(folder) / fs::path(file.name).stem() / format("%06u.png", frame)).string();
}

void writeFrame(const std::string& folder, uint32_t frame, const std::vector<NamedFile>& frameFiles) {
  OutputFiles files;
  for (const NamedFile& file : frameFiles) {
    const std::string path = pathOf(folder, frame, file);
    files.makeFolder(fs::path(path).parent_path().string());
    files.write(path, file.bytes);
  }
  files.commit();
}

std::vector<NamedFile> textFiles(const SynthSettings& settings, const SequenceSettings& sequence) {
  const SequenceTexts texts = textsOf(settings, sequence);
  const std::string areas = areasText(texts.ways);
  std::vector<NamedFile> files = synthTexts(settings, arranged(settings, {}));
  files.push_back({"truth.jsonl", bytesOf(texts.truth)});
  if (!areas.empty()) files.push_back({"areas.toml", bytesOf(areas)});
  return files;
}

void writeTexts(const std::string& folder, const std::vector<NamedFile>& texts) {
  OutputFiles files;
  for (const NamedFile& file : texts) files.write(folder + "/" + file.name, file.bytes);
  files.commit();
}

// ---- where an interrupted run has ended ----

void checkSame(const std::string& path, const Bytes& bytes) {
  if (fs::exists(path) && readFile(path) != bytes)
    throw Error("cannot resume: " + path + " is of another sequence than these settings give");
}

// The files of a frame get their names one after the other, in the order of this list.
uint32_t framesIn(const std::string& folder, const std::vector<NamedFile>& first, const SequenceSettings& sequence) {
  uint32_t frame = 0;
  const auto isThere = [&](const NamedFile& file) { return fs::exists(pathOf(folder, frame, file)); };
  while (frame < sequence.frames && std::all_of(first.begin(), first.end(), isThere)) ++frame;
  return frame;
}

// The first frame and the texts tell whether all settings are the same.
uint32_t takeUp(const std::string& folder, const std::vector<NamedFile>& texts, const SynthSettings& settings,
                const SequenceSettings& sequence) {
  for (const NamedFile& file : texts) checkSame(folder + "/" + file.name, file.bytes);
  const std::vector<NamedFile> first = frameFiles(settings, sequence, 0);
  removeParts(folder);
  for (const NamedFile& file : first) {
    const std::string path = pathOf(folder, 0, file);
    checkSame(path, file.bytes);
    removeParts(fs::path(path).parent_path().string());
  }
  return framesIn(folder, first, sequence);
}

// Makes the folder and its texts. Returns the frames that are there already.
uint32_t begin(const std::string& folder, const SynthSettings& settings, const SequenceSettings& sequence) {
  const std::vector<NamedFile> texts = textFiles(settings, sequence);
  const bool begun = fs::exists(folder + "/left");
  if (begun && !sequence.resume)
    throw Error(format("%s holds a sequence already; go on with it (--resume), remove it or name another folder",
                       folder.c_str()));
  OutputFiles made;
  made.makeFolder(folder);
  made.commit();
  const uint32_t done = sequence.resume ? takeUp(folder, texts, settings, sequence) : 0;
  writeTexts(folder, texts);
  return done;
}

}  // namespace

void writeSequence(const std::string& folder, const SynthSettings& settings, const SequenceSettings& sequence) {
  const uint32_t done = begin(folder, settings, sequence);
  Progress progress("rendering", "frames", sequence.frames, Progress::Elsewhere::lines, done);
  const InterruptWatch watch;
  const auto render = [&](uint64_t frame) { return frameFiles(settings, sequence, static_cast<uint32_t>(frame)); };
  inOrder(done, sequence.frames, sequence.threads, render, [&](uint64_t frame, const std::vector<NamedFile>& files) {
    if (watch.requested())
      throw Error(
          format("interrupted after %llu of %u frames", static_cast<unsigned long long>(frame), sequence.frames),
          interrupted);
    writeFrame(folder, static_cast<uint32_t>(frame), files);
    progress.advance();
    return true;
  });
}

}  // namespace nadir::tool
