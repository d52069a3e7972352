// The names in folders, or those that fit a glob or a pattern, become frames in their order.
#include "tools/sequence/frame_source.hpp"

#include <fnmatch.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <regex>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/pictures/formats.hpp"
#include "tools/sequence/frame_index.hpp"

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

// The number in what a glob matches: cam_000012_left.
std::string lastDigits(const std::string& name) {
  const size_t last = name.find_last_of("0123456789");
  return last == std::string::npos ? "" : digitsAtEnd(name.substr(0, last + 1));
}

bool isGlob(const std::string& argument) { return argument.find_first_of("*?[") != std::string::npos; }

// Of a path, with the slash at its end.
std::string folderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

// By their numbers; throws where two have the same one.
template <class Frame>
void bringInOrder(std::vector<Frame>& frames, const std::string& argument) {
  if (frames.empty()) throw Error("there is no frame in " + argument);
  std::sort(frames.begin(), frames.end(), [](const Frame& a, const Frame& b) {
    return a.number != b.number ? a.number < b.number : a.name < b.name;
  });
  for (size_t i = 1; i < frames.size(); ++i)
    if (frames[i].number == frames[i - 1].number)
      throw Error(format("the frames %s and %s of %s have the same number", frames[i - 1].name.c_str(),
                         frames[i].name.c_str(), argument.c_str()));
}

}  // namespace

bool FrameSource::isSequence(const std::string& left) {
  return fs::is_directory(left) || isIndex(left) ||
         ((left.find('%') != std::string::npos || isGlob(left)) && !fs::exists(left));
}

FrameSource::FrameSource(const std::string& left, const std::string& right, bool sideBySide, const std::string& camera)
    : sideBySide_(sideBySide) {
  if (isIndex(left)) {
    if (!right.empty()) throw Error("the index " + left + " names the right pictures too: name nothing beside it");
    leftFolder_ = rightFolder_ = folderOf(left);
    frames_ = framesOfIndex(left, camera, sideBySide);
    bringInOrder(frames_, left);
    return;
  }
  const bool holdsFolders = !sideBySide && right.empty() && fs::is_directory(left);
  if (holdsFolders && !fs::is_directory(left + "/left"))
    throw Error("there is no folder left in " + left +
                ": name two folders, one for each camera, or say --side-by-side where each picture holds both");
  frames_ = framesOf(holdsFolders ? left + "/left" : left, leftFolder_);
  bringInOrder(frames_, left);
  if (holdsFolders)
    rightFolder_ = left + "/right/";
  else if (!sideBySide)
    findRight(left, right);
}

std::string FrameSource::left(size_t frame) const { return (fs::path(leftFolder_) / frames_[frame].left).string(); }

std::string FrameSource::right(size_t frame) const {
  if (sideBySide_) return "";
  const Frame& f = frames_[frame];
  return (fs::path(rightFolder_) / (f.right.empty() ? f.left : f.right)).string();
}

std::string FrameSource::Pattern::file(uint64_t number) const {
  return before + format("%0*llu", static_cast<int>(digits), static_cast<unsigned long long>(number)) + after;
}

FrameSource::Pattern FrameSource::parsePattern(const std::string& pattern) {
  static const std::regex shape("(.*/)?([^/%]*)%(0([0-9]{1,2}))?[du]([^/%]*)");
  std::smatch parts;
  if (!std::regex_match(pattern, parts, shape))
    throw Error("\"" + pattern + "\" is no pattern of numbered pictures: name both like left/%06d.png");
  return {parts[1], parts[2], parts[5], parts[4].matched ? static_cast<unsigned>(std::stoul(parts[4])) : 0};
}

std::vector<FrameSource::Frame> FrameSource::framesOfFolder(const std::string& folder) {
  std::vector<Frame> frames;
  for (const fs::path& file : filesIn(folder)) {
    const std::string name = file.stem().string(), digits = digitsAtEnd(name);
    if (hasPictureEnding(file.string()) && !digits.empty())
      frames.push_back({numberOf(digits), name, file.string(), ""});
  }
  if (frames.empty())
    throw Error("there is no frame in " + folder + ": none of the pictures in it has a number at the end of its name");
  return frames;
}

std::vector<FrameSource::Frame> FrameSource::framesOfGlob(const std::string& folder, const std::string& glob) {
  std::vector<Frame> frames;
  for (const fs::path& file : filesIn(folder)) {
    const std::string name = file.stem().string(), digits = lastDigits(name);
    if (fnmatch(glob.c_str(), file.c_str(), FNM_PERIOD) == 0 && hasPictureEnding(file.string()) && !digits.empty())
      frames.push_back({numberOf(digits), name, file.string(), ""});
  }
  return frames;
}

// Every file whose number, put into the pattern, gives its name.
std::vector<FrameSource::Frame> FrameSource::framesOfPattern(const Pattern& pattern) {
  std::vector<Frame> frames;
  for (const fs::path& path : filesIn(pattern.folder)) {
    const std::string file = path.string();
    const size_t around = pattern.before.size() + pattern.after.size();
    if (file.size() <= around || file.compare(0, pattern.before.size(), pattern.before) != 0) continue;
    const std::string digits = file.substr(pattern.before.size(), file.size() - around);
    if (!isNumber(digits)) continue;
    const uint64_t number = numberOf(digits);
    if (pattern.file(number) == file) frames.push_back({number, path.stem().string(), file, ""});
  }
  return frames;
}

// A row's time is its frame's name too, because no two of a camera share one; files of several folders may.
std::vector<FrameSource::Frame> FrameSource::framesOfIndex(const std::string& path, const std::string& camera,
                                                           bool sideBySide) {
  std::vector<Frame> frames;
  for (IndexRow& row : indexRows(path, camera)) {
    if (!sideBySide && row.right.empty())
      throw Error("the index " + path + " names no right picture beside " + row.left +
                  ": --side-by-side where each picture holds both");
    frames.push_back({numberOf(row.time), row.time, std::move(row.left), std::move(row.right)});
  }
  return frames;
}

std::vector<FrameSource::Frame> FrameSource::framesOf(const std::string& argument, std::string& folder) {
  if (fs::is_directory(argument)) {
    folder = argument + "/";
    return framesOfFolder(folder);
  }
  folder = folderOf(argument);
  if (isGlob(argument)) return framesOfGlob(folder, argument.substr(folder.size()));
  return framesOfPattern(parsePattern(argument));
}

// A pattern tells the names of files that may still come.
void FrameSource::findRight(const std::string& left, const std::string& right) {
  if (!fs::is_directory(right) && !isGlob(right)) {
    const Pattern pattern = parsePattern(right);
    rightFolder_ = pattern.folder;
    for (Frame& frame : frames_) frame.right = pattern.file(frame.number);
    return;
  }
  std::vector<Frame> others = framesOf(right, rightFolder_);
  bringInOrder(others, right);
  for (Frame& frame : frames_) {
    const auto other = std::lower_bound(others.begin(), others.end(), frame,
                                        [](const Frame& a, const Frame& b) { return a.number < b.number; });
    if (other == others.end() || other->number != frame.number)
      throw Error(format("frame %s of %s has no right picture: none in %s has its number", frame.name.c_str(),
                         left.c_str(), right.c_str()));
    if (other->left != frame.left) frame.right = other->left;
  }
}

}  // namespace nadir::tool
