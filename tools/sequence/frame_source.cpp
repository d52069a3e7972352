// The names in a folder, or those that fit a pattern, become frames in their order.
#include "tools/sequence/frame_source.hpp"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <regex>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/pictures/formats.hpp"

namespace nadir::tool {

namespace fs = std::filesystem;

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isNumber(const std::string& text) { return !text.empty() && std::all_of(text.begin(), text.end(), isDigit); }

uint64_t numberOf(const std::string& digits) {
  uint64_t number = 0;
  if (std::from_chars(digits.data(), digits.data() + digits.size(), number).ec != std::errc())
    throw Error("the frame number " + digits + " is too large, it has to fit into 64 bits");
  return number;
}

std::string digitsAtEnd(const std::string& name) {
  size_t begin = name.size();
  while (begin > 0 && isDigit(name[begin - 1])) --begin;
  return name.substr(begin);
}

// Names of the plain files in a folder; what cannot be asked for its kind, a link in a circle, is none.
std::vector<fs::path> filesIn(const std::string& folder) {
  std::vector<fs::path> files;
  std::error_code unreadable, unknown;
  for (const auto& entry : fs::directory_iterator(folder.empty() ? "." : folder, unreadable))
    if (entry.is_regular_file(unknown)) files.push_back(entry.path().filename());
  if (unreadable) throw Error("cannot read the folder " + folder + ": " + unreadable.message());
  return files;
}

}  // namespace

bool FrameSource::isSequence(const std::string& left) {
  return fs::is_directory(left) || (left.find('%') != std::string::npos && !fs::exists(left));
}

FrameSource::FrameSource(const std::string& left, const std::string& right) {
  if (fs::is_directory(left)) {
    if (!right.empty()) throw Error(left + " is a folder: it holds both pictures of each frame, name no second one");
    listFolder(left);
  } else {
    left_ = parsePattern(left);
    right_ = parsePattern(right);
    listPattern();
  }
  if (frames_.empty()) throw Error("there is no frame in " + left);
  std::sort(frames_.begin(), frames_.end(), [](const Frame& a, const Frame& b) {
    return a.number != b.number ? a.number < b.number : a.name < b.name;
  });
  for (size_t i = 1; i < frames_.size(); ++i)
    if (frames_[i].number == frames_[i - 1].number)
      throw Error(format("the frames %s and %s of %s have the same number", frames_[i - 1].name.c_str(),
                         frames_[i].name.c_str(), left.c_str()));
}

std::string FrameSource::Names::path(const Frame& frame) const {
  if (!numbered) return folder + frame.name + frame.extension;
  return folder + before + format("%0*llu", static_cast<int>(digits), static_cast<unsigned long long>(frame.number)) +
         after;
}

FrameSource::Names FrameSource::parsePattern(const std::string& pattern) {
  static const std::regex shape("(.*/)?([^/%]*)%(0([0-9]{1,2}))?[du]([^/%]*)");
  std::smatch parts;
  if (!std::regex_match(pattern, parts, shape))
    throw Error("\"" + pattern + "\" is no pattern of numbered pictures: name both like left/%06d.png");
  return {parts[1], parts[2], parts[5], parts[4].matched ? static_cast<unsigned>(std::stoul(parts[4])) : 0, true};
}

void FrameSource::listFolder(const std::string& folder) {
  left_.folder = folder + "/left/";
  right_.folder = folder + "/right/";
  for (const fs::path& file : filesIn(left_.folder)) {
    const std::string name = file.stem().string(), digits = digitsAtEnd(name);
    if (hasPictureEnding(file.string()) && !digits.empty())
      frames_.push_back({numberOf(digits), name, file.extension().string()});
  }
  if (frames_.empty())
    throw Error("there is no frame in " + folder + ": none of the pictures in " + left_.folder +
                " has a number at the end of its name");
}

// Every file whose number, put into the pattern, gives its name.
void FrameSource::listPattern() {
  for (const fs::path& path : filesIn(left_.folder)) {
    const std::string file = path.string();
    const size_t around = left_.before.size() + left_.after.size();
    if (file.size() <= around || file.compare(0, left_.before.size(), left_.before) != 0) continue;
    const std::string digits = file.substr(left_.before.size(), file.size() - around);
    if (!isNumber(digits)) continue;
    const Frame frame{numberOf(digits), path.stem().string(), ""};
    if (left_.path(frame) == left_.folder + file) frames_.push_back(frame);
  }
}

}  // namespace nadir::tool
