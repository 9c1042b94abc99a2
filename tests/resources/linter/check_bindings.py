"""Rules for the bindings of the controllers' inputs, poses and outputs to actions. Each yields its faults."""
import collections

import runtime
from folder import fault, texts_in

LEFT, RIGHT = "/user/hand/left", "/user/hand/right"


def without_hand(path):
    return path.removeprefix(LEFT).removeprefix(RIGHT)


def bound(document):
    """Each output: its place, how the actions that may stand there begin, the one that does, and the inputs that it is
    made of, each as path, mode and name."""
    for action_set, bindings in document["bindings"].items():
        for number, source in enumerate(bindings.get("sources", [])):
            for name, taken in source["inputs"].items():
                place = ["bindings", action_set, "sources", number, "inputs", name]
                yield place, f"{action_set}/in/", taken["output"], [(source["path"], source["mode"], name)]
        for kind, direction in ("chords", "in"), ("poses", "in"), ("haptics", "out"):
            for number, binding in enumerate(bindings.get(kind, [])):
                place = ["bindings", action_set, kind, number]
                taken = [(path, "button", name) for path, name in binding.get("inputs", [])]
                yield place, f"{action_set}/{direction}/", binding["output"], taken


def actions(folder):
    for (file, document), needed, known in ((folder.menus, runtime.MENUS_NEEDED, runtime.MENUS),
                                            (folder.legacy, runtime.LEGACY_NEEDED, runtime.LEGACY)):
        for place, start, output, _ in bound(document):
            if not output.startswith(start):
                yield fault(file, place, f"{output} is no action of {start}")
            elif output.lower() not in known:
                yield fault(file, place, f"{output} is no action that the runtime knows")
        for action in sorted(needed - {output.lower() for _, _, output, _ in bound(document)}):
            yield fault(file, ["bindings"], f"nothing is bound to {action}")


def inputs(folder):
    sources = folder.profile.content["input_source"]
    for file, document in folder.menus, folder.legacy:
        for place, path, mode, name in [(place, *one) for place, _, _, taken in bound(document) for one in taken]:
            if name not in runtime.MODES.get(mode, {}):
                yield fault(file, place, f"there is no {name} in mode {mode}")
                continue
            source = sources.get(without_hand(path), {})
            for part in runtime.MODES[mode][name]:
                if not source.get(part):
                    yield fault(file, place, f"{name} needs {part}, which {path} has not")


def paths(folder):
    for file, document in folder.menus, folder.legacy:
        for place, text in texts_in(document):
            if text.startswith("/user/") and without_hand(text) not in folder.profile.content["input_source"]:
                yield fault(file, place, f"{text} is not in the profile")


def both_hands(folder):
    for file, document in folder.menus, folder.legacy:
        for action_set, bindings in document["bindings"].items():
            texts = [text for _, text in texts_in(bindings)]
            left, right = (collections.Counter(text.removeprefix(hand) for text in texts if text.startswith(hand))
                           for hand in (LEFT, RIGHT))
            for path in sorted((left - right) + (right - left)):
                yield fault(file, ["bindings", action_set], f"{path} is bound for one hand only")


def parameters(folder):
    for file, document in folder.menus, folder.legacy:
        for action_set, bindings in document["bindings"].items():
            for number, source in enumerate(bindings.get("sources", [])):
                place, given = ["bindings", action_set, "sources", number, "parameters"], source.get("parameters", {})
                if source["mode"] == "scroll" and action_set != f"/actions/scroll_{given.get('scroll_mode')}":
                    yield fault(file, place, f"scroll_mode is not that of {action_set}")
                press, release = (given.get(f"click_{when}_threshold") for when in ("activate", "deactivate"))
                if press and not 0 < float(release) < float(press):
                    yield fault(file, place, "is not pressed at a threshold and released at a lighter one")


def controller_types(folder):
    ours = folder.profile.content["controller_type"]
    for (file, document), key in ((folder.menus, "controller_type"), (folder.legacy, "controller_type"),
                                  (folder.remapping, "to_controller_type")):
        if document[key] != ours:
            yield fault(file, [key], f"is not {ours}, as in the profile")


RULES = [actions, inputs, paths, both_hands, parameters, controller_types]
