#pragma once

#include <filesystem>
#include <functional>

#include <openvr_driver.h>

namespace bench {

// A driver library, loaded the way the runtime loads it. Used by one thread at a time.
class DriverModule {
 public:
  // An HMODULE, spelled so that this header needs no windows.h.
  using Module = void*;
  // What HmdDriverFactory is.
  using Factory = void*(const char* interfaceName, int* returnCode);

  // Loads the library and finds its factory; `afterLoad` runs in between, before any code of the driver
  // but its static initialisation: the place to patch its imports. Throws std::runtime_error on failure.
  explicit DriverModule(const std::filesystem::path& library, const std::function<void(Module)>& afterLoad = {});
  DriverModule(const DriverModule&) = delete;
  DriverModule& operator=(const DriverModule&) = delete;
  // Unloads.
  ~DriverModule();

  [[nodiscard]] Module Handle() const { return module_; }
  [[nodiscard]] Factory* HmdDriverFactory() const { return factory_; }
  // The provider; throws std::runtime_error if the factory has none.
  [[nodiscard]] vr::IServerTrackedDeviceProvider& Provider() const;
  // FreeLibrary now; nothing of the driver may be called afterwards.
  void Unload();

 private:
  Module module_ = nullptr;
  Factory* factory_ = nullptr;
};

}  // namespace bench
