"""The preview's pages in a browser, on a server that shows made-up frames and prints what it is told."""
import os
import re

import pytest
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

from browser import console_messages, open_browser, requested_addresses, screenshot, set_screen
from preview_browser import (DESK, LEVELS, PHONE, about, device_of_head, drag, emulate_sensors, hold_device, share, turn_screen,
                             wait_until, words)
from preview_host import Host, Page

RED = (255, 0, 0)
# Kept by the page for the test: a device that vibrates, and a display that is kept awake.
STUBS = """
window.vibrations = []; navigator.vibrate = (ms) => vibrations.push(ms);
window.locks = []; if (navigator.wakeLock) navigator.wakeLock.request = async (kind) => { locks.push(kind); };
"""


@pytest.fixture(scope="module", name="browser")
def one_browser():
    with open_browser() as driver:
        driver.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {"source": STUBS})
        yield driver


@pytest.fixture
def host():
    started = Host()
    yield started
    started.close()


@pytest.fixture(name="show")
def shows_pages(browser, host):
    """Opens a page; in the end the console is empty, and nothing was asked of anybody else."""
    def show(path="/", screen=DESK):
        set_screen(browser, *screen)
        console_messages(browser)
        requested_addresses(browser)
        browser.get(f"http://localhost:{host.port}{path}")
        wait_until(browser, lambda: words(browser) in ("", "Connected."))
        return browser

    yield show
    assert console_messages(browser) == []
    assert {re.match(r"\w+://([^/]*)", address)[1] for address in requested_addresses(browser)} <= {f"localhost:{host.port}"}
    browser.get("about:blank")


def near(line, wanted):
    """Whether a head is turned so; a quaternion and its negative are one rotation."""
    return abs(sum(a * b for a, b in zip(line["head"], wanted))) > 1 - 1e-4


def press_key(browser, key):
    ActionChains(browser).send_keys(key).perform()


def test_the_newest_frame_is_shown_with_one_eye_or_both(show):
    page = show()
    wait_until(page, lambda: share(page, RED) > 0.9)
    size = "const c = document.getElementById('picture'); return c.width / c.height"
    assert page.execute_script(size) == 1
    press_key(page, "e")
    wait_until(page, lambda: page.execute_script(size) == 2)
    right = LEVELS.replace("drawImage(source, 0, 0)", "drawImage(source, -source.height, 0)")
    middle = right + "return data[4 * (16 * 32 + 16) + 2]"
    wait_until(page, lambda: page.execute_script(middle) > 250)


def test_a_drag_over_the_width_of_an_eye_turns_the_head_by_90_degrees(show, host):
    page = show()
    drag(page, 1, 0)
    host.wait_for("head", lambda line: near(line, about("y", 90)))


def test_a_drag_upwards_looks_down_and_no_further_than_straight_down(show, host):
    page = show()
    drag(page, 0, -0.5)
    host.wait_for("head", lambda line: near(line, about("x", -45)))
    drag(page, 0, -0.5)
    drag(page, 0, -0.5)
    host.wait_for("head", lambda line: near(line, about("x", -90)))


@pytest.mark.parametrize("key, part, sign", [(Keys.ARROW_LEFT, 1, 1), (Keys.ARROW_RIGHT, 1, -1), (Keys.ARROW_UP, 0, 1),
                                             (Keys.ARROW_DOWN, 0, -1)])
def test_arrow_keys_turn_the_head_while_they_are_held(show, host, key, part, sign):
    page = show()
    ActionChains(page).key_down(key).perform()
    host.wait_for("head", lambda line: line["head"][part] * sign > 0.3)
    ActionChains(page).key_up(key).perform()


@pytest.mark.parametrize("how", ["key", "double click", "button"])
def test_recentering_is_asked_for(show, host, how):
    page = show()
    if how == "key":
        press_key(page, "r")
    elif how == "button":
        page.find_element(By.ID, "recenter").click()
    else:
        ActionChains(page).double_click(page.find_element(By.ID, "picture")).perform()
    host.wait_for("recenter")


