// Numbers are replaced line by line.
#include "tools/camera/mount_text.hpp"

#include <algorithm>
#include <vector>

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

void insert(std::vector<std::string>& lines, const std::string& name, const std::string& line) {
  for (std::string& other : lines)
    if (asksFor(other, name)) return void(other = line);
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
    if (name == key.name) return key;
  throw Error("no key " + name);
}

void set(std::vector<std::string>& lines, const toml::table& top, const char* name, double value) {
  const CameraKey& key = keyNamed(name);
  const std::string mistake = mistakeIn(value, key);
  if (!mistake.empty()) throw Error(format("%s: %s", name, mistake.c_str()));
  const std::string number = format(*name == 'h' ? "%.1f" : "%.3f", value);
  if (const toml::node* node = top.get(name))
    replaceValue(lines.at(lineOf(*node) - 1), number);
  else
    insert(lines, name, format("%-26s  # %s\n", format("%s = %s", name, number.c_str()).c_str(), key.meaning));
}

}  // namespace

// Lines that are inserted move those below, which the parser has counted: what is there is replaced first.
std::string textWithMount(const std::string& text, const std::string& path, const MountNumbers& mount) {
  const toml::table top = parseToml(text, path);
  std::vector<std::string> lines = linesOf(text);
  const std::pair<const char*, std::optional<double>> numbers[] = {
      {"height_mm", mount.heightMm}, {"tilt_deg", mount.tiltDeg}, {"pan_deg", mount.panDeg}};
  for (const bool there : {true, false})
    for (const auto& [name, value] : numbers)
      if (value && top.contains(name) == there) set(lines, top, name, *value);
  std::string whole;
  for (const std::string& line : lines) whole += line;
  return whole;
}

}  // namespace nadir::tool
