#pragma once

#include <cstddef>

namespace ombrel::test {

// How many threads of this process began in the code of a loaded module.
[[nodiscard]] std::size_t ThreadsOfModule(void* module);

// How many threads this process has.
[[nodiscard]] std::size_t ThreadsOfProcess();

}  // namespace ombrel::test
