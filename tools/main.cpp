// The program: it gives the command line to its command, and turns what goes wrong into a sentence and a status.
#include <fcntl.h>
#include <nadir/nadir.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <new>
#include <sstream>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/commands/commands.hpp"
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
      "`nadir COMMAND --help` explains a command. Exit status: 0 done, 1 the work failed, 2 wrong usage,\n"
      "3 done, but not all of it can be relied on (frames of a sequence were skipped, stages of verify not compared,\n"
      "warnings under --strict), 130 interrupted.");
  app.set_version_flag("--version", [] { return format("%s (%s kernels)", software().c_str(), nadir_simd_level()); });
  app.require_subcommand(1);
}

// The command that the arguments name.
const CLI::App& commandIn(const CLI::App& app) {
  const auto named = app.get_subcommands();
  return named.empty() ? app : commandIn(*named.front());
}

std::string fullName(const CLI::App& command) {
  return (command.get_parent() ? fullName(*command.get_parent()) + " " : "") + command.get_name();
}

// A word that was mistyped says more than what is missing because of it.
std::string mistakeIn(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<std::string> unknown = app.remaining(true);
  if (unknown.empty()) return error.what();
  const std::string& first = unknown.front();
  if (first[0] == '-') return "there is no option " + first;
  const bool isCommand = commandIn(app).get_require_subcommand_min() > 0;
  return isCommand ? "there is no command \"" + first + "\"" : "\"" + first + "\" is one argument too many";
}

int answer(const CLI::App& app, const CLI::ParseError& error) {
  if (error.get_exit_code() == 0) {
    std::ostringstream text;
    app.exit(error, text, text);
    print(text.str());
    return 0;
  }
  const std::string sentence = mistakeIn(app, error) + "; see " + fullName(commandIn(app)) + " --help";
  return complain(sentence, misused);
}

int run(int argc, char** argv) {
  CLI::App app("From rectified stereo pairs to disparities, heights above the ground and what stands there.");
  describe(app);
  addDisparityCommand(app);
  addGroundCommand(app);
  addCheckCommand(app);
  addCameraCommand(app);
  addEvaluateCommand(app);
  addPlanCommand(app);
  addPreviewCommand(app);
  addRectifyCommand(app);
  addSynthCommand(app);
  addTuneCommand(app);
  addVerifyCommand(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return answer(app, error);
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
