// Works on several items at a time and hands them over in their order.
#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <future>
#include <thread>

namespace nadir::tool {

inline unsigned processors() { return std::max(1u, std::thread::hardware_concurrency()); }

// Calls work(i) for every i in [first, end) on up to `threads` threads, and take(i, its result) on this one, in order.
// No more than `threads` results exist at a time. take() says false to end early. What work() throws is thrown here in
// its item's turn.
template <class Work, class Take>
void inOrder(uint64_t first, uint64_t end, unsigned threads, Work work, Take take) {
  std::deque<std::future<decltype(work(first))>> running;
  uint64_t begun = first;
  for (uint64_t i = first; i < end; ++i) {
    for (; begun < end && running.size() < threads; ++begun)
      running.push_back(std::async(std::launch::async, work, begun));
    auto result = running.front().get();
    running.pop_front();
    if (!take(i, std::move(result))) return;
  }
}

}  // namespace nadir::tool
