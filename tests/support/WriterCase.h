#pragma once

#include <ostream>
#include <vector>

#include "Forms.h"
#include "Writer.h"

namespace lumbarn::test {

/// A run of one writer in one form on disk.
struct WriterCase {
  Writer writer;
  NamedForm form;
};

inline void PrintTo(const WriterCase& one, std::ostream* out) {
  *out << one.writer.name << ' ' << one.form.name;
}

/// Every writer in every form.
inline std::vector<WriterCase> everyCase() {
  std::vector<WriterCase> all;
  for (const Writer& writer : everyWriter) {
    for (const NamedForm& form : everyForm) all.push_back({writer, form});
  }
  return all;
}

}  // namespace lumbarn::test
