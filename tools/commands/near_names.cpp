// Names are as far apart as letters that have to be put in, taken out or exchanged (V. Levenshtein, "Binary codes
// capable of correcting deletions, insertions and reversals", Soviet Physics Doklady 10(8), 1966).
#include "tools/commands/near_names.hpp"

#include <algorithm>
#include <numeric>
#include <utility>

namespace nadir::tool {

namespace {

size_t distance(const std::string& a, const std::string& b) {
  std::vector<size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 0; i < a.size(); ++i) {
    size_t diagonal = std::exchange(row[0], i + 1);
    for (size_t j = 0; j < b.size(); ++j) {
      const size_t exchanged = diagonal + (a[i] != b[j]);
      diagonal = row[j + 1];
      row[j + 1] = std::min({exchanged, diagonal + 1, row[j] + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string nearest(const std::string& mistyped, const std::vector<std::string>& names) {
  std::string best;
  size_t least = (mistyped.size() + 1) / 3 + 1;
  for (const std::string& name : names) {
    const size_t letters = distance(mistyped, name);
    if (letters < least) {
      best = name;
      least = letters;
    }
  }
  return best;
}

}  // namespace nadir::tool
