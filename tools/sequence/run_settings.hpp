// The settings of a sequence, as run.json holds them: two runs with the same ones give the same results.
#pragma once

#include <optional>
#include <string>

#include "ground/tracks.hpp"
#include "tools/report/products.hpp"
#include "tools/road/road.hpp"
#include "tools/sequence/frame_source.hpp"
#include "tools/sequence/frame_times.hpp"

namespace nadir::tool {

struct SequenceRule {
  TimeRule times;
  uint32_t averageFrames = 10;  // in the window of the averaged maps
  ground::TrackRule track;
  Products products;  // beside frames.jsonl
};

// Reads the mask, if there is one.
//
// times  the unit of the frames' times, which the rule may have left to a guess.
std::string settingsText(const Road& road, const SequenceRule& rule, const FrameSource& source, TimeUnit times);

// What the text of run.json says of the frames' times, if it is one that this program has written.
std::optional<TimeUnit> timesIn(const std::string& settings);

}  // namespace nadir::tool
