#include "support/runtime_lines.h"

#include <algorithm>

namespace ombrel::test {
namespace {

using Lines = std::vector<std::string>;

std::string DeviceOf(vr::PropertyContainerHandle_t container) {
  if (container == vr::k_ulInvalidPropertyContainer) return "none";
  return std::to_string(container - bench::FakeProperties::ContainerOf(0));
}

std::string ValueOf(const bench::PropertyWriteRecord& write) {
  switch (write.tag) {
    case vr::k_unBoolPropertyTag:
      return write.As<bool>().value() ? "true" : "false";
    case vr::k_unFloatPropertyTag:
      return std::to_string(write.As<float>().value());
    case vr::k_unInt32PropertyTag:
      return std::to_string(write.As<std::int32_t>().value());
    case vr::k_unUint64PropertyTag:
      return std::to_string(write.As<std::uint64_t>().value());
    default:
      return write.AsString().value_or("?");
  }
}

// Empty for a call that is not of an input.
std::string InputLine(const bench::JournalEntry& entry) {
  const auto& arguments = entry.arguments;
  if (entry.call.starts_with("IVRDriverInput.Create")) {
    return "create " + DeviceOf(arguments.at("container")) + " " + arguments.at("path").get<std::string>();
  }
  if (!entry.call.starts_with("IVRDriverInput.Update")) return {};
  const auto& value = arguments.at("value");
  std::string line = arguments.at("path").get<std::string>() + " ";
  line += value.is_boolean() ? value.dump() : std::to_string(value.get<float>());
  if (arguments.at("offset") != 0.0) line += " in " + arguments.at("offset").dump() + " s";
  return line;
}

}  // namespace

Lines PropertyLines(bench::FakeRuntime& runtime) {
  Lines lines;
  for (const bench::PropertyWriteRecord& write : runtime.Properties().Writes()) {
    std::string line = DeviceOf(write.container) + ": " + std::to_string(write.property) + " " +
                       std::to_string(write.tag) + " " + std::to_string(write.bytes.size()) + " " + ValueOf(write);
    if (write.writeType != vr::PropertyWrite_Set) line += " not set";
    if (write.entriesInCall != 1) line += " one of " + std::to_string(write.entriesInCall);
    lines.push_back(line);
  }
  return lines;
}

Lines InputLines(bench::FakeRuntime& runtime) {
  Lines lines;
  for (const bench::JournalEntry& entry : runtime.Journal().Entries()) {
    if (std::string line = InputLine(entry); !line.empty()) lines.push_back(std::move(line));
  }
  return lines;
}

Lines PoseLines(bench::FakeRuntime& runtime) {
  Lines lines;
  for (const bench::PoseRecord& pose : runtime.Poses().All()) {
    lines.push_back(std::to_string(pose.device) + " " + std::to_string(pose.structSize));
  }
  return lines;
}

Lines From(std::size_t count, const Lines& lines) {
  return {lines.begin() + static_cast<std::ptrdiff_t>(std::min(count, lines.size())), lines.end()};
}

}  // namespace ombrel::test
