// Each finding, from a sound computer with one thing spoilt.
#include <gmock/gmock.h>

#include "doctor/checks.h"
#include "fake_machine.h"

namespace ombrel::doctor::test {
namespace {

using testing::ElementsAre;

constexpr const char* kDump = R"(C:\Steam\dumps\vrserver.dmp)";

struct Case {
  const char* id;
  void (*spoil)(FakeMachine& machine);
};

void Session(FakeMachine& machine, const std::string& line) { machine.WriteLog({line}); }
void GoodSession(FakeMachine& machine, const std::string& line) {
  machine.WriteLog({"Ombrel process is running", "HMD activated with id 0", line});
}

const Case kCases[] = {
    {"blocked_by_safe_mode",
     [](FakeMachine& m) { m.WriteSettings(R"("driver_ombrel" : { "blocked_by_safe_mode" : true })"); }},
    {"disabled", [](FakeMachine& m) { m.WriteSettings(R"("driver_ombrel" : { "enable" : false })"); }},
    {"companion_other_spelling",
     [](FakeMachine& m) {
       m.processes[2].executableName = "ombrel.exe";
       Session(m, "Pellmor not active");
     }},
    {"companion_not_running",
     [](FakeMachine& m) {
       m.processes.resize(2);
       m.pipes->clear();
       Session(m, "Pellmor not active");
     }},
    {"path_registry_missing", [](FakeMachine& m) { m.Remove(kRegistry); }},
    {"registered_outer_folder", [](FakeMachine& m) { m.WriteRegistry({kRuntime}, {R"(C:\VR)"}); }},
    {"not_registered", [](FakeMachine& m) { m.WriteRegistry({kRuntime}, {}); }},
    {"other_copy_first",
     [](FakeMachine& m) {
       m.PutDriver(kOther);
       m.WriteRegistry({kRuntime}, {kOther, m.driver});
     }},
    {"registered_twice",
     [](FakeMachine& m) {
       m.PutDriver(kOther);
       m.WriteRegistry({kRuntime}, {m.driver, kOther});
     }},
    {"listed_folder_gone",
     [](FakeMachine& m) {
       m.WriteRegistry({kRuntime}, {kOther, m.driver});
     }},
    {"other_driver_forced", [](FakeMachine& m) { m.WriteSettings(R"("steamvr" : { "forcedDriver" : "null" })"); }},
    {"other_driver_always_active",
     [](FakeMachine& m) {
       m.Put(R"(D:\hands\driver.vrdrivermanifest)", R"({ "name" : "hands", "alwaysActivate" : true })");
       m.WriteRegistry({kRuntime}, {m.driver, R"(D:\hands)"});
     }},
    {"headset_not_required", [](FakeMachine& m) { m.WriteSettings(R"("steamvr" : { "requireHmd" : false })"); }},
    {"log_missing",
     [](FakeMachine& m) {
       m.Remove(R"(C:\Steam\logs\vrserver.txt)");
       m.Put(R"(C:\Steam\logs\web.txt)", "");
     }},
    {"log_silent", [](FakeMachine& m) { Session(m, "Loaded server driver lighthouse"); }},
    {"log_blocked",
     [](FakeMachine& m) {
       Session(m, "Not loading driver ombrel because it was blocked by a previous safe mode event");
     }},
    {"log_disabled",
     [](FakeMachine& m) { Session(m, "Not loading driver ombrel because it is disabled in settings"); }},
    {"log_companion_missing", [](FakeMachine& m) { Session(m, "Pellmor not active"); }},
    {"log_interface_missing",
     [](FakeMachine& m) {
       Session(m, "Unable to load driver ombrel because of error VRInitError_Init_InterfaceNotFound(105). Skipping.");
     }},
    {"log_load_error",
     [](FakeMachine& m) {
       Session(m, "Unable to load driver ombrel because of error VRInitError_Unknown(100). Skipping.");
     }},
    {"log_duplicate",
     [](FakeMachine& m) {
       GoodSession(m,
                   "Skipping duplicate external driver ombrel because a driver of that name was already found at D:");
     }},
    {"log_manifest_invalid",
     [](FakeMachine& m) { Session(m, "Skipping driver \"ombrel\".  Manifest file exists but is invalid."); }},
    {"log_library_not_found",
     [](FakeMachine& m) {
       Session(m,
               "Unable to load driver ombrel. Primary driver shared library not found on filesystem (for this "
               "architecture): C:\\VR\\ombrel\\bin\\win64\\driver_ombrel.dll.");
     }},
    {"log_not_activated", [](FakeMachine& m) { Session(m, "Ombrel process is running"); }},
    {"log_device_lost", [](FakeMachine& m) { GoodSession(m, "Graphics device lost, reason: -2005270523"); }},
    {"log_input_profile",
     [](FakeMachine& m) {
       GoodSession(m, "[Controller Setup] Failed to load input profile for device: OmbrelControllerV02ID0");
     }},
    {"log_remapping",
     [](FakeMachine& m) { GoodSession(m, "[Remapping] Loading ombrel_controller failed. No layouts"); }},
    {"log_input_refused",
     [](FakeMachine& m) { GoodSession(m, "Error while creating boolean component /input/grip/click, error: 1 "); }},
    {"log_controller_refused",
     [](FakeMachine& m) { GoodSession(m, "New driver registered (serial OmbrelControllerV02ID0) with status 0 "); }},
    {"log_smallest_picture", [](FakeMachine& m) { GoodSession(m, "driver_ombrel: Render Target: 500 600"); }},
    {"path_not_ascii", [](FakeMachine& m) { m.MoveDriver("C:\\Spiele f\u00fcr alle\\ombrel"); }},
    {"folder_renamed", [](FakeMachine& m) { m.MoveDriver(R"(C:\VR\ombrel-0.1.0)"); }},
    {"folder_nested",
     [](FakeMachine& m) {
       m.MoveDriver(R"(C:\VR\ombrel\ombrel)");
       m.PutDriver(R"(C:\VR\ombrel)");
     }},
    {"network_drive", [](FakeMachine& m) { m.MoveDriver(R"(N:\ombrel)"); }},
    {"file_missing", [](FakeMachine& m) { m.Remove(R"(C:\VR\ombrel\resources\icons\ready.png)"); }},
    {"json_broken", [](FakeMachine& m) { m.Put(R"(C:\VR\ombrel\resources\input\remapping.json)", "{\n\n oops"); }},
    {"manifest_other_name",
     [](FakeMachine& m) { m.Put(R"(C:\VR\ombrel\driver.vrdrivermanifest)", R"({ "name" : "sample" })"); }},
    {"library_not_64_bits",
     [](FakeMachine& m) { m.Put(R"(C:\VR\ombrel\bin\win64\driver_ombrel.dll)", LibraryFor(0x14C)); }},
    {"library_lacks_library", [](FakeMachine& m) { m.load.error = 126; }},
    {"library_lacks_function", [](FakeMachine& m) { m.load.error = 127; }},
    {"library_damaged", [](FakeMachine& m) { m.load.error = 193; }},
    {"library_blocked", [](FakeMachine& m) { m.load.error = 225; }},
    {"library_not_loading", [](FakeMachine& m) { m.load.error = 1114; }},
    {"library_crashes",
     [](FakeMachine& m) {
       m.load = {0xC0000005, true};
     }},
    {"settings_wrong_type", [](FakeMachine& m) { m.WriteSettings(R"("driver_ombrel" : { "renderScale" : "100" })"); }},
    {"settings_smallest_picture",
     [](FakeMachine& m) { m.WriteSettings(R"("driver_ombrel" : { "windowWidth" : 640 })"); }},
    {"settings_virtual_mode", [](FakeMachine& m) { m.WriteSettings(R"("driver_ombrel" : { "hmdMode" : 1 })"); }},
    {"settings_odd_mode", [](FakeMachine& m) { m.WriteSettings(R"("driver_ombrel" : { "hmdMode" : 2 })"); }},
    {"account_other", [](FakeMachine& m) { m.account.user = "Administrator"; }},
    {"companion_other_rights", [](FakeMachine& m) { m.rights[100] = Rights::kOther; }},
    {"runtime_missing", [](FakeMachine& m) { m.WriteRegistry({R"(D:\gone)"}, {m.driver}); }},
    {"runtime_incomplete", [](FakeMachine& m) { m.Remove(std::string(kRuntime) + R"(\bin\win64\vrserver.exe)"); }},
    {"runtime_elsewhere", [](FakeMachine& m) { m.installed = R"(D:\SteamLibrary\SteamVR)"; }},
    {"adapter_none", [](FakeMachine& m) { m.adapters.clear(); }},
    {"adapter_software", [](FakeMachine& m) { m.adapters.erase(m.adapters.begin()); }},
    {"adapters_several",
     [](FakeMachine& m) {
       m.adapters.push_back({"Other GPU", "0:3", false, false});
     }},
    {"pipes_missing", [](FakeMachine& m) { m.pipes->clear(); }},
    {"pipe_missing", [](FakeMachine& m) { m.pipes->pop_back(); }},
    {"pipes_without_companion", [](FakeMachine& m) { m.processes[2].executableName = "Companion.exe"; }},
    {"crash_in_driver", [](FakeMachine& m) { m.Put(kDump, DumpWith("driver_ombrel.dll", 0x20123)); }},
    {"crash_with_driver", [](FakeMachine& m) { m.Put(kDump, DumpWith("driver_ombrel.dll", 0x10123)); }},
    {"not_understood", [](FakeMachine& m) { m.WriteSettings("\"steamvr\" : {\n oops }"); }},
    {"unexpected_value",
     [](FakeMachine& m) {
       m.Put(kRegistry,
             R"({ "runtime" : ["C:\\Steam\\steamapps\\common\\SteamVR"], "external_drivers" : { "a" : 1 } })");
     }},
    {"unreadable", [](FakeMachine& m) { m.unreadable = R"(C:\Steam\logs\vrserver.txt)"; }},
};

class EachFinding : public testing::TestWithParam<Case> {};

TEST_P(EachFinding, ComesAlone) {
  FakeMachine machine;
  GetParam().spoil(machine);
  if (GetParam().id == std::string("pipes_without_companion")) {
    EXPECT_THAT(Ids(machine), ElementsAre("companion_not_running", GetParam().id));
  } else {
    EXPECT_THAT(Ids(machine), ElementsAre(GetParam().id));
  }
}

TEST_P(EachFinding, HasTextsWithItsValuesPutIn) {
  FakeMachine machine;
  GetParam().spoil(machine);
  for (const Finding& finding : Examined(machine)) {
    const FindingText& text = TextOf(finding.id);
    for (const Language language : {Language::kEnglish, Language::kGerman}) {
      EXPECT_THAT(Filled(text.what.In(language), finding.values), testing::Not(testing::HasSubstr("{")));
      EXPECT_THAT(Filled(text.todo.In(language), finding.values), testing::Not(testing::HasSubstr("\n")));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Doctor, EachFinding, testing::ValuesIn(kCases),
                         [](const auto& each) { return std::string(each.param.id); });

TEST(Findings, ThatHaveATextAreAllProvokedHereInTheirOrder) {
  std::vector<std::string> provoked, known;
  for (const Case& each : kCases) provoked.emplace_back(each.id);
  for (const FindingText& text : FindingTexts()) known.emplace_back(text.id);
  EXPECT_EQ(provoked, known);
}

}  // namespace
}  // namespace ombrel::doctor::test
