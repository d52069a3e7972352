// Equality of arrays whose failure names the first place that differs instead of printing everything.
#pragma once

#include <gtest/gtest.h>

#include <vector>

namespace nadir::test {

template <class T>
::testing::AssertionResult same(const std::vector<T>& want, const std::vector<T>& got) {
  if (want.size() != got.size()) {
    return ::testing::AssertionFailure() << "wanted " << want.size() << " values, got " << got.size();
  }
  for (size_t i = 0; i < want.size(); ++i) {
    if (want[i] != got[i]) {
      return ::testing::AssertionFailure() << "value " << i << ": wanted " << +want[i] << ", got " << +got[i];
    }
  }
  return ::testing::AssertionSuccess();
}

}  // namespace nadir::test
