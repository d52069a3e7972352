// A shell learns every command's words; where none of them is begun it offers files.
#include "tools/commands/completion.hpp"

#include <functional>

namespace nadir::tool {

namespace {

using Commands = std::vector<const CLI::App*>;

Commands commandsOf(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App*) { return true; });
}

std::vector<const CLI::Option*> optionsOf(const CLI::App& command) {
  return command.get_options([](const CLI::Option* option) { return option->nonpositional(); });
}

// Of a command and of those below it.
std::string wordsOf(const CLI::App& command) {
  std::string words;
  for (const CLI::App* below : commandsOf(command)) words += below->get_name() + " " + wordsOf(*below);
  for (const CLI::Option* option : optionsOf(command))
    for (const std::string& name : option->get_lnames()) words += "--" + name + " ";
  return words;
}

std::string bashScript(const CLI::App& app) {
  std::string commands, cases;
  for (const CLI::App* command : commandsOf(app)) {
    commands += command->get_name() + " ";
    cases += "    " + command->get_name() + ") words=\"" + wordsOf(*command) + "\" ;;\n";
  }
  return "# nadir completion bash > ~/.local/share/bash-completion/completions/nadir\n"
         "_nadir() {\n"
         "  local words\n"
         "  case ${COMP_WORDS[1]} in\n" +
         cases +
         "  esac\n"
         "  ((COMP_CWORD > 1)) || words=\"" +
         commands +
         "\"\n"
         "  COMPREPLY=($(compgen -W \"$words\" -- \"${COMP_WORDS[COMP_CWORD]}\"))\n"
         "}\n"
         "complete -o default -F _nadir nadir\n";
}

std::string zshScript(const CLI::App& app) {
  return "#compdef nadir\n# source <(nadir completion zsh)\nautoload -U +X bashcompinit && bashcompinit\n" +
         bashScript(app);
}

std::string quoted(const std::string& text) {
  std::string inQuotes = "'";
  for (const char letter : text) inQuotes += (letter == '\'' || letter == '\\' ? "\\" : "") + std::string(1, letter);
  return inQuotes + "'";
}

std::string fishScript(const CLI::App& app) {
  std::string lines = "# nadir completion fish > ~/.config/fish/completions/nadir.fish\n";
  const std::function<void(const CLI::App&)> addBelow = [&](const CLI::App& command) {
    for (const CLI::App* below : commandsOf(command)) {
      const std::string where =
          command.get_parent() ? "__fish_seen_subcommand_from " + command.get_name() : "__fish_use_subcommand";
      lines += "complete -c nadir -n '" + where + "' -a " + below->get_name() + " -d " +
               quoted(below->get_description()) + "\n";
      addBelow(*below);
    }
    for (const CLI::Option* option : command.get_parent() ? optionsOf(command) : std::vector<const CLI::Option*>())
      for (const std::string& name : option->get_lnames())
        lines += "complete -c nadir -n '__fish_seen_subcommand_from " + command.get_name() + "' -l " + name + " -d " +
                 quoted(option->get_description()) + "\n";
  };
  addBelow(app);
  return lines;
}

struct Shell {
  const char* name;
  std::string (*script)(const CLI::App&);
};

constexpr Shell shells[] = {{"bash", bashScript}, {"zsh", zshScript}, {"fish", fishScript}};

}  // namespace

std::vector<std::string> completedShells() {
  std::vector<std::string> names;
  for (const Shell& shell : shells) names.emplace_back(shell.name);
  return names;
}

std::string completion(const CLI::App& app, const std::string& name) {
  for (const Shell& shell : shells)
    if (name == shell.name) return shell.script(app);
  return "";
}

}  // namespace nadir::tool
