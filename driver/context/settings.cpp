#include "context/settings.h"

#include "context/driver_context.h"

namespace ombrel {
namespace {

constexpr const char* kSection = "driver_ombrel";

}  // namespace

std::int32_t ReadInt32Setting(const char* key) {
  vr::IVRSettings* settings = Context().Settings();
  return settings != nullptr ? settings->GetInt32(kSection, key) : 0;
}

bool ReadBoolSetting(const char* key, bool whenUnset) {
  vr::IVRSettings* settings = Context().Settings();
  if (settings == nullptr) return false;
  vr::EVRSettingsError error = vr::VRSettingsError_None;
  const bool value = settings->GetBool(kSection, key, &error);
  return error == vr::VRSettingsError_None ? value : whenUnset;
}

}  // namespace ombrel
