"""What the tests of live values share: a small viewer, free ports, and processes that end with the test."""

from __future__ import annotations

import base64
import json
import os
import socket
import struct
import subprocess
import time
from collections.abc import Callable
from typing import Any

LIMIT = 30.0  # seconds until a wait has failed


def free_port() -> int:
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return int(probe.getsockname()[1])


def plain_environment(**more: str) -> dict[str, str]:
    """The environment for programs of other makers, which run without the sanitizers' libraries."""
    return {**{name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}, **more}


def await_true(condition: Callable[[], Any], what: str) -> Any:
    end = time.monotonic() + LIMIT
    while time.monotonic() < end:
        result = condition()
        if result:
            return result
        time.sleep(0.01)
    raise AssertionError(f"{what} did not happen within {LIMIT:.0f} s")


def started(*command: str, port: int) -> subprocess.Popen[bytes]:
    """A server, once it accepts connections on the port."""
    process = subprocess.Popen(command, env=plain_environment(), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def accepts() -> bool:
        with socket.socket() as probe:
            return probe.connect_ex(("127.0.0.1", port)) == 0

    await_true(accepts, f"{command[0]} on port {port}")
    return process


class Viewer:
    """A viewer that speaks the Foxglove WebSocket protocol over a plain socket."""

    def __init__(self, port: int, protocol: str = "foxglove.sdk.v1", path: str = "/", headers: str = "") -> None:
        self.socket = socket.create_connection(("127.0.0.1", port), timeout=LIMIT)
        self.stream = self.socket.makefile("rb")
        key = base64.b64encode(os.urandom(16)).decode()
        self.socket.sendall(
            f"GET {path} HTTP/1.1\r\nHost: 127.0.0.1:{port}\r\nConnection: Upgrade\r\nUpgrade: websocket\r\n"
            f"Sec-WebSocket-Version: 13\r\nSec-WebSocket-Key: {key}\r\nSec-WebSocket-Protocol: {protocol}\r\n"
            f"{headers}\r\n".encode()
        )
        self.status = int(self.stream.readline().split()[1])
        self.headers: dict[str, str] = {}
        while line := self.stream.readline().decode().strip():
            name, _, value = line.partition(": ")
            self.headers[name.lower()] = value
        self.channels: dict[str, int] = {}
        self.withdrawn: list[int] = []

    def __enter__(self) -> Viewer:
        return self

    def __exit__(self, *_: object) -> None:
        self.stream.close()
        self.socket.close()

    def send(self, **message: Any) -> None:
        data = json.dumps(message).encode()
        size = bytes([0x80 | len(data)]) if len(data) < 126 else struct.pack(">BH", 0x80 | 126, len(data))
        self.socket.sendall(b"\x81" + size + bytes(4) + data)

    def receive(self) -> tuple[int, bytes]:
        """The operation code and the data of the next frame; 8 when the connection is closed."""
        head = self.stream.read(2)
        if len(head) < 2:
            return 8, b""
        size = head[1]
        if size == 126:
            (size,) = struct.unpack(">H", self.stream.read(2))
        elif size == 127:
            (size,) = struct.unpack(">Q", self.stream.read(8))
        return head[0] & 0x0F, self.stream.read(size)

    def next(self) -> dict[str, Any]:
        """The next message: text as it is, a value with "channel" (the subscription) and "time" in seconds."""
        while True:
            code, data = self.receive()
            if code == 8:
                return {"op": "closed", "code": struct.unpack(">H", data[:2])[0] if data else 0}
            if code == 1:
                message: dict[str, Any] = json.loads(data)
                self.note(message)
                return message
            if code == 2 and data[0] == 2:
                return {"op": "time", "time": struct.unpack("<Q", data[1:9])[0] / 1e9}
            if code == 2:
                subscription, nanoseconds = struct.unpack("<IQ", data[1:13])
                return {"op": "value", "channel": subscription, "time": nanoseconds / 1e9, **json.loads(data[13:])}

    def note(self, message: dict[str, Any]) -> None:
        if message["op"] == "advertise":
            self.channels.update({channel["topic"]: channel["id"] for channel in message["channels"]})
        if message["op"] == "unadvertise":
            gone = set(message["channelIds"])
            self.withdrawn += message["channelIds"]
            self.channels = {topic: number for topic, number in self.channels.items() if number not in gone}

    def find(self, **expected: Any) -> dict[str, Any]:
        """The next message that has these members."""
        while True:
            message = self.next()
            if expected.items() <= message.items():
                return message
            assert message["op"] != "closed", f"closed while waiting for {expected}"

    def subscribe(self, topic: str) -> int:
        while topic not in self.channels:
            self.find(op="advertise")
        channel = self.channels[topic]
        self.send(op="subscribe", subscriptions=[{"id": channel, "channelId": channel}])
        return channel
