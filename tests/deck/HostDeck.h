#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "deck/qvEclipseDat.h"
#include "support/TemporaryFolder.h"

namespace lumbarn::test {

inline void writeText(const std::string& path, std::string_view text) {
  writeFile(path, std::as_bytes(std::span(text)));
}

/// A deck and its includes in a folder of their own, for hosts to read.
struct HostDeck {
  using Files = std::map<std::string, std::string>;

  explicit HostDeck(std::string_view text, const Files& includes = {}) {
    dat.zDeckFile = folder.file("A.DATA");
    writeText(dat.zDeckFile, text);
    for (const auto& [name, content] : includes) writeText(folder.file(name), content);
    session.faultReporter = [this](std::string_view fault) { faults.emplace_back(fault); };
  }
  bool load() {
    bool qOK = false;
    dat.LoadEclipseDataFile(qOK);
    return qOK;
  }
  bool told(Message message) const {
    for (const Diagnosis& diagnosis : session.diagnoses()) {
      if (diagnosis.message == message) return true;
    }
    return false;
  }

  TemporaryFolder folder;
  Session session;
  std::vector<std::string> faults;
  qvEclipseDat dat{session};
};

}  // namespace lumbarn::test
