// Numbers are replaced line by line.
#include "tools/camera/mount_text.hpp"

#include <algorithm>
#include <string_view>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/camera/camera_file.hpp"
#include "tools/files/toml_file.hpp"

namespace nadir::tool {

namespace {

// The end of each line stays with it.
std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  for (size_t at = 0; at < text.size();) {
    const size_t end = text.find('\n', at), next = end == std::string::npos ? text.size() : end + 1;
    lines.push_back(text.substr(at, next - at));
    at = next;
  }
  return lines;
}

// A number holds no space. Spaces between it and a comment grow or shrink with it, so that the comment keeps its
// column.
void replaceValue(std::string& line, std::string value) {
  const size_t begin = line.find_first_not_of(" \t", line.find('=') + 1);
  size_t end = std::min(line.find_first_of(" \t\r\n#", begin), line.size());
  const size_t comment = line.find_first_not_of(' ', end);
  if (comment != std::string::npos && comment > end && line[comment] == '#') {
    value.resize(std::max(value.size() + 1, comment - begin), ' ');
    end = comment;
  }
  line.replace(begin, end - begin, value);
}

bool asksFor(const std::string& line, const std::string& name) { return line.rfind("# " + name + " =", 0) == 0; }

void insertBelowHead(std::vector<std::string>& lines, const std::string& table, const std::string& line) {
  const std::string head = "[" + table + "]";
  auto place =
      std::find_if(lines.begin(), lines.end(), [&](const std::string& other) { return other.rfind(head, 0) == 0; });
  if (place == lines.end()) throw Error("the camera file has no line that begins with " + head);
  lines.insert(std::next(place), line);
}

void insert(std::vector<std::string>& lines, const CameraKey& key, const std::string& line) {
  for (std::string& other : lines)
    if (asksFor(other, key.name)) return void(other = line);
  if (*key.table) return insertBelowHead(lines, key.table, line);
  const auto isBlank = [](const std::string& other) { return other.find_first_not_of(" \t\r\n") == std::string::npos; };
  const auto isTable = [](const std::string& other) {
    return !other.empty() && other[std::min(other.find_first_not_of(" \t"), other.size() - 1)] == '[';
  };
  auto place = std::find_if(lines.begin(), lines.end(), isTable);
  while (place != lines.begin() && isBlank(*std::prev(place))) --place;
  lines.insert(place, line);
}

const CameraKey& keyNamed(const std::string& name) {
  for (const CameraKey& key : cameraKeys())
    if (name == fullName(key)) return key;
  throw Error("no key " + name);
}

std::string digitsOf(double value, const CameraKey& key) {
  const std::string_view name = key.name;
  const bool isAngle = name.size() > 4 && name.substr(name.size() - 4) == "_deg";
  return format("%.*f", isCount(key) ? 0 : isAngle ? 3 : 1, value);
}

void set(std::vector<std::string>& lines, const toml::table& top, const NewNumber& number) {
  const CameraKey& key = keyNamed(number.name);
  const std::string mistake = mistakeIn(number.value, key);
  if (!mistake.empty()) throw Error(format("%s: %s", number.name.c_str(), mistake.c_str()));
  const std::string digits = digitsOf(number.value, key);
  if (const toml::node* node = top.at_path(number.name).node())
    replaceValue(lines.at(lineOf(*node) - 1), digits);
  else
    insert(lines, key, format("%-26s  # %s\n", format("%s = %s", key.name, digits.c_str()).c_str(), key.meaning));
}

}  // namespace

// Lines that are inserted move those below, which the parser has counted: what is there is replaced first.
std::string textWithNumbers(const std::string& text, const std::string& path, const std::vector<NewNumber>& numbers) {
  const toml::table top = parseToml(text, path);
  std::vector<std::string> lines = linesOf(text);
  for (const bool there : {true, false})
    for (const NewNumber& number : numbers)
      if (bool(top.at_path(number.name)) == there) set(lines, top, number);
  std::string whole;
  for (const std::string& line : lines) whole += line;
  return whole;
}

}  // namespace nadir::tool
