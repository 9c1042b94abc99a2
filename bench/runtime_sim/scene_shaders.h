#pragma once

#include <d3dcommon.h>
#include <wrl/client.h>

#include <string_view>

namespace bench {

/// Bytecode of a shader, compiled by the system's compiler for a target as "vs_4_0".
/// Throws std::runtime_error with the compiler's message if that fails.
[[nodiscard]] Microsoft::WRL::ComPtr<ID3DBlob> CompileShader(std::string_view source, const char* entry,
                                                             const char* target);

/// Bytecode of the scene's two shaders, compiled when the program starts by the system's compiler.
/// Both throw std::runtime_error with the compiler's message if that fails.
[[nodiscard]] Microsoft::WRL::ComPtr<ID3DBlob> CompileSceneVertexShader();
[[nodiscard]] Microsoft::WRL::ComPtr<ID3DBlob> CompileScenePixelShader();

}  // namespace bench
