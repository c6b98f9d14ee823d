#include "GridCache.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>
#include <filesystem>
#include <type_traits>
#include <utility>

#include "../record/ByteSource.h"
#include "../support/Fault.h"
#include "../support/PendingFile.h"
#include "../support/ReadBuffer.h"

namespace lumbarn {

namespace {

constexpr std::array<char, 8> magic = {'L', 'U', 'M', 'B', 'G', 'R', 'I', 'D'};
constexpr std::uint32_t version = 1;  // raised whenever the layout changes; others are stale
constexpr std::uint32_t byteOrder = 0x01020304;
constexpr std::size_t pieceBytes = std::size_t{256} << 10;

/// A sum that any changed, lost or moved byte changes. Not for protection against intent.
class Checksum {
 public:
  void add(std::span<const std::byte> bytes) {
    length_ += bytes.size();
    while (!bytes.empty()) {
      const std::size_t taken = std::min(bytes.size(), word_.size() - held_);
      std::memcpy(word_.data() + held_, bytes.data(), taken);
      held_ += taken;
      bytes = bytes.subspan(taken);
      if (held_ < word_.size()) break;
      mix();
      for (; bytes.size() >= word_.size(); bytes = bytes.subspan(word_.size())) {
        std::memcpy(word_.data(), bytes.data(), word_.size());
        mix();
      }
      held_ = 0;
    }
  }
  std::uint64_t value() const {
    Checksum end = *this;
    std::fill(end.word_.begin() + static_cast<std::ptrdiff_t>(held_), end.word_.end(), std::byte{0});
    end.mix();
    return end.sum_ ^ length_;
  }

 private:
  void mix() {
    std::uint64_t bits = 0;
    std::memcpy(&bits, word_.data(), sizeof bits);
    sum_ = (sum_ ^ bits) * 0x9E3779B97F4A7C15U;
    sum_ ^= sum_ >> 29;
  }
  std::array<std::byte, 8> word_{};
  std::size_t held_ = 0;
  std::uint64_t sum_ = 0xCBF29CE484222325U;
  std::uint64_t length_ = 0;
};

/// The sum of the first bytes of a source; nothing when it cannot be read to there.
std::optional<std::uint64_t> sumOf(const ByteSource& source, std::uint64_t bytes) {
  ReadBuffer buffer(pieceBytes);
  Checksum sum;
  for (std::uint64_t at = 0; at < bytes;) {
    const std::span part(buffer.data(),
                         static_cast<std::size_t>(std::min<std::uint64_t>(pieceBytes, bytes - at)));
    if (source.readAt(at, part) != part.size()) return {};
    sum.add(part);
    at += part.size();
  }
  return sum.value();
}

template <class T>
concept Plain = std::is_trivially_copyable_v<T>;

/// Writes values behind each other, with a sum of them all at the end.
class CacheWriter {
 public:
  explicit CacheWriter(OutputFile& file) : file_(file) {}
  void bytes(std::span<const std::byte> bytes) {
    sum_.add(bytes);
    good_ = good_ && file_.write(bytes);
    if (good_) written_ += bytes.size();
  }
  template <Plain T>
  void put(const T& value) {
    bytes(std::as_bytes(std::span(&value, 1)));
  }
  template <Plain T>
  void array(std::span<const T> values) {
    put(static_cast<std::uint64_t>(values.size()));
    bytes(std::as_bytes(values));
  }
  void text(const std::string& value) { array(std::span<const char>(value)); }
  bool finish() {
    put(sum_.value());
    return good_;
  }
  /// Bytes before the first failed write.
  std::uint64_t written() const { return written_; }

 private:
  OutputFile& file_;
  Checksum sum_;
  bool good_ = true;
  std::uint64_t written_ = 0;
};

/// Reads them back. Nothing beyond the end is believed: a count is held against the bytes that are there.
class CacheReader {
 public:
  CacheReader(const ByteSource& file, std::uint64_t end) : file_(file), end_(end) {}
  void bytes(std::span<std::byte> out) {
    if (out.size() > end_ - at_ || file_.readAt(at_, out) != out.size()) throw Fault(FaultNumber::PastEnd);
    at_ += out.size();
  }
  template <Plain T>
  T get() {
    T value{};
    bytes(std::as_writable_bytes(std::span(&value, 1)));
    return value;
  }
  std::size_t count(std::size_t width) {
    const auto n = get<std::uint64_t>();
    if (n > (end_ - at_) / width) throw Fault(FaultNumber::PastEnd);
    return static_cast<std::size_t>(n);
  }
  template <Plain T>
  std::vector<T> array() {
    std::vector<T> values(count(sizeof(T)));
    bytes(std::as_writable_bytes(std::span(values)));
    return values;
  }
  std::string text() {
    const auto letters = array<char>();
    return {letters.begin(), letters.end()};
  }
  XYData rows(std::size_t width, const Session& session) {
    const std::size_t n = count(sizeof(float));
    XYData values(width, n / width, session);
    bytes(std::as_writable_bytes(values.values()));
    return values;
  }

