// Judges each object by the regions that share cells with it.
#include "tools/evaluate/region_evaluation.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <utility>

namespace nadir::tool {

namespace {

// The object of a cell, or of the cell before it in its row or column, or of that behind it.
uint16_t objectAtOrBeside(const Grid<uint16_t>& objects, size_t i) {
  const auto x = static_cast<uint32_t>(i % objects.width), y = static_cast<uint32_t>(i / objects.width);
  const auto at = [&](uint32_t column, uint32_t row) {
    return column < objects.width && row < objects.height ? objects.at(column, row) : uint16_t{0};
  };
  for (const uint16_t object : {at(x, y), at(x - 1, y), at(x, y - 1), at(x + 1, y), at(x, y + 1)})
    if (object != 0) return object;
  return 0;
}

// How many cells each thing has, and how many each pair shares.
class Overlaps {
 public:
  Overlaps(const ThingMap& found, const ThingMap& truth, const Grid<uint8_t>& known) {
    for (size_t i = 0; i < known.pixels.size(); ++i) {
      const uint16_t region = found.cells.pixels[i], whole = truth.cells.pixels[i];
      const uint16_t object = known.pixels[i] ? whole : uint16_t{0};
      ++regions_[region];
      ++wholes_[whole];
      ++objects_[object];
      ++shared_[{object, region}];
      ++sharedWholes_[{objectAtOrBeside(truth.cells, i), region}];
    }
  }

  size_t cellsOf(const Thing& object) const { return countOf(objects_, object.number); }
  size_t cellsOfRegion(const Thing& region) const { return countOf(regions_, region.number); }
  bool isCutOff(const Thing& object) const { return cellsOf(object) < countOf(wholes_, object.number); }
  size_t sharedCells(const Thing& object, const Thing& region) const {
    return countOf(shared_, std::pair(object.number, region.number));
  }

  bool belongTogether(const Thing& object, const Thing& region) const {
    return holdsHalf(sharedCells(object, region), cellsOf(object), cellsOfRegion(region));
  }

  // What the picture cuts off is seen from the side, and measured where its side stands: on cells along its edge.
  bool isOnCutOff(const Thing& region) const {
    return std::any_of(wholes_.begin(), wholes_.end(), [&](const auto& whole) {
      const size_t both = countOf(sharedWholes_, std::pair(whole.first, region.number));
      return whole.first != 0 && countOf(objects_, whole.first) < whole.second &&
             holdsHalf(both, whole.second, cellsOfRegion(region));
    });
  }

 private:
  static bool holdsHalf(size_t both, size_t ofOne, size_t ofOther) {
    return both > 0 && 2 * both >= std::min(ofOne, ofOther);
  }

  template <class Key>
  static size_t countOf(const std::map<Key, size_t>& counts, const Key& key) {
    const auto found = counts.find(key);
    return found == counts.end() ? 0 : found->second;
  }

  std::map<uint16_t, size_t> regions_, objects_, wholes_;
  std::map<std::pair<uint16_t, uint16_t>, size_t> shared_, sharedWholes_;
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
  j.cutOff = overlaps.isCutOff(object);
  for (const Thing& region : regions) {
    j.regions.push_back(region.number);
    j.cutOff |= region.atPictureEdge;
  }
  if (j.verdict == Verdict::found) {
    const Thing& region = regions.front();
    j.positionMm = std::hypot(region.centreXMm - object.centreXMm, region.centreYMm - object.centreYMm);
    j.heightMm = region.highestMm - object.highestMm;
    j.area = static_cast<double>(overlaps.cellsOfRegion(region)) / static_cast<double>(overlaps.cellsOf(object)) - 1;
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

size_t RegionEvaluation::missedCutOff() const {
  return static_cast<size_t>(std::count_if(objects.begin(), objects.end(),
                                           [](const Judged& j) { return j.verdict == Verdict::missed && j.cutOff; }));
}

RegionEvaluation evaluateRegions(const ThingMap& found, const ThingMap& truth, const Grid<uint8_t>& known) {
  const Overlaps overlaps(found, truth, known);
  const Things objects = thingsWith(truth.things, [&](const Thing& object) { return overlaps.cellsOf(object) > 0; });
  RegionEvaluation e;
  for (const Thing& object : objects) e.objects.push_back(judgedObject(object, found, objects, overlaps));
  e.falseRegions = thingsWith(found.things, [&](const Thing& region) {
    return !overlaps.isOnCutOff(region) && std::none_of(objects.begin(), objects.end(), [&](const Thing& object) {
      return overlaps.belongTogether(object, region);
    });
  });
  return e;
}

}  // namespace nadir::tool
