// Disjoint sets of numbers as a forest: every number has a parent in its set, which is never larger than itself, and a
// root is its own parent. So the root of a set is its smallest member.
#pragma once

#include <cstdint>
#include <utility>

namespace nadir {

// Halves the path on the way up (Tarjan and van Leeuwen, 1984), which keeps all paths short.
template <class T>
T rootOf(T* parents, T member) {
  while (parents[member] != member) member = parents[member] = parents[parents[member]];
  return member;
}

// Makes one set of those of a and b and returns its root.
template <class T>
T unite(T* parents, T a, T b) {
  a = rootOf(parents, a);
  b = rootOf(parents, b);
  if (a > b) std::swap(a, b);
  return parents[b] = a;
}

// Provisional labels 1, 2, ... and which of them turned out to mean the same region. The root of a set is the label
// that was given first, so the order of roots is the raster order of the regions' first pixels.
template <uint16_t capacity>
class LabelSets {
 public:
  void clear() { count_ = 0; }

  // Gives a new label, a set of its own; at most capacity of them fit.
  uint16_t add() {
    ++count_;
    return parents_[count_] = count_;
  }

  uint16_t unite(uint16_t a, uint16_t b) { return nadir::unite(parents_, a, b); }

  // Numbers the sets from 1 and returns how many there are. After that only number() means anything.
  uint16_t numberSets() {
    uint16_t sets = 0;
    for (uint16_t label = 1; label <= count_; ++label) {
      const uint16_t parent = parents_[label];
      parents_[label] = parent == label ? ++sets : parents_[parent];
    }
    return sets;
  }

  // The number of the set that the label belongs to.
  uint16_t number(uint16_t label) const { return parents_[label]; }

 private:
  uint16_t count_;
  uint16_t parents_[capacity + 1];  // none for label 0, which stands for no label
};

}  // namespace nadir
