#include "lab/scene/render.hpp"

#include <cmath>
#include <limits>

#include "lab/scene/hash.hpp"
#include "lab/scene/texture.hpp"

namespace nadir::scene {

namespace {

// ---- rows ----

bool reachesBetween(const Solid& solid, const View& view, double above, double below) {
  const auto beyond = [&](double y) {
    const Vec normal = view.down - view.forward * ((y - view.principalY) / view.focal);
    return dot(normal, solid.middle - view.centre) / std::sqrt(dot(normal, normal));
  };
  return beyond(above) > -solid.reach && beyond(below) < solid.reach;
}

// What can be seen in a row. Both cameras lie in the planes that bound it, so it is the same for both.
Objects objectsInRow(const Scene& scene, const View& view, uint32_t y) {
  Objects objects;
  for (const Object& object : scene.objects)
    if (reachesBetween(object.solid, view, y - 0.5, y + 0.5)) objects.push_back(&object);
  return objects;
}

// ---- pictures ----

constexpr double skyIntensity = 3200;

// A light from above, a little from the side: the faces of a box differ.
double shading(const Vec& normal) { return 0.6 + 0.4 * dot(normal, Vec{0.36, 0.48, -0.8}); }

double intensity(const Objects& objects, const View& view, const Ray& ray) {
  const Sight sight = firstSeen(objects, ray);
  if (!sight.object) return skyIntensity;
  const Vec place = ray.at(sight.hit.distance) - sight.object->anchor;
  const double pattern = texture(sight.object->pattern, place, sight.hit.distance / view.focal);
  return 1700 * sight.object->brightness * shading(sight.hit.normal) * (1 + 0.9 * pattern);
}

// 2 x 2 rays, spread evenly over the pixel's area.
double pixelMean(const Objects& objects, const View& view, uint32_t x, uint32_t y) {
  double sum = 0;
  for (const double dy : {-0.25, 0.25})
    for (const double dx : {-0.25, 0.25}) sum += intensity(objects, view, view.ray(x + dx, y + dy));
  return sum / 4;
}

// Close to a normal distribution of deviation 1: the sum of four even ones.
double noiseAt(uint64_t key, uint32_t x, uint32_t y) {
  const uint64_t bits = hashAt(key, x, y);
  const auto part = [bits](int shift) { return static_cast<double>(bits >> shift & 0xFFFF) / 65535; };
  return (part(0) + part(16) + part(32) + part(48) - 2) * std::sqrt(3.0);
}

bool isDead(const View& view, uint32_t x, uint32_t y) {
  const double dx = x - 0.72 * view.width, dy = y - 0.6 * view.height, radius = 0.08 * view.width;
  return dx * dx + dy * dy < radius * radius;
}

uint16_t quantised(double value) {
  return static_cast<uint16_t>(std::min<double>(std::max<double>(value, darkest), brightest) + 0.5);
}

// ---- truth ----

// How much nearer another surface must be to hide a point, mm. Far above the rounding of doubles, far below what a
// disparity can tell.
constexpr double hidingTolerance = 0.01;

bool seenBy(const Objects& objects, const View& other, const Vec& point) {
  const ImagePoint image = other.project(point);
  if (!other.shows(image)) return false;
  const double depth = dot(point - other.centre, other.forward);
  return firstSeen(objects, other.ray(image.x, image.y)).hit.distance > depth - hidingTolerance;
}

// The truth about one picture, pixel by pixel.
class TruthFinder {
 public:
  TruthFinder(const Scene& scene, const Rig& rig, Side side)
      : scene_(scene),
        view_(rig.view(side)),
        other_(rig.view(side == Side::left ? Side::right : Side::left)),
        disparityTimesDepth_(view_.focal * rig.baseline) {}

  void find(ViewTruth& truth, uint32_t y) const {
    const Objects objects = objectsInRow(scene_, view_, y);
    for (uint32_t x = 0; x < view_.width; ++x) find(truth, objects, x, y);
  }

 private:
  void find(ViewTruth& truth, const Objects& objects, uint32_t x, uint32_t y) const {
    const Ray ray = view_.ray(x, y);
    const Sight sight = firstSeen(objects, ray);
    if (!sight.object) return;
    const Vec point = ray.at(sight.hit.distance);
    truth.disparity.at(x, y) = disparityTimesDepth_ / sight.hit.distance;
    truth.height.at(x, y) = scene_.groundZ - point.z;
    truth.occluded.at(x, y) = !seenBy(objects, other_, point);
  }

  const Scene& scene_;
  const View &view_, &other_;
  double disparityTimesDepth_;
};

}  // namespace

Grid<uint16_t> picture(const Scene& scene, const Rig& rig, Side side, const Sensor& sensor, const RowDone& rowDone) {
  const View& view = rig.view(side);
  const uint64_t noiseKey = mixed(~scene.seed) + 2 * sensor.frame + (side == Side::left ? 0 : 1);
  Grid<uint16_t> picture(view.width, view.height);
  for (uint32_t y = 0; y < view.height; ++y) {
    const Objects objects = objectsInRow(scene, view, y);
    for (uint32_t x = 0; x < view.width; ++x) {
      const double value = pixelMean(objects, view, x, y) + sensor.noise * noiseAt(noiseKey, x, y);
      picture.at(x, y) = sensor.deadArea && isDead(view, x, y) ? noData : quantised(value);
    }
    rowDone();
  }
  return picture;
}

ViewTruth truth(const Scene& scene, const Rig& rig, Side side, const RowDone& rowDone) {
  const View& view = rig.view(side);
  const TruthFinder finder(scene, rig, side);
  const Grid<double> unknown(view.width, view.height, std::numeric_limits<double>::quiet_NaN());
  ViewTruth truth{Grid<double>(view.width, view.height), unknown, Grid<uint8_t>(view.width, view.height)};
  for (uint32_t y = 0; y < view.height; ++y) {
    finder.find(truth, y);
    rowDone();
  }
  return truth;
}

MapTruth mapTruth(const Scene& scene, const Rig& rig, const MapLayout& layout) {
  const View& view = rig.view(rig.reference);
  const Vec middle = view.ray(view.principalX, view.principalY).at(scene.groundZ / view.forward.z);
  const double half = static_cast<double>(layout.width / 2 * layout.cell);
  const Grid<uint8_t> none(layout.width, layout.height);
  MapTruth map{middle.x - half, middle.y - half, Grid<double>(layout.width, layout.height),
               Grid<uint16_t>(layout.width, layout.height), none};
  Objects all;
  for (const Object& object : scene.objects) all.push_back(&object);
  for (uint32_t row = 0; row < layout.height; ++row)
    for (uint32_t column = 0; column < layout.width; ++column) {
      const double x = map.cornerX + (column + 0.5) * layout.cell, y = map.cornerY + (row + 0.5) * layout.cell;
      const Ray fromAbove{{x, y, scene.groundZ - 2 * scene.tallest - 1}, {0, 0, 1}};
      const Sight sight = firstSeen(all, fromAbove);
      const Vec top = fromAbove.at(sight.hit.distance);
      map.elevation.at(column, row) = scene.groundZ - top.z;
      map.region.at(column, row) = static_cast<uint16_t>(sight.object->region);
      map.inPicture.at(column, row) = dot(top - view.centre, view.forward) > 0 && view.shows(view.project(top));
    }
  return map;
}

}  // namespace nadir::scene
