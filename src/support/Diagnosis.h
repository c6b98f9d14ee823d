#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include "Export.h"
#include "Messages.h"

namespace lumbarn {

/// How sure the reader is that what it delivered in spite of an irregularity is right.
enum class Certainty {
  Certain,  ///< what was delivered is right; only what is told is missing
  Likely,   ///< the usual reading of such a file
  Guess,    ///< one of several possible readings
};

/// Why something was not read as asked, as data. The inner layer states the fact (offset, expected, found),
/// each outer layer adds its coordinate once (keyword and occurrence, path, what was done).
struct LUMBARN_API Diagnosis {
  NamedMessage message;  ///< the row of the table in Messages.h: identifier and severity
  std::string path;      ///< the file
  std::string problem;   ///< what is wrong, in a few words: "record truncated"; the row's text if empty
  std::string keyword;   ///< keyword of the record, empty when there is none
  std::int64_t occurrence = 0;          ///< which record of that keyword, from 1; 0 when not known
  std::optional<std::uint64_t> offset;  ///< byte offset in the file, from 0
  std::int64_t line = 0;                ///< of a text file, from 1; 0 when not known
  std::string expected;                 ///< what should stand there
  std::string found;                    ///< what stands there
  std::string action;                   ///< what was done: "kept 12 steps", "stopped"
  Certainty certainty = Certainty::Certain;
  bool cutOff = false;  ///< the file ends before the record does, as a running simulation leaves it

  std::string_view id() const { return rowOf(message).id; }
  Severity severity() const { return rowOf(message).severity; }
  /// What is wrong: the problem, or the text of the row.
  std::string_view what() const { return problem.empty() ? rowOf(message).text : std::string_view(problem); }

  /// One line: `PATH: problem (KEYWORD, occurrence N, byte B: expected X, found Y); action`.
  std::string text() const;
};

/// Thrown by the record layer when a file cannot be read on; carries the fact for whoever catches it.
/// what() is only the problem; diagnosis().text() is the complete message.
class LUMBARN_API BadRecord : public std::runtime_error {
 public:
  explicit BadRecord(Diagnosis diagnosis)
      : std::runtime_error(std::string(diagnosis.what())), diagnosis_(std::move(diagnosis)) {}
  ~BadRecord() override;
  const Diagnosis& diagnosis() const { return diagnosis_; }
  Diagnosis& diagnosis() { return diagnosis_; }

 private:
  Diagnosis diagnosis_;
};

}  // namespace lumbarn
