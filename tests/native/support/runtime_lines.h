#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "runtime/fake_runtime.h"

namespace ombrel::test {

// What a driver told the runtime so far, one line each, in order; devices by their index.

// "3: 1002 5 4 0.8": a property, its type's tag, the size of its value and the value. A device that is not activated is
// "none".
[[nodiscard]] std::vector<std::string> PropertyLines(bench::FakeRuntime& runtime);
// "create 3 /proximity" and "/proximity true".
[[nodiscard]] std::vector<std::string> InputLines(bench::FakeRuntime& runtime);
// "3 280": a pose and the size that came with it.
[[nodiscard]] std::vector<std::string> PoseLines(bench::FakeRuntime& runtime);

// All but the first `count`.
[[nodiscard]] std::vector<std::string> From(std::size_t count, const std::vector<std::string>& lines);

}  // namespace ombrel::test
