"""The web page in a real browser: headless Chromium. Leaves screenshots in build/screenshots."""

import os
import shutil
import sys
import time

import pytest

import zmhost
from zmhost import Zelmar

from conftest import PROJECT
from live_support import LIMIT, plain_environment

sys.path.insert(0, str(PROJECT / "examples"))
import live  # noqa: E402

webdriver = pytest.importorskip("selenium.webdriver") if "CI" not in os.environ else __import__(
    "selenium.webdriver"
).webdriver

TABLE = PROJECT / "examples" / "greenhouse.csv"
SCREENSHOTS = PROJECT / "build" / "screenshots"
PAGE = zmhost._live.PAGE
FLAGS = (
    "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
    "--disable-component-update", "--disable-sync", "--window-size=1280,1000",
)  # fmt: skip

pytestmark = pytest.mark.skipif(
    "CI" not in os.environ and (shutil.which("chromedriver") is None or not (PAGE / "uPlot.iife.min.js").exists()),
    reason="./dev test installs the browser and the page's packages",
)


@pytest.fixture(scope="module")
def browser(tmp_path_factory):
    options = webdriver.ChromeOptions()
    options.binary_location = shutil.which("chromium")
    for flag in (*FLAGS, f"--user-data-dir={tmp_path_factory.mktemp('browser')}"):
        options.add_argument(flag)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    service = webdriver.chrome.service.Service(shutil.which("chromedriver"), env=plain_environment())
    driver = webdriver.Chrome(options=options, service=service)
    driver.set_page_load_timeout(LIMIT)
    yield driver
    driver.quit()


@pytest.fixture
def served(model, browser):
    """A run with its page open. Afterwards the console must have no complaint."""
    live.add_dashboard(model, TABLE)
    browser.get_log("browser")
    with zmhost.editor.Editor(model), model.simulate(TABLE, loop=True) as run, run.serve() as server:
        browser.get(server.url)
        yield run
        complaints = [entry for entry in browser.get_log("browser") if entry["level"] in ("SEVERE", "WARNING")]
        assert complaints == []
        browser.get("about:blank")
    model.observers = None


WIDGETS = """
return [...document.querySelectorAll(".widget")].map((each) => ({
    kind: each.className.replace("widget ", ""), title: each.querySelector("h3").textContent,
    text: each.innerText, value: each.dataset.value, time: each.dataset.time,
}));
"""


def widgets(browser):
    return browser.execute_script(WIDGETS)


def step_until(run, condition):
    """Steps at a visible pace until the condition gives something."""
    end = time.monotonic() + LIMIT
    while time.monotonic() < end:
        run.step()
        result = condition()
        if result:
            return result
        time.sleep(0.05)
    raise AssertionError(f"not within {LIMIT:.0f} s")


def all_have_values(browser, count=4):
    shown = widgets(browser)
    return shown if len(shown) == count and all(each["value"] for each in shown) else None


def expected_values(column):
    rows = [line.split(",") for line in TABLE.read_text(encoding="utf-8").splitlines()]
    place = rows[0].index(column)
    return [float(row[place]) for row in rows[1:]]


def test_the_four_widgets_show_the_tables_values(served, browser):
    shown = step_until(served, lambda: all_have_values(browser))
    assert [each["kind"] for each in shown] == ["gauge", "lamp", "display", "trend"]
    # A widget that is updated once in a while shows the value of its own last update.
    for (_, title, column, _), each in zip(live.GREENHOUSE, shown, strict=True):
        assert each["title"] == title
        row = round(float(each["time"]) % (97 * 900) / 900)
        assert float(each["value"]) == expected_values(column)[row]


def test_the_picture_and_the_table_show_values_at_observed_ports(served, browser):
    labels = "return [...document.querySelectorAll('#diagram text.value')].map((each) => each.textContent)"
    found = step_until(served, lambda: [text for text in browser.execute_script(labels) if text])
    assert len(browser.execute_script(labels)) == 6
    assert all(float(text) >= 0 for text in found)
    cells = browser.execute_script("return [...document.querySelectorAll('#signals td:last-child')].map((e) => e.textContent)")
    assert len(cells) == 6
    time_shown = browser.execute_script("return document.getElementById('time').textContent")
    assert time_shown != "–"


