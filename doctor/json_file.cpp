#include "doctor/json_file.h"

#include <algorithm>

namespace ombrel::doctor {
namespace {

using nlohmann::json;

constexpr std::size_t kMost = 4U << 20U;

const json& Member(const json& object, const char* key) {
  static const json kNone;
  const auto found = object.is_object() ? object.find(key) : object.end();
  return found == object.end() ? kNone : *found;
}

int LineOf(const std::string& bytes, std::size_t position) {
  const auto end = bytes.begin() + static_cast<std::ptrdiff_t>(std::min(position, bytes.size()));
  return 1 + static_cast<int>(std::count(bytes.begin(), end, '\n'));
}

void Parse(JsonFile& file) {
  try {
    json value = json::parse(file.bytes, nullptr, true, true);
    if (value.is_object() || value.is_array()) {
      file.value = std::move(value);
    } else {
      file.wrongLine = 1;
    }
  } catch (const json::parse_error& error) {
    file.wrongLine = LineOf(file.bytes, error.byte == 0 ? 0 : error.byte - 1);
  } catch (const json::exception&) {
    file.wrongLine = 1;
  }
}

}  // namespace

const json& JsonFile::At(const char* section, const char* key) const { return Member(Member(value, section), key); }

JsonFile ReadJson(Machine& machine, const std::string& path) {
  FileBytes read = machine.Read(path, FilePart::kStart, kMost);
  JsonFile file{path, read.state, 0, std::move(read.bytes), json::object()};
  if (file.state == ReadState::kRead) Parse(file);
  return file;
}

std::optional<std::vector<std::string>> Texts(const json& object, const char* key) {
  const json& value = Member(object, key);
  if (value.is_null()) return std::vector<std::string>();
  if (value.is_string()) return std::vector<std::string>{value.get<std::string>()};
  const bool isList =
      value.is_array() && std::all_of(value.begin(), value.end(), [](const json& each) { return each.is_string(); });
  if (!isList) return std::nullopt;
  return value.get<std::vector<std::string>>();
}

std::optional<bool> Switch(const json& value) {
  if (value.is_boolean()) return value.get<bool>();
  if (value.is_number()) return value.get<double>() != 0.0;
  return std::nullopt;
}

}  // namespace ombrel::doctor
