"""What a single file may hold. The fault is named at the place of the change."""
import pytest

from broken import FACTS, FILES, ICONS, LEGACY, MANIFEST, MENUS, PROFILE, REMAPPING, SETTINGS, TEXTS
from broken import drop, put
from check_files import texts_schema
from folder import parse, schema_faults, schema_of, settings_schema

SCHEMAS = {
    MANIFEST: schema_of("manifest"), SETTINGS: settings_schema(FACTS), ICONS: schema_of("icons"),
    PROFILE: schema_of("input_profile"), TEXTS: texts_schema(parse(FILES[PROFILE])),
    MENUS: schema_of("bindings"), LEGACY: schema_of("bindings"), REMAPPING: schema_of("remapping")}
LASER, SYSTEM = (f"{MENUS}: bindings > /actions/{name} > " for name in ("lasermouse", "system"))
GRIP, HAPTIC, POSE = (f"{PROFILE}: input_source > {path}" for path in ("/input/grip", "/output/haptic", "/pose/front"))
MENUS_ENTRY = {"app_key": "openvr.component.vrcompositor", "binding_url": "bindings_menus.json"}
STEP = f"{REMAPPING}: layouts > 1 > autoremappings > 0"


def below(where, key):
    return f"{where} > {key}" if ": " in where else f"{where}: {key}"


def places(where, value):
    """Each place in a document and what stands there; of lists the last member."""
    yield where, value
    if isinstance(value, (dict, list)):
        for key, inner in value.items() if isinstance(value, dict) else [*enumerate(value)][-1:]:
            yield from places(below(where, key), inner)


def faults_after(change, where):
    """In the one file that where is in."""
    file = where.partition(": ")[0]
    files = {file: FILES[file]}
    change(files, FACTS)
    return [*schema_faults(file, parse(files[file]), SCHEMAS[file])]


def is_refused(where, value, beginning):
    return any(found.startswith(beginning) for found in faults_after(put(where, value), where))


@pytest.mark.parametrize("file", SCHEMAS)
def test_null_is_refused_everywhere(file):
    everywhere = [where for where, _ in places(file, parse(FILES[file])) if where != file]
    assert [where for where in everywhere if not is_refused(where, None, f"{where}: ")] == []
    assert [*schema_faults(file, None, SCHEMAS[file])] != []


@pytest.mark.parametrize("file", SCHEMAS)
def test_a_key_that_nobody_reads_is_refused_in_every_object(file):
    objects = [where for where, value in places(file, parse(FILES[file])) if isinstance(value, dict)]
    assert [where for where in objects if not is_refused(below(where, "?"), None, where)] == []


@pytest.mark.parametrize("above, key", [(above, key) for above, keys in {
    MANIFEST: "name directory resourceOnly alwaysActivate hmd_presence",
    SETTINGS: "driver_ombrel",
    f"{SETTINGS}: driver_ombrel": "renderScale fakeSensorEnabled",
    ICONS: "jsonid statusicons",
    f"{ICONS}: statusicons": "HMD Controller TrackingReference",
    f"{ICONS}: statusicons > HMD": " ".join(f"Prop_NamedIconPathDevice{state}_String" for state in (
        "Off", "Searching", "SearchingAlert", "Ready", "ReadyAlert", "NotReady", "Standby", "AlertLow")),
    f"{TEXTS}: 1": "language_tag ombrel_controller /input/trigger /output/haptic",
    PROFILE: "jsonid controller_type legacy_binding remapping input_bindingui_mode input_bindingui_left"
             " input_bindingui_right input_source default_bindings",
    f"{PROFILE}: input_bindingui_left": "image",
    f"{PROFILE}: input_source": "/pose/raw /pose/base /pose/handgrip /pose/tip /pose/front /pose/gdc2015",
    GRIP: "type binding_image_point",
    POSE: "type binding_image_point",
    f"{PROFILE}: default_bindings > 0": "app_key binding_url",
    MENUS: "controller_type bindings",
    f"{LASER}sources > 0": "path mode inputs",
    f"{LASER}sources > 0 > inputs > click": "output",
    f"{LASER}poses > 0": "path output",
    f"{SYSTEM}chords > 0": "inputs output",
    REMAPPING: "to_controller_type layouts",
    f"{REMAPPING}: layouts > 0": "priority from_controller_type autoremappings",
    STEP: "from to",
}.items() for key in keys.split()])
def test_what_is_missing_is_named(above, key):
    assert faults_after(drop(below(above, key)), above) == [f"{above}: '{key}' is a required property"]


