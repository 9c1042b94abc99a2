#include "faults.h"

#include <stdexcept>

const std::set<std::string>& Faults::Known() {
  static const std::set<std::string> kNames{
      "late-second-pipe", "short-message", "long-message",  "stalled-message", "unknown-type", "no-number",
      "long-rotation",    "pause",         "flood",         "position-first",  "rate-zero",    "many-controllers",
      "unread",           "no-frames",     "wrong-key",     "double-release",  "unheld-read",  "read-twice",
      "long-hold",        "half-close",    "end-connected", "keep-block"};
  return kNames;
}

bool Faults::Has(const std::string& name) const {
  if (!Known().contains(name)) throw std::logic_error("no fault is called " + name);
  return names_.contains(name);
}
