// The map is flooded from its tops.
#include "ground/stations/parts.hpp"

namespace nadir::ground {

namespace {

constexpr uint16_t untaken = 0xFFFF;  // no cell: there are at most 128 x 128

class Parts {
 public:
  Parts(const uint16_t* heights, const uint16_t* labels, const PartRule& rule, const Shape& shape, PartCell* memory)
      : heights_(heights),
        labels_(labels),
        rule_(rule),
        width_(shape.mapWidth),
        cells_(shape.cells()),
        memory_(memory) {
    for (uint32_t i = 0; i < cells_; ++i) memory_[i] = {static_cast<uint16_t>(i), untaken, 0, 0};
    sortByHeight();
  }

  void flood() {
    for (uint32_t i = 0; i < cells_; ++i)
      if (labels_[memory_[i].order] != 0) take(memory_[i].order);
  }

  // The chain is shortened on the way, so that long ones are walked once.
  uint16_t partOf(uint16_t cell) {
    while (memory_[cell].towards != cell) {
      memory_[cell].towards = memory_[memory_[cell].towards].towards;
      cell = memory_[cell].towards;
    }
    return cell;
  }

 private:
  // Of equal heights the first cell comes first.
  bool comesBefore(uint16_t a, uint16_t b) const {
    return heights_[a] != heights_[b] ? heights_[a] > heights_[b] : a < b;
  }

  // Sinks the record at `root` in a heap of `count` whose first one comes last.
  void sink(uint32_t root, uint32_t count) {
    for (uint32_t child = 2 * root + 1; child < count; root = child, child = 2 * root + 1) {
      if (child + 1 < count && comesBefore(order(child), order(child + 1))) ++child;
      if (!comesBefore(order(root), order(child))) return;
      exchange(root, child);
    }
  }

  // Heapsort takes no memory, and its time does not depend on the map.
  void sortByHeight() {
    for (auto root = static_cast<uint32_t>(cells_ / 2); root-- > 0;) sink(root, static_cast<uint32_t>(cells_));
    for (auto last = static_cast<uint32_t>(cells_); last-- > 1;) {
      exchange(0, last);
      sink(0, last);
    }
  }

  uint16_t order(uint32_t place) const { return memory_[place].order; }

  void exchange(uint32_t a, uint32_t b) {
    const uint16_t order = memory_[a].order;
    memory_[a].order = memory_[b].order;
    memory_[b].order = order;
  }

  // A cell goes to the highest of its neighbours, which its surface rises to.
  void take(uint16_t cell) {
    const uint16_t column = static_cast<uint16_t>(cell % width_);
    uint16_t highest = untaken;
    const auto look = [&](bool exists, uint32_t neighbour) {
      if (exists) lookAt(static_cast<uint16_t>(neighbour), cell, highest);
    };
    look(cell >= width_, cell - width_);
    look(column > 0, cell - 1u);
    look(column + 1u < width_, cell + 1u);
    look(cell + width_ < cells_, cell + width_);
    memory_[cell].towards = highest == untaken ? cell : partOf(highest);
    grow(partOf(cell), heights_[cell]);
  }

  // Joins the part of a neighbour with that of the highest one so far, if they must.
  void lookAt(uint16_t neighbour, uint16_t cell, uint16_t& highest) {
    if (labels_[neighbour] != labels_[cell] || memory_[neighbour].towards == untaken) return;
    if (highest == untaken) {
      highest = neighbour;
      return;
    }
    const uint16_t one = partOf(highest), other = partOf(neighbour);
    if (one != other && !(standsOut(one, heights_[cell]) && standsOut(other, heights_[cell]))) join(one, other);
    if (comesBefore(neighbour, highest)) highest = neighbour;
  }

  bool standsOut(uint16_t part, uint16_t height) const {
    return memory_[part].top != 0 && memory_[part].top - height >= rule_.dip;
  }

  void join(uint16_t one, uint16_t other) {
    PartCell &a = memory_[one], &b = memory_[other];
    const uint16_t cells = static_cast<uint16_t>(a.cells + b.cells), top = a.top > b.top ? a.top : b.top;
    b.towards = one;
    a.cells = cells;
    a.top = top;
  }

  void grow(uint16_t part, uint16_t height) {
    PartCell& p = memory_[part];
    ++p.cells;
    if (p.top == 0 && p.cells >= rule_.leastCells) p.top = height;
  }

  const uint16_t *heights_, *labels_;
  const PartRule& rule_;
  uint32_t width_;
  uint64_t cells_;
  PartCell* memory_;
};

}  // namespace

void part(const uint16_t* heights, const PartRule& rule, const Shape& shape, PartCell* memory, uint16_t* labels) {
  Parts parts(heights, labels, rule, shape, memory);
  parts.flood();
  uint16_t count = 0;
  for (uint32_t i = 0; i < shape.cells(); ++i) memory[i].top = 0;  // which become the new labels
  for (uint32_t i = 0; i < shape.cells(); ++i) {
    if (labels[i] == 0) continue;
    uint16_t& label = memory[parts.partOf(static_cast<uint16_t>(i))].top;
    if (label == 0) label = ++count;
    labels[i] = label;
  }
}

}  // namespace nadir::ground
