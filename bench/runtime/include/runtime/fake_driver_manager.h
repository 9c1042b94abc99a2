#pragma once

#include <string>

#include <openvr_driver.h>

#include "runtime/call_recorder.h"

namespace bench {

// IVRDriverManager_001 of a runtime with one driver. Callable from any thread.
class FakeDriverManager : public vr::IVRDriverManager {
 public:
  FakeDriverManager(CallRecorder& recorder, std::string driverName, vr::DriverHandle_t handle)
      : recorder_(recorder), driverName_(std::move(driverName)), handle_(handle) {}

  uint32_t GetDriverCount() const override;
  uint32_t GetDriverName(vr::DriverId_t nDriver, char* pchValue, uint32_t unBufferSize) override;
  vr::DriverHandle_t GetDriverHandle(const char* pchDriverName) override;

 private:
  CallRecorder& recorder_;
  std::string driverName_;
  vr::DriverHandle_t handle_;
};

}  // namespace bench