@pytest.mark.parametrize("where, value, reason", [
    (f"{MANIFEST}: name", "Ombrel", "'Ombrel' does not match"),
    (f"{MANIFEST}: directory", "bin", "the manifest's own folder: '' was expected"),
    (f"{MANIFEST}: resourceOnly", True, "False was expected"),
    (f"{MANIFEST}: hmd_presence", [], "a list of USB ids: []"),
    (f"{MANIFEST}: hmd_presence > 0", "*", "vendor and product, each in hex or a star: '*' does not match"),
    (f"{SETTINGS}: driver_ombrel > fakeSensorEnabled", 1, "1 is not of type 'boolean'"),
    (f"{SETTINGS}: driver_ombrel > hmdMode", False, "False is not of type 'integer'"),
    (f"{SETTINGS}: driver_ombrel > windowWidth", 2560.0, "2560.0 is not of type 'integer'"),
    (f"{ICONS}: statusicons > HMD > Prop_NamedIconPathDeviceOff_String", "{ombrel}/off.png", "'{ombrel}/off.png' does"),
    (f"{ICONS}: jsonid", "icons", "'vrresources' was expected"),
    (f"{TEXTS}: 0 > /input/trigger", "", "''"),
    (f"{TEXTS}: 1 > language_tag", "german", "'german' does not match"),
    (f"{PROFILE}: jsonid", "input-profile", "'input_profile' was expected"),
    (f"{PROFILE}: controller_type", "A wand", "'A wand' does not match"),
    (f"{PROFILE}: remapping", "remapping.json", "a file of the driver: 'remapping.json' does not match"),
    (f"{PROFILE}: compatibility_mode_controller_type", "vive_controller", 'ignored beside "remapping": '),
    (f"{PROFILE}: input_bindingui_mode", "both_hands", "'both_hands' is not one of"),
    (f"{PROFILE}: default_bindings", [], "for the runtime's menus: []"),
    (f"{PROFILE}: default_bindings", [MENUS_ENTRY, MENUS_ENTRY], "for the runtime's menus: [{"),
    (f"{PROFILE}: default_bindings > 0 > app_key", "menus", "'openvr.component.vrcompositor' was expected"),
    (f"{PROFILE}: default_bindings > 0 > binding_url", "{ombrel}/input/menus.json", "a file beside the profile: "),
    (f"{GRIP} > type", "squeeze", "'squeeze' is not one of"),
    (f"{HAPTIC} > type", "haptic", "'vibration' was expected"),
    (f"{POSE} > type", "button", "'pose' was expected"),
    (f"{GRIP} > binding_image_point", [1], "[1] is too short"),
    (f"{GRIP} > binding_image_point", [1, 2, 3], "[1, 2, 3] is too long"),
    (f"{POSE} > binding_image_point > 0", 0.5, "0.5 is not of type 'integer'"),
    (f"{HAPTIC} > binding_image_point > 1", -1, "-1 is less than the minimum of 0"),
    (f"{MENUS}: bindings", {}, "sets of actions: {}"),
    (f"{SYSTEM}sources > 0 > inputs", {}, "inputs of the mode: {}"),
    (f"{SYSTEM}sources > 0 > path", "/input/system", "a hand's input: '/input/system' does not match"),
    (f"{LASER}poses > 0 > path", "/user/hand/left/input/grip", "a hand's pose: '/user/hand/left/input/grip'"),
    (f"{LASER}haptics > 0 > path", "/user/hand/left/input/grip", "what vibrates: '/user/hand/left/input/grip'"),
    (f"{LASER}sources > 0 > parameters > click_activate_threshold", "1.65", "a threshold: '1.65' does not match"),
    (f"{LASER}sources > 0 > parameters", {"click_activate_threshold": "0.6"}, "'click_deactivate_threshold' is a"),
    (f"{LASER}sources > 0 > parameters", {"click_deactivate_threshold": "0.6"}, "'click_activate_threshold' is a"),
    (f"{LASER}sources > 0 > parameters > click_deactivate_threshold", "1.6", "a threshold: '1.6' does not match"),
    (f"{SYSTEM}chords > 0 > inputs > 0 > 0", "/user/hand/left/pose/tip", "a hand's input: '/user/hand/left/pose/tip'"),
    (f"{SYSTEM}chords > 0 > inputs > 0", ["/user/hand/left/input/system", "held", "long"], "a path and one of its "),
    (f"{SYSTEM}chords > 0 > inputs", [["/user/hand/left/input/system", "held"]], "several inputs at once: [["),
    (f"{SYSTEM}chords > 0 > inputs > 0", ["/user/hand/left/input/system"], "a path and one of its inputs: ['/"),
    (f"{STEP} > mirror", 0, "0 is not of type 'boolean'"),
    (f"{STEP} > to", "/input/trigger", "a hand's input: '/input/trigger' does not match"),
    (f"{STEP} > to", "/user/hand/right/output/haptic", "a hand's input: '/user/hand/right/output/haptic' does not"),
])
def test_what_may_not_stand_there_is_named_with_the_rule(where, value, reason):
    [found] = faults_after(put(where, value), where)
    assert found.startswith(f"{where}: {reason}")
