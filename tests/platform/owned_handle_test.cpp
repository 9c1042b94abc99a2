#include "platform/owned_handle.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <utility>

namespace ombrel::test {
namespace {

bool IsOpen(NativeHandle descriptor) { return fcntl(descriptor, F_GETFD) != -1; }

OwnedHandle Open() { return OwnedHandle(open("/dev/null", O_RDONLY | O_CLOEXEC)); }

TEST(OwnedHandle, HoldsNothingAtFirst) {
  OwnedHandle handle;
  EXPECT_FALSE(handle);
  handle.Reset();
  EXPECT_EQ(handle.Get(), kNoHandle);
}

TEST(OwnedHandle, ClosesWhatItHoldsWhenItGoes) {
  NativeHandle descriptor = kNoHandle;
  {
    const OwnedHandle handle = Open();
    ASSERT_TRUE(handle);
    descriptor = handle.Get();
    EXPECT_TRUE(IsOpen(descriptor));
  }
  EXPECT_FALSE(IsOpen(descriptor));
}

TEST(OwnedHandle, PassesOnWhatItHolds) {
  OwnedHandle first = Open();
  const NativeHandle descriptor = first.Get();
  const OwnedHandle second(std::move(first));
  EXPECT_FALSE(first);  // NOLINT(bugprone-use-after-move): that is the question
  EXPECT_EQ(second.Get(), descriptor);
  EXPECT_TRUE(IsOpen(descriptor));
}

TEST(OwnedHandle, ClosesWhatItHeldWhenItIsGivenAnother) {
  OwnedHandle handle = Open();
  const NativeHandle former = handle.Get();
  handle = Open();
  EXPECT_FALSE(IsOpen(former));
  EXPECT_TRUE(IsOpen(handle.Get()));
}

TEST(OwnedHandle, KeepsWhatItHoldsWhenItIsGivenToItself) {
  OwnedHandle handle = Open();
  OwnedHandle& same = handle;
  handle = std::move(same);
  EXPECT_TRUE(IsOpen(handle.Get()));
}

}  // namespace
}  // namespace ombrel::test
