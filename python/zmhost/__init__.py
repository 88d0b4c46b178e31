"""The reference host as a Python module.

    import zmhost
    from zmhost import Zelmar                   # the namespaces that the library registered

    model = zmhost.open_model("diagram.ssd")
    signals = Zelmar.HMI.InstrumentedSignals(model.name)
    signals.add(Zelmar.HMI.SignalSpecification(BlockPath_="Controller/Limiter", OutputPortIndex_=1))

Methods and properties carry the host's names and count from 1. Text is `str`, a number `float`, `int` or
`bool`, the empty value `None`; a struct array is a sequence of mappings (`StructArray`), a cell array a
list (`CellArray` where it is no row), an array of numbers a `Matrix`. On the way to the host a mapping is
a struct, a list of mappings a struct array, any other list a cell array.

A host error is a `HostError`, a host warning a `HostWarning`, which Python's warning filters govern.

The host has one thread, the one that imports this module; Python's lock is held during its calls.
"""

from __future__ import annotations

import atexit
import os
import sys
from collections.abc import Callable
from typing import TYPE_CHECKING, Any, TypeVar

from zmhost import _interpreter  # before all others: it raises where they must not be imported
from zmhost import _classes, _library, _location, _zmhost, editor, faults
from zmhost._argument_errors import word_argument_errors
from zmhost._classes import HostObject, Namespace, ObjectArray
from zmhost._files import open_model
from zmhost._errors import ElementIndexError, FileError, HostError, HostWarning, MissingFileError, ValueTypeError
from zmhost._live import LiveServer, Publisher
from zmhost._recording import FileRecording, VariableRecording, replay, workspace
from zmhost._record import record
from zmhost._reports import Journal, Ledger, WarningSink, journal, ledger, log_host_calls
from zmhost._simulation import History, simulate
from zmhost._values import CellArray, Matrix, Struct, StructArray
from zmhost._zmhost import Block, Channel, Chart, ChartObject, Client, Connection, Model, Port, Recording, Run, Value
from zmhost._zmhost import active_recordings, models

if TYPE_CHECKING:
    from zmhost import _zelmar as Zelmar

__version__ = _location.VERSION

__all__ = [
    "Block",
    "CellArray",
    "Channel",
    "Chart",
    "ChartObject",
    "Client",
    "Connection",
    "ElementIndexError",
    "FileError",
    "FileRecording",
    "History",
    "HostError",
    "HostObject",
    "HostWarning",
    "Journal",
    "Ledger",
    "LiveServer",
    "Matrix",
    "MissingFileError",
    "Model",
    "Namespace",
    "ObjectArray",
    "Port",
    "Publisher",
    "Recording",
    "Run",
    "Struct",
    "StructArray",
    "Value",
    "ValueTypeError",
    "VariableRecording",
    "WarningSink",
    "active_recordings",
    "call",
    "editor",
    "faults",
    "get_property",
    "host_function",
    "host_functions",
    "journal",
    "ledger",
    "log_host_calls",
    "models",
    "open_model",
    "record",
    "remove_host_function",
    "replay",
    "set_property",
    "simulate",
    "warnings",
    "workspace",
]

warnings = WarningSink()

_Function = TypeVar("_Function", bound=Callable[..., Any])


def call(name: str, *arguments: Any, outputs: int = 1) -> Any:
    """Calls a host function, a class constructor or a static method by its full name."""
    _library.load()
    return _zmhost.call_function(name, arguments, outputs)


def host_function(name: str, *, replace: bool = False) -> Callable[[_Function], _Function]:
    """Makes a function a host function of that name, which the library may call.

    Its result is the first output, a tuple the first few; None leaves an output unset. What it raises
    becomes a host error. `replace` is needed where the name is taken.
    """

    def define(function: _Function) -> _Function:
        _zmhost.define_function(name, function, replace)
        return function

    return define


def remove_host_function(name: str) -> None:
    """Removes a function that `host_function` defined; a function that it replaced comes back."""
    if not _zmhost.remove_function(name):
        raise LookupError(f"no script has defined a host function {name!r}")


def host_functions() -> list[str]:
    """The names of the host functions."""
    return _zmhost.function_names()


def get_property(instance: HostObject, name: str) -> Any:
    """A property by its name."""
    return _zmhost.get_property(instance.__host_value__(), name)


def set_property(instance: HostObject, name: str, value: Any) -> None:
    """Assigns a property as host code does, whether or not scripts may."""
    _zmhost.set_property(instance.__host_value__(), name, value)


for _native in (Model, Block, Port, Chart, _zmhost.Recording, _zmhost.FileRecording, _zmhost.VariableRecording,
                _zmhost.RecordedTable, _zmhost.SignalEditor):
    word_argument_errors(_native)

if not TYPE_CHECKING:

    def __getattr__(name: str) -> Namespace:
        if not name.startswith("_") and name in _classes.top_level_names():
            return _classes.namespace_named(name)
        raise AttributeError(f"module {__name__!r} has no attribute {name!r}")


def __dir__() -> list[str]:
    return sorted({*globals(), *_classes.top_level_names()})


@atexit.register
def _shut_down() -> None:
    """Releases everything that scripts have left behind. Values that are still open were leaked by native code: the
    program lists them and fails."""
    if _zmhost.shut_down(0) != 0:
        sys.stdout.flush()
        sys.stderr.flush()
        os._exit(3)
