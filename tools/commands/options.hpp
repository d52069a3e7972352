// Options that several commands have, and the pieces that options are made of.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "tools/base/text.hpp"
#include "tools/base/view.hpp"
#include "tools/commands/number_range.hpp"
#include "tools/road/match_options.hpp"

namespace nadir::tool {

// The help with {range} and {default} replaced.
std::string helpWith(std::string help, const std::string& range, const std::string& defaultValue);

// Adds an option that takes a number. In its help {range} stands for the numbers that it takes, and {default} for the
// value that it has before the command line is read; a value that may be absent has no default to name.
template <class Number>
CLI::Option* addNumber(CLI::App& command, const char* name, Number& value, const NumberRange& range, const char* help,
                       const char* unit) {
  std::string defaultValue;
  if constexpr (std::is_floating_point_v<Number>)
    defaultValue = format("%g", value);
  else if constexpr (std::is_integral_v<Number>)
    defaultValue = std::to_string(value);
  CLI::Option* option =
      command.add_option(name, value, helpWith(help, range.words, defaultValue))->check(range.check)->type_name(unit);
  std::string usual = option->get_default_str();  // a number out of range stands for none
  return range.check(usual).empty() ? option : option->default_str("");
}

// Adds an option that takes left or right. `chosen` is a View, or one that may be absent.
template <class Chosen>
CLI::Option* addViewOption(CLI::App& command, const char* name, Chosen& chosen, const char* help) {
  const auto choose = [&chosen](const std::string& word) { chosen = viewNamed(word); };
  CLI::Option* option = command.add_option_function<std::string>(name, choose, help)
                            ->check(CLI::IsMember({nameOf(View::left), nameOf(View::right)}).description(""))
                            ->type_name("VIEW");
  if constexpr (std::is_same_v<Chosen, View>) option->default_str(nameOf(chosen));
  return option;
}

// Lets names of files pass that end as one of these (".png"), in small or capital letters.
CLI::Validator endingIn(std::vector<std::string> endings);

CLI::Option* addUniquenessOption(CLI::App& command, std::optional<uint32_t>& uniqueness, const char* help);

// Adds an option that takes one of some words; {default} in its help is the word of the number that it has before.
CLI::Option* addWord(CLI::App& command, const char* name, const Words& words, uint32_t& number, const char* help,
                     const char* unit);

// --check, --support, --refine and --range, which takes one of these words.
std::vector<CLI::Option*> addAccuracyOptions(CLI::App& command, MatchOptions& options, const Words& ranges,
                                             const char* rangeHelp);

CLI::Option* addMaskOption(CLI::App& command, std::string& path, const char* help);
// A power of two, or automaticScaleDown. --half is the older name for 2.
CLI::Option* addScaleDownOption(CLI::App& command, uint32_t& scaleDown, const char* help);

CLI::Option* addRawOption(CLI::App& command, bool& noPostprocessing);

// The number that a picture of disparities is divided by; 0 leaves it to the file.
CLI::Option* addScaleOption(CLI::App& command, double& scale);

// remark  about its units.
CLI::Option* addJsonOption(CLI::App& command, bool& json, const std::string& remark);

// Nothing is read but what the settings need, and nothing is written.
CLI::Option* addDryRunOption(CLI::App& command, bool& dryRun, const std::string& what);

// --side-by-side, and who names pictures so that they cannot be a pair is told.
CLI::Option* addSideBySideOption(CLI::App& command, bool& sideBySide, const char* help);
void checkPairNames(const std::string& left, const std::string& right, bool sideBySide);

CLI::Option* addStrictOption(CLI::App& command, bool& strict);

// Sets the default, a thread for each processor, too.
CLI::Option* addThreadsOption(CLI::App& command, unsigned& threads, const char* help);

}  // namespace nadir::tool
