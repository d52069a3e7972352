// Sine and cosine as sums of their power series.
#include "lab/scene/angle.hpp"

namespace nadir::scene {

// The powers of i * radians over their factorials, dealt out in turn: the even ones make the cosine, the odd ones the
// sine. The 41st is below 1e-29 at 180 degrees.
Angle angle(double degrees) {
  const double radians = degrees * 3.14159265358979323846 / 180;
  double term = 1;
  Angle sum{0, 0};
  for (int power = 0; power <= 40; power += 2) {
    sum.cosine += term;
    term = term * radians / (power + 1);
    sum.sine += term;
    term = -term * radians / (power + 2);
  }
  return sum;
}

}  // namespace nadir::scene