 private:
  const ByteSource& file_;
  std::uint64_t at_ = 0;
  std::uint64_t end_;
};

void putFacts(CacheWriter& out, const Hadrick& grid) {
  for (const auto* text : {&grid.zName, &grid.zParent, &grid.zGridUnit, &grid.zMapUnit}) out.text(*text);
  for (const auto number :
       {grid.iParent, grid.iLocalNumber, grid.iGridType, grid.iDualPorosity, grid.nTheta}) {
    out.put(number);
  }
  out.put(grid.iIndex);
  out.put(grid.iBoxOrigin);
  out.put(static_cast<std::uint8_t>((grid.qRelativeToMap ? 1 : 0) + (grid.dMapAxes ? 2 : 0)));
  out.put(grid.dMapAxes.value_or(std::array<double, 6>{}));
}

void getFacts(CacheReader& in, Hadrick& grid) {
  for (auto* text : {&grid.zName, &grid.zParent, &grid.zGridUnit, &grid.zMapUnit}) *text = in.text();
  for (auto* number :
       {&grid.iParent, &grid.iLocalNumber, &grid.iGridType, &grid.iDualPorosity, &grid.nTheta}) {
    *number = in.get<std::int32_t>();
  }
  grid.iIndex = in.get<std::array<std::int32_t, 12>>();
  grid.iBoxOrigin = in.get<std::array<std::int32_t, 3>>();
  const auto flags = in.get<std::uint8_t>();
  grid.qRelativeToMap = (flags & 1) != 0;
  const auto axes = in.get<std::array<double, 6>>();
  if ((flags & 2) != 0) grid.dMapAxes = axes;
}

void putGrid(CacheWriter& out, const Hadrick& grid) {
  putFacts(out, grid);
  for (const auto size : {grid.Nx(), grid.Ny(), grid.Nz()}) out.put(size);
  out.put(static_cast<std::uint8_t>(grid.compressed()));
  out.array(grid.activeNumbers());
  out.array(grid.coord());
  out.array(grid.reservoirs());
  out.array(grid.zcorn());
  out.array(grid.cellRows());
  out.array(grid.hostCells());
  out.array(grid.coarseBlocks());
  std::vector<std::int32_t> words;
  for (const auto& c : grid.connections()) {
    words.insert(words.end(), {static_cast<std::int32_t>(c.kind), c.iGrid1, c.iCell1, c.iGrid2, c.iCell2});
  }
  out.array(std::span<const std::int32_t>(words));
}

std::shared_ptr<Hadrick> getGrid(CacheReader& in, Session& session) {
  auto grid = std::make_shared<Hadrick>(session);
  getFacts(in, *grid);
  const auto sizes = in.get<std::array<std::int32_t, 3>>();
  grid->setSize(sizes[0], sizes[1], sizes[2]);
  const bool compressed = in.get<std::uint8_t>() != 0;
  grid->setActive(in.array<std::int32_t>());
  auto coord = in.array<float>();
  auto ranges = in.array<std::array<std::int32_t, 2>>();
  auto zcorn = in.rows(8, session);
  auto rows = in.rows(Hadrick::rowItems, session);
  if (!coord.empty()) {
    grid->setPillars(std::move(coord), std::move(ranges));
    grid->setDepths(std::move(zcorn), compressed);
  } else {
    grid->setCellRows(std::move(rows), compressed);
  }
  auto hosts = in.array<std::int32_t>();
  if (!hosts.empty()) grid->setHostCells(std::move(hosts));
  auto blocks = in.array<CoarseBlock>();
  if (!blocks.empty()) grid->setCoarse(std::move(blocks));
  const auto words = in.array<std::int32_t>();
  for (std::size_t n = 0; n + 4 < words.size(); n += 5) {
    grid->addConnection({static_cast<GridConnection::Kind>(words[n]), words[n + 1], words[n + 2],
                         words[n + 3], words[n + 4]});
  }
  return grid;
}

}  // namespace

/// What a cache must agree with: the first bytes of the cache file.
struct GridCache::Source {
  std::array<char, 8> name = magic;
  std::uint32_t order = byteOrder;
  std::uint32_t layout = version;
  std::uint64_t options = 0;
  std::uint64_t size = 0;
  std::int64_t time = 0;
  std::uint64_t sum = 0;

