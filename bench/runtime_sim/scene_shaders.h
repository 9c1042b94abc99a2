#pragma once

#include <d3dcommon.h>
#include <wrl/client.h>

namespace bench {

/// Bytecode of the scene's two shaders, compiled when the program starts by the system's compiler.
/// Both throw std::runtime_error with the compiler's message if that fails.
[[nodiscard]] Microsoft::WRL::ComPtr<ID3DBlob> CompileSceneVertexShader();
[[nodiscard]] Microsoft::WRL::ComPtr<ID3DBlob> CompileScenePixelShader();

}  // namespace bench
