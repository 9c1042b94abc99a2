#include "report/page.h"

#include <cstdint>
#include <stdexcept>

namespace report {
namespace {

constexpr std::string_view kMarker = "@REPORT_JSON@";
constexpr std::string_view kBase64 = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Three bytes as four letters; what is missing at the end is padded.
void AppendBase64(std::string& text, std::string_view bytes) {
  std::uint32_t bits = 0;
  for (std::size_t index = 0; index < 3; ++index) {
    bits = bits << 8 | (index < bytes.size() ? static_cast<std::uint8_t>(bytes[index]) : 0U);
  }
  for (std::size_t index = 0; index < 4; ++index) {
    text += index <= bytes.size() ? kBase64[bits >> (18 - 6 * index) & 63] : '=';
  }
}

}  // namespace

std::string FillTemplate(std::string_view pageTemplate, std::string_view json) {
  const std::size_t marker = pageTemplate.find(kMarker);
  if (marker == std::string_view::npos) {
    throw std::invalid_argument("the page has no place for a report");
  }
  std::string page(pageTemplate.substr(0, marker));
  for (const char letter : json) {
    // An end tag in a text would end the element that the report is in.
    if (letter == '<') {
      page += "\\u003c";
    } else {
      page += letter;
    }
  }
  page += pageTemplate.substr(marker + kMarker.size());
  return page;
}

std::string PngDataUrl(std::string_view png) {
  std::string url = "data:image/png;base64,";
  for (std::size_t start = 0; start < png.size(); start += 3) {
    AppendBase64(url, png.substr(start, 3));
  }
  return url;
}

}  // namespace report
