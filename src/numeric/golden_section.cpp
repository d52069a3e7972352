// This searches a function's maximum by the golden section.
#include <nadir/numeric.h>

#include <cmath>

namespace nadir {
namespace {

constexpr double goldenRatio = 1.618033988749895;  // (1 + sqrt 5) / 2

struct Point {
  double x, f;
};

// The function, with a record of every point that it is asked for.
class Recorder {
 public:
  Recorder(const GsFunc& func, double* xs, double* fs) : func_(func), xs_(xs), fs_(fs) {}

  Point evaluate(double x) const { return {x, func_.evaluate(func_.context, x)}; }
  void record(const Point& p) {
    xs_[count_] = p.x;
    fs_[count_] = p.f;
    ++count_;
  }
  uint32_t count() const { return count_; }

 private:
  const GsFunc& func_;
  double* xs_;
  double* fs_;
  uint32_t count_ = 0;
};

}  // namespace
}  // namespace nadir

// The interval [a, b] keeps two inner points, each its golden section from one end. The better one stays an inner point
// of the smaller interval, so that every step needs one new value.
void IP_Optim_GsSearch(const GsFunc* func, uint32_t maxEval, double* xs, double* fs, GsResult* result, double a,
                       double b, double tol) {
  nadir::Recorder function(*func, xs, fs);
  const double d = (b - a) / nadir::goldenRatio;
  nadir::Point left = function.evaluate(b - d), right = function.evaluate(a + d);
  function.record(left);
  function.record(right);

  while (maxEval > function.count() && std::fabs(left.x - right.x) > tol) {
    if (left.f > right.f) {
      b = right.x;
      right = left;
      left = function.evaluate(b - (b - a) / nadir::goldenRatio);
      function.record(left);
    } else {
      a = left.x;
      left = right;
      right = function.evaluate(a + (b - a) / nadir::goldenRatio);
      function.record(right);
    }
  }

  const nadir::Point best = left.f > right.f ? left : right;
  *result = {function.count() - 2, function.count(), best.x, best.f};
}
