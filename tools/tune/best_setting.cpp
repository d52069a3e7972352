// The library's search asked about whole numbers.
#include "tools/tune/best_setting.hpp"

#include <nadir/nadir.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <map>

namespace nadir::tool {

namespace {

// The search may stop where its two inner points stand for the same whole number or for neighbours.
constexpr double tolerance = 0.5;

struct Range {
  uint32_t low, high;
  uint32_t next(double x) const { return static_cast<uint32_t>(std::clamp<double>(std::floor(x + 0.5), low, high)); }
};

// The library calls this back. An exception must not travel through it: the first one waits here, and the search
// runs to its end without asking again.
class Asked {
 public:
  Asked(const Objective& objective, const Range& range) : objective_(objective), range_(range) {}

  static double evaluate(void* context, double x) {
    Asked& asked = *static_cast<Asked*>(context);
    return asked.scoreAt(asked.range_.next(x));
  }

  void rethrow() const {
    if (failure_) std::rethrow_exception(failure_);
  }

 private:
  double scoreAt(uint32_t setting) {
    if (failure_) return -std::numeric_limits<double>::infinity();
    try {
      const auto known = scores_.find(setting);
      return known != scores_.end() ? known->second : scores_[setting] = objective_(setting);
    } catch (...) {
      failure_ = std::current_exception();
      return -std::numeric_limits<double>::infinity();
    }
  }

  const Objective& objective_;
  Range range_;
  std::map<uint32_t, double> scores_;
  std::exception_ptr failure_;
};

}  // namespace

SearchResult searchBest(const Objective& objective, uint32_t low, uint32_t high, uint32_t maxTrials) {
  const Range range{low, high};
  Asked asked(objective, range);
  const GsFunc function{Asked::evaluate, &asked};
  std::vector<double> xs(std::max(maxTrials, 2u)), fs(xs.size());
  GsResult ended;
  IP_Optim_GsSearch(&function, maxTrials, xs.data(), fs.data(), &ended, low - 0.5, high + 0.5, tolerance);
  asked.rethrow();

  SearchResult result{{}, {ended.bestX, range.next(ended.bestX), ended.bestF}, true};
  for (uint32_t i = 0; i < ended.evaluations; ++i) {
    result.trials.push_back({xs[i], range.next(xs[i]), fs[i]});
    if (fs[i] > result.best.score) result.best = result.trials.back();
  }
  result.onePeak = result.best.score == ended.bestF;
  return result;
}

}  // namespace nadir::tool