@pytest.mark.parametrize("angle", [0, 90, 180, 270])
def test_the_head_follows_the_sensors_whichever_way_the_screen_is_turned(browser, show, host, angle):
    emulate_sensors(browser)
    page = show()
    turn_screen(page, angle)
    for head in (about("y", 90), about("x", 30), about("z", 20), (0.5, 0.5, 0.5, 0.5)):
        hold_device(page, device_of_head(head, angle))
        host.wait_for("head", lambda line, head=head: near(line, head))
    page.execute_cdp_cmd("Emulation.setSensorOverrideEnabled", {"enabled": False, "type": "relative-orientation"})


def test_the_displays_rate_is_told(show, host):
    show()
    assert 10 <= host.wait_for("rate")["rate"] <= 240


def test_the_display_is_kept_awake(show):
    page = show()
    assert page.execute_script("return locks") == ["screen"]


def test_figures_are_shown_until_they_are_tapped(show):
    page = show()
    figures = page.find_element(By.ID, "figures")
    wait_until(page, lambda: re.search(r"\d+ frames/s, \d+ dropped\npose \d+ ms old, 10 of it driver and runtime\n"
                                       r"[\d.]+ Mbit/s, compressed in 1.0 ms", figures.text))
    figures.click()
    assert figures.text == "" and figures.get_attribute("aria-pressed") == "false"


def test_a_second_page_watches_and_says_so(browser, host):
    leader = Page(host.port)
    leader.receive_text()
    browser.get(f"http://localhost:{host.port}/")
    wait_until(browser, lambda: "another page turns the head" in browser.find_element(By.ID, "figures").text)
    leader.sock.close()
    host.wait_for("head")
    assert console_messages(browser) == []


def test_words_on_black_say_who_is_away_and_the_picture_comes_back(show, host):
    page = show()
    host.command("frames", 0)
    wait_until(page, lambda: "the runtime shows no frames" in words(page))
    host.command("driver", 0)
    wait_until(page, lambda: "The driver is away" in words(page))
    assert not page.find_element(By.ID, "picture").is_displayed()
    host.command("driver", 1)
    host.command("frames", 1)
    wait_until(page, lambda: words(page) == "" and share(page, RED) > 0.9)


def test_the_page_finds_a_companion_that_comes_back(browser):
    first = Host()
    browser.get(f"http://localhost:{first.port}/")
    wait_until(browser, lambda: words(browser) == "")
    first.close()
    wait_until(browser, lambda: "The companion is away" in words(browser))
    second = Host(first.port)
    wait_until(browser, lambda: words(browser) == "")
    second.close()
    # The browser itself notes that nobody answered.
    assert all("ERR_CONNECTION_REFUSED" in message for message in console_messages(browser))
    browser.get("about:blank")


BUTTONS = {"trackpad": (32, "q", "p"), "trigger": (33, "w", "o"), "grip": (2, "a", "l"), "menu": (1, "s", "k"),
           "system": (0, "d", "j")}


@pytest.mark.parametrize("button", BUTTONS)
def test_buttons_are_pressed_on_the_screen_and_by_key(show, host, button):
    page = show("/controllers")
    bit, *keys = BUTTONS[button]
    for number, (side, key) in enumerate(zip(("left", "right"), keys), 1):
        on_screen = page.find_element(By.CSS_SELECTOR, f"#{side} button[data-input={button}]")
        for press, release in ((ActionChains(page).click_and_hold(on_screen), ActionChains(page).release()),
                               (ActionChains(page).key_down(key), ActionChains(page).key_up(key))):
            press.perform()
            held = host.wait_for("controller", lambda line: line["pressed"] != 0)
            assert (held["controller"], held["pressed"]) == (number, 1 << bit)
            assert held["trigger"] == (1 if button == "trigger" else 0)
            release.perform()
            host.wait_for("controller", lambda line, number=number: line["controller"] == number and line["pressed"] == 0)


