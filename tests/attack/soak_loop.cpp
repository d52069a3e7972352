// Uses both libraries again and again until it is ended: roads, results and trackers that live for a while and then
// make room for others, and the library's own objects beside them. Whoever watches sees whether memory grows.
#include <nadir/ground.h>
#include <nadir/segment.h>
#include <nadir/stereo.h>

#include <cstdio>
#include <memory>

#include "lab/road.hpp"

namespace nadir::test {
namespace {

using lab::Road;
using lab::TexturedPair;

constexpr unsigned framesOfRoad = 20;

NadirTrackSettings tracking() {
  NadirTrackSettings settings = lab::emptyRecord<NadirTrackSettings>();
  lab::demand(nadir_track_settings_fill(&settings));
  settings.average_frames = 5;
  return settings;
}

// The state goes out and comes back, as if the process had ended in between.
void step(lab::Tracker& tracker, const Road& road, unsigned frame) {
  lab::demand(nadir_tracker_step(tracker.get(), road.result(), frame * int64_t{100000000}));
  NadirPlane average;
  lab::demand(nadir_tracker_average(tracker.get(), &average));
  const std::vector<uint8_t> state = tracker.saved();
  lab::demand(nadir_tracker_load(tracker.get(), state.data(), state.size()));
}

void walkTheRoad(const TexturedPair& pair) {
  Road road(lab::planOf(lab::cameraOver(pair)));
  lab::Tracker tracker(road, tracking());
  const NadirFrame frame = lab::frameOf(pair.first.data(), pair.reference.data(), pair.width);
  for (unsigned i = 0; i < framesOfRoad; ++i) {
    road.findings(frame);
    step(tracker, road, i);
  }
}

// What the library itself takes from the heap and gives back.
void useObjects(TexturedPair& pair) {
  CompFinder* const finder = IP_CompFinder_Init();
  const auto list = std::make_unique<ComponentList>();
  Img image;
  Img_Init(&image, 128, 96, IMG_TYPE_U16, pair.first.data());
  IP_CompFinder_Process(finder, &image, list.get());
  IP_CompFinder_Close(finder);
  SgmDebugData debug;
  if (IP_SgmMakeDebugData(pair.width, pair.height, 64, &debug)) IP_SgmFreeDebugData(&debug);
}

}  // namespace
}  // namespace nadir::test

int main() {
  using namespace nadir;
  lab::TexturedPair pair = lab::texturedPair(160, 120);
  std::puts("ready");
  std::fflush(stdout);
  for (;;) {
    test::walkTheRoad(pair);
    test::useObjects(pair);
  }
}
