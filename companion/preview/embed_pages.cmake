# Writes OUTPUT, a C++ file that carries the files of the folder PAGES: FindPageFile finds each by its name, a page also
# without its ".html", and "index.html" as "/".
set(types ".html=text/html" ".css=text/css" ".js=text/javascript" ".svg=image/svg+xml")

set(arrays "")
set(rows "")
file(GLOB files RELATIVE "${PAGES}" "${PAGES}/*")
foreach(file ${files})
  cmake_path(GET file EXTENSION LAST_ONLY extension)
  string(REGEX MATCH "${extension}=([^;]*)" found "${types}")
  if(NOT found)
    message(FATAL_ERROR "${file}: what is the type of a file that ends in ${extension}?")
  endif()
  set(type "${CMAKE_MATCH_1}; charset=utf-8")
  file(READ "${PAGES}/${file}" digits HEX)
  string(REGEX REPLACE "(..)" "0x\\1," bytes "${digits}")
  string(REGEX REPLACE "(................................................................................)" "\\1\n" bytes
    "${bytes}")
  string(MAKE_C_IDENTIFIER "${file}" name)
  string(APPEND arrays "constexpr unsigned char ${name}[] = {\n${bytes}};\n")
  string(REGEX REPLACE "\\.html$" "" path "/${file}")
  string(REGEX REPLACE "^/index$" "/" path "${path}")
  string(APPEND rows "      {\"${path}\", \"${type}\", AsText(${name})},\n")
endforeach()

file(WRITE "${OUTPUT}" "#include \"preview/page_files.h\"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace preview {
namespace {

${arrays}
template <std::size_t Size>
std::string_view AsText(const unsigned char (&bytes)[Size]) {
  return {reinterpret_cast<const char*>(bytes), Size};
}

}  // namespace

const PageFile* FindPageFile(std::string_view path) {
  static const PageFile kFiles[] = {
${rows}  };
  const auto* found = std::find_if(std::begin(kFiles), std::end(kFiles),
                                   [path](const PageFile& file) { return file.path == path; });
  return found == std::end(kFiles) ? nullptr : found;
}

}  // namespace preview
")
