#include "context/driver_context.h"

namespace ombrel {

template <typename Interface>
Interface* DriverContext::Fetch(std::atomic<Interface*>& slot, const char* version) {
  if (Interface* known = slot.load(std::memory_order_acquire)) return known;
  vr::IVRDriverContext* context = context_.load(std::memory_order_acquire);
  if (context == nullptr) return nullptr;
  vr::EVRInitError error = vr::VRInitError_None;
  auto* fetched = static_cast<Interface*>(context->GetGenericInterface(version, &error));
  // Threads that fetch at the same time get the same interface: whose store comes last does not matter.
  slot.store(fetched, std::memory_order_release);
  return fetched;
}

vr::EVRInitError DriverContext::Init(vr::IVRDriverContext* context) {
  Clear();
  context_.store(context, std::memory_order_release);
  if (ServerDriverHost() == nullptr || Settings() == nullptr) return vr::VRInitError_Init_InterfaceNotFound;
  Properties();  // a runtime without it gets no properties, but a driver all the same
  if (DriverLog() == nullptr || DriverManager() == nullptr || Resources() == nullptr) {
    return vr::VRInitError_Init_InterfaceNotFound;
  }
  return vr::VRInitError_None;
}

void DriverContext::Clear() {
  context_.store(nullptr, std::memory_order_release);
  serverDriverHost_.store(nullptr, std::memory_order_release);
  settings_.store(nullptr, std::memory_order_release);
  properties_.store(nullptr, std::memory_order_release);
  driverLog_.store(nullptr, std::memory_order_release);
  driverManager_.store(nullptr, std::memory_order_release);
  resources_.store(nullptr, std::memory_order_release);
  driverInput_.store(nullptr, std::memory_order_release);
}

vr::IVRServerDriverHost* DriverContext::ServerDriverHost() {
  return Fetch(serverDriverHost_, vr::IVRServerDriverHost_Version);
}
vr::IVRSettings* DriverContext::Settings() { return Fetch(settings_, vr::IVRSettings_Version); }
vr::IVRProperties* DriverContext::Properties() { return Fetch(properties_, vr::IVRProperties_Version); }
vr::IVRDriverLog* DriverContext::DriverLog() { return Fetch(driverLog_, vr::IVRDriverLog_Version); }
vr::IVRDriverManager* DriverContext::DriverManager() { return Fetch(driverManager_, vr::IVRDriverManager_Version); }
vr::IVRResources* DriverContext::Resources() { return Fetch(resources_, vr::IVRResources_Version); }
vr::IVRDriverInput* DriverContext::DriverInput() { return Fetch(driverInput_, vr::IVRDriverInput_Version); }

}  // namespace ombrel
