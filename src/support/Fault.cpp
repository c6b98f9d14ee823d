#include "Fault.h"

namespace lumbarn {

Fault::~Fault() = default;

const char* faultText(FaultNumber number) {
  switch (number) {
    case FaultNumber::InvalidCall:
      return "Invalid call";
    case FaultNumber::Overflow:
      return "Overflow";
    case FaultNumber::OutOfMemory:
      return "Out of memory";
    case FaultNumber::Subscript:
      return "Subscript out of range";
    case FaultNumber::DivisionByZero:
      return "Division by zero";
    case FaultNumber::TypeMismatch:
      return "Type mismatch";
    case FaultNumber::FileNotFound:
      return "File not found";
    case FaultNumber::PastEnd:
      return "Input past end of file";
  }
  return "Unknown fault";
}

}  // namespace lumbarn
