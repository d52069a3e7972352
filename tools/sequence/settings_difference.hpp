// Why a run cannot go on with what another one has begun.
#pragma once

#include <string>

namespace nadir::tool {

// The first setting that two JSON objects have different values of, as part of a sentence: "fps is 10 there and 11
// here". Empty where they are the same.
std::string settingsDifference(const std::string& there, const std::string& here);

// The version of the program that has begun the run, where it is not the one that says `here`. Empty where it is, or
// where nothing is told of it.
std::string otherVersion(const std::string& there, const std::string& here);

}  // namespace nadir::tool
