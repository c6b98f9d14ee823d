// Writes one table in several forms to a folder, for programs of others that read them back.
#include <cmath>
#include <fstream>
#include <string>

#include "frame/Transforms.h"
#include "frame/Write.h"

namespace lumbarn::test {
namespace {

class FileSink final : public Sink {
 public:
  explicit FileSink(const std::string& path) : file_(path, std::ios::binary) {}
  void write(std::span<const std::byte> bytes) override {
    file_.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }

 private:
  std::ofstream file_;
};

/// All types; each column is null in some rows of its own, and the last batch is not full.
Stream sample() {
  const auto grids = std::make_shared<const std::vector<std::string>>(
      std::vector<std::string>{"ROOT", "L\xC3\xA9 1", "unused"});
  Schema schema{{.name = "n", .type = Type::Int32, .nullable = false},
                {.name = "big", .type = Type::Int64},
                {.name = "WBHP:P1",
                 .type = Type::Float32,
                 .unit = "BARSA",
                 .description = "bottom hole pressure",
                 .metadata = {{"mnemonic", "WBHP"}, {"member", "P1"}}},
                {.name = "exact", .type = Type::Float64},
                {.name = "text", .type = Type::Utf8},
                {.name = "grid", .type = Type::Dictionary, .dictionary = grids},
                {.name = "date", .type = Type::Timestamp},
                {.name = "open", .type = Type::Bool},
                {.name = "at", .type = Type::FixedList, .listSize = 3}};
  ReadOptions options{.limits = {.rows = 300}};
  auto next = std::make_shared<int>(0);
  return streamOfRows(std::move(schema), std::make_shared<StreamContext>(options), [=](BatchBuilder& rows) {
    for (; *next < 1000 && !rows.full(); ++*next) {
      const int i = *next;
      const std::array<float, 3> at{static_cast<float>(i), -0.25F, 1e10F};
      rows.set(0, i);
      if (i % 5 != 1) rows.set(1, (std::int64_t{i} - 500) << 40);
      if (i % 7 != 2) rows.set(2, static_cast<float>(i) / 3);
      if (i % 5 != 3) rows.set(3, std::sqrt(static_cast<double>(i)) * 1e-7);
      if (i % 4 != 0) rows.set(4, std::string(static_cast<std::size_t>(i % 9), ',') + "\"P\xC3\xA9\"");
      if (i % 5 != 0) rows.set(5, i % 2);
      if (i % 6 != 1) rows.set(6, LocalMoment(std::chrono::seconds(994'000'000LL + 86401LL * i)));
      if (i % 8 != 2) rows.set(7, i % 3 == 0);
      if (i % 9 != 4) rows.set(8, at);
      rows.endRow();
    }
    return *next < 1000;
  });
}

void store(Stream stream, const std::string& path, Format format) {
  FileSink sink(path);
  write(std::move(stream), sink, {.format = format});
}

}  // namespace
}  // namespace lumbarn::test

int main(int, char** argv) {
  using namespace lumbarn;
  const std::string folder = std::string(argv[1]) + '/';
  const auto empty = [] { return where(test::sample(), [](const Batch&, std::size_t) { return false; }); };
  test::store(test::sample(), folder + "all.arrow", Format::ArrowFile);
  test::store(test::sample(), folder + "all.arrows", Format::ArrowStream);
  test::store(test::sample(), folder + "all.csv", Format::Csv);
  test::store(test::sample(), folder + "all.ndjson", Format::Ndjson);
  test::store(empty(), folder + "empty.arrow", Format::ArrowFile);
}
