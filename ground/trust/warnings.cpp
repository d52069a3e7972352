// The thresholds. Each stands in the gap between what unspoilt pictures gave and what the fault gave: docs/trust.md has
// the figures and how they were measured.
#include "ground/trust/warnings.hpp"

namespace nadir::ground {

namespace {

constexpr double dark = 0.6;     // share of one picture: at most 0.11 unspoilt, 1.00 at a sixteenth of the exposure
constexpr double clipped = 0.1;  // at most 0.003 unspoilt, 0.69 and more at 4 times the exposure
constexpr double leastMatched = 0.56;  // at least 0.84 unspoilt; at most 0.32 swapped, 0.23 out of focus
constexpr double doubtful = 0.8;       // below it a second look is taken
constexpr double unmoved = 0.4;        // of the strip: 0.75 and more for the same picture twice
constexpr double exchanged =
    0.5;  // of the strip, 0.78 and more for swapped pictures; and one and a half times as many as given
constexpr double atEnd = 0.003;        // at most 0.0012 unspoilt; 0.0075 and more with people under a low camera
constexpr double cutOff = 0.0016;      // at most 0.0007 unspoilt; 0.0036 and more there
constexpr double nearerInHole = 0.04;  // and half of the hole
constexpr double below = 0.04;         // of the blocks: at most 0.012 unspoilt, 0.054 and more for a pit of 1 m by 1 m
constexpr double leastSeen = 0.35;     // of what is seen of a map at its best place: at least 0.89 unspoilt
constexpr double leastBlocks = 0.1;    // of the picture's, to say anything about the ground

struct List {
  NadirWarning* warnings;
  size_t count;

