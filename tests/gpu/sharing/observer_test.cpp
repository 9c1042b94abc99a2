#include "copy_shaders.h"
#include "side.h"

#include "sharing/device_observer.h"
#include "sharing/sharing_device.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace bench::test {
namespace {

using testing::_;
using testing::Field;
using testing::NiceMock;
using testing::Return;
using testing::SizeIs;

class MockObserver : public DeviceObserver {
 public:
  MOCK_METHOD(std::optional<HRESULT>, Answer, (DeviceCall), (override));
  MOCK_METHOD(void, OnCreateBuffer, (const D3D11_BUFFER_DESC&), (override));
  MOCK_METHOD(void, OnCreateTexture2D, (const D3D11_TEXTURE2D_DESC&), (override));
  MOCK_METHOD(void, OnCreateShaderResourceView, (ID3D11Resource*, const D3D11_SHADER_RESOURCE_VIEW_DESC*), (override));
  MOCK_METHOD(void, OnCreateRenderTargetView, (ID3D11Resource*, const D3D11_RENDER_TARGET_VIEW_DESC*), (override));
  MOCK_METHOD(void, OnCreateBlendState, (const D3D11_BLEND_DESC&), (override));
  MOCK_METHOD(void, OnCreateSamplerState, (const D3D11_SAMPLER_DESC&), (override));
  MOCK_METHOD(void, OnOpenSharedResource, (std::uint32_t, HRESULT), (override));
  MOCK_METHOD(void, OnAcquireSync, (std::uint32_t, UINT64, DWORD, HRESULT), (override));
  MOCK_METHOD(void, OnReleaseSync, (std::uint32_t, UINT64, HRESULT), (override));
  MOCK_METHOD(void, OnReadSharedTexture, (std::uint32_t), (override));
  MOCK_METHOD(void, OnOMSetRenderTargets, (std::span<ID3D11RenderTargetView* const>, ID3D11DepthStencilView*),
              (override));
  MOCK_METHOD(void, OnOMSetBlendState, (ID3D11BlendState*, const FLOAT*, UINT), (override));
  MOCK_METHOD(void, OnRSSetViewports, (std::span<const D3D11_VIEWPORT>), (override));
  MOCK_METHOD(void, OnIASetPrimitiveTopology, (D3D11_PRIMITIVE_TOPOLOGY), (override));
  MOCK_METHOD(void, OnPSSetShaderResources, (UINT, std::span<ID3D11ShaderResourceView* const>), (override));
  MOCK_METHOD(void, OnPSSetSamplers, (UINT, std::span<ID3D11SamplerState* const>), (override));
  MOCK_METHOD(void, OnMap, (ID3D11Resource*, D3D11_MAP), (override));
  MOCK_METHOD(void, OnDraw, (UINT, UINT), (override));
  MOCK_METHOD(void, OnCopyResource, (ID3D11Resource*, ID3D11Resource*), (override));
  MOCK_METHOD(void, OnClearRenderTargetView, (ID3D11RenderTargetView*, (std::span<const FLOAT, 4>)), (override));
  MOCK_METHOD(void, OnFlush, (), (override));
};

class ObserverTest : public testing::Test {
 protected:
  void SetUp() override { SetObserver(DeviceGroup::kOwn, &observer); }
  void TearDown() override { SetObserver(DeviceGroup::kOwn, nullptr); }

  ComPtr<ID3D11Texture2D> MakeKeyed() const { return side.Create(Description(D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX)); }
  void AnswerAll(HRESULT result) { ON_CALL(observer, Answer(_)).WillByDefault(Return(std::optional<HRESULT>(result))); }

