"""Recording: replays a recorded table over a diagram, and records ports to a file and a variable meanwhile.

    ./dev run examples/recording.py

The tour shows this as one of its sections; here it stands alone, with the bundled diagram.
"""

from __future__ import annotations

import csv
import sys
import tempfile
from collections.abc import Callable, Sequence
from pathlib import Path
from typing import Any

import zmhost

BUNDLED = Path(__file__).with_name("greenhouse.ssd")
INTO_FILE = (("Klima/Luftvolumen", "Temperatur"), ("Klima/Luftvolumen", "CO₂"))
INTO_VARIABLE = ("灌漑/養液/𠮷田タンク", "水位")
EVERY = 8  # the table has a row for each quarter of an hour
ShowTable = Callable[[Sequence[str], Sequence[Sequence[Any]], str], None]


def output_port(model: zmhost.Model, block: str, name: str) -> zmhost.Port:
    return next(port for port in model[block].outputs if port.name == name)


def clock(seconds: float) -> str:
    hours, rest = divmod(int(seconds), 3600)
    return f"{hours:02}:{rest // 60:02}"


def show_recording(model: zmhost.Model, table: Path, show_table: ShowTable) -> None:
    """Replays the greenhouse's day: two ports go to a file, one to a variable, and a table shows them."""
    with tempfile.TemporaryDirectory() as folder:
        file = Path(folder) / "air.csv"
        air = [
            zmhost.FileRecording(output_port(model, *port), file, decimation=EVERY, properties={"header": port[1]})
            for port in INTO_FILE
        ]
        tank = zmhost.VariableRecording(output_port(model, *INTO_VARIABLE), "tank", "structwithtime", decimation=EVERY)
        active: list[int] = []
        zmhost.replay(model, table, *air, tank, step=lambda time: active.append(len(zmhost.active_recordings())))
        with file.open(encoding="utf-8", newline="") as recorded:
            head, *rows = csv.reader(recorded)
    variable = zmhost.workspace["tank"]
    now = len(zmhost.active_recordings()) or "none"
    print(f"{table.name} was replayed over {model.name}: {len(active)} points in time, {max(active)} recordings active")
    print(f"at each, {now} afterwards. Every {EVERY}th point went to the file {file.name} (gone again by now)")
    print(f'and into the variable "{tank.name}", in the shape "{tank.format}".')
    signals = variable["signals"]
    lines = [
        (clock(float(time)), float(warmth), float(gas), float(flow))
        for (time, warmth, gas), flow in zip(rows, signals["values"], strict=True)
    ]
    show_table(("time", *(f"{name} (file)" for name in head[1:]), f"{signals['label']} (variable)"), lines, "row")


def main() -> int:
    from first_light import heading, show_table

    with zmhost.open_model(BUNDLED) as model:
        heading("Recorded while a table is replayed")
        show_recording(model, BUNDLED.with_suffix(".csv"), show_table)
    return 0


if __name__ == "__main__":
    sys.exit(main())
