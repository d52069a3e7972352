// A thread that uses items in their order, so that whoever makes them need not wait.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace nadir::tool {

template <class Item>
class Background {
 public:
  // room  items that may wait; who gives one more waits too, so that memory does not grow.
  Background(size_t room, std::function<void(Item&)> use) : room_(room), use_(std::move(use)) {
    try {
      thread_ = std::thread([this] { work(); });
    } catch (const std::system_error&) {  // the system gives no thread: give() does the work
    }
  }
  Background(const Background&) = delete;
  Background& operator=(const Background&) = delete;

  // Items that still wait are used, unless one has failed.
  ~Background() { end(); }

  // Throws what the use of an earlier item has thrown.
  void give(Item item) {
    if (!thread_.joinable()) return useHere(item);
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [this] { return waiting_.size() < room_ || failure_; });
    if (failure_) std::rethrow_exception(failure_);
    waiting_.push_back(std::move(item));
    changed_.notify_all();
  }

  // Returns when every item is used. Throws what the use of one has thrown.
  void finish() {
    end();
    if (failure_) std::rethrow_exception(failure_);
  }

 private:
  void end() {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      ended_ = true;
    }
    changed_.notify_all();
    if (thread_.joinable()) thread_.join();
  }

  // One that has failed is the last one, as on the thread.
  void useHere(Item& item) {
    if (failure_) std::rethrow_exception(failure_);
    try {
      use_(item);
    } catch (...) {
      failure_ = std::current_exception();
      throw;
    }
  }

  void work() {
    try {
      for (std::unique_lock<std::mutex> lock(mutex_);;) {
        changed_.wait(lock, [this] { return !waiting_.empty() || ended_; });
        if (waiting_.empty()) return;
        Item item = std::move(waiting_.front());
        waiting_.pop_front();
        changed_.notify_all();
        lock.unlock();
        use_(item);
        lock.lock();
      }
    } catch (...) {
      const std::lock_guard<std::mutex> lock(mutex_);
      failure_ = std::current_exception();
      changed_.notify_all();
    }
  }

  const size_t room_;
  const std::function<void(Item&)> use_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Item> waiting_;
  std::exception_ptr failure_;
  bool ended_ = false;
  std::thread thread_;
};

}  // namespace nadir::tool
