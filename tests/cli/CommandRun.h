#pragma once

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "Run.h"
#include "support/Paths.h"

namespace lumbarn::cli::testing {

/// What a run of the command left behind.
struct Outcome {
  int status = -1;
  std::string out;
  std::string err;
};

inline Outcome command(const std::vector<std::string>& args) {
  std::ostringstream out;
  std::ostringstream err;
  const std::atomic<bool> stop = false;
  const int status = run(args, out, err, stop);
  return {status, out.str(), err.str()};
}

inline std::string sample(const std::string& name) { return examplePath("/data/") + name; }

inline std::string content(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline void store(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

/// Rows of a CSV text, its header first. Fails on anything that RFC 4180 does not allow.
inline std::vector<std::vector<std::string>> parseCsv(const std::string& text) {
  std::vector<std::vector<std::string>> rows;
  std::size_t at = 0;
  while (at < text.size()) {
    auto& row = rows.emplace_back();
    while (true) {
      std::string& field = row.emplace_back();
      if (at < text.size() && text[at] == '"') {
        for (++at; at < text.size() && (text[at] != '"' || text.substr(at, 2) == "\"\""); ++at) {
          if (text[at] == '"') ++at;
          field += text[at];
        }
        ++at;
      } else {
        while (at < text.size() && text[at] != ',' && text[at] != '\r') field += text[at++];
      }
      if (at >= text.size() || text[at] != ',') break;
      ++at;
    }
    if (text.compare(at, 2, "\r\n") != 0) throw std::runtime_error("no CR LF at " + std::to_string(at));
    at += 2;
  }
  return rows;
}

}  // namespace lumbarn::cli::testing
