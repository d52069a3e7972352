// Sine and cosine with nothing but additions, multiplications and divisions: the mathematics libraries of different
// machines differ in the last bit, and a rendered scene must not.
#pragma once

namespace nadir::scene {

struct Angle {
  double sine, cosine;
};

// The degrees lie from -180 to 180.
Angle angle(double degrees);

}  // namespace nadir::scene
