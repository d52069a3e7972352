// The bodies that a scene is made of, and where rays meet them. Heights are above the ground, which is a plane of
// constant world z; the rays come from above every body.
#pragma once

#include <limits>
#include <variant>
#include <vector>

#include "lab/scene/vector.hpp"

namespace nadir::scene {

struct Hit {
  double distance = std::numeric_limits<double>::infinity();  // infinite where nothing is met
  Vec normal;                                                 // of length 1, towards the outside
};

struct Ground {
  double z;
};

// The points p that lie behind all of its planes: dot(normal, p) <= limit.
struct Polyhedron {
  struct Plane {
    Vec normal;
    double limit;
  };
  Plane planes[5];
};

// The part of a ball above a level plane.
struct Dome {
  Vec centre;
  double radius, baseZ;
};

// A ball that has been moved along a vertical line.
struct Capsule {
  Vec top, bottom;  // the ball's first and last centre
  double radius;
};

struct Solid {
  std::variant<Ground, Polyhedron, Dome, Capsule> shape;
  Vec middle;  // nothing of it is farther than `reach` from here
  double reach;
};

Hit meet(const Solid& solid, const Ray& ray);

// A place on the ground and the direction in which a body is turned: at 0 degrees its width lies along world x and its
// depth along world y.
struct Site {
  double x, y, groundZ, degrees;
};

struct Extent {
  double width, depth, height;
};

// The four corners of a body of this width and depth, on the ground.
std::vector<Vec> footprint(const Site& site, const Extent& extent);

Solid makeGround(double z);
Solid makeBox(const Site& site, const Extent& extent);

// Rises along its depth from the ground to its height.
Solid makeRamp(const Site& site, const Extent& extent);

// A box whose two long sides lean inwards: `crest` is what its width has become at the top.
Solid makeRidge(const Site& site, const Extent& extent, double crest);

// The radius is that of its circle at `base` above the ground, and not less than the height, which is measured from
// the base.
Solid makeDome(const Site& site, double radius, double height, double base = 0);

// The height must not be less than twice the radius.
Solid makeCapsule(const Site& site, double radius, double height);

}  // namespace nadir::scene
