#include "RecordCursor.h"

#include <utility>

#include <fmt/format.h>

#include "../support/Diagnosis.h"
#include "../support/Fault.h"
#include "../support/Text.h"
#include "Codec.h"

namespace lumbarn {

namespace {

constexpr std::int64_t elementsPerX231 = std::int64_t{1} << 31;

}  // namespace

struct RecordCursor::Ahead {
  std::uint64_t start = 0;  // where `next` looked
  RecordHeader header;
  DataLayout layout;
};

RecordCursor::RecordCursor(std::shared_ptr<const ByteSource> source, Form form, std::string path)
    : source_(std::move(source)),
      form_(form),
      path_(std::move(path)),
      window_(std::make_unique<Window>(*source_)),
      codec_(makeCodec(form)),
      layout_(std::make_unique<DataLayout>()) {}

RecordCursor::~RecordCursor() = default;
RecordCursor::RecordCursor(RecordCursor&&) noexcept = default;
RecordCursor& RecordCursor::operator=(RecordCursor&&) noexcept = default;

void RecordCursor::attach(const Session& session, RecordFile file) {
  window_->watch(session);
  file_ = file;
}

void RecordCursor::readAhead() { window_->readAhead(); }

/// Adds this cursor's coordinates to whatever damage the body meets.
template <class Body>
auto RecordCursor::located(Body&& body) {
  try {
    return body();
  } catch (BadRecord& damage) {
    auto& diagnosis = damage.diagnosis();
    diagnosis.path = path_;
    diagnosis.keyword = header_.keyword;
    diagnosis.occurrence = occurrence_;
    throw;
  }
}

bool RecordCursor::next() {
  start_ = next_;
  header_.clear();
  occurrence_ = 0;
  if (takeAhead()) return true;
  return located([&] {
    if (!readHeader(start_)) return false;
    occurrence_ = ++met_[header_.key];
    if (header_.count < 0) {
      throwBadRecord("element count is negative", header_.headerAt, "0 or more",
                     fmt::format("{}", header_.count));
    }
    *layout_ = codec_->locate(*window_, header_);
    next_ = layout_->end;
    if (auto wrong = unexpected(file_, header_)) throw BadRecord(std::move(*wrong));
    if (lookingAhead_ && regular()) ahead_.push_back({start_, header_, *layout_});
    return true;
  });
}

/// Takes the next record from those that were met looking ahead, if it is one of them.
bool RecordCursor::takeAhead() {
  if (nextAhead_ == ahead_.size()) return false;
  const Ahead& ahead = ahead_[nextAhead_];
  if (ahead.start != start_) return false;
  ++nextAhead_;
  header_ = ahead.header;
  *layout_ = ahead.layout;
  next_ = layout_->end;
  occurrence_ = ++met_[header_.key];
  return true;
}

Gap RecordCursor::skipDamage() {
  const bool endKnown = next_ > start_;  // only the data, or the keyword's type, are wrong
  const bool headerSound = header_.dataAt > start_;
  const std::uint64_t behind = endKnown ? next_ : headerSound ? header_.dataAt : start_ + 1;
  return located([&] {
    next_ = codec_->findHeader(*window_, behind);
    return Gap{start_, next_};
  });
}

void RecordCursor::checkUnchanged() const {
  if (auto report = source_->changed()) throw BadRecord(std::move(*report));
}

void RecordCursor::unread() {
  --met_[header_.key];
  next_ = header_.headerAt;
}

RecordCursor::Mark RecordCursor::mark() {
  ahead_.clear();
  nextAhead_ = 0;
  lookingAhead_ = true;
  return {next_, met_};
}

void RecordCursor::goBack(Mark mark) {
  lookingAhead_ = false;
  next_ = mark.next;
  met_ = std::move(mark.met);
}

bool RecordCursor::readHeader(std::uint64_t position) {
  if (!codec_->readHeader(*window_, position, header_)) return false;
  if (header_.typeWord != "X231") return true;
  const auto blocksOf2G = -header_.count;
  if (blocksOf2G < 1) {
    throwBadRecord("X231 count is not negative", header_.headerAt, "below 0",
                   fmt::format("{}", header_.count));
  }
  const std::string keyword = header_.keyword;
  const auto start = header_.headerAt;
  const auto second = header_.dataAt;
  if (!codec_->readHeader(*window_, second, header_) || header_.keyword != keyword) {
    throwBadRecord("no header follows X231", second, keyword, std::exchange(header_.keyword, keyword));
  }
  if (header_.count >= 0) header_.count += blocksOf2G * elementsPerX231;
  header_.headerAt = start;
  return true;
}

void RecordCursor::setCurrent(const RecordHeader& header, bool checked) {
  header_ = header;
  occurrence_ = 0;
  if (checked && !form_.formatted()) {  // where a formatted record's data stand depends on its line ends too
    *layout_ = {};
    return;
  }
  located([&] {
    *layout_ = codec_->locate(*window_, header_);
    next_ = layout_->end;
  });
}

bool RecordCursor::regular() const { return layout_->kind == DataLayout::Kind::Regular; }

void RecordCursor::decode(ElementType wanted, std::int64_t first, std::size_t count, void* out) {
  const bool shortAsInteger = wanted == ElementType::Integer && header_.type == ElementType::Short;
  if (header_.type != wanted && !shortAsInteger) throw Fault(FaultNumber::TypeMismatch);
  if (first < 0 || first > header_.count || count > static_cast<std::uint64_t>(header_.count - first)) {
    throw Fault(FaultNumber::Subscript);
  }
  if (count == 0) return;
  located([&] { codec_->decode(*window_, header_, *layout_, first, count, static_cast<std::byte*>(out)); });
}

void RecordCursor::read(std::span<float> out, std::int64_t first) {
  decode(ElementType::Single, first, out.size(), out.data());
}

void RecordCursor::read(std::span<double> out, std::int64_t first) {
  decode(ElementType::Double, first, out.size(), out.data());
}

void RecordCursor::read(std::span<std::int32_t> out, std::int64_t first) {
  decode(ElementType::Integer, first, out.size(), out.data());
}

void RecordCursor::readLogicals(std::span<std::int16_t> out, std::int64_t first) {
  std::vector<std::int32_t> wide(out.size());
  decode(ElementType::Logical, first, wide.size(), wide.data());
  for (std::size_t i = 0; i < wide.size(); ++i) out[i] = static_cast<std::int16_t>(wide[i]);
}

void RecordCursor::readText(std::span<char> out, std::int64_t first) {
  if (header_.width == 0) throw Fault(FaultNumber::TypeMismatch);
  decode(ElementType::Text, first, out.size() / static_cast<std::size_t>(header_.width), out.data());
}

void RecordCursor::gather(std::span<const std::uint32_t> elements, std::span<float> out) {
  gather(ElementType::Single, elements, out.size(), reinterpret_cast<std::byte*>(out.data()));
}

void RecordCursor::gather(std::span<const std::uint32_t> elements, std::span<double> out) {
  gather(ElementType::Double, elements, out.size(), reinterpret_cast<std::byte*>(out.data()));
}

void RecordCursor::gather(std::span<const std::uint32_t> elements, std::span<std::int32_t> out) {
  gather(ElementType::Integer, elements, out.size(), reinterpret_cast<std::byte*>(out.data()));
}

void RecordCursor::gather(ElementType wanted, std::span<const std::uint32_t> elements, std::size_t room,
                          std::byte* out) {
  if (header_.type != wanted) throw Fault(FaultNumber::TypeMismatch);
  if (elements.size() > room || (!elements.empty() && elements.back() >= header_.count)) {
    throw Fault(FaultNumber::Subscript);
  }
  // The mark shows if the file was rewritten since it was indexed. Checking it in every record would make
  // reading single values 8 % slower.
  constexpr std::uint32_t recordsForACheck = 32;
  located([&] {
    if (gathers_++ % recordsForACheck == 0 && header_.count > 0)
      codec_->checkStart(*window_, header_, *layout_);
    codec_->gather(*window_, header_, *layout_, elements, out);
  });
}

std::vector<std::int32_t> RecordCursor::integers() {
  std::vector<std::int32_t> values(static_cast<std::size_t>(header_.count));
  read(std::span<std::int32_t>(values));
  return values;
}

std::vector<float> RecordCursor::singles() {
  std::vector<float> values(static_cast<std::size_t>(header_.count));
  read(std::span<float>(values));
  return values;
}

std::vector<double> RecordCursor::doubles() {
  std::vector<double> values(static_cast<std::size_t>(header_.count));
  read(std::span<double>(values));
  return values;
}

std::vector<std::string> RecordCursor::texts() {
  const auto width = static_cast<std::size_t>(header_.width);
  std::string all(static_cast<std::size_t>(header_.count) * width, ' ');
  readText(all);
  std::vector<std::string> values;
  values.reserve(static_cast<std::size_t>(header_.count));
  for (std::size_t at = 0; at < all.size(); at += width) {
    values.emplace_back(trim(std::string_view(all).substr(at, width)));
  }
  return values;
}

std::unique_ptr<RecordCursor> openRecords(const std::string& path, std::string& why) {
  std::shared_ptr<const ByteSource> source = FileSource::open(path, why);
  if (!source) return nullptr;
  try {
    if (const auto detected = detectForm(*source)) {
      return std::make_unique<RecordCursor>(std::move(source), detected->form, path);
    }
    why = source->size() == 0 ? "file is empty" : "is no record file";
  } catch (const BadRecord& failure) {
    why = failure.what();
  }
  return nullptr;
}

}  // namespace lumbarn
