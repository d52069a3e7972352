// Areas of interest: polygons that the user watches, from the camera file or a file of their own.
#pragma once

#include <nadir/nadir.h>

#include <string>
#include <vector>

namespace nadir::tool {

// The key of both files: [[area]].
constexpr const char* areaKey = "area";

// How far from the origin an area may reach, pixels or mm. The library tells sides by products of two differences in 32
// bits: 46000 * 46000 still fits.
constexpr int32_t areaReach = 23000;

enum class AreaUnit { pixels, groundMm };

struct Area {
  std::string name;
  AreaUnit unit;
  std::vector<Point_s32> corners;  // pixels of the measured view, 0 = centre of the first; or world x and y, mm
  std::string place;               // FILE:LINE, for what is found wrong later
};

// In words as they stand in the file: "pixels", "ground_mm".
const char* nameOf(AreaUnit unit);

// Of a camera file, whose other keys are not looked at. An area has a name of its own and 3 to 100 corners, and its
// edges do not cross each other. Throws Error with a line "FILE:LINE: KEY: reason" for every mistake.
std::vector<Area> readAreasOfCamera(const std::string& path);

// Of a file that holds areas and nothing else; none of them may have the name of one of `others`.
std::vector<Area> readAreas(const std::string& path, const std::vector<Area>& others);

// A polygon as the library takes it, the vertices behind their count.
class PolygonRecord {
 public:
  explicit PolygonRecord(const std::vector<Point_s32>& corners);
  const Polygon_s32* get() const;

 private:
  std::vector<int32_t> words_;
};

}  // namespace nadir::tool
