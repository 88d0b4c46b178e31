"""First light: instruments a diagram, asks what is observed, saves to a file, and loads again without a loss.

    ./dev run [diagram.ssd ...]

Opens the diagram that stands beside this file, or those named.
"""

from __future__ import annotations

import io
import shutil
import sys
import tempfile
import textwrap
import unicodedata
from collections.abc import Iterable, Sequence
from pathlib import Path
from typing import Any

import zmhost
from zmhost import Zelmar

from dashboard import bound, observe, show_dashboard
from recording import show_recording

BUNDLED = Path(__file__).with_name("greenhouse.ssd")
CHART_BLOCK = "Klima/Betriebsart"  # where the bundled diagram wants its chart
ACTIVITIES = ("Self", "Child", "Leaf", "Data")
FIRST, LAST = 6, 3  # rows that a long table shows
PortAnswer = tuple[str, int, str, bool, bool]  # block, port, name, observed by path, by handle
ChartAnswer = tuple[str, list[bool], bool]  # object, each activity observed, any
Answers = tuple[list[PortAnswer], list[ChartAnswer]]
WIDTH = max(72, min(shutil.get_terminal_size((100, 24)).columns, 120))


# ---- words and tables ---------------------------------------------------------------------------


def width(text: str) -> int:
    """The number of terminal columns that a text takes."""
    wide = sum(unicodedata.east_asian_width(c) in "WF" for c in text)
    return len(text) + wide - sum(bool(unicodedata.combining(c)) for c in text)


def fit(text: str, room: int, right: bool = False) -> str:
    """The text in exactly that many columns; where it is longer, its end, which tells most of a path."""
    if width(text) > room:
        while width(text) > room - 1:
            text = text[1:]
        text = "…" + text
    padding = " " * (room - width(text))
    return padding + text if right else text + padding


def show_table(head: Sequence[str], rows: Sequence[Sequence[Any]], noun: str) -> None:
    """A long table's first and last rows. Numbers stand to the right; the first column gives way."""
    left_out = len(rows) - FIRST - LAST
    shown = list(rows) if left_out <= 1 else [*rows[:FIRST], *rows[-LAST:]]
    texts = [[str(cell) for cell in row] for row in shown]
    rooms = [max(width(line[i]) for line in [list(head), *texts]) for i in range(len(head))]
    rooms[0] = max(12, min(rooms[0], WIDTH - 4 - sum(room + 2 for room in rooms[1:])))
    numeric = [isinstance(cell, (int, float)) for cell in shown[0]]

    def show(cells: Sequence[str]) -> None:
        print(("  " + "  ".join(map(fit, cells, rooms, numeric))).rstrip())

    print()
    show(head)
    show(["─" * room for room in rooms])
    for number, row in enumerate(texts):
        if left_out > 1 and number == FIRST:
            print(f"  … {left_out:,} more {noun}{'' if left_out == 1 else 's'} …")
        show(row)


def count(number: int, noun: str) -> str:
    return f"{number:,} {noun}{'' if number == 1 else 's'}"


def heading(text: str) -> None:
    print(f"\n{text}\n{'━' * width(text)}")


def yes(answer: bool) -> str:
    return "yes" if answer else "–"


# ---- the diagram --------------------------------------------------------------------------------


def local_path(block: zmhost.Block) -> str:
    """The path without the model name."""
    return block.path.partition("/")[2]


def show_diagram(model: zmhost.Model, file: Path) -> None:
    blocks = model.blocks
    depth = max((block.path.count("/") for block in blocks), default=0)
    ports = len(model.output_ports)
    heading(f"The diagram {model.name}")
    print(f"{file.name}: {count(len(blocks), 'block')} on {count(depth, 'level')}, {count(ports, 'output port')}.")
    if blocks:
        rows = [(local_path(b), b.kind, b.number, len(b.inputs), len(b.outputs)) for b in blocks]
        show_table(("block", "kind", "ZID", "in", "out"), rows, "block")


def add_chart(model: zmhost.Model) -> zmhost.Chart | None:
    """SSP knows no charts, so the script brings one where a file has brought none, for a block to carry."""
    if len(model) == 0 or model.charts:
        return next(iter(model.charts), None)
    block = model[CHART_BLOCK] if CHART_BLOCK in model else model.blocks[0]
    chart = block.add_chart("Mode")
    automatic = chart.add_state("Automatic")
    chart.add_state("Day", automatic)
    chart.add_state("Night", automatic)
    chart.add_state("Storm")
    chart.add_data("minutes")
    return chart


