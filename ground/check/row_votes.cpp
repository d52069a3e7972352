// All planes of whole rows over the picture are tried: Hough's transform, with densities for votes.
#include "ground/check/row_votes.hpp"

namespace nadir::ground {

namespace {

// What many planes explain as well is explained by the one that asks for least.
constexpr double reluctance = 1e-4;  // share of the picture per row

// Where a part begins of a side that is cut into so many.
uint32_t beginOf(uint32_t part, uint32_t parts, uint32_t side) { return (part * side + parts - 1) / parts; }

float densityIn(const LookPair& pair, uint32_t left, uint32_t right, uint32_t top, uint32_t bottom) {
  uint32_t matched = 0;
  for (uint32_t y = top; y < bottom; ++y)
    for (uint32_t x = left; x < right; ++x) matched += pair.disparity[size_t{y} * pair.width + x] != 0;
  return static_cast<float>(matched) / static_cast<float>((right - left) * (bottom - top));
}

void takeDensities(const LookPair& pair, float (&share)[partCount]) {
  for (uint32_t part = 0; part < partCount; ++part) {
    const uint32_t column = part % partsAcross, row = part / partsAcross;
    share[part] =
        densityIn(pair, beginOf(column, partsAcross, pair.width), beginOf(column + 1, partsAcross, pair.width),
                  beginOf(row, partsDown, pair.height), beginOf(row + 1, partsDown, pair.height));
  }
}

Place placeOfPart(uint32_t part, double aspect) {
  const uint32_t column = part % partsAcross, row = part / partsAcross;
  return {(2.0 * column + 1) / partsAcross - 1, ((2.0 * row + 1) / partsDown - 1) * aspect};
}

// Between two shifts; nothing beyond the farthest one.
double densityAt(const Densities& densities, uint32_t part, double rows) {
  const double at = rows + farthestShift;
  if (!(at >= 0 && at < shifts - 1)) return 0;
  const auto low = static_cast<uint32_t>(at);
  const double f = at - low;
  return (1 - f) * double(densities.share[low][part]) + f * double(densities.share[low + 1][part]);
}

double shareOf(const RowField& plane, const Densities& densities, const Place (&places)[partCount]) {
  double sum = 0;
  for (uint32_t part = 0; part < partCount; ++part) {
    const double rows = plane.rows[0] + plane.rows[1] * places[part].across + plane.rows[2] * places[part].down;
    sum += densityAt(densities, part, rows);
  }
  return sum / partCount;
}

int32_t absolute(int32_t rows) { return rows < 0 ? -rows : rows; }

Vote elected(const Densities& densities, double aspect) {
  Place places[partCount];
  for (uint32_t part = 0; part < partCount; ++part) places[part] = placeOfPart(part, aspect);
  Vote best{{}, -1};
  double most = -1;
  constexpr int32_t far = farthestShift;
  for (int32_t shift = -far; shift <= far; ++shift)
    for (int32_t across = -far; across <= far; ++across)
      for (int32_t down = -far; down <= far; ++down) {
        const RowField plane{{double(shift), double(across), double(down)}};
        const double share = shareOf(plane, densities, places);
        const double score = share - reluctance * (absolute(shift) + absolute(across) + absolute(down));
        if (score > most) most = score, best = {plane, share};
      }
  return best;
}

}  // namespace

Vote vote(const LookPair& pair, int32_t columns, Densities& densities) {
  for (uint32_t i = 0; i < shifts; ++i) {
    look(pair, static_cast<int32_t>(i) - farthestShift, columns);
    takeDensities(pair, densities.share[i]);
  }
  return elected(densities, static_cast<double>(pair.height) / pair.width);
}

}  // namespace nadir::ground
