// Works on several items at a time and hands them over in their order.
#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <future>
#include <system_error>
#include <thread>

namespace nadir::tool {

inline unsigned processors() { return std::max(1u, std::thread::hardware_concurrency()); }

// work(i) on a thread of its own. Where the system gives none, fewer do: `threads` becomes 1, and the work is done when
// its result is asked for.
template <class Work>
auto started(Work work, uint64_t i, unsigned& threads) {
  try {
    return std::async(std::launch::async, work, i);
  } catch (const std::system_error&) {
    threads = 1;
    return std::async(std::launch::deferred, work, i);
  }
}

// Calls work(i) for every i in [first, end) on up to `threads` threads, and take(i, its result) on this one, in order.
// No more than `threads` results exist at a time. take() says false to end early. What work() throws is thrown here in
// its item's turn.
template <class Work, class Take>
void inOrder(uint64_t first, uint64_t end, unsigned threads, Work work, Take take) {
  std::deque<std::future<decltype(work(first))>> running;
  uint64_t begun = first;
  for (uint64_t i = first; i < end; ++i) {
    for (; begun < end && running.size() < threads; ++begun) running.push_back(started(work, begun, threads));
    auto result = running.front().get();
    running.pop_front();
    if (!take(i, std::move(result))) return;
  }
}

}  // namespace nadir::tool
