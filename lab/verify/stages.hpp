// The stages: each runs some of the library's functions on the material.
#pragma once

#include <string>

#include "lab/fingerprint.hpp"
#include "lab/image.hpp"
#include "lab/verify/material.hpp"

namespace nadir::verify {

using lab::Fingerprint;
using lab::Picture;

struct Stage {
  std::string name;
  Fingerprint (*run)(const Material&);
};

using Stages = std::vector<Stage>;

// They stand in the order of a picture's way through the library; first the material itself.
Stages allStages();

// A file each.
Stages materialStages();
Stages imageStages();
Stages stereoStages();
Stages cameraStages();
Stages segmentStages();
Stages geometryStages();
Stages numberStages();
Stages groundStages();

}  // namespace nadir::verify
