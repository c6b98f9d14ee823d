#include "ProgressBar.h"

#include <algorithm>

#include <fmt/format.h>

namespace lumbarn::cli {

using namespace std::chrono_literals;

void ProgressBar::files(int count) {
  files_ = std::max(1, count);
  done_ = 0;
}

void ProgressBar::fileDone() {
  done_ = std::min(done_ + 1, files_);
  draw(0);
}

void ProgressBar::fraction(double share) { draw(share); }

void ProgressBar::draw(double share) {
  if (!enabled_) return;
  const auto now = std::chrono::steady_clock::now();
  if (!due_) due_ = now + 1s;
  if (now < *due_) return;
  due_ = now + 100ms;
  const double whole = std::clamp((done_ + share) / files_, 0.0, 1.0);
  constexpr int width = 40;
  const int filled = static_cast<int>(whole * width);
  err_ << fmt::format("\r[{:#>{}}{:>{}}] {:3.0f} %", "", filled, "", width - filled, 100 * whole)
       << std::flush;
  shown_ = true;
}

void ProgressBar::hide() {
  if (!shown_) return;
  err_ << "\r\033[K" << std::flush;
  shown_ = false;
}

}  // namespace lumbarn::cli
