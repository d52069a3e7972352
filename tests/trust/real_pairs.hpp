// Pairs that cameras took, from the folder that NADIR_DATA names.
#pragma once

#include "tests/trust/trust_of.hpp"

namespace nadir::ground::test {

struct RealPair {
  std::string name;
  Rendered good;
  bool hasMount;
};

// Empty without that folder, or where this program was built without a library for PNG.
std::vector<RealPair> realPairs();

}  // namespace nadir::ground::test
