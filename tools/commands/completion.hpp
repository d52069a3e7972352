// Scripts by which shells complete what is typed.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace nadir::tool {

// The shells that there are scripts for: bash, zsh, fish.
std::vector<std::string> completedShells();

// Made from the commands and options that the program has.
std::string completion(const CLI::App& app, const std::string& shell);

}  // namespace nadir::tool
