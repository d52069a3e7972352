// An option stands on its own line, and what it does below it; where both find room, beside it.
#include "tools/commands/help_format.hpp"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>

namespace nadir::tool {

namespace {

constexpr size_t indent = 26;  // of the descriptions
constexpr size_t usualWidth = 100, leastWidth = 60;

// Where there is no terminal, a file or a pipe, of a width that can be read.
size_t terminalWidth() {
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return usualWidth;
  return std::max<size_t>(size.ws_col, leastWidth);
}

std::string entry(const std::string& name, const std::string& description) {
  std::string text = "  " + name;
  if (!description.empty())
    text += (text.size() + 2 > indent ? "\n" + std::string(indent, ' ') : std::string(indent - text.size(), ' ')) +
            wrapped(description, terminalWidth() - indent, indent);
  return text + "\n";
}

}  // namespace

std::string wrapped(const std::string& text, size_t columns, size_t spaces) {
  std::string lines;
  size_t column = 0;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    const bool fits = column + word.size() + 1 <= columns;
    if (column > 0) lines += fits ? " " : "\n" + std::string(spaces, ' ');
    column = fits && column > 0 ? column + 1 + word.size() : word.size();
    lines += word;
  }
  return lines;
}

std::string HelpFormat::make_option(const CLI::Option* option, bool isPositional) const {
  return entry(make_option_name(option, isPositional) + make_option_opts(option), make_option_desc(option));
}

std::string HelpFormat::make_option_opts(const CLI::Option* option) const {
  std::string text;
  if (option->get_expected_max() != 0) {
    text += " " + get_label(option->get_type_name());
    if (option->get_expected_max() == CLI::detail::expected_max_vector_size) text += " ...";
    if (option->get_required()) text += " " + get_label("REQUIRED");
  }
  const auto others = [&text](const char* label, const std::set<CLI::Option*>& options) {
    if (!options.empty()) text += label;
    for (const CLI::Option* other : options) text += " " + other->get_name();
  };
  others(" Needs:", option->get_needs());
  others(" Excludes:", option->get_excludes());
  return text;
}

std::string HelpFormat::make_subcommand(const CLI::App* command) const {
  return entry(command->get_name(), command->get_description());
}

}  // namespace nadir::tool
