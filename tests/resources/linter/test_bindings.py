"""What takes the bindings and the input profile together, and what the runtime knows."""
import pytest

from broken import LEGACY, MENUS, PROFILE, REMAPPING, add, broken, check, drop, put, replace

LASER, SYSTEM = (f"{MENUS}: bindings > /actions/{name} > " for name in ("lasermouse", "system"))
DISCRETE, SMOOTH = (f"{MENUS}: bindings > /actions/scroll_{mode} > " for mode in ("discrete", "smooth"))
LEGACY_SET = f"{LEGACY}: bindings > /actions/legacy > "
TRIGGER = f"{LASER}sources > 0 > parameters"
SIDES = ("left", "right")


@broken({
    "menus of another controller": (
        put(f"{MENUS}: controller_type", "wand"), [f"{MENUS}: controller_type: is not ombrel_controller"]),
    "legacy bindings of another controller": (
        put(f"{LEGACY}: controller_type", "wand"), [f"{LEGACY}: controller_type: is not ombrel_controller"]),
    "remapping to another controller": (
        put(f"{REMAPPING}: to_controller_type", "wand"),
        [f"{REMAPPING}: to_controller_type: is not ombrel_controller, as in the profile"]),
    "path that is not there": (
        put(f"{LASER}sources > 8 > path", "/user/hand/right/input/thumb"),
        [f"{LASER}sources > 8 > inputs > click: click needs click, which /user/hand/right/input/thumb has not",
         f"{LASER}sources > 8 > path: /user/hand/right/input/thumb is not in the profile",
         f"{MENUS}: bindings > /actions/lasermouse: /input/grip is bound for one hand only",
         f"{MENUS}: bindings > /actions/lasermouse: /input/thumb is bound for one hand only"]),
    "pose that the profile lacks": (
        replace(MENUS, "/pose/tip", "/pose/tip_end", -1),
        [f"{LASER}poses > {at} > path: /user/hand/{side}/pose/tip_end is not in the profile"
         for at, side in enumerate(SIDES)]),
    "haptics without an output": (
        replace(LEGACY, "/output/haptic", "/output/buzz", -1),
        [f"{LEGACY_SET}haptics > {at} > path: /user/hand/{side}/output/buzz is not in the profile"
         for at, side in enumerate(SIDES)]),
    "one hand only": (
        drop(f"{LEGACY_SET}sources > 0"),
        [f"{LEGACY}: bindings: nothing is bound to /actions/legacy/in/left_system_press",
         f"{LEGACY}: bindings > /actions/legacy: /input/system is bound for one hand only"]),
    "chord for one hand only": (
        drop(f"{SYSTEM}chords > 0"),
        [f"{MENUS}: bindings > /actions/system: /input/{name} is bound for one hand only"
         for name in ("system", "trigger")]),

    "action of another set": (
        put(f"{LASER}poses > 0 > output", "/actions/system/in/opendashboard"),
        [f"{LASER}poses > 0: /actions/system/in/opendashboard is no action of /actions/lasermouse/in/"]),
    "action that the runtime lacks": (
        put(f"{LASER}sources > 3 > inputs > click > output", "/actions/lasermouse/in/scroll"),
        [f"{LASER}sources > 3 > inputs > click: /actions/lasermouse/in/scroll is no action that the runtime knows"]),
    "actions of another application": (
        replace(LEGACY, '"/actions/legacy"', '"/actions/system"'),
        [f"{LEGACY}: bindings > /actions/system > "] * 22),
    "haptics into an input": (
        replace(LEGACY, "/actions/legacy/out/left_haptic", "/actions/legacy/in/left_haptic"),
        [f"{LEGACY_SET}haptics > 0: /actions/legacy/in/left_haptic is no action of /actions/legacy/out/",
         f"{LEGACY}: bindings: nothing is bound to /actions/legacy/out/left_haptic"]),
    "menu that cannot be opened": (
        replace(MENUS, "toggledashboard", "opendashboard", -1),
        [f"{MENUS}: bindings: nothing is bound to /actions/system/in/toggledashboard"]),
    "laser that cannot change hands": (
        drop(f"{MENUS}: bindings > /actions/lasermouse_secondary"),
        [f"{MENUS}: bindings: nothing is bound to /actions/lasermouse_secondary/in/switchlaserhand"]),
    "legacy trigger that cannot be touched": (
        replace(LEGACY, "axis1_touch", "axis2_touch", -1),
        [f"{LEGACY}: bindings: nothing is bound to /actions/legacy/in/{side}_axis1_touch" for side in SIDES]),

    "input that the mode has not": (
        replace(LEGACY, '"pull"', '"value"'),
        [f"{LEGACY_SET}sources > 5 > inputs > value: there is no value in mode trigger"]),
    "mode that the runtime lacks": (
        replace(MENUS, '"dpad_click"', '"dpad"'),
        [f"{LASER}sources > 2 > inputs > east: there is no east in mode dpad"]),
    "side of the trackpad that the mode lacks": (
        replace(MENUS, '"east"', '"right"'),
        [f"{LASER}sources > 2 > inputs > right: there is no right in mode dpad_click"]),
    "chord of an input that is not there": (
        put(f"{SYSTEM}chords > 0 > inputs > 0 > 1", "pull"),
        [f"{SYSTEM}chords > 0: there is no pull in mode button"]),

    "scrolling in the other set's steps": (
        replace(MENUS, '"scroll_mode": "smooth"', '"scroll_mode": "discrete"'),
        [f"{SMOOTH}sources > 0 > parameters: scroll_mode is not that of /actions/scroll_smooth"]),
    "scrolling in no steps": (
        drop(f"{DISCRETE}sources > 1 > parameters"),
        [f"{DISCRETE}sources > 1 > parameters: scroll_mode is not that of /actions/scroll_discrete"]),
    "trigger that is released before it is pressed": (
        put(f"{TRIGGER} > click_deactivate_threshold", "0.7"), [f"{TRIGGER}: is not pressed at a threshold and rel"]),
    "trigger that is never released": (
        put(f"{TRIGGER} > click_deactivate_threshold", "0.0"), [f"{TRIGGER}: is not pressed at a threshold and rel"]),
})
def test_refused(change, expected):
    check(change, expected)


