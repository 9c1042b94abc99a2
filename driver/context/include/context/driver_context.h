#pragma once

#include <openvr_driver.h>

#include <atomic>

namespace ombrel {

// The runtime's host-side interfaces, for the whole driver. Init (server thread) fetches them; the accessors may be
// called from any thread afterwards and fetch again what they find missing. They return null before Init, after Clear,
// and while the runtime does not offer the interface.
class DriverContext {
 public:
  // Forgets what it had, keeps `context` and fetches all interfaces but the input one, which is fetched on first use.
  // VRInitError_Init_InterfaceNotFound at the first one missing; only the property interface may be.
  [[nodiscard]] vr::EVRInitError Init(vr::IVRDriverContext* context);
  void Clear();

  vr::IVRServerDriverHost* ServerDriverHost();
  vr::IVRSettings* Settings();
  vr::IVRProperties* Properties();
  vr::IVRDriverLog* DriverLog();
  vr::IVRDriverManager* DriverManager();
  vr::IVRResources* Resources();
  vr::IVRDriverInput* DriverInput();

 private:
  template <typename Interface>
  Interface* Fetch(std::atomic<Interface*>& slot, const char* version);

  std::atomic<vr::IVRDriverContext*> context_{nullptr};
  std::atomic<vr::IVRServerDriverHost*> serverDriverHost_{nullptr};
  std::atomic<vr::IVRSettings*> settings_{nullptr};
  std::atomic<vr::IVRProperties*> properties_{nullptr};
  std::atomic<vr::IVRDriverLog*> driverLog_{nullptr};
  std::atomic<vr::IVRDriverManager*> driverManager_{nullptr};
  std::atomic<vr::IVRResources*> resources_{nullptr};
  std::atomic<vr::IVRDriverInput*> driverInput_{nullptr};
};

// The one context of the process.
inline DriverContext& Context() {
  // Constant-initialised, so that no guard runs on any thread's way here.
  static constinit DriverContext context;
  return context;
}

}  // namespace ombrel
