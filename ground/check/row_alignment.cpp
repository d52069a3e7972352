// The pair is tried as it is, then exchanged, then with nearer things in the range, until nearly all of it is matched.
#include "ground/check/row_alignment.hpp"

namespace nadir::ground {

namespace {

// Columns are moved so that what lies a little beyond infinity is seen, too, in exchanged pictures and others. What is
// nearer than 55 columns comes into the range when the other picture is moved.
struct Trial {
  bool exchanged;
  int32_t columns;
};
constexpr Trial trials[] = {{false, 8}, {true, 8}, {false, -40}, {true, -40}};

// A pair is taken as it is if so much of it is matched; else what is matched best, which must be better by this factor,
// since things far away are matched both ways.
constexpr double enough = 0.75, better = 1.1;

// A pair that is off by five rows at an edge settles after two rounds.
constexpr int corrections = 3;

LookPair takePair(const RowAlignmentMemory& m, const Trial& trial, const uint16_t* left, const uint16_t* right) {
  LookPair pair = m.look;
  pair.first = trial.exchanged ? right : left;
  pair.reference = trial.exchanged ? left : right;
  takeCodes(pair);
  return pair;
}

// Lists the errors that remain with the reference as the field moves it.
size_t listErrors(const RowAlignmentMemory& m, const LookPair& pair, const Trial& trial, const RowField& field) {
  moveRows(pair.reference, pair.width, pair.height, field, m.moved);
  LookPair moved = pair;
  moved.reference = m.moved;
  takeCodes(moved);
  look(moved, 0, trial.columns);
  return listErrors(moved, trial.columns, m.errors);
}

// What was measured in exchanged pictures, as the right one shows it.
void exchange(RowField& field, RowError* errors, size_t count) {
  for (double& rows : field.rows) rows = -rows;
  for (size_t i = 0; i < count; ++i) {
    errors[i].rows = -errors[i].rows;
    errors[i].disparity = -errors[i].disparity;
  }
}

// What a trial comes to: nothing needs to be voted for where nearly all is matched without.
Vote outcome(const RowAlignmentMemory& m, const LookPair& pair, const Trial& trial, double& matched) {
  look(pair, 0, trial.columns);
  matched = matchedShare(pair);
  return matched >= enough ? Vote{{}, matched} : vote(pair, trial.columns, *m.densities);
}

Trial bestTrial(const RowAlignmentMemory& m, const uint16_t* left, const uint16_t* right, RowAlignment& result) {
  Trial best = trials[0];
  double most = 0;
  for (const Trial& trial : trials) {
    const LookPair pair = takePair(m, trial, left, right);
    double matched = 0;
    const Vote vote = outcome(m, pair, trial, matched);
    if (&trial == trials) result.matched = matched;
    if (vote.share > better * most) best = trial, most = vote.share, result.field = vote.field;
    if (most >= enough) break;
  }
  return best;
}

}  // namespace

RowAlignmentMemory rowAlignmentMemory(Arena& arena, uint32_t width, uint32_t height) {
  RowAlignmentMemory m{};
  m.look = lookPair(arena, width, height);
  m.densities = arena.take<Densities>();
  m.moved = arena.take<uint16_t>(uint64_t{width} * height);
  m.errors = arena.take<RowError>(largestErrorCount(width, height));
  return m;
}

RowAlignment rowAlignment(RowAlignmentMemory& m, const uint16_t* left, const uint16_t* right) {
  RowAlignment result{};
  const Trial trial = bestTrial(m, left, right, result);
  const LookPair pair = takePair(m, trial, left, right);
  for (int i = 0; i < corrections; ++i) {
    result.errors = listErrors(m, pair, trial, result.field);
    if (result.errors >= leastErrors) correct(result.field, m.errors, result.errors);
  }
  result.errors = listErrors(m, pair, trial, result.field);
  result.matchedAligned = matchedShare(pair);
  if (trial.exchanged) exchange(result.field, m.errors, result.errors);
  return result;
}

}  // namespace nadir::ground
