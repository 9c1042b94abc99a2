// The build's shader compiler: what it refuses ends a build.
#include <gmock/gmock.h>

#include <string>

#include "test_files/command_line.h"
#include "test_files/scratch_folder.h"

namespace ombrel::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class CompileShaderTest : public testing::Test {
 protected:
  [[nodiscard]] Outcome Run(const std::string& arguments) const {
    const std::string program = ToUtf8(FromEnvironment("OMBREL_TEST_COMPILE_SHADER"));
    return RunCommandLine('"' + program + "\" " + arguments, folder_.At("."));
  }
  [[nodiscard]] Outcome Compile(const std::string& source) const {
    folder_.Write("shader.hlsl", source);
    return Run("shader.hlsl ps_4_0 shader.cso");
  }

  const std::string good_ = "float4 main() : SV_Target { return 1; }";
  const ScratchFolder folder_;
};

TEST_F(CompileShaderTest, WritesBytecodeAndSaysNothing) {
  const Outcome outcome = Compile(good_);
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.output, "");
  EXPECT_THAT(folder_.Read("shader.cso"), StartsWith("DXBC"));
}

TEST_F(CompileShaderTest, SaysWhatIsWrongInTheSource) {
  const Outcome outcome = Compile("float4 main() : SV_Target { return nothing; }");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.output, StartsWith("shader.hlsl (ps_4_0): error 0x8"));
  EXPECT_THAT(outcome.output, HasSubstr("\"nothing\""));
  EXPECT_EQ(folder_.Read("shader.cso"), "");
}

TEST_F(CompileShaderTest, NeedsASource) {
  const Outcome outcome = Run("shader.hlsl ps_4_0 shader.cso");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.output, StartsWith("shader.hlsl: cannot be read"));
}

TEST_F(CompileShaderTest, NeedsAPlaceToWriteTo) {
  folder_.Write("shader.hlsl", good_);
  const Outcome outcome = Run("shader.hlsl ps_4_0 nowhere/shader.cso");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.output, StartsWith("nowhere/shader.cso: cannot be written"));
}

TEST_F(CompileShaderTest, SaysHowItIsCalled) {
  const Outcome outcome = Run("shader.hlsl");
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.output, StartsWith("usage: compile_shader SOURCE PROFILE OUTPUT"));
}

}  // namespace
}  // namespace ombrel::test
