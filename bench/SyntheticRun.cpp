#include "SyntheticRun.h"

#include <array>
#include <bit>
#include <cmath>
#include <stdexcept>
#include <string_view>

#include <fmt/format.h>

#include "record/RecordWriter.h"
#include "support/System.h"

namespace lumbarn::bench {

namespace {

constexpr std::int32_t nx = 100;
constexpr std::int32_t ny = 120;
constexpr std::int32_t nz = 40;
constexpr std::string_view noOwner = ":+:+:+:+";

struct Quantity {
  std::string_view mnemonic;
  std::string_view unit;
};

constexpr std::array<Quantity, 20> rates{{
    {"OPR", "SM3/DAY"}, {"WPR", "SM3/DAY"},  {"GPR", "SM3/DAY"},  {"LPR", "SM3/DAY"},  {"VPR", "RM3/DAY"},
    {"OPT", "SM3"},     {"WPT", "SM3"},      {"GPT", "SM3"},      {"LPT", "SM3"},      {"VPT", "RM3"},
    {"WIR", "SM3/DAY"}, {"GIR", "SM3/DAY"},  {"WIT", "SM3"},      {"GIT", "SM3"},      {"WCT", ""},
    {"GOR", "SM3/SM3"}, {"OPRH", "SM3/DAY"}, {"WPRH", "SM3/DAY"}, {"GPRH", "SM3/DAY"}, {"WCTH", ""},
}};
constexpr std::array<Quantity, 4> wellOnly{
    {{"BHP", "BARSA"}, {"THP", "BARSA"}, {"BHPH", "BARSA"}, {"PI", ""}}};
constexpr std::array<Quantity, 4> connection{
    {{"OFR", "SM3/DAY"}, {"WFR", "SM3/DAY"}, {"GFR", "SM3/DAY"}, {"PR", "BARSA"}}};
constexpr std::array<Quantity, 5> region{
    {{"PR", "BARSA"}, {"OIP", "SM3"}, {"WIP", "SM3"}, {"GIP", "SM3"}, {"OPT", "SM3"}}};
constexpr std::array<Quantity, 4> block{{{"PR", "BARSA"}, {"WSAT", ""}, {"GSAT", ""}, {"OSAT", ""}}};

std::int32_t cellNumber(std::int32_t i) { return static_cast<std::int32_t>(i * 7919LL % (nx * ny * nz)) + 1; }

/// Adds columns until there are enough.
class ColumnMaker {
 public:
  ColumnMaker(SummaryColumns& columns, std::size_t count) : columns_(columns), count_(count) {}

  void add(std::string keyword, std::string_view unit, std::string_view name = noOwner,
           std::int32_t number = 0) {
    if (columns_.keywords.size() == count_) return;
    columns_.keywords.push_back(std::move(keyword));
    columns_.names.emplace_back(name);
    columns_.numbers.push_back(number);
    columns_.units.emplace_back(unit);
  }

 private:
  SummaryColumns& columns_;
  std::size_t count_;
};

std::string wellName(int number) {
  return fmt::format("{}-{:02}{}", number % 3 ? "OP" : "WI", number / 2, number % 2 ? "A" : "B");
}

}  // namespace

SummaryColumns makeColumns(std::size_t count) {
  SummaryColumns columns;
  ColumnMaker maker(columns, count);
  const int scale = static_cast<int>(count / 1000);  // owners of each kind go with the size
  const int wells = 16 * scale;
  maker.add("TIME", "DAYS");
  maker.add("YEARS", "YEARS");
  for (const auto& [mnemonic, unit] : rates) maker.add(fmt::format("F{}", mnemonic), unit);
  for (const auto& [mnemonic, unit] : rates) {
    for (int g = 0; g < 2 * scale; ++g)
      maker.add(fmt::format("G{}", mnemonic), unit, fmt::format("GRP_{}", g), g + 1);
  }
  const auto wellVectors = [&](const Quantity& quantity) {
    for (int w = 0; w < wells; ++w)
      maker.add(fmt::format("W{}", quantity.mnemonic), quantity.unit, wellName(w), w + 1);
  };
  for (const auto& quantity : rates) wellVectors(quantity);
  for (const auto& quantity : wellOnly) wellVectors(quantity);
  for (const auto& [mnemonic, unit] : connection) {
    for (int c = 0; c < 6 * wells; ++c) {
      maker.add(fmt::format("C{}", mnemonic), unit, wellName(c / 6), cellNumber(c));
    }
  }
  for (const auto& [mnemonic, unit] : region) {
    for (int r = 1; r <= 4 * scale; ++r) maker.add(fmt::format("R{}", mnemonic), unit, noOwner, r);
  }
  // A pair of regions is one number: the first, and 32768 times the second plus 10.
  for (int r = 1; r < 4 * scale; ++r) maker.add("ROFT", "SM3", noOwner, r + 32768 * (r + 1 + 10));
  for (std::int32_t b = 0; columns.keywords.size() < count; ++b) {
    const auto& [mnemonic, unit] = block[static_cast<std::size_t>(b) % block.size()];
    maker.add(fmt::format("B{}", mnemonic), unit, noOwner, cellNumber(b / 4 + 100));
  }
  return columns;
}

namespace {

/// A file that is written in large pieces.
class BufferedFile {
 public:
  explicit BufferedFile(const std::filesystem::path& path) : path_(path), file_(path.string(), error_) {
    if (!file_.isOpen()) fail();
    buffer_.reserve(2 * pieceBytes);
  }
  ByteSink sink() {
    return [this](std::span<const std::byte> bytes) {
      buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
      if (buffer_.size() >= pieceBytes) flush();
    };
  }
  void close() {
    flush();
    if (!file_.close()) fail();
  }

