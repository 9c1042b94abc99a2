#pragma once

#include <filesystem>
#include <string>

#include <openvr_driver.h>

#include "runtime/call_recorder.h"

namespace bench {

// IVRResources_001 over one driver folder: "{name}/input/x.json" is resources/input/x.json of the
// driver of that name. A resource that is not there has size 0. Callable from any thread.
class FakeResources : public vr::IVRResources {
 public:
  FakeResources(CallRecorder& recorder, std::string driverName)
      : recorder_(recorder), driverName_(std::move(driverName)) {}

  // Set before the driver is loaded.
  void SetDriverFolder(std::filesystem::path folder) { folder_ = std::move(folder); }

  uint32_t LoadSharedResource(const char* pchResourceName, char* pchBuffer, uint32_t unBufferLen) override;
  uint32_t GetResourceFullPath(const char* pchResourceName, const char* pchResourceTypeDirectory, char* pchPathBuffer,
                               uint32_t unBufferLen) override;

 private:
  [[nodiscard]] std::filesystem::path Resolve(std::string name, const std::string& typeDirectory) const;

  CallRecorder& recorder_;
  std::string driverName_;
  std::filesystem::path folder_;
};

}  // namespace bench
