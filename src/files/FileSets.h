#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lumbarn {

/// The name of the unified file of kind zKind ("SUMMARY", "RESTART" or "SOLUTION", "SAVE", "STREAMLINE")
/// beside zFile, in the case and the generation (long or short extensions) of zFile's extension. zExtension
/// takes the extension.
void setEclipseFileName(std::string_view zFile, std::string_view zKind, std::string& zExtension,
                        bool qUnified, bool qFormatted, std::string& zName, bool& qOK);

/// The search for multiple files: the files of the set that zFile belongs to or describes, full paths, in
/// order of step, cut to iStart..iEnd (-1: open). None leaves nFiles at 0. qOK False only when the folder
/// cannot be listed.
void GetFileNamesToLoad(std::string_view zFile, std::int32_t iStart, std::int32_t iEnd, bool qUnified,
                        std::string_view zKind, std::int32_t& nFiles, std::vector<std::string>& zFiles,
                        bool& qOK);

/// Step limits to use in a record loop over a unified set.
void setEclipseSequenceLimits(std::string_view zKind, bool qUnified, std::int32_t iStart, std::int32_t iEnd,
                              std::int32_t& iFirst, std::int32_t& iLast, bool& qOK);
/// Test of one step against the limits.
void checkSequence(bool qUnified, std::int32_t iStep, std::int32_t iFirst, std::int32_t iLast, bool& qUse,
                   bool& qPast, bool& qOK);

}  // namespace lumbarn
