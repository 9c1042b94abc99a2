"""Rules for all files but bindings. Each yields its faults."""
import fnmatch
import functools
import io

from PIL import Image

import runtime
from folder import exactly, fault, in_resources, schema_faults, texts_in

SCRIPTS = ("check.cmd", "install.cmd", "uninstall.cmd")
LANGUAGES = ("en_US", "de_DE")


def name(folder):
    file, manifest = folder.manifest
    library = f"bin/win64/driver_{manifest['name']}.dll"
    if library not in folder.files:
        yield fault(file, ["name"], f"there is no {library}")
    if folder.facts.settings_section != f"driver_{manifest['name']}":
        yield fault(file, ["name"], f"the driver reads the settings of {folder.facts.settings_section}")


def references(folder):
    texts = [("the driver", [], text) for text in sorted(folder.facts.references)]
    texts += [(document.file, *found) for document in folder.documents for found in texts_in(document.content)]
    named = {document.file for document in folder.documents}
    for file, place, text in texts:
        if not text.startswith("{"):
            continue
        named.add(in_resources(text))
        if text.partition("/")[0] != f"{{{folder.manifest.content['name']}}}":
            yield fault(file, place, f"{text} is of another driver")
        elif in_resources(text) not in folder.files:
            yield fault(file, place, f"{text} does not exist")
    for file in sorted(folder.files):
        # "a@2x.png" is the dense form of "a.png" and goes with it.
        if fnmatch.fnmatch(file, "resources/*/*") and file.replace("@2x.", ".") not in named:
            yield fault(file, [], "nothing names it")


@functools.cache
def picture_size(data):
    """Width and height of a PNG file that can be read to its end, None for any other."""
    if not data.endswith(b"IEND\xae\x42\x60\x82"):
        return None
    try:
        with Image.open(io.BytesIO(data), formats=["PNG"]) as picture:
            picture.load()
            return picture.size
    except Exception:  # Pillow raises what its decoders happen to stumble over.
        return None


def icons(folder):
    for device, states in folder.icons.content["statusicons"].items():
        width, height = runtime.ICON_SIZES[device]
        for icon in map(in_resources, states.values()):
            for file, scale in (icon, 1), (icon.replace(".png", "@2x.png"), 2):
                if picture_size(folder.files.get(file, b"")) != (width * scale, height * scale):
                    yield fault(file, [], f"is no whole PNG file of {width * scale} x {height * scale}")


def image_points(folder):
    file, profile = folder.profile
    for side in "input_bindingui_left", "input_bindingui_right":
        image = in_resources(profile[side]["image"])
        size = picture_size(folder.files.get(image, b""))
        if not size:
            yield fault(file, [side, "image"], f"{image} is no whole PNG file")
            continue
        for path, source in profile["input_source"].items():
            x, y = source["binding_image_point"]
            if x >= size[0] or y >= size[1]:
                yield fault(file, ["input_source", path, "binding_image_point"], f"is outside the image of {side}")


def components(folder):
    file, profile = folder.profile
    listed = {path for path in profile["input_source"] if path.startswith("/output/")}
    for path, source in profile["input_source"].items():
        listed |= {f"{path}/{part}" for part, is_there in source.items() if is_there is True}
    for component in sorted(folder.facts.components - listed):
        yield fault(file, ["input_source"], f"lacks {component}, which a controller has")
    for component in sorted(listed - folder.facts.components):
        yield fault(file, ["input_source"], f"has {component}, which no controller has")


def texts_schema(profile):
    """In each language the controller's type, its inputs and its outputs; poses are the render model's."""
    keys = [profile["controller_type"], *(path for path in profile["input_source"] if not path.startswith("/pose/"))]
    language = {"language_tag": {"type": "string", "pattern": "^[a-z]{2}_[A-Z]{2}$"}}
    return {"type": "array", "items": exactly(language | dict.fromkeys(keys, {"type": "string", "minLength": 1}))}


def languages(folder):
    file, texts = folder.texts
    faults = [*schema_faults(file, texts, texts_schema(folder.profile.content))]
    yield from faults
    tags = [language["language_tag"] for language in texts] if not faults else LANGUAGES
    for tag in sorted({*tags, *LANGUAGES}):
        if tags.count(tag) != 1:
            yield fault(file, [], f"has {tag} {tags.count(tag)} times")


def scripts(folder):
    """cmd.exe misses labels without carriage returns, and reads letters beyond ASCII in the console's code page."""
    for script in SCRIPTS:
        if script not in folder.files:
            yield fault(script, [], "does not exist")
        for number, line in enumerate(folder.files.get(script, b"").splitlines(keepends=True), 1):
            if not line.endswith(b"\r\n"):
                yield fault(script, ["line", number], "has no carriage return")
            if not line.isascii():
                yield fault(script, ["line", number], "has letters beyond ASCII")


RULES = [name, references, icons, image_points, components, languages, scripts]
