#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <random>
#include <stdexcept>

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "Cases.h"

/// bench_lumbarn: how the reader compares with a plain read of the same bytes.
///
/// Makes its files, then runs every case in a process of its own, so that none sees the memory of another:
/// `bench_lumbarn --case NAME --folder FOLDER`. In it, baseline and figure take turns, so that both meet the
/// same noise, and the ratio is the median over the pairs.

namespace lumbarn::bench {

namespace {

constexpr int pairs = 15;

/// Processor time of all threads. The files are in the system's cache, so nothing waits for a disk, and what
/// else runs on the machine does not count.
double seconds(const std::function<void()>& work) {
  const auto start = std::clock();
  work();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::ranges::nth_element(values, middle);
  return *middle;
}

/// Most memory that this process has held so far, in bytes; 0 where the system does not tell.
double peakMemory() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    double kilobytes = 0;
    if (word == "VmHWM:" && status >> kilobytes) return 1024 * kilobytes;
  }
  return 0;
}

std::vector<Family> allFamilies(const std::filesystem::path& folder) {
  return {
      recordFamily(folder), summaryFamily(folder), restartFamily(folder),
      indexFamily(folder),  initFamily(folder),    deckFamily(folder),
      gridFamily(folder),   gridGeometryFamily(),  wellTestFamily(folder),
  };
}

/// Measures one case; its counters carry what the table shows.
void measure(benchmark::State& state, const Case& one) {
  const double idle = peakMemory();
  one.body();
  const double peak = peakMemory() - idle;
  one.baseline();
  std::vector<double> ratios;
  std::vector<double> times;
  std::vector<double> baselines;
  for (auto _ : state) {
    baselines.push_back(seconds(one.baseline));
    times.push_back(seconds(one.body));
    ratios.push_back(times.back() / baselines.back());
    state.SetIterationTime(times.back());
  }
  state.counters["ratio"] = median(ratios);
  state.counters["time_ms"] = 1000 * median(times);
  state.counters["baseline_ms"] = 1000 * median(baselines);
  state.counters["peak_MB"] = peak / 1e6;
}

constexpr auto rowFormat = "{:<22} {:>9} {:>11} {:>8} {:>12} {:>9} {:>8}  {}\n";

void printHeading() {
  fmt::print(rowFormat, "case", "time, ms", "against, ms", "ratio", "goal", "peak, MB", "goal", "");
  std::fflush(stdout);
}

std::string goalText(const Case& one) {
  if (one.goal == 0) return "";
  return one.least > 0 ? fmt::format("{} to {}", one.least, one.goal) : fmt::format("{:.2f}", one.goal);
}

class TableReporter final : public benchmark::BenchmarkReporter {
 public:
  explicit TableReporter(const Case& one) : one_(one) {}
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const auto& run : runs) {
      const double ratio = run.counters.at("ratio");
      const double peak = run.counters.at("peak_MB");
      const bool slow = one_.goal > 0 && (ratio > one_.goal || ratio < one_.least);
      const bool large = one_.memoryGoal > 0 && 1e6 * peak > one_.memoryGoal;
      fmt::print(rowFormat, one_.name, fmt::format("{:.2f}", run.counters.at("time_ms").value),
                 fmt::format("{} {:.2f}", one_.against, run.counters.at("baseline_ms").value),
                 fmt::format("{:.3f}", ratio), goalText(one_), fmt::format("{:.1f}", peak),
                 one_.memoryGoal > 0 ? fmt::format("{:.0f}", one_.memoryGoal / 1e6) : "",
                 slow || large ? "MISSED" : "");
    }
  }

 private:
  const Case& one_;
};

/// Memory that a load has freed stays with the process for the next load. Otherwise the allocator decides by
/// the sizes of the blocks freed so far whether each load has its pages made anew, which costs up to a tenth.
void keepFreedMemory() {
#ifdef __GLIBC__
  mallopt(M_MMAP_THRESHOLD, 32 << 20);
  mallopt(M_TRIM_THRESHOLD, 128 << 20);
#endif
}

int runCase(const Case& one) {
  keepFreedMemory();
  benchmark::RegisterBenchmark(one.name.c_str(), [&](benchmark::State& state) { measure(state, one); })
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond)
      ->Iterations(pairs);
  TableReporter reporter(one);
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return 0;
}

int runCase(const std::string& name, const std::filesystem::path& folder) {
  for (const auto& family : allFamilies(folder)) {
    const auto one = std::ranges::find(family.cases, name, &Case::name);
    if (one != family.cases.end()) return runCase(*one);
  }
  throw std::runtime_error("no such case: " + name);
}

int runAll(const std::string& program, const std::string& part) {
  const char* kept = std::getenv("LUMBARN_BENCH_FOLDER");
  const auto folder =
      kept ? std::filesystem::path(kept)
           : std::filesystem::temp_directory_path() / fmt::format("lumbarn_bench_{}", std::random_device{}());
  std::filesystem::create_directories(folder);
  int status = 0;
  try {
    printHeading();
    for (const auto& family : allFamilies(folder)) {
      const auto chosen = [&](const Case& one) { return one.name.find(part) != std::string::npos; };
      if (std::ranges::none_of(family.cases, chosen)) continue;
      family.writeFiles();
      for (const auto& one : family.cases) {
        if (!chosen(one)) continue;
        const auto command =
            fmt::format("\"{}\" --case {} --folder \"{}\"", program, one.name, folder.string());
        if (std::system(command.c_str()) != 0) status = 1;
      }
    }
  } catch (const std::exception& failure) {
    fmt::print(stderr, "bench_lumbarn: {}\n", failure.what());
    status = 1;
  }
  if (!kept) std::filesystem::remove_all(folder);
  return status;
}

}  // namespace

void require(bool condition, const std::string& what) {
  if (!condition) throw std::runtime_error(what);
}

}  // namespace lumbarn::bench

/// bench_lumbarn [PART]: all cases, or those with PART in their name.
int main(int count, char** words) {
  const std::vector<std::string> arguments(words, words + count);
  if (count == 5 && arguments[1] == "--case") {
    try {
      return lumbarn::bench::runCase(arguments[2], arguments[4]);
    } catch (const std::exception& failure) {
      fmt::print(stderr, "{}: {}\n", arguments[2], failure.what());
      return 1;
    }
  }
  return lumbarn::bench::runAll(arguments[0], count > 1 ? arguments[1] : "");
}
