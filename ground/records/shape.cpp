// Cells and areas of the map become counts.
#include "ground/records/shape.hpp"

#include <cstring>

namespace nadir::ground {

namespace {

double squareMetresOfCell(const NadirCamera& camera) {
  return static_cast<double>(camera.cell_mm) * camera.cell_mm / 1e6;
}

// A patch of exactly that area counts as no larger, although the quotient may come out a little below a whole number.
uint32_t cellsIn(double squareMetres, const NadirCamera& camera) {
  const double cells = squareMetres * 1e6 / camera.cell_mm / camera.cell_mm + 1e-9;
  return cells >= UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(cells);
}

// Every region has as many cells as its area asks for, of which rounding may take one.
uint32_t mostRegions(const NadirCamera& camera, const NadirSettings& settings) {
  const double cells = static_cast<double>(camera.map_width_cells) * camera.map_height_cells;
  const double least = settings.min_area_m2 / squareMetresOfCell(camera) - 1;
  return static_cast<uint32_t>(least > 1 ? cells / least : cells);
}

}  // namespace

Shape shapeOf(const NadirCamera& camera, const NadirSettings& settings, uint32_t areaCount) {
  Shape shape{};
  shape.width = camera.width_px;
  shape.height = camera.height_px;
  shape.until = settings.until;
  if (shape.hasMap()) {
    shape.mapWidth = camera.map_width_cells;
    shape.mapHeight = camera.map_height_cells;
    shape.fillable = cellsIn(settings.fill_holes_m2, camera);
  }
  if (shape.hasRegions()) {
    shape.areas = areaCount;
    shape.regions = mostRegions(camera, settings);
  }
  return shape;
}

// FNV-1a over the record, which has no gaps.
uint64_t settingsHash(const NadirSettings& settings) {
  static_assert(sizeof(NadirSettings) == 10 * sizeof(uint32_t) + 6 * sizeof(double), "no byte is left to chance");
  const auto* bytes = reinterpret_cast<const uint8_t*>(&settings);
  uint64_t hash = 0xcbf29ce484222325U;
  for (size_t i = 0; i < sizeof settings; ++i) hash = (hash ^ bytes[i]) * 0x100000001b3U;
  return hash;
}

bool areEqual(const Shape& a, const Shape& b) { return std::memcmp(&a, &b, sizeof(Shape)) == 0; }

}  // namespace nadir::ground
