"""Files that cannot be read, and what takes several files, pictures or the driver's sources."""
from broken import FILES, ICONS, LEGACY, MANIFEST, MENUS, PROFILE, REMAPPING, SETTINGS, TEXTS
from broken import broken, check, driver, drop, put, remove, replace, write

OFF, READY, DENSE_READY, LOW, DIAGRAM, SPARE = (f"resources/icons/{name}.png" for name in (
    "headset_off", "headset_ready", "headset_ready@2x", "base_station_low", "controller_diagram", "spare"))
SMALL = FILES["resources/icons/controller_off.png"]
SIDES = ("left", "right")


@broken({
    "no manifest": (remove(MANIFEST), [f"the runtime: {MANIFEST} does not exist"]),
    "no texts": (remove(TEXTS), [f"the runtime: {TEXTS} does not exist"]),
    "no input profile": (remove(PROFILE), [f"the driver: {PROFILE} does not exist"]),
    "JSON that does not parse": (
        replace(REMAPPING, '"layouts": [', '"layouts": [,'), [f"{REMAPPING}: is not valid JSON: Expecting value"]),
    "JSON with a key twice": (
        replace(ICONS, '"jsonid"', '"jsonid": "vrresources", "jsonid"'),
        [f'{ICONS}: is not valid JSON: the key "jsonid" stands there twice']),
    "JSON with what is no number": (
        replace(SETTINGS, "2560", "NaN"), [f"{SETTINGS}: is not valid JSON: NaN is no number"]),
    "text that is not UTF-8": (
        write(TEXTS, FILES[TEXTS].decode().encode("latin-1")), [f"{TEXTS}: is not valid JSON: 'utf-8' codec"]),

    "library missing": (
        remove("bin/win64/driver_ombrel.dll"), [f"{MANIFEST}: name: there is no bin/win64/driver_ombrel.dll"]),
    "manifest of another name": (
        put(f"{MANIFEST}: name", "other"),
        [f"{MANIFEST}: name: there is no bin/win64/driver_other.dll",
         f"{MANIFEST}: name: the driver reads the settings of driver_ombrel",
         f"the driver: {{ombrel}}/{PROFILE.removeprefix('resources/')} is of another driver",
         *[f"{ICONS}: statusicons > "] * 24, f"{PROFILE}: legacy_binding: ", f"{PROFILE}: remapping: ",
         f"{PROFILE}: input_bindingui_left > image: ", f"{PROFILE}: input_bindingui_right > image: "]),
    "driver that reads another section": (
        driver(lambda facts: setattr(facts, "settings_section", "ombrel")),
        [f"{SETTINGS}: 'ombrel' is a required property", "('driver_ombrel' was unexpected)"]),
    "driver that reads one more setting": (
        driver(lambda facts: facts.settings.update(ipd="Int32")),
        [f"{SETTINGS}: driver_ombrel: 'ipd' is a required property"]),
    "file of the driver that does not exist": (
        driver(lambda facts: facts.references.add("{ombrel}/icons/none.png")),
        ["the driver: {ombrel}/icons/none.png does not exist"]),
    "file of another driver": (
        driver(lambda facts: facts.references.add("{other}/icons/headset_off.png")),
        ["the driver: {other}/icons/headset_off.png is of another driver"]),
    "file that nothing names": (
        write("resources/settings/forgotten.json", b"{"), ["resources/settings/forgotten.json: nothing names it"]),
    "language missing": (drop(f"{TEXTS}: 1"), [f"{TEXTS}: has de_DE 0 times"]),
    "language twice": (
        put(f"{TEXTS}: 1 > language_tag", "en_US"), [f"{TEXTS}: has de_DE 0 times", f"{TEXTS}: has en_US 2 times"]),

    "script missing": (remove("uninstall.cmd"), ["uninstall.cmd: does not exist"]),
    "script without carriage returns": (
        replace("install.cmd", "\r\n", "\n"), ["install.cmd: line > 1: has no carriage return"]),
    "script with an umlaut": (
        replace("install.cmd", "@echo", "@\u00e4cho"), ["install.cmd: line > 1: has letters beyond ASCII"]),
})
def test_refused(change, expected):
    check(change, expected)


