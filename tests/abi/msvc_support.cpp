#include "msvc_support.h"

#include "msvc_side/calls.h"

// What objects of MSVC's kind refer to when they use floating point.
extern "C" {
extern int _fltused;
int _fltused = 0;
}

namespace ombrel::test {
namespace {

std::mutex mutex;
std::vector<HostCall> calls;

}  // namespace

std::vector<HostCall> HostCalls() {
  const std::lock_guard lock(mutex);
  return calls;
}

void ForgetHostCalls() {
  const std::lock_guard lock(mutex);
  calls.clear();
}

}  // namespace ombrel::test

extern "C" void MsvcHostCalled(const char* method, const char* text, uint64_t first, uint64_t second) {
  const std::lock_guard lock(ombrel::test::mutex);
  ombrel::test::calls.push_back({method, text, first, second});
}
