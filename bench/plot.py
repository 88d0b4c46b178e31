"""Draws the results of zm_bench: for each operation one picture of time against number of signals, both logarithmic.

usage: plot.py RESULTS.json FOLDER
"""

import json
import re
import sys
from collections import defaultdict
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402  (the backend is chosen first)


def series(results):
    """Operation -> variant -> list of (signals, nanoseconds)."""
    operations = defaultdict(lambda: defaultdict(list))
    for run in results["benchmarks"]:
        operation, variant, size = run["name"].split("/")[:3]
        operations[operation][variant].append((int(size), run["real_time" if "manual_time" in run["name"] else "cpu_time"]))
    return operations


def draw(operation, variants, file):
    figure, axes = pyplot.subplots(figsize=(6, 4), layout="constrained")
    for variant, points in variants.items():
        axes.loglog(*zip(*sorted(points)), marker="o", label=variant)
    axes.set(title=operation, xlabel="signals", ylabel="nanoseconds")
    axes.grid(which="both", alpha=0.3)
    axes.legend()
    figure.savefig(file)
    pyplot.close(figure)


def main(results, folder):
    folder = Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    for operation, variants in series(json.loads(Path(results).read_text())).items():
        if any(len(points) > 1 for points in variants.values()):
            file = folder / (re.sub(r"\W+", "-", operation) + ".svg")
            draw(operation, variants, file)
            print(file)


if __name__ == "__main__":
    main(*sys.argv[1:])
