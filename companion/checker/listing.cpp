#include "checker/listing.h"

#include <cstdio>

#include <nlohmann/json.hpp>

namespace checker {
namespace {

using Json = nlohmann::ordered_json;

std::string ValueInText(const Json& value) {
  if (value.is_string()) return value.get<std::string>();
  if (!value.is_array()) return value.is_null() ? "nan" : value.dump();
  std::string text;
  for (const Json& element : value) text += (text.empty() ? "" : " ") + ValueInText(element);
  return "(" + text + ")";
}

std::string Padded(std::string direction) {
  direction.resize(sizeof("to companion") + 1, ' ');
  return direction;
}

// Shortest digits that give the same float back, where JSON would write those of the double.
Json Shortened(const Json& fields) {
  Json result = fields;
  for (Json& value : result) {
    if (value.is_structured()) {
      value = Shortened(value);
    } else if (value.is_number_float()) {
      char digits[32];
      std::snprintf(digits, sizeof(digits), "%.7g", value.get<double>());
      value = Json::parse(digits, nullptr, false);
      if (value.is_discarded()) value = nullptr;
    }
  }
  return result;
}

}  // namespace

double Listing::Seconds(Nanoseconds when) const { return static_cast<double>(when - begin_) / 1e9; }

std::string Listing::LineOf(Nanoseconds when, const std::string& what) const {
  if (notation_ == Notation::kJson) return Json{{"seconds", Seconds(when)}, {"event", what}}.dump();
  char time[32];
  std::snprintf(time, sizeof(time), "%11.6f  ", Seconds(when));
  return time + what;
}

std::string Listing::LineOf(const char* direction, const Message& message) const {
  const Json fields = Shortened(Fields(message));
  if (notation_ == Notation::kJson) {
    Json line = {{"seconds", Seconds(message.ended)},
                 {"direction", direction},
                 {"type", message.type},
                 {"message", TypeName(message.type)},
                 {"length", message.payload.size()}};
    line.update(fields);
    return line.dump();
  }
  std::string text =
      Padded(direction) + TypeName(message.type) + "  " + std::to_string(message.payload.size()) + " bytes";
  for (const auto& [name, value] : fields.items()) text += "  " + name + " " + ValueInText(value);
  return LineOf(message.ended, text);
}

void Listing::TakeBytes(MessageCutter& cutter, const char* direction, const Event& event,
                        std::vector<std::string>& lines) {
  const bool wasLost = cutter.TooLong().has_value();
  for (const Message& message : cutter.Take(event.bytes, event.end)) lines.push_back(LineOf(direction, message));
  if (!wasLost && cutter.TooLong()) {
    lines.push_back(LineOf(event.end, "a header announces " + std::to_string(*cutter.TooLong()) + " bytes: too long"));
  }
  if (event.result != 0 && event.result != kOperationAborted) {
    lines.push_back(LineOf(event.end, Padded(direction) + "error " + std::to_string(event.result)));
  }
}

std::vector<std::string> Listing::Take(const Event& event) {
  if (begin_ == 0) begin_ = event.When();
  std::vector<std::string> lines;
  if (event.kind == EventKind::kPipeOpened && event.result == 0) {
    connected_ = event.pipe == Pipe::kOut;
    (event.pipe == Pipe::kOut ? toDriver_ : fromDriver_) = {};
    lines.push_back(
        LineOf(event.end, connected_ ? "the driver has opened Out: connected" : "the driver has opened In"));
  } else if (event.kind == EventKind::kPipeClosed && connected_) {
    connected_ = false;
    lines.push_back(LineOf(event.end, "the driver has closed its ends"));
  } else if (event.kind == EventKind::kPipeRead) {
    TakeBytes(toDriver_, "to driver", event, lines);
  } else if (event.kind == EventKind::kPipeWritten) {
    TakeBytes(fromDriver_, "to companion", event, lines);
  }
  return lines;
}

}  // namespace checker
