// A host that reads the summary of a run and prints some of its vectors as columns.
//
//   host RUN.SMSPEC

#include <cstdio>
#include <lumbarn/qvEclipseReader.h>
#include <lumbarn/shapes/HeaderLayout.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

// "WBHP:P1": mnemonic and, where there is one, the well or group.
std::string nameOf(const lumbarn::ByteTable& bHeaders, std::size_t iVector) {
  const std::string mnemonic = lumbarn::ExtractAttribute(lumbarn::attributeVariable, bHeaders, iVector);
  const std::string member = lumbarn::ExtractAttribute(lumbarn::attributeMember, bHeaders, iVector);
  return member.empty() ? mnemonic : mnemonic + ":" + member;
}

// Numbers of the wanted vectors, from 1, in the order of the file.
std::vector<std::size_t> choose(const lumbarn::ByteTable& bHeaders) {
  std::vector<std::size_t> chosen;
  for (std::size_t iVector = 1; iVector <= bHeaders.entries(); ++iVector) {
    for (const std::string_view wanted : {"TIME", "FPR", "FOPR", "FOPT", "WBHP:P1"}) {
      if (nameOf(bHeaders, iVector) == wanted) chosen.push_back(iVector);
    }
  }
  return chosen;
}

void print(const lumbarn::XYData& data, const lumbarn::ByteTable& bHeaders) {
  const std::vector<std::size_t> chosen = choose(bHeaders);
  for (const std::size_t iVector : chosen) std::printf("%12s", nameOf(bHeaders, iVector).c_str());
  std::printf("\n");
  for (const std::size_t iVector : chosen) {
    std::printf("%12s", lumbarn::ExtractAttribute(lumbarn::attributeUnits, bHeaders, iVector).c_str());
  }
  std::printf("\n");
  for (std::size_t iRow = 1; iRow <= data.rows(); ++iRow) {
    for (const std::size_t iVector : chosen) std::printf("%12.6g", static_cast<double>(data(iRow, iVector)));
    std::printf("\n");
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: host RUN.SMSPEC\n");
    return 2;
  }
  // Nothing fails without a reason; this is where a host hears it.
  lumbarn::Session::process().diagnosisSink = [](const lumbarn::Diagnosis& diagnosis) {
    std::fprintf(stderr, "%s\n", diagnosis.text().c_str());
  };

  lumbarn::qvEclipseReader reader;
  reader.FileName = argv[1];
  reader.whichtype = 12;  // a summary
  reader.Silent = true;   // no questions
  bool qOK = false;
  reader.ECLReadData(qOK);
  if (!qOK) return 1;

  lumbarn::XYData data;
  lumbarn::ByteTable bHeaders;
  lumbarn::ByteTable bOnly;
  lumbarn::SourceData vSourceData;
  reader.GetSUMMARYData(data, bHeaders, vSourceData, bOnly, qOK);
  if (!qOK) return 1;
  print(data, bHeaders);
  return 0;
}
