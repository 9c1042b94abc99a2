"""A headless browser for tests of pages: what it fetched and what it wrote to the console can be asked for.

browser.py PAGE[#section] PICTURE takes a picture of a file, from that section on.
"""
import base64
import json
import sys
import tempfile
from contextlib import contextmanager
from pathlib import Path

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service

DRIVER = "/usr/bin/chromedriver"


@contextmanager
def open_browser(*arguments):
    """A Chromium with a profile of its own, ended when the caller is done. Chromium's sandbox needs a user other than
    root, so it is off: the pages are our own."""
    options = Options()
    for argument in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage", "--disable-background-networking",
                     "--disable-component-update", "--no-first-run", *arguments):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as profile:
        options.add_argument(f"--user-data-dir={profile}")
        driver = webdriver.Chrome(service=Service(DRIVER), options=options)
        try:
            driver.get("about:blank")
            requested_addresses(driver)  # those of the page that every Chromium starts with
            yield driver
        finally:
            driver.quit()


def set_screen(driver, width, height, dark=False, scale=1):
    """A screen of so many CSS pixels, with that colour scheme."""
    driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                           {"width": width, "height": height, "deviceScaleFactor": scale, "mobile": width < 600})
    driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
        "features": [{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}]})


def console_messages(driver):
    """What was written to the console since the last call; what a content policy refused is there, too."""
    return [entry["message"] for entry in driver.get_log("browser")]


def requested_addresses(driver):
    """The addresses that were asked for since the last call, data URLs aside."""
    events = [json.loads(entry["message"])["message"] for entry in driver.get_log("performance")]
    addresses = [event["params"]["request"]["url"] for event in events if event["method"] == "Network.requestWillBeSent"]
    return [address for address in addresses if not address.startswith("data:")]


def screenshot(driver, path):
    """What the screen shows, as PNG."""
    shot = driver.execute_cdp_cmd("Page.captureScreenshot", {})
    Path(path).write_bytes(base64.b64decode(shot["data"]))


def main():
    page, _, section = sys.argv[1].partition("#")
    with open_browser() as driver:
        set_screen(driver, 1100, 1500)
        driver.get(Path(page).resolve().as_uri())
        if section:
            driver.execute_script("document.getElementById(arguments[0]).scrollIntoView()", section)
        screenshot(driver, sys.argv[2])


if __name__ == "__main__":
    main()
