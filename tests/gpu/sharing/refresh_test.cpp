#include "copy_shaders.h"
#include "side.h"

#include "sharing/sharing_device.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

namespace bench::test {
namespace {

// A texture without keyed mutex that one device draws into and another one samples.
class RefreshTest : public testing::Test {
 protected:
  void SetUp() override {
    sampled = reader.Create(Description(D3D11_RESOURCE_MISC_SHARED));
    drawn = writer.Open(SharedHandle(sampled.Get()));
    target = reader.Create(Description(0));
    BindAll();
  }

  void BindAll() {
    ComPtr<ID3D11ShaderResourceView> source;
    ComPtr<ID3D11RenderTargetView> output;
    ID3D11Device& device = *reader.device.Get();
    device.CreateShaderResourceView(sampled.Get(), nullptr, &source);
    device.CreateRenderTargetView(target.Get(), nullptr, &output);
    const D3D11_VIEWPORT viewport{0, 0, kWidth, kHeight, 0, 1};
    BindCopyShaders(reader);
    reader.context->PSSetShaderResources(0, 1, source.GetAddressOf());
    reader.context->OMSetRenderTargets(1, output.GetAddressOf(), nullptr);
    reader.context->RSSetViewports(1, &viewport);
    reader.context->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
  }

  Pixels Draw() {
    reader.context->Draw(3, 0);
    return reader.Read(target.Get());
  }

  Side reader;
  Side writer;
  ComPtr<ID3D11Texture2D> sampled;
  ComPtr<ID3D11Texture2D> drawn;
  ComPtr<ID3D11Texture2D> target;
};

TEST_F(RefreshTest, ADrawSeesWhatWasPublishedBeforeIt) {
  writer.Write(drawn.Get(), Pattern(21));
  ASSERT_EQ(PublishSharedTexture(drawn.Get()), S_OK);
  EXPECT_EQ(Draw(), Pattern(21));
}

TEST_F(RefreshTest, ABoundTextureFollowsEachPublication) {
  for (std::uint8_t round = 30; round < 33; ++round) {
    writer.Write(drawn.Get(), Pattern(round));
    ASSERT_EQ(PublishSharedTexture(drawn.Get()), S_OK);
    EXPECT_EQ(Draw(), Pattern(round));
  }
}

TEST_F(RefreshTest, ADrawDoesNotSeeWhatWasNotPublished) {
  writer.Write(drawn.Get(), Pattern(40));
  ASSERT_EQ(PublishSharedTexture(drawn.Get()), S_OK);
  writer.Write(drawn.Get(), Pattern(41));
  EXPECT_EQ(Draw(), Pattern(40));
}

TEST_F(RefreshTest, WhatTheGpuDrewIsPublished) {
  ComPtr<ID3D11RenderTargetView> view;
  ASSERT_EQ(writer.device->CreateRenderTargetView(drawn.Get(), nullptr, &view), S_OK);
  const FLOAT color[4] = {1, 0, 0.2f, 1};
  writer.context->ClearRenderTargetView(view.Get(), color);
  ASSERT_EQ(PublishSharedTexture(drawn.Get()), S_OK);
  EXPECT_EQ(Draw(), Pixels(std::size_t{kWidth} * kHeight, 0xFF3300FF));
}

}  // namespace
}  // namespace bench::test
