#pragma once

#include <filesystem>
#include <string>

#include "doctor/anonymizer.h"

// What the self-test has of the machine while it runs, and gives back.
namespace ombrel::selftest {

// This program's own file.
[[nodiscard]] std::filesystem::path OwnProgram();

// A folder in the current one that goes with its owner. What an earlier run left, that was ended from outside, goes first.
class WorkFolder {
 public:
  WorkFolder();
  ~WorkFolder();
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  // Relative to the current folder.
  [[nodiscard]] const std::filesystem::path& Path() const { return path_; }

 private:
  const std::filesystem::path path_ = "work";
};

// From now on all programs that this one starts end with it, however it ends. Throws std::runtime_error when the system
// does not offer that.
void EndProgramsWithThisOne();

// Takes the names of users, of the computer and of the self-test's folder out of texts.
class Cleaner {
 public:
  Cleaner();
  [[nodiscard]] std::string Clean(const std::string& text) const { return anonymizer_.Clean(text); }

 private:
  doctor::Anonymizer anonymizer_;
};

}  // namespace ombrel::selftest
