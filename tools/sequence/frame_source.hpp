// The pairs of a sequence, in order.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace nadir::tool {

class FrameSource {
 public:
  // left   a folder with pictures of equal names in its folders left and right; `right` is empty then.
  //        Or a pattern with one number in it as printf writes them, cam0/%06d.png, and `right` another.
  // Frames are those that the left camera has, in the order of the numbers in their names. In a folder the number
  // stands at the end of the name; pictures without one are no frames. Throws where there is none.
  FrameSource(const std::string& left, const std::string& right);

  static bool isSequence(const std::string& left);

  size_t size() const { return frames_.size(); }
  uint64_t number(size_t frame) const { return frames_[frame].number; }
  const std::string& name(size_t frame) const { return frames_[frame].name; }  // of its files, without extension
  std::string left(size_t frame) const { return left_.path(frames_[frame]); }
  std::string right(size_t frame) const { return right_.path(frames_[frame]); }

 private:
  struct Frame {
    uint64_t number;
    std::string name, extension;
  };

  // What stands around a frame's number in the names of one camera's files.
  struct Names {
    std::string folder, before, after;
    unsigned digits = 0;
    bool numbered = false;
    std::string path(const Frame& frame) const;
  };

  static Names parsePattern(const std::string& pattern);
  void listFolder(const std::string& folder);
  void listPattern();

  Names left_, right_;
  std::vector<Frame> frames_;
};

}  // namespace nadir::tool
