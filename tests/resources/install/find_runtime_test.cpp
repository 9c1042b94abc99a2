// How installing reads the runtime's folder out of its path registry.
#include <algorithm>

#include "install_test.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;

class FindRuntimeTest : public InstallTest {
 protected:
  // As a JSON string, every backslash doubled.
  [[nodiscard]] std::string Json(const std::string& path) const { return nlohmann::json(TextOf(path)).dump(); }

  void ExpectFound() {
    const Outcome outcome = Run("install.cmd");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
    EXPECT_THAT(Calls(), ElementsAre(Call{"adddriver", TextOf(driver)}));
  }
};

TEST_F(FindRuntimeTest, InAFolderWithBlanksBracketsAndAmpersands) {
  PutRuntime("Games (old) & more/Steam VR");
  WriteRegistry(runtime);
  ExpectFound();
}

TEST_F(FindRuntimeTest, InAFolderWithExclamationMarksAndCarets) {
  PutRuntime("Wow! Games!/x^y");
  WriteRegistry(runtime);
  ExpectFound();
}

TEST_F(FindRuntimeTest, InAFolderWithUmlauts) {
  PutRuntime("Spiele f\u00fcr J\u00f6rg/SteamVR");
  WriteRegistry(runtime);
  ExpectFound();
}

TEST_F(FindRuntimeTest, WrittenWithEscapedLetters) {
  PutRuntime("Spiele f\u00fcr J\u00f6rg/SteamVR");
  WriteRegistryText("{ \"runtime\" : [ " + nlohmann::json(TextOf(runtime)).dump(-1, ' ', true) + " ] }");
  ExpectFound();
}

TEST_F(FindRuntimeTest, InAFileWithAMarkOfByteOrderAndComments) {
  WriteRegistryText("\xEF\xBB\xBF// by hand\n{ \"runtime\" : /* here */ [ " + Json(runtime) + " ] }");
  LetVrpathregAnswer(0);
  ExpectFound();
}

TEST_F(FindRuntimeTest, InAFolderWhoseNameBeginsWithTheLetterU) {
  PutRuntime("users/u0041/SteamVR");
  WriteRegistry(runtime);
  ExpectFound();
}

TEST_F(FindRuntimeTest, TheFirstOfSeveral) {
  PutRuntime("first/SteamVR");
  WriteRegistryText("{\n\t\"external_drivers\" : null,\n\t\"runtime\" : \n\t[\n\t\t" + Json(runtime) +
                    ",\n\t\t\"C:\\\\second\"\n\t]\n}\n");
  ExpectFound();
}

TEST_F(FindRuntimeTest, InAFileOfOneLine) {
  WriteRegistryText("{\"external_drivers\":null,\"runtime\":[" + Json(runtime) + ",\"C:\\\\b\"],\"version\":1}");
  ExpectFound();
}

TEST_F(FindRuntimeTest, InAFileThatBreaksEverywhere) {
  WriteRegistryText("{\r\n  \"external_drivers\"\r\n:\r\nnull,\r\n\r\n\"runtime\"\r\n  :\r\n [\r\n\r\n " +
                    Json(runtime) + "\r\n ]\r\n}");
  ExpectFound();
}

TEST_F(FindRuntimeTest, WrittenWithSlashes) {
  std::string path = TextOf(runtime);
  std::replace(path.begin(), path.end(), '\\', '/');
  WriteRegistryText("{\"external_drivers\" : null, \"runtime\" : [ \"" + path + "\" ] }");
  ExpectFound();
}

TEST_F(FindRuntimeTest, WrittenWithEscapedSlashes) {
  std::string path = TextOf(runtime);
  for (std::size_t at = 0; (at = path.find('\\', at)) != std::string::npos; at += 2) path.replace(at, 1, "\\/");
  WriteRegistryText("{\"external_drivers\" : null, \"runtime\" : [ \"" + path + "\" ] }");
  ExpectFound();
}

TEST_F(FindRuntimeTest, BehindAValueThatReadsLikeTheKey) {
  WriteRegistryText("{\n\t\"external_drivers\" : [ \"runtime\", \"runtime\" ],\n\t\"jsonid\" : \"runtime\",\n" +
                    std::string("\t\"runtime\" : [ ") + Json(runtime) + " ]\n}");
  ExpectFound();
}

TEST_F(FindRuntimeTest, NamedWithoutAList) {
  WriteRegistryText("{\n\t\"external_drivers\" : null,\n\t\"runtime\" : " + Json(runtime) + "\n}");
  ExpectFound();
}

}  // namespace
}  // namespace ombrel::test
