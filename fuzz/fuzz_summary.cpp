#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <span>
#include <string>

#include "Checks.h"
#include "RecordMutator.h"
#include "reader/qvEclipseReader.h"
#include "record/RecordCursor.h"
#include "summary/VectorSelection.h"
#include "summary/qvEclipseSPEC.h"
#include "summary/qvEclipseSUMMARYFile.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t room);

namespace {

using namespace lumbarn;

/// The input taken apart: options, two bytes that say how long the specification is, the specification, and
/// the data.
struct Input {
  std::uint8_t options = 0;
  std::vector<std::byte> specification;
  std::vector<std::byte> data;

  static constexpr std::size_t front = 3;

  Input(const std::uint8_t* bytes, std::size_t size) : options(bytes[0]) {
    const std::size_t length = std::min<std::size_t>(bytes[1] + 256U * bytes[2], size - front);
    specification = fuzz::bytesOf({bytes + front, length});
    data = fuzz::bytesOf({bytes + front + length, size - front - length});
  }
  bool acceptDamaged() const { return (options & 1) != 0; }
  bool choose() const { return (options & 2) != 0; }

  /// Puts the parts together again; gives the size, `old` when there is no room.
  std::size_t write(std::uint8_t* bytes, std::size_t room, std::size_t old) const {
    const std::size_t size = front + specification.size() + data.size();
    if (size > room || specification.size() > 0xFFFF) return old;
    bytes[1] = static_cast<std::uint8_t>(specification.size() % 256);
    bytes[2] = static_cast<std::uint8_t>(specification.size() / 256);
    const auto place = std::as_writable_bytes(std::span(bytes, size)).subspan(front);
    std::ranges::copy(data, std::ranges::copy(specification, place.begin()).out);
    return size;
  }
};

/// A folder of this process for the pair of files; gone when the process ends as it should.
class Folder {
 public:
  Folder() : path_(fuzz::temporaryPath()) { std::filesystem::create_directories(path_); }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  std::string file(const std::string& name) const { return (path_ / name).string(); }
  std::string write(const std::string& name, const std::vector<std::byte>& bytes) const {
    std::ofstream(file(name), std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return file(name);
  }

 private:
  std::filesystem::path path_;
};

constexpr std::int32_t attributes[] = {2, 4, 5, 6, 7, 8, 9, 10, 11, 12, 14};

/// Every number of a header is one of a text that is there.
void checkPointers(const AttributeStores& stores, const std::vector<VECTORDATA>& vectors) {
  for (const auto& vector : vectors) {
    for (const auto attribute : attributes) {
      const auto number = pointer(vector, attribute);
      fuzz::check(number == -1 || (number >= 1 && number <= stores(attribute).count()),
                  "texts of headers are there");
    }
  }
}

void checkHeaders(qvEclipseSPEC& spec) {
  const auto kept = static_cast<std::size_t>(std::ranges::count(spec.qKeyMask, true));
  fuzz::check(kept == static_cast<std::size_t>(spec.nKeysUsed), "kept vectors are counted");
  fuzz::check(spec.xVectors.size() == static_cast<std::size_t>(spec.nVectors), "one header per vector");
  checkPointers(spec.xStore, spec.xVectors);

  bool qOK = false;
  ByteTable bHeaders;
  spec.getHeaders(bHeaders, qOK);
  fuzz::check(qOK, "headers can be had");
  fuzz::check(bHeaders.entries() == kept && bHeaders.width() == 233, "headers are those of kept vectors");
  const auto vectors = summaryVectors(spec);
  fuzz::check(vectors.size() == kept && summaryVectors(bHeaders).size() == kept, "one vector per header");
  for (std::size_t i = 1; i <= kept; ++i) fuzz::check(bHeaders(233, i) == ' ', "the last byte stays blank");
  if (!vectors.empty() && !vectors.back().name.empty()) {
    const std::string own[] = {vectors.back().name};
    fuzz::check(selectVectors(vectors, own, {}).mask.back(), "a vector answers to its name");
  }

  AttributeStores stores;
  ByteTable bPointers;
  spec.getStoreHeaders(stores, bPointers, qOK);
  fuzz::check(qOK && bPointers.entries() == kept, "the same as numbers");
  std::vector<bool> mask;
  spec.getHorizontalHeaders(bHeaders, mask, qOK);
  fuzz::check(qOK || bHeaders.entries() == 0, "connection headers or none");
  std::vector<float> lengths;
  std::string unit;
  spec.getHorizontalLengths(lengths, unit, qOK);
}

/// The vectors that are no dummies; empty when the specification cannot be had.
std::vector<SummaryVector> checkSpecification(const std::string& path) {
  Session session;
  session.faultReporter = [](std::string_view text) { fuzz::check(false, text); };
  qvEclipseSPEC spec(session);
  if (!spec.CheckSPECFile(path)) return {};
  bool qOK = false;
  spec.ReadEclipseSPECFile(qOK);
  fuzz::check(qOK || !session.diagnoses().empty(), "a failure is told");
  if (!qOK && !spec.qDamaged) return {};
  checkHeaders(spec);
  return summaryVectors(spec);
}

struct Table {
  bool loaded = false;
  XYData values;
  std::vector<SummaryVector> vectors;
};

Table load(const std::string& path, bool acceptDamaged, const std::string& pattern) {
  Session session;
  session.faultReporter = [](std::string_view text) { fuzz::check(false, text); };
  qvEclipseReader reader(session);
  reader.FileName = path;
  reader.whichtype = 12;
  reader.Silent = true;
  reader.AcceptDamaged = acceptDamaged;
  if (!pattern.empty()) reader.VectorPatterns = {pattern};
  Table table;
  reader.ECLReadData(table.loaded);
  fuzz::check(table.loaded || !session.diagnoses().empty(), "a failure is told");
  fuzz::check(!reader.Damaged() || !session.diagnoses().empty(), "damage is told");
  if (!table.loaded) return table;
  ByteTable bHeaders;
  SourceData vSourceData;
  ByteTable bOnlyUsed;
  reader.GetSUMMARYData(table.values, bHeaders, vSourceData, bOnlyUsed, table.loaded);
  fuzz::check(table.loaded, "what was loaded can be had");
  table.vectors = reader.Vectors();
  fuzz::check(bHeaders.entries() == table.vectors.size(), "one vector per header");
  fuzz::check(table.values.empty() || table.values.columns() == table.vectors.size(),
              "one vector per column");
  fuzz::check(reader.Rows().size() == table.values.rows() || table.vectors.empty(), "one place per row");
  reader.RowDates(table.values);
  return table;
}

bool same(float a, float b) { return std::memcmp(&a, &b, sizeof a) == 0; }

/// The whole table against a plain walk over the rows in the file.
void checkAgainstRecords(const Table& table, const std::vector<SummaryVector>& kept,
                         const std::vector<std::byte>& data) {
  const auto source = std::make_shared<MemorySource>(data);
  const auto detected = detectForm(*source);
  if (!detected || table.values.empty()) return;
  RecordCursor cursor(source, detected->form, "fuzz input");
  for (std::size_t row = 1; row <= table.values.rows();) {
    fuzz::check(cursor.next(), "no row comes from nowhere");
    if (!cursor.header().is("PARAMS", ElementType::Single)) continue;
    const auto values = cursor.singles();
    for (std::size_t i = 0; i < kept.size(); ++i) {
      fuzz::check(same(values.at(kept[i].column - 1), table.values(row, i + 1)),
                  "a value is that of the file");
    }
    ++row;
  }
}

/// The last vector alone has the values that it has among all.
void checkOneVector(const std::string& path, const Table& all, const std::string& name, bool acceptDamaged) {
  if (all.values.empty() || name.empty()) return;
  const auto one = load(path, acceptDamaged, name);
  fuzz::check(one.loaded && one.values.rows() >= all.values.rows(), "part of what loads can be loaded");
  fuzz::check(one.vectors.back().mnemonic == all.vectors.back().mnemonic, "the vector asked for comes");
  for (std::size_t row = 1; row <= all.values.rows(); ++row) {
    fuzz::check(same(all.values(row, all.values.columns()), one.values(row, one.values.columns())),
                "a vector has the same values alone");
  }
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size, std::size_t room,
                                               unsigned seed) {
  if (size < Input::front || seed % 3 == 0) return LLVMFuzzerMutate(bytes, size, room);
  Input input(bytes, size);
  auto& part = seed % 3 == 1 ? input.specification : input.data;
  part = fuzz::mutateRecords(part, seed / 3);
  return input.write(bytes, room, size);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const Folder folder;
  if (size < Input::front) return 0;
  const Input input(bytes, size);
  const auto form = detectForm(MemorySource(input.specification));
  const std::string letter = form && form->form.formatted() ? "F" : "";
  const auto path = folder.write("RUN." + letter + "SMSPEC", input.specification);
  const auto dataPath = folder.write("RUN." + letter + "UNSMRY", input.data);

  const auto kept = checkSpecification(path);
  const auto all = load(path, input.acceptDamaged(), "");
  if (all.loaded) checkAgainstRecords(all, kept, input.data);
  if (all.loaded && !kept.empty() && input.choose()) {
    checkOneVector(path, all, kept.back().name, input.acceptDamaged());
  }
  std::filesystem::remove(path);
  std::filesystem::remove(dataPath);
  return 0;
}