# ---- what is instrumented -----------------------------------------------------------------------


def port_signal(port: zmhost.Port, **more: Any) -> Any:
    return Zelmar.HMI.SignalSpecification(
        BlockPath_=port.block.path,
        ZID_=port.block.zid,
        OutputPortIndex_=port.index,
        CachedBlockHandle_=port.block.handle,
        CachedPortIdx_=port.index,
        **more,
    )


def chart_signal(chart: zmhost.Chart, target: zmhost.ChartObject, activity: str) -> Any:
    return Zelmar.HMI.SignalSpecification(
        BlockPath_=chart.block.path,
        ZID_=chart.block.zid,
        SignalName_=f"{chart.name}.{target.name}",
        DomainType_=target.domain_type,
        DomainParams_={"KZID": str(target.kzid), "Activity": activity},
    )


def instrument(signals: Any, model: zmhost.Model, chart: zmhost.Chart | None) -> None:
    """Every output port but each third, and the activity of all of the chart but one state."""
    for number, port in enumerate(model.output_ports, start=1):
        if number % 3 != 0:
            uuid = signals.getUUIDForBlock(port.block.handle, port.index, True)
            signals.add(port_signal(port, UUID=uuid, SignalName_=port.name))
    ports = signals.Count
    if chart is not None:
        for target in chart.objects:
            if target.name != "Storm":
                signals.add(chart_signal(chart, target, "Data" if target.kind == "data" else "Self"))
    heading("What is instrumented")
    print(f"{count(ports, 'output port')} (every third is left out, so that there is something to tell apart)")
    print(f"and {count(signals.Count - ports, 'chart object')}.")
    if chart is not None:
        print(f"SSP knows no charts: the script gave {local_path(chart.block)} the chart {chart.name}.")


# ---- what is observed ---------------------------------------------------------------------------


def port_answers(signals: Any, model: zmhost.Model) -> list[PortAnswer]:
    """For each output port: is it observed, asked by its description, and by its run-time handle?"""
    return [
        (
            local_path(port.block),
            port.index,
            port.name,
            signals.isPortObserved(port_signal(port)),
            signals.isGivenPortObserved(port.block.handle, port.index),
        )
        for port in model.output_ports
    ]


def chart_answers(signals: Any, chart: zmhost.Chart | None) -> list[ChartAnswer]:
    """For each object of the chart: is each activity observed, and is any?"""
    if chart is None:
        return []
    return [
        (
            target.name,
            [signals.isGivenKWActivityObserved(chart.block.zid, target.kzid, name) for name in ACTIVITIES],
            signals.isAnyKWActivityObserved(chart.block.zid, target.kzid),
        )
        for target in chart.objects
    ]


def ask(signals: Any, model: zmhost.Model, chart: zmhost.Chart | None) -> Answers:
    return port_answers(signals, model), chart_answers(signals, chart)


def show_answers(answers: Answers) -> None:
    ports, charts = answers
    heading("What is observed?")
    observed = sum(by_path for *_, by_path, _ in ports)
    print(f"{count(observed, 'output port')} of {len(ports):,}.")
    if ports:
        port_rows = [(path, k, name, yes(by_path), yes(by_handle)) for path, k, name, by_path, by_handle in ports]
        show_table(("block", "port", "name", "by path", "by handle"), port_rows, "port")
    if charts:
        chart_rows = [(name, *map(yes, each), yes(some)) for name, each, some in charts]
        show_table(("in the chart", *ACTIVITIES, "any"), chart_rows, "object")


# ---- saved and loaded ---------------------------------------------------------------------------


def plain(record: zmhost.Struct) -> dict[str, Any]:
    """A persisted record; of its domain parameters, whose order says nothing, the contents."""
    fields = record.to_dict()
    return {name: dict(v[0]) if isinstance(v, zmhost.StructArray) else v for name, v in fields.items()}


def show_saved(saved: zmhost.StructArray) -> None:
    heading("Saved")
    shape = "x".join(map(str, saved.dims))
    print(f'"Persistence" is a {shape} struct array; its {len(saved.fields)} fields are')
    print(textwrap.fill(", ".join(saved.fields), WIDTH - 4, initial_indent="  ", subsequent_indent="  "))
    rows = [
        (r["BlockPath_"], int(r["OutputPortIndex_"]), r["SignalName_"], r["DomainType_"], r["UUID"][:8])
        for r in saved
    ]
    if rows:
        show_table(("BlockPath_", "port", "SignalName_", "DomainType_", "UUID"), rows, "record")


