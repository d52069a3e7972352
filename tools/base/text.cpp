// Texts of any length from printf patterns, and tables whose columns are aligned.
#include "tools/base/text.hpp"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>

#include "tools/base/error.hpp"

namespace nadir::tool {

std::string format(const char* pattern, ...) {
  va_list arguments, again;
  va_start(arguments, pattern);
  va_copy(again, arguments);
  std::string text(static_cast<size_t>(std::max(0, std::vsnprintf(nullptr, 0, pattern, arguments))), ' ');
  std::vsnprintf(text.data(), text.size() + 1, pattern, again);
  va_end(again);
  va_end(arguments);
  return text;
}

std::string sizeText(unsigned width, unsigned height) { return format("%u x %u", width, height); }

void Table::line(const std::string& label, double number, const std::string& remark, int decimals) {
  lines_.push_back({label, std::isnan(number) ? "-" : format("%.*f", decimals, number), remark});
}

std::string Table::text() const {
  size_t labels = 0, numbers = 0;
  for (const Line& line : lines_) {
    labels = std::max(labels, line.label.size());
    numbers = std::max(numbers, line.number.size());
  }
  std::string text;
  for (const Line& line : lines_) {
    std::string row = line.label + std::string(labels - line.label.size() + 2, ' ') +
                      std::string(numbers - line.number.size(), ' ') + line.number + "  " + line.remark;
    row.erase(row.find_last_not_of(' ') + 1);
    text += row + '\n';
  }
  return text;
}

std::string shownOn(int stream, std::string text) {
  if (isatty(stream) == 0) return text;
  for (size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]), next = static_cast<unsigned char>(text[i + 1]);
    if ((byte < 0x20 && byte != '\n') || byte == 0x7F) text[i] = '?';
    if (byte == 0xC2 && next >= 0x80 && next < 0xA0) text.replace(i, 2, "?");
  }
  return text;
}

namespace {

bool silent = false;
bool isOutputTaken = false;

}  // namespace

void silence() { silent = true; }

bool isSilent() { return silent; }

void giveUpStandardOutput() { isOutputTaken = true; }

void print(const std::string& text) {
  if (silent) return;
  std::FILE* const stream = isOutputTaken ? stderr : stdout;
  if (std::fputs(shownOn(fileno(stream), text).c_str(), stream) < 0 || std::fflush(stream) != 0)
    throw Error("cannot write to standard output");
}

std::string writtenLine(const std::string& what, const std::string& picture) {
  return "\nwrote " + (what == "-" ? "to standard output" : what) + (picture.empty() ? "" : "; look at " + picture) +
         "\n";
}

void say(const std::string& sentence) { std::fprintf(stderr, "nadir: %s\n", shownOn(STDERR_FILENO, sentence).c_str()); }

}  // namespace nadir::tool
