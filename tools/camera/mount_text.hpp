// A camera file with another mount or map: what people wrote around it stays as it is.
#pragma once

#include <string>
#include <vector>

namespace nadir::tool {

// A key of the camera file, with its table: "height_mm", "map.cell_mm".
struct NewNumber {
  std::string name;
  double value;
};

// The text of a camera file with these numbers in it: in the place of those that are there, or of the comments that ask
// for them, else above the first table or below the head of their own. All else, comments too, is kept to the byte.
//
// path  for the messages alone
std::string textWithNumbers(const std::string& text, const std::string& path, const std::vector<NewNumber>& numbers);

}  // namespace nadir::tool
