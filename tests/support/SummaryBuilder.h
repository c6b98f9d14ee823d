#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Forms.h"
#include "TemporaryFolder.h"
#include "Writer.h"

namespace lumbarn::test {

/// Makes the files of a whole summary run, specification and data, in any form.
struct SummaryBuilder {
  struct Vector {
    std::string mnemonic;
    std::string name = ":+:+:+:+";
    std::int32_t number = 0;
    std::string unit = {};
    std::string lgr = {};
    std::array<std::int32_t, 3> lgrCell = {};
    float length = 0;
  };
  /// One row of values, and whether it begins a new report step.
  struct Row {
    std::vector<float> values;
    bool newStep = true;
  };

  std::vector<Vector> vectors;
  std::vector<Row> rows;
  std::array<std::int32_t, 3> grid = {10, 10, 3};
  std::vector<std::int32_t> start = {1, 1, 2015};
  std::string restart;                    ///< root name of the earlier run
  std::int32_t firstStep = 0;             ///< report step at which that run was left
  std::int32_t intehead = 0;              ///< unit system for an INTEHEAD in front; 0: begins with RESTART
  int nameWidth = 8;                      ///< above 8: NAMES instead of WGNAMES
  std::string lengthUnit = {};            ///< with one, LENGTHS and LENUNITS are written
  std::vector<std::int32_t> seqhdr = {};  ///< values of SEQHDR by step, instead of those of `sequence`
  Writer writer = {};                     ///< habits beside these

  std::vector<std::byte> spec(Form form) const {
    std::vector<std::byte> bytes;
    RecordWriter out(memorySink(bytes), form);
    if (intehead > 0) out.integers("INTEHEAD", std::array{intehead, writer.program});
    std::vector<std::string> pieces(9);
    for (std::size_t i = 0; i * 8 < restart.size() && i < 9; ++i) pieces[i] = restart.substr(i * 8, 8);
    if (writer.specHead != Writer::SpecHead::InteheadDimens) out.texts("RESTART", pieces);
    const auto count = static_cast<std::int32_t>(vectors.size());
    out.integers("DIMENS", std::array{count, grid[0], grid[1], grid[2], 0, firstStep});
    out.texts("KEYWORDS", each<std::string>(&Vector::mnemonic));
    writeNames(out);
    out.integers("NUMS", each<std::int32_t>(&Vector::number));
    if (hasLgrs()) writeLgrs(out);
    if (!lengthUnit.empty()) {
      out.singles("LENGTHS", each<float>(&Vector::length));
      out.texts("LENUNITS", std::array{lengthUnit});
    }
    if (writer.localGridTimes) {
      out.integers("LGRVEC", std::vector<std::int32_t>(vectors.size(), 1));
      out.integers("LGRTIMES", std::array{1, 2});
    }
    out.texts("UNITS", each<std::string>(&Vector::unit));
    out.integers("STARTDAT", start);
    if (writer.moreSpecRecords) {
      out.texts("MEASRMNT", std::vector<std::string>(vectors.size() * 5, "RATE"));
      out.integers("RUNTIMEI", std::vector<std::int32_t>(50, 1));
      out.doubles("RUNTIMED", std::vector<double>(83, 0.5));
    }
    if (writer.namesRecord && nameWidth == 8) replaceType(bytes, "NAMES   ", "C008");
    return bytes;
  }

  /// All steps, as in a unified file.
  std::vector<std::byte> data(Form form) const {
    std::vector<std::byte> bytes;
    for (const auto& step : steps(form)) bytes.insert(bytes.end(), step.begin(), step.end());
    return bytes;
  }

