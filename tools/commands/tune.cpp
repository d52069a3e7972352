// nadir tune: the setting that does best on pairs whose truth is known.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>

#include "tools/base/error.hpp"
#include "tools/base/json_value.hpp"
#include "tools/base/text.hpp"
#include "tools/commands/commands.hpp"
#include "tools/commands/options.hpp"
#include "tools/draw/line_plot.hpp"
#include "tools/files/output_files.hpp"
#include "tools/tune/tuning.hpp"

namespace nadir::tool {

namespace {

struct TuneOptions {
  std::vector<std::string> folders;
  std::string setting = tunables().front().name, plot;
  std::optional<uint32_t> low, high;
  std::optional<double> tolerance;
  double wrongCosts = 1;
  uint32_t maxTrials = 20;
  bool json = false;
};

// The setting with the range that was asked for.
Tunable chosen(const TuneOptions& options) {
  const auto& all = tunables();
  Tunable t = *std::find_if(all.begin(), all.end(), [&](const Tunable& u) { return options.setting == u.name; });
  t.tolerance = options.tolerance.value_or(t.tolerance);
  const uint32_t low = options.low.value_or(t.low), high = options.high.value_or(t.high);
  if (low < t.low || high > t.high || low >= high)
    throw Error(format("--from and --to must be a range within %u to %u for %s", t.low, t.high, t.name));
  t.low = low;
  t.high = high;
  return t;
}

std::string report(const Tunable& t, const SearchResult& result, double usualScore) {
  Table table;
  table.heading(format("tried, %s", t.name), "score, %");
  std::vector<uint32_t> seen;
  for (const Trial& trial : result.trials) {
    const bool again = std::count(seen.begin(), seen.end(), trial.setting) > 0;
    table.line(format("  %u", trial.setting), trial.score, format("x = %.2f%s", trial.x, again ? ", as before" : ""),
               3);
    seen.push_back(trial.setting);
  }
  table.gap();
  table.line(format("best, %s %u", t.name, result.best.setting), result.best.score, "", 3);
  table.line(format("default, %s %u", t.name, t.usual), usualScore, "", 3);
  const bool onePeak = result.onePeak && usualScore <= result.best.score;
  return table.text() + (onePeak ? ""
                                 : "The score has several peaks: the search ended at one, and another value did "
                                   "better. Search around that with --from and --to.\n");
}

Bytes plotOf(const Tunable& t, const SearchResult& result) {
  Curve curve{"", "#1f77b4", true, 3, {}}, best{"best", "#d62728", false, 5, {}};
  for (const Trial& trial : result.trials) curve.points.push_back({static_cast<double>(trial.setting), trial.score});
  std::sort(curve.points.begin(), curve.points.end(), [](const auto& a, const auto& b) { return a.x < b.x; });
  best.points.push_back({static_cast<double>(result.best.setting), result.best.score});
  best.name = format("best: %u", result.best.setting);
  return encodeLinePlot({format("nadir tune --setting %s", t.name), t.name, "score, %", {curve, best}});
}

std::string json(const Tunable& t, const SearchResult& result, double usualScore) {
  Json trials = Json::array();
  for (const Trial& trial : result.trials)
    trials.push_back({{t.name, trial.setting}, {"score_percent", significantNumber(trial.score)}});
  const Json all = {{"trials", trials},
                    {"best", {{t.name, result.best.setting}, {"score_percent", significantNumber(result.best.score)}}},
                    {"default", {{t.name, t.usual}, {"score_percent", significantNumber(usualScore)}}},
                    {"one_peak", result.onePeak && usualScore <= result.best.score}};
  return all.dump(2) + "\n";
}

std::vector<std::string> pairFiles(const std::vector<std::string>& folders) {
  std::vector<std::string> files;
  for (const std::string& folder : folders)
    for (const char* name : {"left.png", "right.png", "disparity_gt.png", "elevation_gt.png", "camera.toml"})
      files.push_back(folder + "/" + name);
  return files;
}

void run(const TuneOptions& options) {
  const Tunable t = chosen(options);
  const Objective objective = objectiveOf(t, options.folders, {t.tolerance, options.wrongCosts});
  const SearchResult result = searchBest(objective, t.low, t.high, options.maxTrials);
  OutputFiles files(pairFiles(options.folders));
  if (!options.plot.empty()) files.write(options.plot, plotOf(t, result));
  files.commit();
  const double usualScore = objective(t.usual);
  print(options.json ? json(t, result, usualScore)
                     : report(t, result, usualScore) + (options.plot.empty() ? "" : writtenLine(options.plot)));
}

std::string settingList() {
  std::string text = "Settings:\n";
  for (const Tunable& t : tunables())
    text +=
        format("  %-12s %u to %u, %s; right is within %g %s\n", t.name, t.low, t.high, t.meaning, t.tolerance, t.unit);
  return text;
}

std::vector<std::string> settingNames() {
  std::vector<std::string> names;
  for (const Tunable& t : tunables()) names.emplace_back(t.name);
  return names;
}

}  // namespace

void addTuneCommand(CLI::App& app) {
  auto options = std::make_shared<TuneOptions>();
  CLI::App* command =
      app.add_subcommand("tune", "Find the value of a setting that does best on pairs whose truth is known.");
  command
      ->add_option("FOLDER", options->folders,
                   "Pairs with truth, a folder each: left.png, right.png, disparity_gt.png, as nadir synth writes them")
      ->required();
  command->add_option("--setting", options->setting, "One of the settings below (default: " + options->setting + ")")
      ->check(CLI::IsMember(settingNames()).description(""))
      ->type_name("NAME");
  addNumber(*command, "--from", options->low, wholeNumberFrom(0, UINT32_MAX),
            "Least value that is tried (default: the setting's range)", "N");
  addNumber(*command, "--to", options->high, wholeNumberFrom(0, UINT32_MAX),
            "Largest value that is tried (default: the setting's range)", "N");
  addNumber(*command, "--wrong-costs", options->wrongCosts, numberFrom(0, 1000),
            "What a wrong value costs, {range}; a right one gains 1 (default: {default})", "W");
  addNumber(*command, "--tolerance", options->tolerance, positiveNumber(),
            "A value with a larger error is wrong, pixels or mm (default: the setting's, below)", "ERROR");
  addNumber(*command, "--trials", options->maxTrials, wholeNumberFrom(2, 100),
            "Trials at most, {range} (default: {default})", "N");
  command->add_option("-o,--output", options->plot, "Receives a plot of the trials, SVG (default: none)")
      ->check(endingIn({".svg"}))
      ->type_name("FILE");
  addJsonOption(*command, options->json, "scores are percent");
  command->footer(
      settingList() +
      "\nThe score of a pair is 100 * (right - W * wrong) / truth: of the pixels (of a map: cells) whose truth is\n"
      "known, those that got a value within the tolerance and those that got another one; a hole is neither. Of\n"
      "several pairs it is the mean. Everything but the setting is as by default.\n"
      "\nThe search narrows the range by the golden section, which finds the largest score if the score first rises\n"
      "and then falls. It asks for real numbers x from half a step below the range to half a step above; tried is the\n"
      "whole number next to x.\n"
      "\nExamples:\n"
      "  nadir tune scene1 scene2 -o tune.svg\n"
      "  nadir tune scene1 scene2 --wrong-costs 0.4\n"
      "  nadir tune scene1 --setting percentile --from 30 --to 100");
  command->callback([options] { run(*options); });
}

}  // namespace nadir::tool
