// A sequence of frames of a scene in which something moves.
#pragma once

#include "tools/synth/scene_files.hpp"

namespace nadir::tool {

struct SequenceSettings {
  uint32_t frames = 0;  // 0: a single pair, no sequence
  double framesPerSecond = 10;
  unsigned threads = 1;
  bool truthPictures = true;
  bool resume = false;  // go on with frames that an interrupted run has written
};

// Makes the folder and writes its files, every one of them whole or not at all. Says how far it is.
void writeSequence(const std::string& folder, const SynthSettings& settings, const SequenceSettings& sequence);

}  // namespace nadir::tool
