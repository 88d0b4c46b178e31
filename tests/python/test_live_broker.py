"""A real MQTT broker gets the values: mosquitto, started on a free loopback port."""

import json
import os
import shutil
import subprocess
import sys
import threading

import pytest

import zmhost

from conftest import PROJECT
from live_support import await_true, free_port, plain_environment, started

sys.path.insert(0, str(PROJECT / "examples"))
import live  # noqa: E402

TABLE = PROJECT / "examples" / "greenhouse.csv"
BROKER = shutil.which("mosquitto", path=os.environ.get("PATH", "") + ":/usr/sbin")

pytestmark = pytest.mark.skipif(
    "CI" not in os.environ and (BROKER is None or shutil.which("mosquitto_sub") is None),
    reason="./dev test installs the broker",
)


class Broker:
    def __init__(self, folder, *lines, loopback_lines=("allow_anonymous true",)):
        self.port = free_port()
        self.config = folder / "mosquitto.conf"
        self.config.write_text("\n".join([f"listener {self.port} 127.0.0.1", *loopback_lines, *lines]) + "\n")
        self.start()

    def start(self):
        self.process = started(BROKER, "-c", str(self.config), port=self.port)

    def stop(self):
        self.process.kill()
        self.process.wait()


class Subscriber:
    """What a second process gets: topics and payloads, as they come."""

    def __init__(self, port, topic, *options):
        self.messages = []
        self.process = subprocess.Popen(
            ["mosquitto_sub", "-h", "127.0.0.1", "-p", str(port), "-t", topic, "-F", "%r %t %p", *options],
            env=plain_environment(),
            stdout=subprocess.PIPE,
            text=True,
        )
        self.thread = threading.Thread(target=self.read)
        self.thread.start()

    def read(self):
        for line in self.process.stdout:
            retained, _, rest = line.rstrip("\n").partition(" ")
            # A topic may have spaces; payloads here begin with "{" or are one word.
            topic, _, payload = rest.partition(" {") if " {" in rest else rest.rpartition(" ")
            self.messages.append((topic, ("{" + payload) if " {" in rest else payload, retained == "1"))

    def of(self, part):
        return [(topic, payload) for topic, payload, _ in list(self.messages) if part in topic]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.thread.join()
        self.process.wait()
        self.process.stdout.close()


@pytest.fixture
def broker(tmp_path):
    broker = Broker(tmp_path)
    yield broker
    broker.stop()


@pytest.fixture
def observed(model):
    live.add_dashboard(model, TABLE)
    yield model
    model.observers = None


@pytest.mark.parametrize("version", ["5", "3.1.1"])
def test_values_descriptions_and_status_reach_another_process(observed, broker, version):
    with Subscriber(broker.port, "plants/north/#") as subscriber:
        with observed.simulate(TABLE) as run:
            with run.publish(f"mqtt://127.0.0.1:{broker.port}/plants/north", version=version) as publisher:
                await_true(lambda: publisher.is_connected, "the connection")
                await_true(lambda: len(subscriber.of("/description/")) == 6, "the descriptions")
                for _ in run:
                    pass
                await_true(lambda: publisher.waiting == 0, "publishing")
                assert publisher.dropped == 0
        await_true(lambda: ("plants/north/status", "offline") in subscriber.of("status"), "the farewell")
        assert ("plants/north/status", "online") in subscriber.of("status")
        name = "Gewächshaus/Klima/Luftvolumen/Temperatur"
        described = json.loads(dict(subscriber.of("/description/"))[f"plants/north/description/{name}"])
        assert described["path"] == "Gewächshaus/Klima/Luftvolumen"
        assert described["portName"] == "Temperatur"
        assert described["decimation"] == 1
        assert len(described["uuid"]) == 36
        values = [json.loads(payload) for topic, payload in subscriber.of(f"/value/{name}")]
        table = [line.split(",") for line in TABLE.read_text(encoding="utf-8").splitlines()]
        column = table[0].index("Klima/Luftvolumen:Temperatur")
        expected = {float(row[0]): float(row[column]) for row in table[1:]}
        assert {value["time"]: value["value"] for value in values} == expected


def test_descriptions_and_status_are_retained(observed, broker):
    with observed.simulate(TABLE) as run, run.publish(f"mqtt://127.0.0.1:{broker.port}/p") as publisher:
        await_true(lambda: publisher.is_connected, "the connection")
        with Subscriber(broker.port, "p/#") as late:
            await_true(lambda: len(late.of("/description/")) == 6 and late.of("p/status"), "what is retained")


