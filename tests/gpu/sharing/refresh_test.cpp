#include "side.h"

#include "sharing/sharing_device.h"

#include <d3dcompiler.h>
#include <gtest/gtest.h>

#include <string_view>

namespace bench::test {
namespace {

constexpr std::string_view kVertexShader = R"(
float4 main(uint id : SV_VertexID) : SV_POSITION {
  float2 corner = float2((id << 1) & 2, id & 2);
  return float4(corner * float2(2, -2) + float2(-1, 1), 0, 1);
})";

constexpr std::string_view kPixelShader = R"(
Texture2D source;
float4 main(float4 position : SV_POSITION) : SV_TARGET { return source.Load(int3(position.xy, 0)); })";

ComPtr<ID3DBlob> Compile(std::string_view source, const char* target) {
  ComPtr<ID3DBlob> code;
  D3DCompile(source.data(), source.size(), nullptr, nullptr, nullptr, "main", target, 0, 0, &code, nullptr);
  return code;
}

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
    const auto vertexCode = Compile(kVertexShader, "vs_4_0");
    const auto pixelCode = Compile(kPixelShader, "ps_4_0");
    ComPtr<ID3D11VertexShader> vertexShader;
    ComPtr<ID3D11PixelShader> pixelShader;
    ComPtr<ID3D11ShaderResourceView> source;
    ComPtr<ID3D11RenderTargetView> output;
    ID3D11Device& device = *reader.device.Get();
    device.CreateVertexShader(vertexCode->GetBufferPointer(), vertexCode->GetBufferSize(), nullptr, &vertexShader);
    device.CreatePixelShader(pixelCode->GetBufferPointer(), pixelCode->GetBufferSize(), nullptr, &pixelShader);
    device.CreateShaderResourceView(sampled.Get(), nullptr, &source);
    device.CreateRenderTargetView(target.Get(), nullptr, &output);
    const D3D11_VIEWPORT viewport{0, 0, kWidth, kHeight, 0, 1};
    reader.context->VSSetShader(vertexShader.Get(), nullptr, 0);
    reader.context->PSSetShader(pixelShader.Get(), nullptr, 0);
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
  for (std::uint32_t round = 30; round < 33; ++round) {
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
