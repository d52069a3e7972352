// The works that are timed: a list of calls for one size of image, which the benchmark and the table of ratios share.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "lab/textured_pair.hpp"

namespace nadir::bench {

struct Work {
  std::string name;
  uint64_t pixels;  // that one run works through; 0 for a call whose time does not depend on the image
  uint64_t bytes;   // that it reads and writes by its contract
  std::function<void()> run;
};

using Works = std::vector<Work>;

// One function per public header. The works keep what they need alive.
void addImageWorks(Works& works, const lab::TexturedPair& pair);
void addImgprocWorks(Works& works, const lab::TexturedPair& pair);
void addSegmentWorks(Works& works, const lab::TexturedPair& pair);
void addStereoWorks(Works& works, const lab::TexturedPair& pair);
void addGroundWorks(Works& works, const lab::TexturedPair& pair);
void addRectifyWorks(Works& works, const lab::TexturedPair& pair);
void addCheckWorks(Works& works, const lab::TexturedPair& pair);
void addLevelWorks(Works& works, const lab::TexturedPair& pair);

Works allWorks(const lab::TexturedPair& pair);

struct Level {
  std::string name;
  unsigned cpu;
};

// The levels of this processor, each with all below it, scalar first.
std::vector<Level> levels();

}  // namespace nadir::bench
