// The search once more, with every step's numbers stored as doubles and all that it does written down.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace nadir::test::model {

struct Search {
  std::vector<double> xs, fs;
  uint32_t iterations, evaluations;
  double bestX, bestF;
};

// f(x) is called in the order in which the points are recorded.
template <class Function>
Search goldenSection(Function f, uint32_t maxEval, double a, double b, double tol) {
  constexpr double goldenRatio = 1.618033988749895;
  const volatile double d = (b - a) / goldenRatio;
  volatile double x1 = b - d, x2 = a + d;
  Search s{{x1, x2}, {}, 0, 2, 0, 0};
  s.fs.push_back(f(x1));
  s.fs.push_back(f(x2));
  double f1 = s.fs[0], f2 = s.fs[1];
  while (maxEval > s.evaluations && std::abs(x1 - x2) > tol) {
    const bool left = f1 > f2;
    if (left) {
      const volatile double step = (x2 - a) / goldenRatio;
      b = x2;
      x2 = x1;
      f2 = f1;
      x1 = b - step;
    } else {
      const volatile double step = (b - x1) / goldenRatio;
      a = x1;
      x1 = x2;
      f1 = f2;
      x2 = a + step;
    }
    const double x = left ? x1 : x2;
    s.xs.push_back(x);
    s.fs.push_back(f(x));
    (left ? f1 : f2) = s.fs.back();
    s.iterations = s.evaluations - 1;
    ++s.evaluations;
  }
  s.bestX = f1 > f2 ? x1 : x2;
  s.bestF = f1 > f2 ? f1 : f2;
  return s;
}

}  // namespace nadir::test::model
