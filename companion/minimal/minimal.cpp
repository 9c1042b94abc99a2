// The smallest whole companion: turns the head, shows a controller, reads the frames, saves three of them, and ends.
// Needs ombrel/protocol.h, Windows and Direct3D 11. docs/protocol.md says why each step is as it is.
// Build it as Ombrel.exe, and start it before the runtime.
#include <windows.h>
// windows.h must come first.
#include <d3d11.h>
#include <mmsystem.h>
#include <sddl.h>
#include <wrl/client.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "ombrel/protocol.h"

using Microsoft::WRL::ComPtr;
using Bytes = std::vector<char>;

static constexpr int kPictures = 3;

static std::atomic<bool> stopped = false;

static BOOL WINAPI OnControl(DWORD) {
  stopped = true;
  return TRUE;
}

static double Seconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// An access list for the user of this program alone: by default, everybody may read a pipe.
static PSECURITY_DESCRIPTOR OnlyThisUser() {
  alignas(TOKEN_USER) char user[256];
  DWORD bytes = 0;
  char* sid = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  if (GetTokenInformation(GetCurrentProcessToken(), TokenUser, user, sizeof(user), &bytes) &&
      ConvertSidToStringSidA(reinterpret_cast<TOKEN_USER*>(user)->User.Sid, &sid)) {
    const std::string list = std::string("D:P(A;;GA;;;") + sid + ")";
    ConvertStringSecurityDescriptorToSecurityDescriptorA(list.c_str(), SDDL_REVISION_1, &descriptor, nullptr);
  }
  LocalFree(sid);
  return descriptor;
}

// The server's end of a pipe, which lives as long as the program. Nothing in it waits longer than it is told to.
class Pipe {
 public:
  // First instance and only one: nobody else can have the name, before or beside us.
  bool Create(const char* name, DWORD direction, PSECURITY_DESCRIPTOR access) {
    SECURITY_ATTRIBUTES attributes{sizeof(attributes), access, FALSE};
    operation_.hEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    handle_ = CreateNamedPipeA(name, direction | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
                               PIPE_TYPE_BYTE | PIPE_REJECT_REMOTE_CLIENTS, 1, 65536, 65536, 0, &attributes);
    return handle_ != INVALID_HANDLE_VALUE;
  }
  bool WaitForClient(DWORD timeoutMs) {
    const BOOL done = ConnectNamedPipe(handle_, &operation_);
    if (!done && GetLastError() == ERROR_PIPE_CONNECTED) return true;
    if (!done && GetLastError() == ERROR_NO_DATA) Disconnect();  // came and went
    return Finish(done, timeoutMs, 0);
  }
  // Appends what has come. False when the client is gone and nothing is left to read.
  bool Read(Bytes& bytes) {
    DWORD waiting = 0;
    if (!PeekNamedPipe(handle_, nullptr, 0, nullptr, &waiting, nullptr)) return false;
    if (waiting == 0) return true;
    const size_t before = bytes.size();
    bytes.resize(before + waiting);
    return Finish(ReadFile(handle_, bytes.data() + before, waiting, nullptr, &operation_), 1000, waiting);
  }
  bool Write(const Bytes& bytes) {
    const auto count = static_cast<DWORD>(bytes.size());
    return Finish(WriteFile(handle_, bytes.data(), count, nullptr, &operation_), 1000, count);
  }
  // Disconnecting throws away what the driver has not read yet.
  void Flush() { FlushFileBuffers(handle_); }
  void Disconnect() { DisconnectNamedPipe(handle_); }

 private:
  bool Finish(BOOL done, DWORD timeoutMs, DWORD wanted) {
    DWORD bytes = 0;
    if (!done && GetLastError() != ERROR_IO_PENDING) return false;
    if (WaitForSingleObject(operation_.hEvent, timeoutMs) != WAIT_OBJECT_0) CancelIoEx(handle_, &operation_);
    return GetOverlappedResult(handle_, &operation_, &bytes, TRUE) && bytes == wanted;
  }

  HANDLE handle_ = INVALID_HANDLE_VALUE;
  OVERLAPPED operation_{};
};

