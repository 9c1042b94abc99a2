#pragma once

#include <mutex>
#include <set>
#include <string>
#include <vector>

#include <openvr_driver.h>

#include "runtime/call_recorder.h"
#include "runtime/fake_driver_input.h"
#include "runtime/fake_driver_log.h"
#include "runtime/fake_driver_manager.h"
#include "runtime/fake_properties.h"
#include "runtime/fake_resources.h"
#include "runtime/fake_server_host.h"
#include "runtime/fake_settings.h"

namespace bench {

// The host side of the driver boundary: the context that a driver's Init receives, and behind it one
// of each host interface. It must outlive the driver module that was given it. Callable from any thread.
class FakeRuntime : public vr::IVRDriverContext {
 public:
  explicit FakeRuntime(const std::string& driverName = "ombrel");

  [[nodiscard]] CallJournal& Journal() { return recorder_.Journal(); }
  // Scripts exceptions: see CallRecorder::ThrowFrom.
  [[nodiscard]] CallRecorder& Recorder() { return recorder_; }
  [[nodiscard]] FakeServerHost& Host() { return host_; }
  [[nodiscard]] PoseLog& Poses() { return host_.Poses(); }
  [[nodiscard]] FakeSettings& Settings() { return settings_; }
  [[nodiscard]] FakeProperties& Properties() { return properties_; }
  [[nodiscard]] FakeDriverInput& Input() { return input_; }
  [[nodiscard]] FakeDriverLog& Log() { return log_; }
  [[nodiscard]] FakeDriverManager& Manager() { return manager_; }
  [[nodiscard]] FakeResources& Resources() { return resources_; }

  // From here on the calls that a driver makes while it runs reach the parts' hooks alone, and no lock is taken for
  // them. For runs with more calls than a journal could hold, for measurements, and for a thread sanitizer, to which
  // a lock in here would hide the driver's races. Before the driver starts.
  void KeepNothing() { recorder_.KeepNothing(); }

  // That version string is answered with null and VRInitError_Init_InterfaceNotFound, until provided again.
  void Withhold(const std::string& interfaceVersion);
  void Provide(const std::string& interfaceVersion);
  // Every version string asked for, in order, whatever the answer was.
  [[nodiscard]] std::vector<std::string> RequestedInterfaces() const;

  void* GetGenericInterface(const char* pchInterfaceVersion, vr::EVRInitError* peError) override;
  vr::DriverHandle_t GetDriverHandle() override;

 private:
  [[nodiscard]] void* Find(const std::string& interfaceVersion);

  CallRecorder recorder_;
  FakeServerHost host_;
  FakeSettings settings_;
  FakeProperties properties_;
  FakeDriverInput input_;
  FakeDriverLog log_;
  FakeDriverManager manager_;
  FakeResources resources_;
  mutable std::mutex mutex_;
  std::vector<std::string> requested_;
  std::set<std::string> withheld_;
};

}  // namespace bench
