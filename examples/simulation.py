"""A simulation: a function computes the heating, a table the rest, and the loop reads the latest values.

    ./dev run examples/simulation.py
"""

from __future__ import annotations

import sys
from pathlib import Path

import zmhost
from zmhost import Zelmar

BUNDLED = Path(__file__).with_name("greenhouse.ssd")
AIR = "Klima/Luftvolumen:Temperatur"
QUARTER = 900.0  # seconds: the table has a row for each quarter of an hour


def observe(model: zmhost.Model, port: zmhost.Port) -> None:
    """Makes the port an instrumented signal of the model."""
    signals = Zelmar.HMI.InstrumentedSignals(model.name)
    signals.add(
        Zelmar.HMI.SignalSpecification(
            UUID="air", BlockPath_=port.block.path, ZID_=port.block.zid, OutputPortIndex_=port.index
        )
    )
    model.observers = Zelmar.HMI.ModelObservers.createFromSignalsAndClients(
        signals, Zelmar.HMI.StreamingClients(model.name)
    )


def controller(time: float, inputs: dict[str, float]) -> dict[str, float]:
    """The climate controller: heats below 18 degrees, more the colder it is."""
    return {"heizen": max(0.0, min(100.0, 20.0 * (18.0 - inputs.get("Istwert", 18.0))))}


def main() -> int:
    with zmhost.open_model(BUNDLED) as model:
        air = next(port for port in model["Klima/Luftvolumen"].outputs if port.name == "Temperatur")
        observe(model, air)
        sources = [BUNDLED.with_suffix(".csv"), {"Klima/Klimaregler": controller}]
        with model.simulate(sources, progress=False) as run:
            for time in run:
                if time % (16 * QUARTER) == 0:
                    heating = run.latest("Klima/Klimaregler:heizen")
                    print(f"{int(time // 3600):02}:00   air {run.latest('air'):5.1f} °C   heating {heating:5.1f} %")
            history = run.history("air")
        print(f"{len(history.times)} samples were kept; the coldest was {min(history.values):.1f} °C.")
    return 0


if __name__ == "__main__":
    sys.exit(main())
