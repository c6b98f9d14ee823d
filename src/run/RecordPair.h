#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "../record/RecordCursor.h"

namespace lumbarn {

class Session;

/// An element in which two records differ. Texts have no numbers.
struct ElementPair {
  std::int64_t element = 0;  ///< from 0
  bool numbers = true;
  bool single = false;  ///< the numbers are singles
  double a = 0;
  double b = 0;
  std::string textA, textB;
};

/// Whether two records have data of one type and count.
bool sameShape(const RecordHeader& a, const RecordHeader& b);

/// Reads the data of the current records of two files, which are of the same shape, and calls `visit` for
/// each pair of elements that is not equal bit by bit; logicals are equal when both are true. Numbers that
/// are none on both sides are equal. Throws BadRecord for damage, LoadCanceled.
void visitUnequal(RecordCursor& a, RecordCursor& b, Session& session,
                  const std::function<void(const ElementPair&)>& visit);

}  // namespace lumbarn
