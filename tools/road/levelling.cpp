// Pairs are matched one by one and given to the library's level.
#include "tools/road/levelling.hpp"

#include <memory>

namespace nadir::tool {

namespace {

struct DestroyLevel {
  void operator()(NadirLevel* level) const { nadir_level_destroy(level); }
};
using LevelHandle = std::unique_ptr<NadirLevel, DestroyLevel>;

LevelHandle levelOf(const Road& road) {
  NadirLevel* level = nullptr;
  expect(nadir_level_create(road.handle.get(), &level));
  return LevelHandle(level);
}

bool add(const Road& road, NadirLevel& level, NadirResult& result, const Pair& pair, StageTimes& times) {
  const NadirFrame frame = frameOf(pair, {});
  times.measure("matching", [&] { expect(nadir_road_process(road.handle.get(), &frame, &result)); });
  const NadirStatus status = times.measure("levelling", [&] { return nadir_level_add(&level, &frame, &result); });
  if (status != NADIR_NOTHING_FOUND) expect(status);
  return status == NADIR_OK;
}

void keepPicture(const NadirLevel& level, Grid<uint16_t>&& left, Levelling& found) {
  NadirPlane taken;
  expect(nadir_level_taken(&level, &taken));
  found.taken = gridOf<uint8_t>(taken);
  found.picture = std::move(left);
}

Levelling levelledOn(const Road& road, const std::vector<PairFiles>& pairs, StageTimes& times) {
  const LevelHandle level = levelOf(road);
  const ResultHandle result = newResult(*road.handle);
  Levelling found;
  found.range = road.settings.range;
  for (const PairFiles& files : pairs) {
    Pair pair = fittingPair(road, times.measure("reading", [&] { return readPair(files.left, files.right); }), times);
    if (add(road, *level, *result, pair, times))
      keepPicture(*level, std::move(pair.left), found);
    else
      found.withoutFloor.push_back(files);
  }
  NadirLevelled mount{};
  mount.size = sizeof mount;
  if (nadir_level_read(level.get(), &mount) == NADIR_OK) found.mount = mount;
  return found;
}

}  // namespace

Levelling levelled(RoadOptions options, const std::vector<PairFiles>& pairs, StageTimes& times) {
  options.noRegions = options.mountMayLack = true;
  // The plane is refined by intensities: one pass of the matcher shows where it is.
  options.match.check = NADIR_CHECK_NONE;
  options.match.refine = NADIR_REFINE_NONE;
  if (options.match.range != automaticRange) return levelledOn(roadOf(options), pairs, times);
  Levelling found;
  constexpr uint32_t ranges[] = {NADIR_RANGE_61, NADIR_RANGE_122, NADIR_RANGE_244};
  for (const uint32_t range : ranges) {
    options.match.range = range;
    found = levelledOn(roadOf(options), pairs, times);
    if (found.mount) break;
  }
  return found;
}

}  // namespace nadir::tool
