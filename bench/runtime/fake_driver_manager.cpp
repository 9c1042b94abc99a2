#include "runtime/fake_driver_manager.h"

#include "runtime/text_buffer.h"

namespace bench {

uint32_t FakeDriverManager::GetDriverCount() const {
  recorder_.Enter("IVRDriverManager.GetDriverCount");
  return 1;
}

uint32_t FakeDriverManager::GetDriverName(vr::DriverId_t nDriver, char* pchValue, uint32_t unBufferSize) {
  recorder_.Enter("IVRDriverManager.GetDriverName", {{"driver", nDriver}});
  return nDriver == 0 ? CopyText(driverName_, pchValue, unBufferSize) : 0;
}

vr::DriverHandle_t FakeDriverManager::GetDriverHandle(const char* pchDriverName) {
  const std::string name = pchDriverName != nullptr ? pchDriverName : "";
  recorder_.Enter("IVRDriverManager.GetDriverHandle", {{"name", name}});
  return name == driverName_ ? handle_ : vr::k_ulInvalidDriverHandle;
}

}  // namespace bench
