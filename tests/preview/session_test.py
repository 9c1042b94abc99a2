"""A person's view of the driver: runtime and driver draw, the preview serves, a browser looks and moves."""
import pytest
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

from browser import console_messages, open_browser, set_screen
from preview_browser import (DESK, about, device_of_head, drag, emulate_sensors, hold_device, share, turn_screen,
                             wait_until, words)
from preview_host import Page, connect, request
from preview_session import Session

NORTH, EAST, SOUTH, WEST = (38, 89, 217), (209, 41, 41), (217, 173, 26), (31, 153, 51)  # the walls of the demo's room
GRIPPED = (24, 242, 24)  # the demo's controller then


@pytest.fixture(scope="module", name="session")
def one_session(tmp_path_factory):
    started = Session(tmp_path_factory.mktemp("session"))
    yield started
    started.end()


@pytest.fixture(scope="module", name="browser")
def one_browser():
    with open_browser() as driver:
        yield driver


def open_headset(session, browser):
    """A page whose own straight ahead is the room's: what another page recentered is undone."""
    browser.get(f"http://localhost:{session.port}/")
    wait_until(browser, lambda: words(browser) == "", "no picture", 60)
    ActionChains(browser).send_keys("r").perform()
    sees(browser, NORTH)


@pytest.fixture(name="page")
def headset_page(session, browser):
    set_screen(browser, *DESK)
    open_headset(session, browser)
    yield browser
    assert console_messages(browser) == []


def sees(page, wall):
    wait_until(page, lambda: share(page, wall) > 0.1, "the wall is not seen")


def test_a_drag_of_90_degrees_shows_the_wall_that_lies_there(page):
    drag(page, 1, 0)
    sees(page, WEST)
    drag(page, -1, 0)
    drag(page, -1, 0)
    sees(page, EAST)
    drag(page, 1, 0)
    sees(page, NORTH)


def test_arrow_keys_show_the_walls_in_turn(page):
    ActionChains(page).key_down(Keys.ARROW_RIGHT).perform()
    for wall in EAST, SOUTH, WEST, NORTH:
        sees(page, wall)
    ActionChains(page).key_up(Keys.ARROW_RIGHT).perform()


def test_recentering_makes_what_is_ahead_straight_ahead(page):
    drag(page, 1, 0)
    sees(page, WEST)
    ActionChains(page).send_keys("r").perform()
    sees(page, NORTH)


@pytest.mark.parametrize("angle", [0, 90, 180, 270])
def test_a_phone_that_is_turned_shows_the_wall_that_lies_there(session, browser, angle):
    emulate_sensors(browser)
    turn_screen(browser, angle)
    hold_device(browser, device_of_head(about("y", 0), angle))
    open_headset(session, browser)
    for head, wall in ((about("y", -90), EAST), (about("y", 90), WEST)):
        hold_device(browser, device_of_head(head, angle))
        sees(browser, wall)
    browser.execute_cdp_cmd("Emulation.setSensorOverrideEnabled", {"enabled": False, "type": "relative-orientation"})
    assert console_messages(browser) == []


def test_a_press_colours_the_controller_and_a_pulse_arrives(session, page):
    headset = page.current_window_handle
    page.execute_cdp_cmd("Emulation.setFocusEmulationEnabled", {"enabled": True})
    page.switch_to.new_window("window")
    controllers = page.current_window_handle
    page.execute_cdp_cmd("Emulation.setFocusEmulationEnabled", {"enabled": True})
    page.get(f"http://localhost:{session.port}/controllers")
    wait_until(page, lambda: words(page) == "Connected.")
    page.switch_to.window(headset)
    assert share(page, GRIPPED) == 0
    page.switch_to.window(controllers)
    ActionChains(page).key_down("a").perform()
    page.switch_to.window(headset)
    wait_until(page, lambda: share(page, GRIPPED) > 0.001)
    page.switch_to.window(controllers)
    ActionChains(page).key_up("a").perform()
    wait_until(page, lambda: page.find_element(By.CSS_SELECTOR, "#left output").text == "Pulse of 63 ms" or
               page.find_element(By.CSS_SELECTOR, "#left output").text == "Pulse of 62 ms")
    page.close()
    page.switch_to.window(headset)
    wait_until(page, lambda: share(page, GRIPPED) == 0)


def test_a_crowd_a_stranger_and_a_flood_are_refused_and_the_session_goes_on(session, page):
    port = session.port
    assert request(port, "/", Origin="http://example.org")[0] == 403
    assert request(port, "/", Host="example.org")[0] == 421
    flood = Page(port)
    flood.send_bytes(1, b"x" * 5000)
    assert flood.close_code() == 1009
    crowd = [connect(port) for _ in range(1000)]
    drag(page, 1, 0)
    sees(page, WEST)
    for sock in crowd:
        sock.close()


def test_the_picture_comes_back_after_the_runtime_and_after_the_companion(session, page):
    session.runtime.kill()
    wait_until(page, lambda: "The driver is away" in words(page))
    session.start_runtime()
    sees(page, NORTH)
    assert console_messages(page) == []
    session.companion.kill()
    wait_until(page, lambda: "The companion is away" in words(page))
    session.start_companion()
    sees(page, NORTH)
    # The browser itself notes that nobody answered.
    assert all("ERR_CONNECTION" in message for message in console_messages(page))
