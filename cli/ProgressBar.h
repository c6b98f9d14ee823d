#pragma once

#include <chrono>
#include <optional>
#include <ostream>
#include <string>

#include "frame/Progress.h"

namespace lumbarn::cli {

/// A line on standard error that shows how far a long read has come. Appears after a second of work, is drawn
/// at most ten times a second, and leaves nothing behind.
class ProgressBar final : public Progress {
 public:
  /// Draws nothing at all unless `enabled`, which is for terminals only.
  ProgressBar(std::ostream& err, bool enabled) : err_(err), enabled_(enabled) {}
  ~ProgressBar() override { hide(); }

  void files(int count) override;
  void fileDone() override;
  void fraction(double share) override;
  /// Removes the line, so that a message can take its place.
  void hide();

 private:
  void draw(double share);

  std::ostream& err_;
  bool enabled_;
  bool shown_ = false;
  int files_ = 1;
  int done_ = 0;
  std::optional<std::chrono::steady_clock::time_point> due_;  // of the next drawing
};

}  // namespace lumbarn::cli
