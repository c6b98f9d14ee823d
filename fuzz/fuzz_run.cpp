#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "Checks.h"
#include "RecordMutator.h"
#include "frame/ArrowRules.h"
#include "frame/Frame.h"
#include "run/Run.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t room);

namespace {

using namespace lumbarn;

/// A byte for the question, one for the file, then the file. The others of the run are sound: those of the
/// seeds, next to the corpus, so that a damaged file meets files that contradict it.
constexpr std::size_t front = 2;
constexpr std::array endings{"SMSPEC", "UNSMRY", "UNRST", "INIT", "EGRID", "RFT"};

using Question = std::function<Stream(const Run&, const ReadOptions&)>;
const std::vector<Question>& questions() {
  static const std::vector<Question> all{
      [](const Run& run, const ReadOptions& read) { return run.summary({}, read); },
      [](const Run& run, const ReadOptions& read) {
        return run.summary({.vectors = {"F*", "W*:*"}, .keepDuplicates = true, .dates = true}, read);
      },
      [](const Run& run, const ReadOptions& read) {
        return run.summary({.time = {.every = Every::Month}, .keys = true}, read);
      },
      [](const Run& run, const ReadOptions& read) { return run.vectors(true, read); },
      [](const Run& run, const ReadOptions& read) { return run.arrays({}, read); },
      [](const Run& run, const ReadOptions& read) { return run.arrays({.init = true}, read); },
      [](const Run& run, const ReadOptions& read) {
        return run.cells({.arrays = {"PRESSURE", "S*"}, .ijk = true}, read);
      },
      [](const Run& run, const ReadOptions& read) {
        return run.cells({.arrays = {"*"}, .time = {.last = true}, .cells = {CellBox{{1, 1, 1}, {2, 1, 2}}}},
                         read);
      },
      [](const Run& run, const ReadOptions& read) {
        return run.cells({.arrays = {"P*"}, .init = true, .inactive = true}, read);
      },
      [](const Run& run, const ReadOptions& read) {
        return run.statistics({.cells = {.arrays = {"PRESSURE"}}, .by = {"FIPNUM"}, .weight = "PORV"}, read);
      },
      [](const Run& run, const ReadOptions& read) { return run.wells({.grid = "*"}, read); },
      [](const Run& run, const ReadOptions& read) { return run.connections({}, read); },
      [](const Run& run, const ReadOptions& read) { return run.tests({}, read); },
      [](const Run& run, const ReadOptions& read) { return run.testRows({.part = TestPart::Plt}, read); },
      [](const Run& run, const ReadOptions& read) { return run.testRows({.part = TestPart::All}, read); },
      [](const Run& run, const ReadOptions& read) { return run.grids({}, read); },
      [](const Run& run, const ReadOptions& read) { return run.corners({}, read); },
      [](const Run& run, const ReadOptions& read) { return run.tables(read); },
      [](const Run& run, const ReadOptions& read) { return run.flags({}, read); },
      [](const Run& run, const ReadOptions& read) { return run.nncArrays({}, read); },
      [](const Run& run, const ReadOptions& read) { return run.nnc({}, read); },
  };
  return all;
}

class Folder {
 public:
  Folder() : path_(fuzz::temporaryPath()) {
    std::filesystem::create_directories(path_);
    for (const char* ending : endings) {
      std::error_code none;
      std::filesystem::copy_file(std::string(LUMBARN_EXAMPLES "/ARBOR/ARBOR.") + ending, file(ending), none);
      fuzz::check(!none, "the sample is there");
    }
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  std::string root() const { return path_ / "ARBOR"; }
  std::string file(const std::string& ending) const { return root() + "." + ending; }

 private:
  std::filesystem::path path_;
};

/// One file of the run, for as long as an input is tried.
class Replaced {
 public:
  Replaced(std::string path, const std::vector<std::byte>& bytes) : path_(std::move(path)) {
    std::filesystem::rename(path_, path_ + ".sound");
    std::ofstream(path_, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }
  ~Replaced() {
    std::error_code ignored;
    std::filesystem::rename(path_ + ".sound", path_, ignored);
  }

 private:
  std::string path_;
};

void checkError(const Error& error) {
  fuzz::check(error.kind() != Error::Kind::Cancelled, "nobody asked to stop");
  fuzz::check(!error.diagnosis().text().empty() && error.diagnosis().text() == error.what(),
              "an error has a text");
}

/// Whatever a question gives follows the rules of Arrow's streams, also to the damage and beyond.
void ask(const Run& run, const Question& question) {
  std::int64_t partial = 0;
  try {
    Stream stream = question(run, {.keepPartial = true});
    while (const auto batch = stream.next()) partial += static_cast<std::int64_t>(batch->rows());
    if (stream.incomplete()) fuzz::check(!stream.incomplete()->text().empty(), "what is missing is told");
  } catch (const Error& error) {
    checkError(error);
    return;  // nothing could be read
  }
  try {
    ArrowArrayStream out;
    question(run, {}).exportTo(&out);
    std::int64_t rows = 0;
    int status = 0;
    const char* broken = check_stream(&out, &rows, &status);
    fuzz::check(!broken, broken ? broken : "");
    fuzz::check(rows == partial, "damage costs no row either way");
  } catch (const Error& error) {
    checkError(error);
    fuzz::check(partial == 0, "rows that can be had are given");
  }
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size, std::size_t room,
                                               unsigned seed) {
  if (size <= front || seed % 3 == 0) return LLVMFuzzerMutate(bytes, size, room);
  if (seed % 3 == 1) bytes[0] = static_cast<std::uint8_t>(seed / 3);
  const auto mutated = fuzz::mutateRecords(fuzz::bytesOf({bytes + front, size - front}), seed / 3);
  if (mutated.size() + front > room) return size;
  std::ranges::copy(mutated, std::as_writable_bytes(std::span(bytes, room)).begin() + front);
  return mutated.size() + front;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const Folder folder;
  if (size <= front) return 0;
  const Replaced file(folder.file(endings[bytes[1] % endings.size()]),
                      fuzz::bytesOf({bytes + front, size - front}));
  try {
    ask(Run::open(folder.root()), questions()[bytes[0] % questions().size()]);
  } catch (const Error& error) {
    checkError(error);
  }
  return 0;
}
