// The named objects that a companion finds the frames by: their names, sizes and what happens when they exist already.
#include <windows.h>
// windows.h must come first.
#include <gmock/gmock.h>

#include <exception>
#include <functional>
#include <string>
#include <thread>

#include "base/owned_handle.h"
#include "support/driver_test.h"
#include "support/module_import.h"

namespace ombrel::test {
namespace {

// The C library's generator as it starts on every thread: seed 1.
std::string FirstName() {
  const std::string alphabet = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  std::string name;
  std::uint32_t state = 1;
  while (name.size() < 58) {
    state = state * 214013 + 2531011;
    name += alphabet[((state >> 16) & 0x7FFF) % 62];
  }
  return name;
}

// What the driver asked of the system.
std::string mappingName;
HANDLE mappingFile = nullptr;
DWORD mappingSize = 0;
DWORD mappingProtection = 0;
SIZE_T viewSize = 0;
DWORD viewAccess = 0;

HANDLE WINAPI RecordMapping(HANDLE file, SECURITY_ATTRIBUTES* security, DWORD protection, DWORD high, DWORD low,
                            const char* name) {
  mappingFile = file;
  mappingProtection = protection;
  mappingSize = low;
  mappingName = name;
  return CreateFileMappingA(file, security, protection, high, low, name);
}

void* WINAPI RecordView(HANDLE mapping, DWORD access, DWORD high, DWORD low, SIZE_T size) {
  viewAccess = access;
  viewSize = size;
  return MapViewOfFile(mapping, access, high, low, size);
}

HANDLE WINAPI NoMapping(HANDLE, SECURITY_ATTRIBUTES*, DWORD, DWORD, DWORD, const char*) { return nullptr; }

class SharedBlockTest : public DriverTest {
 protected:
  // On a thread that has never asked for a random number.
  void InitOnAFreshThread() {
    std::thread([this] { EXPECT_EQ(Init(), vr::VRInitError_None); }).join();
  }
  static bool BlockExists(const std::string& name) {
    return static_cast<bool>(bench::OwnedHandle(OpenFileMappingA(FILE_MAP_ALL_ACCESS, FALSE, name.c_str())));
  }
  static bool MutexExists(const std::string& name) {
    return static_cast<bool>(bench::OwnedHandle(OpenMutexA(SYNCHRONIZE, FALSE, name.c_str())));
  }
};

TEST_F(SharedBlockTest, HasTheNameThatTheUnseededGeneratorGives) {
  EXPECT_FALSE(BlockExists(FirstName()));
  InitOnAFreshThread();
  EXPECT_TRUE(BlockExists(FirstName()));
}

TEST_F(SharedBlockTest, NameIsTheKnownOne) {
  EXPECT_EQ(FirstName(), "frAQBc8Wsa1xVPfvJcrgRYwTiizs2trQF69AzBlax3CF3EDNhm3soLBPh7");
}

TEST_F(SharedBlockTest, HasTwoMutexesBesideIt) {
  InitOnAFreshThread();
  EXPECT_TRUE(MutexExists(FirstName() + "0"));
  EXPECT_TRUE(MutexExists(FirstName() + "1"));
  EXPECT_FALSE(MutexExists(FirstName()));
  EXPECT_FALSE(MutexExists(FirstName() + "2"));
}

TEST_F(SharedBlockTest, MutexesBelongToNobody) {
  InitOnAFreshThread();
  for (const char* number : {"0", "1"}) {
    const bench::OwnedHandle mutex(OpenMutexA(SYNCHRONIZE, FALSE, (FirstName() + number).c_str()));
    EXPECT_EQ(WaitForSingleObject(mutex.Get(), 0), WAIT_OBJECT_0);
    ReleaseMutex(mutex.Get());
  }
}

TEST_F(SharedBlockTest, IsAskedForWith128BytesOfPagedMemory) {
  const ModuleImport mapping(module.Handle(), "CreateFileMappingA", reinterpret_cast<void*>(&RecordMapping));
  const ModuleImport view(module.Handle(), "MapViewOfFile", reinterpret_cast<void*>(&RecordView));
  InitOnAFreshThread();
  EXPECT_EQ(mappingName, FirstName());
  EXPECT_EQ(mappingFile, INVALID_HANDLE_VALUE);
  EXPECT_EQ(mappingProtection, DWORD{PAGE_READWRITE});
  EXPECT_EQ(mappingSize, 128U);
  EXPECT_EQ(viewAccess, DWORD{FILE_MAP_ALL_ACCESS});
  EXPECT_EQ(viewSize, 128U);
}

TEST_F(SharedBlockTest, BeginsEmpty) {
  InitOnAFreshThread();
  const bench::OwnedHandle mapping(OpenFileMappingA(FILE_MAP_READ, FALSE, FirstName().c_str()));
  const auto* bytes = static_cast<const std::uint8_t*>(MapViewOfFile(mapping.Get(), FILE_MAP_READ, 0, 0, 128));
  ASSERT_NE(bytes, nullptr);
  EXPECT_THAT(std::vector<std::uint8_t>(bytes, bytes + 128), testing::Each(0));
  UnmapViewOfFile(bytes);
}

TEST_F(SharedBlockTest, ThatExistsAlreadyIsTaken) {
  const bench::OwnedHandle mine(
      CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 128, FirstName().c_str()));
  auto* bytes = static_cast<std::uint8_t*>(MapViewOfFile(mine.Get(), FILE_MAP_ALL_ACCESS, 0, 0, 128));
  ASSERT_NE(bytes, nullptr);
  bytes[5] = 42;
  const ModuleImport view(module.Handle(), "MapViewOfFile", reinterpret_cast<void*>(&RecordView));
  viewSize = 0;
  InitOnAFreshThread();
  EXPECT_EQ(viewSize, 128U) << "the driver has mapped it";
  EXPECT_EQ(bytes[5], 42);
  UnmapViewOfFile(bytes);
}

TEST_F(SharedBlockTest, ThatCannotBeMadeDoesNotEndInit) {
  const ModuleImport mapping(module.Handle(), "CreateFileMappingA", reinterpret_cast<void*>(&NoMapping));
  InitOnAFreshThread();
  EXPECT_FALSE(BlockExists(FirstName()));
  EXPECT_EQ(Headset().Activate(0), vr::VRInitError_None);
}

TEST_F(SharedBlockTest, IsGoneWithTheHeadset) {
  InitOnAFreshThread();
  Provider().Cleanup();
  EXPECT_FALSE(BlockExists(FirstName()));
}

}  // namespace
}  // namespace ombrel::test
