"""Records ports of a model into a file while a table is replayed, and plots them."""

from __future__ import annotations

import csv
import os
from collections.abc import Callable, Iterable, Sequence
from pathlib import Path
from typing import Any

from zmhost._recording import FileRecording, Table, read_table, replay
from zmhost._zmhost import Model, Port

FILE_SUFFIXES = (".csv",)
PLOT_SUFFIXES = (".svg", ".png", ".pdf")
Progress = Callable[[int, int], object]


def _checked(path: str | os.PathLike[str], suffixes: Sequence[str], noun: str) -> Path:
    checked = Path(path)
    if checked.suffix.lower() not in suffixes:
        known = ", ".join(suffixes)
        raise ValueError(f'a {noun} has a name that ends in {known}, not in "{checked.suffix}": {os.fspath(path)!r}')
    return checked


def _ports(model: Model, names: Iterable[str | Port], columns: Iterable[str]) -> list[Port]:
    """The ports; a block's path stands for those of its outputs that the table has a column for."""
    given = {model.port(column) for column in columns}
    ports: list[Port] = []
    for name in names:
        if isinstance(name, Port):
            ports.append(name)
        elif name in model:
            ports += [port for port in model[name].outputs if port in given]
        else:
            ports.append(model.port(name))
    return list(dict.fromkeys(ports))


def pyplot() -> Any:
    """matplotlib for files, which is optional."""
    try:
        import matplotlib  # type: ignore[import]
    except ImportError:
        raise ImportError("a plot needs matplotlib, which is not installed (Debian package python3-matplotlib)") from None
    matplotlib.use("Agg")
    from matplotlib import pyplot as module

    return module


def plot_table(file: str | os.PathLike[str], picture: str | os.PathLike[str], title: str = "") -> None:
    """Draws every column of a recorded table against its time, with a legend; one axis for each column unless they
    share a range."""
    _checked(picture, PLOT_SUFFIXES, "plot")
    plots = pyplot()
    with open(file, encoding="utf-8", newline="") as recorded:
        head, *rows = csv.reader(recorded)
    times = [float(row[0]) for row in rows]
    count = max(1, len(head) - 1)
    figure, axes = plots.subplots(count, 1, sharex=True, squeeze=False, figsize=(9, 1.2 + 1.8 * count))
    for i, name in enumerate(head[1:], 1):
        axis = axes[i - 1][0]
        axis.plot(times, [float(row[i]) if row[i] else float("nan") for row in rows], label=name, color=f"C{(i - 1) % 10}")
        axis.legend(loc="upper right", fontsize="small")
        axis.grid(True, alpha=0.3)
        axis.set_ylabel("value")
    axes[-1][0].set_xlabel("time in s")
    figure.suptitle(title)
    figure.tight_layout()
    figure.savefig(picture)
    plots.close(figure)


def record(
    model: Model,
    table: Table,
    ports: Iterable[str | Port],
    file: str | os.PathLike[str],
    *,
    plot: str | os.PathLike[str] | None = None,
    decimation: int = 1,
    progress: Progress | None = None,
) -> Path:
    """Replays a table over a model, records output ports into a CSV file, and plots them where `plot` names a file.

    A port is a `Port`, a name ("Klima/Luftvolumen:CO₂", or the port's number after the colon), or a block's path for
    all of its outputs in the table. `progress(done, total)` is called after each row. Gives the path of the file.
    """
    target = _checked(file, FILE_SUFFIXES, "recording")
    if plot is not None:
        _checked(plot, PLOT_SUFFIXES, "plot")
        pyplot()
    read = read_table(table)
    recorded = _ports(model, ports, read.columns)
    if not recorded:
        raise ValueError("no output port was named that the table has a column for")
    done = 0

    def step(_: float) -> None:
        nonlocal done
        done += 1
        if progress is not None:
            progress(done, len(read))

    replay(model, read, *(FileRecording(port, target, decimation=decimation) for port in recorded), step=step)
    if plot is not None:
        plot_table(target, plot, title=model.name)
    return target
