// Buffers that end, or begin, at a page that must not be touched: one byte too far is a crash.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace nadir::test {

enum class Guard { behind, before };

template <class T>
class Guarded {
 public:
  explicit Guarded(size_t count, Guard side = Guard::behind) : count_(count) {
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t inner = (count * sizeof(T) + page - 1) / page * page;
    bytes_ = inner + 2 * page;
    void* map = mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (map == MAP_FAILED) std::abort();
    base_ = static_cast<unsigned char*>(map);
    if (mprotect(base_, page, PROT_NONE) || mprotect(base_ + page + inner, page, PROT_NONE)) std::abort();
    void* first = side == Guard::before ? base_ + page : base_ + page + inner - count * sizeof(T);
    data_ = static_cast<T*>(first);
  }
  Guarded(const std::vector<T>& values, Guard side = Guard::behind) : Guarded(values.size(), side) {
    if (!values.empty()) std::memcpy(data_, values.data(), values.size() * sizeof(T));
  }
  ~Guarded() { munmap(base_, bytes_); }
  Guarded(const Guarded&) = delete;
  Guarded& operator=(const Guarded&) = delete;

  T* data() const { return data_; }
  size_t size() const { return count_; }
  T& operator[](size_t i) const { return data_[i]; }
  T* begin() const { return data_; }
  T* end() const { return data_ + count_; }
  std::vector<T> values() const { return std::vector<T>(begin(), end()); }

 private:
  size_t count_, bytes_;
  unsigned char* base_;
  T* data_;
};

}  // namespace nadir::test
