// The averages of the library, over a window of maps.
#include "ground/tracks/average.hpp"

#include <nadir/imgproc.h>

#include <cstring>

#include "ground/records/plane_view.hpp"

namespace nadir::ground {

MapWindow mapWindow(Arena& arena, const Shape& shape, uint32_t room) {
  MapWindow w{room, 0, 0, nullptr, nullptr, nullptr, nullptr};
  if (room == 0) return w;
  w.maps = arena.take<uint16_t>(room * shape.cells());
  w.mean = arena.take<uint16_t>(shape.cells());
  w.counts = arena.take<uint16_t>(shape.cells());
  w.sums = arena.take<int32_t>(shape.cells());
  return w;
}

void addMap(MapWindow& w, const Shape& shape, const NadirPlane& heights) {
  if (w.room == 0) return;
  uint16_t* map = w.maps + w.next * shape.cells();
  for (uint32_t y = 0; y < shape.mapHeight; ++y)
    std::memcpy(map + size_t{y} * shape.mapWidth, static_cast<const uint8_t*>(heights.data) + y * heights.stride,
                shape.mapWidth * sizeof *map);
  w.next = (w.next + 1) % w.room;
  w.count += w.count < w.room;
}

const uint16_t* meanOf(const MapWindow& w, const Shape& shape) {
  Img mean = imageOf(w.mean, shape.mapWidth, shape.mapHeight);
  Img count = imageOf(w.counts, shape.mapWidth, shape.mapHeight);
  Img sum = {mean.width, mean.height, 4, IMG_TYPE_S32, w.sums};
  ImgAvrgState state;
  IP_Utils_ImgAvrgInit(&mean, &sum, &count, &state);
  for (uint32_t i = 0; i < w.count; ++i) {
    const Img map = imageOf(w.maps + i * shape.cells(), shape.mapWidth, shape.mapHeight);
    IP_Utils_ImgAvrgAdd(&map, &sum, &count, &state);
  }
  IP_Utils_ImgAvrgProcess(&mean, &sum, &count, &state);
  return w.mean;
}

}  // namespace nadir::ground
