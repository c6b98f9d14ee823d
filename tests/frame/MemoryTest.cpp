#include <fstream>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "frame/JoinRuns.h"
#include "frame/Transforms.h"
#include "frame/Write.h"

// Sanitizers keep what is released, so that the peak says nothing.
#if defined(__has_feature)
#define LUMBARN_SANITIZED (__has_feature(address_sanitizer) || __has_feature(thread_sanitizer))
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define LUMBARN_SANITIZED 1
#else
#define LUMBARN_SANITIZED 0
#endif

namespace lumbarn::test {
namespace {

/// Bytes that the process has in memory, now ("VmRSS:") or at most since `forgetPeak` ("VmHWM:").
std::size_t resident(const std::string& which) {
  std::ifstream status("/proc/self/status");
  std::string word;
  while (status >> word && word != which) continue;
  std::size_t kilobytes = 0;
  if (!(status >> kilobytes)) throw std::runtime_error("/proc/self/status has no " + which);
  return kilobytes << 10;
}
void forgetPeak() { std::ofstream("/proc/self/clear_refs") << 5; }

class CountingSink final : public Sink {
 public:
  void write(std::span<const std::byte> bytes) override { count += bytes.size(); }
  std::size_t count = 0;
};

/// So many bytes of rows, in batches as large as they may be.
Stream manyRows(std::size_t bytes, ReadOptions options = {}) {
  constexpr std::size_t width = 1024;
  Schema schema{{.name = "date", .type = Type::Timestamp},
                {.name = "at", .type = Type::FixedList, .unit = "PSIA", .listSize = width}};
  auto rows = std::make_shared<std::size_t>(bytes / (width * sizeof(float)));
  return streamOfRows(std::move(schema), std::make_shared<StreamContext>(std::move(options)),
                      [rows, values = std::vector<float>(width, 0.25F)](BatchBuilder& out) {
                        for (; *rows > 0 && !out.full(); --*rows, out.endRow()) {
                          out.set(0, LocalMoment(std::chrono::hours(*rows)));
                          out.set(1, std::span<const float>(values));
                        }
                        return *rows > 0;
                      });
}

TEST(Memory, IsBoundedWhateverTheStreamHolds) {
  if (LUMBARN_SANITIZED || !std::ifstream("/proc/self/clear_refs")) GTEST_SKIP() << "the peak is not known";
  constexpr std::size_t megabyte = std::size_t{1} << 20;
  const auto grows = [](const std::function<void(Sink&)>& work) {
    forgetPeak();
    const std::size_t before = resident("VmRSS:");
    CountingSink sink;
    work(sink);
    EXPECT_GT(sink.count, 10 * megabyte);
    return resident("VmHWM:") - before;
  };
  // Each transform has a batch of its own in memory, so the command asks for smaller ones.
  const ReadOptions asCommand{.limits = {.bytes = 8 * megabyte}};
  const auto joined = [&] {
    std::vector<NamedStream> runs;
    for (const char* name : {"A", "B"}) runs.push_back({name, manyRows(150 * megabyte, asCommand)});
    return resample(convertUnits(joinRuns(std::move(runs)), Units::Metric), Every::Day);
  };
  std::size_t written = 0;
  EXPECT_LT(grows([&](Sink& sink) {
              write(manyRows(10240 * megabyte), sink, {.format = Format::ArrowFile});
              written = static_cast<CountingSink&>(sink).count;
            }),
            128 * megabyte);
  EXPECT_GT(written, 10240 * megabyte);
  EXPECT_LT(grows([&](Sink& sink) { write(joined(), sink, {.format = Format::ArrowStream}); }),
            128 * megabyte);
  EXPECT_LT(grows([&](Sink& sink) { write(manyRows(40 * megabyte), sink, {.format = Format::Csv}); }),
            128 * megabyte);
}

}  // namespace
}  // namespace lumbarn::test