// Header and payload in one write.
template <typename Payload>
static bool Send(Pipe& out, uint32_t type, const Payload& payload) {
  const OmbrelMessageHeader header{sizeof(payload), type};
  Bytes message(sizeof(header) + sizeof(payload));
  std::memcpy(message.data(), &header, sizeof(header));
  std::memcpy(message.data() + sizeof(header), &payload, sizeof(payload));
  return out.Write(message);
}

// The head of somebody who looks to the left and to the right.
static bool SendPose(Pipe& out, double seconds) {
  const auto yaw = static_cast<float>(0.8 * std::sin(1.5 * seconds));
  OmbrelTrackingQuaternion pose{};
  pose.orientation[1] = std::sin(yaw / 2);
  pose.orientation[3] = std::cos(yaw / 2);
  pose.position[1] = OMBREL_DEFAULT_HEAD_HEIGHT;
  pose.format = OMBREL_POSE_QUATERNION;
  return Send(out, OMBREL_TRACKING_UPDATE, pose);
}

// Half a metre ahead, its trigger pulled and pressed every other second.
static bool SendController(Pipe& out, double seconds) {
  OmbrelControllerUpdate controller{};
  controller.controllerId = 1;
  controller.trackingState = OMBREL_TRACKING;
  controller.pose[0] = controller.pose[5] = controller.pose[10] = 1;
  controller.pose[7] = 1.2F;
  controller.pose[11] = -0.5F;
  if (std::fmod(seconds, 2) < 1) {
    controller.trigger[0] = 1;
    controller.pressedButtons = OMBREL_BUTTON_MASK(OMBREL_BUTTON_TRIGGER);
  }
  return Send(out, OMBREL_CONTROLLER_UPDATE, controller);
}

static ComPtr<ID3D11Device> MakeDevice(IDXGIAdapter* adapter) {
  const auto type = adapter == nullptr ? D3D_DRIVER_TYPE_HARDWARE : D3D_DRIVER_TYPE_UNKNOWN;
  ComPtr<ID3D11Device> device;
  D3D11CreateDevice(adapter, type, nullptr, 0, nullptr, 0, D3D11_SDK_VERSION, &device, nullptr, nullptr);
  return device;
}

// The driver's two textures and the poses beside them, for one connection.
class Frames {
 public:
  explicit Frames(const ComPtr<ID3D11Device>& device) : device_(device) {}
  ~Frames() { UnmapViewOfFile(block_); }

