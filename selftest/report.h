#pragma once

#include <functional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

// What the self-test found out, in the shape that report/report.schema.json describes.
namespace ombrel::selftest {

using Json = nlohmann::ordered_json;

// kUnknown: it was looked at, and says nothing about this machine.
enum class Result { kGood, kBad, kUnknown };

struct Verdict {
  std::string group, name;
  Result result = Result::kUnknown;
  std::string expected, found;
  std::string meaning;  // what it is good for, and what to make of it when it is not good
};

[[nodiscard]] inline Result GoodIf(bool holds) { return holds ? Result::kGood : Result::kBad; }

// Samples with one unit; the page makes the histogram and the percentiles.
[[nodiscard]] Json Distribution(const std::string& title, const std::string& label, const std::string& unit,
                                const std::string& counted, const std::vector<double>& samples);
[[nodiscard]] Json Table(const std::string& caption, const std::vector<std::string>& head, Json rows);
// The three percentiles that reports name, of samples in milliseconds: "1.20 / 2.10 / 3.40"; "none" without samples.
[[nodiscard]] std::string PercentilesText(const std::vector<double>& samples);

class Report {
 public:
  void AddFact(const std::string& name, const std::string& value) {
    facts_.push_back({{"name", name}, {"value", value}});
  }
  void Add(const std::vector<Verdict>& verdicts) {
    verdicts_.insert(verdicts_.end(), verdicts.begin(), verdicts.end());
  }
  void AddSection(Json section) { sections_.push_back(std::move(section)); }

  // Bad when one verdict is, otherwise unknown when one is; unknown without verdicts.
  [[nodiscard]] Result Overall() const;
  [[nodiscard]] const std::vector<Verdict>& Verdicts() const { return verdicts_; }
  [[nodiscard]] Json AsJson(const std::string& title, const std::string& subtitle) const;

 private:
  Json facts_ = Json::array();
  std::vector<Verdict> verdicts_;
  Json sections_ = Json::array();
};

// Applies `clean` to each text that may have come from the machine: values, what was found, cells, running text. What the
// page goes by, and pictures, stay as they are.
void CleanTexts(Json& report, const std::function<std::string(const std::string&)>& clean);

}  // namespace ombrel::selftest
