#pragma once

#include <string>
#include <string_view>

namespace report {

/// The page with a report in it: `json`, which report.schema.json describes, stands where the template has its marker.
/// Throws std::invalid_argument when the template has no marker.
[[nodiscard]] std::string FillTemplate(std::string_view pageTemplate, std::string_view json);

/// A PNG file's bytes as the source of an image.
[[nodiscard]] std::string PngDataUrl(std::string_view png);

}  // namespace report
