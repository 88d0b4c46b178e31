"""The server of live values: what viewers are told, and what goes wrong."""

import math
import os
import signal
import socket
import subprocess
import sys
import urllib.error
import time
import urllib.request

import pytest

import zmhost
from zmhost import Zelmar

from conftest import GREENHOUSE, PROJECT
from live_support import Viewer, await_true

sys.path.insert(0, str(PROJECT / "examples"))
import live  # noqa: E402

TABLE = PROJECT / "examples" / "greenhouse.csv"
AIR = "Klima/Luftvolumen:Temperatur"
GAS = "Klima/Luftvolumen:CO₂"


@pytest.fixture
def observed(model):
    live.add_dashboard(model, TABLE)
    yield model
    model.observers = None


@pytest.fixture
def port(observed):
    return next(port for port in observed["Klima/Luftvolumen"].outputs if port.name == "Temperatur")


def topic(model, name=AIR):
    return f"{model.name}/{name}"


def steps_until(run, viewer, **expected):
    """Steps the run, one step for each message, until the viewer gets the message."""
    while True:
        run.step()
        message = viewer.next()
        if expected.items() <= message.items():
            return message


def test_a_viewer_gets_the_tables_values_with_their_times(observed):
    times = [0.0, 1.0, 2.0, 3.0]
    with observed.simulate({"time": times, AIR: [20.0, 21.5, math.inf, 19.0]}) as run, run.serve() as server:
        with Viewer(server.port) as viewer:
            assert viewer.headers["sec-websocket-protocol"] == "foxglove.sdk.v1"
            viewer.subscribe(topic(observed))
            run.step()
            await_true(lambda: server.counts["viewers"] == 1, "the viewer's arrival")
            seen = {}
            for _ in times[1:]:
                viewer.send(op="unsubscribe", subscriptionIds=[99])  # its answer shows that the subscription is made
                viewer.find(op="status")
                run.step()
                message = viewer.find(op="value")
                seen[message["time"]] = message["value"]
            assert seen.items() <= {0.0: 20.0, 1.0: 21.5, 2.0: None, 3.0: 19.0}.items()
            assert len(seen) >= 2


def test_both_sub_protocols_are_spoken(observed):
    with observed.simulate(TABLE) as run, run.serve() as server:
        for protocol in ("foxglove.sdk.v1", "foxglove.websocket.v1"):
            with Viewer(server.port, protocol) as viewer:
                assert viewer.headers["sec-websocket-protocol"] == protocol
                info = viewer.find(op="serverInfo")
                assert info["capabilities"] == ["time"]


def test_a_hidden_signal_is_not_advertised(observed):
    signals = observed.observers.Signals
    hidden = signals.get(1)
    hidden.HideInDVX_ = 1.0
    signals.set(1, hidden)
    with observed.simulate(TABLE) as run, run.serve() as server, Viewer(server.port) as viewer:
        viewer.find(op="advertise")
        assert len(viewer.channels) == signals.Count - 1


def test_signals_that_come_and_go_are_told(observed):
    with zmhost.editor.Editor(observed), observed.simulate(TABLE) as run, run.serve() as server:
        with Viewer(server.port) as viewer:
            viewer.find(op="advertise")
            assert topic(observed) in viewer.channels
            observed["Klima/Luftvolumen"].rename("Luft")
            run.step()
            viewer.find(op="advertise")
            assert topic(observed, "Klima/Luft:Temperatur") in viewer.channels
            assert topic(observed) not in viewer.channels
            new = next(port for port in observed["Setpoints"].outputs)
            observed.observers.Signals.add(live.signal_of(observed.observers.Signals, new))
            run.step()
            viewer.find(op="advertise")
            assert topic(observed, f"Setpoints:{new.name}") in viewer.channels
            observed["Klima/Luft"].delete()
            run.step()
            viewer.find(op="unadvertise")
            assert topic(observed, "Klima/Luft:Temperatur") not in viewer.channels


def test_the_page_and_the_scene_are_served_on_the_same_port(observed):
    with observed.simulate(TABLE) as run, run.serve() as server:
        with urllib.request.urlopen(server.url) as page:
            assert b"<title>" in page.read()
            assert "default-src 'none'" in page.headers["Content-Security-Policy"]
        with urllib.request.urlopen(server.url + "scene.json") as scene:
            assert observed.name.encode() in scene.read()


def test_foreign_origins_are_refused_unless_they_are_named(observed):
    with observed.simulate(TABLE) as run, run.serve(origins=["https://viewer.example"]) as server:
        with Viewer(server.port, headers="Origin: https://viewer.example\r\n") as named:
            assert named.status == 101
        with Viewer(server.port, headers="Origin: https://evil.example\r\n") as foreign:
            assert foreign.status == 403


