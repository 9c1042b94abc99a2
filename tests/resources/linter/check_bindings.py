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
    for actions, bindings in document["bindings"].items():
        for number, source in enumerate(bindings.get("sources", [])):
            for name, taken in source["inputs"].items():
                place = ["bindings", actions, "sources", number, "inputs", name]
                yield place, f"{actions}/in/", taken["output"], [(source["path"], source["mode"], name)]
        for kind, direction in ("chords", "in"), ("poses", "in"), ("haptics", "out"):
            for number, binding in enumerate(bindings.get(kind, [])):
                inputs = [(path, "button", name) for path, name in binding.get("inputs", [])]
                yield ["bindings", actions, kind, number], f"{actions}/{direction}/", binding["output"], inputs


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
        for place, path, mode, name in [(place, *taken) for place, _, _, inputs in bound(document) for taken in inputs]:
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
        for actions, bindings in document["bindings"].items():
            texts = [text for _, text in texts_in(bindings)]
            left, right = (collections.Counter(text.removeprefix(hand) for text in texts if text.startswith(hand))
                           for hand in (LEFT, RIGHT))
            for path in sorted((left - right) + (right - left)):
                yield fault(file, ["bindings", actions], f"{path} is bound for one hand only")


def parameters(folder):
    for file, document in folder.menus, folder.legacy:
        for actions, number, source in [(actions, *numbered) for actions, bindings in document["bindings"].items()
                                        for numbered in enumerate(bindings.get("sources", []))]:
            place = ["bindings", actions, "sources", number, "parameters"]
            given = source.get("parameters", {})
            if source["mode"] == "scroll" and actions != f"/actions/scroll_{given.get('scroll_mode')}":
                yield fault(file, place, f"scroll_mode is not that of {actions}")
            press, release = (float(given.get(f"click_{when}_threshold", 0)) for when in ("activate", "deactivate"))
            if given.keys() - {"scroll_mode"} and not 0 < release < press:
                yield fault(file, place, "is not pressed at a threshold and released at a lighter one")


def controller_types(folder):
    ours = folder.profile.content["controller_type"]
    for (file, document), key in ((folder.menus, "controller_type"), (folder.legacy, "controller_type"),
                                  (folder.remapping, "to_controller_type")):
        if document[key] != ours:
            yield fault(file, [key], f"is not {ours}, as in the profile")


RULES = [actions, inputs, paths, both_hands, parameters, controller_types]
