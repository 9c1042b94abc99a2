#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <openvr_driver.h>

#include "runtime/call_recorder.h"

namespace bench {

enum class InputKind { Boolean, Scalar, Haptic, Skeleton };

struct InputComponent {
  vr::VRInputComponentHandle_t handle = 0;
  vr::PropertyContainerHandle_t container = 0;
  std::string path;
  InputKind kind = InputKind::Boolean;
  vr::EVRScalarType scalarType = {};
  vr::EVRScalarUnits scalarUnits = {};
};

// One UpdateBooleanComponent or UpdateScalarComponent call.
struct InputUpdate {
  vr::VRInputComponentHandle_t handle = 0;
  std::string path;  // empty for a handle that was never given out
  InputKind kind = InputKind::Boolean;
  bool boolValue = false;
  float scalarValue = 0.0F;
  double timeOffset = 0.0;  // seconds
  vr::EVRInputError result = {};
};

// IVRDriverInput_001. A component created twice in one container gets its first handle again.
// Callable from any thread.
class FakeDriverInput : public vr::IVRDriverInput {
 public:
  explicit FakeDriverInput(CallRecorder& recorder) : recorder_(recorder) {}

  // The handle of a component: it follows from where it is, never 0.
  [[nodiscard]] static vr::VRInputComponentHandle_t HandleOf(vr::PropertyContainerHandle_t container,
                                                             std::string_view path);

  [[nodiscard]] std::vector<InputComponent> Components() const;
  [[nodiscard]] std::optional<InputComponent> Find(vr::PropertyContainerHandle_t container,
                                                   const std::string& path) const;
  // Every update in order; with a path, only those of components of that path.
  [[nodiscard]] std::vector<InputUpdate> Updates() const;
  [[nodiscard]] std::vector<InputUpdate> Updates(const std::string& path) const;
  // The value that stands now; nothing before the first update that succeeded.
  [[nodiscard]] std::optional<bool> BoolValue(vr::PropertyContainerHandle_t container, const std::string& path) const;
  [[nodiscard]] std::optional<float> ScalarValue(vr::PropertyContainerHandle_t container,
                                                 const std::string& path) const;
  // Keeps only the newest updates; long sessions would grow without a bound otherwise.
  void LimitMemory(std::size_t updates);

  // Every later creation of that path fails with `error` and hands out `handle` all the same.
  void FailCreate(const std::string& path, vr::EVRInputError error, vr::VRInputComponentHandle_t handle = 0);
  // Every later update of a component of that path fails with `error`.
  void FailUpdate(const std::string& path, vr::EVRInputError error);

  // Called on the driver's threads, without a lock. Set before the driver starts.
  // Within each creation that is kept, before it has a result; may write the handle.
  std::function<void(const std::string& path, vr::VRInputComponentHandle_t*)> onCreate;
  // Ahead of each update; its path and result are not known yet.
  std::function<void(const InputUpdate&)> onUpdate;

  vr::EVRInputError CreateBooleanComponent(vr::PropertyContainerHandle_t ulContainer, const char* pchName,
                                           vr::VRInputComponentHandle_t* pHandle) override;
  vr::EVRInputError UpdateBooleanComponent(vr::VRInputComponentHandle_t ulComponent, bool bNewValue,
                                           double fTimeOffset) override;
  vr::EVRInputError CreateScalarComponent(vr::PropertyContainerHandle_t ulContainer, const char* pchName,
                                          vr::VRInputComponentHandle_t* pHandle, vr::EVRScalarType eType,
                                          vr::EVRScalarUnits eUnits) override;
  vr::EVRInputError UpdateScalarComponent(vr::VRInputComponentHandle_t ulComponent, float fNewValue,
                                          double fTimeOffset) override;
  vr::EVRInputError CreateHapticComponent(vr::PropertyContainerHandle_t ulContainer, const char* pchName,
                                          vr::VRInputComponentHandle_t* pHandle) override;
  vr::EVRInputError CreateSkeletonComponent(vr::PropertyContainerHandle_t ulContainer, const char* pchName,
                                            const char* pchSkeletonPath, const char* pchBasePosePath,
                                            const vr::VRBoneTransform_t* pGripLimitTransforms,
                                            uint32_t unGripLimitTransformCount,
                                            vr::VRInputComponentHandle_t* pHandle) override;
  vr::EVRInputError UpdateSkeletonComponent(vr::VRInputComponentHandle_t ulComponent,
                                            const vr::VRBoneTransform_t* pTransforms,
                                            uint32_t unTransformCount) override;

 private:
  vr::EVRInputError Create(const char* method, InputComponent component, vr::VRInputComponentHandle_t* handle);
  vr::EVRInputError Update(InputUpdate update);
  [[nodiscard]] std::optional<InputUpdate> Latest(vr::PropertyContainerHandle_t container,
                                                  const std::string& path) const;

  struct CreateFailure {
    vr::EVRInputError error;
    vr::VRInputComponentHandle_t handle;
  };

  CallRecorder& recorder_;
  mutable std::mutex mutex_;
  std::vector<InputComponent> components_;
  std::vector<InputUpdate> updates_;
  std::map<vr::VRInputComponentHandle_t, InputUpdate> latest_;
  std::map<std::string, CreateFailure> createFailures_;
  std::map<std::string, vr::EVRInputError> updateFailures_;
  std::size_t memoryLimit_ = SIZE_MAX;
};

}  // namespace bench
