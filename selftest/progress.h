#pragma once

#include <string>

namespace ombrel::selftest {

// A bar on the console, or lines where the output is no console. One thread.
class Progress {
 public:
  // `seconds`: about how long all steps take.
  explicit Progress(double seconds) : seconds_(seconds) {}

  // A step of about that many seconds begins; the one before has ended.
  void Begin(const std::string& step, double seconds);
  void End();

 private:
  void Show(const std::string& step) const;

  const double seconds_;
  double done_ = 0, running_ = 0;
};

// "[#####               ]  25%  A session": what Progress shows, for a share of 0 to 1.
[[nodiscard]] std::string ProgressBar(double share, const std::string& step);

}  // namespace ombrel::selftest
