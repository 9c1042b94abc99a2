#pragma once

#include <vector>

#include "doctor/finding.h"
#include "doctor/survey.h"

namespace ombrel::doctor {

// What stands in the way of a picture, in the order of FindingTexts. What only follows from another finding is left out.
[[nodiscard]] std::vector<Finding> Examine(const Survey& survey);

// The adapter that the driver draws with: the preferred one, otherwise the first. Null without adapters.
[[nodiscard]] const Adapter* UsedAdapter(const std::vector<Adapter>& adapters);

}  // namespace ombrel::doctor
