#include "IndexedRecords.h"

#include <fmt/format.h>

namespace lumbarn {

RecordCursor& IndexedRecords::open(const std::string& path) {
  current_.reset();
  if (cursor_ && cursor_->path() == path) return *cursor_;
  std::string why;
  cursor_ = openRecords(path, why);
  if (!cursor_) throw BadRecord({.message = Message::FileOpen, .path = path, .problem = why});
  cursor_->attach(*session_);
  return *cursor_;
}

RecordCursor& IndexedRecords::moveTo(const RestartIndex& index, const IndexStep& step,
                                     const IndexEntry& entry) {
  const std::string& path = index.files[step.file];
  if (!cursor_ || cursor_->path() != path) open(path);
  if (auto change = changedSince(index.stamps[step.file], path)) throw BadRecord(std::move(*change));
  if (current_ == entry.position) return *cursor_;
  current_.reset();
  cursor_->seek(entry.position);
  const bool there = cursor_->next();
  const RecordHeader& header = cursor_->header();
  if (!there || header.keyword != entry.keyword.view() || header.count != entry.count ||
      header.typeWord != entry.typeWord.view()) {
    throw BadRecord(
        {.message = Message::ArrayMoved,
         .path = path,
         .keyword = std::string(entry.keyword.view()),
         .offset = entry.position,
         .expected = fmt::format("{} of {} {}", entry.keyword.view(), entry.count, entry.typeWord.view()),
         .found = fmt::format("{} of {} {}", header.keyword, header.count, header.typeWord)});
  }
  current_ = entry.position;
  return *cursor_;
}

}  // namespace lumbarn
