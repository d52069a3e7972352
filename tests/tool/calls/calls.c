/* Loaded before the C library: writes down which files a program brings to the disk, renames, or opens so that its
 * children would have them, and lets renaming, linking, reading and writing do less than is asked of them, or later. */
#define _GNU_SOURCE
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

static int openFile(const char* path, int flags, unsigned mode) {
  return (int)syscall(SYS_openat, AT_FDCWD, path, flags, mode);
}

static void note(const char* what, const char* path) {
  char line[4200];
  const char* log = getenv("NADIR_CALLS");
  if (!log) return;
  snprintf(line, sizeof line, "%s %s\n", what, path);
  const int file = openFile(log, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  if (file < 0) return;
  if (syscall(SYS_write, file, line, strlen(line)) < 0) abort();
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

int open(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const unsigned mode = flags & O_CREAT ? va_arg(rest, unsigned) : 0;
  va_end(rest);
  if (!(flags & O_CLOEXEC)) note("inherited", path);
  return openFile(path, flags, mode);
}

int link(const char* from, const char* to) {
  if (getenv("NADIR_FAILING_LINK")) {
    errno = EPERM;
    return -1;
  }
  return (int)syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0);
}

/* Where the environment says so, of three calls one is interrupted and the next gets a byte alone. */
static int isInterrupted(unsigned call, size_t* count) {
  if (!getenv("NADIR_INTERRUPTED")) return 0;
  if (call % 3 == 1 && *count > 1) *count = 1;
  errno = EINTR;
  return call % 3 == 0;
}

ssize_t write(int file, const void* bytes, size_t count) {
  static unsigned calls = 0;
  return isInterrupted(calls++, &count) ? -1 : syscall(SYS_write, file, bytes, count);
}

ssize_t read(int file, void* bytes, size_t count) {
  static unsigned calls = 0;
  const char* late = getenv("NADIR_LATE_READ");
  if (late && calls == (unsigned)atoi(late)) usleep(300000);
  return isInterrupted(calls++, &count) ? -1 : syscall(SYS_read, file, bytes, count);
}
