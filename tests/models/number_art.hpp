// Large digits once more: the block of memory that they lie in, and the printer that walks over it.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

namespace nadir::test::model {

constexpr size_t glyphRows = 16, glyphColumns = 16;
constexpr size_t glyphBytes = glyphRows * glyphColumns;
constexpr size_t printedLines = glyphBytes;  // a line a character, not a line a row

// Glyphs of 256 characters without line breaks.
using Glyphs = std::array<std::string, 10>;

// Glyph 0, the texts that the printer formats with, glyphs 1 to 9 of 260 bytes each; zeros wherever nothing else is.
class DigitBlock {
 public:
  explicit DigitBlock(const Glyphs& glyphs) : bytes_(start(9) + glyphBytes + printedLines * glyphColumns, '\0') {
    for (size_t digit = 0; digit < 10; ++digit) put(start(digit), glyphs[digit]);
    put(257, "%.*s");
    put(262, "  ");
    put(265, "%.*s\n");
  }

  // All lines of a number below 1000, leading zeros included.
  std::string printed(unsigned number) const {
    std::string all;
    for (size_t line = 0; line < printedLines; ++line) {
      all += part(number / 100, line) + "  " + part(number / 10 % 10, line) + "  " + part(number % 10, line) + "\n";
    }
    return all;
  }

 private:
  static size_t start(size_t digit) { return digit == 0 ? 0 : 272 + 260 * (digit - 1); }
  void put(size_t at, const std::string& text) {
    std::copy(text.begin(), text.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(at));
  }

  // Up to 16 characters, ended early by a zero.
  std::string part(size_t digit, size_t line) const {
    const std::string full = bytes_.substr(start(digit) + line * glyphColumns, glyphColumns);
    return full.substr(0, full.find('\0'));
  }

  std::string bytes_;
};

}  // namespace nadir::test::model
