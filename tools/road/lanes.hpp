// Roads for threads: each takes a lane, works on a frame in it and gives it back for the next one.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "tools/road/road.hpp"

namespace nadir::tool {

// A road of its own and what its last frame gave.
struct Lane {
  RoadHandle road;
  PairResult result;
};

// Memory is taken for as many lanes as are in use at once, and used again.
class Lanes {
 public:
  explicit Lanes(const Road& road) : road_(road) {}

  std::unique_ptr<Lane> take() {
    const std::lock_guard<std::mutex> alone(mutex_);
    if (free_.empty()) return std::make_unique<Lane>(Lane{copyOf(road_), {}});
    std::unique_ptr<Lane> lane = std::move(free_.back());
    free_.pop_back();
    return lane;
  }

  void giveBack(std::unique_ptr<Lane> lane) {
    const std::lock_guard<std::mutex> alone(mutex_);
    free_.push_back(std::move(lane));
  }

 private:
  const Road& road_;
  std::mutex mutex_;
  std::vector<std::unique_ptr<Lane>> free_;
};

}  // namespace nadir::tool
