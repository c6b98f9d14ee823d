#include "System.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <new>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "StandardStreams.h"

namespace lumbarn {

namespace {

std::string errorText(int number) { return std::generic_category().message(number); }

void closeHandle(std::intptr_t& handle) {
  if (handle >= 0) ::close(static_cast<int>(std::exchange(handle, -1)));
}

FileStamp stampFrom(const struct stat& status) {
  constexpr std::int64_t nanoseconds = 1'000'000'000;
  return {.device = static_cast<std::uint64_t>(status.st_dev),
          .inode = static_cast<std::uint64_t>(status.st_ino),
          .size = static_cast<std::uint64_t>(status.st_size),
          .modified = std::int64_t{status.st_mtim.tv_sec} * nanoseconds + status.st_mtim.tv_nsec};
}

constexpr std::size_t largePage = std::size_t{2} << 20;
constexpr std::size_t largestTransfer = std::size_t{1} << 30;  // the system takes at most 2 GB at once

}  // namespace

std::optional<FileStamp> stampOf(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  return stampFrom(status);
}

FileChange changeBetween(const FileStamp& before, const FileStamp& now) {
  if (now.device != before.device || now.inode != before.inode) return FileChange::Replaced;
  if (now.size < before.size) return FileChange::Shrunk;
  return now.size == before.size && now.modified != before.modified ? FileChange::Rewritten
                                                                    : FileChange::None;
}

InputFile::InputFile(const std::string& path, std::string& error) {
  // Without O_NONBLOCK, opening a pipe would hang until somebody writes to it. Reading leaves no trace on a
  // file's times where the system grants that, which it does to the file's owner.
  constexpr int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;
  handle_ = ::open(path.c_str(), flags | O_NOATIME);
  if (handle_ < 0 && errno == EPERM) handle_ = ::open(path.c_str(), flags);
  if (handle_ < 0) {
    error = errorText(errno);
    return;
  }
  struct stat status {};
  if (::fstat(static_cast<int>(handle_), &status) != 0) {
    error = errorText(errno);
  } else if (S_ISREG(status.st_mode)) {
    openingStamp_ = stampFrom(status);
    return;
  } else {
    error = S_ISDIR(status.st_mode) ? "is a folder" : "is no regular file";
  }
  close();
}

InputFile::InputFile(InputFile&& other) noexcept
    : handle_(std::exchange(other.handle_, -1)), openingStamp_(other.openingStamp_) {}

InputFile::~InputFile() { close(); }

void InputFile::close() { closeHandle(handle_); }

std::optional<FileStamp> InputFile::stamp() const {
  struct stat status {};
  if (handle_ < 0 || ::fstat(static_cast<int>(handle_), &status) != 0) return std::nullopt;
  return stampFrom(status);
}

std::size_t InputFile::readAt(std::uint64_t position, std::span<std::byte> out, std::string& error) const {
  std::size_t done = 0;
  while (done < out.size()) {
    const auto wanted = std::min(out.size() - done, largestTransfer);
    const auto got =
        ::pread(static_cast<int>(handle_), out.data() + done, wanted, static_cast<off_t>(position + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) error = errorText(errno);
    if (got <= 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

void InputFile::expectSparseReads() const {
  if (handle_ >= 0) ::posix_fadvise(static_cast<int>(handle_), 0, 0, POSIX_FADV_RANDOM);
}

OutputFile::OutputFile(const std::string& path, std::string& error) {
  handle_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (handle_ < 0) error = errorText(errno);
}

OutputFile OutputFile::createNew(const std::string& path, std::string& error) {
  const int handle = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
  if (handle < 0) error = errorText(errno);
  return OutputFile(handle);
}

OutputFile& OutputFile::operator=(OutputFile&& other) noexcept {
  std::swap(handle_, other.handle_);
  std::swap(error_, other.error_);
  return *this;
}

OutputFile::~OutputFile() { closeHandle(handle_); }

/// Keeps the reason while it is still that of the call that failed.
bool OutputFile::failed() {
  if (error_.empty()) error_ = errorText(errno);
  return false;
}

bool OutputFile::write(std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const auto wanted = std::min(bytes.size(), largestTransfer);
    const auto put = ::write(static_cast<int>(handle_), bytes.data(), wanted);
    if (put < 0 && errno == EINTR) continue;
    if (put == 0) errno = EIO;  // the system takes nothing and does not say why
    if (put <= 0) return failed();
    bytes = bytes.subspan(static_cast<std::size_t>(put));
  }
  return true;
}

bool OutputFile::writeAt(std::uint64_t position, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const auto wanted = std::min(bytes.size(), largestTransfer);
    const auto put = ::pwrite(static_cast<int>(handle_), bytes.data(), wanted, static_cast<off_t>(position));
    if (put < 0 && errno == EINTR) continue;
    if (put == 0) errno = EIO;  // the system takes nothing and does not say why
    if (put <= 0) return failed();
    bytes = bytes.subspan(static_cast<std::size_t>(put));
    position += static_cast<std::uint64_t>(put);
  }
  return true;
}

bool OutputFile::readAt(std::uint64_t position, std::span<std::byte> out) {
  while (!out.empty()) {
    const auto wanted = std::min(out.size(), largestTransfer);
    const auto got = ::pread(static_cast<int>(handle_), out.data(), wanted, static_cast<off_t>(position));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return failed();
    if (got == 0) break;
    out = out.subspan(static_cast<std::size_t>(got));
    position += static_cast<std::uint64_t>(got);
  }
  std::ranges::fill(out, std::byte{0});
  return true;
}

bool OutputFile::close() {
  if (handle_ < 0) return true;
  return ::close(static_cast<int>(std::exchange(handle_, -1))) == 0 || failed();
}

std::string makeTemporaryFile(const std::string& prefix) {
  const char* folder = std::getenv("TMPDIR");  // NOLINT(concurrency-mt-unsafe): nothing here sets it
  std::string path = std::string(folder && *folder ? folder : "/tmp") + "/" + prefix + "XXXXXX";
  const int handle = ::mkstemp(path.data());
  if (handle < 0) return {};
  ::close(handle);
  return path;
}

void* allocateLarge(std::size_t bytes) {
  if (bytes < largePage) return ::operator new(bytes, std::align_val_t(64));
  // Mapped here and not by way of the allocator: that would keep what is given back, with the advice on it,
  // for whatever the host asks for next.
  if (bytes > std::size_t{PTRDIFF_MAX}) throw std::bad_alloc();
  const auto length = (bytes + largePage - 1) / largePage * largePage;
  void* const mapped =
      ::mmap(nullptr, length + largePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped == MAP_FAILED) throw std::bad_alloc();
  auto* const start = static_cast<std::byte*>(mapped);
  const std::size_t before = (largePage - reinterpret_cast<std::uintptr_t>(start) % largePage) % largePage;
  if (before > 0) ::munmap(start, before);
  ::munmap(start + before + length, largePage - before);
  ::madvise(start + before, length, MADV_HUGEPAGE);  // without large pages this is merely slower
  return start + before;
}

void freeLarge(void* memory, std::size_t bytes) noexcept {
  if (bytes < largePage) return ::operator delete(memory, std::align_val_t(64));
  ::munmap(memory, (bytes + largePage - 1) / largePage * largePage);
}

void* openLibrary(const std::string& name, const char* function, std::string& error) {
  void* library = ::dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* found = library ? ::dlsym(library, function) : nullptr;
  if (!found) {
    const char* reason = ::dlerror();
    error = reason ? reason : "it does not have " + std::string(function);
  }
  return found;
}

std::string thisModulePath() {
  Dl_info info{};
  const bool found = ::dladdr(reinterpret_cast<const void*>(&thisModulePath), &info) != 0 && info.dli_fname;
  return found ? info.dli_fname : "";
}

void openStandardStreams() {
  for (const int handle : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    const bool closed = ::fcntl(handle, F_GETFD) < 0 && errno == EBADF;
    // The lowest free number is given, which is this one, as those below it are open.
    if (closed) ::open("/dev/null", handle == STDOUT_FILENO ? O_RDONLY : O_RDWR);
  }
}

bool stderrIsTerminal() { return ::isatty(STDERR_FILENO) == 1; }

}  // namespace lumbarn