def test_another_address_needs_a_token(observed):
    with observed.simulate(TABLE) as run:
        with pytest.raises(ValueError, match="needs a token"):
            run.serve(address="0.0.0.0")
        with run.serve(address="0.0.0.0", token="s3cret") as server:
            with Viewer(server.port) as stranger:
                assert stranger.status == 401
            with Viewer(server.port, path="/?token=s3cret") as friend:
                assert friend.status == 101


def test_tls_is_served_with_a_certificate(observed, tmp_path):
    certificate, key = tmp_path / "cert.pem", tmp_path / "key.pem"
    subprocess.run(
        ["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=localhost",
         "-addext", "subjectAltName=DNS:localhost,IP:127.0.0.1", "-keyout", key, "-out", certificate],
        check=True, capture_output=True,
    )  # fmt: skip
    import ssl

    with observed.simulate(TABLE) as run:
        with run.serve(certificate=certificate, key=key) as server:
            assert server.url.startswith("https://")
            trust = ssl.create_default_context(cafile=certificate)
            with urllib.request.urlopen(server.url + "scene.json", context=trust) as scene:
                assert observed.name.encode() in scene.read()
        with pytest.raises(RuntimeError, match="certificate"):
            run.serve(certificate=tmp_path / "none.pem")


def test_a_port_in_use_is_said(observed):
    with socket.socket() as taken, observed.simulate(TABLE) as run:
        taken.bind(("127.0.0.1", 0))
        taken.listen()
        number = taken.getsockname()[1]
        with pytest.raises(RuntimeError, match=f"port {number}: Address already in use"):
            run.serve(port=number)


def test_an_error_in_the_source_is_shown_and_the_server_goes_on(observed):
    def fail(time, inputs):
        if time >= 2:
            raise ZeroDivisionError("the source fails")
        return {AIR: 20.0}

    with observed.simulate(fail, step=1.0, stop=10.0) as run, run.serve() as server:
        with pytest.raises(ZeroDivisionError):
            for _ in run:
                pass
        scene = b""
        end = time.monotonic() + 30  # the server's own thread takes the news
        while b"the source fails" not in scene and time.monotonic() < end:
            with urllib.request.urlopen(server.url + "scene.json") as answer:
                scene = answer.read()
        assert b"the source fails" in scene


def test_closing_twice_and_closing_the_model_first_are_harmless():
    model = zmhost.open_model(GREENHOUSE)
    live.add_dashboard(model, TABLE)
    run = model.simulate(TABLE)
    server = run.serve()
    viewer = Viewer(server.port)
    run.step()
    model.observers = None
    model.close()
    try:
        run.step()
    except zmhost.HostError:
        pass  # the run has lost its model
    run.stop()
    server.close()
    assert viewer.find(op="closed")["code"] == 1001
    server.close()
    assert not server.is_open


CHILD = f"""
import os, sys
sys.path.insert(0, {str(PROJECT / "examples")!r})
import zmhost, live
from pathlib import Path
model = zmhost.open_model({str(GREENHOUSE)!r})
table = Path({str(TABLE)!r})
live.add_dashboard(model, table)
run = model.simulate(table)
server = run.serve()
"""


def test_the_interpreter_ends_with_a_running_server(run):
    ended = run("-c", CHILD + "run.step(); print(server.port)")
    assert ended.returncode == 0, ended.stderr
    assert ended.stderr == ""


def test_a_forked_child_does_not_disturb_the_server(run):
    ended = run(
        "-c",
        CHILD
        + """
import urllib.request
child = os.fork()
if child == 0:
    server.close()
    os._exit(7)
assert os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) == 7
assert urllib.request.urlopen(server.url).status == 200
""",
    )
    assert ended.returncode == 0, ended.stderr


def test_the_example_serves_until_it_is_interrupted(run):
    script = subprocess.Popen(
        [sys.executable, "-m", "zmhost", str(PROJECT / "examples" / "live.py")], stdout=subprocess.PIPE, text=True
    )
    try:
        address = script.stdout.readline().rsplit(" ", 1)[1].strip()
        with urllib.request.urlopen(address) as page:
            assert page.status == 200
        with Viewer(int(address.rstrip("/").rsplit(":", 1)[1])) as viewer:
            viewer.subscribe("Gewächshaus/" + AIR)
            first = viewer.find(op="value")["time"]
            while viewer.find(op="value")["time"] <= first:
                pass
        script.send_signal(signal.SIGINT)
        assert script.wait(10) == 0
    finally:
        script.kill()
        script.communicate()
