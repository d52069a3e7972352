// The pairs of a sequence, in order.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace nadir::tool {

class FrameSource {
 public:
  // left   a folder with pictures of equal names in its folders left and right; `right` is empty then.
  //        Or a folder of the left camera's pictures; a glob of them, left/*.png; a pattern with one number in it as
  //        printf writes them, cam0/%06d.png. `right` names those of the right camera in one of these ways, and those
  //        of one number are a pair.
  //        Or an index, whose rows name the pairs; `right` is empty then. Its times are the frames' numbers and names.
  // sideBySide  every picture that `left` names holds both, left | right; `right` is empty.
  // camera  the camera file: of an index the rows that name another one are left out.
  // Frames are those that the left camera has, in the order of the numbers in their names. In a folder the number
  // stands at the end of the name, in what a glob matches it is the last one; pictures without one are no frames.
  // Throws where there is none.
  FrameSource(const std::string& left, const std::string& right, bool sideBySide, const std::string& camera);

  static bool isSequence(const std::string& left);

  size_t size() const { return frames_.size(); }
  uint64_t number(size_t frame) const { return frames_[frame].number; }
  const std::string& name(size_t frame) const { return frames_[frame].name; }  // of its files, without extension
  std::string left(size_t frame) const;
  std::string right(size_t frame) const;  // empty where the left file holds both

 private:
  // One picture of a camera.
  struct Frame {
    uint64_t number;
    std::string name;
    std::string left, right;  // files, in the cameras' folders; no right one where it is called as the left one
  };

  // What stands around a frame's number in the names of one camera's files.
  struct Pattern {
    std::string folder, before, after;
    unsigned digits;
    std::string file(uint64_t number) const;
  };

  static Pattern parsePattern(const std::string& pattern);
  static std::vector<Frame> framesOfFolder(const std::string& folder);
  static std::vector<Frame> framesOfGlob(const std::string& folder, const std::string& glob);
  static std::vector<Frame> framesOfPattern(const Pattern& pattern);
  static std::vector<Frame> framesOfIndex(const std::string& path, const std::string& camera, bool sideBySide);
  static std::vector<Frame> framesOf(const std::string& argument, std::string& folder);

  void findRight(const std::string& left, const std::string& right);

  std::string leftFolder_, rightFolder_;
  bool sideBySide_;
  std::vector<Frame> frames_;
};

}  // namespace nadir::tool
