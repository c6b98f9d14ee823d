#include "UserTestText.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "../record/LineReader.h"
#include "../support/Text.h"

namespace lumbarn {

namespace {

std::shared_ptr<const ByteSource> front(const ByteSource& source) {
  constexpr std::uint64_t textLookedAt = 16384;
  std::vector<std::byte> bytes(static_cast<std::size_t>(std::min(textLookedAt, source.size())));
  bytes.resize(source.readAt(0, bytes));
  return std::make_shared<MemorySource>(std::move(bytes));
}

bool isFlowColumn(std::string_view name) {
  return name.starts_with("CON") || name.find("RAT") != name.npos || name.find("FLOW") != name.npos;
}

bool isReservoirColumn(std::string_view name) {
  return name.find("PRES") != name.npos || name == "SWAT" || name == "SGAS" || name == "SOIL";
}

/// From the names of columns above a row of so many numbers, which begins at an offset.
std::optional<UserTestText> byColumns(const std::vector<std::string>& names, std::size_t numbers,
                                      std::uint64_t offset) {
  if (names.size() > numbers || std::ranges::none_of(names, isDepthColumn)) return std::nullopt;
  if (std::ranges::any_of(names, isFlowColumn)) return UserTestText{UserTestKind::Plt, false, offset};
  if (std::ranges::any_of(names, isReservoirColumn)) return UserTestText{UserTestKind::Rft, false, offset};
  return std::nullopt;
}

}  // namespace

std::optional<UserTestText> recogniseUserTest(const ByteSource& source) {
  constexpr std::size_t headerLines = 2;  // names and units
  LineReader reader(front(source), "");
  std::vector<std::string> remark;
  std::vector<std::vector<std::string>> headers;
  while (reader.next()) {
    const std::string line = upper(trim(reader.line()));
    if (checkIfCommentLine(line)) continue;
    if (isUserTestRemark(line)) {
      remark = words(line.substr(1));
      continue;
    }
    const auto parts = words(line);
    for (const UserTestKind kind : {UserTestKind::Rft, UserTestKind::Plt}) {
      if (headers.empty() && parts[0] == openingWord(kind))
        return UserTestText{kind, true, reader.position()};
    }
    if (beginsAsNumber(parts[0]))
      return byColumns(headers.empty() ? remark : headers[0], parts.size(), reader.position());
    const auto command = userTestWord(UserTestKind::Rft, parts[0]);
    if (command && command->command == UserTestCommand::Open) return std::nullopt;
    if (!command) headers.push_back(parts);
    if (headers.size() > headerLines) return std::nullopt;
  }
  return std::nullopt;
}

}  // namespace lumbarn
