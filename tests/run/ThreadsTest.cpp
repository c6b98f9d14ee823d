#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "frame/Error.h"
#include "run/Run.h"
#include "support/Paths.h"

namespace lumbarn {
namespace {

/// Rows of a whole answer.
std::size_t rowsOf(Stream&& stream) {
  std::size_t rows = 0;
  while (const auto batch = stream.next()) rows += batch->rows();
  return rows;
}

using Question = std::function<std::size_t(const Run&, const ReadOptions&)>;
const Question questions[] = {
    [](const Run& run, const ReadOptions& read) { return run.steps(read).size(); },
    [](const Run& run, const ReadOptions& read) { return rowsOf(run.vectors(false, read)); },
    [](const Run& run, const ReadOptions& read) { return rowsOf(run.summary({.vectors = {"F*"}}, read)); },
    [](const Run& run, const ReadOptions& read) { return rowsOf(run.arrays({}, read)); },
    [](const Run& run, const ReadOptions& read) { return rowsOf(run.cells({.arrays = {"S*"}}, read)); },
    [](const Run& run, const ReadOptions& read) { return rowsOf(run.wells({}, read)); },
    [](const Run& run, const ReadOptions& read) { return rowsOf(run.tests({}, read)); },
    [](const Run& run, const ReadOptions& read) { return rowsOf(run.corners({}, read)); },
    [](const Run& run, const ReadOptions& read) { return rowsOf(run.facts(read)); },
    [](const Run& run, const ReadOptions& read) { return rowsOf(run.files(read)); },
};

/// One Run is asked by eight threads, each in another order, while a ninth stops them at some moment. Under
/// the preset tsan, LUMBARN_ROUNDS=1000 is what a release is checked with.
TEST(Threads, AskOneRunWhileANinthStopsThem) {
  const char* given = std::getenv("LUMBARN_ROUNDS");
  const int rounds = given ? std::atoi(given) : 5;
  std::size_t expected[std::size(questions)];
  for (std::size_t q = 0; q < std::size(questions); ++q)
    expected[q] = questions[q](lumbarn::Run::open(examplePath("/data/HOLLIN")), {});
  std::mt19937 random(1);
  std::atomic<int> complete = 0;
  for (int round = 0; round < rounds; ++round) {
    const auto run = lumbarn::Run::open(examplePath("/data/HOLLIN"));
    std::stop_source stop;
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < 8; ++t) {
      threads.emplace_back([&, t] {
        for (std::size_t n = 0; n < std::size(questions); ++n) {
          const std::size_t q = (t + n) % std::size(questions);
          try {
            if (questions[q](run, {.stop = stop.get_token()}) != expected[q]) ++wrong;
            ++complete;
          } catch (const Error& error) {
            if (error.kind() != Error::Kind::Cancelled) ++wrong;
          }
        }
      });
    }
    const auto pause = std::chrono::microseconds(std::uniform_int_distribution<>(0, 100000)(random));
    std::thread stopper([&] {
      std::this_thread::sleep_for(pause);
      stop.request_stop();
    });
    for (std::thread& thread : threads) thread.join();
    stopper.join();
    EXPECT_EQ(wrong, 0) << "round " << round;
    EXPECT_EQ(rowsOf(run.vectors()), expected[1]) << "a stop leaves the run usable";
  }
  EXPECT_GT(complete, 0);
}

}  // namespace
}  // namespace lumbarn
