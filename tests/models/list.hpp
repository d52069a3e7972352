// A list once more, over standard containers: what a list must hold after any sequence of calls.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace nadir::test::model {

using Item = std::vector<uint8_t>;

class List {
 public:
  static constexpr size_t nowhere = SIZE_MAX;

  // `slots` is the size of the pool; a dynamic list has none and never runs out of nodes.
  List(int64_t maxCount, bool isStatic, size_t slots) : maxCount_(maxCount), isStatic_(isStatic), taken_(slots) {}

  // An insertion takes this slot, and the list then holds the item or does not.
  struct Outcome {
    size_t slot;
    bool inserted;
  };

  // Puts the item at `position`; `lost` is an insertion next to nothing, which takes its slot and does not give it
  // back.
  Outcome insert(size_t position, const Item& item, bool lost) {
    if (static_cast<int64_t>(items_.size()) == maxCount_) return {nowhere, false};
    const size_t slot = takeLowest();
    if (isStatic_ && slot == nowhere) return {nowhere, false};
    if (lost) return {slot, false};
    items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(position), item);
    slots_.insert(slots_.begin() + static_cast<std::ptrdiff_t>(position), slot);
    return {slot, true};
  }

  void erase(size_t position) {
    if (isStatic_) taken_[slots_[position]] = false;
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(position));
    slots_.erase(slots_.begin() + static_cast<std::ptrdiff_t>(position));
  }

  const std::vector<Item>& items() const { return items_; }
  const std::vector<size_t>& slots() const { return slots_; }
  bool isTaken(size_t slot) const { return taken_[slot]; }

 private:
  size_t takeLowest() {
    for (size_t slot = 0; slot < taken_.size(); ++slot) {
      if (taken_[slot]) continue;
      taken_[slot] = true;
      return slot;
    }
    return nowhere;
  }

  int64_t maxCount_;
  bool isStatic_;
  std::vector<bool> taken_;
  std::vector<Item> items_;
  std::vector<size_t> slots_;
};

}  // namespace nadir::test::model