def differences(before: Iterable[Any], after: Iterable[Any]) -> list[str]:
    return [f"  {former!r}\n  became {now!r}" for former, now in zip(before, after) if former != now]


def compare(saved: zmhost.StructArray, loaded: zmhost.StructArray, asked: Answers, again: Answers) -> bool:
    """Shows what became of the records and of the answers; true when something was lost."""
    heading("Loaded into a fresh collection")
    lost = differences(map(plain, saved), map(plain, loaded))
    lost += differences([*asked[0], *asked[1]], [*again[0], *again[1]])
    if len(saved) == len(loaded) and not lost:
        print(f"{count(len(loaded), 'record')} came back the same in all {len(loaded.fields)} fields, and every")
        print("question above has the same answer. Nothing was lost.")
        return False
    print(f"{len(saved)} records were saved, {len(loaded)} loaded; what differs:")
    print("\n".join(lost[:FIRST]))
    return True


# ---- kept in a file -----------------------------------------------------------------------------


def show_rename(model: zmhost.Model) -> None:
    """A signal knows its block by ZID, so that it follows the diagram."""
    signals = model.observers.Signals
    if signals.Count == 0:
        return
    block = model.find_by_zid(signals.get(1).ZID_)
    assert block is not None
    heading("The diagram changes")
    former = block.path
    block.rename(block.name + " (renamed)")
    print(f"{former} becomes {block.path},")
    print(f"and the first signal is saved with the path {signals.Persistence[0]['BlockPath_']}.")


def observed_state(model: zmhost.Model) -> list[Any]:
    """Everything that is to come back from a file: both collections' records, and the answers to every question."""
    observers = model.observers
    chart = next(iter(model.charts), None)
    ports, charts = ask(observers.Signals, model, chart)
    records = [plain(record) for record in (*observers.Signals.Persistence, *observers.Clients.Persistence)]
    return [*records, *bound(observers.Clients), *ports, *charts]


def show_file(model: zmhost.Model, saved: Path) -> bool:
    """Saves the model, opens the file in its place, and compares; true when something was lost."""
    heading("Saved to a file, and opened again")
    before = observed_state(model)
    blocks = len(model)
    model.save(saved)
    model.close()
    with zmhost.open_model(saved) as again:
        after = observed_state(again)
        signals, clients = again.observers.Signals.Count, again.observers.Clients.Count
    lost = differences(before, after)
    print(f"{saved} has {saved.stat().st_size:,} bytes.")
    if len(before) == len(after) and len(again) == blocks and not lost:
        print(f"{count(blocks, 'block')}, {count(signals, 'signal')} and {count(clients, 'client')} came back from it;")
        print("every widget is bound and every answer is the same. Nothing was lost.")
        return False
    print("What differs:")
    print("\n".join(lost[:FIRST]))
    return True


def tour(file: Path) -> bool:
    """Everything on one diagram; true when something was lost."""
    with zmhost.open_model(file) as model:
        show_diagram(model, file)
        chart = add_chart(model)
        signals = Zelmar.HMI.InstrumentedSignals(model.name)
        instrument(signals, model, chart)
        answers = ask(signals, model, chart)
        show_answers(answers)
        saved = signals.Persistence
        show_saved(saved)
        fresh = Zelmar.HMI.InstrumentedSignals(model.name)
        fresh.Persistence = saved
        loss = compare(saved, fresh.Persistence, answers, ask(fresh, model, chart))
        if file == BUNDLED:  # the one that has a table beside it
            heading("Recorded while a table is replayed")
            show_recording(model, file.with_suffix(".csv"), show_table)
        observe(model, fresh)
        with zmhost.editor.Editor(model):  # follows what becomes of the diagram
            show_rename(model)
            heading("A dashboard")
            show_dashboard(model, show_table)
        folder = Path(tempfile.gettempdir())
        picture = folder / f"{file.stem}.svg"
        heading("A picture")
        model.draw(picture)
        print(f"The diagram, with what is observed, is drawn in {picture}.")
        return show_file(model, folder / f"{file.stem}.ssp") or loss


def main(files: list[Path]) -> int:
    if isinstance(sys.stdout, io.TextIOWrapper):
        sys.stdout.reconfigure(errors="replace")  # for a terminal that lacks a letter
    try:
        losses = [tour(file) for file in files or [BUNDLED]]
    except zmhost.HostError as error:
        print(f"first_light: {error}", file=sys.stderr)
        return 1
    return 1 if any(losses) else 0


if __name__ == "__main__":
    sys.exit(main([Path(name) for name in sys.argv[1:]]))
