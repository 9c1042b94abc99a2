#include "gpu_support/companion.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace ombrel::test {
namespace {

using nlohmann::json;

constexpr std::uint32_t kPatienceMs = 20'000;
constexpr std::chrono::milliseconds kAnswerTimeout{60'000};

std::string ProgramName() {
  const char* const name = std::getenv("OMBREL_PEER");
  if (name == nullptr) throw std::runtime_error("OMBREL_PEER does not name the companion program");
  return name;
}

std::string ToHex(const bench::Bytes& bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    std::array<char, 3> digits{};
    std::snprintf(digits.data(), digits.size(), "%02x", static_cast<unsigned>(byte));
    text += digits.data();
  }
  return text;
}

bench::Bytes FromHex(const std::string& text) {
  bench::Bytes bytes;
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
    bytes.push_back(static_cast<std::uint8_t>(std::stoul(text.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

json ToJson(const Area& area) {
  json object{{"name", area.name},   {"x", area.x},           {"y", area.y},
              {"width", area.width}, {"height", area.height}, {"tolerance", area.tolerance}};
  if (area.rgba) {
    object["rgba"] = *area.rgba;
  } else {
    object["pattern"] = area.pattern;
  }
  return object;
}

}  // namespace

// When it has answered, the system lists the process under its name.
Companion::Companion() : process_(ProgramName()) { Do({{"do", "say hello"}}); }

json Companion::Do(json command) {
  json answer = json::parse(process_.Ask(command.dump(), kAnswerTimeout));
  if (answer.is_object() && answer.contains("error")) {
    throw std::runtime_error(command.dump() + ": " + answer.at("error").get<std::string>());
  }
  return answer;
}

bool Companion::OpenPipes() { return Do({{"do", "open pipes"}}); }
void Companion::ClosePipes() { Do({{"do", "close pipes"}}); }
bool Companion::WaitForConnection() { return Do({{"do", "wait for connection"}, {"timeout", kPatienceMs}}); }
bool Companion::WaitForDisconnection() { return Do({{"do", "wait for disconnection"}, {"timeout", kPatienceMs}}); }
bool Companion::Send(const bench::Bytes& bytes) { return Do({{"do", "send"}, {"bytes", ToHex(bytes)}}); }

void Companion::WaitUntilRead() { Do({{"do", "flush"}}); }

std::optional<bench::Message> Companion::NextMessage(std::uint32_t timeoutMs) {
  const json answer = Do({{"do", "next message"}, {"timeout", timeoutMs}});
  if (!answer.is_object()) return std::nullopt;
  return bench::Message{answer.at("type"), FromHex(answer.at("payload"))};
}

json Companion::Attach(const std::vector<std::uint64_t>& handles, const std::string& block) {
  return Do({{"do", "attach"}, {"handles", handles}, {"block", block}});
}

json Companion::AttachAnnounced(const bench::FrameSharingInfo& info) {
  return Attach({info.sharedHandles[0], info.sharedHandles[1]}, info.name);
}

HRESULT Companion::Acquire(int texture, std::uint32_t timeoutMs) {
  return Do({{"do", "acquire"}, {"texture", texture}, {"timeout", timeoutMs}});
}

HRESULT Companion::Release(int texture) { return Do({{"do", "release"}, {"texture", texture}}); }

std::vector<std::string> Companion::Compare(int texture, const std::vector<Area>& areas) {
  json list = json::array();
  for (const Area& area : areas) list.push_back(ToJson(area));
  return Do({{"do", "compare"}, {"texture", texture}, {"areas", list}});
}

bench::PoseSlot Companion::Slot(int texture) { return Do({{"do", "slot"}, {"texture", texture}}); }

std::vector<std::string> Companion::Look(int texture, const std::vector<Area>& areas) {
  if (const HRESULT result = Acquire(texture, kPatienceMs); result != S_OK) {
    return {"acquiring texture " + std::to_string(texture) + " gave " + std::to_string(result)};
  }
  std::vector<std::string> differences = Compare(texture, areas);
  if (Release(texture) != S_OK) differences.push_back("could not give the texture back");
  return differences;
}

}  // namespace ombrel::test
