"""Writes a large diagram, the same one for the same numbers.

    python3 examples/large_diagram.py FILE.ssd [--blocks 100000] [--outputs 300000] [--seed 1]

Systems stand six levels deep; half the blocks have names outside ASCII.
"""

from __future__ import annotations

import argparse
import random
from collections.abc import Iterator
from pathlib import Path
from xml.sax.saxutils import quoteattr

LEVELS = 6
ASCII_WORDS = ("Pump", "Valve", "Mixer", "Sensor", "Limiter", "Controller", "Filter", "Drive", "Tank", "Gain")
OTHER_WORDS = ("Kühler", "Größe", "Насос", "Клапан", "ポンプ", "制御器", "ελεγκτής", "pompă", "café", "𠮷野")
PORT_WORDS = ("flow", "temperature", "Druck", "ω", "скорость", "温度")


def share(total: int, parts: int) -> list[int]:
    """The total in so many parts that differ by at most one."""
    return [total // parts + (i < total % parts) for i in range(parts)]


class Diagram:
    def __init__(self, blocks: int, outputs: int, seed: int) -> None:
        self._random = random.Random(seed)
        self._blocks = blocks
        self._outputs = share(outputs, blocks) if blocks > 0 else []
        self._random.shuffle(self._outputs)
        self._made = 0

    def lines(self) -> Iterator[str]:
        yield '<?xml version="1.0" encoding="UTF-8"?>'
        yield (
            '<ssd:SystemStructureDescription name="large" version="1.0"'
            ' xmlns:ssc="http://ssp-standard.org/SSP1/SystemStructureCommon"'
            ' xmlns:ssd="http://ssp-standard.org/SSP1/SystemStructureDescription">'
        )
        yield f'<ssd:System name="large {self._blocks}">'
        yield from self._contents(self._blocks, 1)
        yield "</ssd:System>"
        yield "</ssd:SystemStructureDescription>"

    def _contents(self, blocks: int, level: int) -> Iterator[str]:
        """The elements of a system that holds so many blocks at all depths, and what connects them."""
        if blocks == 0:
            return
        children = blocks if level == LEVELS else max(1, round(blocks ** (1 / (LEVELS + 1 - level))))
        inside = share(blocks - children, children)
        names: list[str] = []
        yield "<ssd:Elements>"
        for below in inside:
            names.append(self._name())
            yield from self._block(names[-1], below, level)
        yield "</ssd:Elements>"
        if len(names) > 1:
            yield "<ssd:Connections>"
            for start, end in zip(names, names[1:]):
                yield (
                    f"<ssd:Connection startElement={quoteattr(start)} startConnector={quoteattr(self._port(1))}"
                    f' endElement={quoteattr(end)} endConnector="in"/>'
                )
            yield "</ssd:Connections>"

    def _block(self, name: str, below: int, level: int) -> Iterator[str]:
        outputs = self._outputs[self._made - 1]
        element = "System" if below > 0 else "Component"
        source = "" if below > 0 else ' source="resources/block.fmu"'
        yield f"<ssd:{element} name={quoteattr(name)}{source}>"
        yield '<ssd:Connectors><ssd:Connector name="in" kind="input"><ssc:Real/></ssd:Connector>'
        for number in range(1, outputs + 1):
            name = quoteattr(self._port(number))
            yield f'<ssd:Connector name={name} kind="output"><ssc:Real unit="K"/></ssd:Connector>'
        yield "</ssd:Connectors>"
        yield from self._contents(below, level + 1)
        yield f"</ssd:{element}>"

    def _name(self) -> str:
        self._made += 1
        words = OTHER_WORDS if self._made % 2 == 0 else ASCII_WORDS
        return f"{self._random.choice(words)} {self._made}"

    @staticmethod
    def _port(number: int) -> str:
        return f"{PORT_WORDS[(number - 1) % len(PORT_WORDS)]} {number}"


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("file", type=Path)
    parser.add_argument("--blocks", type=int, default=100_000)
    parser.add_argument("--outputs", type=int, default=300_000)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    with open(options.file, "w", encoding="utf-8") as file:
        for line in Diagram(options.blocks, options.outputs, options.seed).lines():
            print(line, file=file)


if __name__ == "__main__":
    main()
