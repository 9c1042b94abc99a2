// Build-time program: compiles one HLSL file to bytecode with the system's shader compiler.
//   compile_shader SOURCE PROFILE OUTPUT
// The entry point is `main`. Any message of the compiler, a warning too, is an error.

#include <windows.h>
#include <d3dcompiler.h>
#include <wrl/client.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

namespace {

using Blob = Microsoft::WRL::ComPtr<ID3DBlob>;

std::string TextOf(const Blob& blob) {
  if (!blob) return {};
  std::string text(static_cast<const char*>(blob->GetBufferPointer()), blob->GetBufferSize());
  return text.substr(0, text.find('\0'));
}

bool Write(const char* path, const Blob& bytecode) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(static_cast<const char*>(bytecode->GetBufferPointer()),
             static_cast<std::streamsize>(bytecode->GetBufferSize()));
  return static_cast<bool>(file.flush());
}

int Compile(const char* sourcePath, const char* profile, const char* outputPath) {
  std::ifstream file(sourcePath, std::ios::binary);
  if (!file) {
    std::fprintf(stderr, "%s: cannot be read\n", sourcePath);
    return 1;
  }
  const std::string source{std::istreambuf_iterator<char>(file), {}};

  Blob bytecode, messages;
  const HRESULT result =
      D3DCompile(source.data(), source.size(), sourcePath, nullptr, nullptr, "main", profile,
                 D3DCOMPILE_OPTIMIZATION_LEVEL3, 0, bytecode.GetAddressOf(), messages.GetAddressOf());
  const std::string text = TextOf(messages);
  if (FAILED(result) || !text.empty() || !bytecode) {
    std::fprintf(stderr, "%s (%s): error 0x%08lx\n%s\n", sourcePath, profile, static_cast<unsigned long>(result),
                 text.c_str());
    return 1;
  }
  if (!Write(outputPath, bytecode)) {
    std::fprintf(stderr, "%s: cannot be written\n", outputPath);
    return 1;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("usage: compile_shader SOURCE PROFILE OUTPUT\n", stderr);
    return 2;
  }
  return Compile(argv[1], argv[2], argv[3]);
}
