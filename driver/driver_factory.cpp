// The library's only export.
#include <openvr_driver.h>

#include <string_view>

#include "platform/emergency_memory.h"
#include "server_driver_ombrel.h"

// What PollNextEvent is told to fill. Elsewhere than on Windows the same structure is packed tighter.
static_assert(sizeof(vr::VREvent_t) == 48);

namespace {

ombrel::EmergencyMemory emergencyMemory;

// Made when the library is loaded. A function-local static would be initialized under a guard, for which winpthreads
// registers the calling thread and leaks its two handles when the library is unloaded.
ombrel::CServerDriver_Ombrel provider;

}  // namespace

// Answers for the device provider alone; there is no watchdog. The name is compared letter by letter, and the return
// code is touched only to say that it was another.
extern "C" void* HmdDriverFactory(const char* interfaceName, int* returnCode) {
  if (interfaceName != nullptr && std::string_view(interfaceName) == vr::IServerTrackedDeviceProvider_Version) {
    return static_cast<vr::IServerTrackedDeviceProvider*>(&provider);
  }
  if (returnCode != nullptr) *returnCode = vr::VRInitError_Init_InterfaceNotFound;
  return nullptr;
}