@pytest.mark.parametrize("change", [
    replace(MENUS, "/actions/lasermouse/in/leftclick", "/actions/lasermouse/in/LeftClick", -1),
    replace(LEGACY, "/actions/legacy/in/left_axis1_touch", "/actions/legacy/in/Left_Axis1_Touch"),
    put(f"{PROFILE}: input_bindingui_mode", "single_device"),
    put(f"{PROFILE}: input_bindingui_mode", "hmd"),
    put(f"{REMAPPING}: layouts > 0 > remappings", []),
])
def test_what_the_runtime_takes_as_well_is_no_fault(change):
    check(change, [])


# The layouts, in the order of the file.
WAND, KNUCKLES, TOUCH, SIMPLE = (f"{REMAPPING}: layouts > {at}" for at in range(4))


def layout(name, priority):
    return {"priority": priority, "from_controller_type": name, "autoremappings": []}


@broken({
    "layout missing": (
        drop(SIMPLE),
        [f"{REMAPPING}: layouts: by priority from ['vive_controller', 'knuckles', 'oculus_touch'], not ['vive_"]),
    "layout that comes twice": (
        add(f"{REMAPPING}: layouts", layout("vive_controller", 111)),
        [f"{REMAPPING}: layouts: by priority from ['vive_controller', 'vive_controller', 'knuckles', "]),
    "layout from a type that is not built in": (
        add(f"{REMAPPING}: layouts", layout("gamepad", 1)),
        [f"{REMAPPING}: layouts: by priority from ['vive_controller', 'knuckles', 'oculus_touch', 'khr_simple_"]),
    "other controllers before the wand": (
        put(f"{WAND} > priority", 95),
        [f"{REMAPPING}: layouts: by priority from ['knuckles', 'vive_controller', 'oculus_touch', "]),
    "two layouts of one priority": (
        put(f"{TOUCH} > priority", 100), [f"{REMAPPING}: layouts: two have the same priority"]),

    "simple controller that is simulated": (
        drop(f"{SIMPLE} > simulate_HMD"), [f"{SIMPLE} > simulate_HMD: is wrong for khr_simple_"]),
    "wand that is not simulated": (
        put(f"{WAND} > simulate_controller_type", False),
        [f"{WAND} > simulate_controller_type: is wrong for vive_controller"]),
    "knuckles without their looks": (
        put(f"{KNUCKLES} > simulate_render_model", False),
        [f"{KNUCKLES} > simulate_render_model: is wrong for knuckles"]),

    "step to a path that is not there": (
        put(f"{KNUCKLES} > autoremappings > 0 > to", "/user/hand/right/input/squeeze"),
        [f"{KNUCKLES} > autoremappings > 0: /user/hand/right/input/squeeze is not in the profile"]),
    "step from a path that is not there": (
        put(f"{KNUCKLES} > autoremappings > 0 > from", "/user/hand/right/input/squeeze"),
        [f"{KNUCKLES}: does not convert /user/hand/left/input/grip of knuckles",
         f"{KNUCKLES}: does not convert /user/hand/right/input/grip of knuckles",
         f"{KNUCKLES}: converts /user/hand/left/input/squeeze, which knuckles has not",
         f"{KNUCKLES}: converts /user/hand/right/input/squeeze, which knuckles has not"]),
    "step for one hand only": (
        put(f"{KNUCKLES} > autoremappings > 0 > mirror", False),
        [f"{KNUCKLES}: does not convert /user/hand/left/input/grip of knuckles"]),
    "mirror of a button that one hand has": (
        put(f"{TOUCH} > autoremappings > 3 > mirror", True),
        [f"{TOUCH}: converts /user/hand/left/input/a, which oculus_touch has not or has the same as ours"]),
    "mirror of the left hand": (
        drop(f"{TOUCH} > autoremappings > 5 > mirror"),
        [f"{TOUCH} > autoremappings > 5 > from: mirrored to the left hand: '/user/hand/left/input/x' "]),
    "step across the hands": (
        put(f"{TOUCH} > autoremappings > 5 > to", "/user/hand/right/input/application_menu"),
        [f"{TOUCH} > autoremappings > 5: converts /user/hand/left/input/x across the hands"]),
})
def test_refused_remapping(change, expected):
    check(change, expected)
