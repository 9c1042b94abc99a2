#pragma once

#include <d3d11.h>

#include <atomic>

namespace bench {

// The reference count of a COM object that is made with `new` and one reference, and goes with its last.
template <class Interface>
class Counted : public Interface {
 public:
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  virtual ~Counted() = default;

 private:
  std::atomic<ULONG> references_{1};
};

}  // namespace bench