  NiceMock<MockObserver> observer;
  Side side;
};

TEST_F(ObserverTest, SeesTheDescriptionAsTheCallerGaveIt) {
  EXPECT_CALL(observer, OnCreateTexture2D(Field(&D3D11_TEXTURE2D_DESC::MiscFlags, 0x100u)));
  EXPECT_NE(MakeKeyed(), nullptr);
}

TEST_F(ObserverTest, SeesKeyTimeoutAndResultOfAnAcquire) {
  const auto texture = MakeKeyed();
  const auto value = SharedHandle(texture.Get());
  EXPECT_CALL(observer, OnAcquireSync(value, 4, 11, static_cast<HRESULT>(WAIT_TIMEOUT)));
  EXPECT_CALL(observer, OnReleaseSync(value, 9, E_FAIL));
  FindKeyedMutex(texture.Get())->AcquireSync(4, 11);
  FindKeyedMutex(texture.Get())->ReleaseSync(9);
}

TEST_F(ObserverTest, SeesWhichHandleWasOpened) {
  EXPECT_CALL(observer, OnOpenSharedResource(0x1234, E_INVALIDARG));
  EXPECT_EQ(side.Open(0x1234), nullptr);
}

TEST_F(ObserverTest, SeesWhichSharedTextureACopyReads) {
  const auto source = MakeKeyed(), target = MakeKeyed();
  EXPECT_CALL(observer, OnReadSharedTexture(SharedHandle(source.Get()))).Times(2);
  side.context->CopyResource(target.Get(), source.Get());
  side.context->CopySubresourceRegion(target.Get(), 0, 0, 0, 0, source.Get(), 0, nullptr);
}

TEST_F(ObserverTest, DoesNotSeeTheCopiesOfTheSharing) {
  const auto texture = MakeKeyed();
  EXPECT_CALL(observer, OnCreateTexture2D(_)).Times(0);
  EXPECT_CALL(observer, OnCopyResource(_, _)).Times(0);
  EXPECT_CALL(observer, OnReadSharedTexture(_)).Times(0);
  EXPECT_CALL(observer, OnMap(_, _)).Times(0);
  ASSERT_EQ(FindKeyedMutex(texture.Get())->AcquireSync(0, 0), S_OK);
  ASSERT_EQ(FindKeyedMutex(texture.Get())->ReleaseSync(0), S_OK);
}

TEST_F(ObserverTest, SeesTheCallsOfADraw) {
  ID3D11RenderTargetView* const noTarget = nullptr;
  ID3D11ShaderResourceView* const noViews[2] = {};
  ID3D11SamplerState* const noSampler = nullptr;
  const D3D11_VIEWPORT viewports[2] = {{0, 0, 4, 4, 0, 1}, {4, 0, 4, 4, 0, 1}};
  EXPECT_CALL(observer, OnOMSetRenderTargets(SizeIs(1), nullptr));
  EXPECT_CALL(observer, OnOMSetBlendState(nullptr, nullptr, 0xFFFFFFFFu));
  EXPECT_CALL(observer, OnRSSetViewports(SizeIs(2)));
  EXPECT_CALL(observer, OnIASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST));
  EXPECT_CALL(observer, OnPSSetShaderResources(1, SizeIs(2)));
  EXPECT_CALL(observer, OnPSSetSamplers(3, SizeIs(1)));
  EXPECT_CALL(observer, OnFlush());
  EXPECT_CALL(observer, OnDraw(3, 6));
  side.context->OMSetRenderTargets(1, &noTarget, nullptr);
  side.context->OMSetBlendState(nullptr, nullptr, 0xFFFFFFFFu);
  side.context->RSSetViewports(2, viewports);
  side.context->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
  side.context->PSSetShaderResources(1, 2, noViews);
  side.context->PSSetSamplers(3, 1, &noSampler);
  side.context->Flush();
  BindCopyShaders(side);
  side.context->Draw(3, 6);
}

TEST_F(ObserverTest, SeesTheViewsAndClearsOfATarget) {
  const auto texture = MakeKeyed();
  ComPtr<ID3D11RenderTargetView> target;
  ComPtr<ID3D11ShaderResourceView> source;
  EXPECT_CALL(observer, OnCreateRenderTargetView(texture.Get(), nullptr));
  EXPECT_CALL(observer, OnCreateShaderResourceView(texture.Get(), nullptr));
  side.device->CreateRenderTargetView(texture.Get(), nullptr, &target);
  side.device->CreateShaderResourceView(texture.Get(), nullptr, &source);
  EXPECT_CALL(observer, OnClearRenderTargetView(target.Get(), _)).WillOnce([](auto, std::span<const FLOAT, 4> color) {
    EXPECT_EQ(color[3], 0.5f);
  });
  const FLOAT color[4] = {0, 0, 0, 0.5f};
  side.context->ClearRenderTargetView(target.Get(), color);
}

