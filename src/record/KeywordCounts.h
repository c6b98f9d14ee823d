#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "../support/Export.h"

namespace lumbarn {

/// The letters of a keyword as one number, whose order means nothing. Never 0: what is left of the letters is
/// filled with blanks, which no keyword has at its end.
constexpr std::uint64_t keywordKey(std::string_view keyword) {
  std::array<char, 8> letters;
  letters.fill(' ');
  std::copy_n(keyword.begin(), std::min(keyword.size(), letters.size()), letters.begin());
  return std::bit_cast<std::uint64_t>(letters);
}

/// How often each keyword of a file has been met. Keywords have eight letters at most, so each is one number
/// and the table is flat: it is asked once for every record, and in files of many small records that counts.
class LUMBARN_API KeywordCounts {
 public:
  /// The count of a keyword by its key, 0 for a new one. Holds until the next call.
  std::int64_t& operator[](std::uint64_t key);

 private:
  struct Entry {
    std::uint64_t key = 0;  // the letters; 0: free
    std::int64_t count = 0;
  };
  static std::size_t placeOf(const std::vector<Entry>& entries, std::uint64_t key);
  void grow();

  std::vector<Entry> entries_;  // a power of two of them, at most half in use
  std::size_t used_ = 0;
};

}  // namespace lumbarn
