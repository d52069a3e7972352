// How long the stages of a command take.
#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "tools/base/text.hpp"

namespace nadir::tool {

class StageTimes {
 public:
  // Runs a stage and returns what it returns. A stage's name may come again; its times are added then.
  template <class Stage>
  auto measure(const std::string& name, Stage stage) {
    const Timer timer{milliseconds(name), std::chrono::steady_clock::now()};
    return stage();
  }

  void addTo(Table& table) const {
    double total = 0;
    for (const auto& [name, time] : stages_) {
      table.line(name, time, "ms", 2);
      total += time;
    }
    table.line("total", total, "ms", 2);
  }

 private:
  struct Timer {
    double& milliseconds;
    std::chrono::steady_clock::time_point start;
    ~Timer() {
      milliseconds += std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    }
  };

  double& milliseconds(const std::string& name) {
    for (auto& [measured, time] : stages_)
      if (measured == name) return time;
    return stages_.emplace_back(name, 0.0).second;
  }

  std::vector<std::pair<std::string, double>> stages_;
};

}  // namespace nadir::tool
