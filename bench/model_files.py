"""What it costs to instrument every output port of a large diagram, save the model and open it again.

    ./dev bench files [--small 1000 3000] [--large 100000 300000]

The numbers are blocks and output ports. Each size runs in a process of its own; the small one several times,
of which the fastest counts. The last column is the time for one signal in the large diagram over that in the
small one.

Opening the archive and saving it again are compared with a floor: the same bytes through bare libxml2, libzip
and nlohmann-json, without a model (bench/FileFloor.cpp).
"""

from __future__ import annotations

import argparse
import json
import resource
import subprocess
import sys
import tempfile
import time
from collections.abc import Callable
from pathlib import Path
from typing import Any

PROJECT = Path(__file__).parents[1]
GENERATOR = PROJECT / "examples" / "large_diagram.py"
FLOOR = PROJECT / "build" / "gcc" / "bin" / "zm_file_floor"
REPEATS = 5
Seconds = dict[str, float]


# ---- one run ------------------------------------------------------------------------------------


def measure(diagram: Path) -> None:
    """Runs the stages on one diagram and writes what they took to stdout, as JSON."""
    import zmhost
    from zmhost import Zelmar

    seconds: Seconds = {}

    def timed(stage: str, work: Callable[[], Any]) -> Any:
        start = time.perf_counter()
        result = work()
        seconds[stage] = time.perf_counter() - start
        return result

    def spec(port: zmhost.Port) -> Any:
        block = port.block
        return Zelmar.HMI.SignalSpecification(
            BlockPath_=block.path,
            ZID_=block.zid,
            OutputPortIndex_=port.index,
            SignalName_=port.name,
            CachedBlockHandle_=block.handle,
            CachedPortIdx_=port.index,
        )

    def instrument(model: zmhost.Model) -> Any:
        signals = Zelmar.HMI.InstrumentedSignals(model.name)
        for port in model.output_ports:
            signals.add(spec(port))
        return signals

    def found(model: zmhost.Model) -> int:
        is_observed = model.observers.Signals.isPortObserved
        return sum(is_observed(spec(port)) for port in model.output_ports)

    saved = diagram.with_suffix(".ssp")
    again = diagram.with_name("again.ssp")
    with timed("open the description", lambda: zmhost.open_model(diagram)) as model:
        ports = len(model.output_ports)
        signals = timed("instrument every port", lambda: instrument(model))
        model.observers = zmhost.call("Zelmar.HMI.ModelObservers.createFromSignalsAndClients", signals, None)
        timed("save", lambda: model.save(saved))
        del signals
    with timed("open the archive", lambda: zmhost.open_model(saved)) as model:
        count = timed("find every port", lambda: found(model))
        timed("save again", lambda: model.save(again))
    if count != ports or saved.read_bytes() != again.read_bytes():
        sys.exit(f"{ports} ports were instrumented, {count} found again; the second file differs")
    json.dump({"seconds": seconds, "peak": resource.getrusage(resource.RUSAGE_SELF).ru_maxrss}, sys.stdout)


# ---- the table ----------------------------------------------------------------------------------


def run(folder: Path, blocks: int, outputs: int) -> dict[str, Any]:
    diagram = folder / f"{outputs}.ssd"
    size = ["--blocks", str(blocks), "--outputs", str(outputs)]
    subprocess.run([sys.executable, GENERATOR, diagram, *size], check=True)
    command = [sys.executable, "-m", "zmhost", __file__, "--measure", diagram]
    result = subprocess.run(command, stdout=subprocess.PIPE, text=True)
    if result.returncode != 0:
        sys.exit(result.returncode)
    measured: dict[str, Any] = json.loads(result.stdout)
    return measured


def run_floor(folder: Path, outputs: int) -> dict[str, Any]:
    command = [FLOOR, folder / f"{outputs}.ssp", folder / "floor.ssp"]
    measured: dict[str, Any] = json.loads(subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout)
    return measured


def show(small: Seconds, large: Seconds, small_count: int, large_count: int) -> None:
    print(f"{'stage':24}{'seconds':>10}{f'µs a signal at {small_count:,}':>24}{f'at {large_count:,}':>12}{'ratio':>8}")
    for stage in large:
        each_small, each_large = small[stage] / small_count * 1e6, large[stage] / large_count * 1e6
        print(f"{stage:24}{large[stage]:10.2f}{each_small:24.1f}{each_large:12.1f}{each_large / each_small:8.2f}")


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--small", type=int, nargs=2, default=(1_000, 3_000), metavar=("BLOCKS", "PORTS"))
    parser.add_argument("--large", type=int, nargs=2, default=(100_000, 300_000), metavar=("BLOCKS", "PORTS"))
    parser.add_argument("--measure", type=Path, help=argparse.SUPPRESS)
    options = parser.parse_args()
    if options.measure is not None:
        measure(options.measure)
        return
    with tempfile.TemporaryDirectory() as folder:
        runs = [run(Path(folder), *options.small)["seconds"] for _ in range(REPEATS)]
        large = run(Path(folder), *options.large)
        floor = run_floor(Path(folder), options.large[1])
        megabytes = [(file.name, file.stat().st_size / 1e6) for file in Path(folder).glob(f"{options.large[1]}.ss?")]
    small = {stage: min(each[stage] for each in runs) for stage in runs[0]}
    small["all"] = min(sum(each.values()) for each in runs)
    large["seconds"]["all"] = sum(large["seconds"].values())
    show(small, large["seconds"], options.small[1], options.large[1])
    sizes = ", ".join(f"{name} has {size:.1f} MB" for name, size in sorted(megabytes))
    files = large["seconds"]["open the archive"] + large["seconds"]["save again"]
    print(
        f"\nOpening the archive and saving it take {files:.2f} s, {files / floor['seconds']:.1f} times the floor of "
        f"{floor['seconds']:.2f} s, which needs {floor['peak'] / 1024:.0f} MiB."
    )
    print(f"At most {large['peak'] / 1024:.0f} MiB of memory were in use; {sizes}.")


if __name__ == "__main__":
    main()
