// Each group is one set of files, which are in place before the group's lines are appended.
#include "tools/sequence/frame_writer.hpp"

namespace nadir::tool {

namespace {

// A robot whose supply is cut loses no more than this; shorter groups would keep the disk busy with nothing else.
constexpr auto groupTime = std::chrono::milliseconds(250);

}  // namespace

void FrameWriter::write(const std::string& path, const Bytes& bytes) {
  if (!files_) files_.emplace(inputs_);
  files_->write(path, bytes);
}

void FrameWriter::append(const std::string& line) {
  lines_ += line;
  if (Clock::now() - flushed_ >= groupTime) flush();
}

void FrameWriter::flush() {
  if (files_) files_->commit();
  files_.reset();
  log_.append(lines_);
  log_.sync();
  lines_.clear();
  flushed_ = Clock::now();
}

}  // namespace nadir::tool
