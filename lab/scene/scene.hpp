// A scene: the objects that the cameras look at.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "lab/scene/solids.hpp"

namespace nadir::scene {

struct Object {
  Solid solid;
  uint32_t region = 0;    // the label on the map of regions; several objects may share one. 0 is the ground
  double brightness = 1;  // 1 is the ground's
  uint64_t pattern = 0;   // which texture
  std::string kind;
  std::vector<std::pair<std::string, double>> numbers;  // what describes it, named with units
  std::vector<Vec> footprint{};                         // its corners on the ground; round ones have none
  Vec anchor{};  // where the texture's origin lies: it goes along with what moves
};

struct Scene {
  std::string name;
  uint64_t seed = 1;  // of the sensor's noise
  double groundZ = 0;
  double tallest = 0;           // mm
  std::vector<Object> objects;  // the ground first
};

// The object that a ray meets first, and where.
struct Sight {
  const Object* object = nullptr;  // null: nothing, the ray goes over the horizon
  Hit hit;
};

using Objects = std::vector<const Object*>;

Sight firstSeen(const Objects& objects, const Ray& ray);

}  // namespace nadir::scene
