#include "scene_shaders.h"

#include <stdexcept>
#include <string>
#include <string_view>

#include <windows.h>
#include <d3dcompiler.h>

namespace bench {
namespace {

constexpr std::string_view kSource = R"(
cbuffer Camera : register(b0) {
  row_major float4x4 clipFromWorld;
  float tintExponent;
};
Texture2DArray surfaces : register(t0);
SamplerState linearSampler : register(s0);

struct Corner {
  float4 position : SV_POSITION;
  float3 texCoord : TEXCOORD0;
  float3 tint : COLOR0;
};

Corner VertexMain(float3 position : POSITION, float3 texCoord : TEXCOORD, float3 tint : COLOR) {
  Corner corner;
  corner.position = mul(clipFromWorld, float4(position, 1));
  corner.texCoord = texCoord;
  corner.tint = pow(tint, tintExponent);
  return corner;
}

float4 PixelMain(Corner corner) : SV_TARGET {
  return float4(surfaces.Sample(linearSampler, corner.texCoord).rgb * corner.tint, 1);
}
)";

pD3DCompile FindCompiler() {
  const HMODULE compiler = LoadLibraryW(L"d3dcompiler_47.dll");
  const FARPROC function = compiler != nullptr ? GetProcAddress(compiler, "D3DCompile") : nullptr;
  if (function == nullptr) {
    throw std::runtime_error("there is no d3dcompiler_47.dll");
  }
  return reinterpret_cast<pD3DCompile>(reinterpret_cast<void*>(function));
}

}  // namespace

Microsoft::WRL::ComPtr<ID3DBlob> CompileShader(std::string_view source, const char* entry, const char* target) {
  static const pD3DCompile compile = FindCompiler();
  Microsoft::WRL::ComPtr<ID3DBlob> code;
  Microsoft::WRL::ComPtr<ID3DBlob> messages;
  const HRESULT result =
      compile(source.data(), source.size(), "shader", nullptr, nullptr, entry, target, 0, 0, &code, &messages);
  if (result != S_OK) {
    const auto* text = messages ? static_cast<const char*>(messages->GetBufferPointer()) : "no message";
    throw std::runtime_error(std::string("a shader does not compile: ") + text);
  }
  return code;
}

Microsoft::WRL::ComPtr<ID3DBlob> CompileSceneVertexShader() { return CompileShader(kSource, "VertexMain", "vs_4_0"); }

Microsoft::WRL::ComPtr<ID3DBlob> CompileScenePixelShader() { return CompileShader(kSource, "PixelMain", "ps_4_0"); }

}  // namespace bench
