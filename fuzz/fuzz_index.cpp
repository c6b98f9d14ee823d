#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

#include "Checks.h"
#include "RecordMutator.h"
#include "arrays/ArrayReader.h"
#include "index/RestartIndexAgreement.h"
#include "index/qvEclipseINSPEC.h"
#include "index/qvEclipseRSSPEC.h"
#include "support/Guarded.h"
#include "support/IndexedRun.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t room);

namespace {

using namespace lumbarn;

/// A folder of this process with a small run: the input is the index of its restart or INIT file. The folder
/// is gone when the process ends as it should.
class Run {
 public:
  Run() : path_(fuzz::temporaryPath()) {
    std::filesystem::create_directories(path_);
    const test::IndexedRun run;
    std::vector<std::byte> restart;
    for (const std::int32_t step : run.steps) {
      const auto bytes = run.step(step, test::bigEndian, true);
      restart.insert(restart.end(), bytes.begin(), bytes.end());
    }
    write("RUN.UNRST", restart);
    write("RUN.INIT", run.init(test::bigEndian));
    Session session;
    const std::string files[] = {file("RUN.UNRST")};
    restart_ = walkRestart(session, files);
    init_ = walkInit(session, file("RUN.INIT"));
  }
  ~Run() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  std::string file(const std::string& name) const { return (path_ / name).string(); }
  std::string write(const std::string& name, const std::vector<std::byte>& bytes) const {
    std::ofstream(file(name), std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return file(name);
  }
  const RestartIndex& walked(bool init) const { return init ? init_ : restart_; }

 private:
  std::filesystem::path path_;
  RestartIndex restart_;
  RestartIndex init_;
};

void checkReaders(const std::string& path, bool init) {
  Session session;
  session.faultReporter = [](std::string_view text) { fuzz::check(false, text); };
  bool qOK = false;
  std::vector<std::string> names;
  std::vector<std::uint64_t> positions;
  if (init) {
    qvEclipseINSPECFile reader(session);
    reader.CheckINSPECFile(path, qOK);
    if (!qOK) return;
    reader.getINSPECData(qOK);
    fuzz::check(qOK || !session.diagnoses().empty(), "a failure is told");
    reader.GetVectors(names, qOK);
    for (const auto& pass : reader.passes) {
      for (const auto& name : pass.zAllNames) pass.GetPointersToINITNames("", name, positions, qOK);
    }
    return;
  }
  qvEclipseRSSPEC reader(session);
  reader.CheckRESTARTFile(path, qOK);
  if (!qOK) return;
  reader.getRSSPECData(qOK);
  fuzz::check(qOK || !session.diagnoses().empty(), "a failure is told");
  reader.GetListofAllSolutionVectors(names, qOK);
  fuzz::check(qOK, "names can be had");
  for (const auto& step : reader.steps) step.GetPointersToSolutionNames("", "PRESSURE", positions, qOK);
  reader.GetDates(names, qOK);
  fuzz::check(qOK && names.size() == reader.steps.size(), "one date per step");
}

/// By whatever index: the steps are those of the files, and an array that can be read has its values.
void checkSteps(const Run& run, const std::string& path, bool init) {
  Session session;
  session.faultReporter = [](std::string_view text) { fuzz::check(false, text); };
  const std::string files[] = {run.file("RUN.UNRST")};
  RestartIndex index =
      init ? indexOfInit(session, run.file("RUN.INIT"), path) : indexOfRestart(session, files, path);
  const RestartIndex& walked = run.walked(init);
  fuzz::check(index.whole && index.steps.size() == walked.steps.size(), "all steps are there");
  fuzz::check(index.fromFile == session.diagnoses().empty(), "an index that is not used is told");
  ArrayReader reader(std::move(index), session);
  for (std::size_t i = 0; i < walked.steps.size(); ++i) {
    const IndexStep& step = reader.index().steps[i];
    fuzz::check(init || step.number == walked.steps[i].number, "steps have their numbers");
    fuzz::check(step.position == walked.steps[i].position, "steps stand where they do");
    const auto* entry = step.find("PRESSURE");
    if (init || !entry || entry->count != 9) continue;
    std::vector<float> values(9);
    bool qOK = false;
    guarded(session, qOK, "ArrayReader", "read",
            [&] { reader.read(step.number, "PRESSURE", "", 0, std::span(values)); });
    const auto expected = test::IndexedRun::pressures(step.number, 0, 9);
    fuzz::check(!qOK || values == expected, "an array has its values");
  }
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size, std::size_t room,
                                               unsigned seed) {
  if (size < 2 || seed % 3 == 0) return LLVMFuzzerMutate(bytes, size, room);
  const auto changed = fuzz::mutateRecords(fuzz::bytesOf({bytes + 1, size - 1}), seed / 3);
  if (changed.size() + 1 > room) return size;
  std::ranges::copy(changed, std::as_writable_bytes(std::span(bytes + 1, changed.size())).begin());
  return changed.size() + 1;
}

/// The first byte says which kind of index the others are.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const Run run;
  if (size < 1) return 0;
  const bool init = (bytes[0] & 1) != 0;
  const auto path = run.write(init ? "RUN.INSPEC" : "RUN.RSSPEC", fuzz::bytesOf({bytes + 1, size - 1}));
  checkReaders(path, init);
  checkSteps(run, path, init);
  return 0;
}
