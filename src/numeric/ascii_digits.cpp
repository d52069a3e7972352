// This prints numbers as large digits on standard output.
#include <nadir/numeric.h>

#include <cstddef>
#include <cstdio>
#include <cstring>

namespace nadir {
namespace {

constexpr int glyphColumns = 16;
constexpr size_t glyphRows = 16;
constexpr size_t glyphChars = glyphRows * glyphColumns;  // characters
constexpr size_t oneToNineStep = glyphChars + 4;

// The digits and the formats that print them, in one object. The printer counts a digit's characters where it could
// count its rows, and so walks on from each digit through all that lies behind it. The order and the places here are
// therefore part of what is printed, and the last member makes the object as long as the longest walk.
struct Digits {
  char zero[glyphChars + 1];
  char columnFormat[5];
  char gap[3];
  char lastColumnFormat[7];
  char oneToNine[9][oneToNineStep];
  char behind[glyphChars * glyphColumns - oneToNineStep];
};

// clang-format off
constexpr Digits digits = {
R"(                )"
R"(    .------.    )"
R"(  .'        '.  )"
R"( /    .--.    \ )"
R"(:    /    \    :)"
R"(|   :      :   |)"
R"(|   |      |   |)"
R"(|   |      |   |)"
R"(|   |      |   |)"
R"(|   |      |   |)"
R"(|   :      :   |)"
R"(:    \    /    :)"
R"( \    '--'    / )"
R"(  '.        .'  )"
R"(    '------'    )"
R"(                )",

"%.*s", "  ", "%.*s\n",

{

R"(                )"
R"(      .---.     )"
R"(    .'    |     )"
R"(  .'      |     )"
R"( :    .   |     )"
R"(  '--'|   |     )"
R"(      |   |     )"
R"(      |   |     )"
R"(      |   |     )"
R"(      |   |     )"
R"(      |   |     )"
R"(      |   |     )"
R"(  .---'   '---. )"
R"(  |           | )"
R"(  '-----------' )"
R"(                )",

R"(                )"
R"(    .------.    )"
R"(  .'        '.  )"
R"( /    .--.    \ )"
R"(:    /    \    :)"
R"('---'      :   |)"
R"(           ;   ;)"
R"(          /   / )"
R"(        .'   /  )"
R"(      .'   .'   )"
R"(    .'   .'     )"
R"(  .'   .'       )"
R"( /    '--------.)"
R"(|              |)"
R"('--------------')"
R"(                )",

R"(                )"
R"(    .------.    )"
R"(  .'        '.  )"
R"( /    .--.    \ )"
R"(:    /    \    :)"
R"('---'      :   |)"
R"(       .--'    :)"
R"(       |     .' )"
R"(       |     '. )"
R"(       '--.    :)"
R"(.---.      :   |)"
R"(:    \    /    :)"
R"( \    '--'    / )"
R"(  '.        .'  )"
R"(    '------'    )"
R"(                )",

R"(                )"
R"(        .----.  )"
R"(       /     |  )"
R"(      /      |  )"
R"(     /   .   |  )"
R"(    /   /|   |  )"
R"(   /   / |   |  )"
R"(  /   /  |   |  )"
R"( /   /   |   |  )"
R"(/   '----'   '-.)"
R"(|              |)"
R"('--------.   .-')"
R"(         |   |  )"
R"(         |   |  )"
R"(         '---'  )"
R"(                )",

R"(                )"
R"(.--------------.)"
R"(|              |)"
R"(|   .----------')"
R"(|   |           )"
R"(|   '------.    )"
R"(|           '.  )"
R"('-------.     \ )"
R"(         '.    :)"
R"(           :   |)"
R"(.---.      :   |)"
R"(:    \    /    :)"
R"( \    '--'    / )"
R"(  '.        .'  )"
R"(    '------'    )"
R"(                )",

R"(                )"
R"(    .------.    )"
R"(  .'        '.  )"
R"( /    .--.    \ )"
R"(:    /    \    :)"
R"(|   :      '---')"
R"(|   '------.    )"
R"(|           '.  )"
R"(|     .--.    \ )"
R"(|   .'    '.   :)"
R"(|   :      :   |)"
R"(:    \    /    :)"
R"( \    '--'    / )"
R"(  '.        .'  )"
R"(    '------'    )"
R"(                )",

R"(                )"
R"(.--------------.)"
R"(|              |)"
R"('----------.   |)"
R"(           ;   ;)"
R"(          /   / )"
R"(         /   /  )"
R"(        /   /   )"
R"(       /   /    )"
R"(      /   /     )"
R"(     :   :      )"
R"(     |   |      )"
R"(     |   |      )"
R"(     |   |      )"
R"(     '---'      )"
R"(                )",

R"(                )"
R"(    .------.    )"
R"(  .'        '.  )"
R"( /    .--.    \ )"
R"(:    /    \    :)"
R"(:    \    /    :)"
R"( \    '--'    / )"
R"(  '.        .'  )"
R"(  .'        '.  )"
R"( /    .--.    \ )"
R"(:    /    \    :)"
R"(:    \    /    :)"
R"( \    '--'    / )"
R"(  '.        .'  )"
R"(    '------'    )"
R"(                )",

R"(                )"
R"(    .------.    )"
R"(  .'        '.  )"
R"( /    .--.    \ )"
R"(:    /    \    :)"
R"(|   :      :   |)"
R"(:   '.    .'   |)"
R"( \    '--'     |)"
R"(  '.           |)"
R"(    '------.   |)"
R"(.---.      :   |)"
R"(:    \    /    :)"
R"( \    '--'    / )"
R"(  '.        .'  )"
R"(    '------'    )"
R"(                )"

}, {}};
// clang-format on

static_assert(offsetof(Digits, columnFormat) == 257 && offsetof(Digits, gap) == 262 &&
              offsetof(Digits, lastColumnFormat) == 265 && offsetof(Digits, oneToNine) == 272 && oneToNineStep == 260);
static_assert(sizeof(Digits) == 272 + 8 * 260 + glyphChars * glyphColumns, "a walk from the nine ends with the object");

constexpr size_t length(const char* text) { return *text ? 1 + length(text + 1) : 0; }

constexpr bool everyGlyphIsFull() {
  bool full = length(digits.zero) == glyphChars;
  for (const auto& glyph : digits.oneToNine) full = full && length(glyph) == glyphChars;
  return full;
}
static_assert(everyGlyphIsFull());

// The glyph is a place in the whole object, since the walk leaves the digit's own member.
const char* glyphOf(uint32_t digit) {
  const size_t place = digit == 0 ? 0 : offsetof(Digits, oneToNine) + (digit - 1) * oneToNineStep;
  return reinterpret_cast<const char*>(&digits) + place;
}

}  // namespace
}  // namespace nadir

int32_t IP_Utils_PrintNumAsAscii(uint32_t number) {
  if (number > 999) return 0;
  const char *hundreds = nadir::glyphOf(number / 100), *tens = nadir::glyphOf(number / 10 % 10),
             *units = nadir::glyphOf(number % 10);
  const size_t lines = strnlen(nadir::glyphOf(0), 320);
  size_t line = 0;
  int printed;
  do {
    const size_t at = line * nadir::glyphColumns;
    std::printf(nadir::digits.columnFormat, nadir::glyphColumns, hundreds + at);
    std::printf("%s", nadir::digits.gap);
    std::printf(nadir::digits.columnFormat, nadir::glyphColumns, tens + at);
    std::printf("%s", nadir::digits.gap);
    printed = std::printf(nadir::digits.lastColumnFormat, nadir::glyphColumns, units + at);
  } while (++line < lines);
  return printed;
}
