#pragma once

#include <dxgi.h>

#include <memory>
#include <string>
#include <vector>

namespace ombrel::test {

// A system's graphics adapters, made up. Outlives what it hands out. One thread.
class FakeAdapters {
 public:
  FakeAdapters();
  ~FakeAdapters();

  IDXGIAdapter* Add(const std::wstring& description);
  void FailFactory() { failing_ = true; }

  HRESULT CreateFactory(REFIID iid, void** factory);
  // The indices that were asked for.
  [[nodiscard]] std::vector<UINT> Enumerated() const;
  // On the factory and all adapters, that were handed out and not given back.
  [[nodiscard]] int References() const;

 private:
  class Adapter;
  class Factory;
  std::vector<std::unique_ptr<Adapter>> adapters_;
  std::unique_ptr<Factory> factory_;
  bool failing_ = false;
};

}  // namespace ombrel::test
