#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "FaultySource.h"
#include "Host.h"
#include "ModelRun.h"
#include "index/RestartIndexAgreement.h"
#include "record/RecordCursor.h"

namespace lumbarn::test {

/// Everything that a host can fetch of one file: how much it is, and a number that changes with any value.
struct Fetched {
  bool ok = false;            ///< the load succeeded
  bool complained = false;    ///< something was reported beyond remarks
  std::string unplaced = {};  ///< a report without the path of its file or, of a truncated record, its byte
  std::size_t count = 0;
  std::uint64_t digest = 0;
  std::set<std::pair<std::size_t, std::uint64_t>> pieces;  ///< size and digest of what each fetch gave

  template <class Numbers>
  void add(const Numbers& values) {
    if (values.empty()) return;  // a host gets an empty summary of a reader that holds none
    constexpr std::uint64_t seed = 14695981039346656037U, prime = 1099511628211U;
    std::uint64_t piece = seed;
    for (const auto value : values) {
      std::uint64_t bits = 0;
      std::memcpy(&bits, &value, sizeof(value));
      piece = (piece ^ bits) * prime;
    }
    count += values.size();
    digest = digest * prime + piece;
    pieces.insert({values.size(), piece});
  }
  /// Whether a fetch gave as many values as one of `clean` did, and other ones.
  bool hasOtherValuesThan(const Fetched& clean) const {
    return std::ranges::any_of(pieces, [&](const auto& piece) {
      const auto same = clean.pieces.lower_bound({piece.first, 0});
      return same != clean.pieces.end() && same->first == piece.first && !clean.pieces.contains(piece);
    });
  }
  bool operator==(const Fetched& other) const { return count == other.count && digest == other.digest; }
};

/// A file of a run, and the load that reads it.
struct FileOfRun {
  const char* type;
  std::string path;  ///< that the host loads
  std::int32_t code;
  std::string data;  ///< the file itself, which the other one leads to
};
inline std::vector<FileOfRun> filesOf(const ModelRun& run) {
  std::vector<FileOfRun> files{
      {"summary", run.specificationPath, 12, run.dataPath},
      {"specification", run.specificationPath, 12, run.specificationPath},
      {"restart", run.restartPath, 11, run.restartPath},
      {"INIT", run.initPath, 15, run.initPath},
      {"grid", run.gridPath, run.writer().gridFile ? 14 : 23, run.gridPath},
      {"well tests", run.testsPath, 18, run.testsPath},
  };
  if (!run.indexPath.empty()) files.push_back({"index", run.indexPath, 11, run.indexPath});
  if (!run.initIndexPath.empty()) files.push_back({"INIT index", run.initPath, 15, run.initIndexPath});
  return files;
}

/// Fetches everything that the last load of a host left; nothing when it has no data.
inline void fetchAll(Host& host, std::int32_t code, Fetched& all) {
  bool qOK = false;
  if (code == 12 && host.fetchSummary()) all.add(host.table.values());
  if (code == 11) {
    for (std::int32_t step = 1; std::cmp_less_equal(step, host.reader.RestartSteps().size()); ++step) {
      for (std::int32_t number = 1; const auto* grid = host.reader.RestartGrid(step, number); ++number) {
        for (const auto& array : grid->arrays.arrays())
          all.add(host.reader.RestartValues(step, number, array.name));
        for (const auto& well : host.reader.RestartWells(step, number, qOK))
          all.add(std::array{well.nConnections});
      }
    }
  }
  if (code == 15 && host.reader.Init()) {
    for (host.reader.iGridNumber = 1; host.reader.iGridNumber < 3; ++host.reader.iGridNumber) {
      for (const char* name : {"PORV", "PORO", "PERMX", "FIPNUM"}) {
        std::vector<float> values;
        host.reader.GetINITArray(name, false, values, qOK);
        if (qOK) all.add(values);
      }
    }
    std::vector<std::string> names;
    std::int32_t count = 0;
    host.reader.GetTableTypes(names, count, qOK);
    for (const auto& name : names) {
      for (const auto& column : host.reader.GetINITPhysicalTable(name, 1, qOK).columns)
        all.add(column.values);
    }
  }
  if (code == 14 || code == 23) {
    for (std::int32_t number = 1; number <= host.reader.NumberGrids(); ++number) {
      std::int32_t active = 0;
      host.reader.getCorners(number, host.table, active, qOK);
      if (qOK) all.add(host.table.values());
    }
  }
  if (code == 18) {
    for (std::int32_t test = 1; host.fetchTest(test); ++test) all.add(host.table.values());
  }
}

/// Where the arrays of an INIT file are according to its index.
inline void addIndex(Session& session, const FileOfRun& file, Fetched& all) {
  std::vector<std::uint64_t> places;
  for (const auto& step : indexOfInit(session, file.path, file.data).steps) {
    for (const auto& group : step.groups) {
      for (const auto& entry : group.entries) {
        // The record that begins a local grid is in the file, and not in every writer's index.
        if (entry.keyword.view() != "LGR") places.push_back(entry.position);
      }
    }
  }
  all.add(places);
}

inline Fetched loadAll(const FileOfRun& file, bool acceptDamaged = true) {
  Host host;
  host.reader.FullWellInfo = true;
  host.reader.AcceptDamaged = acceptDamaged;
  Fetched all;
  all.ok = host.load(file.path, file.code);
  fetchAll(host, file.code, all);
  if (file.code == 15 && file.data != file.path) addIndex(host.session, file, all);
  all.complained = !host.complaints().empty();
  for (const auto& report : host.session.diagnoses()) {
    if (report.path.empty() || (report.cutOff && !report.offset)) all.unplaced = report.text();
  }
  return all;
}

/// Empty unless a load that reported nothing has less than there is.
inline std::string lacking(const Fetched& found, const Fetched& clean) {
  if (!found.ok || found.complained || found.count >= clean.count) return {};
  return fmt::format("succeeded with {} of {} values and reported nothing", found.count, clean.count);
}

/// What is wrong with a load whose n-th read goes wrong. `met` is false when a load has fewer reads.
inline std::string wrongWith(ReadFault fault, int n, const FileOfRun& file, const Fetched& clean, bool& met) {
  const FaultyFiles faulty(fault, n);
  const Fetched found = loadAll(file);
  met = faulty.met();
  const bool silent = found.ok && !found.complained;
  const bool differs = !(found == clean) || (met && fault == ReadFault::Touched);
  return silent && differs ? "other data, and nothing was reported" : "";
}

/// Where records begin: a file that ends there may be complete.
inline std::vector<std::uint64_t> recordStarts(const std::string& path) {
  std::vector<std::uint64_t> starts;
  std::string why;
  auto records = openRecords(path, why);
  try {
    while (records && records->next()) starts.push_back(records->header().headerAt);
  } catch (const BadRecord&) {
    // The last record of a running simulation is truncated.
  }
  return starts;
}

/// Whether a file that is truncated there ends between two records, as a complete shorter file does. In a
/// formatted file a line end or a blank of the next header does not count.
inline bool endsBetween(const std::string& bytes, const std::vector<std::uint64_t>& starts, std::size_t at) {
  const auto blank = [&](std::size_t from, std::size_t to) {
    return std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(from),
                       bytes.begin() + static_cast<std::ptrdiff_t>(to),
                       [](char c) { return c == ' ' || c == '\n' || c == '\r'; });
  };
  const auto next = std::ranges::lower_bound(starts, at);
  return (next != starts.end() && blank(at, *next)) || (next != starts.begin() && blank(next[-1], at));
}

}  // namespace lumbarn::test
