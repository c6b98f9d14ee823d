// lumbarn_audit [--short]: loads and writes under every fault that the tests know, on the runs of all
// writers. Each case runs in a process of its own; counts what crashed, did not end, or succeeded with less
// data than there is.

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <map>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

#include <fmt/format.h>

#include "FailingWrites.h"
#include "cli/CommandRun.h"
#include "support/Fetched.h"

namespace lumbarn::test {
namespace {

namespace fs = std::filesystem;
constexpr unsigned secondsForACase = 20;
const std::string notReached =
    "not reached";  ///< what a case returns when the fault lies behind its last read or write

/// Runs cases in child processes and counts how they end.
class Tally {
 public:
  /// `run` returns what is wrong, nothing when all is well. False when the fault was not reached.
  bool check(const std::string& group, const std::string& name, const std::function<std::string()>& run) {
    constexpr int wrongStatus = 1, notReachedStatus = 2;
    auto& counts = counts_[group];
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
      ::alarm(secondsForACase);
      const std::string wrong = run();
      if (wrong == notReached) std::exit(notReachedStatus);
      if (!wrong.empty()) fmt::print(stderr, "{}: {}: {}\n", group, name, wrong);
      // Not _exit: libraries that have lost data may crash in their exit handlers.
      std::exit(wrong.empty() ? 0 : wrongStatus);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == notReachedStatus) return false;
    ++counts.cases;
    if (WIFSIGNALED(status)) {
      const bool hang = WTERMSIG(status) == SIGALRM;
      ++(hang ? counts.hangs : counts.crashes);
      fmt::print(stderr, "{}: {}: {} (signal {})\n", group, name, hang ? "did not end" : "crashed",
                 WTERMSIG(status));
    } else if (WEXITSTATUS(status) != 0) {
      ++counts.wrong;
    }
    return true;
  }
  /// Prints the counts; gives the exit status.
  int report() const {
    bool clean = true;
    fmt::print("{:<24}{:>9}{:>9}{:>9}{:>9}\n", "", "cases", "crashes", "hangs", "wrong");
    for (const auto& [group, counts] : counts_) {
      fmt::print("{:<24}{:>9}{:>9}{:>9}{:>9}\n", group, counts.cases, counts.crashes, counts.hangs,
                 counts.wrong);
      clean = clean && counts.crashes + counts.hangs + counts.wrong == 0;
    }
    return clean ? 0 : 1;
  }

 private:
  struct Counts {
    int cases = 0, crashes = 0, hangs = 0, wrong = 0;
  };
  std::map<std::string, Counts> counts_;
};

std::string nameOf(const ModelRun& run, const FileOfRun& file) {
  return fmt::format("{} {} {}", run.writer().name, run.form.description(), file.type);
}

void damagedCopies(Tally& tally, const std::vector<std::unique_ptr<ModelRun>>& runs, int copies) {
  std::mt19937 random(7);
  for (int copy = 0; copy < copies; ++copy) {
    const ModelRun& run = *runs[random() % runs.size()];
    const auto files = filesOf(run);
    const FileOfRun& file = files[random() % files.size()];
    const std::string& path = file.data;
    const std::string bytes = cli::testing::content(path);
    std::string damaged = bytes;
    const std::size_t at = random() % bytes.size();
    const int kind = copy % 3;
    bool mustReport = false;
    if (kind == 0) {
      damaged[at] = static_cast<char>(damaged[at] ^ (1 << random() % 8));
    } else if (kind == 1) {
      damaged.resize(at);
      mustReport = at > 0 && !endsBetween(bytes, recordStarts(path), at);
    } else {
      std::string junk(1 + random() % 64, '\0');
      for (char& c : junk) c = static_cast<char>(random());
      damaged.insert(at, junk);
      mustReport = !run.form.formatted();
    }
    tally.check("damaged copies", fmt::format("{}, {} at {}", nameOf(run, file), kind, at), [&] {
      const Fetched clean = loadAll(file);
      cli::testing::store(path, damaged);
      const Fetched found = loadAll(file);
      cli::testing::store(path, bytes);
      return mustReport ? lacking(found, clean) : std::string();
    });
    cli::testing::store(path, bytes);
  }
}

void faultyReads(Tally& tally, const ModelRun& run) {
  constexpr std::pair<ReadFault, const char*> faults[] = {
      {ReadFault::Fails, "fails"}, {ReadFault::Short, "is short"}, {ReadFault::Changes, "sees other bytes"}};
  for (const auto& file : filesOf(run)) {
    const Fetched clean = loadAll(file);
    for (const auto& [fault, name] : faults) {
      const auto at = [&](int n) {
        return tally.check("faulty reads", fmt::format("{}, read {} {}", nameOf(run, file), n, name), [&] {
          bool met = true;
          const auto wrong = wrongWith(fault, n, file, clean, met);
          return met ? wrong : notReached;
        });
      };
      for (int n = 1; at(n);) ++n;
    }
  }
}

/// After a failed or canceled load every fetch must fail or give all; a second load on the same reader is
/// clean.
std::string wrongAfterFailure(const FileOfRun& file, const Fetched& clean, bool cancel, int at) {
  Host host;
  host.reader.FullWellInfo = true;
  Fetched found, again;
  int polls = 0;
  if (cancel) {
    host.session.hostYield = [&] { host.session.CancelLoad = ++polls >= at; };
    found.ok = host.load(file.path, file.code);
  } else {
    const FaultyFiles faulty(ReadFault::Fails, at);
    found.ok = host.load(file.path, file.code);
  }
  host.session.hostYield = nullptr;
  for (const auto code : {12, 11, 15, 23, 18}) fetchAll(host, code, found);
  if (found.ok && host.complaints().empty() && !(found == clean)) return "other data after success";
  if (found.hasOtherValuesThan(clean)) return "a fetch gave values that are not in the file";
  host.reader.Count();
  host.session.CancelLoad = false;
  host.session.clearDiagnoses();
  host.reader.iGridNumber = 1;
  again.ok = host.load(file.path, file.code);
  fetchAll(host, file.code, again);
  return again == clean ? "" : "a second load of the sound file differs";
}

void fetchesAfterFailures(Tally& tally, const ModelRun& run) {
  for (const auto& file : filesOf(run)) {
    if (file.data == run.initIndexPath) continue;  // no load of a host reads it
    const Fetched clean = loadAll(file, false);
    for (int n = 0; n < 12; ++n) {
      const bool cancel = n % 2 == 0;
      const int at = n / 2 + 1;
      const auto name = fmt::format("{}, {} {}", nameOf(run, file), cancel ? "poll" : "read", at);
      tally.check("fetches after failures", name, [&] { return wrongAfterFailure(file, clean, cancel, at); });
    }
  }
}

/// What a folder has beside the run, by name and content.
std::map<std::string, std::string> contentsOf(const fs::path& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::directory_iterator(folder))
    files.emplace(entry.path().filename(), cli::testing::content(entry.path()));
  return files;
}

