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
#include <string>
#include <utility>
#include <vector>

#include "ombrel/protocol.h"

using Microsoft::WRL::ComPtr;

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
  HANDLE token = nullptr;
  alignas(TOKEN_USER) unsigned char user[256];
  DWORD bytes = 0;
  char* sid = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token) &&
      GetTokenInformation(token, TokenUser, user, sizeof(user), &bytes) &&
      ConvertSidToStringSidA(reinterpret_cast<TOKEN_USER*>(user)->User.Sid, &sid)) {
    const std::string list = std::string("D:P(A;;GA;;;") + sid + ")";
    ConvertStringSecurityDescriptorToSecurityDescriptorA(list.c_str(), SDDL_REVISION_1, &descriptor, nullptr);
  }
  LocalFree(sid);
  CloseHandle(token);
  return descriptor;
}

// The server's end of a pipe. Nothing in it waits longer than it is told to.
class Pipe {
 public:
  ~Pipe() {
    if (handle_ != INVALID_HANDLE_VALUE) CloseHandle(handle_);
    CloseHandle(operation_.hEvent);
  }

  // First instance and only one: nobody else can have the name, before or beside us.
  bool Create(const char* name, DWORD direction, PSECURITY_DESCRIPTOR access) {
    SECURITY_ATTRIBUTES attributes{sizeof(attributes), access, FALSE};
    handle_ = CreateNamedPipeA(name, direction | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
                               PIPE_TYPE_BYTE | PIPE_REJECT_REMOTE_CLIENTS, 1, 65536, 65536, 0, &attributes);
    operation_.hEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    return handle_ != INVALID_HANDLE_VALUE;
  }
  bool WaitForClient(DWORD timeoutMs) {
    DWORD bytes = 0;
    const BOOL done = ConnectNamedPipe(handle_, &operation_);
    if (!done && GetLastError() == ERROR_PIPE_CONNECTED) return true;
    if (!done && GetLastError() == ERROR_NO_DATA) Disconnect();  // came and went
    return Finish(done, timeoutMs, bytes);
  }
  // Appends what has come. False when the client is gone and nothing is left to read.
  bool Read(std::vector<unsigned char>& bytes) {
    DWORD waiting = 0, got = 0;
    if (!PeekNamedPipe(handle_, nullptr, 0, nullptr, &waiting, nullptr)) return false;
    if (waiting == 0) return true;
    const size_t size = bytes.size();
    bytes.resize(size + waiting);
    return Finish(ReadFile(handle_, bytes.data() + size, waiting, nullptr, &operation_), 1000, got) && got == waiting;
  }
  bool Write(const std::vector<unsigned char>& bytes) {
    DWORD written = 0;
    const BOOL done = WriteFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, &operation_);
    return Finish(done, 1000, written) && written == bytes.size();
  }
  // Disconnecting throws away what the driver has not read yet.
  void Flush() { FlushFileBuffers(handle_); }
  void Disconnect() { DisconnectNamedPipe(handle_); }

 private:
  bool Finish(BOOL done, DWORD timeoutMs, DWORD& bytes) {
    if (!done && GetLastError() != ERROR_IO_PENDING) return false;
    if (WaitForSingleObject(operation_.hEvent, timeoutMs) != WAIT_OBJECT_0) CancelIoEx(handle_, &operation_);
    return GetOverlappedResult(handle_, &operation_, &bytes, TRUE) != FALSE;
  }

  HANDLE handle_ = INVALID_HANDLE_VALUE;
  OVERLAPPED operation_{};
};

// The driver's two textures and the poses beside them, for one connection.
class Frames {
 public:
  ~Frames() { Close(); }

