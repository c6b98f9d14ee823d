#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "../support/Export.h"
#include "../support/Session.h"

namespace lumbarn {

/// The name of the file of kind zKind ("SUMMARY", "RESTART" or "SOLUTION", "SAVE", "STREAMLINE") beside
/// zFile, in the case and the generation (long or short extensions) of zFile's extension; long when that is
/// none of a set's. qUnified True gives the unified file; False gives the multiple file of zFile's own step,
/// or of step 0 when zFile is not a multiple file. The disk is not looked at. Both texts are empty for a kind
/// that has no such file.
struct SetFileName {
  std::string extension;
  std::string name;
};
LUMBARN_API SetFileName fileNameOfKind(std::string_view zFile, std::string_view zKind, bool qUnified,
                                       bool qFormatted);
/// Calling form of the same. qOK False for a kind that has no such file.
LUMBARN_API void setEclipseFileName(std::string_view zFile, std::string_view zKind, std::string& zExtension,
                                    bool qUnified, bool qFormatted, std::string& zName, bool& qOK);

/// The search for multiple files: the files of the set that zFile belongs to or describes, with zFile's
/// folder in front, in order of step, cut to iStart..iEnd by `GetFileListUsingStartAndEnd` unless both are
/// -1. None leaves nFiles at 0. qOK False only when the folder cannot be listed; a diagnosis then says why.
///
/// A multiple file stands for its own set whatever zKind says. Another file stands for the set of its
/// extension when that is of kind zKind; a restart index tells no form, and a file of another kind names only
/// the run, so unformatted and formatted sets are looked for, the form of zFile first. Names match without
/// regard to case, but files that spell the base name as zFile does come before all others, and of two files
/// of one step that differ in the case of their extensions only the one in zFile's case is taken. qUnified
/// True looks for nothing. The folder is read once.
LUMBARN_API void GetFileNamesToLoad(std::string_view zFile, std::int32_t iStart, std::int32_t iEnd,
                                    bool qUnified, std::string_view zKind, std::int32_t& nFiles,
                                    std::vector<std::string>& zFiles, bool& qOK,
                                    Session& session = Session::process());

/// Cuts a list of multiple files in order of step to the steps iStart..iEnd. An iEnd below 0 is iStart, and a
/// reversed range is turned round. Nothing happens with an empty list, an iStart below 0 or a unified set. A
/// step that is missing stands for the next one that is there, also at the end of the range. An end behind
/// the last file leaves the first file alone; a start behind it leaves nFiles 0 and one empty entry. The list
/// itself tells its extensions and form; qFormatted and zExtension are taken for the sake of the callers.
LUMBARN_API void GetFileListUsingStartAndEnd(std::int32_t iStart, std::int32_t iEnd, bool qFormatted,
                                             bool qUnified, std::string_view zExtension, std::int32_t& nFiles,
                                             std::vector<std::string>& zFiles, bool& qOK);

/// Limits of the steps to use of a unified set, -1 for an open one.
struct StepLimits {
  std::int32_t first = -1;
  std::int32_t last = -1;

  bool before(std::int32_t step) const { return first >= 0 && step < first; }
  bool past(std::int32_t step) const { return !before(step) && last >= 0 && step > last; }
  bool contain(std::int32_t step) const { return !before(step) && !past(step); }
  /// Once `step` is used there are no more.
  bool endAt(std::int32_t step) const { return last >= 0 && step >= last; }
};
/// What the limits that a host gives mean for a kind of file.
LUMBARN_API StepLimits stepLimits(std::string_view zKind, std::int32_t iStart, std::int32_t iEnd);

/// Calling forms of the same. Of a multiple set all steps are used, as the list of files does the work, and
/// the limits stay as they are.
LUMBARN_API void setEclipseSequenceLimits(std::string_view zKind, bool qUnified, std::int32_t iStart,
                                          std::int32_t iEnd, std::int32_t& iFirst, std::int32_t& iLast,
                                          bool& qOK);
LUMBARN_API void checkSequence(bool qUnified, std::int32_t iStep, std::int32_t iFirst, std::int32_t iLast,
                               bool& qUse, bool& qPast, bool& qOK);
LUMBARN_API void checkForExit(bool qUnified, std::int32_t iStep, std::int32_t iLast, bool& qExit, bool& qOK);

/// Shared loop test after an operation that answered qOK and left qMore data: True when the loop is to end,
/// qResult then being its result. That is True when there was no more data, False otherwise; as long as qOK
/// is True nothing changes.
LUMBARN_API bool checkExit(bool qOK, bool qMore, bool& qResult);

/// The type word of a type number: 1 and 2 "INTE", 3 "REAL", 4 "DOUB", 5 "CHAR", 6 "LOGI"; others the empty
/// text.
LUMBARN_API std::string TypeStringFromNum(std::int32_t iType);

}  // namespace lumbarn
