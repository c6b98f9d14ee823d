#include "FailingWrites.h"

#include <cerrno>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

namespace lumbarn::test {
namespace {

int failAt = 0, writes = 0;
bool failLasting = false;

bool fails(int file) {
  struct stat state {};
  if (failAt == 0 || ::fstat(file, &state) != 0 || !S_ISREG(state.st_mode)) return false;
  ++writes;
  const bool now = writes == failAt || (failLasting && writes > failAt);
  if (now) errno = ENOSPC;
  return now;
}

}  // namespace

void failWrites(int n, bool lasting) {
  failAt = n;
  failLasting = lasting;
  writes = 0;
}
bool writeFailed() { return failAt > 0 && writes >= failAt; }

}  // namespace lumbarn::test

// These take the place of the C library's functions in the program and in the shared libraries that it loads.
extern "C" {

ssize_t write(int file, const void* bytes, size_t size) {
  return lumbarn::test::fails(file) ? -1 : ::syscall(SYS_write, file, bytes, size);
}
ssize_t writev(int file, const iovec* parts, int count) {
  return lumbarn::test::fails(file) ? -1 : ::syscall(SYS_writev, file, parts, count);
}
ssize_t pwrite(int file, const void* bytes, size_t size, off_t at) {
  return lumbarn::test::fails(file) ? -1 : ::syscall(SYS_pwrite64, file, bytes, size, at);
}
ssize_t pwrite64(int file, const void* bytes, size_t size, off64_t at) {
  return lumbarn::test::fails(file) ? -1 : ::syscall(SYS_pwrite64, file, bytes, size, at);
}
}
