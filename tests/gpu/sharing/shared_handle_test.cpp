#include "side.h"

#include "sharing/sharing_device.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>

namespace bench::test {
namespace {

class SharedHandleTest : public TwoSidesTest {
 protected:
  static HRESULT TryCreate(const D3D11_TEXTURE2D_DESC& description) {
    ComPtr<ID3D11Texture2D> texture;
    return makerSide->device->CreateTexture2D(&description, nullptr, &texture);
  }
};

TEST_F(SharedHandleTest, IsNotZeroAndFitsInto31Bits) {
  const auto texture = makerSide->Create(Description(D3D11_RESOURCE_MISC_SHARED));
  ComPtr<IDXGIResource> resource;
  HANDLE handle = nullptr;
  ASSERT_EQ(texture.As(&resource), S_OK);
  ASSERT_EQ(resource->GetSharedHandle(&handle), S_OK);
  EXPECT_GT(reinterpret_cast<std::uintptr_t>(handle), 0u);
  EXPECT_LT(reinterpret_cast<std::uintptr_t>(handle), std::uintptr_t{1} << 31);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(handle), SharedHandle(texture.Get()));
}

TEST_F(SharedHandleTest, StaysTheSameForOneTexture) {
  const auto texture = makerSide->Create(Description(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX));
  EXPECT_EQ(SharedHandle(texture.Get()), SharedHandle(texture.Get()));
}

TEST_F(SharedHandleTest, IsTheSameOnTheOpenersSide) {
  const auto texture = makerSide->Create(Description(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX));
  const auto opened = openerSide->Open(SharedHandle(texture.Get()));
  EXPECT_EQ(SharedHandle(opened.Get()), SharedHandle(texture.Get()));
}

TEST_F(SharedHandleTest, IsNotUsedAgainForLaterTextures) {
  std::set<std::uint32_t> handles;
  for (int count = 0; count < 200; ++count) {
    const auto texture = makerSide->Create(Description(D3D11_RESOURCE_MISC_SHARED));
    handles.insert(SharedHandle(texture.Get()));
  }
  EXPECT_EQ(handles.size(), 200u);
}

TEST_F(SharedHandleTest, NamesNothingOnceItsTextureIsGone) {
  auto texture = makerSide->Create(Description(D3D11_RESOURCE_MISC_SHARED));
  const std::uint32_t handle = SharedHandle(texture.Get());
  texture.Reset();
  ComPtr<ID3D11Texture2D> opened;
  EXPECT_EQ(
      makerSide->device->OpenSharedResource(reinterpret_cast<HANDLE>(std::uintptr_t{handle}), IID_PPV_ARGS(&opened)),
      E_INVALIDARG);
  EXPECT_EQ(opened, nullptr);
}

TEST_F(SharedHandleTest, OpensAsAnyOfTheTexturesInterfaces) {
  const auto texture = makerSide->Create(Description(D3D11_RESOURCE_MISC_SHARED));
  ComPtr<ID3D11Resource> resource;
  const auto handle = reinterpret_cast<HANDLE>(std::uintptr_t{SharedHandle(texture.Get())});
  ASSERT_EQ(openerSide->device->OpenSharedResource(handle, IID_PPV_ARGS(&resource)), S_OK);
  ComPtr<ID3D11Texture2D> opened;
  EXPECT_EQ(resource.As(&opened), S_OK);
}

TEST_F(SharedHandleTest, ComesWithTheCreatorsDescription) {
  const auto description = Description(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX, DXGI_FORMAT_B8G8R8A8_TYPELESS);
  const auto texture = makerSide->Create(description);
  const auto opened = openerSide->Open(SharedHandle(texture.Get()));
  for (ID3D11Texture2D* const each : {texture.Get(), opened.Get()}) {
    D3D11_TEXTURE2D_DESC seen{};
    each->GetDesc(&seen);
    EXPECT_EQ(seen.Width, kWidth);
    EXPECT_EQ(seen.Height, kHeight);
    EXPECT_EQ(seen.Format, description.Format);
    EXPECT_EQ(seen.BindFlags, description.BindFlags);
    EXPECT_EQ(seen.MiscFlags, description.MiscFlags);
  }
}

TEST_F(SharedHandleTest, HasNoKeyedMutexWithoutTheFlag) {
  const auto texture = makerSide->Create(Description(D3D11_RESOURCE_MISC_SHARED));
  EXPECT_EQ(FindKeyedMutex(texture.Get()), nullptr);
}

TEST_F(SharedHandleTest, BelongsToTheObjectThatTheTextureIs) {
  const auto texture = makerSide->Create(Description(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX));
  ComPtr<IUnknown> identity;
  ComPtr<IUnknown> mutexIdentity;
  ASSERT_EQ(texture.As(&identity), S_OK);
  ASSERT_EQ(FindKeyedMutex(texture.Get()).As(&mutexIdentity), S_OK);
  EXPECT_EQ(identity, mutexIdentity);
}

TEST_F(SharedHandleTest, IsRefusedForWhatCannotBeShared) {
  auto multisampled = Description(D3D11_RESOURCE_MISC_SHARED);
  multisampled.SampleDesc.Count = 4;
  EXPECT_EQ(TryCreate(multisampled), E_INVALIDARG);
  auto mipmapped = Description(D3D11_RESOURCE_MISC_SHARED);
  mipmapped.MipLevels = 2;
  EXPECT_EQ(TryCreate(mipmapped), E_INVALIDARG);
  EXPECT_EQ(TryCreate(Description(D3D11_RESOURCE_MISC_SHARED, DXGI_FORMAT_BC1_UNORM)), E_INVALIDARG);
  EXPECT_EQ(TryCreate(Description(D3D11_RESOURCE_MISC_SHARED | D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX)), E_INVALIDARG);
}

}  // namespace
}  // namespace bench::test
