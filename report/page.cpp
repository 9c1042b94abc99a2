#include "report/page.h"

#include <stdexcept>

namespace report {
namespace {

constexpr std::string_view kMarker = "@REPORT_JSON@";

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

}  // namespace report