@broken({
    "icon missing": (
        remove(READY),
        [f"{ICONS}: statusicons > HMD > Prop_NamedIconPathDeviceReady_String: {{ombrel}}/icons/headset_ready.png does",
         f"{READY}: is no whole PNG file of 50 x 32"]),
    "icon without its dense form": (remove(DENSE_READY), [f"{DENSE_READY}: is no whole PNG file of 100 x 64"]),
    "icon of another device's size": (write(OFF, SMALL), [f"{OFF}: is no whole PNG file of 50 x 32"]),
    "icon that is not dense enough": (
        write(DENSE_READY, FILES[READY]), [f"{DENSE_READY}: is no whole PNG file of 100 x 64"]),
    "icon cut short": (write(LOW, FILES[LOW][:-1]), [f"{LOW}: is no whole PNG file of 32 x 32"]),
    "icon of damaged pixels": (write(LOW, FILES[LOW].replace(b"IDAT", b"IDAT\0")), [f"{LOW}: is no whole PNG file of"]),
    "icon of another format": (write(LOW, b"GIF89a"), [f"{LOW}: is no whole PNG file of 32 x 32"]),
    "icon that nothing names": (write(SPARE, SMALL), [f"{SPARE}: nothing names it"]),
    "diagram that is no picture": (
        write(DIAGRAM, b"<svg/>"),
        [f"{PROFILE}: input_bindingui_{side} > image: {DIAGRAM} is no whole PNG file" for side in SIDES]),
})
def test_refused_picture(change, expected):
    check(change, expected)


@broken({
    "remapping that does not exist": (
        put(f"{PROFILE}: remapping", "{ombrel}/input/remap.json"),
        [f"{PROFILE}: remapping: resources/input/remap.json does not exist"]),
    "legacy binding that does not exist": (
        put(f"{PROFILE}: legacy_binding", "{ombrel}/input/legacy.json"),
        [f"{PROFILE}: legacy_binding: resources/input/legacy.json does not exist"]),
    "default bindings that do not exist": (
        put(f"{PROFILE}: default_bindings > 0 > binding_url", "menus.json"),
        [f"{PROFILE}: default_bindings: resources/input/menus.json does not exist"]),
    "image that does not exist": (
        put(f"{PROFILE}: input_bindingui_left > image", "{ombrel}/icons/left.png"),
        [f"{PROFILE}: input_bindingui_left > image: {{ombrel}}/icons/left.png does not exist",
         f"{PROFILE}: input_bindingui_left > image: resources/icons/left.png is no whole PNG file"]),
    "point to the right of the image": (
        put(f"{PROFILE}: input_source > /input/grip > binding_image_point", [512, 4]),
        [f"{PROFILE}: input_source > /input/grip > binding_image_point: is outside the image of input_bindingui_{side}"
         for side in SIDES]),
    "point below the image": (
        put(f"{PROFILE}: input_source > /pose/tip > binding_image_point", [4, 512]),
        [f"{PROFILE}: input_source > /pose/tip > binding_image_point: is outside the image of"] * 2),
    "controller type that the others do not name": (
        put(f"{PROFILE}: controller_type", "wand"),
        [f"{TEXTS}: 0: 'wand' is a required property", f"{TEXTS}: 0: Additional properties are not allowed ('ombrel_",
         f"{TEXTS}: 1: 'wand' is a required property", f"{TEXTS}: 1: Additional properties are not allowed ('ombrel_",
         *[f"{file}: controller_type: is not wand" for file in (MENUS, LEGACY)],
         f"{REMAPPING}: to_controller_type: is not wand, as in the profile"]),
    "no haptic output": (
        drop(f"{PROFILE}: input_source > /output/haptic"),
        [f"{PROFILE}: input_source: lacks /output/haptic, which a controller has",
         *[f"{TEXTS}: {at}: Additional properties are not allowed ('/output/haptic' was unexpected)" for at in (0, 1)],
         *["/output/haptic is not in the profile"] * 4]),
    "component of the controller missing": (
        put(f"{PROFILE}: input_source > /input/grip > click", False),
        [f"{PROFILE}: input_source: lacks /input/grip/click, which a controller has", *["click needs click, "] * 4]),
    "component that no controller has": (
        put(f"{PROFILE}: input_source > /input/grip > touch", True),
        [f"{PROFILE}: input_source: has /input/grip/touch, which no controller has"]),
    "controller with one more component": (
        driver(lambda facts: facts.components.add("/input/trigger/touch")),
        [f"{PROFILE}: input_source: lacks /input/trigger/touch, which a controller has"]),
    "output that no controller has": (
        driver(lambda facts: facts.components.remove("/output/haptic")),
        [f"{PROFILE}: input_source: has /output/haptic, which no controller has"]),
    "value of what is no trigger": (
        put(f"{PROFILE}: input_source > /input/grip > value", True),
        [f"{PROFILE}: input_source > /input/grip > type: what has a value: 'trigger' was expected"]),
    "axes of what is no trackpad": (
        put(f"{PROFILE}: input_source > /input/trackpad > type", "button"),
        [f"{PROFILE}: input_source > /input/trackpad > type: what has {axis}: 'trackpad' was expected"
         for axis in "xy"]),
})
def test_refused_profile(change, expected):
    check(change, expected)
