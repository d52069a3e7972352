// The table of bytes in the public header is right: nadir_road_bytes HEADER
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "lab/road.hpp"

namespace nadir::test {
namespace {

struct Bytes {
  size_t road, result;
};

Bytes bytesOf(uint32_t until, uint32_t width, uint32_t height) {
  lab::TexturedPair pair{};
  pair.width = width;
  pair.height = height;
  lab::RoadPlan plan = lab::planOf(lab::cameraOver(pair));
  plan.camera.map_height_cells = plan.camera.map_width_cells = 64;
  plan.settings.until = until;
  return {nadir_road_bytes(&plan.camera, &plan.settings, 0), nadir_result_bytes(&plan.camera, &plan.settings, 0)};
}

// Pointers are shorter on 32-bit processors: the table may say a little more than there is.
bool isRight(const char* what, size_t stated, size_t bytes) {
  const bool right = bytes > 0 && bytes <= stated * 1000 && bytes + stated + 1000 > stated * 1000;
  std::printf("%s: %zu thousand bytes stated, %zu found%s\n", what, stated, bytes, right ? "" : ": WRONG");
  return right;
}

bool isRight(const std::string& line, uint32_t until) {
  std::istringstream numbers(line);
  std::string name, plus;
  Bytes small{}, large{};
  numbers >> name >> name >> small.road >> plus >> small.result >> large.road >> plus >> large.result;
  const Bytes is[] = {bytesOf(until, 320, 240), bytesOf(until, 640, 480)};
  const bool right[] = {
      isRight("road, 320 x 240", small.road, is[0].road), isRight("result, 320 x 240", small.result, is[0].result),
      isRight("road, 640 x 480", large.road, is[1].road), isRight("result, 640 x 480", large.result, is[1].result)};
  return numbers && right[0] && right[1] && right[2] && right[3];
}

int wrongLines(std::ifstream header) {
  const std::string names[] = {"NADIR_UNTIL_MATCH", "NADIR_UNTIL_MAP", "NADIR_UNTIL_ALL"};
  int missing = 3;
  for (std::string line; std::getline(header, line);)
    for (uint32_t until = 0; until < 3; ++until)
      if (line.rfind(" *   " + names[until] + " ", 0) == 0 && isRight(line, until)) --missing;
  return missing;
}

}  // namespace
}  // namespace nadir::test

int main(int argc, char** argv) { return argc == 2 && nadir::test::wrongLines(std::ifstream(argv[1])) == 0 ? 0 : 1; }
