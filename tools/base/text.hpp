// printf into a string, and the short tables that the commands print.
#pragma once

#include <string>
#include <vector>

namespace nadir::tool {

[[gnu::format(printf, 1, 2)]] std::string format(const char* pattern, ...);

// "640 x 480"
std::string sizeText(unsigned width, unsigned height);

// Lines of a label, a right-aligned number and a remark.
class Table {
 public:
  void heading(const std::string& label, const std::string& number) { lines_.push_back({label, number, ""}); }
  void line(const std::string& label, double number, const std::string& remark = "", int decimals = 1);
  void gap() { lines_.push_back({}); }
  std::string text() const;

 private:
  struct Line {
    std::string label, number, remark;
  };
  std::vector<Line> lines_;
};

// The text as a stream of the process may show it. Names come from files of others: on a terminal a control character
// in them could set the window's title, or hide what is written, so a question mark takes its place there.
std::string shownOn(int stream, std::string text);

// From now on print() writes nothing, and no progress is shown.
void silence();
bool isSilent();

// Standard output is a result's: from now on print() writes to standard error.
void giveUpStandardOutput();

// Writes to standard output and throws where that fails (a full disk behind a redirection).
void print(const std::string& text);

// The last line of a table: "wrote WHAT; look at PICTURE", the second half where there is a picture.
std::string writtenLine(const std::string& what, const std::string& picture = "");

// A line of its own on standard error: "nadir: SENTENCE".
void say(const std::string& sentence);

}  // namespace nadir::tool
