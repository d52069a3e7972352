// Writes what came of the frames, in groups, so that the log never tells of a frame whose maps a power cut could take.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "tools/files/frame_log.hpp"
#include "tools/files/output_files.hpp"

namespace nadir::tool {

class FrameWriter {
 public:
  // The files of `inputs` are not written to.
  FrameWriter(FrameLog& log, std::shared_ptr<const FileMarks> inputs) : log_(log), inputs_(std::move(inputs)) {}

  // Writes a file of the frame whose line comes next.
  void write(const std::string& path, const Bytes& bytes);

  // The frame is complete. Its files and lines go to the disk together with those of others, several times a second.
  void append(const std::string& line);

  // Brings the files of all complete frames to the disk, and then their lines.
  void flush();

 private:
  using Clock = std::chrono::steady_clock;

  FrameLog& log_;
  std::shared_ptr<const FileMarks> inputs_;
  std::optional<OutputFiles> files_;
  std::string lines_;
  Clock::time_point flushed_ = Clock::now();
};

}  // namespace nadir::tool
