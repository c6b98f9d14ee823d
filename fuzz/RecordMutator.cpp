#include "RecordMutator.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <utility>

#include "record/RecordCursor.h"
#include "record/RecordWriter.h"
#include "support/Diagnosis.h"

namespace lumbarn::fuzz {

namespace {

struct Record {
  std::string keyword;
  ElementType type = ElementType::None;
  int width = 0;
  std::vector<std::int32_t> integers;
  std::vector<float> singles;
  std::vector<double> doubles;
  std::vector<std::string> texts;
};

std::vector<Record> readRecords(RecordCursor cursor) {
  std::vector<Record> records;
  try {
    while (cursor.next()) {
      const auto& header = cursor.header();
      Record record{header.keyword, header.type, header.width};
      if (header.type == ElementType::Integer) record.integers = cursor.integers();
      if (header.type == ElementType::Single) record.singles = cursor.singles();
      if (header.type == ElementType::Double) record.doubles = cursor.doubles();
      if (header.type == ElementType::Text) record.texts = cursor.texts();
      records.push_back(std::move(record));
    }
  } catch (const BadRecord&) {  // what stands before the damage goes on
  }
  return records;
}

std::vector<std::byte> writeRecords(const std::vector<Record>& records, const Form& form) {
  std::vector<std::byte> bytes;
  RecordWriter writer(memorySink(bytes), form);
  for (const auto& record : records) {
    if (record.type == ElementType::Integer) writer.integers(record.keyword, record.integers);
    if (record.type == ElementType::Single) writer.singles(record.keyword, record.singles);
    if (record.type == ElementType::Double) writer.doubles(record.keyword, record.doubles);
    if (record.type == ElementType::Text) writer.texts(record.keyword, record.texts, record.width);
    if (record.type == ElementType::None) writer.message(record.keyword);
  }
  return bytes;
}

class Mutation {
 public:
  Mutation(std::vector<Record>& records, unsigned seed) : records_(records), random_(seed) {}

  void apply() {
    const std::size_t at = upTo(records_.size());
    switch (upTo(7)) {
      case 0:
        records_.erase(records_.begin() + static_cast<std::ptrdiff_t>(at));
        break;
      case 1:
        records_.insert(records_.begin() + static_cast<std::ptrdiff_t>(upTo(records_.size())),
                        Record(records_[at]));
        break;
      case 2:
        std::swap(records_[at], records_[upTo(records_.size())]);
        break;
      case 3:
        records_[at].keyword = records_[upTo(records_.size())].keyword;
        break;
      case 4:
        forEachArray(records_[at], [this](auto& values) { values.resize(upTo(2 * values.size() + 2)); });
        break;
      default:
        change(records_[at]);
    }
  }

 private:
  std::size_t upTo(std::size_t end) { return end == 0 ? 0 : random_() % end; }

  template <class Call>
  static void forEachArray(Record& record, Call call) {
    if (record.type == ElementType::Integer) call(record.integers);
    if (record.type == ElementType::Single) call(record.singles);
    if (record.type == ElementType::Double) call(record.doubles);
    if (record.type == ElementType::Text) call(record.texts);
  }

  void change(Record& record) {
    forEachArray(record, [this](auto& values) {
      if (!values.empty()) changeOne(values[upTo(values.size())]);
    });
  }
  void changeOne(std::int32_t& value) {
    constexpr std::array interesting{0,
                                     -1,
                                     1,
                                     2,
                                     7,
                                     32768,
                                     32769,
                                     12 * 32768 + 1,
                                     10000,
                                     2147483647,
                                     std::numeric_limits<std::int32_t>::min()};
    value = interesting[upTo(interesting.size())];
  }
  void changeOne(float& value) { value = interestingReal<float>(); }
  void changeOne(double& value) { value = interestingReal<double>(); }
  void changeOne(std::string& text) {
    constexpr const char* words[] = {
        "",  ":+:+:+:+", "LWOPR", "LCOPR", "COPR",     "BPR",   "ROFT", "SOFR",    "AAQR",   "TIME", "NPR",
        "L", "R",        "FOPR",  "FOPR",  "STEPTYPE", "HOURS", "PSIA", "EARLIER", "A:B,C*", "\t",   "'"};
    text = words[upTo(std::size(words))];
  }
  template <class Real>
  Real interestingReal() {
    using Limits = std::numeric_limits<Real>;
    const std::array values{Real{0},
                            Real{-1},
                            Real{1},
                            Limits::max(),
                            Limits::denorm_min(),
                            Limits::infinity(),
                            Limits::quiet_NaN(),
                            Real{1e9}};
    return values[upTo(values.size())];
  }

  std::vector<Record>& records_;
  std::minstd_rand random_;
};

}  // namespace

std::vector<std::byte> mutateRecords(const std::vector<std::byte>& file, unsigned seed) {
  const auto source = std::make_shared<MemorySource>(file);
  const auto detected = detectForm(*source);
  if (!detected) return file;
  auto records = readRecords(RecordCursor(source, detected->form, "fuzz input"));
  if (records.empty()) return file;
  Mutation(records, seed).apply();
  return writeRecords(records, detected->form);
}

}  // namespace lumbarn::fuzz
