#include "runtime/fake_driver_input.h"

#include <algorithm>

#include "runtime/matching.h"

namespace bench {
namespace {

std::string Text(const char* text) { return text != nullptr ? text : ""; }

}  // namespace

// A hash (FNV-1a) and no counter, which the driver's threads would share.
vr::VRInputComponentHandle_t FakeDriverInput::HandleOf(vr::PropertyContainerHandle_t container, std::string_view path) {
  std::uint64_t hash = 0xCBF29CE484222325U ^ container;
  for (const char letter : path) {
    hash = (hash ^ static_cast<unsigned char>(letter)) * 0x100000001B3U;
  }
  return hash != vr::k_ulInvalidInputComponentHandle ? hash : 1;
}

std::vector<InputComponent> FakeDriverInput::Components() const {
  const std::lock_guard lock(mutex_);
  return components_;
}

std::optional<InputComponent> FakeDriverInput::Find(vr::PropertyContainerHandle_t container,
                                                    const std::string& path) const {
  const std::lock_guard lock(mutex_);
  const auto found = std::ranges::find_if(components_, [&](const InputComponent& component) {
    return component.container == container && component.path == path;
  });
  return found == components_.end() ? std::nullopt : std::optional(*found);
}

std::vector<InputUpdate> FakeDriverInput::Updates() const {
  const std::lock_guard lock(mutex_);
  return updates_;
}

std::vector<InputUpdate> FakeDriverInput::Updates(const std::string& path) const {
  const std::lock_guard lock(mutex_);
  return runtime::Matching(updates_, [&](const InputUpdate& update) { return update.path == path; });
}

std::optional<InputUpdate> FakeDriverInput::Latest(vr::PropertyContainerHandle_t container,
                                                   const std::string& path) const {
  const auto component = Find(container, path);
  if (!component) {
    return std::nullopt;
  }
  const std::lock_guard lock(mutex_);
  const auto found = latest_.find(component->handle);
  return found == latest_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<bool> FakeDriverInput::BoolValue(vr::PropertyContainerHandle_t container, const std::string& path) const {
  const auto update = Latest(container, path);
  return update ? std::optional(update->boolValue) : std::nullopt;
}

std::optional<float> FakeDriverInput::ScalarValue(vr::PropertyContainerHandle_t container,
                                                  const std::string& path) const {
  const auto update = Latest(container, path);
  return update ? std::optional(update->scalarValue) : std::nullopt;
}

void FakeDriverInput::LimitMemory(std::size_t updates) {
  const std::lock_guard lock(mutex_);
  memoryLimit_ = updates;
}

void FakeDriverInput::FailCreate(const std::string& path, vr::EVRInputError error,
                                 vr::VRInputComponentHandle_t handle) {
  const std::lock_guard lock(mutex_);
  createFailures_[path] = {error, handle};
}

void FakeDriverInput::FailUpdate(const std::string& path, vr::EVRInputError error) {
  const std::lock_guard lock(mutex_);
  updateFailures_[path] = error;
}

vr::EVRInputError FakeDriverInput::Create(const char* method, InputComponent component,
                                          vr::VRInputComponentHandle_t* handle) {
  if (recorder_.KeepsNothing()) {
    *handle = HandleOf(component.container, component.path);
    return vr::VRInputError_None;
  }
  recorder_.Enter(std::string("IVRDriverInput.") + method, {{"container", component.container},
                                                            {"path", component.path},
                                                            {"type", static_cast<int>(component.scalarType)},
                                                            {"units", static_cast<int>(component.scalarUnits)}});
  if (onCreate) {
    onCreate(component.path, handle);
  }
  const std::lock_guard lock(mutex_);
  if (handle == nullptr) {
    return vr::VRInputError_InvalidParam;
  }
  if (const auto failure = createFailures_.find(component.path); failure != createFailures_.end()) {
    *handle = failure->second.handle;
    return failure->second.error;
  }
  if (component.container == vr::k_ulInvalidPropertyContainer) {
    *handle = vr::k_ulInvalidInputComponentHandle;
    return vr::VRInputError_InvalidHandle;
  }
  const auto existing = std::ranges::find_if(components_, [&](const InputComponent& other) {
    return other.container == component.container && other.path == component.path;
  });
  if (existing != components_.end()) {
    *handle = existing->handle;
    return existing->kind == component.kind ? vr::VRInputError_None : vr::VRInputError_WrongType;
  }
  component.handle = HandleOf(component.container, component.path);
  *handle = component.handle;
  components_.push_back(std::move(component));
  return vr::VRInputError_None;
}

vr::EVRInputError FakeDriverInput::Update(InputUpdate update) {
  if (onUpdate) {
    onUpdate(update);
  }
  if (recorder_.KeepsNothing()) {
    return vr::VRInputError_None;
  }
  {
    const std::lock_guard lock(mutex_);
    const auto component = std::ranges::find(components_, update.handle, &InputComponent::handle);
    if (component == components_.end()) {
      update.result = vr::VRInputError_InvalidHandle;
    } else {
      update.path = component->path;
      const auto failure = updateFailures_.find(update.path);
      const auto checked = component->kind == update.kind ? vr::VRInputError_None : vr::VRInputError_WrongType;
      update.result = failure != updateFailures_.end() ? failure->second : checked;
    }
    if (update.result == vr::VRInputError_None) {
      latest_[update.handle] = update;
    }
    updates_.push_back(update);
    if (updates_.size() / 2 > memoryLimit_) {  // rarely, so that trimming costs little
      updates_.erase(updates_.begin(), updates_.end() - static_cast<std::ptrdiff_t>(memoryLimit_));
    }
  }
  nlohmann::ordered_json arguments = {
      {"component", update.handle}, {"path", update.path}, {"offset", update.timeOffset}};
  if (update.kind == InputKind::Boolean) {
    arguments["value"] = update.boolValue;
    recorder_.Enter("IVRDriverInput.UpdateBooleanComponent", std::move(arguments));
  } else {
    arguments["value"] = update.scalarValue;
    recorder_.Enter("IVRDriverInput.UpdateScalarComponent", std::move(arguments));
  }
  return update.result;
}

vr::EVRInputError FakeDriverInput::CreateBooleanComponent(vr::PropertyContainerHandle_t ulContainer,
                                                          const char* pchName, vr::VRInputComponentHandle_t* pHandle) {
  return Create("CreateBooleanComponent", {0, ulContainer, Text(pchName), InputKind::Boolean, {}, {}}, pHandle);
}

vr::EVRInputError FakeDriverInput::UpdateBooleanComponent(vr::VRInputComponentHandle_t ulComponent, bool bNewValue,
                                                          double fTimeOffset) {
  return Update({ulComponent, {}, InputKind::Boolean, bNewValue, 0.0F, fTimeOffset, {}});
}

vr::EVRInputError FakeDriverInput::CreateScalarComponent(vr::PropertyContainerHandle_t ulContainer, const char* pchName,
                                                         vr::VRInputComponentHandle_t* pHandle, vr::EVRScalarType eType,
                                                         vr::EVRScalarUnits eUnits) {
  return Create("CreateScalarComponent", {0, ulContainer, Text(pchName), InputKind::Scalar, eType, eUnits}, pHandle);
}

vr::EVRInputError FakeDriverInput::UpdateScalarComponent(vr::VRInputComponentHandle_t ulComponent, float fNewValue,
                                                         double fTimeOffset) {
  return Update({ulComponent, {}, InputKind::Scalar, false, fNewValue, fTimeOffset, {}});
}

vr::EVRInputError FakeDriverInput::CreateHapticComponent(vr::PropertyContainerHandle_t ulContainer, const char* pchName,
                                                         vr::VRInputComponentHandle_t* pHandle) {
  return Create("CreateHapticComponent", {0, ulContainer, Text(pchName), InputKind::Haptic, {}, {}}, pHandle);
}

vr::EVRInputError FakeDriverInput::CreateSkeletonComponent(vr::PropertyContainerHandle_t ulContainer,
                                                           const char* pchName, const char*, const char*,
                                                           const vr::VRBoneTransform_t*, uint32_t,
                                                           vr::VRInputComponentHandle_t* pHandle) {
  return Create("CreateSkeletonComponent", {0, ulContainer, Text(pchName), InputKind::Skeleton, {}, {}}, pHandle);
}

vr::EVRInputError FakeDriverInput::UpdateSkeletonComponent(vr::VRInputComponentHandle_t ulComponent,
                                                           const vr::VRBoneTransform_t*, uint32_t unTransformCount) {
  recorder_.Enter("IVRDriverInput.UpdateSkeletonComponent", {{"component", ulComponent}, {"bones", unTransformCount}});
  const std::lock_guard lock(mutex_);
  const auto component = std::ranges::find(components_, ulComponent, &InputComponent::handle);
  if (component == components_.end()) {
    return vr::VRInputError_InvalidHandle;
  }
  return component->kind == InputKind::Skeleton ? vr::VRInputError_None : vr::VRInputError_WrongType;
}

}  // namespace bench
