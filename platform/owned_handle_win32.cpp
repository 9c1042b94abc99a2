#include <windows.h>

#include "platform/owned_handle.h"

namespace ombrel {

OwnedHandle::OwnedHandle(NativeHandle native) : native_(native == INVALID_HANDLE_VALUE ? kNoHandle : native) {}

void OwnedHandle::Reset() {
  if (native_ != kNoHandle) CloseHandle(native_);
  native_ = kNoHandle;
}

}  // namespace ombrel
