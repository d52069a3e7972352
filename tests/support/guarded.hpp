// Buffers that end, or begin, at a page that must not be touched: one byte too far is a crash.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <vector>

namespace nadir::test {

enum class Guard { behind, before };

// Whole pages of zeros between two that must not be touched. Mapping them costs more than most tests, so they are kept
// and handed out again.
class GuardedPages {
 public:
  explicit GuardedPages(size_t bytes) : pages_((bytes + pageSize() - 1) / pageSize()) {
    std::vector<unsigned char*>& kept = keptOf(pages_);
    if (kept.empty()) kept.push_back(mapped(pages_));
    base_ = kept.back();
    kept.pop_back();
    std::memset(begin(), 0, size());
  }
  ~GuardedPages() { keptOf(pages_).push_back(base_); }
  GuardedPages(const GuardedPages&) = delete;
  GuardedPages& operator=(const GuardedPages&) = delete;

  unsigned char* begin() const { return base_ + pageSize(); }
  unsigned char* end() const { return begin() + size(); }
  size_t size() const { return pages_ * pageSize(); }

 private:
  static size_t pageSize() {
    static const size_t bytes = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return bytes;
  }
  static std::vector<unsigned char*>& keptOf(size_t pages) {
    static std::map<size_t, std::vector<unsigned char*>> kept;
    return kept[pages];
  }
  static unsigned char* mapped(size_t pages) {
    const size_t page = pageSize(), bytes = (pages + 2) * page;
    void* map = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (map == MAP_FAILED) std::abort();
    unsigned char* base = static_cast<unsigned char*>(map);
    if (mprotect(base, page, PROT_NONE) || mprotect(base + bytes - page, page, PROT_NONE)) std::abort();
    return base;
  }

  size_t pages_;
  unsigned char* base_;
};

template <class T>
class Guarded {
 public:
  explicit Guarded(size_t count, Guard side = Guard::behind) : count_(count), pages_(count * sizeof(T)) {
    void* first = side == Guard::before ? pages_.begin() : pages_.end() - count * sizeof(T);
    data_ = static_cast<T*>(first);
  }
  Guarded(const std::vector<T>& values, Guard side = Guard::behind) : Guarded(values.size(), side) {
    if (!values.empty()) std::memcpy(data_, values.data(), values.size() * sizeof(T));
  }
  Guarded(const Guarded&) = delete;
  Guarded& operator=(const Guarded&) = delete;

  T* data() const { return data_; }
  size_t size() const { return count_; }
  T& operator[](size_t i) const { return data_[i]; }
  T* begin() const { return data_; }
  T* end() const { return data_ + count_; }
  std::vector<T> values() const { return std::vector<T>(begin(), end()); }

 private:
  size_t count_;
  GuardedPages pages_;
  T* data_;
};

}  // namespace nadir::test
