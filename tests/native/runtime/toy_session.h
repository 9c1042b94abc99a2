#pragma once

#include "idle_driver/idle_driver.h"
#include "runtime/runtime_session.h"

namespace bench {

// A session of a driver that does nothing; tests add devices to its host themselves.
class ToySession {
 public:
  // Activates one more controller; its container.
  vr::PropertyContainerHandle_t AddController(const char* serial) {
    runtime.Host().TrackedDeviceAdded(serial, vr::TrackedDeviceClass_Controller, &controller);
    session.ActivatePending();
    return session.Devices().back().container;
  }

  FakeRuntime runtime;
  ombrel::test::IdleDevice controller;
  ombrel::test::IdleProvider provider;
  RuntimeSession session{runtime, provider};
};

}  // namespace bench
