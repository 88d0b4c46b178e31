"""Live values: a server for browsers and viewers, and a publisher for brokers."""

from __future__ import annotations

import atexit
import os
import weakref
from collections.abc import Iterable
from pathlib import Path
from types import TracebackType
from typing import TYPE_CHECKING, TypeVar
from urllib.parse import unquote, urlsplit

from zmhost import _zmhost

if TYPE_CHECKING:
    from zmhost._zmhost import Run

    Path_ = str | os.PathLike[str]

PAGE = Path(__file__).with_name("page")
PORTS = {"mqtt": 1883, "mqtts": 8883}

_Self = TypeVar("_Self", "LiveServer", "Publisher")
_open: weakref.WeakSet[LiveServer | Publisher] = weakref.WeakSet()


def _close_all() -> None:
    for each in list(_open):
        each.close()


def _remember(opened: LiveServer | Publisher) -> None:
    if not _open:
        # Registered late, and so called before the host is shut down.
        atexit.unregister(_close_all)
        atexit.register(_close_all)
    _open.add(opened)


class LiveServer(_zmhost.LiveServer):
    """A web page, and the Foxglove WebSocket protocol on the same port; made by `run.serve`.

    The server works in a thread of its own until it is closed. `url` is the page's address, `counts` what
    happened so far.
    """

    def __init__(
        self,
        run: Run,
        *,
        address: str = "127.0.0.1",
        port: int = 0,
        origins: Iterable[str] = (),
        token: str = "",
        certificate: Path_ = "",
        key: Path_ = "",
        stuck_seconds: float = 30,
    ) -> None:
        if isinstance(origins, str):
            raise TypeError("origins are several texts, such as ['https://viewer.example']")
        super().__init__(
            run, address, port, list(origins), token, os.fspath(certificate), os.fspath(key), PAGE, stuck_seconds
        )
        _remember(self)

    def __enter__(self) -> LiveServer:
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()


class Publisher(_zmhost.Publisher):
    """Publishes values on an MQTT broker; made by `run.publish`."""

    def __init__(
        self,
        run: Run,
        url: str,
        *,
        tls: bool | Path_ | None = None,
        certificate: Path_ = "",
        key: Path_ = "",
        user: str = "",
        password: str = "",
        version: str = "5",
        max_waiting: int = 500_000,
        first_pause: float = 0.5,
    ) -> None:
        parts = urlsplit(url)
        if parts.scheme not in PORTS or not parts.hostname:
            raise ValueError(f"a broker's address is like mqtt://host:1883/prefix, not {url!r}")
        if version not in ("5", "3.1.1"):
            raise ValueError(f"the MQTT version is '5' or '3.1.1', not {version!r}")
        prefix = unquote(parts.path).strip("/")
        if not prefix or set(prefix) & set("+#\0"):
            raise ValueError(f"the address needs a prefix for topics, without '+' and '#': {url!r}")
        authorities = "" if tls is None or isinstance(tls, bool) else os.fspath(tls)
        super().__init__(
            run,
            parts.hostname,
            parts.port or PORTS[parts.scheme],
            prefix,
            version == "5",
            user or unquote(parts.username or ""),
            password or unquote(parts.password or ""),
            parts.scheme == "mqtts" or bool(tls),
            authorities,
            os.fspath(certificate),
            os.fspath(key),
            max_waiting,
            first_pause,
        )
        _remember(self)

    def __enter__(self) -> Publisher:
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()


def serve(
    run: Run,
    port: int = 0,
    *,
    address: str = "127.0.0.1",
    origins: Iterable[str] = (),
    token: str = "",
    certificate: Path_ = "",
    key: Path_ = "",
    stuck_seconds: float = 30,
) -> LiveServer:
    """Serves the run's values: a web page, and the Foxglove WebSocket protocol on the same port (0: a free one).

    An address other than loopback needs a `token`, which viewers give as `?token=…` or in an `Authorization`
    header. `origins` are web pages of other origins that may connect. With a `certificate` (PEM, and a `key`)
    the server speaks TLS.
    """
    return LiveServer(
        run,
        address=address,
        port=port,
        origins=origins,
        token=token,
        certificate=certificate,
        key=key,
        stuck_seconds=stuck_seconds,
    )


def publish(
    run: Run,
    url: str,
    *,
    tls: bool | Path_ | None = None,
    certificate: Path_ = "",
    key: Path_ = "",
    user: str = "",
    password: str = "",
    version: str = "5",
    max_waiting: int = 500_000,
    first_pause: float = 0.5,
) -> Publisher:
    """Publishes the run's values on an MQTT broker: mqtt://host:1883/prefix, or mqtts:// with TLS.

    `tls` is true, or the PEM file of the authorities to trust; `version` is "5" or "3.1.1". While the broker is
    away at most `max_waiting` values wait; older ones are dropped and counted. Does not wait for the connection:
    see `is_connected` and `error`.
    """
    return Publisher(
        run,
        url,
        tls=tls,
        certificate=certificate,
        key=key,
        user=user,
        password=password,
        version=version,
        max_waiting=max_waiting,
        first_pause=first_pause,
    )


for _name, _method in (("serve", serve), ("publish", publish)):
    setattr(_zmhost.Run, _name, _method)
