#include "ModelRun.h"

#include <algorithm>
#include <iterator>

#include "record/RecordCursor.h"

namespace lumbarn::test {

std::vector<std::byte> withLinesOf(const Writer& writer, const Form& form, std::vector<std::byte> bytes) {
  if (!form.formatted() || (!writer.headersInFirstColumn && !writer.carriageReturns)) return bytes;
  const std::string text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  std::string all;
  for (std::size_t at = 0; at < text.size();) {
    const auto end = text.find('\n', at);
    std::string line = text.substr(at, end - at);
    // " 'KEYWORD '           3 'INTE'": no line of strings has this length.
    const bool header = line.size() == 30 && line[1] == '\'';
    if (header && writer.headersInFirstColumn) line.erase(0, 1);
    all += line + (writer.carriageReturns ? "\r\n" : "\n");
    at = end + 1;
  }
  return bytesOf(all);
}

namespace {

/// Replaces values, as an earlier run had others.
void makeOther(std::vector<float>& values, std::size_t first) {
  std::fill(values.begin() + static_cast<std::ptrdiff_t>(first), values.end(), -1.0F);
}

}  // namespace

ModelRun::ModelRun(const Writer& writer, const Form& runForm) : model(writer), form(runForm) {
  namespace fs = std::filesystem;
  const auto files = [&] { return fs::directory_iterator(folder.file("")); };
  const auto summary = model.summary();
  const auto restart = model.restart();
  if (writer.leftovers) {
    auto oldSummary = summary;
    auto oldRestart = restart;
    for (auto& row : oldSummary.rows) makeOther(row.values, 1);
    for (auto& step : oldRestart.steps) {
      for (auto& grid : step.grids) {
        for (auto& array : grid.arrays) makeOther(array.values, 0);
      }
    }
    oldSummary.write(folder, "RUN", form, false);
    oldRestart.write(folder, "RUN", form, false);
    for (const auto& file : files())
      fs::last_write_time(file, file.last_write_time() - std::chrono::hours(1));
  }
  specificationPath = summary.write(folder, "RUN", form, writer.unified);
  dataPath = writer.unified ? named("UNSMRY")
                            : folder.stepFile("RUN", form.formatted() ? "A" : "S", model.firstStep() + 1);
  restartPath = restart.write(folder, "RUN", form, writer.unified);
  if (writer.bothForms) {
    writeFile(folder.file(form.formatted() ? "RUN.SMSPEC" : "RUN.FSMSPEC"),
              summary.spec(form.formatted() ? bigEndian : formatted));
  }
  if (writer.earlier != Writer::Earlier::None) model.earlierSummary().write(folder, "EARLIER", form);
  writeFile(initPath = named("INIT"), model.init(form));
  gridPath = named(writer.gridFile ? "GRID" : "EGRID");
  writeFile(gridPath, writer.gridFile ? model.grid().grid(form) : model.grid().egrid(form));
  testsPath = model.wellTests().write(folder, form);
  if (form.formatted() && (writer.headersInFirstColumn || writer.carriageReturns)) {
    for (const auto& file : files()) {
      std::ifstream in(file.path(), std::ios::binary);
      const std::string text{std::istreambuf_iterator<char>(in), {}};
      writeFile(file.path(), withLinesOf(writer, form, bytesOf(text)));
    }
  }
  if (writer.running) fs::resize_file(dataPath, fs::file_size(dataPath) - 20);
  if (writer.index) writeFile(indexPath = named("RSSPEC"), indexOf(restartPath));
  if (writer.initIndex) writeFile(initIndexPath = named("INSPEC"), indexOf(initPath));
}

std::string ModelRun::named(const std::string& extension) const {
  return folder.file((form.formatted() ? "RUN.F" : "RUN.") + extension);
}

namespace {

/// Lists the arrays of one grid as index files do.
void writeGroup(RecordWriter& out, std::vector<RecordHeader>& headers, bool units) {
  if (headers.empty()) return;
  const auto each = [&](auto of) {
    std::vector<decltype(of(headers[0]))> values;
    for (const auto& header : headers) values.push_back(of(header));
    return values;
  };
  const auto integer = [](auto number) { return static_cast<std::int32_t>(number); };
  const std::vector<float> extremes(headers.size());
  out.texts("NAME", each([](const auto& header) { return header.keyword; }));
  out.texts("TYPE", each([](const auto& header) { return header.typeWord; }));
  out.integers("NUMBER", each([&](const auto& header) { return integer(header.count); }));
  out.integers("POINTER", each([&](const auto& header) { return integer(header.headerAt & 0x7FFFFFFF); }));
  out.integers("POINTERB", each([&](const auto& header) { return integer(header.headerAt >> 31); }));
  out.singles("ARRAYMAX", extremes);
  out.singles("ARRAYMIN", extremes);
  if (units) {
    out.texts("MEASRMNT", std::vector<std::string>(headers.size(), "LENGTH"));
    out.texts("UNITS", std::vector<std::string>(headers.size(), "METRES"));
  }
  headers.clear();
}

}  // namespace

std::vector<std::byte> ModelRun::indexOf(const std::string& path) const {
  std::string why;
  auto records = openRecords(path, why);
  std::vector<std::byte> bytes;
  RecordWriter out(memorySink(bytes), form);
  const RestartBuilder run = model.restart();
  while (records->next() && records->header().keyword != "INTEHEAD") {
  }
  out.integers("INTEHEAD", records->integers());
  records->seek(0);
  std::vector<RecordHeader> group;
  std::size_t next = 0;
  while (records->next()) {
    const RecordHeader header = records->header();
    const bool step = header.keyword == "SEQNUM", local = header.keyword == "LGR";
    const bool end = header.keyword == "ENDLGR" || header.keyword == "LGRSGONE";
    if (step || local || end) writeGroup(out, group, writer().indexUnits);
    if (step) {
      const auto& [number, days, date, grids, headNumber] = run.steps.at(next++);
      out.doubles("TIME", std::array{days});
      const bool counts = writer().itime == Writer::ItimeWords::TimeStep;
      out.integers("ITIME",
                   std::array{number, date[0], date[1], date[2], counts ? 7 : -2345, 1, 0, 0, 1, 1, 0, 0, 0});
    } else if (local) {
      out.texts("LGRNAME", std::array<std::string, 1>{Model::localGrid});
    } else if (!end && header.count > 0) {
      group.push_back(header);
    }
  }
  writeGroup(out, group, writer().indexUnits);
  return bytes;
}

}  // namespace lumbarn::test
