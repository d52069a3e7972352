// A hash of what a function makes of fixed inputs, and the table of such functions.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "lab/fingerprint.hpp"

namespace nadir::test::golden {

using lab::Fingerprint;

struct Case {
  std::string name;
  std::function<Fingerprint()> run;
};

// A file each.
std::vector<Case> imageCases();
std::vector<Case> stereoCases();
std::vector<Case> numberCases();
std::vector<Case> geometryCases();
std::vector<Case> cameraCases();
std::vector<Case> segmentCases();
std::vector<Case> groundCases();
std::vector<Case> rectifyCases();
std::vector<Case> checkCases();

}  // namespace nadir::test::golden
