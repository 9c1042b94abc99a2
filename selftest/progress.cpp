#include "progress.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace ombrel::selftest {

void Progress::Begin(const std::string& step, double seconds) {
  done_ += running_;
  running_ = seconds;
  Show(step);
}

void Progress::End() {
  done_ = seconds_;
  running_ = 0;
  Show("done");
  std::printf("\n");
}

void Progress::Show(const std::string& step) const {
  // Over the line before, which may have been longer.
  std::printf("\r%-78s", ProgressBar(done_ / seconds_, step).c_str());
  std::fflush(stdout);
}

std::string ProgressBar(double share, const std::string& step) {
  constexpr int kWidth = 20;
  const double shown = std::clamp(share, 0.0, 1.0);
  const auto full = static_cast<std::size_t>(std::lround(shown * kWidth));
  char percent[16];
  std::snprintf(percent, sizeof(percent), "%4.0f%%", 100 * shown);
  return "[" + std::string(full, '#') + std::string(kWidth - full, ' ') + "] " + percent + "  " + step;
}

}  // namespace ombrel::selftest
