#include "FileSink.h"

#include <filesystem>

#include "../support/PendingFile.h"
#include "../support/System.h"
#include "Error.h"

namespace lumbarn {

namespace fs = std::filesystem;

FileSink::FileSink(const std::string& path) : path_(path) {
  try {
    std::error_code unknown;
    const fs::file_status status = fs::status(fs::path(std::u8string(path.begin(), path.end())), unknown);
    if (fs::is_directory(status)) {
      throw Error(Error::Kind::BadRequest,
                  {.message = Message::RequestRefused, .path = path, .problem = "is a folder"});
    }
    if (!fs::exists(status) || fs::is_regular_file(status)) {
      pending_ = std::make_unique<PendingFile>(path);
      return;
    }
    std::string why;
    inPlace_ = std::make_unique<OutputFile>(path, why);
    if (!inPlace_->isOpen()) fail(why);
  } catch (...) {
    throw errorInFlight();
  }
}
FileSink::~FileSink() = default;

void FileSink::write(std::span<const std::byte> bytes) {
  constexpr std::size_t heldBytes = std::size_t{64} << 10;
  if (held_.size() + bytes.size() >= heldBytes) {
    put(std::as_bytes(std::span(held_)));
    held_.clear();
  }
  if (bytes.size() >= heldBytes) return put(bytes);
  held_.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

void FileSink::flush() {
  if (!inPlace_) return;
  put(std::as_bytes(std::span(held_)));
  held_.clear();
}

void FileSink::put(std::span<const std::byte> bytes) {
  OutputFile& file = pending_ ? pending_->out() : *inPlace_;
  if (!bytes.empty() && !file.write(bytes)) fail(file.error());
}

void FileSink::commit() {
  put(std::as_bytes(std::span(held_)));
  held_.clear();
  if (inPlace_ && !inPlace_->close()) fail(inPlace_->error());
  if (!pending_) return;
  try {
    pending_->commit();
  } catch (...) {
    throw errorInFlight();
  }
}

void FileSink::fail(const std::string& why) const {
  throw Error(Error::Kind::System,
              {.message = Message::FileWrite, .path = path_, .problem = "cannot be written: " + why});
}

}  // namespace lumbarn
