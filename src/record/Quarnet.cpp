#include "Quarnet.h"

#include <array>
#include <bit>
#include <cstring>
#include <limits>

#include "../support/Fault.h"
#include "../support/Guarded.h"

namespace lumbarn {

namespace {

constexpr const char* className = "Quarnet";

const char* typeWordOf(ElementType type) {
  switch (type) {
    case ElementType::Integer:
      return "INTE";
    case ElementType::Single:
      return "REAL";
    case ElementType::Double:
      return "DOUB";
    case ElementType::Logical:
      return "LOGI";
    default:
      return "CHAR";
  }
}

std::size_t checkedCount(std::int64_t n, std::size_t available) {
  if (n < 0 || static_cast<std::uint64_t>(n) > available) throw Fault(FaultNumber::Subscript);
  return static_cast<std::size_t>(n);
}

}  // namespace

void SetRecordLengths(bool qFormatted, RecordLengths& lengths) {
  if (qFormatted) {
    lengths = {"23", "17", "12", "", "3", "'"};
  } else {
    lengths = {"1000", "1000", "1000", "105", "1000", "8"};
  }
}

void Quarnet::OpenRecordFile(const std::string& zFile, cFILETYPE& cFile, bool& qOK) {
  guarded(*session_, qOK, className, "OpenRecordFile", [&] {
    std::string why;
    cFile.source_ = FileSource::open(zFile, why);
    if (!cFile.source_) {
      session_->diagnose(
          {.message = Message::FileOpen, .path = zFile, .problem = "cannot be opened: " + why});
      return false;
    }
    cFile.path_ = zFile;
    cFile.cursor_.reset();
    cFile.position_ = 0;
    cFile.atData_ = false;
    return true;
  });
}

void Quarnet::CreateRecordFile(const std::string& zFile, cFILETYPE& cFile, bool& qOK) {
  guarded(*session_, qOK, className, "CreateRecordFile", [&] {
    std::string why;
    auto output = std::make_unique<OutputFile>(zFile, why);
    if (!output->isOpen()) {
      session_->diagnose(
          {.message = Message::FileWrite, .path = zFile, .problem = "cannot be written: " + why});
      return false;
    }
    cFile.output_ = std::move(output);
    cFile.path_ = zFile;
    return true;
  });
}

void Quarnet::CloseRecordFile(cFILETYPE& cFile, bool& qOK) {
  guarded(*session_, qOK, className, "CloseRecordFile", [&] {
    cFile.cursor_.reset();
    cFile.source_.reset();
    cFile.atData_ = false;
    const auto output = std::move(cFile.output_);
    return !output || output->close();
  });
}

void Quarnet::ReadRecordHeader(cFILETYPE& cFile, std::string& zKeyword, std::int32_t& nElements,
                               std::string& zType, bool& qOK) {
  guarded(*session_, qOK, className, "ReadRecordHeader", [&] {
    if (!cFile.source_) throw Fault(FaultNumber::InvalidCall);
    if (!cFile.cursor_) {
      cFile.cursor_ = std::make_unique<RecordCursor>(cFile.source_, cFile.form(), cFile.path_);
    }
    auto& cursor = *cFile.cursor_;
    cursor.seek(cFile.position_);
    if (!cursor.next()) {
      cFile.position_ = cursor.fileSize();
      return false;
    }
    if (cursor.header().count > std::numeric_limits<std::int32_t>::max()) throw Fault(FaultNumber::Overflow);
    zKeyword = cursor.header().keyword;
    nElements = static_cast<std::int32_t>(cursor.header().count);
    zType = cursor.header().typeWord;
    cFile.atData_ = nElements > 0 && cursor.header().type != ElementType::None;
    cFile.position_ = cFile.atData_ ? cursor.header().dataAt : cursor.nextPosition();
    return true;
  });
}

/// The cursor with the record whose data start at the current position as its own: the one whose header was
/// read, or one that the caller knows of.
RecordCursor& Quarnet::atData(cFILETYPE& cFile, std::int32_t nElements, ElementType type) {
  if (!cFile.source_) throw Fault(FaultNumber::InvalidCall);
  if (nElements < 0) throw Fault(FaultNumber::InvalidCall);
  if (!cFile.cursor_) {
    cFile.cursor_ = std::make_unique<RecordCursor>(cFile.source_, cFile.form(), cFile.path_);
  }
  if (!cFile.atData_) {
    RecordHeader header;
    header.typeWord = typeWordOf(type);
    header.type = type;
    header.width = typeInfo(header.typeWord).width;
    header.count = nElements;
    header.headerAt = cFile.position_;
    header.dataAt = cFile.position_;
    cFile.cursor_->setCurrent(header);
  }
  return *cFile.cursor_;
}

template <class T>
void Quarnet::readValues(std::int32_t nElements, ElementType type, cFILETYPE& cFile, std::vector<T>& values) {
  values.clear();
  if (nElements == 0) return;
  auto& cursor = atData(cFile, nElements, type);
  if (nElements > cursor.header().count) throw Fault(FaultNumber::Subscript);
  values.resize(static_cast<std::size_t>(nElements));
  if constexpr (std::is_same_v<T, std::int16_t>) {
    cursor.readLogicals(values);
  } else {
    cursor.read(std::span<T>(values));
  }
  cFile.position_ = cursor.nextPosition();
  cFile.atData_ = false;
}

void Quarnet::ReadIntegers(std::int32_t nElements, std::string_view, cFILETYPE& cFile,
                           std::vector<std::int32_t>& iValues, bool& qOK) {
  guarded(*session_, qOK, className, "ReadIntegers",
          [&] { readValues(nElements, ElementType::Integer, cFile, iValues); });
}

void Quarnet::ReadSingles(std::int32_t nElements, std::string_view, cFILETYPE& cFile,
                          std::vector<float>& sValues, bool& qOK) {
  guarded(*session_, qOK, className, "ReadSingles",
          [&] { readValues(nElements, ElementType::Single, cFile, sValues); });
}

void Quarnet::ReadDoubles(std::int32_t nElements, std::string_view, cFILETYPE& cFile,
                          std::vector<double>& dValues, bool& qOK) {
  guarded(*session_, qOK, className, "ReadDoubles",
          [&] { readValues(nElements, ElementType::Double, cFile, dValues); });
}

void Quarnet::ReadLogicals(std::int32_t nElements, std::string_view, cFILETYPE& cFile,
                           std::vector<std::int16_t>& qValues, bool& qOK) {
  guarded(*session_, qOK, className, "ReadLogicals",
          [&] { readValues(nElements, ElementType::Logical, cFile, qValues); });
}

void Quarnet::ReadStringBytes(std::string_view, std::string_view, std::int32_t nElements, cFILETYPE& cFile,
                              std::vector<char>& bValues, std::int32_t& nWidth, bool& qOK) {
  guarded(*session_, qOK, className, "ReadStringBytes", [&] {
    bValues.clear();
    nWidth = typeInfo("CHAR").width;
    if (nElements == 0) return;
    auto& cursor = atData(cFile, nElements, ElementType::Text);
    if (nElements > cursor.header().count) throw Fault(FaultNumber::Subscript);
    nWidth = cursor.header().width;
    bValues.resize(static_cast<std::size_t>(nElements) * static_cast<std::size_t>(nWidth));
    cursor.readText(bValues);
    cFile.position_ = cursor.nextPosition();
    cFile.atData_ = false;
  });
}

void Quarnet::ReadStrings(std::string_view zQuote, std::string_view zLen, std::int32_t nElements,
                          cFILETYPE& cFile, std::vector<std::string>& zValues, bool& qOK) {
  std::vector<char> bytes;
  std::int32_t width = 0;
  ReadStringBytes(zQuote, zLen, nElements, cFile, bytes, width, qOK);
  zValues.clear();
  if (!qOK) return;
  guarded(*session_, qOK, className, "ReadStrings", [&] {
    const auto size = static_cast<std::size_t>(width);
    for (std::size_t at = 0; at < bytes.size(); at += size) zValues.emplace_back(bytes.data() + at, size);
  });
}

void Quarnet::skip(std::int32_t nElements, ElementType type, cFILETYPE& cFile) {
  if (nElements == 0) return;
  cFile.position_ = atData(cFile, nElements, type).nextPosition();
  cFile.atData_ = false;
}

void Quarnet::SkipIntegers(std::int32_t nElements, std::string_view, cFILETYPE& cFile, bool& qOK) {
  guarded(*session_, qOK, className, "SkipIntegers", [&] { skip(nElements, ElementType::Integer, cFile); });
}

void Quarnet::SkipSingles(std::int32_t nElements, std::string_view, cFILETYPE& cFile, bool& qOK) {
  guarded(*session_, qOK, className, "SkipSingles", [&] { skip(nElements, ElementType::Single, cFile); });
}

void Quarnet::SkipDoubles(std::int32_t nElements, std::string_view, cFILETYPE& cFile, bool& qOK) {
  guarded(*session_, qOK, className, "SkipDoubles", [&] { skip(nElements, ElementType::Double, cFile); });
}

void Quarnet::SkipLogicals(std::int32_t nElements, std::string_view, cFILETYPE& cFile, bool& qOK) {
  guarded(*session_, qOK, className, "SkipLogicals", [&] { skip(nElements, ElementType::Logical, cFile); });
}

void Quarnet::SkipStrings(std::string_view, std::string_view, std::int32_t nElements, cFILETYPE& cFile,
                          bool& qOK) {
  guarded(*session_, qOK, className, "SkipStrings", [&] { skip(nElements, ElementType::Text, cFile); });
}

void Quarnet::ReadRawBytes(std::int32_t n, cFILETYPE& cFile, std::vector<std::byte>& bBytes, bool& qOK) {
  guarded(*session_, qOK, className, "ReadRawBytes", [&] {
    if (!cFile.source_ || n < 0) throw Fault(FaultNumber::InvalidCall);
    bBytes.clear();
    const std::uint64_t size = cFile.source_->size();
    if (cFile.position_ > size || static_cast<std::uint64_t>(n) > size - cFile.position_) return false;
    bBytes.resize(static_cast<std::size_t>(n));
    if (cFile.source_->readAt(cFile.position_, bBytes) < bBytes.size()) return false;
    cFile.position_ += bBytes.size();
    cFile.atData_ = false;
    return true;
  });
}

void Quarnet::BytesToText(std::int32_t n, std::span<const std::byte> bBytes, std::string& zText,
                          bool& qOK) const {
  guarded(*session_, qOK, className, "BytesToText", [&] {
    zText.assign(reinterpret_cast<const char*>(bBytes.data()), checkedCount(n, bBytes.size()));
  });
}

void Quarnet::DetectByteOrder(std::string_view, cFILETYPE& cFile, bool& qOK, bool& qSwap) {
  guarded(*session_, qOK, className, "DetectByteOrder", [&] {
    if (!cFile.source_) throw Fault(FaultNumber::InvalidCall);
    const auto wordAt = [&](std::uint64_t position) {
      std::uint32_t word = 0;
      cFile.source_->readAt(position, std::as_writable_bytes(std::span(&word, 1)));
      return word;
    };
    constexpr std::uint64_t countField = 12;
    const auto mark = cFile.position_ >= countField ? wordAt(cFile.position_ - countField) : 0;
    const auto count = wordAt(cFile.position_);
    qSwap = mark == 16 ? false : mark == __builtin_bswap32(16) ? true : __builtin_bswap32(count) < count;
  });
}

bool Quarnet::writeRaw(std::span<const std::byte> bytes, cFILETYPE& cFile) {
  if (!cFile.output_) throw Fault(FaultNumber::InvalidCall);
  return cFile.output_->write(bytes);
}

void Quarnet::WriteRawIntegers(std::int32_t n, std::span<const std::int32_t> iValues, cFILETYPE& cFile,
                               bool& qOK) {
  qOK = n >= 0 && static_cast<std::size_t>(n) <= iValues.size();
  if (!qOK) return;
  guarded(*session_, qOK, className, "WriteRawIntegers",
          [&] { return writeRaw(std::as_bytes(iValues.first(static_cast<std::size_t>(n))), cFile); });
}

void Quarnet::WriteRawSingles(std::int64_t n, std::span<const float> sValues, cFILETYPE& cFile, bool& qOK) {
  qOK = n >= 0 && static_cast<std::size_t>(n) <= sValues.size();
  if (!qOK) return;
  guarded(*session_, qOK, className, "WriteRawSingles",
          [&] { return writeRaw(std::as_bytes(sValues.first(static_cast<std::size_t>(n))), cFile); });
}

void Quarnet::ReadRawSingles(std::int64_t n, std::span<float> sValues, cFILETYPE& cFile, bool& qOK) {
  guarded(*session_, qOK, className, "ReadRawSingles", [&] {
    if (!cFile.source_) throw Fault(FaultNumber::InvalidCall);
    const auto bytes = std::as_writable_bytes(sValues.first(checkedCount(n, sValues.size())));
    const bool whole = cFile.source_->readAt(cFile.position_, bytes) == bytes.size();
    cFile.position_ += bytes.size();
    return whole;
  });
}

void Quarnet::CountRecordMarks(std::int32_t a, std::int32_t b, std::int32_t& nMarks, bool& qOK) const {
  guarded(*session_, qOK, className, "CountRecordMarks", [&] {
    if (b == 0) throw Fault(FaultNumber::DivisionByZero);
    if (a < 0 || b < 0) throw Fault(FaultNumber::InvalidCall);
    nMarks = 2 * (a / b + (a % b != 0 ? 1 : 0));
  });
}

}  // namespace lumbarn
