// The names, ranges and units of the options that several commands have.
#include "tools/commands/options.hpp"

#include "tools/base/error.hpp"
#include "tools/base/in_order.hpp"
#include "tools/files/files.hpp"
#include "tools/pictures/formats.hpp"
#include "tools/road/halve.hpp"

namespace nadir::tool {

namespace {

void replaceIn(std::string& text, const std::string& mark, const std::string& words) {
  const size_t place = text.find(mark);
  if (place != std::string::npos) text.replace(place, mark.size(), words);
}

std::vector<std::string> wordsOf(const Words& words) {
  std::vector<std::string> all;
  for (const Word& word : words) all.emplace_back(word.word);
  return all;
}

constexpr const char* automaticWord = "auto";

std::string mistakeInScaleDown(const std::string& word) {
  if (word == automaticWord) return "";
  for (uint32_t n = 1; n <= largestScaleDown; n *= 2)
    if (word == std::to_string(n)) return "";
  return format("\"%s\" is neither auto nor a power of two from 1 to %u", word.c_str(), largestScaleDown);
}

}  // namespace

CLI::Option* addWord(CLI::App& command, const char* name, const Words& words, uint32_t& number, const char* help,
                     const char* type) {
  const auto choose = [&words, &number](const std::string& word) { number = numberOf(words, word); };
  return command.add_option_function<std::string>(name, choose, helpWith(help, "", wordOf(words, number)))
      ->check(CLI::IsMember(wordsOf(words)).description(""))
      ->type_name(type)
      ->default_str(wordOf(words, number));
}

std::string helpWith(std::string help, const std::string& range, const std::string& defaultValue) {
  replaceIn(help, "{range}", range);
  replaceIn(help, "{default}", defaultValue);
  return help;
}

CLI::Validator endingIn(std::vector<std::string> endings) {
  const auto mistake = [endings](const std::string& name) {
    if (name.empty() || name == standardStream) return std::string();  // the first is told better where it is written
    std::string known;
    for (const std::string& ending : endings) {
      if (endingOf(name) == ending) return std::string();
      known += (known.empty() ? "" : ", ") + ending;
    }
    return "\"" + name + "\" does not end as a file that can be written there: " + known;
  };
  return {mistake, ""};
}

CLI::Option* addSideBySideOption(CLI::App& command, bool& sideBySide, const char* help) {
  return command.add_flag("--side-by-side", sideBySide, help);
}

void checkPairNames(const std::string& left, const std::string& right, bool sideBySide) {
  if (sideBySide && !right.empty())
    throw Error("with --side-by-side " + left + " holds both pictures of each pair: name no second one");
  if (!sideBySide && right.empty())
    throw Error("a right picture is needed beside " + left + ", or --side-by-side where it holds both");
}

CLI::Option* addUniquenessOption(CLI::App& command, std::optional<uint32_t>& uniqueness, const char* help) {
  return addNumber(command, "--uniqueness", uniqueness, wholeNumberFrom(0, 128), help, "N");
}

std::vector<CLI::Option*> addAccuracyOptions(CLI::App& command, MatchOptions& options, const Words& ranges,
                                             const char* rangeHelp) {
  return {
      addWord(command, "--check", checkWords(), options.check,
              "Match again to tell guesses from measurements: flip, both pictures upside down; sides, from the other "
              "view; both; none (default: {default}). flip and sides take up to twice the time, both up to three times",
              "HOW"),
      addNumber(command, "--support", options.support, wholeNumberFrom(0, NADIR_LARGEST_SUPPORT),
                "With flip and both: where the two disagree, keep what at least so many of the pixels around that they "
                "agree on lie close to, {range}; 0 keeps nothing (default: {default})",
                "N"),
      addWord(command, "--refine", refineWords(), options.refine,
              "What disparities become: surface, the mean of those nearby that lie on the same surface, and none "
              "where there are too few; none, they stay (default: {default})",
              "HOW"),
      addWord(command, "--range", ranges, options.range, rangeHelp, "PIXELS")};
}

CLI::Option* addMaskOption(CLI::App& command, std::string& path, const char* help) {
  return command.add_option("--mask", path, help)->type_name("FILE");
}

CLI::Option* addScaleDownOption(CLI::App& command, uint32_t& scaleDown, const char* help) {
  const auto choose = [&scaleDown](const std::string& word) {
    scaleDown = word == automaticWord ? automaticScaleDown : static_cast<uint32_t>(std::stoul(word));
  };
  CLI::Option* option = command.add_option_function<std::string>("--scale-down", choose, help)
                            ->check(CLI::Validator(mistakeInScaleDown, ""))
                            ->type_name("N");
  const auto chooseHalf = [&scaleDown](int64_t) { scaleDown = 2; };
  command.add_flag_function("--half", chooseHalf, "Short for --scale-down 2")->excludes(option);
  return option;
}

CLI::Option* addRawOption(CLI::App& command, bool& noPostprocessing) {
  return command.add_flag("--raw,--no-postproc", noPostprocessing,
                          "Leave out the 3x3 median and the removal and filling of single pixels");
}

CLI::Option* addScaleOption(CLI::App& command, double& scale) {
  return addNumber(command, "--scale", scale, positiveNumber(),
                   "What one pixel of disparity is stored as (default: the file's own text nadir:scale, else 16)", "N");
}

CLI::Option* addJsonOption(CLI::App& command, bool& json, const std::string& remark) {
  return command.add_flag("--json", json, "Print a JSON object instead of the table; " + remark);
}

CLI::Option* addDryRunOption(CLI::App& command, bool& dryRun, const std::string& what) {
  return command.add_flag(
      "--dry-run", dryRun,
      "Read no pictures and write nothing: print what the library would be given, as JSON: " + what);
}

CLI::Option* addStrictOption(CLI::App& command, bool& strict) {
  return command.add_flag("--strict", strict,
                          "End with status 3 where there is any warning; the results are written all the same");
}

CLI::Option* addThreadsOption(CLI::App& command, unsigned& threads, const char* help) {
  threads = processors();
  return addNumber(command, "--threads", threads, wholeNumberFrom(1, 256), help, "N");
}

}  // namespace nadir::tool
