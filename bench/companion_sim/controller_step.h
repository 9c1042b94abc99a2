#pragma once

#include "companion/controller_record.h"
#include "nlohmann/json.hpp"

namespace bench {

// A "controller" step as the record to send. "pressed" and "touched" are lists of system, menu, grip, trackpad,
// trigger, or plain bit numbers. Throws when a button is not known.
companion::ControllerRecord ParseController(const nlohmann::json& step);

}  // namespace bench
