#include "recorder/texture_recorder.h"

namespace bench {
namespace {

// When this thread's call began: it is asked about before it runs and told of afterwards.
thread_local checker::Nanoseconds callStart = 0;

}  // namespace

std::optional<HRESULT> TextureRecorder::Answer(DeviceCall call) {
  if (call == DeviceCall::kAcquireSync || call == DeviceCall::kReleaseSync) callStart = NowNanoseconds();
  return std::nullopt;
}

void TextureRecorder::OnAcquireSync(std::uint32_t handle, UINT64 key, DWORD timeoutMs, HRESULT result) {
  checker::Event event;
  event.kind = checker::EventKind::kAcquired;
  event.result = static_cast<std::uint32_t>(result);
  event.start = callStart;
  event.end = NowNanoseconds();
  event.subject = handle;
  event.timeoutMs = timeoutMs;
  event.key = key;
  file_.Add(event);
}

void TextureRecorder::OnReleaseSync(std::uint32_t handle, UINT64 key, HRESULT result) {
  checker::Event event;
  event.kind = checker::EventKind::kReleased;
  event.result = static_cast<std::uint32_t>(result);
  event.start = callStart;
  event.end = NowNanoseconds();
  event.subject = handle;
  event.key = key;
  file_.Add(event);
}

void TextureRecorder::OnReadSharedTexture(std::uint32_t handle) { file_.Add(checker::EventKind::kTextureRead, handle); }

}  // namespace bench
