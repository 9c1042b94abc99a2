#include "runtime/fake_settings.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <stdexcept>

namespace bench {
namespace {

std::string Text(const char* text) { return text != nullptr ? text : ""; }

void Answer(vr::EVRSettingsError* target, vr::EVRSettingsError error) {
  if (target != nullptr) {
    *target = error;
  }
}

void RequireSections(const nlohmann::json& sections, const std::string& origin) {
  const bool sound = sections.is_object() &&
                     std::ranges::all_of(sections, [](const nlohmann::json& section) { return section.is_object(); });
  if (!sound) {
    throw std::runtime_error(origin + " is not an object of sections");
  }
}

nlohmann::json LoadSections(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) {
    throw std::runtime_error("cannot open the settings file " + file.string());
  }
  nlohmann::json sections = nlohmann::json::parse(stream, nullptr, false);
  RequireSections(sections, "the settings file " + file.string());
  return sections;
}

const nlohmann::json* Find(const nlohmann::json& layer, const std::string& section, const std::string& key) {
  const auto foundSection = layer.find(section);
  if (foundSection == layer.end()) {
    return nullptr;
  }
  const auto foundKey = foundSection->find(key);
  return foundKey == foundSection->end() ? nullptr : &*foundKey;
}

bool IsNumeric(const nlohmann::json& value) { return value.is_number() || value.is_boolean(); }

bool IsText(const nlohmann::json& value) { return value.is_string(); }

// Of what could not be read, 0.
double Number(const nlohmann::json& value) {
  if (value.is_boolean()) {
    return value.get<bool>() ? 1.0 : 0.0;
  }
  return value.is_number() ? value.get<double>() : 0.0;
}

}  // namespace

void FakeSettings::LoadDefaults(const std::filesystem::path& file) { SetDefaults(LoadSections(file)); }

void FakeSettings::LoadOverrides(const std::filesystem::path& file) { SetOverrides(LoadSections(file)); }

void FakeSettings::SetDefaults(nlohmann::json sections) {
  RequireSections(sections, "the default settings");
  const std::lock_guard lock(mutex_);
  defaults_ = std::move(sections);
}

void FakeSettings::SetOverrides(nlohmann::json sections) {
  RequireSections(sections, "the settings");
  const std::lock_guard lock(mutex_);
  overrides_ = std::move(sections);
}

void FakeSettings::Set(const std::string& section, const std::string& key, nlohmann::json value) {
  const std::lock_guard lock(mutex_);
  overrides_[section][key] = std::move(value);
}

void FakeSettings::Remove(const std::string& section, const std::string& key) {
  const std::lock_guard lock(mutex_);
  if (const auto found = overrides_.find(section); found != overrides_.end()) {
    found->erase(key);
  }
}

void FakeSettings::FailRead(const std::string& section, const std::string& key, vr::EVRSettingsError error) {
  const std::lock_guard lock(mutex_);
  failures_[{section, key}] = error;
}

FakeSettings::Reading FakeSettings::Look(const std::string& section, const std::string& key) const {
  const std::lock_guard lock(mutex_);
  if (const auto failure = failures_.find({section, key}); failure != failures_.end()) {
    return {nullptr, failure->second};
  }
  const nlohmann::json* value = Find(overrides_, section, key);
  if (value == nullptr) {
    value = Find(defaults_, section, key);
  }
  if (value == nullptr) {
    return {nullptr, vr::VRSettingsError_UnsetSettingHasNoDefault};
  }
  return {*value, vr::VRSettingsError_None};
}

nlohmann::json FakeSettings::Read(const char* method, const char* section, const char* key,
                                  bool (*isUsable)(const nlohmann::json&), vr::EVRSettingsError* error) {
  if (!recorder_.KeepsNothing()) {
    recorder_.Enter(std::string("IVRSettings.") + method,
                    {{"section", Text(section)}, {"key", Text(key)}, {"asksForError", error != nullptr}});
  }
  Reading reading = Look(Text(section), Text(key));
  if (reading.error == vr::VRSettingsError_None && !isUsable(reading.value)) {
    reading = {nullptr, vr::VRSettingsError_ReadFailed};
  }
  Answer(error, reading.error);
  return reading.value;
}

