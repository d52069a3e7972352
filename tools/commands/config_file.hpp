// Options that stand in a file: a table of TOML for each command, [ground] or [camera.import], of options by their
// names.
#pragma once

#include <CLI/CLI.hpp>
#include <map>
#include <string>
#include <vector>

namespace nadir::tool {

using Arguments = std::vector<std::string>;

// The command line with what the file of its --config says of the command, and where each option of it stands,
// "FILE:LINE", by its name. What the command line says itself holds. Throws for what the command does not have.
struct Configured {
  Arguments arguments;
  std::map<std::string, std::string> places;
};

Configured configured(const CLI::App& app, const Arguments& arguments);

// Such a table of every option of a command whose arguments have been read, with the values in force.
std::string settingsInForce(const CLI::App& command);

}  // namespace nadir::tool
