"""Live values: a simulation runs, and a web page shows its dashboard and its diagram with values.

    ./dev live [MODEL [TABLE]]

Replays the table over the model again and again, at a visible pace, until Ctrl-C. Without arguments, the
bundled greenhouse and its day. The table of a model is the .csv beside it. A model that has brought streaming
clients shows those; any other gets a dashboard of four widgets.
"""

from __future__ import annotations

import sys
from pathlib import Path
from typing import Any

import zmhost
from zmhost import Zelmar

BUNDLED = Path(__file__).with_name("greenhouse.ssd")
# The widgets of the dashboard: observer type, title, port as tables name it, updates a second.
GREENHOUSE = (
    ("gauge", "Air temperature", "Klima/Luftvolumen:Temperatur", 10),
    ("lamp", "Ventilation", "Klima/Вентиляция/Вентилятор:расход", 10),
    ("display", "Carbon dioxide", "Klima/Luftvolumen:CO₂", 4),
    ("trend", "Air temperature over time", "Klima/Luftvolumen:Temperatur", 0),
)
KINDS = ("gauge", "lamp", "display", "trend")
SECONDS_A_ROW = 0.25


def table_columns(table: Path) -> list[str]:
    with table.open(encoding="utf-8") as file:
        return file.readline().rstrip("\r\n").split(",")[1:]


def rows_a_second(table: Path) -> float:
    """The pace at which a row of the table takes a quarter of a second."""
    with table.open(encoding="utf-8") as file:
        times = [float(line.split(",", 1)[0]) for line in file.readlines()[1:] if line.strip()]
    intervals = len(times) - 1
    return (times[-1] - times[0]) / intervals / SECONDS_A_ROW if intervals > 0 and times[-1] > times[0] else 1.0


def port_named(model: zmhost.Model, column: str) -> zmhost.Port | None:
    try:
        return model.port(column)
    except LookupError:
        return None


def signal_of(signals: Any, port: zmhost.Port) -> Any:
    return Zelmar.HMI.SignalSpecification(
        UUID=signals.getUUIDForBlock(port.block.handle, port.index, True),
        BlockPath_=port.block.path,
        ZID_=port.block.zid,
        OutputPortIndex_=port.index,
        CachedBlockHandle_=port.block.handle,
        CachedPortIdx_=port.index,
        SignalName_=port.name,
    )


def client_of(widget: zmhost.Block, kind: str, signal: Any, rate: int) -> Any:
    return Zelmar.HMI.SignalClient(
        UUID=f"{kind}-{widget.zid}",
        SourceModel_=widget.path.partition("/")[0],
        ModelPath_=[widget.path],
        ModelPathZID_=[widget.zid],
        SignalUUID_=signal.UUID,
        ObserverType_=kind,
        UpdateRate_=rate,
    )


def add_dashboard(model: zmhost.Model, table: Path) -> None:
    """Observes the table's ports, and adds a dashboard with one widget of each kind."""
    signals = Zelmar.HMI.InstrumentedSignals(model.name)
    clients = Zelmar.HMI.StreamingClients(model.name)
    columns = table_columns(table)
    by_column = {}
    for column in columns:
        port = port_named(model, column)
        if port is not None:
            by_column[column] = signal_of(signals, port)
            signals.add(by_column[column])
    wanted = [each for each in GREENHOUSE if each[2] in by_column]
    wanted = wanted or [(kind, column, column, 10) for kind, column in zip(KINDS, by_column)]
    board = model.root.add("Dashboard", "system") if "Dashboard" not in model else model["Dashboard"]
    for kind, title, column, rate in wanted:
        clients.add(client_of(board.add(title.replace("/", " ").replace(":", " ")), kind, by_column[column], rate))
    model.observers = Zelmar.HMI.ModelObservers.createFromSignalsAndClients(signals, clients)


def main(arguments: list[str]) -> int:
    file = Path(arguments[0]) if arguments else BUNDLED
    table = Path(arguments[1]) if len(arguments) > 1 else file.with_suffix(".csv")
    with zmhost.open_model(file) as model:
        if model.observers is None or model.observers.Clients.Count == 0:
            add_dashboard(model, table)
        run = model.simulate(table, pace=rows_a_second(table), loop=True)
        with run, run.serve() as server:
            print(f"{model.name} runs over {table.name}, again and again. Open {server.url}")
            print("Viewers that speak the Foxglove protocol connect to " + server.url.replace("http", "ws", 1))
            print("Ctrl-C ends it.", flush=True)
            try:
                for _ in run:
                    pass
            except KeyboardInterrupt:
                print()
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