void FakeSettings::Write(const char* method, const char* section, const char* key, nlohmann::json value,
                         vr::EVRSettingsError* error) {
  recorder_.Enter(std::string("IVRSettings.") + method,
                  {{"section", Text(section)}, {"key", Text(key)}, {"value", value}});
  Set(Text(section), Text(key), std::move(value));
  Answer(error, vr::VRSettingsError_None);
}

const char* FakeSettings::GetSettingsErrorNameFromEnum(vr::EVRSettingsError eError) {
  static constexpr const char* kNames[] = {
      "VRSettingsError_None",       "VRSettingsError_IPCFailed",       "VRSettingsError_WriteFailed",
      "VRSettingsError_ReadFailed", "VRSettingsError_JsonParseFailed", "VRSettingsError_UnsetSettingHasNoDefault"};
  const auto index = static_cast<std::size_t>(eError);
  return index < std::size(kNames) ? kNames[index] : "Unknown settings error";
}

bool FakeSettings::Sync(bool bForce, vr::EVRSettingsError* peError) {
  recorder_.Enter("IVRSettings.Sync", {{"force", bForce}});
  Answer(peError, vr::VRSettingsError_None);
  return false;  // there is no file to write back to
}

void FakeSettings::SetBool(const char* pchSection, const char* pchSettingsKey, bool bValue,
                           vr::EVRSettingsError* peError) {
  Write("SetBool", pchSection, pchSettingsKey, bValue, peError);
}

void FakeSettings::SetInt32(const char* pchSection, const char* pchSettingsKey, int32_t nValue,
                            vr::EVRSettingsError* peError) {
  Write("SetInt32", pchSection, pchSettingsKey, nValue, peError);
}

void FakeSettings::SetFloat(const char* pchSection, const char* pchSettingsKey, float flValue,
                            vr::EVRSettingsError* peError) {
  Write("SetFloat", pchSection, pchSettingsKey, flValue, peError);
}

void FakeSettings::SetString(const char* pchSection, const char* pchSettingsKey, const char* pchValue,
                             vr::EVRSettingsError* peError) {
  Write("SetString", pchSection, pchSettingsKey, Text(pchValue), peError);
}

bool FakeSettings::GetBool(const char* pchSection, const char* pchSettingsKey, vr::EVRSettingsError* peError) {
  return Number(Read("GetBool", pchSection, pchSettingsKey, IsNumeric, peError)) != 0.0;
}

int32_t FakeSettings::GetInt32(const char* pchSection, const char* pchSettingsKey, vr::EVRSettingsError* peError) {
  return static_cast<int32_t>(Number(Read("GetInt32", pchSection, pchSettingsKey, IsNumeric, peError)));
}

float FakeSettings::GetFloat(const char* pchSection, const char* pchSettingsKey, vr::EVRSettingsError* peError) {
  return static_cast<float>(Number(Read("GetFloat", pchSection, pchSettingsKey, IsNumeric, peError)));
}

void FakeSettings::GetString(const char* pchSection, const char* pchSettingsKey, char* pchValue, uint32_t unValueLen,
                             vr::EVRSettingsError* peError) {
  const nlohmann::json value = Read("GetString", pchSection, pchSettingsKey, IsText, peError);
  if (pchValue == nullptr || unValueLen == 0) {
    return;
  }
  const std::string text = value.is_string() ? value.get<std::string>() : std::string();
  const std::size_t length = std::min<std::size_t>(text.size(), unValueLen - 1);
  std::memcpy(pchValue, text.data(), length);
  pchValue[length] = '\0';
}

void FakeSettings::RemoveSection(const char* pchSection, vr::EVRSettingsError* peError) {
  recorder_.Enter("IVRSettings.RemoveSection", {{"section", Text(pchSection)}});
  const std::lock_guard lock(mutex_);
  overrides_.erase(Text(pchSection));
  Answer(peError, vr::VRSettingsError_None);
}

void FakeSettings::RemoveKeyInSection(const char* pchSection, const char* pchSettingsKey,
                                      vr::EVRSettingsError* peError) {
  recorder_.Enter("IVRSettings.RemoveKeyInSection", {{"section", Text(pchSection)}, {"key", Text(pchSettingsKey)}});
  Remove(Text(pchSection), Text(pchSettingsKey));
  Answer(peError, vr::VRSettingsError_None);
}

}  // namespace bench
