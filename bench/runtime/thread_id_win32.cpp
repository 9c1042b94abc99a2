#include <windows.h>

#include "runtime/thread_id.h"

namespace bench::runtime {

std::uint32_t ThreadId() { return GetCurrentThreadId(); }

}  // namespace bench::runtime
