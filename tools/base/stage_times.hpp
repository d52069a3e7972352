// How long the stages of a command take.
#pragma once

#include <chrono>
#include <deque>
#include <string>
#include <utility>

#include "tools/base/text.hpp"

namespace nadir::tool {

class StageTimes {
 public:
  // A stage that ends with it. A stage's name may come again; its times are added then.
  class Running {
   public:
    Running(StageTimes& times, const std::string& name)
        : milliseconds_(times.milliseconds(name)), start_(std::chrono::steady_clock::now()) {}
    ~Running() {
      milliseconds_ += std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start_).count();
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

   private:
    double& milliseconds_;
    std::chrono::steady_clock::time_point start_;
  };

  // Runs a stage and returns what it returns.
  template <class Stage>
  auto measure(const std::string& name, Stage stage) {
    const Running running(*this, name);
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
  double& milliseconds(const std::string& name) {
    for (auto& [measured, time] : stages_)
      if (measured == name) return time;
    return stages_.emplace_back(name, 0.0).second;
  }

  std::deque<std::pair<std::string, double>> stages_;  // whose elements stay where they are
};

}  // namespace nadir::tool
