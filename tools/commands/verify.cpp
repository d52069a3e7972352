// nadir verify: does this processor give the bits that the tested ones give?
#include <nadir/nadir.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <memory>

#include "lab/verify/verify.hpp"
#include "tools/base/error.hpp"
#include "tools/base/json_value.hpp"
#include "tools/base/text.hpp"
#include "tools/commands/commands.hpp"
#include "tools/commands/options.hpp"
#include "tools/files/files.hpp"
#include "tools/pictures/chunks.hpp"

namespace nadir::tool {

namespace {

struct VerifyOptions {
  bool printHashes = false, json = false;
  std::string against;
};

verify::Table readTable(const std::string& path) {
  const std::optional<verify::Table> table = verify::parseTable(readText(path));
  if (!table || table->empty())
    throw Error("cannot use " + path + ": its lines are not a stage and a hash, as --print-hashes writes them");
  return *table;
}

std::string lineOf(const verify::Finding& f) {
  const std::string got = verify::recordLine({"", f.got});
  if (f.same()) return format("%-20s same\n", f.stage.c_str());
  if (!f.wanted) return format("%-20s not compared, got%s\n", f.stage.c_str(), got.c_str());
  return format("%-20s DIFFERS, got%s, wanted%s\n", f.stage.c_str(), got.c_str(),
                verify::recordLine({"", *f.wanted}).c_str());
}

std::string tableText(const verify::Table& hashes) {
  std::string text;
  for (const verify::Record& record : hashes) text += verify::recordLine(record) + '\n';
  return text;
}

std::string linesOf(const verify::Findings& findings, const verify::Table& table) {
  std::string text;
  for (const verify::Finding& f : findings) text += lineOf(f);
  for (const std::string& name : unknownStages(findings, table))
    text += format("%-20s not run: the table is of another version\n", name.c_str());
  return text;
}

std::string jsonOf(const verify::Findings& findings) {
  Json stages = Json::array();
  for (const verify::Finding& f : findings) {
    const Json wanted = f.wanted ? Json(format("%016llx", static_cast<unsigned long long>(*f.wanted))) : Json();
    const std::string got = format("%016llx", static_cast<unsigned long long>(f.got));
    stages.push_back({{"stage", f.stage}, {"same", f.same()}, {"got", got}, {"wanted", wanted}});
  }
  const Json all = {{"kernels", nadir_simd_level()}, {"software", software()}, {"stages", stages}};
  return all.dump(2) + "\n";
}

// A table of another version says nothing against the processor.
std::string sameSoFar(const verify::Findings& findings, const verify::Table& table) {
  const auto isSame = [](const verify::Finding& f) { return f.same(); };
  const auto same = static_cast<size_t>(std::count_if(findings.begin(), findings.end(), isSame));
  if (same == 0) return "nothing was compared: the table and this program have no stage in common";
  return format(
      "all %zu stages that were compared are the same, but %zu were not, because the table is of another "
      "version of nadir",
      same, findings.size() - same + unknownStages(findings, table).size());
}

void run(const VerifyOptions& options) {
  const auto start = std::chrono::steady_clock::now();
  const verify::Table table = options.against.empty() ? verify::builtInTable() : readTable(options.against);
  const verify::Table hashes = hashesOf(verify::allStages(), verify::renderedMaterial());
  if (options.printHashes) return print(tableText(hashes));
  const verify::Findings findings = compared(hashes, table);
  print(options.json ? jsonOf(findings) : linesOf(findings, table));
  const std::string judged = format("%s kernels, %s: ", nadir_simd_level(), software().c_str());
  if (anyDiffers(findings)) throw Error(judged + "this processor's results DIFFER");
  if (!isVerified(findings, table)) throw Error(judged + sameSoFar(findings, table), someNotCompared);
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  if (!options.json) print(judged + format("all %zu stages are the same, %.1f s\n", findings.size(), seconds));
}

}  // namespace

void addVerifyCommand(CLI::App& app) {
  auto options = std::make_shared<VerifyOptions>();
  CLI::App* command = app.add_subcommand(
      "verify", "Check that this processor gives the same results, to the last bit, as those that were tested.");
  CLI::Option* prints =
      command->add_flag("--print-hashes", options->printHashes, "Print the stages' hashes, a line each");
  command
      ->add_option("--against", options->against,
                   "Compare with hashes that --print-hashes has written elsewhere (default: those built in)")
      ->excludes(prints)
      ->type_name("FILE");
  addJsonOption(*command, options->json, "a hash is 16 hexadecimal digits")->excludes(prints);
  command->footer(
      "Renders a small scene and runs every stage of the library on it, in about a second. A hash of each stage's\n"
      "results is compared with the one built into the program, on which x86-64, armv7, aarch64 and s390x agree. A\n"
      "stage takes nothing from the others: only those that differ are in doubt. The exit status is 0 if all are the\n"
      "same, 1 if one differs. It is 3 if none does, but the table and this program do not know the same stages, as "
      "of\n"
      "two versions: what was compared speaks for the processor, the rest is said to be not compared or not run.\n"
      "Examples:\n"
      "  nadir verify\n"
      "  nadir verify --print-hashes > hashes.txt      # on one machine\n"
      "  nadir verify --against hashes.txt             # on another");
  command->callback([options] { run(*options); });
}

}  // namespace nadir::tool
