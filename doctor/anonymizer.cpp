#include "doctor/anonymizer.h"

#include <algorithm>

#include "doctor/paths.h"

namespace ombrel::doctor {
namespace {

constexpr std::size_t kShortName = 4;

bool IsWordPart(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || byte >= 0x80;
}

bool IsWholeWord(std::string_view text, std::size_t start, std::size_t length) {
  const bool begins = start == 0 || !IsWordPart(text[start - 1]);
  const std::size_t end = start + length;
  return begins && (end == text.size() || !IsWordPart(text[end]));
}

// As a file of JSON may write it.
std::string Escaped(const std::string& name) {
  const std::string quoted = nlohmann::json(name).dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
  return quoted.substr(1, quoted.size() - 2);
}

}  // namespace

Anonymizer::Anonymizer(const Account& account) {
  for (const std::string& name : account.userNames) Add(name, "<user>");
  for (const std::string& name : account.computerNames) Add(name, "<computer>");
  Add(account.user, "<user>");
  Add(account.signedIn, "<user>");
  std::stable_sort(names_.begin(), names_.end(),
                   [](const Name& a, const Name& b) { return a.lower.size() > b.lower.size(); });
}

void Anonymizer::Add(const std::string& name, const char* substitute) {
  if (name.empty()) return;
  names_.push_back({LowerAscii(name), substitute});
  if (!IsAscii(name)) names_.push_back({LowerAscii(Escaped(name)), substitute});
}

std::string Anonymizer::Clean(std::string_view text) const {
  const std::string lower = LowerAscii(text);
  std::string clean;
  for (std::size_t at = 0; at < text.size();) {
    const auto found = std::find_if(names_.begin(), names_.end(), [&](const Name& name) {
      return lower.compare(at, name.lower.size(), name.lower) == 0 &&
             (name.lower.size() >= kShortName || IsWholeWord(text, at, name.lower.size()));
    });
    if (found == names_.end()) {
      clean += text[at++];
    } else {
      clean += found->substitute;
      at += found->lower.size();
    }
  }
  return clean;
}

nlohmann::json Anonymizer::CleanJson(const nlohmann::json& value) const {
  if (value.is_string()) return Clean(value.get<std::string>());
  if (value.is_array()) {
    nlohmann::json clean = nlohmann::json::array();
    for (const auto& each : value) clean.push_back(CleanJson(each));
    return clean;
  }
  if (!value.is_object()) return value;
  nlohmann::json clean = nlohmann::json::object();
  for (const auto& [key, each] : value.items()) clean[Clean(key)] = CleanJson(each);
  return clean;
}

}  // namespace ombrel::doctor