  // The driver does not tell which adapter it draws on: the default one, or else the first that knows its handles.
  bool Open(const OmbrelFrameSharingInfo& info) {
    Close();
    ComPtr<IDXGIFactory> factory;
    ComPtr<IDXGIAdapter> adapter;
    if (FAILED(CreateDXGIFactory(IID_PPV_ARGS(&factory)))) return false;
    for (UINT next = 0; !OpenOn(adapter.Get(), info);) {
      if (factory->EnumAdapters(next++, adapter.ReleaseAndGetAddressOf()) != S_OK) return false;
    }
    mapping_ = OpenFileMappingA(FILE_MAP_READ, FALSE, info.name);
    if (mapping_ != nullptr) {
      block_ = static_cast<const OmbrelPoseBlock*>(MapViewOfFile(mapping_, FILE_MAP_READ, 0, 0, sizeof(*block_)));
    }
    return block_ != nullptr;
  }
  void Close() {
    if (block_ != nullptr) UnmapViewOfFile(block_);
    if (mapping_ != nullptr) CloseHandle(mapping_);
    block_ = nullptr;
    mapping_ = nullptr;
    for (auto& mutex : mutexes_) mutex.Reset();
    for (auto& texture : textures_) texture.Reset();
    turn_ = 0;
    wasHeld_ = false;
  }
  bool IsOpen() const { return block_ != nullptr; }

  // Copies the next frame, if there is one, and the pose that it was rendered with. Waits for a few milliseconds.
  bool Take(OmbrelPoseSlot& pose) {
    const HRESULT result = mutexes_[turn_]->AcquireSync(OMBREL_KEYED_MUTEX_KEY, wasHeld_ ? 4 : 0);
    // A time-out and an abandoned mutex are no failures to FAILED: S_OK alone means that the texture is ours.
    if (result != S_OK) {
      wasHeld_ = result == static_cast<HRESULT>(WAIT_TIMEOUT);  // the driver draws into it: what comes then is new
      if (!wasHeld_) Close();                                   // the driver is gone
      return false;
    }
    const bool isNew = wasHeld_ || DriverHoldsTheOther();
    if (isNew) {
      // The driver draws on without us if we keep a texture for longer than a frame: queue the copy, and let go.
      context_->CopyResource(copy_.Get(), textures_[turn_].Get());
      pose = block_->slots[turn_];
    }
    mutexes_[turn_]->ReleaseSync(OMBREL_KEYED_MUTEX_KEY);
    if (!isNew) {
      Sleep(1);
      return false;
    }
    turn_ = 1 - turn_;
    wasHeld_ = false;
    return true;
  }

  // The frame that was taken last, as a picture of both eyes side by side.
  bool Save(const std::string& path) {
    D3D11_TEXTURE2D_DESC size{};
    copy_->GetDesc(&size);
    D3D11_MAPPED_SUBRESOURCE mapped{};
    if (FAILED(context_->Map(copy_.Get(), 0, D3D11_MAP_READ, 0, &mapped))) return false;
    BITMAPINFOHEADER picture{};
    picture.biSize = sizeof(picture);
    picture.biWidth = static_cast<LONG>(size.Width);
    picture.biHeight = -static_cast<LONG>(size.Height);  // rows from the top
    picture.biPlanes = 1;
    picture.biBitCount = 32;
    const DWORD start = sizeof(BITMAPFILEHEADER) + sizeof(picture), rowBytes = 4 * size.Width;
    const BITMAPFILEHEADER header{0x4D42, start + rowBytes * size.Height, 0, 0, start};
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(&header), sizeof(header));
    file.write(reinterpret_cast<const char*>(&picture), sizeof(picture));
    std::vector<char> pixels(rowBytes);
    for (size_t row = 0; row < size.Height; ++row) {
      std::memcpy(pixels.data(), static_cast<const char*>(mapped.pData) + row * mapped.RowPitch, rowBytes);
      for (size_t i = 0; i < rowBytes; i += 4) std::swap(pixels[i], pixels[i + 2]);  // bitmaps begin with blue
      file.write(pixels.data(), rowBytes);
    }
    context_->Unmap(copy_.Get(), 0);
    file.close();
    return file.good();
  }

 private:
  bool OpenOn(IDXGIAdapter* adapter, const OmbrelFrameSharingInfo& info) {
    const auto type = adapter == nullptr ? D3D_DRIVER_TYPE_HARDWARE : D3D_DRIVER_TYPE_UNKNOWN;
    ComPtr<ID3D11Device> device;
    if (FAILED(D3D11CreateDevice(adapter, type, nullptr, 0, nullptr, 0, D3D11_SDK_VERSION, &device, nullptr,
                                 context_.ReleaseAndGetAddressOf()))) {
      return false;
    }
    const uint32_t handles[] = {info.sharedHandle0, info.sharedHandle1};
    for (int i = 0; i < OMBREL_TEXTURES; ++i) {
      const auto handle = reinterpret_cast<HANDLE>(uintptr_t{handles[i]});
      textures_[i].Reset();
      if (FAILED(device->OpenSharedResource(handle, IID_PPV_ARGS(&textures_[i])))) return false;
      if (FAILED(textures_[i].As(&mutexes_[i]))) return false;
    }
    D3D11_TEXTURE2D_DESC description{};
    textures_[0]->GetDesc(&description);
    description.BindFlags = description.MiscFlags = 0;
    description.Usage = D3D11_USAGE_STAGING;
    description.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
    return SUCCEEDED(device->CreateTexture2D(&description, nullptr, copy_.ReleaseAndGetAddressOf()));
  }
  // It holds one of the two at any time, save for the moment between them.
  bool DriverHoldsTheOther() {
    const HRESULT result = mutexes_[1 - turn_]->AcquireSync(OMBREL_KEYED_MUTEX_KEY, 0);
    if (result == S_OK) mutexes_[1 - turn_]->ReleaseSync(OMBREL_KEYED_MUTEX_KEY);
    return result == static_cast<HRESULT>(WAIT_TIMEOUT);
  }

  ComPtr<ID3D11DeviceContext> context_;
  ComPtr<ID3D11Texture2D> textures_[OMBREL_TEXTURES];
  ComPtr<IDXGIKeyedMutex> mutexes_[OMBREL_TEXTURES];
  ComPtr<ID3D11Texture2D> copy_;
  HANDLE mapping_ = nullptr;
  const OmbrelPoseBlock* block_ = nullptr;
  int turn_ = 0;
  bool wasHeld_ = false;
};

