#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "Checks.h"
#include "RecordMutator.h"
#include "reader/qvEclipseReader.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t room);

namespace {

using namespace lumbarn;

/// A file of this process in a folder for temporary ones; gone when the process ends as it should.
class FuzzedFile {
 public:
  FuzzedFile() : path_(fuzz::temporaryPath(".RFT").string()) {}
  ~FuzzedFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  const std::string& write(const std::uint8_t* bytes, std::size_t size) const {
    std::ofstream(path_, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(size));
    return path_;
  }

 private:
  std::string path_;
};

/// What a host asks of one test: whatever is given has a header for each column.
class Host {
 public:
  Host(qvEclipseReader& reader, std::int32_t iTest) : reader_(reader), iTest_(iTest) {}

  void askEverything() {
    bool qRFT = false, qPLT = false, qSEG = false, qOK = false;
    reader_.getRFTTestInfo(iTest_, qRFT, qPLT, qSEG, qOK);
    fuzz::check(qOK, "a test tells what it holds");
    ask([&](bool& done) {
      reader_.GetRFTtest(iTest_, values_, headers_, number_, zDate_, zWell_, zGrid_, zOrigin_, done);
    });
    ask([&](bool& done) {
      reader_.GetPLTtest(iTest_, values_, headers_, number_, zDate_, zWell_, zGrid_, done);
    });
    eachBranch(reader_.NumberPLTBranches(iTest_), [&](std::int32_t branch, bool& done) {
      reader_.GetPLTBRANCHtest(iTest_, values_, headers_, number_, zDate_, zWell_, zGrid_, done, branch);
    });
    eachBranch(reader_.NumberBranches(iTest_), [&](std::int32_t branch, bool& done) {
      reader_.GetBRANCHtest(iTest_, values_, headers_, number_, zDate_, zWell_, zGrid_, done, branch);
    });
    eachBranch(reader_.NumberICDBranches(iTest_), [&](std::int32_t branch, bool& done) {
      reader_.GetICDBRANCHtest(iTest_, values_, headers_, number_, zDate_, zWell_, zGrid_, done, branch);
    });
    std::vector<char> grids;
    reader_.getRFTtestGrid(iTest_, grids, qOK);
    fuzz::check(qOK, "grids can be had");
  }

 private:
  void ask(auto call) {
    bool qOK = false;
    call(qOK);
    fuzz::check(!qOK || values_.columns() == headers_.entries(), "one header per column");
  }
  /// The first and the last few, and one too many: a damaged file may speak of a great many.
  void eachBranch(std::int32_t count, auto call) {
    fuzz::check(count >= 0, "branches are counted");
    for (std::int32_t branch = 0; branch <= std::min(count, 8); ++branch)
      ask([&](bool& done) { call(branch, done); });
    ask([&](bool& done) { call(count, done); });
    bool qOK = false;
    call(count + 1, qOK);
    fuzz::check(!qOK, "no branch comes behind the last");
  }

  qvEclipseReader& reader_;
  std::int32_t iTest_;
  XYData values_;
  ByteTable headers_;
  std::int32_t number_ = 0;
  std::string zDate_, zWell_, zGrid_, zOrigin_;
};

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size, std::size_t room,
                                               unsigned seed) {
  if (seed % 2 == 0) return LLVMFuzzerMutate(bytes, size, room);
  const auto changed = fuzz::mutateRecords(fuzz::bytesOf({bytes, size}), seed / 2);
  if (changed.size() > room) return size;
  std::ranges::copy(changed, reinterpret_cast<std::byte*>(bytes));
  return changed.size();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const FuzzedFile file;
  Session session;
  qvEclipseReader reader(session);
  reader.FileName = file.write(bytes, size);
  reader.whichtype = 18;
  bool qOK = false;
  reader.ECLReadData(qOK);
  fuzz::check(qOK || !session.diagnoses().empty(), "a failure is told");
  if (!qOK) return 0;
  fuzz::check(reader.NumberRFTTests() > 0, "a load has tests");
  for (std::int32_t iTest = 1; iTest <= std::min(reader.NumberRFTTests(), 50); ++iTest)
    Host(reader, iTest).askEverything();
  const auto tests = reader.ListRFTTests(qOK);
  fuzz::check(qOK, "tests are listed");
  for (const WellTest& test : tests) topologyOf(test);
  return 0;
}
