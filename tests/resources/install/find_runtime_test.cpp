// How the scripts read the runtime's folder out of its path registry.
#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "install_test.h"

namespace ombrel::test {
namespace {

using testing::ElementsAre;

bool IsWine() { return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr; }

std::string InAnsiCodePage(const std::string& utf8) {
  std::wstring wide(utf8.size(), L'\0');
  wide.resize(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()),
                                                           wide.data(), static_cast<int>(wide.size()))));
  std::string ansi(wide.size() * 2, '\0');
  ansi.resize(
      static_cast<std::size_t>(WideCharToMultiByte(CP_ACP, 0, wide.data(), static_cast<int>(wide.size()), ansi.data(),
                                                   static_cast<int>(ansi.size()), nullptr, nullptr)));
  return ansi;
}

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

// The runtime writes UTF-8, which the script makes the console's code page. Windows' cmd.exe reads files in that one,
// Wine's in the ANSI one whatever the console's is.
TEST_F(FindRuntimeTest, InAFolderWithUmlauts) {
  PutRuntime("Spiele f\u00fcr J\u00f6rg/SteamVR");
  const std::string text = "{\n\t\"runtime\" : \n\t[\n\t\t" + Json(runtime) + "\n\t]\n}\n";
  WriteRegistryText(IsWine() ? InAnsiCodePage(text) : text);
  LetVrpathregAnswer(0);
  ExpectFound();
}

TEST_F(FindRuntimeTest, TheCodePageIsUtf8WhileReadingAndThenAsBefore) {
  // What stands in the current folder comes before the system's.
  const std::filesystem::path folder = At("current");
  std::filesystem::create_directories(folder);
  std::filesystem::copy_file(std::getenv("OMBREL_TEST_CHCP"), folder / "chcp.exe");
  EXPECT_EQ(RunIn(folder, "\"" + TextOf(driver + "/install.cmd") + "\" /quiet").exitCode, 0);
  std::ifstream calls(folder / "chcp.calls");
  const std::vector<std::string> words{std::istream_iterator<std::string>(calls), {}};
  EXPECT_THAT(words, ElementsAre("?", "65001", "850"));
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
