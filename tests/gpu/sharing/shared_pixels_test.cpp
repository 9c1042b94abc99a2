#include "side.h"

#include "sharing/counters.h"
#include "sharing/sharing_device.h"

#include <gtest/gtest.h>

namespace bench::test {
namespace {

class SharedPixelsTest : public TwoSidesTest {};

TEST_F(SharedPixelsTest, ArriveWithTheKeyedMutex) {
  const auto made = makerSide->Create(Description(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX));
  const auto opened = openerSide->Open(SharedHandle(made.Get()));
  const auto writing = FindKeyedMutex(made.Get());
  const auto reading = FindKeyedMutex(opened.Get());
  for (std::uint8_t round = 1; round <= 3; ++round) {
    ASSERT_EQ(writing->AcquireSync(0, 0), S_OK);
    makerSide->Write(made.Get(), Pattern(round));
    ASSERT_EQ(writing->ReleaseSync(0), S_OK);
    ASSERT_EQ(reading->AcquireSync(0, 0), S_OK);
    EXPECT_EQ(openerSide->Read(opened.Get()), Pattern(round));
    ASSERT_EQ(reading->ReleaseSync(0), S_OK);
  }
}

TEST_F(SharedPixelsTest, TravelBackToTheCreator) {
  const auto made = makerSide->Create(Description(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX));
  const auto opened = openerSide->Open(SharedHandle(made.Get()));
  ASSERT_EQ(FindKeyedMutex(opened.Get())->AcquireSync(0, 0), S_OK);
  openerSide->Write(opened.Get(), Pattern(9));
  ASSERT_EQ(FindKeyedMutex(opened.Get())->ReleaseSync(0), S_OK);
  ASSERT_EQ(FindKeyedMutex(made.Get())->AcquireSync(0, 0), S_OK);
  EXPECT_EQ(makerSide->Read(made.Get()), Pattern(9));
}

TEST_F(SharedPixelsTest, ArriveOnTheOpenersSideWithInitialData) {
  const Pixels pixels = Pattern(5);
  const D3D11_SUBRESOURCE_DATA data{pixels.data(), kWidth * sizeof(Pixels::value_type), 0};
  const auto description = Description(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX);
  ComPtr<ID3D11Texture2D> made;
  ASSERT_EQ(makerSide->device->CreateTexture2D(&description, &data, &made), S_OK);
  const auto opened = openerSide->Open(SharedHandle(made.Get()));
  ASSERT_EQ(FindKeyedMutex(opened.Get())->AcquireSync(0, 0), S_OK);
  EXPECT_EQ(openerSide->Read(opened.Get()), pixels);
}

TEST_F(SharedPixelsTest, AreNotCopiedBackByATextureThatIsMarkedReadOnly) {
  const auto made = makerSide->Create(Description(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX));
  const auto opened = openerSide->Open(SharedHandle(made.Get()));
  ASSERT_EQ(MarkReadOnly(opened.Get()), S_OK);
  const auto before = ReadCounters(DeviceGroup::kOwn).downloads;
  ASSERT_EQ(FindKeyedMutex(opened.Get())->AcquireSync(0, 0), S_OK);
  ASSERT_EQ(FindKeyedMutex(opened.Get())->ReleaseSync(0), S_OK);
  EXPECT_EQ(ReadCounters(DeviceGroup::kOwn).downloads, before);
}

TEST_F(SharedPixelsTest, AreTakenOverOnlyWhenTheyAreNewer) {
  const auto made = makerSide->Create(Description(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX));
  const auto mutex = FindKeyedMutex(made.Get());
  const auto before = ReadCounters(DeviceGroup::kOwn).uploads;
  for (int round = 0; round < 3; ++round) {
    ASSERT_EQ(mutex->AcquireSync(0, 0), S_OK);
    ASSERT_EQ(mutex->ReleaseSync(0), S_OK);
  }
  EXPECT_EQ(ReadCounters(DeviceGroup::kOwn).uploads, before);
}

TEST_F(SharedPixelsTest, WithoutKeyedMutexArriveOncePublished) {
  const auto made = openerSide->Create(Description(D3D11_RESOURCE_MISC_SHARED));
  const auto opened = makerSide->Open(SharedHandle(made.Get()));
  for (std::uint8_t round = 1; round <= 3; ++round) {
    makerSide->Write(opened.Get(), Pattern(round));
    ASSERT_EQ(PublishSharedTexture(opened.Get()), S_OK);
    EXPECT_EQ(openerSide->Read(made.Get()), Pattern(round));
  }
}

TEST_F(SharedPixelsTest, AreOneTextureForAllOpenersOnOneDevice) {
  const auto made = makerSide->Create(Description(D3D11_RESOURCE_MISC_SHARED));
  const auto opened = makerSide->Open(SharedHandle(made.Get()));
  makerSide->Write(made.Get(), Pattern(6));
  EXPECT_EQ(makerSide->Read(opened.Get()), Pattern(6));
}

TEST_F(SharedPixelsTest, CannotBePublishedForATextureOfAnotherKind) {
  const auto keyed = makerSide->Create(Description(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX));
  const auto plain = makerSide->Create(Description(0));
  EXPECT_EQ(PublishSharedTexture(keyed.Get()), E_INVALIDARG);
  EXPECT_EQ(PublishSharedTexture(plain.Get()), E_INVALIDARG);
}

class SharedFormatsTest : public SharedPixelsTest, public testing::WithParamInterface<DXGI_FORMAT> {};

TEST_P(SharedFormatsTest, CarryEveryBit) {
  const bool isWide = GetParam() == DXGI_FORMAT_R16G16B16A16_FLOAT;
  const Pixels pixels = Pattern(0x25, isWide ? 2 * kWidth : kWidth);
  const auto made = makerSide->Create(Description(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX, GetParam()));
  ASSERT_NE(made, nullptr);
  const auto opened = openerSide->Open(SharedHandle(made.Get()));
  ASSERT_EQ(FindKeyedMutex(made.Get())->AcquireSync(0, 0), S_OK);
  makerSide->Write(made.Get(), pixels);
  ASSERT_EQ(FindKeyedMutex(made.Get())->ReleaseSync(0), S_OK);
  ASSERT_EQ(FindKeyedMutex(opened.Get())->AcquireSync(0, 0), S_OK);
  EXPECT_EQ(openerSide->Read(opened.Get()), pixels);
}

INSTANTIATE_TEST_SUITE_P(Formats, SharedFormatsTest,
                         testing::Values(DXGI_FORMAT_R8G8B8A8_TYPELESS, DXGI_FORMAT_R8G8B8A8_UNORM,
                                         DXGI_FORMAT_R8G8B8A8_UNORM_SRGB, DXGI_FORMAT_B8G8R8A8_UNORM,
                                         DXGI_FORMAT_B8G8R8A8_TYPELESS, DXGI_FORMAT_B8G8R8A8_UNORM_SRGB,
                                         DXGI_FORMAT_R16G16B16A16_FLOAT));

}  // namespace
}  // namespace bench::test
