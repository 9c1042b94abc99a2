"""Rules for the remapping of bindings that were written for other controllers. What the runtime refuses here leaves
applications that have no binding for ours without any input."""
import runtime
from check_bindings import LEFT, RIGHT, without_hand
from folder import fault


def order(folder):
    """Of the controllers that an application has bindings for, the runtime takes the one with the highest priority."""
    file, remapping = folder.remapping
    layouts = sorted(remapping["layouts"], key=lambda layout: -layout["priority"])
    names = [layout["from_controller_type"] for layout in layouts]
    if names != [*runtime.BUILT_IN]:
        yield fault(file, ["layouts"], f"by priority from {names}, not {[*runtime.BUILT_IN]}")
    if len({layout["priority"] for layout in layouts}) != len(layouts):
        yield fault(file, ["layouts"], "two have the same priority")


def simulation(folder):
    file, remapping = folder.remapping
    for number, layout in enumerate(remapping["layouts"]):
        name = layout["from_controller_type"]
        for key in "simulate_controller_type", "simulate_render_model", "simulate_HMD":
            if layout.get(key, True) == (name in runtime.NOT_SIMULATED):
                yield fault(file, ["layouts", number, key], f"is wrong for {name}")


def steps(folder):
    file, remapping = folder.remapping
    for number, layout in enumerate(remapping["layouts"]):
        for at, step in enumerate(layout["autoremappings"]):
            place = ["layouts", number, "autoremappings", at]
            if without_hand(step["to"]) not in folder.profile.content["input_source"]:
                yield fault(file, place, f"{step['to']} is not in the profile")
            if step["from"].startswith(LEFT) != step["to"].startswith(LEFT):
                yield fault(file, place, f"converts {step['from']} across the hands")


def coverage(folder):
    """The inputs that are not the same as ours are converted, and no others."""
    file, remapping = folder.remapping
    for number, layout in enumerate(remapping["layouts"]):
        name = layout["from_controller_type"]
        given = {path for step in layout["autoremappings"] for path in converted(step)}
        wanted = {f"/user/hand/{hand}" for text in runtime.BUILT_IN.get(name, "").split()
                  for hand in (text.replace("*", "left"), text.replace("*", "right"))}
        for path in sorted(wanted - given):
            yield fault(file, ["layouts", number], f"does not convert {path} of {name}")
        for path in sorted(given - wanted):
            yield fault(file, ["layouts", number], f"converts {path}, which {name} has not or has the same as ours")


def converted(step):
    return {step["from"], step["from"].replace(RIGHT, LEFT)} if step.get("mirror", True) else {step["from"]}


RULES = [order, simulation, steps, coverage]
