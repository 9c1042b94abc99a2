#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <utility>

#include <openvr_driver.h>
#include <nlohmann/json.hpp>

#include "runtime/call_recorder.h"

namespace bench {

// IVRSettings_002 over two layers in the runtime's own file format: an object of sections, each
// an object of keys. The defaults lie underneath, the overrides above; the driver's own writes go
// to the overrides. A key in neither layer reads as 0, false or "" with the error
// VRSettingsError_UnsetSettingHasNoDefault; a value of the wrong kind (text for a number, say)
// reads the same with VRSettingsError_ReadFailed. Callable from any thread.
class FakeSettings : public vr::IVRSettings {
 public:
  explicit FakeSettings(CallRecorder& recorder) : recorder_(recorder) {}

  // Replace a layer; throw std::runtime_error when the file or text cannot be read as settings.
  void LoadDefaults(const std::filesystem::path& file);
  void LoadOverrides(const std::filesystem::path& file);
  void SetDefaults(nlohmann::json sections);
  void SetOverrides(nlohmann::json sections);

  // Sets or removes one key of the overrides.
  void Set(const std::string& section, const std::string& key, nlohmann::json value);
  void Remove(const std::string& section, const std::string& key);
  // Every later read of that key gives its zero value and this error.
  void FailRead(const std::string& section, const std::string& key, vr::EVRSettingsError error);

  const char* GetSettingsErrorNameFromEnum(vr::EVRSettingsError eError) override;
  bool Sync(bool bForce, vr::EVRSettingsError* peError) override;
  void SetBool(const char* pchSection, const char* pchSettingsKey, bool bValue, vr::EVRSettingsError* peError) override;
  void SetInt32(const char* pchSection, const char* pchSettingsKey, int32_t nValue,
                vr::EVRSettingsError* peError) override;
  void SetFloat(const char* pchSection, const char* pchSettingsKey, float flValue,
                vr::EVRSettingsError* peError) override;
  void SetString(const char* pchSection, const char* pchSettingsKey, const char* pchValue,
                 vr::EVRSettingsError* peError) override;
  bool GetBool(const char* pchSection, const char* pchSettingsKey, vr::EVRSettingsError* peError) override;
  int32_t GetInt32(const char* pchSection, const char* pchSettingsKey, vr::EVRSettingsError* peError) override;
  float GetFloat(const char* pchSection, const char* pchSettingsKey, vr::EVRSettingsError* peError) override;
  void GetString(const char* pchSection, const char* pchSettingsKey, char* pchValue, uint32_t unValueLen,
                 vr::EVRSettingsError* peError) override;
  void RemoveSection(const char* pchSection, vr::EVRSettingsError* peError) override;
  void RemoveKeyInSection(const char* pchSection, const char* pchSettingsKey, vr::EVRSettingsError* peError) override;

 private:
  struct Reading {
    nlohmann::json value;  // null unless `error` is VRSettingsError_None
    vr::EVRSettingsError error;
  };
  [[nodiscard]] Reading Look(const std::string& section, const std::string& key) const;
  // The value, or null; answers with the error.
  [[nodiscard]] nlohmann::json Read(const char* method, const char* section, const char* key,
                                    bool (*isUsable)(const nlohmann::json&), vr::EVRSettingsError* error);
  void Write(const char* method, const char* section, const char* key, nlohmann::json value,
             vr::EVRSettingsError* error);

  CallRecorder& recorder_;
  mutable std::mutex mutex_;
  nlohmann::json defaults_ = nlohmann::json::object();
  nlohmann::json overrides_ = nlohmann::json::object();
  std::map<std::pair<std::string, std::string>, vr::EVRSettingsError> failures_;
};

}  // namespace bench
