#pragma once

#include "../support/Export.h"
#include "Form.h"

namespace lumbarn {

/// The form of a file as hosts know it. Readers of record files have these among their members.
struct LUMBARN_API FormFlags {
  bool Formatted = false;  ///< text lines
  bool UNIX = true;        ///< 4-byte marks; False: 1-byte marks. Without meaning when Formatted
  bool FORTRAN = true;     ///< records have marks; False for raw scratch files
  bool byteSwap = true;    ///< byte order differs from the machine's. Without meaning when Formatted

  /// The flags as one value, and back; UNIX and byteSwap stay as they were for a formatted file.
  Form form() const;
  void setForm(const Form& form);
  /// Takes the flags of another object over.
  void setFlags(const FormFlags& flags) { *this = flags; }
};

}  // namespace lumbarn
