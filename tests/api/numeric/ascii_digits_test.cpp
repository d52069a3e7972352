// Large digits on the standard output.
#include <gtest/gtest.h>
#include <nadir/numeric.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/models/number_art.hpp"

namespace nadir::test {
namespace {

using model::glyphColumns;
using model::glyphRows;
using model::Glyphs;
using model::printedLines;

// While it lives, standard output goes to a file.
class CapturedOutput {
 public:
  CapturedOutput() : file_(std::tmpfile()) {
    std::fflush(stdout);
    screen_ = dup(STDOUT_FILENO);
    if (!file_ || screen_ < 0 || dup2(fileno(file_), STDOUT_FILENO) < 0) std::abort();
  }
  ~CapturedOutput() {
    std::fflush(stdout);
    dup2(screen_, STDOUT_FILENO);
    close(screen_);
    std::fclose(file_);
  }
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;

  std::string text() const {
    std::fflush(stdout);
    std::rewind(file_);
    std::string all;
    for (int c = std::fgetc(file_); c != EOF; c = std::fgetc(file_)) all += static_cast<char>(c);
    return all;
  }

 private:
  FILE* file_;
  int screen_;
};

struct Printed {
  std::string text;
  int32_t result;
};

Printed print(uint32_t number) {
  const CapturedOutput output;
  const int32_t result = IP_Utils_PrintNumAsAscii(number);
  return {output.text(), result};
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  for (size_t from = 0; from < text.size();) {
    const size_t end = text.find('\n', from);
    lines.push_back(text.substr(from, end - from));
    from = end == std::string::npos ? text.size() : end + 1;
  }
  return lines;
}

// The 16 x 16 characters at one of the three places of a printed number.
std::string glyphAt(size_t place, const std::string& text) {
  const std::vector<std::string> lines = linesOf(text);
  std::string glyph;
  for (size_t row = 0; row < glyphRows && row < lines.size(); ++row)
    glyph += lines[row].substr(std::min(place * (glyphColumns + 2), lines[row].size()), glyphColumns);
  return glyph;
}

const Glyphs& glyphs() {
  static const Glyphs all = [] {
    Glyphs drawn;
    for (uint32_t digit = 0; digit < 10; ++digit) drawn[digit] = glyphAt(2, print(digit).text);
    return drawn;
  }();
  return all;
}

}  // namespace

TEST(PrintNumAsAscii, PrintsALineForEachCharacterOfADrawing) {
  for (uint32_t number : {0u, 7u, 42u, 100u, 500u, 999u}) {
    const std::string text = print(number).text;
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(text.back(), '\n');
    EXPECT_EQ(linesOf(text).size(), printedLines) << number;
  }
}

TEST(PrintNumAsAscii, DrawsThreeDigitsSideBySideInTheFirstLines) {
  for (uint32_t number : {0u, 42u, 999u}) {
    const std::vector<std::string> lines = linesOf(print(number).text);
    ASSERT_GE(lines.size(), glyphRows);
    for (size_t row = 0; row < glyphRows; ++row) {
      ASSERT_EQ(lines[row].size(), 3 * glyphColumns + 4) << number << ", line " << row;
      EXPECT_EQ(lines[row].substr(16, 2), "  ");
      EXPECT_EQ(lines[row].substr(34, 2), "  ");
    }
  }
}

TEST(PrintNumAsAscii, DrawsWithPrintableCharactersOnSpaces) {
  for (size_t digit = 0; digit < 10; ++digit) {
    ASSERT_EQ(glyphs()[digit].size(), model::glyphBytes);
    size_t spaces = 0, ink = 0;
    for (char c : glyphs()[digit]) {
      EXPECT_TRUE(c >= 0x20 && c < 0x7F) << "digit " << digit << ", character code " << +c;
      ++(c == ' ' ? spaces : ink);
    }
    EXPECT_GT(spaces, 0u) << digit;
    EXPECT_GT(ink, 0u) << digit;
  }
}

TEST(PrintNumAsAscii, DrawsEveryDigitDifferently) {
  for (size_t a = 0; a < 10; ++a)
    for (size_t b = 0; b < a; ++b) EXPECT_NE(glyphs()[a], glyphs()[b]) << a << " and " << b;
}

TEST(PrintNumAsAscii, DrawsLeadingZeros) {
  const std::string text = print(7).text;
  EXPECT_EQ(glyphAt(0, text), glyphs()[0]);
  EXPECT_EQ(glyphAt(1, text), glyphs()[0]);
  EXPECT_EQ(glyphAt(2, text), glyphs()[7]);
}

TEST(PrintNumAsAscii, DrawsHundredsTensAndUnitsFromTheLeft) {
  const std::string text = print(142).text;
  EXPECT_EQ(glyphAt(0, text), glyphs()[1]);
  EXPECT_EQ(glyphAt(1, text), glyphs()[4]);
  EXPECT_EQ(glyphAt(2, text), glyphs()[2]);
}

TEST(PrintNumAsAscii, DrawsADigitAlikeAtEveryPlace) {
  for (uint32_t digit = 0; digit < 10; ++digit) {
    const std::string text = print(digit * 111).text;
    for (size_t place = 0; place < 3; ++place) EXPECT_EQ(glyphAt(place, text), glyphs()[digit]) << digit;
  }
}

// Behind the drawings the printer goes on through the memory in which they lie.
TEST(PrintNumAsAscii, PrintsWhatFollowsTheDrawingsInMemory) {
  const model::DigitBlock block(glyphs());
  std::vector<uint32_t> numbers{1, 10, 42, 890, 908, 998};
  for (uint32_t digit = 0; digit < 10; ++digit) numbers.push_back(digit * 111);
  for (uint32_t number = 3; number < 1000; number += 41) numbers.push_back(number);
  for (uint32_t number : numbers) {
    const std::vector<std::string> wanted = linesOf(block.printed(number)), got = linesOf(print(number).text);
    ASSERT_EQ(got.size(), wanted.size()) << number;
    for (size_t line = 0; line < wanted.size(); ++line)
      ASSERT_EQ(got[line], wanted[line]) << number << ", line " << line;
  }
}

// The last call prints what lies 4080 characters behind the units' drawing, nothing, and a line break.
TEST(PrintNumAsAscii, ReturnsTheLengthOfTheLastPart) {
  for (uint32_t number : {0u, 5u, 42u, 109u, 999u}) EXPECT_EQ(print(number).result, 1) << number;
}

TEST(PrintNumAsAscii, PrintsNothingForMoreThanThreeDigits) {
  for (uint32_t number : {1000u, 1001u, 9999u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    const Printed printed = print(number);
    EXPECT_EQ(printed.text, "") << number;
    EXPECT_EQ(printed.result, 0) << number;
  }
}

}  // namespace nadir::test