  // The driver does not tell which adapter it draws on: the default one, or else the first that knows its handles.
  bool Open(const OmbrelFrameSharingInfo& info) {
    ComPtr<IDXGIFactory> factory;
    ComPtr<IDXGIAdapter> adapter;
    if (FAILED(CreateDXGIFactory(IID_PPV_ARGS(&factory)))) return false;
    for (UINT next = 0; !OpenTexture(0, info.sharedHandle0) || !OpenTexture(1, info.sharedHandle1); ++next) {
      if (factory->EnumAdapters(next, adapter.ReleaseAndGetAddressOf()) != S_OK) return false;
      device_ = MakeDevice(adapter.Get());
    }
    D3D11_TEXTURE2D_DESC description{};
    textures_[0]->GetDesc(&description);
    description.BindFlags = description.MiscFlags = 0;
    description.Usage = D3D11_USAGE_STAGING;
    description.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
    device_->GetImmediateContext(&context_);
    if (FAILED(device_->CreateTexture2D(&description, nullptr, &copy_))) return false;
    const HANDLE mapping = OpenFileMappingA(FILE_MAP_READ, FALSE, info.name);
    block_ = static_cast<const OmbrelPoseBlock*>(MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, sizeof(*block_)));
    CloseHandle(mapping);
    return isOpen_ = block_ != nullptr;
  }
  bool IsOpen() const { return isOpen_; }

  // Copies the next frame, if there is one, and the pose that it was rendered with. Waits for a few milliseconds.
  bool Take(OmbrelPoseSlot& pose) {
    const HRESULT result = mutexes_[turn_]->AcquireSync(OMBREL_KEYED_MUTEX_KEY, wasHeld_ ? 4 : 0);
    // A time-out and an abandoned mutex are no failures to FAILED: S_OK alone means that the texture is ours.
    if (result != S_OK) {
      isOpen_ = wasHeld_ = result == static_cast<HRESULT>(WAIT_TIMEOUT);  // if not, the driver is gone
      return false;
    }
    // What the driver was drawing into, or has turned away from, is new: queue the copy and let go, since it draws on
    // without us if we keep a texture for longer than a frame.
    const bool isNew = wasHeld_ || DriverHoldsTheOther();
    if (isNew) {
      context_->CopyResource(copy_.Get(), textures_[turn_].Get());
      pose = block_->slots[turn_];
    }
    mutexes_[turn_]->ReleaseSync(OMBREL_KEYED_MUTEX_KEY);
    wasHeld_ = false;
    if (isNew) {
      turn_ = 1 - turn_;
    } else {
      Sleep(1);
    }
    return isNew;
  }

  // The frame that was taken last, as a picture of both eyes side by side.
  bool Save(const std::string& path) const {
    D3D11_TEXTURE2D_DESC size{};
    copy_->GetDesc(&size);
    D3D11_MAPPED_SUBRESOURCE mapped{};
    if (FAILED(context_->Map(copy_.Get(), 0, D3D11_MAP_READ, 0, &mapped))) return false;
    const auto width = static_cast<LONG>(size.Width), height = static_cast<LONG>(size.Height);
    const BITMAPINFOHEADER picture{sizeof(picture), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};  // rows from the top
    const DWORD start = sizeof(BITMAPFILEHEADER) + sizeof(picture), rowBytes = 4 * size.Width;
    const BITMAPFILEHEADER header{0x4D42, start + rowBytes * size.Height, 0, 0, start};
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(&header), sizeof(header));
    file.write(reinterpret_cast<const char*>(&picture), sizeof(picture));
    for (size_t row = 0; row < size.Height; ++row) {
      auto* const pixels = static_cast<char*>(mapped.pData) + row * mapped.RowPitch;
      for (size_t i = 0; i < rowBytes; i += 4) std::swap(pixels[i], pixels[i + 2]);  // bitmaps begin with blue
      file.write(pixels, rowBytes);
    }
    context_->Unmap(copy_.Get(), 0);
    file.close();
    return file.good();
  }

 private:
  bool OpenTexture(int index, uint32_t handle) {
    return device_ &&
           SUCCEEDED(device_->OpenSharedResource(reinterpret_cast<HANDLE>(uintptr_t{handle}),
                                                 IID_PPV_ARGS(textures_[index].ReleaseAndGetAddressOf()))) &&
           SUCCEEDED(textures_[index].As(&mutexes_[index]));
  }
  // It holds one of the two at any time, save for the moment between them.
  bool DriverHoldsTheOther() {
    const HRESULT result = mutexes_[1 - turn_]->AcquireSync(OMBREL_KEYED_MUTEX_KEY, 0);
    if (result == S_OK) mutexes_[1 - turn_]->ReleaseSync(OMBREL_KEYED_MUTEX_KEY);
    return result == static_cast<HRESULT>(WAIT_TIMEOUT);
  }

  ComPtr<ID3D11Device> device_;
  ComPtr<ID3D11DeviceContext> context_;
  ComPtr<ID3D11Texture2D> textures_[OMBREL_TEXTURES], copy_;
  ComPtr<IDXGIKeyedMutex> mutexes_[OMBREL_TEXTURES];
  const OmbrelPoseBlock* block_ = nullptr;
  bool isOpen_ = false, wasHeld_ = false;
  int turn_ = 0;
};

// Runs on a thread of its own, so that neither poses nor messages wait for Direct3D.
static void TakeFrames(const OmbrelFrameSharingInfo& info, const ComPtr<ID3D11Device>& device,
                       const std::atomic<bool>& isOver, int& pictures) {
  Frames frames(device);
  std::printf("frames of process %u: %s\n", info.processId, frames.Open(info) ? "opened" : "cannot be opened");
  double nextPicture = Seconds() + 1;
  OmbrelPoseSlot pose;
  while (frames.IsOpen() && !isOver && !stopped) {
    if (!frames.Take(pose) || Seconds() < nextPicture) continue;
    const std::string path = "picture" + std::to_string(pictures + 1) + ".bmp";
    // Column 2 of the matrix is where the back of the head points. All zero: the virtual display tells no pose.
    const float degrees = std::atan2(pose.matrix[2], pose.matrix[10]) * 57.29578F;
    const bool saved = frames.Save(path);
    std::printf(saved ? "%s: looking %+.0f degrees to the left\n" : "%s cannot be saved\n", path.c_str(), degrees);
    if (!saved || ++pictures == kPictures) stopped = true;
    nextPicture = Seconds() + 1;
  }
}

