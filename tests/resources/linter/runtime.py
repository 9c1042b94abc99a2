"""What the runtime knows of controllers and of the actions that bindings are written for."""


def _actions(table):
    return {f"/actions/{action_set}/{action}" for action_set, names in table.items() for action in names.split()}


# Action names, which the runtime compares without regard to case; it binds nothing to a name that it does not know. The
# needed ones it demands itself or binds for its own wand.
MENUS_NEEDED = _actions({
    "lasermouse": "in/pointer in/leftclick in/rightclick in/home in/back in/lockmouseposition out/haptic",
    "lasermouse_secondary": "in/switchlaserhand",
    "scroll_discrete": "in/scroll",
    "scroll_smooth": "in/scroll",
    "system": "in/toggledashboard in/toggleroomview in/takescreenshot in/systembuttonchord",
    "dualanalog": "in/leftvalue in/rightvalue in/lefttouch in/righttouch in/leftclick in/rightclick",
})
MENUS = MENUS_NEEDED | _actions({
    "lasermouse": "in/middleclick in/enter in/moveup in/movedown in/moveleft in/moveright in/trackpadtouch"
                  " in/trackpadvalue in/switchgamepadfocus",
    "system": "in/opendashboard in/closedashboard in/volumeup in/volumedown in/mutemicrophone",
    "dualanalog": "in/modeswitch1 in/modeswitch2 in/cancel",
    "locomotion": "in/movement in/rotation",
    "quickmouse_click": "in/activatequickmouse",
    "quickmouse_touch": "in/activatequickmouse",
    "quickmouse_trigger": "in/activatequickmouse",
    "quickrecenter": "in/recenter",
    "roomsetup_floor": "in/floorfineadjust",
})


def _both_sides(names):
    return {action.replace("*", side) for action in _actions({"legacy": names}) for side in ("left", "right")}


LEGACY_NEEDED = _both_sides(
    "in/*_system_press in/*_applicationmenu_press in/*_grip_press in/*_axis0_press in/*_axis0_touch in/*_axis0_value"
    " in/*_axis1_press in/*_axis1_touch in/*_axis1_value in/*_pose out/*_haptic")
LEGACY = LEGACY_NEEDED | _both_sides(
    "in/*_system_touch in/*_applicationmenu_touch in/*_grip_touch in/*_a_press in/*_a_touch"
    " in/*_axis2_press in/*_axis2_touch in/*_axis2_value in/*_axis3_press in/*_axis3_touch in/*_axis3_value"
    " in/*_axis4_press in/*_axis4_touch in/*_axis4_value")

# The inputs that a source has in each mode, and the components that each takes from the profile. The runtime's own
# binding for a wand takes touch from a trigger that has only a click and a value.
MODES = {
    "button": {"click": ["click"], "touch": ["touch"], "held": ["click"], "double": ["click"]},
    "trigger": {"click": ["click"], "touch": ["value"], "pull": ["value"]},
    "trackpad": {"click": ["click"], "touch": ["touch"], "position": ["x", "y"]},
    "dpad_click": dict.fromkeys(["north", "south", "east", "west"], ["x", "y", "click"]),
    "scroll": {"scroll": ["x", "y", "touch"]},
}

# The controllers that the runtime can remap from by itself, those most like ours first, each with its inputs that are
# not the same as ours; "*" stands for either hand.
BUILT_IN = {
    "vive_controller": "",
    "knuckles": "*/input/grip */input/trigger */input/pinch */input/thumbstick */input/a */input/b",
    "oculus_touch": "*/input/grip */input/trigger */input/joystick left/input/x left/input/y right/input/a"
                    " right/input/b",
    "khr_simple_controller": "*/input/select */input/menu",
}
NOT_SIMULATED = {"khr_simple_controller"}

# Status icons in pixels; on dense displays twice that, from a file with @2x before its extension.
ICON_SIZES = {"HMD": (50, 32), "Controller": (32, 32), "TrackingReference": (32, 32)}