def test_the_will_says_offline_when_the_process_is_killed(broker, run):
    script = f"""
import sys
sys.path.insert(0, {str(PROJECT / "examples")!r})
import os, time, zmhost, live
from pathlib import Path
model = zmhost.open_model({str(PROJECT / "examples" / "greenhouse.ssd")!r})
table = Path({str(TABLE)!r})
live.add_dashboard(model, table)
run = model.simulate(table)
publisher = run.publish("mqtt://127.0.0.1:{broker.port}/p")
while not publisher.is_connected:
    time.sleep(0.01)
os.kill(os.getpid(), 9)
"""
    with Subscriber(broker.port, "p/status") as subscriber:
        assert run("-c", script).returncode == -9
        await_true(lambda: subscriber.of("status")[-1:] == [("p/status", "offline")], "the will")


def test_a_broker_that_is_killed_and_comes_back_gets_the_values_that_waited(observed, broker):
    with observed.simulate(TABLE, loop=True) as run:
        with run.publish(f"mqtt://127.0.0.1:{broker.port}/p", first_pause=0.05, max_waiting=60) as publisher:
            await_true(lambda: publisher.is_connected, "the connection")
            broker.stop()
            await_true(lambda: not publisher.is_connected, "the loss of the connection")
            dropped = publisher.dropped
            for _ in range(100):
                run.step()
            await_true(lambda: publisher.waiting <= 60, "dropping")
            assert publisher.dropped >= dropped + 500
            assert publisher.error != ""
            broker.start()
            await_true(lambda: publisher.connections == 2, "the second connection")
            await_true(lambda: publisher.waiting == 0, "publishing what waited")
            with Subscriber(broker.port, "p/#") as subscriber:
                await_true(lambda: len(subscriber.of("/description/")) == 6, "descriptions once more")
                run.step()
                await_true(lambda: len(subscriber.of("/value/")) >= 6, "new values")


def test_a_removed_signal_is_described_no_more(observed, broker):
    with observed.simulate(TABLE, loop=True) as run, run.publish(f"mqtt://127.0.0.1:{broker.port}/p") as publisher:
        await_true(lambda: publisher.is_connected, "the connection")
        observed.observers.Signals.remove(1)
        run.step()
        await_true(lambda: publisher.waiting == 0 and publisher.sent > 0, "publishing")

        def retained():
            with Subscriber(broker.port, "p/description/#", "--retained-only", "-W", "1") as late:
                late.process.wait()
                late.thread.join()
                return len(late.of("/description/"))

        await_true(lambda: retained() == 5, "the description's removal")


def test_a_wrong_password_is_told(observed, tmp_path):
    passwords = tmp_path / "passwords"
    subprocess.run(["mosquitto_passwd", "-b", "-c", passwords, "plant", "right"], check=True, capture_output=True)
    os.chmod(passwords, 0o644)
    os.chmod(tmp_path, 0o755)
    broker = Broker(tmp_path, loopback_lines=("allow_anonymous false", f"password_file {passwords}", "user root"))
    try:
        url = f"mqtt://127.0.0.1:{broker.port}/p"
        with observed.simulate(TABLE) as run:
            for version in ("5", "3.1.1"):
                with run.publish(url, user="plant", password="wrong", version=version) as publisher:
                    await_true(lambda: publisher.error, "the refusal")
                    assert "not auth" in publisher.error.lower()
                    assert not publisher.is_connected
            with run.publish(url, user="plant", password="right") as publisher:
                await_true(lambda: publisher.is_connected, "the connection")
    finally:
        broker.stop()


def test_tls_with_a_certificate_of_ones_own(observed, tmp_path):
    certificate, key = tmp_path / "cert.pem", tmp_path / "key.pem"
    subprocess.run(
        ["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=127.0.0.1",
         "-addext", "subjectAltName=IP:127.0.0.1", "-keyout", key, "-out", certificate],
        check=True, capture_output=True,
    )  # fmt: skip
    broker = Broker(tmp_path, f"certfile {certificate}", f"keyfile {key}", "user root")
    try:
        with observed.simulate(TABLE) as run:
            with run.publish(f"mqtts://127.0.0.1:{broker.port}/p", tls=certificate) as publisher:
                await_true(lambda: publisher.is_connected, "the connection")
            with run.publish(f"mqtts://127.0.0.1:{broker.port}/p") as stranger:
                await_true(lambda: stranger.error, "the refusal of an unknown certificate")
                assert not stranger.is_connected
    finally:
        broker.stop()


@pytest.mark.parametrize("url", ["http://host/p", "mqtt:///p", "mqtt://host", "mqtt://host/a+b", "mqtt://host/%23"])
def test_an_address_that_is_none_is_refused(observed, url):
    with observed.simulate(TABLE) as run, pytest.raises(ValueError):
        run.publish(url)
