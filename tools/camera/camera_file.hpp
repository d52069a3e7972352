// The camera file: a stereo camera, its mount and the map that it fills, in TOML with the units in the names.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "tools/camera/camera.hpp"
#include "tools/files/files.hpp"

namespace nadir::tool {

// The table of areas of interest, which are read apart from the camera: [[area]].
constexpr const char* areaKey = "area";

// A key of the file.
struct CameraKey {
  const char* table;  // "" for the top
  const char* name;
  std::variant<double Camera::*, uint32_t Camera::*> member;
  double low, high;  // both allowed
  bool optional;     // the default is then Camera's
  const char* meaning;
};

// The keys stand in the file's order.
const std::vector<CameraKey>& cameraKeys();

// With its table: "height_mm", "map.cell_mm".
std::string fullName(const CameraKey& key);

// True where the value is a whole number.
bool isCount(const CameraKey& key);

bool isKnown(const Camera& camera, const CameraKey& key);
double valueOf(const Camera& camera, const CameraKey& key);
void setValue(Camera& camera, const CameraKey& key, double value);

// "" for a good value, else what is wrong with it.
std::string mistakeIn(double value, const CameraKey& key);

// Throws Error with a line "FILE:LINE: KEY: reason" for every mistake.
Camera readCamera(const std::string& path);

// Height and tilt may be missing: they are then unknown.
Camera readCameraBeforeMount(const std::string& path);

// `text` is the file's; `path` is for the messages alone.
Camera parseCamera(const std::string& text, const std::string& path);

// The file's text with a comment for every key. What is unknown becomes a comment that asks for it.
std::string cameraText(const Camera& camera);
Bytes cameraBytes(const Camera& camera);

}  // namespace nadir::tool