def test_a_rename_an_added_widget_and_a_deleted_block_appear(served, browser, model):
    step_until(served, lambda: all_have_values(browser))
    block = model["Klima/Luftvolumen"]
    block.rename("Luft")
    step_until(served, lambda: "Klima/Luft: Temperatur" in widgets(browser)[0]["text"])
    port = next(port for port in model["Setpoints"].outputs)
    signal = live.signal_of(model.observers.Signals, port)
    model.observers.Signals.add(signal)
    widget = model["Dashboard"].add("New")
    model.observers.Clients.add(live.client_of(widget, "display", signal, 10))
    assert step_until(served, lambda: len(widgets(browser)) == 5)
    assert "Setpoints" in widgets(browser)[4]["text"]
    block.delete()  # the editor has the clients validated, and those of the block's signals go
    step_until(served, lambda: [each["title"] for each in widgets(browser)] == ["Ventilation", "New"])


def test_a_client_without_a_signal_says_so(served, browser, model):
    widget = model["Dashboard"].add("Lost")
    model.observers.Clients.add(
        Zelmar.HMI.SignalClient(UUID="lost", ModelPath_=[widget.path], ModelPathZID_=[widget.zid], ObserverType_="gauge")
    )
    shown = step_until(served, lambda: len(widgets(browser)) == 5 and widgets(browser))
    assert shown[4]["title"] == "Lost"
    assert "Not bound to a signal" in shown[4]["text"]


def test_the_page_is_usable_by_keyboard_and_screen_reader(served, browser):
    step_until(served, lambda: all_have_values(browser))
    keys = webdriver.common.keys.Keys
    reached = []
    for _ in range(12):
        browser.switch_to.active_element.send_keys(keys.TAB)
        reached.append(browser.execute_script("return document.activeElement.dataset.uuid || document.activeElement.id"))
    assert len({each for each in reached if "-Gewächshaus:" in each}) == 4
    assert "diagram" in reached
    meter = browser.execute_script(
        "const m = document.querySelector('[role=meter]'); return [...m.getAttributeNames()].filter((n) => n.startsWith('aria'))"
    )
    assert {"aria-labelledby", "aria-valuemin", "aria-valuemax", "aria-valuenow", "aria-valuetext"} <= set(meter)
    assert browser.execute_script("return document.documentElement.lang") == "en"


@pytest.mark.parametrize("scheme", ["light", "dark"])
@pytest.mark.parametrize("width", [360, 1280])
def test_it_fits_the_window_in_light_and_dark(served, browser, scheme, width):
    media = {"features": [{"name": "prefers-color-scheme", "value": scheme}]}
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia", media)
    browser.execute_cdp_cmd(
        "Emulation.setDeviceMetricsOverride",
        {"width": width, "height": 1000, "deviceScaleFactor": 1, "mobile": width < 500},
    )
    step_until(served, lambda: all_have_values(browser))
    for _ in range(30):
        served.step()
        time.sleep(0.03)
    wide = browser.execute_script("return document.documentElement.scrollWidth")
    assert wide <= width
    back = browser.execute_script("return getComputedStyle(document.body).backgroundColor")
    assert (sum(map(int, back.strip("rgb()").split(","))) < 384) == (scheme == "dark")
    SCREENSHOTS.mkdir(parents=True, exist_ok=True)
    browser.save_screenshot(str(SCREENSHOTS / f"{scheme}-{width}.png"))
    browser.execute_cdp_cmd("Emulation.clearDeviceMetricsOverride", {})


def test_nothing_is_loaded_from_elsewhere(served, browser):
    step_until(served, lambda: all_have_values(browser))
    hosts = browser.execute_script(
        "return [...new Set(performance.getEntriesByType('resource').map((each) => new URL(each.name).host))]"
    )
    assert hosts == [browser.execute_script("return location.host")]
