"""What a single file may hold. The fault is named at the place of the change."""
import pytest

from broken import ICONS, MANIFEST, MENUS, PROFILE, REMAPPING, SETTINGS, TEXTS
from broken import check, drop, put

LASER, SYSTEM = (f"{MENUS}: bindings > /actions/{name} > " for name in ("lasermouse", "system"))
GRIP, HAPTIC, POSE = (f"{PROFILE}: input_source > {path}" for path in ("/input/grip", "/output/haptic", "/pose/front"))


def split(where):
    """What is above the key that where ends with, and the key."""
    above, _, key = where.rpartition(" > " if " > " in where else ": ")
    return above, key


@pytest.mark.parametrize("where", [
    f"{MANIFEST}: alwaysActivate",
    f"{SETTINGS}: driver_ombrel",
    f"{SETTINGS}: driver_ombrel > renderScale",
    f"{ICONS}: statusicons > TrackingReference",
    f"{ICONS}: statusicons > HMD > Prop_NamedIconPathDeviceStandby_String",
    f"{TEXTS}: 1 > /input/trigger",
    f"{PROFILE}: legacy_binding",
    f"{PROFILE}: remapping",
    f"{PROFILE}: input_bindingui_right",
    f"{PROFILE}: input_bindingui_left > image",
    f"{PROFILE}: default_bindings > 0 > app_key",
    POSE,
    f"{POSE} > binding_image_point",
    f"{SYSTEM}sources > 0 > inputs",
    f"{REMAPPING}: layouts",
    f"{REMAPPING}: layouts > 1 > priority",
    f"{REMAPPING}: layouts > 0 > autoremappings",
])
def test_what_is_missing_is_named(where):
    above, key = split(where)
    check(drop(where), [f"{above}: '{key}' is a required property"])


@pytest.mark.parametrize("where", [
    f"{SETTINGS}: driver_Ombrel",
    f"{SETTINGS}: driver_ombrel > renderscale",
    f"{TEXTS}: 0 > /input/joystick",
    f"{MENUS}: bindings > /actions/scroll_smooth > sources > 0 > parameters > scroll_speed",
    f"{REMAPPING}: mappings",
    f"{REMAPPING}: layouts > 0 > simulate_hmd",
    f"{REMAPPING}: layouts > 1 > autoremappings > 0 > mirrored",
])
def test_what_nobody_reads_is_named(where):
    above, key = split(where)
    check(put(where, True), [f"{above}: Additional properties are not allowed ('{key}' was unexpected)"])


@pytest.mark.parametrize("where", [
    f"{ICONS}: statusicons > GenericTracker",
    f"{ICONS}: statusicons > HMD > Prop_NamedIconPathDeviceAsleep_String",
    f"{PROFILE}: input_source > /pose/back",
])
def test_what_the_runtime_does_not_know_is_named(where):
    above, key = split(where)
    check(put(where, True), [f"{above}: '{key}' does not match any of the regexes"])


@pytest.mark.parametrize("where, value, reason", [
    (f"{MANIFEST}: name", "Ombrel", "'Ombrel' does not match"),
    (f"{MANIFEST}: directory", "bin", "the manifest's own folder: '' was expected"),
    (f"{MANIFEST}: resourceOnly", True, "False was expected"),
    (f"{MANIFEST}: alwaysActivate", "yes", "'yes' is not of type 'boolean'"),
    (f"{MANIFEST}: hmd_presence", [], "a list of USB ids: []"),
    (f"{MANIFEST}: hmd_presence > 0", "*", "vendor and product, each in hex or a star: '*' does not match"),
    (f"{SETTINGS}: driver_ombrel > fakeSensorEnabled", 1, "1 is not of type 'boolean'"),
    (f"{SETTINGS}: driver_ombrel > hmdMode", False, "False is not of type 'integer'"),
    (f"{SETTINGS}: driver_ombrel > windowWidth", 2560.0, "2560.0 is not of type 'integer'"),
    (f"{ICONS}: jsonid", "icons", "'vrresources' was expected"),
    (f"{TEXTS}: 0 > /input/trigger", "", "''"),
    (f"{TEXTS}: 1 > language_tag", "german", "'german' does not match"),
    (f"{PROFILE}: jsonid", "input-profile", "'input_profile' was expected"),
    (f"{PROFILE}: controller_type", "A wand", "'A wand' does not match"),
    (f"{PROFILE}: remapping", "remapping.json", "a file of the driver: 'remapping.json' does not match"),
    (f"{PROFILE}: compatibility_mode_controller_type", "vive_controller", 'ignored beside "remapping": '),
    (f"{PROFILE}: input_bindingui_mode", "both_hands", "'both_hands' is not one of"),
    (f"{PROFILE}: default_bindings", [], "for the runtime's menus: []"),
    (f"{PROFILE}: default_bindings > 0 > app_key", "menus", "'openvr.component.vrcompositor' was expected"),
    (f"{PROFILE}: default_bindings > 0 > binding_url", "{ombrel}/input/menus.json", "a file beside the profile: "),
    (f"{GRIP} > type", "squeeze", "'squeeze' is not one of"),
    (f"{HAPTIC} > type", "haptic", "'vibration' was expected"),
    (f"{POSE} > type", "button", "'pose' was expected"),
    (f"{POSE} > binding_image_point > 0", 0.5, "0.5 is not of type 'integer'"),
    (f"{HAPTIC} > binding_image_point > 1", -1, "-1 is less than the minimum of 0"),
    (f"{MENUS}: bindings", {}, "sets of actions: {}"),
    (f"{SYSTEM}sources > 0 > inputs", {}, "inputs of the mode: {}"),
    (f"{SYSTEM}sources > 0 > path", "/input/system", "a hand's input: '/input/system' does not match"),
    (f"{LASER}poses > 0 > path", "/user/hand/left/input/grip", "a hand's pose: '/user/hand/left/input/grip'"),
    (f"{LASER}haptics > 0 > path", "/user/hand/left/input/grip", "what vibrates: '/user/hand/left/input/grip'"),
    (f"{LASER}sources > 0 > parameters > click_activate_threshold", "1.65", "a threshold: '1.65' does not match"),
    (f"{LASER}sources > 0 > parameters", {"click_activate_threshold": "0.6"}, "'click_deactivate_threshold' is a"),
    (f"{SYSTEM}chords > 0 > inputs", [["/user/hand/left/input/system", "held"]], "several inputs at once: [["),
    (f"{SYSTEM}chords > 0 > inputs > 0", ["/user/hand/left/input/system"], "a path and one of its inputs: ['/"),
    (f"{REMAPPING}: layouts > 3 > autoremappings > 0 > to", "/input/trigger", "a hand's input: '/input/trigger' "),
    (f"{REMAPPING}: layouts > 1 > autoremappings > 0 > to", "/user/hand/right/output/haptic", "a hand's input: "),
])
def test_what_may_not_stand_there_is_named_with_the_rule(where, value, reason):
    check(put(where, value), [f"{where}: {reason}"])
