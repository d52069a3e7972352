// What a file says of a command becomes arguments behind those of the command line.
#include "tools/commands/config_file.hpp"

#include <algorithm>
#include <set>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/commands/near_names.hpp"
#include "tools/files/files.hpp"
#include "tools/files/toml_file.hpp"

namespace nadir::tool {

namespace {

const char configOption[] = "--config";

bool names(const std::string& argument, const std::string& name) {
  return argument == name || argument.rfind(name + "=", 0) == 0;
}

// The file's name; empty where there is none.
std::string fileNamed(const Arguments& arguments) {
  for (size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i] == configOption && i + 1 < arguments.size()) return arguments[i + 1];
    if (names(arguments[i], configOption)) return arguments[i].substr(sizeof configOption);
  }
  return "";
}

bool takesNothing(const CLI::Option& known) { return known.get_expected_max() == 0; }

const CLI::App* commandNamed(const CLI::App& app, const std::string& name) {
  const auto found = app.get_subcommands([&](const CLI::App* command) { return command->get_name() == name; });
  return found.empty() ? nullptr : found.front();
}

// Takes the file's tables to a command's own.
class Reader {
 public:
  Reader(const std::string& path, const Arguments& given) : path_(path), given_(given), mistakes_(path) {}

  // Tables of other commands are theirs.
  void read(const CLI::App& app, const toml::table& table, size_t word) {
    for (const auto& [key, node] : table) {
      const std::string name(key.str());
      const CLI::App* command = node.is_table() ? commandNamed(app, name) : nullptr;
      if (!command && (word == 0 || node.is_table())) {
        mistakes_.add(lineOf(key), name, "there is no such command");
      } else if (command && word < given_.size() && given_[word] == name) {
        read(*command, *node.as_table(), word + 1);
      } else if (!command) {
        add(app, lineOf(key), name, node);
      }
    }
  }

  Configured end() {
    mistakes_.throwIfAny();
    return std::move(result_);
  }

 private:
  void add(const CLI::App& command, uint32_t line, const std::string& key, const toml::node& node) {
    const std::string name = "--" + key;
    const CLI::Option* known = command.get_option_no_throw(name);
    if (!known || !known->nonpositional() || name == configOption) return refuseName(command, line, key);
    if (isGiven(*known)) return;
    const bool isFlag = takesNothing(*known);
    if (isFlag != node.is_boolean())
      return mistakes_.add(line, key, isFlag ? "it is true or false" : "it is no flag, but has a value");
    result_.places[name] = format("%s:%u", path_.c_str(), line);
    if (!isFlag) return addValues(line, key, node);
    if (node.value_or(false)) result_.arguments.push_back(name);
  }

  bool isGiven(const CLI::Option& known) const {
    return std::any_of(given_.begin(), given_.end(), [&](const std::string& argument) {
      for (const std::string& name : known.get_lnames())
        if (names(argument, "--" + name)) return true;
      for (const std::string& letter : known.get_snames())
        if (argument.rfind("-" + letter, 0) == 0) return true;
      return false;
    });
  }

  void addValues(uint32_t line, const std::string& key, const toml::node& node) {
    result_.arguments.push_back("--" + key);
    if (const toml::array* several = node.as_array()) {
      for (const toml::node& one : *several) result_.arguments.push_back(wordOf(line, key, one));
    } else {
      result_.arguments.push_back(wordOf(line, key, node));
    }
  }

  std::string wordOf(uint32_t line, const std::string& key, const toml::node& node) {
    if (const auto text = node.value_exact<std::string>()) return *text;
    if (const auto whole = node.value_exact<int64_t>()) return std::to_string(*whole);
    if (const auto number = node.value_exact<double>()) return format("%.15g", *number);
    mistakes_.add(line, key, std::string("it is ") + typeName(node) + ", but has to be a number or a text");
    return "";
  }

  void refuseName(const CLI::App& command, uint32_t line, const std::string& key) {
    std::vector<std::string> known;
    for (const CLI::Option* one : command.get_options()) known.push_back(one->get_single_name());
    const std::string meant = nearest(key, known);
    mistakes_.add(line, key, "there is no such option" + (meant.empty() ? "" : "; did you mean " + meant + "?"));
  }

  std::string path_;
  const Arguments& given_;
  Mistakes mistakes_;
  Configured result_;
};

bool isNumber(const std::string& text) {
  double number = 0;
  return text.find_first_not_of("0123456789+-.eE") == std::string::npos && CLI::detail::lexical_cast(text, number);
}

std::string tomlOf(const std::string& text) {
  if (isNumber(text)) return text;
  std::string quoted = "\"";
  for (const char letter : text) quoted += (letter == '"' || letter == '\\' ? "\\" : "") + std::string(1, letter);
  return quoted + "\"";
}

std::string tomlOf(const std::vector<std::string>& values) {
  std::string list;
  for (const std::string& value : values) list += (list.empty() ? "" : ", ") + tomlOf(value);
  return values.size() == 1 ? list : "[" + list + "]";
}

bool hasWhatItNeeds(const CLI::Option& known) {
  const std::set<CLI::Option*> needs = known.get_needs();
  return std::all_of(needs.begin(), needs.end(), [](const CLI::Option* needed) { return needed->count() > 0; });
}

std::string lineOf(const CLI::Option& known) {
  const std::string name = known.get_single_name();
  if (takesNothing(known)) return name + " = " + (known.count() > 0 ? "true" : "false") + "\n";
  if (known.count() > 0) return name + " = " + tomlOf(known.results()) + "\n";
  const std::string usual = known.get_default_str();
  if (usual.empty() || usual == "[]") return "# " + name + " is not given\n";
  return (hasWhatItNeeds(known) ? "" : "# ") + name + " = " + tomlOf(usual) + "\n";
}

std::string tableName(const CLI::App& command) {
  const CLI::App* above = command.get_parent();
  return (above && above->get_parent() ? tableName(*above) + "." : "") + command.get_name();
}

}  // namespace

Configured configured(const CLI::App& app, const Arguments& arguments) {
  const std::string path = fileNamed(arguments);
  if (path.empty()) return {arguments, {}};
  Reader reader(path, arguments);
  reader.read(app, parseToml(readTypedText(path), path), 0);
  Configured result = reader.end();
  result.arguments.insert(result.arguments.begin(), arguments.begin(), arguments.end());
  return result;
}

std::string settingsInForce(const CLI::App& command) {
  std::string text = "[" + tableName(command) + "]\n";
  for (const CLI::Option* known : command.get_options())
    if (known->nonpositional() && known->get_configurable()) text += lineOf(*known);
  return text;
}

}  // namespace nadir::tool
