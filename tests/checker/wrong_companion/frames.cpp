#include "frames.h"

#include <cstdint>
#include <stdexcept>

namespace {

constexpr DWORD kWaitMs = 5;
// Faults come once frames flow.
constexpr int kFirstFault = 5;

void Require(HRESULT result, const char* what) {
  if (result != S_OK) throw std::runtime_error(what);
}

}  // namespace

Frames::Frames(const Faults& faults) : faults_(faults) {
  Require(D3D11CreateDevice(nullptr, D3D_DRIVER_TYPE_HARDWARE, nullptr, 0, nullptr, 0, D3D11_SDK_VERSION, &device_,
                            nullptr, &context_),
          "there is no Direct3D 11 device");
}

Frames::~Frames() { Close(); }

void Frames::Open(const OmbrelFrameSharingInfo& info) {
  const std::uint32_t handles[] = {info.sharedHandle0, info.sharedHandle1};
  for (std::size_t i = 0; i < textures_.size(); ++i) {
    const auto handle = reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(handles[i]));
    Require(device_->OpenSharedResource(handle, IID_PPV_ARGS(&textures_[i])), "a texture cannot be opened");
    Require(textures_[i].As(&mutexes_[i]), "a texture has no keyed mutex");
  }
  D3D11_TEXTURE2D_DESC description{};
  textures_[0]->GetDesc(&description);
  description.MiscFlags = 0;
  Require(device_->CreateTexture2D(&description, nullptr, &copy_), "a texture cannot be made");
  block_ = OpenFileMappingA(FILE_MAP_READ, FALSE, info.name);
}

void Frames::Close() {
  for (auto& mutex : mutexes_) mutex.Reset();
  for (auto& texture : textures_) texture.Reset();
  copy_.Reset();
  turn_ = 0;
  if (faults_.Has("keep-block") || block_ == nullptr) return;
  CloseHandle(block_);
  block_ = nullptr;
}

// A texture that is free at once is new when the driver holds the other one.
bool Frames::AcquireFresh() {
  const HRESULT atOnce = mutexes_[turn_]->AcquireSync(OMBREL_KEYED_MUTEX_KEY, 0);
  if (atOnce != S_OK) return mutexes_[turn_]->AcquireSync(OMBREL_KEYED_MUTEX_KEY, kWaitMs) == S_OK;
  const HRESULT other = mutexes_[1 - turn_]->AcquireSync(OMBREL_KEYED_MUTEX_KEY, 0);
  if (other == static_cast<HRESULT>(WAIT_TIMEOUT)) return true;
  if (other == S_OK) mutexes_[1 - turn_]->ReleaseSync(OMBREL_KEYED_MUTEX_KEY);
  mutexes_[turn_]->ReleaseSync(OMBREL_KEYED_MUTEX_KEY);
  return false;
}

void Frames::TakeOne() {
  if (!AcquireFresh()) return;
  Read();
  if (faults_.Has("long-hold") && taken_ == kFirstFault) Sleep(600);
  mutexes_[turn_]->ReleaseSync(OMBREL_KEYED_MUTEX_KEY);
  if (++taken_ > kFirstFault && taken_ % kFirstFault == 0) BreakRules();
  turn_ = 1 - turn_;
}

void Frames::Read() { context_->CopyResource(copy_.Get(), textures_[turn_].Get()); }

void Frames::BreakRules() {
  if (faults_.Has("double-release")) mutexes_[turn_]->ReleaseSync(OMBREL_KEYED_MUTEX_KEY);
  if (faults_.Has("wrong-key")) mutexes_[turn_]->AcquireSync(OMBREL_KEYED_MUTEX_KEY + 1, 0);
  if (faults_.Has("unheld-read")) Read();
  if (!faults_.Has("read-twice") || mutexes_[turn_]->AcquireSync(OMBREL_KEYED_MUTEX_KEY, 0) != S_OK) return;
  Read();
  mutexes_[turn_]->ReleaseSync(OMBREL_KEYED_MUTEX_KEY);
}