/// Every output of the command with each of its writes failing: what was there stays, and the status says so.
void failingWrites(Tally& tally, const ModelRun& run) {
  const TemporaryFolder into;
  const std::string target = into.file("out"), exported = into.file("out.vtkhdf"), folder = into.file("");
  const auto root = run.root();
  const auto step = std::to_string(run.model.restartSteps().back());
  const std::vector<std::vector<std::string>> outputs{
      {"summary", root, "-o", target},
      {"vectors", root, "-o", target, "--format", "json"},
      {"records", run.initPath, "-o", target, "--format", "csv"},
      {"restart", root, "--step", step, "--array", "PRESSURE", "-o", target},
      {"wells", root, "-o", target},
      {"init", root, "--array", "PORO", "--ijk", "-o", target},
      {"tables", root, "-o", target},
      {"grid", root, "--corners", "-o", target},
      {"grid", root, "--vtk", exported, "--array", "PORO", "--array", "PRESSURE"},
      {"rft", root, "-o", target},
      {"index", root, "--into", folder, "--replace"}};
  for (const auto& path : {target, exported}) cli::testing::store(path, "earlier content");
  const auto before = contentsOf(folder);
  const auto restore = [&] {
    for (const auto& [name, text] : contentsOf(folder)) fs::remove(into.file(name));
    for (const auto& [name, text] : before) cli::testing::store(into.file(name), text);
  };
  for (const auto& args : outputs) {
    const auto name = nameOf(run, {args[0].c_str(), "", 0, ""});
    tally.check("outputs", name, [&] {
      const auto outcome = cli::testing::command(args);
      return outcome.status == 0 || outcome.status == 3 ? std::string() : outcome.err;
    });
    const auto complete = contentsOf(folder);
    restore();
    // Nothing is there that is neither as before nor complete; of several files, some may be complete.
    const auto isSound = [&](const std::map<std::string, std::string>& now) {
      const auto asIn = [](const auto& files, const auto& file) {
        const auto found = files.find(file.first);
        return found != files.end() && found->second == file.second;
      };
      return std::ranges::all_of(now, [&](const auto& f) { return asIn(before, f) || asIn(complete, f); }) &&
             std::ranges::all_of(before, [&](const auto& f) { return now.contains(f.first); });
    };
    const auto wrong = [&](int n, bool lasting) -> std::string {
      failWrites(n, lasting);
      const auto outcome = cli::testing::command(args);
      const bool failed = writeFailed();
      failWrites(0, false);
      if (!failed) return notReached;
      const auto now = contentsOf(folder);
      const bool kept = now == before;
      const bool partly = args[0] == "index" && !kept && isSound(now);
      const bool saysSo = outcome.status != 0 && (outcome.status == 3) == partly;
      if (saysSo && (kept || partly)) return {};
      return fmt::format("status {}, and earlier files were {}", outcome.status, kept ? "kept" : "changed");
    };
    for (const bool lasting : {false, true}) {
      const auto at = [&](int n) {
        const auto write = fmt::format("{}, write {}{}", name, n, lasting ? " and later" : "");
        return tally.check("failing writes", write, [&] { return wrong(n, lasting); });
      };
      for (int n = 1; at(n); restore()) ++n;
      restore();
    }
  }
}

int audit(bool brief) {
  Tally tally;
  std::vector<std::unique_ptr<ModelRun>> runs;
  for (const Writer& writer : everyWriter) {
    for (const auto& [name, form] : everyForm) {
      if (!brief || form == bigEndian || form == formatted)
        runs.push_back(std::make_unique<ModelRun>(writer, form));
    }
  }
  damagedCopies(tally, runs, brief ? 150 : 1000);
  for (const auto& run : runs) {
    if (brief && run->form.formatted() && run != runs.front()) continue;
    faultyReads(tally, *run);
    fetchesAfterFailures(tally, *run);
    if (!brief || run == runs.front()) failingWrites(tally, *run);
  }
  return tally.report();
}

}  // namespace
}  // namespace lumbarn::test

int main(int count, char** words) {
  const bool brief = count == 2 && std::string_view(words[1]) == "--short";
  if (count > 2 || (count == 2 && !brief)) {
    std::fputs("usage: lumbarn_audit [--short]\n", stderr);
    return 2;
  }
  return lumbarn::test::audit(brief);
}
