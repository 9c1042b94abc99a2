#include <functional>

#include "input_profile.h"

namespace ombrel::test {
namespace {

using nlohmann::json;

void ForEachText(const json& value, const std::function<void(const std::string&)>& use) {
  if (value.is_string()) use(value.get<std::string>());
  if (!value.is_structured()) return;
  for (const json& inner : value) ForEachText(inner, use);
}

// "a@2x.png" is the dense form of "a.png" and goes with it.
std::string PlainForm(std::string file) {
  const std::size_t at = file.rfind("@2x.");
  return at == std::string::npos ? file : file.erase(at, 3);
}

class ReferenceCheck {
 public:
  ReferenceCheck(const DriverFiles& files, Findings& findings) : files_(files), findings_(findings) {}

  void Follow(const std::string& where, const std::string& reference) {
    if (!reference.starts_with('{')) return;
    const auto file = files_.Resolve(reference);
    if (!file) {
      findings_.push_back(where + ": " + reference + " is of another driver");
    } else if (!files_.Has(*file)) {
      findings_.push_back(where + ": " + reference + " does not exist");
    } else {
      named_.insert(*file);
    }
  }

  void CountAsNamed(const std::string& file) { named_.insert(file); }

  void FindIdleFiles() {
    for (const std::string& file : files_.Names()) {
      const bool mustBeNamed = file.starts_with("resources/icons/") || file.starts_with("resources/input/");
      if (mustBeNamed && !named_.contains(PlainForm(file))) findings_.push_back(file + ": nothing names it");
    }
  }

 private:
  const DriverFiles& files_;
  Findings& findings_;
  std::set<std::string> named_;
};

}  // namespace

void CheckReferences(const DriverFiles& files, const SourceFacts& facts, Findings& findings) {
  ReferenceCheck check(files, findings);
  for (const auto& [file, document] : files.Documents()) {
    ForEachText(document, [&, &name = file](const std::string& text) { check.Follow(name, text); });
  }
  for (const std::string& reference : facts.references) check.Follow("the driver", reference);
  for (const std::string& file : InputProfile(files, facts).DefaultBindings()) check.CountAsNamed(file);
  check.FindIdleFiles();
}

}  // namespace ombrel::test
