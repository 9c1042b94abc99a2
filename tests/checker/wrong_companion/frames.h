#pragma once

#include <d3d11.h>
#include <dxgi.h>
#include <ombrel/protocol.h>
#include <wrl/client.h>

#include <array>

#include "faults.h"

// Reads the driver's textures in turns, by plain Direct3D.
class Frames {
 public:
  explicit Frames(const Faults& faults);
  ~Frames();
  Frames(const Frames&) = delete;
  Frames& operator=(const Frames&) = delete;

  void Open(const OmbrelFrameSharingInfo& info);
  [[nodiscard]] bool IsOpen() const { return copy_ != nullptr; }
  void Close();
  // Looks for a frame without waiting long for one.
  void TakeOne();
  [[nodiscard]] int Taken() const { return taken_; }

 private:
  [[nodiscard]] bool AcquireFresh();
  void Read();
  void BreakRules();

  const Faults& faults_;
  Microsoft::WRL::ComPtr<ID3D11Device> device_;
  Microsoft::WRL::ComPtr<ID3D11DeviceContext> context_;
  std::array<Microsoft::WRL::ComPtr<ID3D11Texture2D>, OMBREL_TEXTURES> textures_;
  std::array<Microsoft::WRL::ComPtr<IDXGIKeyedMutex>, OMBREL_TEXTURES> mutexes_;
  Microsoft::WRL::ComPtr<ID3D11Texture2D> copy_;
  HANDLE block_ = nullptr;
  std::size_t turn_ = 0;
  int taken_ = 0;
};
