#include "recorder/texture_recorder.h"

namespace bench {
namespace {

// When this thread's call began: it is asked about before it runs and told of afterwards.
thread_local checker::Nanoseconds callStart = 0;

checker::Event CallThatEnds(checker::EventKind kind, std::uint32_t handle, UINT64 key, HRESULT result) {
  checker::Event event;
  event.kind = kind;
  event.result = static_cast<std::uint32_t>(result);
  event.start = callStart;
  event.end = NowNanoseconds();
  event.subject = handle;
  event.key = key;
  return event;
}

}  // namespace

std::optional<HRESULT> TextureRecorder::Answer(DeviceCall call) {
  if (call == DeviceCall::kAcquireSync || call == DeviceCall::kReleaseSync) callStart = NowNanoseconds();
  return std::nullopt;
}

void TextureRecorder::OnAcquireSync(std::uint32_t handle, UINT64 key, DWORD timeoutMs, HRESULT result) {
  checker::Event event = CallThatEnds(checker::EventKind::kAcquired, handle, key, result);
  event.timeoutMs = timeoutMs;
  file_.Add(event);
}

void TextureRecorder::OnReleaseSync(std::uint32_t handle, UINT64 key, HRESULT result) {
  file_.Add(CallThatEnds(checker::EventKind::kReleased, handle, key, result));
}

void TextureRecorder::OnReadSharedTexture(std::uint32_t handle) { file_.Add(checker::EventKind::kTextureRead, handle); }

}  // namespace bench
