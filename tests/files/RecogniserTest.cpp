#include <fmt/format.h>
#include <gtest/gtest.h>

#include "files/Families.h"
#include "files/Recogniser.h"
#include "record/RecordWriter.h"
#include "support/Forms.h"
#include "support/TemporaryFolder.h"
#include "support/Text.h"

namespace lumbarn {
namespace {

using namespace test;
using enum FileKind;

// Writes the records of a list such as "SEQNUM INTEHEAD:95 TIME:D1 ENDSOL:M": behind the keyword the type (I
// when left out, D, S, T or M) and the count (1 when left out).
std::vector<std::byte> write(std::string_view records, Form form) {
  std::vector<std::byte> bytes;
  RecordWriter writer(memorySink(bytes), form);
  for (const std::string& item : words(records)) {
    const std::vector<std::string> parts = split(item + ":", ':');
    const char type = parts[1].empty() || parts[1][0] <= '9' ? 'I' : parts[1][0];
    const auto count = static_cast<std::size_t>(toInteger(trim(parts[1].substr(type != 'I'))).value_or(1));
    if (type == 'I') writer.integers(parts[0], std::vector<std::int32_t>(count, 7));
    if (type == 'D') writer.doubles(parts[0], std::vector<double>(count, 7));
    if (type == 'S') writer.singles(parts[0], std::vector<float>(count, 7));
    if (type == 'T') writer.texts(parts[0], std::vector<std::string>(count, "TEXT"));
    if (type == 'M') writer.message(parts[0]);
  }
  return bytes;
}

struct Case {
  const char *records, *name;
  FileKind kind;
  std::optional<bool> unified;
  bool byContent = true;
};

const Case cases[] = {
    // Each kind by its content, without help from the name.
    {"MINISTEP PARAMS:S5", "", Summary, true},
    {"SEQNUM INTEHEAD:95 STARTSOL:M PRESSURE:S9 ENDSOL:M", "", Restart, true},
    {"ODD:S1500 SEQNUM INTEHEAD:95 LOGIHEAD PRESSURE:S9", "", Restart, true},
    {"INTEHEAD:411 LOGIHEAD:121 DOUBHEAD:D229 STARTSOL:M", "", Restart, false},
    {"INTEHEAD:95 LGR:T1 LGRHEADI:45 DX:S5", "", Init, {}},
    {"SEQNUM INTEHEAD:95 LOGIHEAD PORV:S9", "", Init, {}},
    {"TIME:D1 NAME:T5", "", Rsspec, {}},
    {"INTEHEAD:95 NAME:T5 TYPE:T5", "", Inspec, {}},
    {"DIMENS:3 COORDS:7 CORNERS:S24", "", Grid, {}},
    {"SAVEHEAD:2 INTEHEAD:95", "", Save, true},
    {"INITIAL INTEHEAD:95 PORV:S5", "", Save, true},
    {"INTEHEAD:10 GEOMETRY:D9 GEOMINDX:2", "", Streamline, false},
    {"RESTART:T9 EXTENT:D6 NAMES:T5", "", StreamlineSpec, {}},

    // Types that begin as others do: FLUX files, copies of a summary arranged by vector.
    {"SEQHDR MINISTEP FLOOIL:S9", "RUN.FLUX", Unknown, {}, false},
    {"SEQHDR FLOOIL:S9 MINISTEP PARAMS:S9", "", Unknown, {}, false},
    {"INTEHEAD:2 FLUXNUM:9", "RUN.FLUX", Unknown, {}, false},
    {"START:6 RESTART:T9 KEYCHECK:T9 UNITS:T9", "RUN.ESMRY", Unknown, {}, false},

    // Content before a misleading name.
    {"INTEHEAD:2 RESTART:T9 DIMENS:6", "RUN.UNRST", SummarySpec, {}},
    {"INTEHEAD:95 LOGIHEAD DOUBHEAD:D1 IWEL", "RUN.INIT", Restart, false},
    {"SEQNUM INTEHEAD:95 IGRP", "RUN.X0003", Restart, false},  // some writers begin step files so
    {"SEQHDR PARAMS:S5 SEQHDR PARAMS:S5", "RUN.S0001", Summary, true},
    {"FILEHEAD:100", "RUN.DATA", EGrid, {}},

    // The name where content leaves several kinds open.
    {"INTEHEAD:95 LOGIHEAD DOUBHEAD:D1", "RUN.INIT", Init, {}},
    {"INTEHEAD:95 LOGIHEAD DOUBHEAD:D1", "run.x0003", Restart, false},
    {"INTEHEAD:95", "RUN.RSSPEC", Rsspec, {}},
    {"SEQNUM INTEHEAD:95 LOGIHEAD PORV:S9", "RUN.UNRST", Restart, true},
    {"SEQHDR MINISTEP PARAMS:S5", "RUN.S0001", Summary, false},
    {"RESTART:T9", "RUN.SLNSPEC", StreamlineSpec, {}},
    {"SAVEHEAD:2", "RUN.V0002", Save, false},

    // The name alone.
    {"ODD:S5 WORD:T3", "RUN.UNRST", Restart, true, false},
    {"", "RUN.SMSPEC", SummarySpec, {}, false},
};

class RecogniserInEachForm : public OfForm {};

TEST_P(RecogniserInEachForm, TellsTheKind) {
  for (const Case& example : cases) {
    SCOPED_TRACE(fmt::format("{} in {}", example.records, example.name));
    const std::vector<std::byte> bytes = write(example.records, form_);
    const Recognised result = recognise(std::make_shared<MemorySource>(bytes), example.name);
    EXPECT_EQ(nameOf(result.kind), nameOf(example.kind));
    EXPECT_EQ(result.unified, example.unified);
    EXPECT_EQ(result.byContent, example.byContent);
    EXPECT_EQ(result.form, bytes.empty() ? std::nullopt : std::optional(form_));
  }
}

INSTANTIATE_TEST_SUITE_P(Forms, RecogniserInEachForm, ::testing::ValuesIn(everyForm), formName);

TEST(Recogniser, TellsTextsOfTestsByTheirFirstLines) {
  const auto found = [](std::string_view text, const char* name) {
    return recognise(std::make_shared<MemorySource>(bytesOf(text)), name);
  };
  for (const char* name : {"", "P1.RFT", "P1.DATA", "P1.TXT"}) {
    EXPECT_EQ(found("-- a\r\n\r\n  rft\tP1\r\n", name).offset, 8U) << name;
    EXPECT_EQ(found("ORIGIN X\nDATE1 JAN 1990\nPLT", name).whichtype(), 77) << name;
  }
  for (const char* text : {"-- RFT\n", "RFTPLT\n", "DEPTH\nRFT\n", "WELLNAME P1\nDEPTH\nRFT", "RFT1\n", ""}) {
    EXPECT_EQ(found(text, "P1.TXT").kind, Unknown) << text;
  }
  EXPECT_EQ(found(std::string_view("RFT\n\0", 5), "").kind, Unknown);
}

// INCLUDE files of the grid section are often named RUN.grid.
TEST(Recogniser, ADeckTextIsADeckWhateverItsName) {
  const TemporaryFolder folder;
  const std::pair<std::string_view, FileKind> rows[] = {
      {"RUNSPEC\r\nDIMENS\r\n 10 10 3 / size\r\n/\r\n", Deck},
      {"TIME\n1\n2\n", Grid},
      {"name,mnemonic\na/b,c/\n", Grid},
      {"-- made by hand\n\nDXV\n 3*100 /\n", Deck},
  };
  for (const auto& [text, kind] : rows) {
    writeFile(folder.file("R.grid"), bytesOf(text));
    EXPECT_EQ(recogniseFile(folder.file("R.grid")).kind, kind) << text;
  }
  std::string why;
  EXPECT_EQ(findRuns(folder.file("R.grid"), why).at(0).find(Grid), nullptr);
}

TEST(Recogniser, ARefusalStatesWhereWhatWasExpectedAndFound) {
  const TemporaryFolder folder;
  struct Row {
    std::vector<std::byte> bytes;
    Message message;
    std::uint64_t offset;
    std::string keyword, expected, found;
  };
  const Row rows[] = {
      {{}, Message::FileEmpty, 0, "", "", ""},
      {bytesOf("just text"), Message::FileType, 0, "", "a record header", ""},
      {bytesOf("-- by hand\nDXV\n3*100 /\n"), Message::FileType, 11, "", "INIT", "data deck"},
      {bytesOf("\n# x\nPLT\n"), Message::FileType, 5, "", "INIT", "user PLT"},
      {write("FILEHEAD:100", bigEndian), Message::FileType, 0, "FILEHEAD", "INIT", "EGRID"},
      {write("ODD:9", bigEndian), Message::FileType, 0, "ODD", "INIT", "a file of unknown type"},
  };
  for (const Row& row : rows) {
    writeFile(folder.file("F"), row.bytes);
    const Diagnosis diagnosis = refusal(folder.file("F"), Init);
    EXPECT_EQ(diagnosis.message, row.message);
    EXPECT_EQ(diagnosis.path, folder.file("F"));
    EXPECT_EQ(diagnosis.offset, row.offset);
    EXPECT_EQ(std::tie(diagnosis.keyword, diagnosis.expected, diagnosis.found),
              std::tie(row.keyword, row.expected, row.found));
  }
  EXPECT_EQ(refusal(folder.file("NONE"), Init).message, Message::FileOpen);
  const Recognised missing = recogniseFile(folder.file("RUN.EGRID"));
  EXPECT_EQ(missing.kind, EGrid);
  EXPECT_TRUE(missing.problem && !missing.byContent);
}

}  // namespace
}  // namespace lumbarn
