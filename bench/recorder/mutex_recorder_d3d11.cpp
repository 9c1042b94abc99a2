#include "mutex_recorder.h"

#include <array>
#include <atomic>

#include "sharing/sharing_device.h"
#include "sharing/textures.h"
#include "sharing/vtable_patch.h"

namespace bench {
namespace {

using checker::Event;
using checker::EventKind;
using Microsoft::WRL::ComPtr;

// The order of the interface's methods, those that it inherits first.
constexpr std::size_t kAcquireSlot = 8, kReleaseSlot = 9;

std::atomic<const RecordingFile*> recordedTo = nullptr;

std::uint32_t HandleOf(IDXGIKeyedMutex* mutex) {
  ComPtr<ID3D11Texture2D> texture;
  return SUCCEEDED(mutex->QueryInterface(IID_PPV_ARGS(&texture))) ? SharedHandle(texture.Get()) : 0;
}

void Record(EventKind kind, IDXGIKeyedMutex* mutex, UINT64 key, DWORD timeoutMs, HRESULT result,
            checker::Nanoseconds start) {
  Event event;
  event.start = start;
  event.end = NowNanoseconds();
  const RecordingFile* const file = recordedTo;
  if (file == nullptr) return;
  event.kind = kind;
  event.result = static_cast<std::uint32_t>(result);
  event.subject = HandleOf(mutex);
  event.timeoutMs = timeoutMs;
  event.key = key;
  file->Add(event);
}

HRESULT STDMETHODCALLTYPE RecordedAcquire(IDXGIKeyedMutex* mutex, UINT64 key, DWORD timeoutMs);

HRESULT AcquireAndRecord(IDXGIKeyedMutex* mutex, UINT64 key, DWORD timeoutMs) {
  const auto start = NowNanoseconds();
  const HRESULT result = Original<&RecordedAcquire>()(mutex, key, timeoutMs);
  Record(EventKind::kAcquired, mutex, key, timeoutMs, result, start);
  return result;
}

// Tried at once before it waits: that it is held by somebody else can be told in no other way.
HRESULT STDMETHODCALLTYPE RecordedAcquire(IDXGIKeyedMutex* mutex, UINT64 key, DWORD timeoutMs) {
  const HRESULT atOnce = AcquireAndRecord(mutex, key, 0);
  if (atOnce != static_cast<HRESULT>(WAIT_TIMEOUT) || timeoutMs == 0) return atOnce;
  return AcquireAndRecord(mutex, key, timeoutMs);
}

HRESULT STDMETHODCALLTYPE RecordedRelease(IDXGIKeyedMutex* mutex, UINT64 key) {
  const auto start = NowNanoseconds();
  const HRESULT result = Original<&RecordedRelease>()(mutex, key);
  Record(EventKind::kReleased, mutex, key, 0, result, start);
  return result;
}

// Any mutex shows its class.
ComPtr<IDXGIKeyedMutex> AnyMutex() {
  ComPtr<ID3D11Device> device;
  ComPtr<ID3D11Texture2D> texture;
  if (FAILED(CreateSharingDevice(&device, nullptr))) return nullptr;
  const auto description = TextureDescription(4, 4, DXGI_FORMAT_R8G8B8A8_UNORM, D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX);
  if (FAILED(device->CreateTexture2D(&description, nullptr, &texture))) return nullptr;
  return FindKeyedMutex(texture.Get());
}

}  // namespace

MutexRecorder::MutexRecorder(const RecordingFile& file) {
  recordedTo = &file;
  const std::array patches{Patch<&RecordedAcquire>(kAcquireSlot), Patch<&RecordedRelease>(kReleaseSlot)};
  const auto mutex = AnyMutex();
  works_ = mutex != nullptr && PatchMethods(mutex.Get(), patches);
}

MutexRecorder::~MutexRecorder() { recordedTo = nullptr; }

}  // namespace bench
