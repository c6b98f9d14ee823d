#pragma once

#include <array>
#include <cstdint>
#include <memory_resource>
#include <optional>
#include <string>
#include <string_view>

#include "../support/Dates.h"
#include "../support/Export.h"
#include "../vocabulary/TestUnits.h"

namespace lumbarn {

/// Texts of one width in one block, as a record holds them. Texts count from 1.
struct LUMBARN_API TextArray {
  std::pmr::string bytes;
  std::size_t width = 8;

  std::size_t size() const { return width == 0 ? 0 : bytes.size() / width; }
  /// Trimmed. Throws Fault 9 for a text that is not there.
  std::string_view at(std::size_t i) const;
  std::string_view at(WelletcText position) const { return at(static_cast<std::size_t>(position)); }
  /// Trimmed; empty for a text that is not there.
  std::string_view textOf(WelletcText position) const;
};

/// Unit of an array or column of a well test by its name, from the texts of WELLETC; empty for one without.
LUMBARN_API std::string unitOf(std::string_view name, const TextArray& welletc);

/// "STANDARD", "FRICTION" or "MULTISEG" from the text of WELLETC, in any case; "STANDARD" for any other.
LUMBARN_API std::string_view getWellType(std::string_view zText);

/// The records TIME, DATE and WELLETC of a well test.
struct LUMBARN_API TestHeader {
  explicit TestHeader(std::pmr::memory_resource* memory = std::pmr::get_default_resource())
      : welletc{std::pmr::string(memory)} {}

  std::uint64_t beginsAt = 0;                       ///< byte offset of the test's first record
  float time = 0;                                   ///< in the unit in WELLETC
  std::optional<std::array<std::int32_t, 3>> date;  ///< day, month, year as the file has them
  TextArray welletc;
  bool named = false;  ///< WELLETC was read to its end

  std::string_view well() const { return welletc.textOf(WelletcText::Well); }
  std::string_view grid() const { return welletc.textOf(WelletcText::Grid); }  ///< empty for the main grid
  std::string_view wellType() const { return getWellType(welletc.textOf(WelletcText::WellType)); }
  /// TIME in days: laboratory runs have hours.
  double days() const;
  /// The day of DATE with the time of day that TIME has beyond complete days, so for runs that begin at
  /// midnight. Nothing when DATE is missing or not a valid day.
  std::optional<Moment> moment() const;
  /// "15 JUL 2003"; empty without a date. An invalid month has no name; negative years count as 0.
  std::string dateText() const;
};

}  // namespace lumbarn
