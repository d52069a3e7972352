// Where a walker is after so many seconds, and how tall.
#include "lab/scene/walk.hpp"

#include <cmath>

#include "lab/scene/angle.hpp"

namespace nadir::scene {

namespace {

double distance(const Site& a, const Site& b) {
  const double dx = b.x - a.x, dy = b.y - a.y;
  return std::sqrt(dx * dx + dy * dy);
}

double around(const std::vector<Site>& corners) {
  double length = 0;
  for (size_t i = 0; i < corners.size(); ++i) length += distance(corners[i], corners[(i + 1) % corners.size()]);
  return length;
}

double blend(double a, double b, double share) { return a + (b - a) * share; }

double fractionOf(double value) { return value - std::floor(value); }

// A wave, 0 in mid-step and `bob` where both feet are down.
double dipAfter(double steps, double bob) { return bob / 2 * (1 + angle(360 * fractionOf(steps) - 180).cosine); }

}  // namespace

Footing Walk::at(double seconds) const {
  const double way = begun + speed * seconds, length = around(corners), dip = dipAfter(way / step, bob);
  double left = fractionOf(way / length) * length;
  size_t leg = 0;
  const auto from = [&] { return corners[leg]; };
  const auto to = [&] { return corners[(leg + 1) % corners.size()]; };
  for (; leg + 1 < corners.size() && left > distance(from(), to()); ++leg) left -= distance(from(), to());
  const double share = left / distance(from(), to());
  return {blend(from().x, to().x, share), blend(from().y, to().y, share), dip};
}

}  // namespace nadir::scene
