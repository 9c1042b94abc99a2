#include "context/driver_log.h"

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>

#include "platform/guarded.h"

namespace ombrel {
namespace {

constexpr std::size_t kMessageCapacity = 1024;

constinit std::atomic<vr::IVRDriverLog*> logSink{nullptr};

}  // namespace

void Log(const char* format, ...) {
  vr::IVRDriverLog* sink = logSink.load(std::memory_order_acquire);
  if (sink == nullptr) return;
  std::array<char, kMessageCapacity> message;
  va_list arguments;
  va_start(arguments, format);
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): it does not see what va_start does
  std::vsnprintf(message.data(), message.size(), format, arguments);
  va_end(arguments);
  Guarded([&] { sink->Log(message.data()); });
}

void SetLogSinkIfNone(vr::IVRDriverLog* sink) {
  vr::IVRDriverLog* none = nullptr;
  logSink.compare_exchange_strong(none, sink, std::memory_order_acq_rel);
}

void ClearLogSink() { logSink.store(nullptr, std::memory_order_release); }

}  // namespace ombrel
