"""Every test ends with the host's ledger closed, and cannot forget to."""

from __future__ import annotations

import gc
import os
import subprocess
import sys
from collections.abc import Callable, Iterator
from pathlib import Path
from typing import Any

import pytest

import zmhost

PROJECT = Path(__file__).resolve().parents[2]
GREENHOUSE = PROJECT / "examples" / "greenhouse.ssd"


@pytest.fixture(autouse=True)
def _closed_ledger(request: pytest.FixtureRequest) -> Iterator[None]:
    functions = set(zmhost.host_functions())
    zmhost.warnings.clear()
    before = zmhost.ledger()
    yield
    request.node.funcargs.clear()
    gc.collect()
    assert before.opened_since() == []
    assert zmhost.models() == []
    assert set(zmhost.host_functions()) == functions
    zmhost.faults.disarm()


@pytest.fixture
def model() -> Iterator[zmhost.Model]:
    with zmhost.open_model(GREENHOUSE) as opened:
        yield opened


@pytest.fixture
def signals() -> Any:
    return zmhost.Zelmar.HMI.InstrumentedSignals("plant")


@pytest.fixture
def spec() -> Any:
    return zmhost.Zelmar.HMI.SignalSpecification(BlockPath_="Controller/Limiter", OutputPortIndex_=1)


@pytest.fixture
def define() -> Iterator[Callable[..., Any]]:
    """`zmhost.host_function` for the time of a test."""
    defined = []

    def host_function(name: str, **options: Any) -> Callable[[Any], Any]:
        decorate = zmhost.host_function(name, **options)
        if name not in defined:
            defined.append(name)
        return decorate

    yield host_function
    for name in defined:
        zmhost.remove_host_function(name)


@pytest.fixture
def echo(define: Callable[..., Any]) -> Callable[[Any], Any]:
    """Sends a value to the host and back."""

    @define("echo")
    def give_back(value: Any) -> Any:
        return value

    return lambda value: zmhost.call("echo", value)


@pytest.fixture
def run() -> Callable[..., subprocess.CompletedProcess[str]]:
    """Runs Python in a process of its own."""

    def run_python(*arguments: object, **options: Any) -> subprocess.CompletedProcess[str]:
        options["env"] = {**os.environ, **options.get("env", {})}
        return subprocess.run(
            [sys.executable, *map(str, arguments)], capture_output=True, text=True, timeout=120, **options
        )

    return run_python
