#pragma once

#include <string_view>

namespace preview {

// A file of the folder pages/, carried in the program.
struct PageFile {
  std::string_view path;  // as it is asked for: "/controllers"
  std::string_view type;  // MIME type
  std::string_view text;
};

// Null when there is none.
[[nodiscard]] const PageFile* FindPageFile(std::string_view path);

}  // namespace preview
