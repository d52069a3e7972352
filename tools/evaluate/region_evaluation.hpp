// The regions that nadir ground found against the objects of a rendered scene.
#pragma once

#include <string>
#include <vector>

#include "lab/grid.hpp"
#include "tools/base/map_place.hpp"

namespace nadir::tool {

using lab::Grid;

// A region of either side: what was found, or what stands there.
struct Thing {
  uint16_t number;
  std::string kind;  // of an object
  double centreXMm, centreYMm;
  double highestMm;
  bool atPictureEdge;  // of what was found
};

// Cells with the numbers of the things on them, 0 for none.
struct ThingMap {
  Grid<uint16_t> cells;
  MapPlace place;
  std::vector<Thing> things;
};

// A region belongs to an object if they share at least half of the cells of the smaller of the two: an object that is
// half hidden keeps its region, and one that a region merely touches does not get it. Less than a quarter of an
// object's cells says neither where it stands nor how high it is.
enum class Verdict {
  found,   // one region belongs to it, and to no other object; it holds at least a quarter of the object's cells
  missed,  // no region belongs to it, or together they hold less than a quarter of its cells
  split,   // several regions belong to it
  merged,  // a region that belongs to it belongs to another object, too
};

const char* nameOf(Verdict verdict);

struct Judged {
  Thing object;
  Verdict verdict;
  std::vector<uint16_t> regions;  // that belong to it
  double positionMm = 0;          // distance of the centres, of found ones
  double heightMm = 0;            // region's highest - object's, of found ones
  double area = 0;                // region's / object's - 1, of found ones
  bool cutOff = false;            // the pictures show a part of it alone, or its region says so
};

struct RegionEvaluation {
  std::vector<Judged> objects;
  std::vector<Thing> falseRegions;  // that belong to no object

  size_t count(Verdict verdict) const;
  size_t missedCutOff() const;
};

// The truth does not count where `known` is 0, which is what the picture does not show. Objects without a single known
// cell are left out. A region on the cells of a cut off object, or beside them, is not false.
RegionEvaluation evaluateRegions(const ThingMap& found, const ThingMap& truth, const Grid<uint8_t>& known);

}  // namespace nadir::tool
