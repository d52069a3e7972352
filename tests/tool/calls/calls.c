/* Loaded before the C library: writes down which files a program brings to the disk and which it renames, and lets one
 * renaming fail. */
#define _GNU_SOURCE
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

static void note(const char* what, const char* path) {
  char line[4200];
  const char* log = getenv("NADIR_CALLS");
  if (!log) return;
  snprintf(line, sizeof line, "%s %s\n", what, path);
  const int file = open(log, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  if (file < 0) return;
  if (write(file, line, strlen(line)) < 0) abort();
  close(file);
}

static void noteSync(int number) {
  char link[64], path[4096];
  snprintf(link, sizeof link, "/proc/self/fd/%d", number);
  const ssize_t length = readlink(link, path, sizeof path - 1);
  if (length < 0) return;
  path[length] = 0;
  note("sync", path);
}

int fsync(int number) {
  noteSync(number);
  return (int)syscall(SYS_fsync, number);
}

int fdatasync(int number) {
  noteSync(number);
  return (int)syscall(SYS_fdatasync, number);
}

int rename(const char* from, const char* to) {
  static int count = 0;
  const char* fails = getenv("NADIR_FAILING_RENAME");
  if (fails && ++count == atoi(fails)) {
    errno = EIO;
    return -1;
  }
  note("from", from);
  note("to", to);
  return (int)syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0);
}
