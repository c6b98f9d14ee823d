#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "../record/ByteSource.h"
#include "../support/Export.h"

namespace lumbarn {

/// One file of a deck, as one INCLUDE names it: a file that is included twice is two.
struct LUMBARN_API DeckFile {
  enum class State : std::uint8_t {
    Read,
    Missing,     ///< cannot be opened; `why` says why
    Cycle,       ///< includes itself, on this way
    NotReached,  ///< the deck ended before
  };
  std::string path;  ///< as it was opened
  std::string name;  ///< as the deck has it
  State state = State::NotReached;
  std::string why;
  std::int32_t parent = -1;  ///< the file that names it; -1 for the deck itself
  std::int64_t parentLine = 0;
  std::int32_t depth = 0;
  std::uint64_t size = 0;
  std::int64_t lines = 0;  ///< as far as it was read
};

/// How the file that an INCLUDE names was found.
struct LUMBARN_API FoundFile {
  std::string path;
  bool exists = false;
  bool otherCase = false;    ///< by its name in another letter case
  bool otherFolder = false;  ///< next to the including file, not in the deck's folder
  bool unknownAlias = false;
};

/// The files of one deck, and where names in it lead.
class LUMBARN_API DeckFiles {
 public:
  std::uint32_t add(DeckFile file);
  DeckFile& operator[](std::uint32_t file) { return files_[file]; }
  const DeckFile& operator[](std::uint32_t file) const { return files_[file]; }
  std::size_t size() const { return files_.size(); }
  const std::vector<DeckFile>& all() const { return files_; }

  /// The bytes of a file. Throws BadRecord when it cannot be opened. A deck in memory is kept.
  std::shared_ptr<const ByteSource> open(std::uint32_t file) const;
  void keep(std::shared_ptr<const ByteSource> source) { kept_ = std::move(source); }

  /// One record of PATHS.
  void setAlias(std::string_view alias, std::string_view path);
  /// Where the name of an INCLUDE leads: "$ALIAS" in front is replaced, "\" divides like "/", a relative name
  /// counts from the deck's folder.
  FoundFile find(std::string_view name, std::uint32_t includer) const;
  /// Whether a file is among those that are being read down to an includer.
  bool isOpen(const std::string& path, std::uint32_t includer) const;

 private:
  std::vector<DeckFile> files_;
  std::map<std::string, std::string, std::less<>> aliases_;
  std::shared_ptr<const ByteSource> kept_;
};

}  // namespace lumbarn
