// Why a result that was made all the same may not be relied on.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace nadir::tool {

struct Warning {
  std::string id;                                       // what programs look for: it stays, however the sentence is put
  std::string sentence;                                 // for people, with the numbers in it
  std::vector<std::pair<std::string, double>> numbers;  // by their names, each with its unit
};

using Warnings = std::vector<Warning>;  // empty when all is well

// Says each on standard error.
void tell(const Warnings& warnings);

// What --strict asks for, once everything is written: throws where there is a warning, with the status that says so.
void throwIfAny(const Warnings& warnings);

}  // namespace nadir::tool
