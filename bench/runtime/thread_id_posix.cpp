#include <unistd.h>

#include "runtime/thread_id.h"

namespace bench::runtime {

std::uint32_t ThreadId() { return static_cast<std::uint32_t>(gettid()); }

}  // namespace bench::runtime
