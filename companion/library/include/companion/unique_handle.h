#pragma once

#include <windows.h>

#include <memory>

namespace companion {

struct HandleCloser {
  using pointer = HANDLE;
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};

// A kernel handle that is closed with its owner. Give it no INVALID_HANDLE_VALUE: none is null.
using UniqueHandle = std::unique_ptr<void, HandleCloser>;

}  // namespace companion
