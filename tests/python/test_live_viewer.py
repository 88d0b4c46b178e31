"""A viewer by the protocol's own client library (npm) gets the same values."""

import json
import os
import shutil
import subprocess
import sys
import threading

import pytest

import zmhost  # noqa: F401

from conftest import PROJECT
from live_support import plain_environment

sys.path.insert(0, str(PROJECT / "examples"))
import live  # noqa: E402

TABLE = PROJECT / "examples" / "greenhouse.csv"
VIEWER = PROJECT / "tests" / "live" / "viewer" / "viewer.mjs"
MODULES = PROJECT / "build" / "viewer"

pytestmark = pytest.mark.skipif(
    "CI" not in os.environ and (shutil.which("node") is None or not (MODULES / "node_modules").is_dir()),
    reason="./dev test installs Node and the viewer's packages",
)


def test_the_protocols_own_client_subscribes_receives_and_unsubscribes(model):
    live.add_dashboard(model, TABLE)
    topic = f"{model.name}/Klima/Luftvolumen:CO₂"
    with model.simulate(TABLE, pace=900 / 0.02, loop=True) as run, run.serve() as server:
        viewer = subprocess.Popen(
            ["node", VIEWER, f"ws://127.0.0.1:{server.port}", topic, "20"],
            env=plain_environment(VIEWER_MODULES=str(MODULES)),
            stdout=subprocess.PIPE,
            text=True,
        )
        lines = []
        reader = threading.Thread(target=lambda: lines.extend(viewer.stdout.read().splitlines()))
        reader.start()
        while reader.is_alive():
            run.step()
        assert viewer.wait() == 0, lines
    model.observers = None
    info, advertised, *messages, last = map(json.loads, lines)
    assert info["capabilities"] == ["time"]
    assert advertised["advertised"]["encoding"] == "json"
    assert len(messages) == 20
    table = [line.split(",") for line in TABLE.read_text(encoding="utf-8").splitlines()]
    column = table[0].index("Klima/Luftvolumen:CO₂")
    expected = [float(row[column]) for row in table[1:]]
    day = 97 * 900  # a loop: the table's times, and one interval to the next first row
    for message in messages:
        row = round(int(message["time"]) / 1e9 % day / 900)
        assert message["message"]["value"] == expected[row]
    times = [int(message["time"]) for message in messages]
    assert times == sorted(times)
    assert last == {"afterwards": 0}
