// Options about calibrations and the camera files that are made of them.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tools/base/json_value.hpp"
#include "tools/camera/rectification.hpp"
#include "tools/files/output_files.hpp"

namespace nadir::tool {

// --calibration, --unit-mm and --lens.
CLI::Option* addCalibrationOptions(CLI::App& command, CalibrationOptions& options, const char* help);

// --unit-mm and --lens alone, for a command that takes its calibrations otherwise.
void addUnitAndLens(CLI::App& command, CalibrationOptions& options);

// The keys of a camera file as options.
class KeyOptions {
 public:
  // onlyMount  leaves out what a calibration says: optics and the pictures' size
  void addTo(CLI::App& command, bool onlyMount);

  // Sets the map to begin with, and what was given, which stands above the calibration.
  void take(ImportedCamera& imported) const;

  // One of them, if it was given.
  std::optional<double> given(const std::string& key) const;

 private:
  std::vector<std::optional<double>> values_;  // of cameraKeys(), in their order
};

// Throws where an optical number, which a calibration has to give, is unknown or any is out of range.
void checkImported(const Camera& camera, bool baselineMayBeUnknown);

// A camera file that says whether it was edited since; writing throws where one would be replaced that was, or that
// somebody else has made, unless `force` says so.
void writeCamera(const std::string& path, const Camera& camera, bool force, OutputFiles& files);
void addForceOption(CLI::App& command, bool& force);

// What was taken from where, and what is still missing; for programs, then for people.
Json importJson(const ImportedCamera& imported, const Calibration* calibration, const std::string& path);
std::string importReport(const ImportedCamera& imported, const Calibration* calibration, const std::string& path);

}  // namespace nadir::tool