  bool operator==(const Source&) const = default;
};

GridCache::GridCache(std::string path, const qvGRIDReader& reader, Session& session)
    : path_(std::move(path)),
      reader_(&reader),
      session_(&session),
      made_(stampOf(reader.FileName).value_or(FileStamp{})) {}

GridCache::Source GridCache::source(FileStamp& stamp) const {
  Source facts;
  std::string error;
  const auto file = FileSource::open(reader_->FileName, error);
  if (!file) return facts;  // which no cache agrees with
  facts.options =
      (reader_->CompressOnLoad ? 1U : 0U) + (reader_->NoInactive ? 2U : 0U) + (reader_->Coarsened ? 4U : 0U);
  facts.size = file->size();
  stamp = file->stamp().value_or(FileStamp{});
  facts.time = stamp.modified;
  facts.sum = sumOf(*file, facts.size).value_or(0);
  return facts;
}

/// The cache or the grid file cannot be read, which is worth more than a remark.
bool GridCache::refuse(Diagnosis failure) const {
  if (failure.path.empty()) failure.path = path_;
  failure.action = "used no grid cache";
  session_->diagnose(std::move(failure));
  return false;
}

bool GridCache::refuse(std::string_view problem, std::string_view found) const {
  session_->diagnose(Diagnosis{.message = Message::GridCacheUnused,
                               .path = path_,
                               .problem = std::string(problem),
                               .found = std::string(found),
                               .action = "read the grid file itself"});
  return false;
}

/// The cache file, when it is complete and matches the grid file; otherwise null.
std::unique_ptr<const ByteSource> GridCache::open(std::uint64_t& end) const {
  std::string error;
  std::error_code unknown;
  if (path_.empty() ||
      std::filesystem::status(path_, unknown).type() == std::filesystem::file_type::not_found)
    return nullptr;
  std::unique_ptr<const ByteSource> file = FileSource::open(path_, error);
  if (!file) {
    refuse("grid cache cannot be read", error);
    return nullptr;
  }
  try {
    return matching(std::move(file), end);
  } catch (const BadRecord& failure) {
    refuse(failure.diagnosis());
    return nullptr;
  }
}

std::unique_ptr<const ByteSource> GridCache::matching(std::unique_ptr<const ByteSource> file,
                                                      std::uint64_t& end) const {
  Source found;
  std::uint64_t sum = 0;
  const auto foundBytes = std::as_writable_bytes(std::span(&found, 1));
  end = file->size() < sizeof sum ? 0 : file->size() - sizeof sum;
  const bool read = end >= foundBytes.size() && file->readAt(0, foundBytes) == foundBytes.size() &&
                    file->readAt(end, std::as_writable_bytes(std::span(&sum, 1))) == sizeof sum;
  if (!read || found.name != magic) {
    refuse("file is no grid cache");
  } else if (FileStamp now; !(found == source(now))) {
    refuse("grid cache is not that of the file and the options");
  } else if (sumOf(*file, end) != sum) {
    refuse("grid cache is damaged");
  } else {
    return file;
  }
  return nullptr;
}

bool GridCache::usable() const {
  std::uint64_t end = 0;
  return open(end) != nullptr;
}

bool GridCache::load(std::vector<std::shared_ptr<Hadrick>>& grids) const {
  std::uint64_t end = 0;
  const auto file = open(end);
  if (!file) return false;
  std::vector<std::shared_ptr<Hadrick>> found;
  try {
    CacheReader in(*file, end);
    in.get<Source>();
    const auto count = in.get<std::uint64_t>();
    for (std::uint64_t n = 0; n < count; ++n) {
      found.push_back(getGrid(in, *session_));
      found.back()->zFile = reader_->FileName;
      found.back()->zFolder = reader_->HPGFolder;
      found.back()->byteSwap = reader_->byteSwap;
    }
  } catch (const BadRecord& failure) {
    return refuse(failure.diagnosis());
  } catch (const std::exception& fault) {
    return refuse("grid cache does not hold what it should", fault.what());
  }
  if (found.empty()) return refuse("grid cache is empty");
  grids = std::move(found);
  return true;
}

/// The cache appears when it is complete, so that no other process ever sees a part of it.
bool GridCache::save(const std::vector<std::shared_ptr<Hadrick>>& grids) const {
  try {
    PendingFile file(path_);
    CacheWriter out(file.out());
    FileStamp now;
    const Source facts = source(now);
    out.put(facts);
    out.put(static_cast<std::uint64_t>(grids.size()));
    for (const auto& grid : grids) putGrid(out, *grid);
    if (!out.finish()) file.fail(out.written());
    if (now != made_) {
      throw BadRecord({.message = Message::GridCacheNotKept,
                       .path = reader_->FileName,
                       .problem = "grid file has changed while it was read"});
    }
    file.commit();
    return true;
  } catch (BadRecord& failure) {
    Diagnosis& diagnosis = failure.diagnosis();
    diagnosis.message = Message::GridCacheNotKept;
    diagnosis.action = "kept no cache";
    session_->diagnose(diagnosis);
    return false;
  }
}

}  // namespace lumbarn
