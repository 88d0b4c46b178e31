"""Running a model: sources compute its output ports, step by step, and the run keeps the signals' values.

    with model.simulate("greenhouse.csv", pace=3600) as run:
        for time in run:
            print(time, run.latest("Klima/Luftvolumen:Temperatur"))
    history = run.history("Klima/Luftvolumen:Temperatur")
    numpy.asarray(history.values)                      # without a copy
"""

from __future__ import annotations

import atexit
import inspect
import os
import sys
import weakref
from collections.abc import Callable, Iterable, Mapping
from typing import Any, NamedTuple

from zmhost import _library, _recording, _zmhost
from zmhost._zmhost import Block, Model, Port, Recording, Run

_GIBIBYTE = 1 << 30
_open: weakref.WeakSet[Run] = weakref.WeakSet()


class History(NamedTuple):
    """The samples that a run keeps of a signal, oldest first: two buffers of equal length.

    Later steps do not change them. Values of arrays have a row for each sample.
    """

    times: memoryview
    values: memoryview


def _takes_inputs(function: Callable[..., object]) -> bool:
    """Whether a source's function wants the values of connected inputs behind the time."""
    try:
        parameters = inspect.signature(function).parameters.values()
    except (TypeError, ValueError):
        return False
    positional = (inspect.Parameter.POSITIONAL_ONLY, inspect.Parameter.POSITIONAL_OR_KEYWORD)
    if any(each.kind is inspect.Parameter.VAR_POSITIONAL for each in parameters):
        return True
    return sum(each.kind in positional for each in parameters) >= 2


def _is_table(what: Any) -> bool:
    """A mapping with times, or a pandas DataFrame."""
    return (isinstance(what, Mapping) or hasattr(what, "columns")) and "time" in what


def _sources(model: Model, what: Any, loop: bool, allow_nan: bool) -> list[Any]:
    if callable(what):
        return [_zmhost.script_source(model, None, what, _takes_inputs(what), allow_nan)]
    if isinstance(what, _zmhost.RecordedTable):
        return [_zmhost.table_source(model, what, loop)]
    if isinstance(what, (str, os.PathLike)) or _is_table(what):
        return [_zmhost.table_source(model, _recording.read_table(what), loop)]
    if isinstance(what, Mapping):
        blocks = [(block if isinstance(block, Block) else model[block], function) for block, function in what.items()]
        return [
            _zmhost.script_source(model, block, function, _takes_inputs(function), allow_nan)
            for block, function in blocks
        ]
    if isinstance(what, Iterable):
        return [source for each in what for source in _sources(model, each, loop, allow_nan)]
    raise TypeError(f"{what!r} is no source: give a table, a function, or a mapping of blocks to functions")


def _close_all() -> None:
    for run in list(_open):
        run.stop()


def simulate(
    model: Model,
    source: Any,
    *,
    pace: float | None = None,
    step: float | None = None,
    start: float = 0.0,
    stop: float | None = None,
    loop: bool = False,
    record: Iterable[Recording] = (),
    allow_nan: bool = False,
    history_bytes: int = _GIBIBYTE,
    progress: bool | None = None,
) -> Run:
    """Begins a run of the model; each turn of a loop over it does a step and gives the time.

    The source is a table (as for `replay`), a function of the whole model, a mapping of blocks to functions,
    or a list of these. A function is called with the time, and with the values of the connected inputs if it
    takes a second argument; it returns values by output port. Values are numbers, real or complex, sequences
    of them, or mappings (buses). NaN is an error unless `allow_nan`; in a table it means no value.

    A table gives the times of the steps, again and again with `loop`; otherwise `step` does, in seconds, from
    `start`. No step is later than `stop`. `pace` is model time by real time; None is as fast as possible.
    `record`: recordings that work during the run. `progress` shows the time on a terminal; None does so where
    standard error is one and the run is not paced.
    """
    _library.load()
    shows = progress if progress is not None else pace is None and sys.stderr.isatty()
    run = _zmhost.make_run(
        model,
        _sources(model, source, loop, allow_nan),
        start,
        step,
        stop,
        pace,
        history_bytes,
        list(record),
        _write_progress if shows else None,
    )
    if not _open:
        # Registered late, and so called before the host is shut down.
        atexit.unregister(_close_all)
        atexit.register(_close_all)
    _open.add(run)
    return run


def _write_progress(text: str) -> None:
    sys.stderr.write(text)
    sys.stderr.flush()


def _channel(run: Run, what: Any) -> _zmhost.Channel | None:
    if isinstance(what, Port):
        return run.channel_of_port(what)
    if isinstance(what, _zmhost.Channel):
        return what
    return run.channel_of_uuid(what if isinstance(what, str) else what.UUID)


def _latest(run: Run, what: Any) -> Any:
    """The latest value of a signal, or of an output port: a signal, its UUID, a port, or "path:port".

    A number, a list of them, or a dict for a bus; None when there is none yet. A signal's is the latest of
    its samples, of which there is one in every `Decimation_` steps; a port's is that of the last step.
    """
    if isinstance(what, Port):
        return run.latest_of_port(what)
    channel = _channel(run, what)
    if channel is not None:
        return run.latest_of_channel(channel.id)
    if isinstance(what, str):
        return run.latest_of_port(run.model.port(what))
    raise LookupError(f"the run has no signal {what!r}")


def _history(run: Run, what: Any, leaf: str = "") -> History:
    """The samples of an instrumented signal: a signal, its UUID, a port, or "path:port". `leaf`: of a bus."""
    channel = _channel(run, what)
    if channel is None and isinstance(what, str):
        channel = run.channel_of_port(run.model.port(what))
    if channel is None:
        raise LookupError(f"{what!r} is not instrumented; only instrumented signals have a history")
    times, values = run.history_of_channel(channel.id, leaf)
    return History(memoryview(times), memoryview(values))


for _class, _name, _method in ((Model, "simulate", simulate), (Run, "latest", _latest), (Run, "history", _history)):
    setattr(_class, _name, _method)
