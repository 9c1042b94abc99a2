# Writes OUTPUT, a C++ file whose function FUNCTION gives the bytes of the file INPUT.
file(READ "${INPUT}" digits HEX)
string(LENGTH "${digits}" length)
if(length EQUAL 0)
  message(FATAL_ERROR "${INPUT} is empty")
endif()

set(rows "")
foreach(start RANGE 0 ${length} 32)
  string(SUBSTRING "${digits}" ${start} 32 row)
  string(REGEX REPLACE "(..)" " 0x\\1," row "${row}")
  string(APPEND rows "   ${row}\n")
endforeach()

file(WRITE "${OUTPUT}" "#include \"shaders/shader_bytecode.h\"

namespace ombrel::shaders {
namespace {

constexpr std::uint8_t kBytes[] = {
${rows}};

}  // namespace

std::span<const std::uint8_t> ${FUNCTION}() { return kBytes; }

}  // namespace ombrel::shaders
")
