// The areas of interest that the camera file or a file of their own holds.
#pragma once

#include <nadir/ground.h>

#include <string>
#include <vector>

namespace nadir::tool {

enum class AreaUnit { pixels, groundMm };

struct Area {
  std::string name;
  AreaUnit unit;
  std::vector<Point_s32> corners;  // pixels of the measured view, 0 = centre of the first; or world x and y, mm
  std::string origin;              // FILE:LINE, for what is found wrong later
  uint32_t minHeightMm = 0, maxHeightMm = 0;  // of what counts in it; 0: as everywhere
};

// A polygon as the library takes it, the vertices behind their count.
class PolygonRecord {
 public:
  explicit PolygonRecord(const std::vector<Point_s32>& corners);
  const Polygon_s32* get() const;

 private:
  std::vector<int32_t> words_;
};

// The word that stands in the file: "pixels", "ground_mm".
const char* nameOf(AreaUnit unit);

// Reads those of a camera file, whose other keys are not looked at. An area has a name of its own and 3 to 100 corners,
// and its edges do not cross each other. Throws Error with a line "FILE:LINE: KEY: reason" for every mistake.
std::vector<Area> readAreasOfCamera(const std::string& path);

// Reads a file that holds areas and nothing else; none of them may have the name of one of `others`.
std::vector<Area> readAreas(const std::string& path, const std::vector<Area>& others);

}  // namespace nadir::tool
