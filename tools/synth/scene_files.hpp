// The files that `nadir synth` writes.
#pragma once

#include <string>
#include <vector>

#include "tools/files/files.hpp"
#include "tools/synth/rendering.hpp"

namespace nadir::tool {

// How the true values are stored: pixels and mm times a scale, and what stands for no height.
constexpr unsigned synthDisparityScale = 256;
constexpr unsigned synthHeightScale = 8;
constexpr uint16_t synthNoHeight = 65535;

struct NamedFile {
  std::string name;
  Bytes bytes;
};

// left.png and right.png.
std::vector<NamedFile> synthPictures(const SynthSettings& settings, const Rendering& rendering);
// The pictures of the truth.
std::vector<NamedFile> synthTruth(const Rendering& rendering);
// camera.toml and scene.json.
std::vector<NamedFile> synthTexts(const SynthSettings& settings, const Rendering& rendering);

// An area of interest: a rectangle on the ground, for areas.toml.
std::string areaText(const std::string& name, double left, double top, double right, double bottom);

// The line of truth.jsonl for a moment: the objects as in scene.json.
std::string momentLine(const nadir::scene::Scene& scene, const Moment& moment);

}  // namespace nadir::tool
