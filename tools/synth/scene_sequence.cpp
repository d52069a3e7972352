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
void writeFrame(const std::string& folder, uint32_t frame, const std::vector<NamedFile>& frameFiles) {
  OutputFiles files;
  for (const NamedFile& file : frameFiles) {
    const fs::path series = fs::path(folder) / fs::path(file.name).stem();
    fs::create_directory(series);
    files.write((series / format("%06u.png", frame)).string(), file.bytes);
  }
  files.commit();
}

void writeTexts(const std::string& folder, const SynthSettings& settings, const SequenceSettings& sequence) {
  const SequenceTexts texts = textsOf(settings, sequence);
  const std::string areas = areasText(texts.ways);
  OutputFiles files;
  files.makeFolder(folder);
  if (fs::exists(folder + "/left"))
    throw Error(format("%s holds a sequence already; remove it or name another folder", folder.c_str()));
  for (const NamedFile& file : synthTexts(settings, arranged(settings, {})))
    files.write(folder + "/" + file.name, file.bytes);
  files.write(folder + "/truth.jsonl", bytesOf(texts.truth));
  if (!areas.empty()) files.write(folder + "/areas.toml", bytesOf(areas));
  files.commit();
}

}  // namespace

void writeSequence(const std::string& folder, const SynthSettings& settings, const SequenceSettings& sequence) {
  writeTexts(folder, settings, sequence);
  Progress progress("rendering", "frames", sequence.frames, Progress::Elsewhere::lines);
  const InterruptWatch watch;
  const auto render = [&](uint64_t frame) { return frameFiles(settings, sequence, static_cast<uint32_t>(frame)); };
  inOrder(0, sequence.frames, sequence.threads, render, [&](uint64_t frame, const std::vector<NamedFile>& files) {
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
