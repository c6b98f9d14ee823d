#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cFILETYPE.h"

namespace lumbarn {

/// Record lengths as texts, one set for each form of file: field widths of a formatted file, elements to a
/// block of an unformatted one.
struct RecordLengths {
  std::string zDOUB, zREAL, zINTE, zCHAR, zLOGI, zQuote;
};
void SetRecordLengths(bool qFormatted, RecordLengths& lengths);

/// `Quarnet`: record and file I/O. Opens, reads and writes record files and raw scratch files through a
/// `cFILETYPE` descriptor; one object per session, made on first use and released by `CloseDown`, without
/// state that a reader depends on. It is the calling form of the record layer for hosts, among them those
/// that fetch arrays on demand; the readers of this library walk records with `RecordCursor`, on which it
/// stands.
///
/// All operations are False in qOK when they fail, show nothing, and leave the reason in the session's
/// diagnoses. The record lengths zLen and zQuote are those of `SetRecordLengths`; this build reads by what
/// stands in the file, so that a skip with the width of another type still ends at the next header.
class Quarnet {
 public:
  explicit Quarnet(Session& session = Session::process()) : session_(&session) {}

  void OpenRecordFile(const std::string& zFile, cFILETYPE& cFile, bool& qOK);
  void CreateRecordFile(const std::string& zFile, cFILETYPE& cFile, bool& qOK);
  /// Closing a file that is not open is no failure.
  void CloseRecordFile(cFILETYPE& cFile, bool& qOK);

  /// Keyword trimmed and upper case; type its four letters. Counts beyond 2^31 - 1 are a failure here: such
  /// arrays are read with `RecordCursor`.
  void ReadRecordHeader(cFILETYPE& cFile, std::string& zKeyword, std::int32_t& nElements, std::string& zType,
                        bool& qOK);

  /// Data of the record whose header was read last, or of nElements elements of the type in question that
  /// start at the current position. Arrays are sized here.
  void ReadIntegers(std::int32_t nElements, std::string_view zLen, cFILETYPE& cFile,
                    std::vector<std::int32_t>& iValues, bool& qOK);
  void ReadSingles(std::int32_t nElements, std::string_view zLen, cFILETYPE& cFile,
                   std::vector<float>& sValues, bool& qOK);
  void ReadDoubles(std::int32_t nElements, std::string_view zLen, cFILETYPE& cFile,
                   std::vector<double>& dValues, bool& qOK);
  /// Booleans of 16 bits: -1 and 0.
  void ReadLogicals(std::int32_t nElements, std::string_view zLen, cFILETYPE& cFile,
                    std::vector<std::int16_t>& qValues, bool& qOK);
  /// Texts as they stand in the file, nWidth bytes each, one after the other.
  void ReadStringBytes(std::string_view zQuote, std::string_view zLen, std::int32_t nElements,
                       cFILETYPE& cFile, std::vector<char>& bValues, std::int32_t& nWidth, bool& qOK);
  void ReadStrings(std::string_view zQuote, std::string_view zLen, std::int32_t nElements, cFILETYPE& cFile,
                   std::vector<std::string>& zValues, bool& qOK);

  void SkipIntegers(std::int32_t nElements, std::string_view zLen, cFILETYPE& cFile, bool& qOK);
  void SkipSingles(std::int32_t nElements, std::string_view zLen, cFILETYPE& cFile, bool& qOK);
  void SkipDoubles(std::int32_t nElements, std::string_view zLen, cFILETYPE& cFile, bool& qOK);
  void SkipLogicals(std::int32_t nElements, std::string_view zLen, cFILETYPE& cFile, bool& qOK);
  void SkipStrings(std::string_view zQuote, std::string_view zLen, std::int32_t nElements, cFILETYPE& cFile,
                   bool& qOK);

  void ReadRawBytes(std::int32_t n, cFILETYPE& cFile, std::vector<std::byte>& bBytes, bool& qOK);
  /// A text of n bytes, 8-bit characters.
  void BytesToText(std::int32_t n, std::span<const std::byte> bBytes, std::string& zText, bool& qOK) const;
  /// With the position on the count of the first header (byte 13), tells whether the file's byte order
  /// differs from the machine's: by the first mark when it is one of a header, else by which order gives the
  /// smaller count. zKind is a label and has no effect.
  void DetectByteOrder(std::string_view zKind, cFILETYPE& cFile, bool& qOK, bool& qSwap);
  void WriteRawIntegers(std::int32_t n, std::span<const std::int32_t> iValues, cFILETYPE& cFile, bool& qOK);
  void WriteRawSingles(std::int64_t n, std::span<const float> sValues, cFILETYPE& cFile, bool& qOK);
  /// Fills a given array in memory order.
  void ReadRawSingles(std::int64_t n, std::span<float> sValues, cFILETYPE& cFile, bool& qOK);
  /// Marks of a record of `a` elements in blocks of `b`: two for each block. 0 elements have none.
  void CountRecordMarks(std::int32_t a, std::int32_t b, std::int32_t& nMarks, bool& qOK) const;

 private:
  static RecordCursor& atData(cFILETYPE& cFile, std::int32_t nElements, ElementType type);
  template <class T>
  static void readValues(std::int32_t nElements, ElementType type, cFILETYPE& cFile, std::vector<T>& values);
  static void skip(std::int32_t nElements, ElementType type, cFILETYPE& cFile);
  static bool writeRaw(std::span<const std::byte> bytes, cFILETYPE& cFile);

  Session* session_;
};

}  // namespace lumbarn
