// The bodies: how they are made, and where a ray meets each of them.
#include "lab/scene/solids.hpp"

#include <algorithm>
#include <cmath>

#include "lab/scene/angle.hpp"

namespace nadir::scene {

namespace {

// ---- rays ----

Hit meetShape(const Ground& ground, const Ray& ray) {
  if (ray.direction.z <= 0) return {};
  return {(ground.z - ray.origin.z) / ray.direction.z, {0, 0, -1}};
}

// The ray is inside between the last plane that it enters and the first that it leaves.
Hit meetShape(const Polyhedron& solid, const Ray& ray) {
  Hit entry{0, {}};
  double exit = std::numeric_limits<double>::infinity();
  for (const Polyhedron::Plane& plane : solid.planes) {
    const double outwards = dot(plane.normal, ray.direction);
    const double room = plane.limit - dot(plane.normal, ray.origin);
    if (outwards > 0) exit = std::min(exit, room / outwards);
    if (outwards < 0 && room / outwards > entry.distance) entry = {room / outwards, plane.normal};
    if (outwards == 0 && room < 0) return {};
  }
  return entry.distance > 0 && entry.distance < exit ? entry : Hit{};
}

// The smaller root of a t^2 + 2 b t + c, infinite where there is none.
double firstRoot(double a, double b, double c) {
  const double discriminant = b * b - a * c;
  if (discriminant < 0 || a == 0) return std::numeric_limits<double>::infinity();
  return (-b - std::sqrt(discriminant)) / a;
}

Hit meetBall(const Vec& centre, double radius, const Ray& ray) {
  const Vec start = ray.origin - centre;
  const double distance =
      firstRoot(dot(ray.direction, ray.direction), dot(ray.direction, start), dot(start, start) - radius * radius);
  if (!(distance > 0) || std::isinf(distance)) return {};
  return {distance, (start + ray.direction * distance) * (1 / radius)};
}

Hit meetShape(const Dome& dome, const Ray& ray) {
  const Hit hit = meetBall(dome.centre, dome.radius, ray);
  return std::isinf(hit.distance) || ray.at(hit.distance).z > dome.baseZ ? Hit{} : hit;
}

// The capsule's wall: a ball's circle of contact, without the vertical direction.
Hit meetWall(const Capsule& capsule, const Ray& ray) {
  const Vec across{ray.direction.x, ray.direction.y, 0};
  const Vec start{ray.origin.x - capsule.top.x, ray.origin.y - capsule.top.y, 0};
  const double distance =
      firstRoot(dot(across, across), dot(across, start), dot(start, start) - capsule.radius * capsule.radius);
  if (!(distance > 0) || std::isinf(distance)) return {};
  const double z = ray.at(distance).z;
  if (z < capsule.top.z || z > capsule.bottom.z) return {};
  return {distance, (start + across * distance) * (1 / capsule.radius)};
}

Hit nearer(const Hit& a, const Hit& b) { return b.distance < a.distance ? b : a; }

Hit meetShape(const Capsule& capsule, const Ray& ray) {
  const Hit ends = nearer(meetBall(capsule.top, capsule.radius, ray), meetBall(capsule.bottom, capsule.radius, ray));
  return nearer(ends, meetWall(capsule, ray));
}

// ---- making ----

// The directions of a body: along its width, along its depth, up.
struct Axes {
  Vec width, depth, up;
};

Axes axes(const Site& site) {
  const Angle turn = angle(site.degrees);
  return {{turn.cosine, turn.sine, 0}, {-turn.sine, turn.cosine, 0}, {0, 0, -1}};
}

// A plane through a point of the body, both in its own directions with the site as origin.
Polyhedron::Plane plane(const Site& site, const Vec& normal, const Vec& through) {
  const Axes a = axes(site);
  const auto inWorld = [&a](const Vec& v) { return a.width * v.x + a.depth * v.y + a.up * v.z; };
  const Vec unit = inWorld(normal) * (1 / std::sqrt(dot(normal, normal)));
  return {unit, dot(unit, Vec{site.x, site.y, site.groundZ} + inWorld(through))};
}

// Five planes are enough: what reaches below the ground is never seen.
Solid polyhedron(const Site& site, const Extent& e, const Vec& top, double lean) {
  const double w = e.width / 2, d = e.depth / 2, h = e.height / 2;
  const Polyhedron shape{{plane(site, {e.height, 0, lean}, {w, 0, 0}), plane(site, {-e.height, 0, lean}, {-w, 0, 0}),
                          plane(site, {0, 1, 0}, {0, d, 0}), plane(site, {0, -1, 0}, {0, -d, 0}),
                          plane(site, top, {0, d, e.height})}};
  return {shape, {site.x, site.y, site.groundZ - h}, std::sqrt(w * w + d * d + h * h)};
}

}  // namespace

Hit meet(const Solid& solid, const Ray& ray) {
  return std::visit([&ray](const auto& shape) { return meetShape(shape, ray); }, solid.shape);
}

std::vector<Vec> footprint(const Site& site, const Extent& extent) {
  const Axes a = axes(site);
  const Vec foot{site.x, site.y, site.groundZ}, across = a.width * (extent.width / 2),
                                                along = a.depth * (extent.depth / 2);
  return {foot - across - along, foot + across - along, foot + across + along, foot - across + along};
}

Solid makeGround(double z) { return {Ground{z}, {0, 0, z}, std::numeric_limits<double>::infinity()}; }

Solid makeBox(const Site& site, const Extent& extent) { return polyhedron(site, extent, {0, 0, 1}, 0); }

Solid makeRamp(const Site& site, const Extent& extent) {
  return polyhedron(site, extent, {0, -extent.height, extent.depth}, 0);
}

Solid makeRidge(const Site& site, const Extent& extent, double crest) {
  return polyhedron(site, extent, {0, 0, 1}, (extent.width - crest) / 2);
}

// The ball through the rim and the summit: R^2 = radius^2 + (R - height)^2.
Solid makeDome(const Site& site, double radius, double height, double base) {
  const double ball = (radius * radius + height * height) / (2 * height);
  const Vec foot{site.x, site.y, site.groundZ - base};
  return {Dome{{foot.x, foot.y, foot.z - height + ball}, ball, foot.z}, foot, radius};
}

Solid makeCapsule(const Site& site, double radius, double height) {
  const Vec foot{site.x, site.y, site.groundZ};
  const Vec up{0, 0, -1};
  return {Capsule{foot + up * (height - radius), foot + up * radius, radius}, foot + up * (height / 2), height / 2};
}

}  // namespace nadir::scene
