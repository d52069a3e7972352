// The heights that nadir ground tracks through a sequence, against the truth of nadir synth.
#pragma once

#include <string>
#include <vector>

#include "tools/evaluate/evaluation.hpp"
#include "tools/files/files.hpp"

namespace nadir::tool {

// One area of interest, frame by frame; NaN where there is nothing. The truth is the height of the tallest object that
// stands in it.
struct AreaTrack {
  std::string name;
  std::vector<double> seconds;
  std::vector<float> truth, tracked, single;  // mm; single: the frame's own highest cell
};

// The folder that nadir ground has written for the sequence that nadir synth has.
bool isSequenceResult(const std::string& folder);
std::vector<AreaTrack> readTracks(const std::string& result, const std::string& sequence);

std::string trackTable(const std::vector<AreaTrack>& areas);
std::string trackJson(const std::vector<AreaTrack>& areas);

// Truth, tracked and single heights over time.
Bytes trackPlot(const AreaTrack& area);

}  // namespace nadir::tool
