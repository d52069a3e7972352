// Judges each object by the regions that share cells with it.
#include "tools/evaluate/region_evaluation.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <utility>

namespace nadir::tool {

namespace {

// How many cells each thing has, and how many each pair shares.
class Overlaps {
 public:
  Overlaps(const ThingMap& found, const ThingMap& truth, const Grid<uint8_t>& known) {
    for (size_t i = 0; i < known.pixels.size(); ++i) {
      const uint16_t region = found.cells.pixels[i], object = known.pixels[i] ? truth.cells.pixels[i] : uint16_t{0};
      ++regions_[region];
      ++objects_[object];
      ++shared_[{object, region}];
    }
  }

  size_t cellsOf(const Thing& object) const { return countOf(objects_, object.number); }
  size_t sharedCells(const Thing& object, const Thing& region) const {
    return countOf(shared_, std::pair(object.number, region.number));
  }

  bool belongTogether(const Thing& object, const Thing& region) const {
    const size_t both = sharedCells(object, region);
    return both > 0 && 2 * both >= std::min(cellsOf(object), countOf(regions_, region.number));
  }

 private:
  template <class Key>
  static size_t countOf(const std::map<Key, size_t>& counts, const Key& key) {
    const auto found = counts.find(key);
    return found == counts.end() ? 0 : found->second;
  }

  std::map<uint16_t, size_t> regions_, objects_;
  std::map<std::pair<uint16_t, uint16_t>, size_t> shared_;
};

using Things = std::vector<Thing>;

template <class Condition>
Things thingsWith(const Things& things, Condition condition) {
  Things chosen;
  std::copy_if(things.begin(), things.end(), std::back_inserter(chosen), condition);
  return chosen;
}

Verdict verdictOf(const Thing& object, const Things& regions, const Things& objects, const Overlaps& overlaps) {
  size_t covered = 0;
  bool merged = false;
  for (const Thing& region : regions) {
    covered += overlaps.sharedCells(object, region);
    merged |= std::count_if(objects.begin(), objects.end(),
                            [&](const Thing& other) { return overlaps.belongTogether(other, region); }) > 1;
  }
  if (4 * covered < overlaps.cellsOf(object) || regions.empty()) return Verdict::missed;
  if (merged) return Verdict::merged;
  return regions.size() > 1 ? Verdict::split : Verdict::found;
}

Judged judgedObject(const Thing& object, const ThingMap& found, const Things& objects, const Overlaps& overlaps) {
  const Things regions =
      thingsWith(found.things, [&](const Thing& region) { return overlaps.belongTogether(object, region); });
  Judged j{object, verdictOf(object, regions, objects, overlaps), {}};
  for (const Thing& region : regions) j.regions.push_back(region.number);
  if (j.verdict == Verdict::found) {
    const Thing& region = regions.front();
    j.positionMm = std::hypot(region.centreXMm - object.centreXMm, region.centreYMm - object.centreYMm);
    j.heightMm = region.highestMm - object.highestMm;
  }
  return j;
}

}  // namespace

const char* nameOf(Verdict verdict) {
  switch (verdict) {
    case Verdict::found: return "found";
    case Verdict::missed: return "missed";
    case Verdict::split: return "split";
    default: return "merged";
  }
}

size_t RegionEvaluation::count(Verdict verdict) const {
  return static_cast<size_t>(
      std::count_if(objects.begin(), objects.end(), [verdict](const Judged& j) { return j.verdict == verdict; }));
}

RegionEvaluation evaluateRegions(const ThingMap& found, const ThingMap& truth, const Grid<uint8_t>& known) {
  const Overlaps overlaps(found, truth, known);
  const Things objects = thingsWith(truth.things, [&](const Thing& object) { return overlaps.cellsOf(object) > 0; });
  RegionEvaluation e;
  for (const Thing& object : objects) e.objects.push_back(judgedObject(object, found, objects, overlaps));
  e.falseRegions = thingsWith(found.things, [&](const Thing& region) {
    return std::none_of(objects.begin(), objects.end(),
                        [&](const Thing& o) { return overlaps.belongTogether(o, region); });
  });
  return e;
}

}  // namespace nadir::tool
