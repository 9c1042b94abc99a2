#include <unistd.h>

#include "platform/owned_handle.h"

namespace ombrel {

OwnedHandle::OwnedHandle(NativeHandle native) : native_(native) {}

void OwnedHandle::Reset() {
  if (native_ != kNoHandle) close(native_);
  native_ = kNoHandle;
}

}  // namespace ombrel
