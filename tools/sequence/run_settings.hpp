// The settings of a sequence, as run.json holds them: two runs with the same ones give the same results.
#pragma once

#include <string>

#include "ground/tracks.hpp"
#include "tools/road/road.hpp"
#include "tools/sequence/frame_source.hpp"

namespace nadir::tool {

struct SequenceRule {
  double framesPerSecond = 10;
  uint32_t averageFrames = 10;  // in the window of the averaged maps
  ground::TrackRule track;
  bool noMaps = false;  // frames.jsonl alone
};

// Reads the mask, if there is one.
std::string settingsText(const Road& road, const SequenceRule& rule, const FrameSource& source);

}  // namespace nadir::tool
