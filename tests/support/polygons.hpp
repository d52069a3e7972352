// Polygons as the library takes them, a count and the vertices behind it, in buffers of the tests.
#pragma once

#include <nadir/geometry.h>

#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "tests/support/guarded.hpp"

namespace nadir::test {

template <class Point>
struct PolygonOf;
template <>
struct PolygonOf<Point_s32> {
  using Type = Polygon_s32;
};
template <>
struct PolygonOf<Point_f32> {
  using Type = Polygon_f32;
};

// Storage is a container of words: std::vector for speed, Guarded to catch every access behind the last vertex.
template <class Point, class Storage>
class StoredPolygon {
 public:
  using Record = typename PolygonOf<Point>::Type;

  explicit StoredPolygon(const std::vector<Point>& vertices)
      : StoredPolygon(vertices, static_cast<uint32_t>(vertices.size())) {}
  // The count need not be the number of vertices stored.
  StoredPolygon(const std::vector<Point>& vertices, uint32_t count) : words_(1 + 2 * vertices.size()) {
    words_.data()[0] = count;
    if (!vertices.empty()) std::memcpy(words_.data() + 1, vertices.data(), vertices.size() * sizeof(Point));
  }

  Record* get() { return reinterpret_cast<Record*>(words_.data()); }
  uint32_t count() {
    uint32_t n;
    std::memcpy(&n, words_.data(), sizeof n);
    return n;
  }
  // Every slot, those behind the count too, as the words of its x and y.
  std::vector<std::pair<uint32_t, uint32_t>> slots() {
    std::vector<std::pair<uint32_t, uint32_t>> all((words_.size() - 1) / 2);
    for (size_t i = 0; i < all.size(); i++) {
      std::memcpy(&all[i].first, words_.data() + 1 + 2 * i, 4);
      std::memcpy(&all[i].second, words_.data() + 2 + 2 * i, 4);
    }
    return all;
  }

 private:
  Storage words_;
};

using PolygonS = StoredPolygon<Point_s32, std::vector<uint32_t>>;
using PolygonF = StoredPolygon<Point_f32, std::vector<uint32_t>>;
using GuardedPolygonS = StoredPolygon<Point_s32, Guarded<uint32_t>>;
using GuardedPolygonF = StoredPolygon<Point_f32, Guarded<uint32_t>>;

}  // namespace nadir::test
