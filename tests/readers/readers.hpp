// Every reader of the program, given bytes instead of files, with a check of what it makes of them: for fuzzing, and
// for damage bit by bit.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace nadir::test {

// What a reader says to some bytes.
struct Answer {
  bool refused;
  std::string sentence;  // of the refusal
  uint64_t fingerprint;  // of all that was read
};

// One kind of input. A reader that takes several files gets them as one text with `between` between them.
struct Reader {
  const char* name;
  Answer (*read)(const std::string& bytes);
};

constexpr char between = '\x1d';

const std::vector<Reader>& readers();

// Aborts where there is none.
const Reader& readerNamed(const std::string& name);

}  // namespace nadir::test
