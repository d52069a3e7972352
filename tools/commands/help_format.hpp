// Helps as wide as the terminal.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace nadir::tool {

class HelpFormat : public CLI::Formatter {
 public:
  std::string make_option(const CLI::Option* option, bool isPositional) const override;
  // Without the default: the descriptions tell it, with its unit.
  std::string make_option_opts(const CLI::Option* option) const override;
  std::string make_subcommand(const CLI::App* command) const override;
};

// Lines of at most so many columns, all but the first of which begin with `indent` spaces; words are not torn.
std::string wrapped(const std::string& text, size_t columns, size_t indent);

}  // namespace nadir::tool