class Companion {
 public:
  bool Start() {
    const PSECURITY_DESCRIPTOR access = OnlyThisUser();
    // Both before we wait for the driver on either.
    const bool made = access != nullptr && in_.Create(OMBREL_PIPE_FROM_DRIVER, PIPE_ACCESS_INBOUND, access) &&
                      out_.Create(OMBREL_PIPE_TO_DRIVER, PIPE_ACCESS_OUTBOUND, access);
    LocalFree(access);
    return made;
  }

  // Serves one driver after the other, until three pictures are saved or somebody stops us.
  void Run() {
    while (!IsDone()) {
      if (WaitForDriver()) Serve();
      frames_.Close();
      received_.clear();
      in_.Disconnect();
      out_.Disconnect();
    }
  }
  int Pictures() const { return pictures_; }

 private:
  bool IsDone() const { return stopped || pictures_ == 3; }

  bool WaitForDriver() {
    std::vector<unsigned char> early;
    while (!IsDone()) {
      if (!in_.WaitForClient(100)) continue;
      if (out_.WaitForClient(100)) return true;  // the driver opens it 150 ms after the other
      if (!in_.Read(early)) return false;        // it went instead
    }
    return false;
  }

  void Serve() {
    std::printf("connected\n");
    start_ = Seconds();
    nextPicture_ = start_ + 1;
    double nextPose = start_;
    bool isUp = Send(OMBREL_FRAMERATE_UPDATE, OmbrelFramerateUpdate{60});
    while (isUp && !IsDone()) {
      if (Seconds() >= nextPose) {
        isUp = SendPose() && SendController();
        nextPose = Seconds() + 1.0 / 90;
      }
      isUp = isUp && in_.Read(received_) && TakeMessages();
      if (frames_.IsOpen()) {
        TakeFrame();
      } else {
        Sleep(1);
      }
    }
    if (isUp) out_.Flush();
    std::printf("the connection ends\n");
  }

  template <typename Payload>
  bool Send(uint32_t type, const Payload& payload) {
    const OmbrelMessageHeader header{sizeof(payload), type};
    std::vector<unsigned char> message(sizeof(header) + sizeof(payload));
    std::memcpy(message.data(), &header, sizeof(header));
    std::memcpy(message.data() + sizeof(header), &payload, sizeof(payload));
    return out_.Write(message);
  }