  void add(uint32_t id, uint32_t numbers, double a, double b = 0, double c = 0, double d = 0) {
    warnings[count++] = {sizeof(NadirWarning), id, numbers, 0, {a, b, c, d}};
  }
};

bool isDark(const NadirTrust& t) { return t.dark_left >= dark || t.dark_right >= dark; }

bool isClipped(const NadirTrust& t) { return t.clipped_left >= clipped || t.clipped_right >= clipped; }

double share(uint32_t part, uint32_t whole) { return whole ? static_cast<double>(part) / whole : 0; }

double matchedOf(const MatchedShares& m) { return share(m.matched, m.able); }

// With a strict peak check many pixels of good pictures have no value, and with a lax one most of spoilt ones have a
// wrong one; the second look takes the usual one.
bool isThin(const Evidence& e) {
  if (!e.matched || !e.look || e.look->asGiven >= leastMatched) return false;
  return e.isLax || matchedOf(*e.matched) < leastMatched;
}

bool isSame(const Evidence& e) { return isThin(e) && e.look->unmoved >= unmoved; }

bool isSwapped(const Evidence& e) {
  return isThin(e) && e.look->exchanged >= exchanged && e.look->exchanged >= 1.5 * e.look->asGiven;
}

// What lies beyond the range leaves a rim at its end where it slopes towards the camera, and a hole where it does not.
// Where little can be matched, wrong matches lie at the range's end as they lie everywhere, and are no rim.
bool isTooNear(const Evidence& e) {
  if (!e.matched) return false;
  const MatchedShares& m = *e.matched;
  if (!isThin(e) && share(m.atEnd, m.pixels) >= atEnd && share(m.cutOff, m.pixels) >= cutOff) return true;
  return e.look && e.look->nearerInHole >= nearerInHole && e.look->nearerInHole >= 0.5 * e.look->empty;
}

// What the pictures themselves are worth: the first cause hides the others, which follow from it. Returns whether there
// is one.
bool listPictures(const Evidence& e, List& list) {
  const NadirTrust& t = *e.trust;
  const size_t before = list.count;
  if (isDark(t)) list.add(NADIR_WARNING_TOO_DARK, 2, t.dark_left, t.dark_right);
  if (isClipped(t)) list.add(NADIR_WARNING_OVEREXPOSED, 2, t.clipped_left, t.clipped_right);
  if (list.count > before) return true;
  if (isSame(e))
    list.add(NADIR_WARNING_SAME_PICTURE, 1, e.look->unmoved);
  else if (isSwapped(e))
    list.add(NADIR_WARNING_SWAPPED, 2, e.look->asGiven, e.look->exchanged);
  else if (isTooNear(e))
    list.add(NADIR_WARNING_TOO_NEAR, 3, t.range_end, t.cut_off, t.least_top_mm);
  else if (isThin(e))
    list.add(NADIR_WARNING_LOW_DENSITY, 2, e.isLax ? e.look->asGiven : t.matched, leastMatched);
  return list.count > before;
}

double belowShare(const Agreement& a) {
  return a.blocks ? static_cast<double>(a.below) / static_cast<double>(a.blocks) : 0;
}

bool canJudgeGround(const Evidence& e) {
  return e.expected && static_cast<double>(e.expected->blocks) >= leastBlocks * static_cast<double>(e.possibleBlocks);
}

// True where the best plane explains what lies below the expected ground, and more besides: then that is no pit.
bool isAbove(const Agreement& expected, const Agreement& best) {
  return belowShare(expected) >= below && belowShare(best) < 0.5 * belowShare(expected) &&
         best.score() > expected.score();
}

// Returns whether the ground is where the camera file has it, as far as that can be told.
bool listGround(const Evidence& e, List& list) {
  if (!canJudgeGround(e)) return true;
  const NadirTrust& t = *e.trust;
  if (e.best && (!isThere(*e.expected, *e.best) || isAbove(*e.expected, *e.best))) {
    list.add(NADIR_WARNING_GROUND_ELSEWHERE, 4, t.found_height_mm, t.found_tilt_deg, t.found_pan_deg, t.found_share);
    return false;
  }
  if (t.below_ground >= below) list.add(NADIR_WARNING_BELOW_GROUND, 1, t.below_ground);
  return true;
}

constexpr uint32_t mostNumbers = sizeof NadirWarning::numbers / sizeof(double);

struct Description {
  const char* name;
  const char* sentence;
  const char* numbers[mostNumbers];
  double scales[mostNumbers];
};

constexpr Description descriptions[NADIR_WARNINGS] = {
    {"pictures-too-dark",
     "the pictures are too dark: %.0f %% of the left one and %.0f %% of the right one lie in the lowest eighth of the "
     "range",
     {"left_share", "right_share"},
     {100, 100}},
    {"pictures-overexposed",
     "the pictures are overexposed: %.0f %% of the left one and %.0f %% of the right one are at the end of the range",
     {"left_share", "right_share"},
     {100, 100}},
    {"same-picture-twice",
     "the left and the right picture are the same one: %.0f %% of what was looked at lies in the same place in both",
     {"unmoved_share"},
     {100}},
    {"left-and-right-swapped",
     "the left and the right picture are swapped: %.0f %% can be matched as they are, %.0f %% the other way round",
     {"matched_share", "exchanged_share"},
     {100, 100}},
    {"nearer-than-the-range",
     "something is nearer than can be measured: %.2f %% of the picture lie at the end of the range, %.2f %% are cut "
     "off there; on parts of the map heights above %.0f mm cannot be measured",
     {"range_end_share", "cut_off_share", "least_top_mm"},
     {100, 100, 1}},
    {"low-density",
     "too little can be matched: %.0f %% of the pixels, where textured and sharp pictures give more than %.0f %%",
     {"matched_share", "usual_share"},
     {100, 100}},
    {"ground-elsewhere",
     "the ground is not where the camera file says: the largest plane lies as from a height of %.0f mm, a tilt of %.1f "
     "and a pan of %.1f degrees, with %.0f %% of what was measured on it",
     {"height_mm", "tilt_deg", "pan_deg", "share"},
     {1, 1, 1, 100}},
    {"below-the-ground",
     "a part of the picture lies below the ground: %.0f %% of what was measured",
     {"below_share"},
     {100}},
    {"map-elsewhere",
     "the map lies where the camera does not look: %.0f %% of it are in the picture; moved by a further %.0f mm in x "
     "and %.0f mm in y it would be seen best",
     {"seen_share", "offset_x_mm", "offset_y_mm"},
     {100, 1, 1}},
};

const Description* descriptionOf(uint32_t id) {
  return id >= 1 && id <= NADIR_WARNINGS ? &descriptions[id - 1] : nullptr;
}

}  // namespace

bool asksForSecondLook(const MatchedShares& matched) { return matchedOf(matched) < doubtful; }

size_t listWarnings(const Evidence& e, NadirWarning* warnings) {
  List list{warnings, 0};
  const bool spoilt = listPictures(e, list), there = spoilt || listGround(e, list);
  if (there && e.map && e.map->seen < leastSeen * e.map->bestSeen)
    list.add(NADIR_WARNING_MAP_ELSEWHERE, 3, e.map->seen, e.map->offsetX, e.map->offsetY);
  return list.count;
}

}  // namespace nadir::ground

using nadir::ground::descriptionOf;

const char* nadir_warning_name(uint32_t id) {
  const auto* d = descriptionOf(id);
  return d ? d->name : nullptr;
}

const char* nadir_warning_number_name(uint32_t id, uint32_t number) {
  const auto* d = descriptionOf(id);
  return d && number < nadir::ground::mostNumbers ? d->numbers[number] : nullptr;
}

const char* nadir_warning_sentence(uint32_t id) {
  const auto* d = descriptionOf(id);
  return d ? d->sentence : nullptr;
}

double nadir_warning_scale(uint32_t id, uint32_t number) {
  const auto* d = descriptionOf(id);
  return d && number < nadir::ground::mostNumbers && d->numbers[number] ? d->scales[number] : 1;
}