 private:
  static constexpr std::size_t pieceBytes = std::size_t{1} << 20;

  void flush() {
    if (!file_.write(buffer_)) fail();
    buffer_.clear();
  }
  [[noreturn]] void fail() const {
    throw std::runtime_error(fmt::format("cannot write {}: {}", path_.string(), error_));
  }

  std::filesystem::path path_;
  std::string error_;
  OutputFile file_;
  std::vector<std::byte> buffer_;
};

void writeSpecification(const SyntheticRun& run, const Form& form) {
  BufferedFile file(run.specification);
  RecordWriter writer(file.sink(), form);
  const auto columns = makeColumns(run.vectors);
  writer.integers("INTEHEAD", std::vector<std::int32_t>{1, 100});
  writer.texts("RESTART", std::vector<std::string>(9));
  writer.integers("DIMENS",
                  std::vector<std::int32_t>{static_cast<std::int32_t>(run.vectors), nx, ny, nz, 0, -1});
  writer.texts("KEYWORDS", columns.keywords);
  writer.texts("WGNAMES", columns.names);
  writer.integers("NUMS", columns.numbers);
  writer.texts("UNITS", columns.units);
  writer.integers("STARTDAT", std::vector<std::int32_t>{1, 1, 2015, 0, 0, 0});
  file.close();
}

/// Values that cost a reader what real ones cost: about eight significant digits, no pattern, some zeros.
class Values {
 public:
  float next() {
    state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
    const auto bits = static_cast<std::uint32_t>(state_ >> 33);
    if (bits % 16 == 0) return 0;
    const auto share = static_cast<float>(bits) / 2147483648.0F;
    return std::ldexp(share, static_cast<int>(bits % 23) - 6);
  }

 private:
  std::uint64_t state_ = 1;
};

void writeData(const SyntheticRun& run, const Form& form) {
  BufferedFile file(run.data);
  RecordWriter writer(file.sink(), form);
  Values values;
  std::vector<float> row(run.vectors);
  for (std::size_t step = 0; step < run.rows; ++step) {
    for (auto& value : row) value = values.next();
    row[0] = 30.5F * static_cast<float>(step + 1);
    row[1] = row[0] / 365.25F;
    const auto number = static_cast<std::int32_t>(step);
    writer.integers("SEQHDR", std::vector<std::int32_t>{number + 1});
    writer.integers("MINISTEP", std::vector<std::int32_t>{number});
    writer.singles("PARAMS", row);
  }
  file.close();
}

}  // namespace

SyntheticRun syntheticRun(const std::filesystem::path& folder, const std::string& name, bool formatted,
                          std::size_t vectors, std::size_t rows) {
  const std::string prefix = formatted ? ".F" : ".";
  return {folder / (name + prefix + "SMSPEC"), folder / (name + prefix + "UNSMRY"), vectors, rows};
}

void writeRun(const SyntheticRun& run, const Form& form) {
  if (std::filesystem::exists(run.specification) && std::filesystem::exists(run.data)) return;
  writeData(run, form);
  writeSpecification(run, form);
}

SummaryFiles::SummaryFiles(const std::filesystem::path& folder)
    : plain(syntheticRun(folder, "PLAIN", false, 10000, 3000)),
      twice(syntheticRun(folder, "TWICE", false, 10000, 6000)),
      formatted(syntheticRun(folder, "FORMATTED", true, 1000, 1000)) {}

void SummaryFiles::write() const {
  const Form bigEndian{Framing::FourByteMarks, std::endian::native == std::endian::little};
  writeRun(plain, bigEndian);
  writeRun(twice, bigEndian);
  writeRun(formatted, {Framing::Formatted, false});
}

}  // namespace lumbarn::bench
