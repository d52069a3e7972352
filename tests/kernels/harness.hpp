// The kernel harness: one registry of cases, each of which checks a kernel against the scalar one and times it.
//
// The runner raises the processor's level step by step, asks each case for its kernel at that level and tests every
// kernel it has not seen yet: a new level of a kernel is covered the moment it stands in a table. A kernel that no case
// tests fails the run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "lab/random.hpp"
#include "tests/support/guarded.hpp"

namespace nadir::test {

// Ways to fill an input: what kernels get wrong shows at the ends of a range and where neighbours differ.
enum class Fill { low, high, alternating, sparse, random };
constexpr Fill allFills[] = {Fill::low, Fill::high, Fill::alternating, Fill::sparse, Fill::random};

inline const char* nameOf(Fill fill) {
  switch (fill) {
    case Fill::low: return "low";
    case Fill::high: return "high";
    case Fill::alternating: return "alternating";
    case Fill::sparse: return "sparse";
    default: return "random";
  }
}

constexpr size_t widest = 4 * 32 + 1;  // four of the widest vectors of 16-bit words, and one more

template <class T>
T anyIn(lab::Random& random, T lo, T hi) {
  const uint64_t count = static_cast<uint64_t>(int64_t{hi} - int64_t{lo}) + 1;
  return static_cast<T>(int64_t{lo} + static_cast<int64_t>(random.next() % count));
}

template <class T>
std::vector<T> filled(lab::Random& random, Fill fill, size_t n, T lo, T hi) {
  std::vector<T> out(n, lo);
  for (size_t i = 0; i < n; ++i) {
    const T anything = anyIn(random, lo, hi);
    if (fill == Fill::high || (fill == Fill::alternating && i % 2)) out[i] = hi;
    if (fill == Fill::sparse && random.below(8) == 0) out[i] = random.below(2) ? hi : anything;
    if (fill == Fill::random) out[i] = anything;
  }
  return out;
}

// An output of n elements at a guard page, with marked bytes on its other side.
template <class T>
class Output {
 public:
  Output(size_t n, Guard side, uint8_t mark = 0x5A)
      : n_(n), side_(side), mark_(mark), bytes_(n * sizeof(T) + margin, side) {
    std::memset(bytes_.data(), mark, bytes_.size());
  }
  T* data() { return static_cast<T*>(static_cast<void*>(bytes_.data() + (side_ == Guard::behind ? margin : 0))); }
  size_t size() const { return n_; }
  void set(const std::vector<T>& values) {
    if (n_) std::memcpy(data(), values.data(), n_ * sizeof(T));
  }
  bool marginIsUntouched() const {
    const uint8_t* m = bytes_.data() + (side_ == Guard::behind ? 0 : n_ * sizeof(T));
    for (size_t i = 0; i < margin; ++i) {
      if (m[i] != mark_) return false;
    }
    return true;
  }

 private:
  static constexpr size_t margin = 64;
  size_t n_;
  Guard side_;
  uint8_t mark_;
  Guarded<uint8_t> bytes_;
};

// Collects what differs; describe() names the inputs of the comparisons that follow.
class Check {
 public:
  explicit Check(uint64_t seed) : random(seed) {}

  void describe(std::string inputs) { inputs_ = std::move(inputs); }

  template <class T>
  void equal(const char* what, Output<T>& want, Output<T>& got) {
    ++comparisons_;
    for (size_t i = 0; i < want.size(); ++i) {
      if (want.data()[i] == got.data()[i]) continue;
      fail(std::string(what) + "[" + std::to_string(i) + "]: want " + std::to_string(want.data()[i]) + ", got " +
           std::to_string(got.data()[i]));
      return;
    }
    if (!got.marginIsUntouched()) fail(std::string(what) + ": wrote outside the output");
  }

  void holds(const char* what, bool condition) {
    ++comparisons_;
    if (!condition) fail(what);
  }

  bool failed() const { return !message_.empty(); }
  const std::string& message() const { return message_; }
  const std::string& inputs() const { return inputs_; }
  size_t comparisons() const { return comparisons_; }

  lab::Random random;

 private:
  void fail(const std::string& what) {
    if (message_.empty()) message_ = inputs_ + ": " + what;
  }

  std::string inputs_, message_;
  size_t comparisons_ = 0;
};

inline std::string described(size_t n, Fill fill, Guard side) {
  return "width " + std::to_string(n) + ", fill " + nameOf(fill) + ", guard " +
         (side == Guard::behind ? "behind" : "before");
}

// Calls f(n, fill, side) for every width from least to most, every fill and both sides of the guard page.
template <class F>
void forEachInput(Check& check, size_t least, size_t most, F f) {
  for (size_t n = least; n <= most; ++n) {
    for (Fill fill : allFills) {
      for (Guard side : {Guard::behind, Guard::before}) {
        check.describe(described(n, fill, side));
        f(n, fill, side);
      }
    }
  }
}

using AnyKernel = void (*)();

// One kernel of one family.
class Case {
 public:
  virtual ~Case() = default;
  virtual const char* name() const = 0;
  virtual AnyKernel kernel(unsigned cpu) const = 0;                // the one that this level would use
  virtual bool hasModel() const = 0;                               // then the scalar kernel is checked too
  virtual void check(Check& results, AnyKernel tested) const = 0;  // against the scalar one, or against a model
  virtual void bench(AnyKernel tested) const = 0;                  // runs it once on a large input
};

// What a case compares its kernels with.
enum class Law { scalar, model };

// A case from three plain functions over the kernel's own type.
template <class Kernel>
class CaseOf final : public Case {
 public:
  using Pick = Kernel (*)(unsigned cpu);
  using CheckKernel = void (*)(Check& check, Kernel scalar, Kernel tested);
  using BenchKernel = void (*)(Kernel tested);

  CaseOf(const char* name, Law law, Pick pick, CheckKernel checkKernel, BenchKernel benchKernel)
      : name_(name), law_(law), pick_(pick), check_(checkKernel), bench_(benchKernel) {}

  const char* name() const override { return name_; }
  AnyKernel kernel(unsigned cpu) const override { return reinterpret_cast<AnyKernel>(pick_(cpu)); }
  bool hasModel() const override { return law_ == Law::model; }
  void check(Check& results, AnyKernel tested) const override {
    check_(results, pick_(0), reinterpret_cast<Kernel>(tested));
  }
  void bench(AnyKernel tested) const override { bench_(reinterpret_cast<Kernel>(tested)); }

 private:
  const char* name_;
  Law law_;
  Pick pick_;
  CheckKernel check_;
  BenchKernel bench_;
};

using Registry = std::vector<std::unique_ptr<Case>>;

template <class Kernel>
void add(Registry& registry, const char* name, Kernel (*pick)(unsigned), void (*check)(Check&, Kernel, Kernel),
         void (*bench)(Kernel), Law law = Law::scalar) {
  registry.push_back(std::make_unique<CaseOf<Kernel>>(name, law, pick, check, bench));
}

// One function per family.
void addFilter3x3Cases(Registry& registry);
void addPointCases(Registry& registry);
void addSmoothCases(Registry& registry);
void addStereoRowCases(Registry& registry);
void addSelectionCases(Registry& registry);
void addWalkCases(Registry& registry);
void addRoadCases(Registry& registry);
void addRectifyCases(Registry& registry);

}  // namespace nadir::test
