#pragma once

#include <string>
#include <vector>

#include "checker/message.h"
#include "checker/recording.h"

namespace checker {

enum class Notation { kText, kJson };

// What passed on the pipes, a line for each message, connection and end. Takes events as they come.
class Listing {
 public:
  explicit Listing(Notation notation) : notation_(notation) {}

  [[nodiscard]] std::vector<std::string> Take(const Event& event);

 private:
  [[nodiscard]] std::string LineOf(const char* direction, const Message& message) const;
  [[nodiscard]] std::string LineOf(Nanoseconds when, const std::string& what) const;
  [[nodiscard]] double Seconds(Nanoseconds when) const;
  void TakeBytes(MessageCutter& cutter, const char* direction, const Event& event, std::vector<std::string>& lines);

  Notation notation_;
  Nanoseconds begin_ = 0;
  bool connected_ = false;
  MessageCutter toDriver_, fromDriver_;
};

}  // namespace checker
