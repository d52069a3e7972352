// The outputs of a command, written so that either all of them are there or none, and stay there when the power is cut.
#pragma once

#include <list>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "tools/base/interrupt.hpp"
#include "tools/files/file_marks.hpp"
#include "tools/files/files.hpp"
#include "tools/files/temporary_file.hpp"

namespace nadir::tool {

// Brings a folder's names to the disk.
void syncFolder(const std::string& folder);

// Removes the temporary files that a killed run has left in a folder; no other process may be writing there.
void removeParts(const std::string& folder);

// write() fills a temporary file beside the target; commit() brings all to the disk and gives every one its name, with
// the mode of the file that had it. Where that fails, predecessors have their names again. What is not committed
// disappears with the object, and nothing else does. It lives for the writing alone, because interrupts wait for its
// end.
class OutputFiles {
 public:
  // write() refuses to replace one of the inputs; an empty name is none.
  explicit OutputFiles(const std::vector<std::string>& inputs = {})
      : OutputFiles(std::make_shared<const FileMarks>(inputs)) {}
  explicit OutputFiles(std::shared_ptr<const FileMarks> inputs) : inputs_(std::move(inputs)) {}
  OutputFiles(const OutputFiles&) = delete;
  OutputFiles& operator=(const OutputFiles&) = delete;
  ~OutputFiles();

  // Makes a folder unless it exists; its parent must exist.
  void makeFolder(const std::string& path);
  // "-" is standard output, which gets no tables then.
  void write(const std::string& target, const Bytes& bytes);
  void commit();

 private:
  struct File {
    explicit File(std::string name) : target(std::move(name)) {}
    std::string target;
    std::string predecessor;  // its second name, empty as long as there is none
    TemporaryFile temporary;
  };

  static void putBack(const File& file);
  void fillStandardOutput() const;
  void syncFolders() const;

  std::shared_ptr<const FileMarks> inputs_;
  InterruptDelay untilAllIsDone_;
  std::list<File> files_;
  std::vector<std::string> newFolders_;
  Bytes standardOutput_;
  bool committed_ = false;
};

}  // namespace nadir::tool
