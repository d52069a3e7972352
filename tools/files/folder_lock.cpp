// A lock on the folder itself, which the system releases when the process ends.
#include "tools/files/folder_lock.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

#include "tools/files/file_error.hpp"

namespace nadir::tool {

// The folder itself is locked, so that no file stays behind.
FolderLock::FolderLock(const std::string& folder) : folder_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (folder_ < 0) throw fileError("use the folder", folder, errno);
  if (flock(folder_, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) return;
  close(folder_);
  throw Error("another run is writing into " + folder + ": wait for its end, or name another folder");
}

FolderLock::~FolderLock() { close(folder_); }

}  // namespace nadir::tool