TEST_F(ObserverTest, SeesTheStatesThatAreMade) {
  CD3D11_SAMPLER_DESC sampler{CD3D11_DEFAULT()};
  sampler.MaxAnisotropy = 16;
  const D3D11_BUFFER_DESC buffer{16, D3D11_USAGE_DYNAMIC, D3D11_BIND_CONSTANT_BUFFER, D3D11_CPU_ACCESS_WRITE, 0, 0};
  EXPECT_CALL(observer, OnCreateSamplerState(Field(&D3D11_SAMPLER_DESC::MaxAnisotropy, 16u)));
  EXPECT_CALL(observer, OnCreateBuffer(Field(&D3D11_BUFFER_DESC::ByteWidth, 16u)));
  ComPtr<ID3D11SamplerState> madeSampler;
  ComPtr<ID3D11Buffer> madeBuffer;
  EXPECT_EQ(side.device->CreateSamplerState(&sampler, &madeSampler), S_OK);
  EXPECT_EQ(side.device->CreateBuffer(&buffer, nullptr, &madeBuffer), S_OK);
}

TEST_F(ObserverTest, CanForceTheResultOfAnAcquireWithoutTakingTheMutex) {
  const auto texture = MakeKeyed();
  const auto mutex = FindKeyedMutex(texture.Get());
  EXPECT_CALL(observer, Answer(DeviceCall::kAcquireSync))
      .WillOnce(Return(std::optional<HRESULT>(DXGI_ERROR_DEVICE_REMOVED)))
      .WillOnce(Return(std::nullopt));
  EXPECT_EQ(mutex->AcquireSync(0, 0), DXGI_ERROR_DEVICE_REMOVED);
  EXPECT_EQ(mutex->AcquireSync(0, 0), S_OK);
}

TEST_F(ObserverTest, CanKeepATexturesKeyedMutexBack) {
  const auto texture = MakeKeyed();
  EXPECT_CALL(observer, Answer(DeviceCall::kQueryKeyedMutex))
      .WillOnce(Return(std::optional<HRESULT>(E_NOINTERFACE)))
      .WillOnce(Return(std::nullopt));
  ComPtr<IDXGIKeyedMutex> mutex;
  EXPECT_EQ(texture.As(&mutex), E_NOINTERFACE);
  EXPECT_EQ(mutex, nullptr);
  EXPECT_EQ(texture.As(&mutex), S_OK);
}

TEST_F(ObserverTest, CanMakeEveryCreationFail) {
  AnswerAll(DXGI_ERROR_DEVICE_REMOVED);
  const auto description = Description(D3D11_RESOURCE_MISC_SHARED);
  auto* texture = reinterpret_cast<ID3D11Texture2D*>(std::uintptr_t{1});
  EXPECT_EQ(side.device->CreateTexture2D(&description, nullptr, &texture), DXGI_ERROR_DEVICE_REMOVED);
  EXPECT_EQ(texture, nullptr);
  EXPECT_EQ(side.Open(2), nullptr);
  EXPECT_EQ(side.device->GetDeviceRemovedReason(), DXGI_ERROR_DEVICE_REMOVED);
}

TEST_F(ObserverTest, CanMakeAMappingFail) {
  const D3D11_BUFFER_DESC description{16, D3D11_USAGE_DYNAMIC, D3D11_BIND_CONSTANT_BUFFER, D3D11_CPU_ACCESS_WRITE, 0,
                                      0};
  ComPtr<ID3D11Buffer> buffer;
  ASSERT_EQ(side.device->CreateBuffer(&description, nullptr, &buffer), S_OK);
  AnswerAll(E_OUTOFMEMORY);
  D3D11_MAPPED_SUBRESOURCE mapped{&mapped, 1, 1};
  EXPECT_EQ(side.context->Map(buffer.Get(), 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped), E_OUTOFMEMORY);
  EXPECT_EQ(mapped.pData, nullptr);
}

}  // namespace
}  // namespace bench::test
