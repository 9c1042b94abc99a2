"""The pages for players quote what the driver logs and name what it can be told."""
import re

from driver_sources import ROOT, scan_driver

FACTS = scan_driver()


def page(name):
    return (ROOT / "docs" / name).read_text(encoding="utf-8")


def lines_of(log_format):
    """What a printf format prints: %d a number, %s anything."""
    pattern = re.escape(log_format)
    for conversion, printed in ("%d", "-?[0-9]+"), ("%f", r"-?[0-9]+\.[0-9]+"), ("%s", ".+"):
        pattern = pattern.replace(conversion, printed)
    return pattern


def test_every_quoted_log_line_is_one_of_the_drivers():
    blocks = re.findall(r"^```log\n(.*?)^```", page("troubleshooting.md"), re.DOTALL | re.MULTILINE)
    quoted = "".join(blocks).splitlines()
    assert len(quoted) >= 10
    assert [line for line in quoted if not any(re.fullmatch(lines_of(text), line) for text in FACTS.log_formats)] == []


def test_every_setting_is_explained():
    install = page("install.md")
    assert [key for key in FACTS.settings if f"`{key}`" not in install] == []
