#pragma once

#include <algorithm>
#include <memory>
#include <utility>

#include "record/ByteSource.h"
#include "support/Session.h"

namespace lumbarn::test {

enum class ReadFault {
  Fails,    ///< the read returns nothing, with a reason, as a bad sector does
  Short,    ///< the read returns half of its bytes and no reason
  Changes,  ///< this read and all after it see other bytes, as when the file is rewritten in place
  Touched,  ///< from this read on the file has another modification time
};

/// The read at which one or several sources go wrong. It counts the reads of all of them.
struct ReadScript {
  ReadFault fault = ReadFault::Fails;
  int at = 0;     ///< from 1; 0: never
  int reads = 0;  ///< so far
  bool met() const { return at > 0 && reads >= at; }
};

/// A source of bytes that goes wrong at the n-th read.
class FaultySource final : public ByteSource {
 public:
  FaultySource(std::shared_ptr<const ByteSource> inner, std::shared_ptr<ReadScript> script)
      : inner_(std::move(inner)), script_(std::move(script)) {}
  std::uint64_t size() const override { return inner_->size(); }
  std::string path() const override { return inner_->path(); }
  std::optional<FileStamp> stamp() const override { return inner_->stamp(); }
  std::optional<Diagnosis> changed() const override {
    const bool changes = script_->fault == ReadFault::Changes || script_->fault == ReadFault::Touched;
    if (!changes || !script_->met()) return inner_->changed();
    return Diagnosis{.message = Message::FileChanged, .path = path(), .found = "another modification time"};
  }

 private:
  std::size_t transfer(std::uint64_t position, std::span<std::byte> out, std::string& why) const override {
    const bool now = ++script_->reads == script_->at;
    if (now && script_->fault == ReadFault::Fails) {
      why = "Input/output error";
      return 0;
    }
    const std::size_t copied = inner_->readAt(position, out);
    if (now && script_->fault == ReadFault::Short) return copied / 2;
    if (script_->fault == ReadFault::Changes && script_->met()) {
      std::ranges::for_each(out, [](std::byte& byte) { byte ^= std::byte{0x11}; });
    }
    return copied;
  }

  std::shared_ptr<const ByteSource> inner_;
  std::shared_ptr<ReadScript> script_;
};

/// While it lives, the n-th read of all files together, in any session, goes wrong.
class FaultyFiles {
 public:
  FaultyFiles(ReadFault fault, int at) : script_(std::make_shared<ReadScript>(ReadScript{fault, at})) {
    Session::process().wrapSource = [script = script_](std::unique_ptr<const ByteSource> source) {
      return std::make_unique<FaultySource>(std::move(source), script);
    };
  }
  FaultyFiles(const FaultyFiles&) = delete;
  FaultyFiles& operator=(const FaultyFiles&) = delete;
  ~FaultyFiles() { Session::process().wrapSource = nullptr; }
  /// Whether the read that goes wrong has been reached; when it has not, a load has fewer reads than that.
  bool met() const { return script_->met(); }
  int reads() const { return script_->reads; }

 private:
  std::shared_ptr<ReadScript> script_;
};

}  // namespace lumbarn::test
