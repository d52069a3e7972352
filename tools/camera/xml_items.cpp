// Reads OpenCV's calibrations in XML: <opencv_storage> with an element for each value.
#include <tinyxml2.h>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/camera/calibration_items.hpp"

namespace nadir::tool {

namespace {

// A matrix has its numbers in an element of their own, a list and a number stand as they are.
std::string textOf(const tinyxml2::XMLElement& element) {
  const tinyxml2::XMLElement* data = element.FirstChildElement("data");
  const char* text = (data ? *data : element).GetText();
  return text ? text : "";
}

std::string trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(" \t\r\n"), last = text.find_last_not_of(" \t\r\n");
  return first == std::string::npos ? "" : text.substr(first, last - first + 1);
}

}  // namespace

bool isXml(const std::string& text) {
  const size_t first = text.find_first_not_of(" \t\r\n\xef\xbb\xbf");
  return first != std::string::npos && text[first] == '<';
}

CalibrationItems xmlItems(const CalibrationFile& file) {
  tinyxml2::XMLDocument document;
  if (document.Parse(file.text.data(), file.text.size()) != tinyxml2::XML_SUCCESS)
    throw Error(format("%s:%d: it is not XML: %s", file.path.c_str(), std::max(1, document.ErrorLineNum()),
                       document.ErrorName()));
  const tinyxml2::XMLElement* root = document.FirstChildElement("opencv_storage");
  if (!root) throw Error(file.path + ":1: opencv_storage: is missing, the element that OpenCV's calibrations stand in");
  CalibrationItems items(file.path);
  for (const auto* element = root->FirstChildElement(); element; element = element->NextSiblingElement()) {
    const std::string text = trimmed(textOf(*element));
    items.add({file.path, element->Name(), element->GetLineNum(), numbersIn(text), text});
  }
  return items;
}

}  // namespace nadir::tool
