// Header and vertices of a point cloud.
#include "tools/report/ply.hpp"

#include <algorithm>
#include <cstring>

#include "tools/base/text.hpp"
#include "tools/pictures/chunks.hpp"

namespace nadir::tool {

namespace {

std::string header(size_t count) {
  return format(
      "ply\n"
      "format binary_little_endian 1.0\n"
      "comment %s\n"
      "comment lengths in mm; the origin is the camera's centre, z points down to the ground\n"
      "comment height is above the ground, upwards\n"
      "element vertex %zu\n"
      "property float x\n"
      "property float y\n"
      "property float z\n"
      "property float height\n"
      "property uchar red\n"
      "property uchar green\n"
      "property uchar blue\n"
      "end_header\n",
      software().c_str(), count);
}

void append(Bytes& bytes, float value) {
  uint32_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<uint8_t>(bits >> shift));
}

// The range of a 12-bit camera becomes that of a byte.
uint8_t grey(uint16_t intensity) { return static_cast<uint8_t>(std::min(intensity >> 4, 255)); }

}  // namespace

Bytes encodePly(const std::vector<NadirPoint>& points, const Grid<uint16_t>& picture, float groundZ) {
  const std::string text = header(points.size());
  Bytes bytes = bytesOf(text);
  for (const NadirPoint& p : points) {
    for (const float v : {p.x_mm, p.y_mm, p.z_mm, groundZ - p.z_mm}) append(bytes, v);
    bytes.insert(bytes.end(), 3, grey(picture.at(p.column, p.row)));
  }
  return bytes;
}

}  // namespace nadir::tool
