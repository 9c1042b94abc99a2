#include "keyed_mutex.h"

namespace bench {

HRESULT STDMETHODCALLTYPE KeyedMutex::AcquireSync(UINT64 key, DWORD timeoutMs) {
  DeviceObserver& observer = Shared().Observer();
  const auto answer = observer.Answer(DeviceCall::kAcquireSync);
  const HRESULT result = answer ? *answer : Shared().Acquire(key, timeoutMs);
  observer.OnAcquireSync(Shared().Handle(), key, timeoutMs, result);
  return result;
}

HRESULT STDMETHODCALLTYPE KeyedMutex::ReleaseSync(UINT64 key) {
  DeviceObserver& observer = Shared().Observer();
  const auto answer = observer.Answer(DeviceCall::kReleaseSync);
  const HRESULT result = answer ? *answer : Shared().Release(key);
  observer.OnReleaseSync(Shared().Handle(), key, result);
  return result;
}

}  // namespace bench
