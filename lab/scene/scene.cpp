// Finds what a ray meets first.
#include "lab/scene/scene.hpp"

namespace nadir::scene {

Sight firstSeen(const Objects& objects, const Ray& ray) {
  Sight nearest;
  for (const Object* object : objects) {
    const Hit hit = meet(object->solid, ray);
    if (hit.distance < nearest.hit.distance) nearest = {object, hit};
  }
  return nearest;
}

}  // namespace nadir::scene
