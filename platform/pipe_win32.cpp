#include <windows.h>

#include <algorithm>

#include "platform/pipe.h"

// Microsoft's <winternl.h> has these types, but not the call; others have both, and would clash with a declaration.
using NTSTATUS = LONG;
enum FILE_INFORMATION_CLASS : int {};
struct IO_STATUS_BLOCK {
  void* status;
  ULONG_PTR information;
};
extern "C" __declspec(dllimport) NTSTATUS NTAPI
    NtQueryInformationFile(HANDLE file, IO_STATUS_BLOCK* status, void* information, ULONG size,
                           FILE_INFORMATION_CLASS informationClass);

namespace ombrel {
namespace {

// What the system tells of a pipe; its headers leave these out of the user-mode kit.
struct PipeLocalInformation {
  ULONG type, configuration, maximumInstances, currentInstances;
  ULONG inboundQuota, readDataAvailable, outboundQuota, writeQuotaAvailable;
  ULONG state, end;
};
constexpr auto kPipeLocalInformation = static_cast<FILE_INFORMATION_CLASS>(24);
constexpr ULONG kPipeConnected = 3;
// The server has disconnected us: the system knows nothing of such a pipe any more.
constexpr auto kPipeDisconnected = static_cast<NTSTATUS>(0xC00000B0);

HANDLE AsHandle(std::intptr_t native) { return reinterpret_cast<HANDLE>(native); }

}  // namespace

bool PipeClient::Open(const char* name, Direction direction) {
  Close();
  const DWORD access = direction == Direction::kRead ? GENERIC_READ : GENERIC_WRITE;
  const HANDLE handle = CreateFileA(name, access, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  native_.store(reinterpret_cast<std::intptr_t>(handle), std::memory_order_release);
  return IsOpen();
}

bool PipeClient::IsPeerGone() const {
  IO_STATUS_BLOCK status{};
  PipeLocalInformation information{};
  const NTSTATUS result = NtQueryInformationFile(AsHandle(native_.load(std::memory_order_acquire)), &status,
                                                 &information, sizeof(information), kPipeLocalInformation);
  return result == kPipeDisconnected || (result == 0 && information.state != kPipeConnected);
}

bool PipeClient::ReadSome(void* buffer, std::size_t capacity, std::size_t& got) {
  const auto wanted = static_cast<DWORD>(std::min<std::size_t>(capacity, MAXDWORD));
  DWORD read = 0;
  const bool isOpen = ReadFile(AsHandle(native_.load(std::memory_order_acquire)), buffer, wanted, &read, nullptr) != 0;
  got = read;
  return isOpen;
}

bool PipeClient::WriteAll(const void* bytes, std::size_t size) {
  DWORD written = 0;
  const HANDLE handle = AsHandle(native_.load(std::memory_order_acquire));
  return WriteFile(handle, bytes, static_cast<DWORD>(size), &written, nullptr) != 0 && written == size;
}

void PipeClient::CancelIo() {
  const std::intptr_t native = native_.load(std::memory_order_acquire);
  if (native != kClosed) CancelIoEx(AsHandle(native), nullptr);
}

void PipeClient::Close() {
  const std::intptr_t native = native_.exchange(kClosed, std::memory_order_acq_rel);
  if (native != kClosed) CloseHandle(AsHandle(native));
}

}  // namespace ombrel
