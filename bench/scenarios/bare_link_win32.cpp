#include "bare_link.h"

#include <array>
#include <cstring>
#include <string>

#include "companion/messages.h"
#include "companion/pipe_server.h"

namespace bench::scenarios {

using namespace companion;

namespace {

// Shorter than the driver's, which makes no call more.
constexpr DWORD kRetryMs = 10;
constexpr DWORD kSecondPipeDelayMs = 10;
constexpr DWORD kBlockBytes = 128;
constexpr std::size_t kSlotBytes = 64;
constexpr std::size_t kTranslationX = 3;
const std::string kName(58, 'c');  // as long as the driver's

OwnedHandle OpenPipe(const std::string& name, DWORD access) {
  return OwnedHandle(CreateFileA(name.c_str(), access, 0, nullptr, OPEN_EXISTING, 0, nullptr));
}

}  // namespace

BareLink::BareLink(BareParts parts)
    : parts_(parts),
      mapping_(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kBlockBytes, kName.c_str())),
      block_(MapViewOfFile(mapping_.Get(), FILE_MAP_ALL_ACCESS, 0, 0, kBlockBytes)),
      firstMutex_(CreateMutexA(nullptr, FALSE, (kName + "0").c_str())),
      secondMutex_(CreateMutexA(nullptr, FALSE, (kName + "1").c_str())),
      stop_(CreateEventA(nullptr, TRUE, FALSE, nullptr)),
      isToAnnounce_(CreateEventA(nullptr, TRUE, FALSE, nullptr)),
      isOver_(CreateEventA(nullptr, TRUE, FALSE, nullptr)),
      connector_([this] { Connect(); }) {}

BareLink::~BareLink() {
  SetEvent(stop_.Get());
  connector_.join();
  UnmapViewOfFile(block_);
}

void BareLink::Connect() {
  do {
    if (reader_ && WaitForSingleObject(reader_.Get(), 0) == WAIT_OBJECT_0) EndConnection();
    if (!reader_ && OpenPipes()) SetUp();
  } while (WaitForSingleObject(stop_.Get(), kRetryMs) == WAIT_TIMEOUT);
  if (reader_) EndConnection();
}

bool BareLink::OpenPipes() {
  const PipeServerOptions names;
  toCompanion_ = OpenPipe(names.fromDriverName, GENERIC_WRITE);
  if (!toCompanion_ || WaitForSingleObject(stop_.Get(), kSecondPipeDelayMs) == WAIT_OBJECT_0) return false;
  fromCompanion_ = OpenPipe(names.toDriverName, GENERIC_READ);
  if (!fromCompanion_) toCompanion_.Reset();
  return static_cast<bool>(fromCompanion_);
}

void BareLink::SetUp() {
  bytesRead_ = 0;
  reader_ = OwnedHandle(CreateThread(nullptr, 0, Read, this, 0, nullptr));
  ResetEvent(isToAnnounce_.Get());
  ResetEvent(isOver_.Get());
  writer_ = OwnedHandle(CreateThread(nullptr, 0, AnnounceWhenTold, this, 0, nullptr));
  const std::lock_guard lock(mutex_);
  isStreaming_ = parts_ == BareParts::kPipes || outputs_.Make();
}

void BareLink::EndConnection() {
  {
    const std::lock_guard lock(mutex_);
    isStreaming_ = false;
  }
  SetEvent(isOver_.Get());
  do {
    CancelIoEx(toCompanion_.Get(), nullptr);
  } while (WaitForSingleObject(writer_.Get(), 2) != WAIT_OBJECT_0);
  writer_.Reset();
  toCompanion_.Reset();
  // Race: CancelIoEx between two reads cancels nothing, so it is repeated until the thread has gone.
  do {
    CancelIoEx(fromCompanion_.Get(), nullptr);
  } while (WaitForSingleObject(reader_.Get(), 2) != WAIT_OBJECT_0);
  reader_.Reset();
  fromCompanion_.Reset();
}

DWORD WINAPI BareLink::Read(void* self) {
  auto& link = *static_cast<BareLink*>(self);
  std::array<std::byte, 4096> buffer;
  DWORD got = 0;
  while (ReadFile(link.fromCompanion_.Get(), buffer.data(), static_cast<DWORD>(buffer.size()), &got, nullptr) != 0) {
    link.bytesRead_ += got;
  }
  return 0;
}

void BareLink::Write(const void* bytes, std::size_t size) {
  DWORD written = 0;
  WriteFile(toCompanion_.Get(), bytes, static_cast<DWORD>(size), &written, nullptr);
}

// In three writes, as the driver does it.
void BareLink::Announce() {
  const FrameSharingInfo info{.processId = GetCurrentProcessId(),
                              .sharedHandles = {outputs_.SharedHandle(0), outputs_.SharedHandle(1)},
                              .name = kName};
  const Bytes message = EncodeFrameSharingInfo(info);
  Write(message.data(), 4);
  Write(message.data() + 4, 4);
  Write(message.data() + kHeaderBytes, message.size() - kHeaderBytes);
}

DWORD WINAPI BareLink::AnnounceWhenTold(void* self) {
  auto& link = *static_cast<BareLink*>(self);
  const std::array events{link.isOver_.Get(), link.isToAnnounce_.Get()};
  const DWORD told = WaitForMultipleObjects(static_cast<DWORD>(events.size()), events.data(), FALSE, INFINITE);
  if (told == WAIT_OBJECT_0 + 1) link.Announce();
  return 0;
}

void BareLink::Present(float number) {
  const std::lock_guard lock(mutex_);
  if (!isStreaming_ || parts_ == BareParts::kPipes) return;
  SetEvent(isToAnnounce_.Get());
  if (parts_ == BareParts::kTextures) return;
  std::memcpy(static_cast<std::byte*>(block_) + kSlotBytes * outputs_.Held() + kTranslationX * sizeof(number), &number,
              sizeof(number));
  outputs_.HandOver();
}

}  // namespace bench::scenarios
