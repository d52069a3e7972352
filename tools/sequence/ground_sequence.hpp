// nadir ground over a sequence of frames.
#pragma once

#include <string>

#include "tools/road/road.hpp"
#include "tools/sequence/frame_source.hpp"
#include "tools/sequence/run_settings.hpp"

namespace nadir::tool {

struct SequenceOptions {
  std::string folder;  // for the results
  SequenceRule rule;
  unsigned threads = 1;
  bool resume = false;
  std::string join;     // folder of runs over ranges, whose lines are taken; empty: the frames are worked on
  bool json = false;    // prints an object, no table
  bool strict = false;  // warnings make the exit status notAllReliable
};

// Works through the frames and writes what it finds, frame by frame, so that an interrupted run has whole files and can
// be resumed. Throws Error with notAllReliable where frames were damaged or, if that is asked for, have warnings; with
// `interrupted` after a signal.
void groundSequence(const FrameSource& source, const Road& road, const SequenceOptions& options);

}  // namespace nadir::tool
