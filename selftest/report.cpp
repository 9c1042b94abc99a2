#include "report.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include "base/percentile.h"

namespace ombrel::selftest {
namespace {

const char* NameOf(Result result) {
  switch (result) {
    case Result::kGood:
      return "good";
    case Result::kBad:
      return "bad";
    default:
      return "unknown";
  }
}

Json ToJson(const Verdict& verdict) {
  return {{"group", verdict.group},       {"name", verdict.name},   {"result", NameOf(verdict.result)},
          {"expected", verdict.expected}, {"found", verdict.found}, {"meaning", verdict.meaning}};
}

bool IsFree(std::string_view key) {
  constexpr std::array<std::string_view, 5> kFree{"value", "found", "text", "subtitle", "rows"};
  return std::ranges::find(kFree, key) != kFree.end();
}

void CleanAll(Json& value, const std::function<std::string(const std::string&)>& clean) {
  if (value.is_string()) value = clean(value.get<std::string>());
  if (!value.is_structured()) return;
  for (auto& each : value) CleanAll(each, clean);
}

}  // namespace

Json Distribution(const std::string& title, const std::string& label, const std::string& unit,
                  const std::string& counted, const std::vector<double>& samples) {
  return {{"kind", "distribution"},
          {"title", title},
          {"x", {{"label", label}, {"unit", unit}}},
          {"y", {{"label", counted}}},
          {"series", Json::array({{{"name", counted}, {"values", samples}}})}};
}

Json Table(const std::string& caption, const std::vector<std::string>& head, Json rows) {
  return {{"caption", caption}, {"head", head}, {"rows", std::move(rows)}};
}

std::string PercentilesText(const std::vector<double>& samples) {
  if (samples.empty()) return "none";
  char text[64];
  std::snprintf(text, sizeof(text), "%.2f / %.2f / %.2f", bench::Percentile(samples, 0.5),
                bench::Percentile(samples, 0.9), bench::Percentile(samples, 0.99));
  return text;
}

Result Report::Overall() const {
  const auto has = [this](Result result) {
    return std::ranges::find(verdicts_, result, &Verdict::result) != verdicts_.end();
  };
  if (has(Result::kBad)) return Result::kBad;
  return verdicts_.empty() || has(Result::kUnknown) ? Result::kUnknown : Result::kGood;
}

Json Report::AsJson(const std::string& title, const std::string& subtitle) const {
  Json verdicts = Json::array();
  for (const Verdict& verdict : verdicts_) verdicts.push_back(ToJson(verdict));
  return {{"title", title},  {"subtitle", subtitle}, {"verdict", NameOf(Overall())},
          {"facts", facts_}, {"verdicts", verdicts}, {"sections", sections_}};
}

void CleanTexts(Json& report, const std::function<std::string(const std::string&)>& clean) {
  if (report.is_array()) {
    for (auto& each : report) CleanTexts(each, clean);
    return;
  }
  if (!report.is_object()) return;
  for (auto& [key, each] : report.items()) {
    if (IsFree(key)) {
      CleanAll(each, clean);
    } else {
      CleanTexts(each, clean);
    }
  }
}

}  // namespace ombrel::selftest