  // The head of somebody who looks to the left and to the right.
  bool SendPose() {
    const auto yaw = static_cast<float>(0.8 * std::sin(1.5 * (Seconds() - start_)));
    OmbrelTrackingQuaternion pose{};
    pose.orientation[1] = std::sin(yaw / 2);
    pose.orientation[3] = std::cos(yaw / 2);
    pose.position[1] = OMBREL_DEFAULT_HEAD_HEIGHT;
    pose.format = OMBREL_POSE_QUATERNION;
    return Send(OMBREL_TRACKING_UPDATE, pose);
  }

  // Half a metre ahead, its trigger pulled and pressed every other second.
  bool SendController() {
    OmbrelControllerUpdate controller{};
    controller.controllerId = 1;
    controller.trackingState = OMBREL_TRACKING;
    controller.pose[0] = controller.pose[5] = controller.pose[10] = 1;
    controller.pose[7] = 1.2F;
    controller.pose[11] = -0.5F;
    if (std::fmod(Seconds() - start_, 2) < 1) {
      controller.trigger[0] = 1;
      controller.pressedButtons = OMBREL_BUTTON_MASK(OMBREL_BUTTON_TRIGGER);
    }
    return Send(OMBREL_CONTROLLER_UPDATE, controller);
  }

  // Whole messages of what has come; the rest stays for the next time. False when it cannot be the driver's.
  bool TakeMessages() {
    OmbrelMessageHeader header;
    while (received_.size() >= sizeof(header)) {
      std::memcpy(&header, received_.data(), sizeof(header));
      if (header.length > OMBREL_MAX_PAYLOAD) return false;
      if (received_.size() < sizeof(header) + header.length) return true;
      TakeMessage(header, received_.data() + sizeof(header));
      received_.erase(received_.begin(), received_.begin() + static_cast<ptrdiff_t>(sizeof(header) + header.length));
    }
    return true;
  }

  void TakeMessage(const OmbrelMessageHeader& header, const unsigned char* payload) {
    OmbrelFrameSharingInfo info;
    OmbrelHapticPulse pulse;
    if (header.type == OMBREL_FRAME_SHARING_INFO && header.length == sizeof(info)) {
      std::memcpy(&info, payload, sizeof(info));
      info.name[sizeof(info.name) - 1] = '\0';
      std::printf("frames of process %u: %s\n", info.processId, frames_.Open(info) ? "opened" : "cannot be opened");
    } else if (header.type == OMBREL_HAPTIC_PULSE && header.length == sizeof(pulse)) {
      std::memcpy(&pulse, payload, sizeof(pulse));
      std::printf("controller %u vibrates for %u microseconds\n", pulse.controllerId, pulse.durationMicroseconds);
    }  // what a later driver may send beside these is no concern of ours
  }

  void TakeFrame() {
    OmbrelPoseSlot pose;
    if (!frames_.Take(pose)) return;
    if (Seconds() < nextPicture_) return;
    const std::string path = "picture" + std::to_string(pictures_ + 1) + ".bmp";
    if (!frames_.Save(path)) {
      std::fprintf(stderr, "%s cannot be saved\n", path.c_str());
      stopped = true;
      return;
    }
    ++pictures_;
    nextPicture_ = Seconds() + 1;
    // Column 2 of the matrix is where the back of the head points. All zero: the virtual display tells no pose.
    std::printf("%s: looking %+.0f degrees to the left\n", path.c_str(),
                std::atan2(pose.matrix[2], pose.matrix[10]) * 57.29578F);
  }

  Pipe in_;
  Pipe out_;
  Frames frames_;
  std::vector<unsigned char> received_;
  double start_ = 0;
  double nextPicture_ = 0;
  int pictures_ = 0;
};

int main() {
  SetConsoleCtrlHandler(OnControl, TRUE);
  std::setvbuf(stdout, nullptr, _IONBF, 0);
  timeBeginPeriod(1);  // waits of a millisecond take one
  Companion companion;
  if (!companion.Start()) {
    std::fprintf(stderr, "the pipes cannot be made: is another companion running?\n");
    return 1;
  }
  std::printf("waiting for the driver\n");
  companion.Run();
  timeEndPeriod(1);
  return companion.Pictures() == 3 ? 0 : 1;
}
