// The vectors that makers of companions test with are what the driver does, and the protocol page's examples are among them.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "link/wire.h"
#include "nlohmann/json.hpp"
#include "support/document_hex.h"
#include "vector_session.h"

namespace ombrel::test {
namespace {

using nlohmann::json;
using ByteList = std::vector<std::byte>;

std::filesystem::path Folder() {
  static const std::string option = "--vectors=";
  for (const std::string& argument : testing::internal::GetArgvs()) {
    if (argument.starts_with(option)) return argument.substr(option.size());
  }
  return {};
}

std::vector<json> VectorsOf(const std::string& name) {
  std::ifstream file(Folder() / (name + ".json"));
  EXPECT_TRUE(file.good()) << name;
  const auto vectors = json::parse(file).at("vectors").get<std::vector<json>>();
  EXPECT_FALSE(vectors.empty()) << name;
  return vectors;
}

ByteList BytesOf(const json& hex) {
  const auto text = hex.get<std::string>();
  EXPECT_EQ(text.size() % 2, 0U) << text;
  ByteList bytes;
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
    bytes.push_back(static_cast<std::byte>(std::stoul(text.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

// A number, or "NaN", which JSON has no other way to say.
void ExpectNumber(double found, const json& expected, double tolerance) {
  if (expected == "NaN") {
    EXPECT_TRUE(std::isnan(found)) << found;
  } else {
    EXPECT_NEAR(found, expected.get<double>(), tolerance);
  }
}

void ExpectThree(const double (&found)[3], const json& expected, double tolerance) {
  for (std::size_t i = 0; i < 3; ++i) ExpectNumber(found[i], expected.at(i), tolerance);
}

void ExpectPose(const vr::DriverPose_t& pose, const json& expected, double tolerance) {
  const double rotation[] = {pose.qRotation.x, pose.qRotation.y, pose.qRotation.z, pose.qRotation.w};
  for (std::size_t i = 0; i < 4; ++i) ExpectNumber(rotation[i], expected.at("orientation").at(i), tolerance);
  ExpectThree(pose.vecPosition, expected.at("position"), tolerance);
  if (expected.contains("velocity")) ExpectThree(pose.vecVelocity, expected.at("velocity"), tolerance);
  if (expected.contains("acceleration")) ExpectThree(pose.vecAcceleration, expected.at("acceleration"), tolerance);
  const std::string state = expected.at("state");
  EXPECT_EQ(pose.poseIsValid, state == "tracking");
  EXPECT_EQ(pose.deviceIsConnected, state != "not connected");
}

void ExpectPoses(const Effects& effects, const json& expect) {
  const double tolerance = expect.value("tolerance", 1e-6);
  const json head = expect.value("head", json::array()), controllers = expect.value("controllers", json::array());
  ASSERT_EQ(effects.head.size(), head.size()) << "poses of the head";
  for (std::size_t i = 0; i < head.size(); ++i) ExpectPose(effects.head[i], head[i], tolerance);
  ASSERT_EQ(effects.controllers.size(), controllers.size()) << "poses of controllers";
  for (std::size_t i = 0; i < controllers.size(); ++i) {
    EXPECT_EQ(effects.controllers[i].first, controllers[i].at("id"));
    ExpectPose(effects.controllers[i].second, controllers[i], tolerance);
  }
}

// "7 /input/trigger/value 1", "7 /input/trigger/click true".
void ExpectInputs(const Effects& effects, const json& expected) {
  ASSERT_EQ(effects.inputs.size(), expected.size()) << "inputs";
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const auto line = expected[i].get<std::string>();
    const std::size_t blank = line.rfind(' ');
    EXPECT_EQ(effects.inputs[i].first, line.substr(0, blank));
    const std::string value = line.substr(blank + 1);
    const double number = value == "true" ? 1 : value == "false" ? 0 : std::stod(value);
    EXPECT_NEAR(effects.inputs[i].second, number, 1e-6) << line;
  }
}

void ExpectEffects(const json& vector) {
  static const std::set<std::string> known{"head",       "controllers", "announced",  "inputs",
                                           "framerates", "shutdowns",   "connection", "tolerance"};
  const json& expect = vector.at("expect");
  for (const auto& [key, value] : expect.items()) EXPECT_TRUE(known.contains(key)) << key;
  ByteList before;
  for (const json& message : vector.value("before", json::array())) {
    for (const std::byte byte : BytesOf(message)) before.push_back(byte);
  }
  ByteList all = before;
  for (const std::byte byte : BytesOf(vector.at("bytes"))) all.push_back(byte);
  const Effects effects = EffectsOf(all).Behind(EffectsOf(before));
  ExpectPoses(effects, expect);
  ExpectInputs(effects, expect.value("inputs", json::array()));
  EXPECT_EQ(json(effects.announced), expect.value("announced", json::array()));
  EXPECT_EQ(json(effects.framerates), expect.value("framerates", json::array()));
  EXPECT_EQ(effects.shutdowns, expect.value("shutdowns", 0U));
  EXPECT_EQ(effects.connectionEnded, expect.contains("connection"));
}

class VectorsTest : public testing::TestWithParam<const char*> {};

TEST_P(VectorsTest, AreWhatTheDriverDoes) {
  for (const json& vector : VectorsOf(GetParam())) {
    SCOPED_TRACE(vector.at("name").get<std::string>());
    ExpectEffects(vector);
  }
}

INSTANTIATE_TEST_SUITE_P(ToTheDriver, VectorsTest, testing::Values("head", "controllers", "others"),
                         [](const auto& file) { return std::string(file.param); });

template <typename Record>
ByteList Framed(LinkMessageType type, const Record& record) {
  const LinkMessageHeader header{sizeof(record), static_cast<std::uint32_t>(type)};
  const auto head = RecordBytes(header), payload = RecordBytes(record);
  ByteList bytes(head.begin(), head.end());
  bytes.insert(bytes.end(), payload.begin(), payload.end());
  return bytes;
}

ByteList AsTheDriverWritesIt(const json& message) {
  if (message.at("type") == "HapticPulse") {
    return Framed(LinkMessageType::kHapticPulse,
                  HapticPulse{message.at("controllerId"), message.at("timestampMicroseconds"),
                              message.at("durationMicroseconds"), 0});
  }
  FrameSharingInfo info{message.at("processId"), message.at("sharedHandle0"), message.at("sharedHandle1"), {}, 0, {}};
  message.at("name").get<std::string>().copy(info.sharedName.data(), kFrameSharingNameLength);
  info.invertY = message.at("invertY");
  return Framed(LinkMessageType::kFrameSharingInfo, info);
}

TEST(VectorsFromTheDriver, AreWhatItsRecordsAre) {
  for (const json& vector : VectorsOf("from_driver")) {
    EXPECT_EQ(BytesOf(vector.at("bytes")), AsTheDriverWritesIt(vector.at("message"))) << vector.at("name");
  }
}

TEST(Vectors, HoldEveryExampleOfTheProtocolPage) {
  std::set<std::string> shown;
  const auto blocks = ReadHexBlocks(ReadDocument());
  for (const char* name : {"head", "controllers", "others", "from_driver"}) {
    for (const json& vector : VectorsOf(name)) {
      if (!vector.contains("page")) continue;
      const auto block = vector.at("page").get<std::string>();
      shown.insert(block);
      ASSERT_TRUE(blocks.contains(block)) << block;
      const auto bytes = std::as_bytes(std::span(blocks.at(block)));
      EXPECT_EQ(BytesOf(vector.at("bytes")), ByteList(bytes.begin(), bytes.end())) << block;
    }
  }
  for (const auto& [name, bytes] : blocks) EXPECT_TRUE(shown.contains(name) || name == "slot") << name;
}

}  // namespace
}  // namespace ombrel::test