def test_a_finger_on_the_pad_is_a_touch_at_its_place(show, host):
    page = show("/controllers")
    pad = page.find_element(By.CSS_SELECTOR, "#right .pad")
    ActionChains(page).move_to_element_with_offset(pad, 0, -pad.size["height"] // 4).click_and_hold().perform()
    touch = host.wait_for("controller", lambda line: line["touched"] != 0)
    assert touch["controller"] == 2 and touch["trackpad"] == pytest.approx([0, 0.5], abs=0.03)
    ActionChains(page).release().perform()
    assert host.wait_for("controller", lambda line: line["touched"] == 0)["trackpad"] == [0, 0]


def test_the_trigger_can_be_pulled_in_part(show, host):
    page = show("/controllers")
    page.execute_script("const r = document.querySelector('#left input'); r.value = 0.4; r.dispatchEvent(new Event('input'))")
    assert host.wait_for("controller", lambda line: line["trigger"] > 0)["trigger"] == pytest.approx(0.4)


def test_a_pulse_lights_the_hand_and_vibrates_what_was_touched_before(show, host):
    page = show("/controllers")
    host.command("pulse", 2, 34464)
    wait_until(page, lambda: page.find_element(By.CSS_SELECTOR, "#right output").text == "Pulse of 34 ms")
    assert page.execute_script("return vibrations") == []
    wait_until(page, lambda: not page.find_elements(By.CSS_SELECTOR, ".pulse"))
    page.find_element(By.TAG_NAME, "h1").click()
    page.execute_script("""
        window.lit = [];
        new MutationObserver((changes) => changes.forEach(({ target }) => {
          if (target.classList.contains('pulse')) lit.push(target.id);
        })).observe(document.body, { subtree: true, attributeFilter: ['class'] });""")
    host.command("pulse", 1, 62500)
    wait_until(page, lambda: page.execute_script("return vibrations") == [63])
    wait_until(page, lambda: not page.find_elements(By.CSS_SELECTOR, ".pulse"))
    assert page.execute_script("return lit") == ["left"]


def test_controllers_go_with_their_page(show, host):
    show("/controllers").get("about:blank")
    host.wait_for("gone")


CONTRAST = """
const light = (colour) => {
  const [r, g, b] = colour.match(/[\\d.]+/g).map((level) => level / 255)
    .map((v) => (v <= 0.04045 ? v / 12.92 : ((v + 0.055) / 1.055) ** 2.4));
  return 0.2126 * r + 0.7152 * g + 0.0722 * b;
};
const ground = (element) => {
  for (let e = element; e; e = e.parentElement) {
    const { backgroundColor } = getComputedStyle(e);
    if (!/^rgba.*, 0\\)$/.test(backgroundColor)) return backgroundColor;
  }
};
return [...document.querySelectorAll('button, a, p, legend, label, output, h1')].map((element) => {
  const [a, b] = [getComputedStyle(element).color, ground(element)].map(light);
  return (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
});
"""


@pytest.mark.parametrize("screen", [PHONE, PHONE[::-1], DESK])
@pytest.mark.parametrize("path", ["/", "/controllers"])
def test_pages_fit_their_screen_and_can_be_read(show, path, screen):
    page = show(path, screen)
    assert page.execute_script("return document.documentElement.scrollWidth") <= screen[0]
    assert min(page.execute_script(CONTRAST)) >= 4.5
    for used in page.find_elements(By.CSS_SELECTOR, "button, a, input, canvas"):
        assert used.accessible_name, used.get_attribute("outerHTML")
        assert used.size["height"] >= 24
    if folder := os.environ.get("OMBREL_SCREENSHOTS"):
        screenshot(page, f"{folder}/{path.strip('/') or 'headset'}-{screen[0]}x{screen[1]}.png")


def test_who_wants_no_motion_gets_none(browser, show):
    page = show("/controllers")
    length = "return getComputedStyle(document.querySelector('fieldset')).transitionDuration"
    assert page.execute_script(length) == "0.2s"
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {
        "features": [{"name": "prefers-reduced-motion", "value": "reduce"}]})
    assert page.execute_script(length) == "0s"
