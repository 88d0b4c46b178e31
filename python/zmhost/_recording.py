"""Recording: blocks that write signals to files and variables, and the replay that feeds them."""

from __future__ import annotations

import os
from collections.abc import Callable, Mapping
from typing import Any

from zmhost import _zmhost
from zmhost._zmhost import Port, Recording

#: The script variables that recordings set, by name.
workspace: dict[str, Any] = {}


class FileRecording(_zmhost.FileRecording):
    """Records the signal of an output port into a column of a CSV file, as the simulation runs.

    Every `decimation`-th sample from the first is recorded, and of those the first `max_points`. Both are
    texts or numbers; an empty one stands for every sample, and for no limit. `properties` may hold
    "header", the title of the column, and "digits", its numbers' significant ones. Settings are read when
    a replay begins. Recordings into the same file share it.
    """

    def __init__(
        self,
        port: Port,
        path: str | os.PathLike[str],
        *,
        decimation: int | str = "",
        max_points: int | str = "",
        domain: str = "",
        properties: Mapping[str, float | str] | None = None,
    ) -> None:
        super().__init__(port, os.fspath(path), decimation, max_points, domain, dict(properties or {}))


class VariableRecording(_zmhost.VariableRecording):
    """Records the signal of an output port into a variable of the workspace, set when the replay ends.

    The format "structwithtime" makes a struct of `time`, `signals` (`values`, `dimensions`, `label`) and
    `blockName`; "struct" the same without the times; "struct2D" too, with a 1-by-1 matrix for each
    sample; any other a plain column of numbers. Of every `decimation`-th sample the last `max_points`
    are kept; see `FileRecording` for what the two may be.
    """

    def __init__(
        self,
        port: Port,
        name: str,
        format: str = "array",
        *,
        decimation: int | str = "",
        max_points: int | str = "",
    ) -> None:
        super().__init__(port, name, format, decimation, max_points)


#: A CSV file, a mapping of columns, a pandas DataFrame, or a table that was read before.
Table = Any


def _header(port: str | Port) -> str:
    if not isinstance(port, (str, Port)):
        raise TypeError(f"a column is named by an output port or its name, not by {port!r}")
    return port if isinstance(port, str) else _zmhost.recorded_port_name(port)


def read_table(table: Table) -> _zmhost.RecordedTable:
    """The table in the form that the replay takes."""
    if isinstance(table, _zmhost.RecordedTable):
        return table
    if hasattr(table, "columns") and hasattr(table, "items"):  # a DataFrame
        table = dict(table.items())
    if not isinstance(table, Mapping):
        return _zmhost.RecordedTable.read(table)
    if "time" not in table:
        raise ValueError("the table has no column 'time'")
    columns: dict[str, list[float]] = {}
    for port, values in table.items():
        header = _header(port)
        if header in columns:
            raise ValueError(f"two columns are named {header!r}")
        columns[header] = list(map(float, values))
    times = columns.pop("time")
    return _zmhost.RecordedTable(times, list(columns), list(columns.values()))


def replay(
    model: _zmhost.Model, table: Table, *recordings: Recording, step: Callable[[float], object] | None = None
) -> None:
    """Replays a table over a diagram as its running simulation, with recordings at work.

    The table is a CSV file whose first column is "time" and whose others name output ports
    ("Klima/Luftvolumen:Temperatur", or the port's number after the colon), a mapping of such names, or of ports, to
    numbers, or a pandas DataFrame with such columns. `step` is called with the time after each row. When the replay ends early,
    through an error or Ctrl-C, files and variables hold what was recorded until then.
    """
    _zmhost.replay(model, read_table(table), list(recordings), step)
