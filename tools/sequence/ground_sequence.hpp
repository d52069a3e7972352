// nadir ground over a sequence of frames.
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

struct SequenceOptions {
  std::string folder;  // for the results
  SequenceRule rule;
  unsigned threads = 1;
  bool resume = false;
};

// What came of one frame. A damaged one has an error and nothing else.
struct FrameReport {
  uint64_t number;
  std::string name;
  double seconds;
  std::string error;
  size_t seenCells = 0;
  std::optional<Findings> findings;
  std::vector<std::optional<ground::TrackedHeight>> tracks;  // of the areas
};

// Works through the frames and writes what it finds, frame by frame, so that an interrupted run has whole files and can
// be resumed. Throws Error with someFramesSkipped where frames were damaged, with `interrupted` after a signal.
void groundSequence(const FrameSource& source, const GroundSetup& setup, const SequenceOptions& options);

}  // namespace nadir::tool
