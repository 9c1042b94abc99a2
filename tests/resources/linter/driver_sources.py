"""What the driver's sources say of its resources, and what they log."""
import pathlib
import re
import types

ROOT = pathlib.Path(__file__).resolve().parents[3]


def scan(text):
    def only(pattern):
        return next(iter(re.findall(pattern, text)), "")

    return types.SimpleNamespace(
        # Every key that is read, with its type: "Bool" or "Int32".
        settings={key: kind for kind, key in re.findall(r'Read(Bool|Int32)Setting\("([^"]*)"', text)},
        settings_section=only(r'kSection = "([^"]*)"'),
        # "/input/grip/click", "/output/haptic"
        components=set(re.findall(r'"(/(?:input|output)/[a-z0-9_/]+)"', text)),
        # "{ombrel}/input/controller_profile.json", and which of these is a controller's input profile.
        references=set(re.findall(r'"(\{[a-z0-9_]+\}/[^"]+)"', text)),
        input_profile=only(r'Prop_InputProfilePath_String,\s*"([^"]*)"'),
        # printf formats as written, without "\n" and blanks at the end
        log_formats=[line.removesuffix(r"\n").rstrip(" ")
                     for line in re.findall(r'\bLog\(\s*"((?:[^"\\]|\\.)*)"', text)])


def scan_driver():
    """What is said in the folders that the root's CMakeLists.txt adds as the driver's."""
    folders = re.search(r"foreach\(folder ([^)]*)\)", (ROOT / "CMakeLists.txt").read_text(encoding="utf-8"))[1].split()
    files = [file for folder in folders for file in sorted((ROOT / folder).rglob("*")) if file.suffix in (".h", ".cpp")]
    return scan("\n".join(file.read_text(encoding="utf-8") for file in files))
