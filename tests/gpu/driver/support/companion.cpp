#include "gpu_support/companion.h"

#include <array>
#include <chrono>
#include <cstdlib>
#include <stdexcept>

#include "base/wait.h"

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

// Whether a read of the pipe would return at once, also because its other end has gone.
bool CanRead(HANDLE pipe) {
  DWORD waiting = 0;
  return !PeekNamedPipe(pipe, nullptr, 0, nullptr, &waiting, nullptr) || waiting != 0;
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

Area EyeArea(const std::string& name, int eye, int width, int height, int rim, const bench::Rgba& rgba, int tolerance) {
  return {.name = name,
          .x = eye * width + rim,
          .y = rim,
          .width = width - 2 * rim,
          .height = height - 2 * rim,
          .rgba = rgba,
          .tolerance = tolerance};
}

// When it has answered, the system lists the process under its name.
Companion::Companion() : process_(ProgramName(), {}, bench::ChildProcess::Output::kPipe) { Do({{"do", "say hello"}}); }

json Companion::Do(const json& command) {
  const std::string line = command.dump() + '\n';
  DWORD written = 0;
  if (!WriteFile(process_.Input(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr)) {
    throw std::runtime_error("the program has ended: " + line);
  }
  json answer = json::parse(ReadLine());
  if (answer.is_object() && answer.contains("error")) {
    throw std::runtime_error(line + answer.at("error").get<std::string>());
  }
  return answer;
}

std::string Companion::ReadLine() {
  std::string line;
  std::array<char, 4096> buffer;
  while (!line.ends_with('\n')) {
    DWORD count = 0;
    if (!bench::WaitUntil([this] { return CanRead(process_.OutputEnd()); }, kAnswerTimeout) ||
        !ReadFile(process_.OutputEnd(), buffer.data(), buffer.size(), &count, nullptr)) {
      throw std::runtime_error("the program does not answer");
    }
    line.append(buffer.data(), count);
  }
  return line;
}

bool Companion::OpenPipes() { return Do({{"do", "open pipes"}}); }
void Companion::ClosePipes() { Do({{"do", "close pipes"}}); }
bool Companion::WaitForConnection() { return Do({{"do", "wait for connection"}, {"timeout", kPatienceMs}}); }
bool Companion::Send(const companion::Bytes& bytes) { return Do({{"do", "send"}, {"bytes", bytes}}); }

std::optional<companion::Message> Companion::NextMessage(std::uint32_t timeoutMs) {
  const json answer = Do({{"do", "next message"}, {"timeout", timeoutMs}});
  if (!answer.is_object()) return std::nullopt;
  return companion::Message{answer.at("type"), answer.at("payload").get<companion::Bytes>()};
}

void Companion::Attach(const std::vector<std::uint64_t>& handles, const std::string& block) {
  Do({{"do", "attach"}, {"handles", handles}, {"block", block}});
}

std::uint32_t Companion::MakeTexture(std::uint8_t pattern) { return Do({{"do", "make"}, {"pattern", pattern}}); }

void Companion::Paint(int texture, std::uint8_t pattern) {
  Do({{"do", "paint"}, {"texture", texture}, {"pattern", pattern}});
}

HRESULT Companion::Acquire(int texture, std::uint32_t timeoutMs, std::uint64_t key) {
  return Do({{"do", "acquire"}, {"texture", texture}, {"timeout", timeoutMs}, {"key", key}});
}

HRESULT Companion::Release(int texture) { return Do({{"do", "release"}, {"texture", texture}}); }

companion::PoseSlot Companion::Slot(int texture) { return Do({{"do", "slot"}, {"texture", texture}}); }

std::vector<std::string> Companion::Look(int texture, const std::vector<Area>& areas) {
  if (const HRESULT result = Acquire(texture, kPatienceMs); result != S_OK) {
    return {"acquiring texture " + std::to_string(texture) + " gave " + std::to_string(result)};
  }
  json list = json::array();
  for (const Area& area : areas) list.push_back(ToJson(area));
  std::vector<std::string> differences = Do({{"do", "compare"}, {"texture", texture}, {"areas", list}});
  if (Release(texture) != S_OK) differences.push_back("could not give the texture back");
  return differences;
}

void Companion::End() {
  process_.CloseInput();
  if (!process_.WaitForEnd(kPatienceMs)) throw std::runtime_error("the program does not end");
}

}  // namespace ombrel::test
