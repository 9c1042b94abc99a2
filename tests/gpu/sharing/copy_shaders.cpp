#include "copy_shaders.h"

#include <d3dcompiler.h>

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

}  // namespace

void BindCopyShaders(const Side& side) {
  const auto vertexCode = Compile(kVertexShader, "vs_4_0");
  const auto pixelCode = Compile(kPixelShader, "ps_4_0");
  ComPtr<ID3D11VertexShader> vertexShader;
  ComPtr<ID3D11PixelShader> pixelShader;
  side.device->CreateVertexShader(vertexCode->GetBufferPointer(), vertexCode->GetBufferSize(), nullptr, &vertexShader);
  side.device->CreatePixelShader(pixelCode->GetBufferPointer(), pixelCode->GetBufferSize(), nullptr, &pixelShader);
  side.context->VSSetShader(vertexShader.Get(), nullptr, 0);
  side.context->PSSetShader(pixelShader.Get(), nullptr, 0);
}

}  // namespace bench::test
