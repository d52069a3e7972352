// All stages in their order, and the one of the material itself.
#include "lab/verify/stages.hpp"

namespace nadir::verify {

namespace {

Fingerprint scene(const Material& m) {
  Fingerprint print;
  print.add(m.left).add(m.right).add(m.disparity).add(m.occluded).add(m.groundDepth).add(m.elevation);
  return print;
}

}  // namespace

// Not the library's work: if it differs, the stages have worked on something else and their hashes say nothing.
Stages materialStages() { return {{"scene", scene}}; }

Stages allStages() {
  Stages all;
  for (const Stages& some : {materialStages(), imageStages(), stereoStages(), cameraStages(), segmentStages(),
                             geometryStages(), numberStages(), groundStages()})
    all.insert(all.end(), some.begin(), some.end());
  return all;
}

}  // namespace nadir::verify
