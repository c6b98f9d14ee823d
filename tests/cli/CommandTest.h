#pragma once

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CommandRun.h"
#include "support/Forms.h"
#include "support/TemporaryFolder.h"
#include "support/Text.h"

namespace lumbarn::cli::testing {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Rows = std::vector<std::vector<std::string>>;

/// A test of the command with a folder of its own. In a command line "@" begins a path of the samples, "~" a
/// path of the folder.
class CommandTest : public ::testing::Test {
 protected:
  Outcome run(const std::string& line) const {
    auto args = words(line);
    for (std::string& arg : args) {
      if (arg[0] == '@') arg = sample(arg.substr(1));
      if (arg[0] == '~') arg = file(arg.substr(1));
    }
    return command(args);
  }
  Rows csv(const std::string& line) const { return parseCsv(run(line + " --format csv").out); }
  nlohmann::json json(const std::string& line) const {
    return nlohmann::json::parse(run(line + " --format json").out);
  }
  std::string file(const std::string& name) const { return folder_.file(name); }
  void write(const std::string& name, std::span<const std::byte> bytes) const {
    test::writeFile(file(name), bytes);
  }
  /// Copies a sample, or the first bytes of it.
  void copy(const std::string& from, const std::string& name, std::size_t size = std::string::npos) const {
    store(file(name), content(sample(from)).substr(0, size));
  }
  std::ptrdiff_t fileCount() const {
    return std::distance(std::filesystem::directory_iterator(file("")), {});
  }

  const test::TemporaryFolder folder_;
};

}  // namespace lumbarn::cli::testing