using FramesHandler = std::function<void(const OmbrelFrameSharingInfo&)>;

static void TakeMessage(const OmbrelMessageHeader& header, const char* payload, const FramesHandler& onFrames) {
  OmbrelFrameSharingInfo info;
  OmbrelHapticPulse pulse;
  if (header.type == OMBREL_FRAME_SHARING_INFO && header.length == sizeof(info)) {
    std::memcpy(&info, payload, sizeof(info));
    info.name[sizeof(info.name) - 1] = '\0';
    onFrames(info);
  } else if (header.type == OMBREL_HAPTIC_PULSE && header.length == sizeof(pulse)) {
    std::memcpy(&pulse, payload, sizeof(pulse));
    std::printf("controller %u vibrates for %u microseconds\n", pulse.controllerId, pulse.durationMicroseconds);
  }  // what a later driver may send beside these is no concern of ours
}

// Takes whole messages out of what has come. False when it cannot be the driver's.
static bool TakeMessages(Bytes& received, const FramesHandler& onFrames) {
  OmbrelMessageHeader header;
  while (received.size() >= sizeof(header)) {
    std::memcpy(&header, received.data(), sizeof(header));
    if (header.length > OMBREL_MAX_PAYLOAD) return false;
    if (received.size() < sizeof(header) + header.length) return true;
    TakeMessage(header, received.data() + sizeof(header), onFrames);
    received.erase(received.begin(), received.begin() + static_cast<ptrdiff_t>(sizeof(header) + header.length));
  }
  return true;
}

static bool WaitForDriver(Pipe& in, Pipe& out) {
  Bytes early;
  while (!stopped) {
    if (!in.WaitForClient(100)) continue;
    if (out.WaitForClient(100)) return true;  // the driver opens it 150 ms after the other
    if (!in.Read(early)) return false;        // it went instead
  }
  return false;
}

// One connection, from its first message to its end.
static void Serve(Pipe& in, Pipe& out, const ComPtr<ID3D11Device>& device, int& pictures) {
  std::atomic<bool> isOver = false;
  std::thread taker;
  const auto onFrames = [&](const OmbrelFrameSharingInfo& info) {  // once in a connection
    if (!taker.joinable()) taker = std::thread([&, info] { TakeFrames(info, device, isOver, pictures); });
  };
  const double start = Seconds();
  double nextPose = start;
  Bytes received;
  bool isUp = Send(out, OMBREL_FRAMERATE_UPDATE, OmbrelFramerateUpdate{60});
  while (isUp && !stopped) {
    if (const double now = Seconds(); now >= nextPose) {
      isUp = SendPose(out, now - start) && SendController(out, now - start);
      nextPose = now + 1.0 / 90;
    }
    isUp = isUp && in.Read(received) && TakeMessages(received, onFrames);
    Sleep(1);
  }
  if (isUp) out.Flush();
  isOver = true;
  if (taker.joinable()) taker.join();
}

int main() {
  SetConsoleCtrlHandler(OnControl, TRUE);
  std::setvbuf(stdout, nullptr, _IONBF, 0);
  timeBeginPeriod(1);  // waits of a millisecond take one
  Pipe in, out;
  const PSECURITY_DESCRIPTOR access = OnlyThisUser();
  // Both before we wait for the driver on either.
  if (access == nullptr || !in.Create(OMBREL_PIPE_FROM_DRIVER, PIPE_ACCESS_INBOUND, access) ||
      !out.Create(OMBREL_PIPE_TO_DRIVER, PIPE_ACCESS_OUTBOUND, access)) {
    std::fprintf(stderr, "the pipes cannot be made: is another companion running?\n");
    return 1;
  }
  const auto device = MakeDevice(nullptr);  // takes a while, and frames would wait for it
  std::printf("waiting for the driver\n");
  int pictures = 0;
  while (!stopped) {  // one driver after the other
    if (WaitForDriver(in, out)) {
      std::printf("connected\n");
      Serve(in, out, device, pictures);
      std::printf("the connection ends\n");
    }
    in.Disconnect();
    out.Disconnect();
  }
  return pictures == kPictures ? 0 : 1;
}
