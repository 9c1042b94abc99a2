#include "runtime/fake_resources.h"

#include <cstring>
#include <fstream>
#include <iterator>

#include "runtime/text_buffer.h"

namespace bench {

std::filesystem::path FakeResources::Resolve(std::string name, const std::string& typeDirectory) const {
  const std::string prefix = "{" + driverName_ + "}/";
  if (name.starts_with(prefix)) {
    name.erase(0, prefix.size());
  }
  const std::filesystem::path path = folder_ / "resources" / typeDirectory / name;
  std::error_code ignored;
  return std::filesystem::is_regular_file(path, ignored) ? path : std::filesystem::path();
}

uint32_t FakeResources::LoadSharedResource(const char* pchResourceName, char* pchBuffer, uint32_t unBufferLen) {
  const std::string name = pchResourceName != nullptr ? pchResourceName : "";
  recorder_.Enter("IVRResources.LoadSharedResource", {{"name", name}});
  std::ifstream stream(Resolve(name, ""), std::ios::binary);
  const std::string content{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  if (pchBuffer != nullptr && unBufferLen >= content.size()) {
    std::memcpy(pchBuffer, content.data(), content.size());
  }
  return static_cast<uint32_t>(content.size());
}

uint32_t FakeResources::GetResourceFullPath(const char* pchResourceName, const char* pchResourceTypeDirectory,
                                            char* pchPathBuffer, uint32_t unBufferLen) {
  const std::string name = pchResourceName != nullptr ? pchResourceName : "";
  const std::string type = pchResourceTypeDirectory != nullptr ? pchResourceTypeDirectory : "";
  recorder_.Enter("IVRResources.GetResourceFullPath", {{"name", name}, {"type", type}});
  const std::filesystem::path path = Resolve(name, type);
  return path.empty() ? 0 : CopyText(path.string(), pchPathBuffer, unBufferLen);
}

}  // namespace bench
