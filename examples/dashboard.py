"""A dashboard: widgets bound to signals follow when their model is renamed.

    ./dev run examples/dashboard.py

The tour shows this as one of its sections; here it stands alone, with the bundled diagram.
"""

from __future__ import annotations

import sys
from collections.abc import Callable, Sequence
from pathlib import Path
from typing import Any

import zmhost
from zmhost import Zelmar

BUNDLED = Path(__file__).with_name("greenhouse.ssd")
WIDGETS = ("Gauge", "Lamp", "Trend", "Display")
ShowTable = Callable[[Sequence[str], Sequence[Sequence[Any]], str], None]


def elements(collection: Any) -> list[Any]:
    return [collection.get(index) for index in range(1, collection.Count + 1)]


def observe(model: zmhost.Model, signals: Any) -> None:
    """Makes the signals those of the model, with no clients yet: they follow its edits and are saved with it."""
    clients = Zelmar.HMI.StreamingClients(model.name)
    model.observers = Zelmar.HMI.ModelObservers.createFromSignalsAndClients(signals, clients)


def unused(system: zmhost.Block, name: str) -> str:
    """The name, with a number behind it where it is taken."""
    taken = {child.name for child in system.children}
    return next(each for each in (name, *(f"{name} {n}" for n in range(2, len(taken) + 3))) if each not in taken)


def add_widgets(model: zmhost.Model) -> zmhost.Block:
    """One widget of each kind, bound to a signal each: the first ones on output ports. Gives the dashboard."""
    on_ports = [signal for signal in elements(model.observers.Signals) if not signal.DomainType_]
    board = model.root.add(unused(model.root, "Dashboard"), "system")
    for kind, signal in zip(WIDGETS, on_ports):
        widget = board.add(kind)
        model.observers.Clients.add(
            Zelmar.HMI.SignalClient(
                SourceModel_=model.name,
                ModelPath_=[widget.path],
                ModelPathZID_=[widget.zid],
                SignalUUID_=signal.UUID,
                ObserverType_=kind.lower(),
            )
        )
    return board


def bound(clients: Any) -> list[tuple[str, str]]:
    """The widget and the signal of each client, as the diagram has them now; no signal is an empty text."""
    aligned: Any = zmhost.call("getAlignedObservers", clients)
    observers: list[Any] = [aligned] if isinstance(aligned, zmhost.HostObject) else list(aligned or [])
    return [
        (client.ModelPath_[0], f"{info.BlockPath_} : {int(info.OutputPortIndex_)}" if info is not None else "")
        for client, info in ((client, client.SignalInfo) for client in observers)
    ]


def show_dashboard(model: zmhost.Model, show_table: ShowTable) -> None:
    """Binds widgets to the model's signals, renames the model, and shows that both collections follow."""
    board = add_widgets(model)
    clients = model.observers.Clients
    print(f"{clients.Count} widgets were added to the diagram, in {board.path}, and bound to signals.")
    if clients.Count == 0:
        return
    show_table(("widget", "shows"), bound(clients), "widget")
    former = model.name
    model.rename(f"{former} 2")
    board.rename(unused(model.root, "Control room"))
    signals, clients = model.observers.Signals, model.observers.Clients
    print(f"\nThe model {former} becomes {model.name}, its dashboard {board.path}.")
    print(f'The signals belong to "{signals.Model}" now, the clients to "{clients.Model}":')
    show_table(("widget", "shows"), bound(clients), "widget")


def main() -> int:
    from first_light import heading, instrument, show_table

    with zmhost.open_model(BUNDLED) as model:
        signals = Zelmar.HMI.InstrumentedSignals(model.name)
        instrument(signals, model, None)
        observe(model, signals)
        heading("A dashboard")
        with zmhost.editor.Editor(model):
            show_dashboard(model, show_table)
    return 0


if __name__ == "__main__":
    sys.exit(main())
