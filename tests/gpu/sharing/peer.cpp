// The other process of the sharing tests:
//   sharing_peer read HANDLE FILE        acquire with key 0, write the pixels to FILE, release
//   sharing_peer write HANDLE SEED       acquire with key 0, put the pattern of SEED in, release
//   sharing_peer acquire HANDLE KEY MS   acquire and exit with the result as exit code
//   sharing_peer hold HANDLE EVENT       acquire with key 0, set EVENT, stay until killed
//   sharing_peer make SEED FILE EVENT    create a texture with a keyed mutex and the pattern of SEED in it,
//                                        write its handle to FILE, set EVENT, stay until killed
#include "side.h"

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

using namespace bench::test;

namespace {

constexpr int kBadUse = 2;
constexpr int kFailed = 3;
constexpr DWORD kTimeoutMs = 10'000;

HANDLE ToHandle(const std::string& text) { return reinterpret_cast<HANDLE>(std::uintptr_t{std::stoul(text)}); }

void SetNamedEvent(const std::string& name) {
  const HANDLE event = OpenEventA(EVENT_MODIFY_STATE, FALSE, name.c_str());
  SetEvent(event);
  CloseHandle(event);
}

int Read(const Side& side, ID3D11Texture2D* texture, const std::string& file) {
  if (KeyedMutex(texture)->AcquireSync(0, kTimeoutMs) != S_OK) return kFailed;
  const Pixels pixels = side.Read(texture);
  if (KeyedMutex(texture)->ReleaseSync(0) != S_OK) return kFailed;
  std::ofstream stream(file, std::ios::binary);
  stream.write(reinterpret_cast<const char*>(pixels.data()),
               static_cast<std::streamsize>(pixels.size() * sizeof(pixels[0])));
  return stream.good() ? 0 : kFailed;
}

int Write(const Side& side, ID3D11Texture2D* texture, const std::string& seed) {
  if (KeyedMutex(texture)->AcquireSync(0, kTimeoutMs) != S_OK) return kFailed;
  side.Write(texture, Pattern(static_cast<std::uint32_t>(std::stoul(seed))));
  return KeyedMutex(texture)->ReleaseSync(0) == S_OK ? 0 : kFailed;
}

int Hold(ID3D11Texture2D* texture, const std::string& event) {
  const auto mutex = KeyedMutex(texture);
  if (mutex->AcquireSync(0, kTimeoutMs) != S_OK) return kFailed;
  SetNamedEvent(event);
  Sleep(INFINITE);
  return 0;
}

int Make(const Side& side, const std::vector<std::string>& arguments) {
  const auto texture = side.Create(Description(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX));
  if (texture == nullptr || Write(side, texture.Get(), arguments[1]) != 0) return kFailed;
  std::ofstream(arguments[2]) << reinterpret_cast<std::uintptr_t>(SharedHandle(texture.Get())) << '\n';
  SetNamedEvent(arguments[3]);
  Sleep(INFINITE);
  return 0;
}

int Run(const std::vector<std::string>& arguments) {
  const Side side;
  const std::string& command = arguments[0];
  if (command == "make" && arguments.size() == 4) return Make(side, arguments);
  if (arguments.size() < 3) return kBadUse;
  const auto texture = side.Open(ToHandle(arguments[1]));
  if (texture == nullptr) return kFailed;
  if (command == "read") return Read(side, texture.Get(), arguments[2]);
  if (command == "write") return Write(side, texture.Get(), arguments[2]);
  if (command == "hold") return Hold(texture.Get(), arguments[2]);
  if (command != "acquire" || arguments.size() < 4) return kBadUse;
  return KeyedMutex(texture.Get())->AcquireSync(std::stoull(arguments[2]), std::stoul(arguments[3]));
}

}  // namespace

int main(int count, char** values) { return count < 2 ? kBadUse : Run({values + 1, values + count}); }
