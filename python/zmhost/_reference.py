"""Writes the reference of the classes that scripts see, from the classes that are registered with the host.

    python3 -m zmhost._reference > FILE
"""

from __future__ import annotations

import inspect
import sys
from collections.abc import Iterator
from typing import Any

from zmhost import _classes, _zmhost


def _cell(text: str) -> str:
    return text.replace("|", "\\|").replace("\n", " ")


def _sentence(member: Any) -> str:
    """The last paragraph of the help, which describes the method; the first line is its signature."""
    paragraphs = (inspect.getdoc(member) or "").split("\n\n")
    return paragraphs[-1] if len(paragraphs) > 1 else ""


def _class_page(full_name: str) -> Iterator[str]:
    description = _zmhost.describe_class(full_name)
    made = _classes.class_named(full_name)
    yield f"## {full_name}\n"
    if description.properties:
        yield "| property | type | access |\n|---|---|---|"
        for each in description.properties:
            yield f"| `{each.name}` | `{each.type}` | {'read' if each.read_only else 'read and write'} |"
        yield ""
    if description.methods:
        yield "| method | description |\n|---|---|"
        for method in description.methods:
            signature = inspect.signature(getattr(made, method.name))
            shown = signature.replace(parameters=[p for p in signature.parameters.values() if p.name != "self"])
            yield f"| `{_cell(method.name + str(shown))}` | {_cell(_sentence(getattr(made, method.name)))} |"
        yield ""


def _namespace_pages(name: str) -> Iterator[str]:
    for class_name in sorted(_zmhost.classes(name)):
        yield from _class_page(f"{name}.{class_name}")
    for inner in _zmhost.inner_namespaces(name):
        yield from _namespace_pages(f"{name}.{inner}")


def main() -> int:
    print("# Classes\n\nGenerated from the classes that are registered with the host. Indices count from 1.\n")
    for name in _classes.top_level_names():
        print("\n".join(_namespace_pages(name)))
    return 0


if __name__ == "__main__":
    sys.exit(main())
