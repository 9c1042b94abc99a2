"""What tests of the preview's pages do in a browser: look at the picture, drag it, turn a made-up phone."""
import math

from selenium.common.exceptions import TimeoutException
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.support.ui import WebDriverWait

WAIT_S = 30
PHONE, DESK = (740, 360), (1280, 800)

# The picture's levels, left eye alone, from a copy that is made for reading.
LEVELS = """
const source = document.getElementById('picture');
const [width, height] = [source.height, source.height];
const copy = new OffscreenCanvas(width, height).getContext('2d', { willReadFrequently: true });
copy.drawImage(source, 0, 0);
const { data } = copy.getImageData(0, 0, width, height);
"""
# The share of its texels that lie within 40 levels of a colour.
SHARE = LEVELS + """
if (source.hidden) return 0;
let near = 0;
for (let i = 0; i < data.length; i += 4) near += arguments[0].every((level, k) => Math.abs(level - data[i + k]) <= 40);
return near / (data.length / 4);
"""


def wait_until(browser, condition, message="", seconds=WAIT_S):
    try:
        return WebDriverWait(browser, seconds, poll_frequency=0.05).until(lambda _: condition())
    except TimeoutException:
        raise AssertionError(f"{message or 'not so'} within {seconds} s; the page says {words(browser)!r}") from None


def share(browser, colour):
    return browser.execute_script(SHARE, colour)


def words(browser):
    return browser.execute_script("return document.getElementById('words').textContent")


def drag(browser, x, y):
    """By so many widths of an eye's picture, across its middle."""
    canvas = browser.find_element("id", "picture")
    side = browser.execute_script(
        "const c = document.getElementById('picture'); return Math.min(c.clientWidth * c.height / c.width, c.clientHeight)")
    steps = 4
    actions = ActionChains(browser, duration=20)
    actions.move_to_element_with_offset(canvas, -round(x * side / 2), -round(y * side / 2)).click_and_hold()
    for _ in range(steps):
        actions.move_by_offset(round(x * side / steps), round(y * side / steps))
    actions.release().perform()


def emulate_sensors(browser):
    """Before the page is opened."""
    browser.execute_cdp_cmd("Emulation.setSensorOverrideEnabled", {
        "enabled": True, "type": "relative-orientation", "metadata": {"available": True}})


def hold_device(browser, quaternion):
    x, y, z, w = quaternion
    browser.execute_cdp_cmd("Emulation.setSensorOverrideReadings", {
        "type": "relative-orientation", "reading": {"quaternion": {"x": x, "y": y, "z": z, "w": w}}})


def turn_screen(browser, angle):
    kinds = {0: "portraitPrimary", 90: "landscapePrimary", 180: "portraitSecondary", 270: "landscapeSecondary"}
    width, height = PHONE if angle % 180 else PHONE[::-1]
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
        "width": width, "height": height, "deviceScaleFactor": 1, "mobile": True,
        "screenOrientation": {"type": kinds[angle], "angle": angle}})


def multiply(p, q):
    px, py, pz, pw = p
    qx, qy, qz, qw = q
    return (pw * qx + px * qw + py * qz - pz * qy, pw * qy + py * qw + pz * qx - px * qz,
            pw * qz + pz * qw + px * qy - py * qx, pw * qw - px * qx - py * qy - pz * qz)


def about(axis, degrees):
    half = math.radians(degrees) / 2
    return tuple(math.sin(half) if name == axis else 0.0 for name in "xyz") + (math.cos(half),)


def device_of_head(head, screen_angle):
    """The device, in the axes of the earth (x east, y north, z up), of someone whose head is turned so in the room (x to
    the right, y up, z backwards; north lies ahead) and who sees the screen upright."""
    return multiply(multiply(about("x", 90), head), about("z", screen_angle))
