#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "Checks.h"
#include "summary/SummaryVector.h"
#include "summary/VectorSelection.h"
#include "summary/qvEclipseSPEC.h"

namespace {

using namespace lumbarn;

/// A folder of this process for the pair of files; gone when the process ends as it should.
class Folder {
 public:
  Folder()
      : path_(std::filesystem::temp_directory_path() /
              ("lumbarn-fuzz-" + std::to_string(std::random_device()()))) {
    std::filesystem::create_directories(path_);
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  std::string write(const char* name, const std::uint8_t* data, std::size_t size) const {
    const auto file = (path_ / name).string();
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    return file;
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
    const auto choice = selectVectors(vectors, own, {});
    fuzz::check(choice.mask.back(), "a vector answers to its name");
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

void checkSpecification(const std::string& path) {
  Session session;
  session.faultReporter = [](std::string_view text) { fuzz::check(false, text); };
  qvEclipseSPEC spec(session);
  if (!spec.CheckSPECFile(path)) return;
  bool qOK = false;
  spec.ReadEclipseSPECFile(qOK);
  fuzz::check(qOK || !session.diagnoses().empty(), "a failure is told");
  if (qOK || spec.qDamaged) checkHeaders(spec);
}

}  // namespace

/// Two bytes that say how long the specification is, the specification, and the data.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Folder folder;
  if (size < 2) return 0;
  const std::size_t length = std::min<std::size_t>(data[0] + 256U * data[1], size - 2);
  const auto specification = folder.write("RUN.SMSPEC", data + 2, length);
  folder.write("RUN.UNSMRY", data + 2 + length, size - 2 - length);
  checkSpecification(specification);
  return 0;
}
