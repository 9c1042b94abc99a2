#pragma once

#include <utility>

namespace ombrel {

// Runs `body` for the runtime, across whose boundary nothing may be thrown. What it threw is dropped: the driver goes
// on without what `body` would have done.
template <typename Body>
void Guarded(Body&& body) {
  try {
    std::forward<Body>(body)();
  } catch (...) {
  }
}

// The same with a result, which is `otherwise` when something was thrown.
template <typename Result, typename Body>
Result GuardedOr(Result otherwise, Body&& body) {
  try {
    return std::forward<Body>(body)();
  } catch (...) {
    return otherwise;
  }
}

}  // namespace ombrel
