"""A driver's folder as the rules see it."""
import collections
import functools
import json
import pathlib
import typing

import jsonschema

# By JSON Schema 2560.0 is an integer; to those who read an integer it is none.
Validator = jsonschema.validators.extend(
    jsonschema.Draft202012Validator,
    type_checker=jsonschema.Draft202012Validator.TYPE_CHECKER.redefine("integer", lambda _, value: type(value) is int))


def fault(file, place, reason):
    """Place is the way to what is wrong, by keys and numbers; empty for a whole file."""
    return ": ".join(filter(None, [file, " > ".join(map(str, place)), reason]))


def read_folder(root):
    """The bytes of every file, by names as in "resources/icons/headset_off.png"."""
    return {file.relative_to(root).as_posix(): file.read_bytes() for file in root.rglob("*") if file.is_file()}


def in_resources(reference):
    """The file "resources/icons/a.png" for "{ombrel}/icons/a.png"."""
    return "resources" + reference.partition("}")[2]


def texts_in(value, *place):
    """Every string in a document, with its place."""
    if isinstance(value, str):
        yield place, value
    elif isinstance(value, (dict, list)):
        for key, inner in value.items() if isinstance(value, dict) else enumerate(value):
            yield from texts_in(inner, *place, key)


def parse(data):
    """Raises ValueError for what is not JSON, and for a key that an object has twice."""
    def refuse_repeated(pairs):
        for key, count in collections.Counter(key for key, _ in pairs).items():
            if count > 1:
                raise ValueError(f'the key "{key}" stands there twice')
        return dict(pairs)

    def refuse(constant):
        raise ValueError(f"{constant} is no number")

    return json.loads(data.decode("utf-8"), object_pairs_hook=refuse_repeated, parse_constant=refuse)


@functools.cache
def schema_of(kind):
    schema = json.loads((pathlib.Path(__file__).parent / "schemas" / f"{kind}.json").read_bytes())
    Validator.check_schema(schema)
    return schema


def exactly(properties):
    return {"type": "object", "properties": properties, "required": [*properties], "additionalProperties": False}


def settings_schema(facts):
    """One section, with the settings that the driver reads."""
    types = {"Bool": {"type": "boolean"}, "Int32": {"type": "integer"}}
    return exactly({facts.settings_section: exactly({key: types[kind] for key, kind in facts.settings.items()})})


def schema_faults(file, content, schema):
    """A schema's description says its rule in words."""
    for error in Validator(schema).iter_errors(content):
        rule = f"{error.schema['description']}: " if "description" in error.schema else ""
        yield fault(file, error.absolute_path, rule + error.message)


class Document(typing.NamedTuple):
    file: str
    content: object  # None if there is a fault in it


class Folder:
    """The files, and the documents among them, followed from one to the next and held against their schemas."""

    def __init__(self, files, facts):
        self.files, self.facts = files, facts
        self.documents, self.faults = [], []
        self.manifest = self._load("driver.vrdrivermanifest", schema_of("manifest"))
        self.settings = self._load("resources/settings/default.vrsettings", settings_schema(facts))
        self.icons = self._load("resources/driver.vrresources", schema_of("icons"))
        self.texts = self._load("resources/localization/localization.json", {})
        self.profile = self._load(in_resources(facts.input_profile), schema_of("input_profile"), "the driver")
        if self.profile.content:
            self._follow(*self.profile)

    def _follow(self, file, profile):
        menus = file.rpartition("/")[0] + "/" + profile["default_bindings"][0]["binding_url"]
        legacy, remapping = in_resources(profile["legacy_binding"]), in_resources(profile["remapping"])
        self.menus = self._load(menus, schema_of("bindings"), f"{file}: default_bindings")
        self.legacy = self._load(legacy, schema_of("bindings"), f"{file}: legacy_binding")
        self.remapping = self._load(remapping, schema_of("remapping"), f"{file}: remapping")

    def _load(self, file, schema, named_by="the runtime"):
        try:
            content = parse(self.files[file])
            faults = [*schema_faults(file, content, schema)]
        except KeyError:
            faults = [f"{named_by}: {file} does not exist"]
        except ValueError as error:
            faults = [fault(file, [], f"is not valid JSON: {error}")]
        self.faults += faults
        self.documents.append(Document(file, None if faults else content))
        return self.documents[-1]
