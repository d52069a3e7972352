// From figures to warnings: which of them are beyond what good pictures give, and which are only consequences of
// others.
#pragma once

#include <nadir/ground.h>

#include <cstddef>

#include "ground/trust/ground_search.hpp"
#include "ground/trust/map_view.hpp"
#include "ground/trust/matched.hpp"
#include "ground/trust/second_look.hpp"

namespace nadir::ground {

// Everything that was measured for a frame. A null pointer says that it was not: without pictures, without a mount,
// with given disparities.
struct Evidence {
  const NadirTrust* trust;  // its shares
  const MatchedShares* matched = nullptr;
  bool isLax = false;                   // more wrong matches pass the peak check than that of a second look
  const SecondLook* look = nullptr;     // wherever asksForSecondLook says so
  const Agreement* expected = nullptr;  // of the camera file's ground
  const Agreement* best = nullptr;      // of the plane that a search found, where there was one
  size_t possibleBlocks = 0;            // of the picture
  const MapView* map = nullptr;
};

// True where so few pixels were placed that a second look is worth its time.
bool asksForSecondLook(const MatchedShares& matched);

// Lists the warnings in the order of their numbers; room for NADIR_WARNINGS. Returns how many.
size_t listWarnings(const Evidence& evidence, NadirWarning* warnings);

}  // namespace nadir::ground
