// The scenes that can be asked for by name. They lie where the camera looks; but for people, they grow with the height
// at which it is mounted.
#pragma once

#include "lab/scene/camera.hpp"
#include "lab/scene/scene.hpp"

namespace nadir::scene {

struct ReadyScene {
  const char* name;
  const char* description;
};

const std::vector<ReadyScene>& readyScenes();

// name  one of readyScenes()
// seed     another one gives other textures and moves and turns the objects a little
// seconds  when: what walks is elsewhere then
Scene makeScene(const std::string& name, const Rig& rig, uint64_t seed, double seconds = 0);

}  // namespace nadir::scene
