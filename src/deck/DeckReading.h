#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Export.h"
#include "../support/Session.h"
#include "DeckLines.h"

namespace lumbarn {

/// How the data of keywords are read from an open deck, for hosts. Keeps nothing but the section, which a
/// look at the next keyword may move. The routines are named as in fault reports, where their class is the
/// one that derives from this.
class LUMBARN_API DeckReading {
 public:
  explicit DeckReading(Session& session = Session::process()) : session_(&session) {}
  virtual ~DeckReading() = default;

  /// The lines of a keyword up to and including the one with the "/" that ends its record, or with an empty
  /// zTerminator up to the next keyword, where the deck stays in front of that. One string for each record
  /// when at least one is closed. qOK False, with the lines read so far, when the file ends first or the load
  /// is canceled.
  ///
  /// Deliberate: a word of the dictionary at the beginning of a line of data ends them, and a word that is
  /// not in the dictionary is data. A comment behind values is gone before anything is looked for in a line.
  void readKeywordArguments(DeckLines& deck, std::vector<std::string>& zLines, std::int32_t& iLines,
                            bool& qOK, std::string_view zTerminator, bool qUpper);
  /// The same for a record that has a name of a file: outside quotes, "/" ends it only in front of a blank
  /// or at the end of the line. In the case in which the deck has it.
  void readFileNameArguments(DeckLines& deck, std::vector<std::string>& zLines, std::int32_t& iLines,
                             bool& qOK);
  /// The same in upper case, but that lines stay apart: with qJoin, the text of a record of several lines
  /// goes into the slot of the first and the others become empty.
  void ReadMultiLineKeywordArguments(DeckLines& deck, std::vector<std::string>& zLines, std::int32_t& iLines,
                                     bool& qOK, std::string_view zTerminator, bool qJoin);

  /// Reads at most iCount values, up to "/". Afterwards iCount is the number of values that the deck
  /// contains; missing values count as 0. Memory is allocated for values that were read, not for iCount. qOK
  /// is False, and the values read so far are kept, if the file ends first, the load is canceled, or a fault
  /// was reported (too many values, or in an integer array a repeat count without a value).
  ///
  /// Deliberate: only blanks divide and no comment is removed, so that a tab hides the value behind it and
  /// the words of a comment are zeros. Each line of which that changes a value is reported.
  void readEclipseSingleArray(DeckLines& deck, std::int32_t& iCount, std::vector<float>& sArray, bool& qOK);
  void readEclipseDoubleArray(DeckLines& deck, std::int32_t& iCount, std::vector<double>& dArray, bool& qOK);
  void readEclipseLongArray(DeckLines& deck, std::int32_t& iCount, std::vector<std::int32_t>& lArray,
                            bool& qOK);

  /// The arguments of one record, through all its lines.
  void getArgumentList(DeckLines& deck, std::vector<std::string>& vArgs, std::int32_t& iArgs, bool& qOK,
                       bool qUpper);
  /// The same in upper case, laid over the defaults of the keyword.
  void ArgumentList(DeckLines& deck, std::string_view zKeyword, std::vector<std::string>& zMerged,
                    std::int32_t& iMerged, bool& qOK);

  std::int32_t iSection = 0;  ///< the section of the deck that is being read; 0 before the first

 protected:
  /// Takes each line that belongs to the data of a keyword, as it stands in the file.
  virtual void captureLine(std::string_view zLine) { (void)zLine; }
  /// The class in fault reports.
  virtual const char* className() const { return "qvEclipseDat"; }

  Session& session() const { return *session_; }

 private:
  /// Which "/" ends a record: one that ends a line once what is behind it is gone, any in the line, or one
  /// that is not part of a name.
  enum class Slashes { AtEnd, Anywhere, BehindWords };
  struct Request {
    std::string_view terminator;
    bool upper = true;
    Slashes slashes = Slashes::AtEnd;
  };
  bool readLines(DeckLines& deck, const Request& request, std::vector<std::string>& lines);
  bool takesLine(DeckLines& deck, const Request& request, std::vector<std::string>& lines, bool& last);
  void reportUnknown(const DeckLines& deck, const std::string& word);
  void reportChanged(const DeckLines& deck, std::string_view word);
  template <class T>
  bool readArray(DeckLines& deck, std::int32_t count, std::vector<T>& array);
  bool argumentsOf(DeckLines& deck, bool upper, std::vector<std::string>& arguments);

  Session* session_;
};

}  // namespace lumbarn
