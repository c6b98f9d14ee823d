#pragma once

#include <stdexcept>
#include <string>

#include "Export.h"

namespace lumbarn {

/// Numbers of the run-time faults that this system knows, as hosts see them in fault reports.
enum class FaultNumber : int {
  InvalidCall = 5,
  Overflow = 6,
  OutOfMemory = 7,
  Subscript = 9,
  DivisionByZero = 11,
  TypeMismatch = 13,
  FileNotFound = 53,
  PastEnd = 62,
};

/// The text that goes with a fault number; "Unknown fault" for numbers that are none of the above.
LUMBARN_API const char* faultText(FaultNumber number);

/// A run-time fault. It ends the routine that it passes through; `guarded` turns it into the one report text.
class LUMBARN_API Fault : public std::runtime_error {
 public:
  explicit Fault(FaultNumber number) : std::runtime_error(faultText(number)), number_(number) {}
  Fault(FaultNumber number, const std::string& text) : std::runtime_error(text), number_(number) {}
  ~Fault() override;
  FaultNumber number() const { return number_; }

 private:
  FaultNumber number_;
};

}  // namespace lumbarn
