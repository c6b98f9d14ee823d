#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace lumbarn::bench {

/// One figure: the time of `body` as a ratio to that of `baseline`, and the memory that one run of it takes.
struct Case {
  std::string name;
  std::string against;         ///< what the baseline is, for the table
  double goal = 0;             ///< the ratio should be at most this; 0 without a goal
  double least = 0;            ///< and at least this
  double memoryGoal = 0;       ///< peak memory in bytes above an idle process; 0 without a goal
  std::function<void()> body;  ///< throws std::runtime_error when what it read is not what was written
  std::function<void()> baseline;
};

/// The cases on one kind of file. All their names begin with the family's name and a slash.
struct Family {
  std::string name;
  std::function<void()> writeFiles;  ///< makes the files that the cases read, unless they are there
  std::vector<Case> cases;
};
Family recordFamily(const std::filesystem::path& folder);
Family summaryFamily(const std::filesystem::path& folder);
Family wellTestFamily(const std::filesystem::path& folder);
Family gridFamily(const std::filesystem::path& folder);
Family gridGeometryFamily();
Family restartFamily(const std::filesystem::path& folder);
Family indexFamily(const std::filesystem::path& folder);
Family initFamily(const std::filesystem::path& folder);
Family deckFamily(const std::filesystem::path& folder);

/// Throws unless a case did what it was to do.
void require(bool condition, const std::string& what);

}  // namespace lumbarn::bench