  /// The bytes of each report step: the files of a multiple set.
  std::vector<std::vector<std::byte>> steps(Form form) const {
    std::vector<std::vector<std::byte>> files;
    std::int32_t ministep = 0;
    for (const Row& row : rows) {
      const bool begins = row.newStep || files.empty();
      if (begins) files.emplace_back();
      RecordWriter out(memorySink(files.back()), form);
      const auto step = firstStep + static_cast<std::int32_t>(files.size());
      if (step == firstStep + 1 && begins && writer.ownRecord)
        out.texts(writer.ownRecord, std::array<std::string, 1>{writer.ownRecord});
      if (begins)
        out.integers("SEQHDR", std::array{seqhdr.empty() ? sequenceWord(step) : seqhdr.at(files.size() - 1)});
      const auto skipped = 119 + (ministep == 1 ? 2 : ministep);  // 119, 121, 121, 122
      out.integers("MINISTEP", std::array{writer.skippedMinistep ? skipped : ministep});
      ++ministep;
      out.singles("PARAMS", row.values);
    }
    return files;
  }

  /// Writes ROOT.SMSPEC and ROOT.UNSMRY, or ROOT.S0001 and so on, with the extensions that go with the form.
  /// Gives the path of the specification.
  std::string write(const TemporaryFolder& folder, const std::string& root, Form form,
                    bool unified = true) const {
    const std::string path = folder.file(root + (form.formatted() ? ".FSMSPEC" : ".SMSPEC"));
    writeFile(path, spec(form));
    if (unified) {
      writeFile(folder.file(root + (form.formatted() ? ".FUNSMRY" : ".UNSMRY")), data(form));
      return path;
    }
    int step = firstStep;
    for (const auto& bytes : steps(form))
      writeFile(folder.stepFile(root, form.formatted() ? "A" : "S", ++step), bytes);
    return path;
  }

 private:
  std::int32_t sequenceWord(std::int32_t step) const {
    if (writer.sequence == Writer::Sequence::Stamp) return -952856885 + step;
    return writer.sequence == Writer::Sequence::Zero ? 0 : step;
  }
  /// The header of 8-character names says CHAR or C008, that of longer ones C0nn.
  void writeNames(RecordWriter& out) const {
    const bool names = writer.namesRecord || nameWidth > 8;
    out.texts(names ? "NAMES" : "WGNAMES", each<std::string>(&Vector::name), nameWidth);
  }
  /// The writer of records knows CHAR only for strings of 8 characters.
  static void replaceType(std::vector<std::byte>& bytes, std::string_view keyword, std::string_view type) {
    const auto isLetter = [](std::byte b, char c) { return static_cast<char>(b) == c; };
    const auto header = std::search(bytes.begin(), bytes.end(), keyword.begin(), keyword.end(), isLetter);
    const auto word = std::search(header, bytes.end(), charType.begin(), charType.end());
    std::ranges::transform(type, word, [](char c) { return static_cast<std::byte>(c); });
  }
  static constexpr std::array charType{std::byte{'C'}, std::byte{'H'}, std::byte{'A'}, std::byte{'R'}};
  template <class T>
  std::vector<T> each(T Vector::*member) const {
    std::vector<T> values;
    for (const Vector& vector : vectors) values.push_back(vector.*member);
    return values;
  }
  bool hasLgrs() const {
    return std::ranges::any_of(vectors, [](const Vector& vector) { return !vector.lgr.empty(); });
  }
  void writeLgrs(RecordWriter& out) const {
    out.texts("LGRS", each<std::string>(&Vector::lgr));
    const char* const keywords[] = {"NUMLX", "NUMLY", "NUMLZ"};
    std::vector<std::string> names;
    for (const Vector& vector : vectors) {
      if (!vector.lgr.empty() && (names.empty() || names.back() != vector.lgr)) names.push_back(vector.lgr);
    }
    for (std::size_t axis = 0; axis < 3; ++axis) {
      std::vector<std::int32_t> values;
      for (const Vector& vector : vectors) values.push_back(vector.lgrCell[axis]);
      out.integers(keywords[axis], values);
    }
    out.texts("LGRNAMES", names);
  }
};

}  // namespace lumbarn::test
