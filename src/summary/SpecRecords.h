#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "../record/RecordCursor.h"
#include "../support/Session.h"
#include "SummarySpec.h"

namespace lumbarn {

/// Reads the records of a specification file into a `SummarySpec`: texts in blocks into its stores, numbers
/// into its arrays. What a vector has of each is joined to it by `join`, once KEYWORDS has told how many
/// vectors there are.
class SpecRecords {
 public:
  SpecRecords(SummarySpec& spec, RecordCursor& cursor, Session& session)
      : spec_(spec), cursor_(cursor), session_(session) {}

  /// Walks the file to its end. False when the load was cancelled. Throws BadRecord on damage; what was read
  /// before it stays.
  bool read();
  /// True once KEYWORDS was read whole.
  bool haveKeywords() const { return haveKeywords_; }
  /// Makes one header per vector, with the texts that stand in its place, and brings the arrays of numbers to
  /// one element per vector. Tells of arrays that have more or less than that.
  void join();

 private:
  void take();
  void takeText(std::string_view keyword);
  void takeNumbers(std::string_view keyword);
  std::int32_t addTexts(std::int32_t iAttribute);
  bool wanted();
  void checkCount(std::string_view keyword, std::size_t found, bool needed);
  void report(Message message, std::string_view keyword, std::string_view action) const;

  SummarySpec& spec_;
  RecordCursor& cursor_;
  Session& session_;
  std::array<std::vector<std::int32_t>, 15> pointers_;          // by attribute: string number of each item
  std::map<std::string, std::uint64_t, std::less<>> headerAt_;  // of the records that are used
  bool haveKeywords_ = false;
  bool haveLongNames_ = false;
  bool atEnd_ = false;
};

}  // namespace lumbarn
