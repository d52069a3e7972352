// Warnings as sentences, and as an exit status.
#include "tools/base/warnings.hpp"

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"

namespace nadir::tool {

void tell(const Warnings& warnings) {
  for (const Warning& warning : warnings) say(warning.sentence);
}

void throwIfAny(const Warnings& warnings) {
  if (warnings.empty()) return;
  throw Error(format("the results are written, but not to be relied on: warnings: %zu (--strict)", warnings.size()),
              notAllReliable);
}

}  // namespace nadir::tool
