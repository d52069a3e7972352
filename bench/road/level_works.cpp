// Works of level.h: a pair of open floor, with the disparities that it was matched to.
#include <nadir/level.h>

#include <memory>

#include "bench/road/road_frame.hpp"
#include "bench/work.hpp"

namespace nadir::bench {
namespace {

struct GiveBack {
  void operator()(NadirLevel* level) const { nadir_level_destroy(level); }
};

std::shared_ptr<NadirLevel> levelFor(const lab::Road& road) {
  NadirLevel* level = nullptr;
  lab::demand(nadir_level_create(road.road(), &level));
  return {level, GiveBack()};
}

}  // namespace

void addLevelWorks(Works& works, const lab::TexturedPair& pair) {
  const auto walk = std::make_shared<RoadFrame>(pair, NADIR_UNTIL_MAP, 90);
  walk->road.findings(walk->matched());
  const uint64_t pixels = pair.first.size();
  works.push_back({"nadir_level_add", pixels, 6 * pixels, [walk, level = levelFor(walk->road)] {
                     const NadirFrame frame = walk->matched();
                     lab::demand(nadir_level_add(level.get(), &frame, walk->road.result()));
                   }});
}

}  // namespace nadir::bench
