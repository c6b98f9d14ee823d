#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "../support/Diagnosis.h"
#include "../support/Export.h"

namespace lumbarn {

/// The one exception type that leaves frames and runs. what() is the complete text of the diagnosis.
class LUMBARN_API Error : public std::runtime_error {
 public:
  enum class Kind : std::uint8_t {
    NotFound,    ///< no such file, column, vector, array or step; `candidates` has similar names
    BadRequest,  ///< the question contradicts itself or the type of a column
    Damaged,     ///< the file is damaged from here on; what is before it was delivered
    System,      ///< the system failed to read or write
    Memory,      ///< more memory than there is, or than the host allows
    Cancelled,   ///< a stop was requested
  };

  Error(Kind kind, Diagnosis diagnosis, std::vector<std::string> candidates = {});
  ~Error() override;

  Kind kind() const noexcept { return kind_; }
  const Diagnosis& diagnosis() const noexcept { return diagnosis_; }
  /// Names similar to one that was not found, or the runs among which a folder leaves the choice.
  std::span<const std::string> candidates() const noexcept { return candidates_; }

 private:
  Kind kind_;
  Diagnosis diagnosis_;
  std::vector<std::string> candidates_;
};

/// The exception in flight as an Error: damage, faults, lack of memory and cancelled loads each have their
/// kind.
LUMBARN_API Error errorInFlight();

}  // namespace lumbarn
