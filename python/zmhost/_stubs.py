"""Writes type stubs for the classes that are registered with the host, so that type checkers know them.

    python3 -m zmhost._stubs python/zmhost

`Zelmar` is the stub package `_zelmar` for type checkers. The stubs are checked in; a test compares them with what
this writes.
"""

from __future__ import annotations

import inspect
import keyword
import sys
from collections.abc import Iterator
from pathlib import Path
from typing import Any

from zmhost import _classes, _sequences, _zmhost

_PYTHON_TYPES = {
    "unicodeString": "str",
    "asciiString": "str",
    "uint32 scalar": "int",
    "int32 scalar": "int",
    "double scalar": "float",
    "logical scalar": "bool",
    "any": "Any",
}
_HEADER = '''"""Generated from the classes that are registered with the host."""

from collections.abc import Iterator
from typing import Any, overload

from zmhost._classes import HostObject
'''


def _python_type(host_type: str, namespace: str) -> str:
    if host_type in _PYTHON_TYPES:
        return _PYTHON_TYPES[host_type]
    inside, _, name = host_type.rpartition(".")
    return name if inside == namespace else "Any"


def _parameters(signature: inspect.Signature, namespace: str) -> Iterator[str]:
    parameters = [p for p in signature.parameters.values() if p.name != "self" and p.kind is not p.VAR_KEYWORD]
    for parameter in parameters:
        name = f"{parameter.name}_" if keyword.iskeyword(parameter.name) else parameter.name
        default = "" if parameter.default is parameter.empty else " = ..."
        yield f"{name}: {_python_type(str(parameter.annotation), namespace)}{default}"
    if parameters:
        yield "/"


def _method(method: _zmhost.MethodDescription, made: Any, namespace: str) -> Iterator[str]:
    function = inspect.getattr_static(made, method.name)
    is_static = isinstance(function, staticmethod)
    signature = (function.__func__ if is_static else function).__signature__
    outputs = [_python_type(output, namespace) for output in method.outputs]
    result = "None" if not outputs else outputs[0] if len(outputs) == 1 else f"tuple[{', '.join(outputs)}]"
    parameters = [*([] if is_static else ["self"]), *_parameters(signature, namespace)]
    if is_static:
        yield "    @staticmethod"
    yield f"    def {method.name}({', '.join(parameters)}) -> {result}: ..."


def _constructor(description: _zmhost.ClassDescription, made: Any, namespace: str) -> str:
    parameters = ["self", *_parameters(made.__init__.__signature__, namespace)]
    settable = [p for p in description.properties if not p.read_only]
    if settable:
        parameters.append("*")
        parameters += [f"{p.name}: {_python_type(p.type, namespace)} = ..." for p in settable]
    return f"    def __init__({', '.join(parameters)}) -> None: ..."


def _sequence_members(description: _zmhost.ClassDescription, namespace: str) -> Iterator[str]:
    """The elements are of the class that "add" takes."""
    add = next((method for method in description.methods if method.name == "add"), None)
    element = _python_type(add.inputs[-1], namespace) if add is not None else "Any"
    yield "    def __len__(self) -> int: ..."
    yield f"    def __iter__(self) -> Iterator[{element}]: ..."
    yield "    def __contains__(self, item: object) -> bool: ..."
    yield "    @overload"
    yield f"    def __getitem__(self, index: int) -> {element}: ..."
    yield "    @overload"
    yield f"    def __getitem__(self, index: slice) -> list[{element}]: ..."


def _class(full_name: str) -> Iterator[str]:
    namespace, _, name = full_name.rpartition(".")
    description = _zmhost.describe_class(full_name)
    made = _classes.class_named(full_name)
    yield f"class {name}(HostObject):"
    yield _constructor(description, made, namespace)
    for each in description.properties:
        read_type = _python_type(each.type, namespace)
        yield "    @property"
        yield f"    def {each.name}(self) -> {read_type}: ..."
        if not each.read_only:
            yield f"    @{each.name}.setter"
            yield f"    def {each.name}(self, value: {read_type}) -> None: ..."
    for method in description.methods:
        yield from _method(method, made, namespace)
    names = {p.name for p in description.properties} | {m.name for m in description.methods}
    if {_sequences.REQUIRED_PROPERTY, _sequences.REQUIRED_METHOD} <= names:
        yield from _sequence_members(description, namespace)


def _write_namespace(name: str, folder: Path) -> None:
    folder.mkdir(parents=True, exist_ok=True)
    lines = [_HEADER]
    for inner in _zmhost.inner_namespaces(name):
        lines.append(f"from . import {inner} as {inner}\n")
        _write_namespace(f"{name}.{inner}", folder / inner)
    for class_name in _zmhost.classes(name):
        lines += ["", *_class(f"{name}.{class_name}")]
    (folder / "__init__.pyi").write_text("\n".join(lines) + "\n", encoding="utf-8")


def main(folder: str) -> int:
    for name in _classes.top_level_names():
        _write_namespace(name, Path(folder) / f"_{name.lower()}")
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
