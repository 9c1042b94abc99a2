#include "runtime/driver_module.h"

#include <stdexcept>
#include <string>
#include <utility>

#include <windows.h>

namespace bench {

DriverModule::DriverModule(const std::filesystem::path& library, const std::function<void(Module)>& afterLoad)
    : module_(LoadLibraryW(library.wstring().c_str())) {
  if (module_ == nullptr) {
    throw std::runtime_error("cannot load " + library.string() + ", error " + std::to_string(GetLastError()));
  }
  try {
    if (afterLoad) {
      afterLoad(module_);
    }
    factory_ = reinterpret_cast<Factory*>(
        reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module_), "HmdDriverFactory")));
    if (factory_ == nullptr) {
      throw std::runtime_error(library.string() + " does not export HmdDriverFactory");
    }
  } catch (...) {
    Unload();
    throw;
  }
}

DriverModule::~DriverModule() { Unload(); }

vr::IServerTrackedDeviceProvider& DriverModule::Provider() const {
  int code = 0;
  void* provider = factory_ != nullptr ? factory_(vr::IServerTrackedDeviceProvider_Version, &code) : nullptr;
  if (provider == nullptr) {
    throw std::runtime_error("the driver has no " + std::string(vr::IServerTrackedDeviceProvider_Version) + ", code " +
                             std::to_string(code));
  }
  return *static_cast<vr::IServerTrackedDeviceProvider*>(provider);
}

void DriverModule::Unload() {
  factory_ = nullptr;
  if (module_ != nullptr) {
    FreeLibrary(static_cast<HMODULE>(std::exchange(module_, nullptr)));
  }
}

}  // namespace bench
