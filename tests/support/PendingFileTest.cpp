#include <gtest/gtest.h>

#include "Forms.h"
#include "TemporaryFolder.h"
#include "support/Diagnosis.h"
#include "support/PendingFile.h"

namespace lumbarn {
namespace {

namespace fs = std::filesystem;

/// The problem that a use of the file reports; empty when it succeeds.
template <class Use>
std::string problemOf(const std::string& target, Use use) {
  try {
    PendingFile file(target);
    use(file);
    return {};
  } catch (const BadRecord& failure) {
    EXPECT_EQ(failure.diagnosis().path, target);
    return failure.diagnosis().problem;
  }
}

TEST(PendingFile, FailuresLeaveTheFolderAsItWas) {
  const test::TemporaryFolder folder;
  const auto target = folder.file("out"), other = folder.file("other"), link = folder.file("link");
  const auto bytes = test::bytesOf("new");
  test::writeFile(other, bytes);
  fs::create_symlink(other, link);
  fs::create_directory(folder.file("folder"));
  const auto nothing = [](auto&) {};
  EXPECT_EQ(problemOf(folder.file("folder"), nothing), "cannot be written: is a folder");
  EXPECT_EQ(problemOf(target, [&](auto&) { PendingFile(target).out(); }), "") << "names are random";
  EXPECT_EQ(problemOf("/dev/null", nothing), "cannot be written: is not a regular file");
  EXPECT_EQ(problemOf(folder.file("none/out"), nothing), "cannot be written: No such file or directory");
  // Writing to a closed file fails as writing to a full disk does.
  EXPECT_EQ(problemOf(target,
                      [&](auto& file) {
                        file.out().close();
                        EXPECT_FALSE(file.out().write(bytes));
                        file.fail(7);
                      }),
            "cannot be written: Bad file descriptor");
  EXPECT_EQ(problemOf(target,
                      [&](auto& file) {
                        EXPECT_TRUE(file.out().write(bytes));
                        fs::create_directory(target);
                        file.commit();
                      }),
            "cannot be written: Is a directory");
  fs::remove(target);
  std::string why;
  for (const auto& taken : {other, link}) {
    EXPECT_FALSE(OutputFile::createNew(taken, why).isOpen()) << "not even through a link";
    EXPECT_EQ(why, "File exists");
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.file("")), fs::directory_iterator()), 3);

  EXPECT_EQ(problemOf(link, [&](auto& file) { file.commit(); }), "");
  EXPECT_TRUE(fs::is_symlink(link) && fs::file_size(other) == 0) << "what a link points to is replaced";
}

}  // namespace
}  // namespace lumbarn
