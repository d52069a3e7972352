// The program: it gives the command line to its command, and turns what goes wrong into a sentence and a status.
#include <fcntl.h>
#include <nadir/nadir.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <memory>
#include <new>
#include <sstream>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/commands/commands.hpp"
#include "tools/commands/completion.hpp"
#include "tools/commands/config_file.hpp"
#include "tools/commands/help_format.hpp"
#include "tools/commands/near_names.hpp"
#include "tools/files/temporary_file.hpp"
#include "tools/pictures/chunks.hpp"

namespace nadir::tool {

namespace {

constexpr int failed = 1;
constexpr int misused = 2;

int complain(const std::string& sentence, int status) {
  say(sentence);
  return status;
}

// If one of them were closed, it would become the number of the next file that is opened, and messages would land in
// that file. All are opened for reading alone, so that what cannot be printed fails and is told by the exit status.
void openStandardStreams() {
  int opened = 0;
  while (opened >= 0 && opened <= STDERR_FILENO) opened = open("/dev/null", O_RDONLY);
  if (opened > STDERR_FILENO) close(opened);
}

// Exceptions end here where some library lets none out. Nothing may be allocated any more, and no destructor runs.
[[noreturn]] void endInOneSentence() {
  const char* sentence = "nadir: something failed inside the program\n";
  try {
    if (std::current_exception()) std::rethrow_exception(std::current_exception());
  } catch (const std::bad_alloc&) {
    sentence = "nadir: not enough memory\n";
  } catch (...) {
  }
  removeTemporaryFiles();
  std::fputs(sentence, stderr);
  _exit(failed);
}

// A reader who leaves, and a file that may not grow, are errors of the write: the signals would end the program with
// its results half-written.
void prepareProcess() {
  openStandardStreams();
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

// Tables of the libraries and of this program are filled before main(). What stands in this section runs before all of
// them.
void watchOverExceptions() { std::set_terminate(endInOneSentence); }
[[gnu::section(".preinit_array"), gnu::used]] void (*const beforeAll)() = watchOverExceptions;

void describe(CLI::App& app) {
  app.name("nadir");
  app.footer(
      "A first walk:\n"
      "  nadir synth scene                                     makes a pair with the truth about it\n"
      "  nadir disparity scene/left.png scene/right.png -o scene/disparity.png\n"
      "  nadir evaluate scene/disparity.png scene/disparity_gt.png\n"
      "  nadir ground scene/left.png scene/right.png --camera scene/camera.toml -o scene/ground\n"
      "  nadir evaluate scene/ground scene\n"
      "`nadir help COMMAND` explains a command. Exit status: 0 done, 1 the work failed, 2 wrong usage,\n"
      "3 done, but not all of it can be relied on (frames of a sequence were skipped, stages of verify not compared,\n"
      "warnings under --strict), 130 interrupted.");
  app.set_version_flag("-V,--version",
                       [] { return format("%s (%s kernels)", software().c_str(), nadir_simd_level()); });
  app.require_subcommand(1);
  app.formatter(std::make_shared<HelpFormat>());
  app.option_defaults()->always_capture_default();
}

std::vector<CLI::App*> leavesOf(CLI::App& app) {
  std::vector<CLI::App*> leaves;
  for (CLI::App* command : app.get_subcommands([](CLI::App*) { return true; })) {
    const std::vector<CLI::App*> below = leavesOf(*command);
    leaves.insert(leaves.end(), below.begin(), below.end());
    if (below.empty()) leaves.push_back(command);
  }
  return leaves;
}

// What every command has. --config has been read before the options are.
void addCommonOptions(CLI::App& app) {
  for (CLI::App* command : leavesOf(app)) {
    CLI::Option* quiet = command->add_flag_callback("-q,--quiet", silence,
                                                    "Print no table and no progress; warnings and errors are told");
    if (CLI::Option* json = command->get_option_no_throw("--json")) quiet->excludes(json);
    command
        ->add_option(
            "--config",
            "TOML file of options by their names, in a table of the command's name; what the command line says "
            "holds. nadir config prints one (default: none)")
        ->type_name("FILE");
    for (CLI::Option* option : {quiet, command->get_option("--config"), command->get_help_ptr()})
      option->configurable(false);
  }
}

// These speak of the other commands.
void addCommandsAboutCommands(CLI::App& app) {
  app.add_subcommand("help", "Explain a command, as its --help does: nadir help ground.");
  app.add_subcommand("config",
                     "Print every option of a command with the value in force, as a file for --config: nadir config "
                     "ground --for people.");
  CLI::App* command =
      app.add_subcommand("completion", "Print a script by which a shell completes commands and options.");
  command->add_option("SHELL", "bash, zsh or fish; the script's first line says where it belongs")
      ->required()
      ->check(CLI::IsMember(completedShells()).description(""));
  command->callback([&app, command] { print(completion(app, command->get_option("SHELL")->as<std::string>())); });
}

// Instead of doing their work, commands print their settings; inputs need not be named.
void askForSettings(CLI::App& app) {
  for (CLI::App* command : leavesOf(app)) {
    command->parse_complete_callback([command] {
      print(settingsInForce(*command));
      throw CLI::Success();
    });
    for (CLI::Option* option : command->get_options()) option->required(false);
  }
}

// "help ground" is "ground --help".
Arguments asked(CLI::App& app, Arguments arguments) {
  if (arguments.empty() || (arguments[0] != "help" && arguments[0] != "config")) return arguments;
  const bool forHelp = arguments[0] == "help";
  if (arguments.size() == 2 && arguments[1] == "--help") return arguments;
  if (!forHelp && arguments.size() == 1) throw Error("name a command: nadir config ground", misused);
  arguments.erase(arguments.begin());
  if (forHelp) arguments.emplace_back("--help");
  if (!forHelp) askForSettings(app);
  return arguments;
}

// The command that the arguments name.
const CLI::App& commandIn(const CLI::App& app) {
  const auto named = app.get_subcommands();
  return named.empty() ? app : commandIn(*named.front());
}

std::string fullName(const CLI::App& command) {
  return (command.get_parent() ? fullName(*command.get_parent()) + " " : "") + command.get_name();
}

std::vector<std::string> optionNames(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* option : command.get_options())
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  return names;
}

std::vector<std::string> commandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
    names.push_back(command->get_name());
  return names;
}

std::string didYouMean(const std::string& mistyped, const std::vector<std::string>& names) {
  const std::string meant = nearest(mistyped, names);
  return meant.empty() ? "" : "; did you mean " + meant + "?";
}

// A word that was mistyped says more than what is missing because of it.
std::string mistakeIn(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<std::string> unknown = app.remaining(true);
  if (unknown.empty()) return error.what();
  const std::string first = unknown.front().substr(0, unknown.front().find('='));
  const CLI::App& command = commandIn(app);
  if (first[0] == '-') return "there is no option " + first + didYouMean(first, optionNames(command));
  const bool isCommand = command.get_require_subcommand_min() > 0;
  return isCommand ? "there is no command \"" + first + "\"" + didYouMean(first, commandNames(command))
                   : "\"" + first + "\" is one argument too many";
}

// Where the file of --config says what is wrong.
std::string placeInConfig(const std::string& sentence, const Configured& line) {
  const auto place = line.places.find(sentence.substr(0, sentence.find(':')));
  return place == line.places.end() ? "" : " (" + place->second + ")";
}

int answer(const CLI::App& app, const Configured& line, const CLI::ParseError& error) {
  const bool unknownCommand = !app.remaining(true).empty() && commandIn(app).get_require_subcommand_min() > 0;
  if (error.get_exit_code() == 0 && !unknownCommand) {
    std::ostringstream text;
    app.exit(error, text, text);
    print(text.str());
    return 0;
  }
  const std::string mistake = mistakeIn(app, error);
  return complain(mistake + placeInConfig(mistake, line) + "; see " + fullName(commandIn(app)) + " --help", misused);
}

int run(int argc, char** argv) {
  CLI::App app("From rectified stereo pairs to disparities, heights above the ground and what stands there.");
  describe(app);
  addDisparityCommand(app);
  addGroundCommand(app);
  addLevelCommand(app);
  addCheckCommand(app);
  addCameraCommand(app);
  addEvaluateCommand(app);
  addPlanCommand(app);
  addPreviewCommand(app);
  addRectifyCommand(app);
  addSynthCommand(app);
  addTuneCommand(app);
  addVerifyCommand(app);
  addCommonOptions(app);
  addCommandsAboutCommands(app);
  const Configured line = configured(app, asked(app, Arguments(argv + 1, argv + argc)));
  try {
    app.parse(Arguments(line.arguments.rbegin(), line.arguments.rend()));
  } catch (const CLI::ParseError& error) {
    return answer(app, line, error);
  }
  return 0;
}

}  // namespace

}  // namespace nadir::tool

int main(int argc, char** argv) {
  using namespace nadir::tool;
  prepareProcess();
  try {
    return run(argc, argv);
  } catch (const Error& error) {
    return complain(error.what(), error.status);
  } catch (const std::filesystem::filesystem_error& error) {
    return complain("cannot use " + error.path1().string() + ": " + error.code().message(), failed);
  } catch (const std::bad_alloc&) {
    return complain("not enough memory", failed);
  } catch (const std::exception& error) {
    return complain(error.what(), failed);
  }
}
