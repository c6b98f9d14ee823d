#include "RestartChain.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include "../support/Diagnosis.h"
#include "SpecReader.h"

namespace lumbarn {

namespace fs = std::filesystem;

namespace {

constexpr std::array<const char*, 4> formattedExtensions{".FSMSPEC", ".fsmspec", ".FSM", ".fsm"};
constexpr std::array<const char*, 4> unformattedExtensions{".SMSPEC", ".smspec", ".SMS", ".sms"};

bool sameFile(const std::string& a, const std::string& b) {
  std::error_code none;
  return fs::equivalent(a, b, none) && !none;
}

}  // namespace

std::vector<std::string> earlierRunCandidates(std::string_view zRoot, const std::string& zLaterRun,
                                              bool qFormatted) {
  const fs::path folder = fs::path(zLaterRun).parent_path();
  std::string root(zRoot);
  std::vector<std::string> roots{root};
  const auto dot = root.rfind('.');
  const auto slash = root.find_last_of("/\\");
  if (dot != std::string::npos && dot > 0 && (slash == std::string::npos || dot > slash + 1)) {
    roots.push_back(root.substr(0, dot));
  }
  if (slash != std::string::npos)
    roots.push_back(root.substr(slash + 1));  // the run has moved together with its past

  std::vector<std::string> candidates;
  for (const auto& name : roots) {
    const fs::path path = fs::path(name).is_absolute() ? fs::path(name) : folder / name;
    // A run of one form may go on from a run of the other.
    for (const auto& extensions : qFormatted ? std::array{formattedExtensions, unformattedExtensions}
                                             : std::array{unformattedExtensions, formattedExtensions}) {
      for (const char* extension : extensions) candidates.push_back(path.string() + extension);
    }
  }
  return candidates;
}

std::optional<SummarySpec> findEarlierRun(std::string_view zRoot, const std::string& zLaterRun,
                                          bool qFormatted, Session& session) {
  const auto candidates = earlierRunCandidates(zRoot, zLaterRun, qFormatted);
  for (const auto& candidate : candidates) {
    std::error_code none;
    if (!fs::is_regular_file(candidate, none) || sameFile(candidate, zLaterRun)) continue;
    SummarySpec spec;
    if (checkSpec(spec, candidate, session)) return spec;
  }
  session.diagnose({.message = Message::ChainRunMissing,
                    .path = zLaterRun,
                    .keyword = "RESTART",
                    .occurrence = 1,
                    .expected = candidates.front(),
                    .found = "no summary specification there, nor under the other names that were tried",
                    .action = "the restart chain ends here"});
  return std::nullopt;
}

}  // namespace lumbarn
