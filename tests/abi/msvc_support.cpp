#include "msvc_support.h"

#include <gtest/gtest.h>

#include "msvc_side/calls.h"
#include "runtime/msvc_calls.h"

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

vr::DriverPose_t PoseByMsvc(void* device) {
  GuardedResult<vr::DriverPose_t> pose;
  MsvcDeviceGetPose(device, pose.Address());
  EXPECT_TRUE(pose.IsUntouchedAround());
  // MSVC's callers may take the result's address from the call's own result.
  GuardedResult<vr::DriverPose_t> again;
  const auto getPose = bench::VirtualSlot<void*(void*, void*)>(device, 5);
  EXPECT_EQ(getPose(device, again.Address()), again.Address());
  return pose.Value();
}

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
