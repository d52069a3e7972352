// Any bytes as a file that the program reads: it is refused with a sentence, or what comes of it is within range.
#include "tests/readers/readers.hpp"

namespace nadir::test {
namespace {

// The build says which of the readers it is.
const Reader& reader() {
  static const Reader& chosen = readerNamed(NADIR_READER);
  return chosen;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const Answer answer = reader().read(std::string(data, data + size));
  if (answer.refused && answer.sentence.empty()) __builtin_trap();
  return 0;
}

}  // namespace nadir::test
