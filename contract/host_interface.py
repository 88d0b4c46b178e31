"""Reads what host/ declares: every function and virtual operation that a host implements, with its tags.

The generated files of the contract kit and of the skeleton host, and the test that breaks one operation after
the other, all begin here, so that a declaration that is added to host/ cannot be forgotten in any of them.

    host_interface.py list FOLDER        one line an operation: its name, tags, and where it is declared
    host_interface.py check-tags FOLDER  complains about an operation without tags
"""

from __future__ import annotations

import dataclasses
import pathlib
import re
import sys

import clang.cindex as ci

LIBRARY = "/usr/lib/llvm-16/lib/libclang.so.1"
SPECIAL = (ci.CursorKind.CONSTRUCTOR, ci.CursorKind.DESTRUCTOR)
TAG = re.compile(r"\[((?:owned|borrowed|consumed)(?:: [\w, ]+)?|throws|no-throw|null ok)\]")


@dataclasses.dataclass
class Parameter:
    name: str
    type: str


@dataclasses.dataclass
class Operation:
    """One function, constructor, destructor or virtual operation."""

    name: str  # unique: overloads are told apart by the parameters that the first of them lacks
    qualified: str
    header: str
    line: int
    kind: str  # function, static, method, constructor, destructor
    owner: str  # class with its namespace, or empty
    result: str
    parameters: list[Parameter]
    tags: list[str]
    comment: str
    symbols: list[str]  # mangled names; none for a pure virtual operation
    is_virtual: bool
    is_pure: bool
    is_const: bool
    is_noexcept: bool
    access: str
    slot: int | None = None  # index in the virtual table

    @property
    def own_name(self) -> str:
        return self.qualified.rpartition("::")[2]


def _parse(folder: pathlib.Path) -> ci.TranslationUnit:
    if not ci.Config.loaded:
        ci.Config.set_library_file(LIBRARY)
    headers = sorted(path.name for path in (folder / "host").glob("*.hpp"))
    main = str(folder / "all.cpp")  # need not exist
    text = "".join(f'#include "host/{name}"\n' for name in headers)
    unit = ci.Index.create().parse(
        main, ["-std=c++20", f"-I{folder}"], unsaved_files=[(main, text)]
    )
    errors = [str(each) for each in unit.diagnostics if each.severity >= ci.Diagnostic.Error]
    if errors:
        raise SystemExit("\n".join(errors))
    return unit


def _qualified(cursor: ci.Cursor) -> str:
    names = []
    while cursor is not None and cursor.kind != ci.CursorKind.TRANSLATION_UNIT:
        names.append(cursor.spelling)
        cursor = cursor.semantic_parent
    return "::".join(reversed(names))


def _tokens(cursor: ci.Cursor) -> list[str]:
    return [token.spelling for token in cursor.get_tokens()]


def _is_noexcept(cursor: ci.Cursor) -> bool:
    kind = cursor.exception_specification_kind
    return kind == ci.ExceptionSpecificationKind.BASIC_NOEXCEPT or cursor.kind == ci.CursorKind.DESTRUCTOR


def _symbols(cursor: ci.Cursor) -> list[str]:
    if cursor.is_pure_virtual_method():
        return []
    name = cursor.mangled_name
    if cursor.kind == ci.CursorKind.CONSTRUCTOR:
        return [re.sub(r"C\d(?=E)", "C1", name), re.sub(r"C\d(?=E)", "C2", name)]
    if cursor.kind == ci.CursorKind.DESTRUCTOR:
        return [re.sub(r"D\d(?=E)", "D1", name), re.sub(r"D\d(?=E)", "D2", name)]
    return [name]


def _is_exported_class(cursor: ci.Cursor) -> bool:
    return cursor.kind == ci.CursorKind.CLASS_DECL and any(
        child.kind == ci.CursorKind.VISIBILITY_ATTR for child in cursor.get_children()
    )


def _operation(cursor: ci.Cursor, folder: pathlib.Path) -> Operation:
    parent = cursor.semantic_parent
    member = parent.kind == ci.CursorKind.CLASS_DECL
    if cursor.kind == ci.CursorKind.CONSTRUCTOR:
        kind = "constructor"
    elif cursor.kind == ci.CursorKind.DESTRUCTOR:
        kind = "destructor"
    else:
        kind = "function" if not member else "static" if cursor.is_static_method() else "method"
    comment = " ".join(
        line.strip().removeprefix("///").removeprefix("//").strip()
        for line in (cursor.raw_comment or "").splitlines()
    )
    return Operation(
        name="", qualified=_qualified(cursor),
        header=str(pathlib.Path(cursor.location.file.name).relative_to(folder)), line=cursor.location.line,
        kind=kind, owner=_qualified(parent) if member else "", result=cursor.result_type.spelling,
        parameters=[Parameter(each.spelling, each.type.spelling) for each in cursor.get_arguments()],
        tags=TAG.findall(comment), comment=comment, symbols=_symbols(cursor),
        is_virtual=cursor.is_virtual_method() or (kind == "destructor" and "virtual" in _tokens(cursor)[:2])
        or "override" in _tokens(cursor),
        is_pure=cursor.is_pure_virtual_method(), is_const=cursor.is_const_method(),
        is_noexcept=_is_noexcept(cursor), access=cursor.access_specifier.name.lower(),
    )


def _is_wanted_member(cursor: ci.Cursor) -> bool:
    return (
        cursor.kind in (ci.CursorKind.CXX_METHOD, *SPECIAL)
        and not cursor.is_deleted_method()
        and not cursor.is_default_method()
        and cursor.get_definition() is None
    )


def _short_name(operation: Operation) -> str:
    """The name that people use: without the namespaces, special members by what they do."""
    owner = operation.owner.rpartition("::")[2]
    own_type = f"{owner} &"
    only = operation.parameters[0].type if len(operation.parameters) == 1 else ""
    prefix = f"{owner}::" if owner else ""
    if operation.kind == "constructor":
        copies = {f"const {own_type}": "copy", f"{own_type}&": "move"}
        return prefix + copies.get(only, owner)
    if operation.own_name == "operator=":
        return prefix + ("move" if only == f"{own_type}&" else "copy") + "-assignment"
    return prefix + operation.own_name


def _name_all(operations: list[Operation]) -> None:
    first: dict[str, Operation] = {}
    for operation in operations:
        name = _short_name(operation)
        if name not in first:
            first[name] = operation
            operation.name = name
            continue
        known = {each.name for each in first[name].parameters}
        operation.name = "+".join([name, *(p.name for p in operation.parameters if p.name not in known)])
    names = [operation.name for operation in operations]
    if len(set(names)) != len(names):
        raise SystemExit(f"two operations have one name: {sorted(n for n in names if names.count(n) > 1)}")


def _number_slots(operations: list[Operation]) -> None:
    """Slots of the virtual table, as the C++ ABI of Linux has them: a destructor takes two."""
    next_slot: dict[str, int] = {}
    for operation in operations:
        if operation.is_virtual and operation.owner.startswith("nvcos"):
            operation.slot = next_slot.get(operation.owner, 0)
            next_slot[operation.owner] = operation.slot + (2 if operation.kind == "destructor" else 1)


def read(folder: pathlib.Path) -> list[Operation]:
    """The operations in the order of their headers and lines."""
    folder = folder.resolve()
    operations = []

    def visit(cursor: ci.Cursor) -> None:
        for child in cursor.get_children():
            if child.location.file is None or not child.location.file.name.startswith(f"{folder}/host/"):
                continue
            if child.kind == ci.CursorKind.NAMESPACE:
                visit(child)
            elif _is_exported_class(child) and child.is_definition():
                members = (each for each in child.get_children() if _is_wanted_member(each))
                operations.extend(_operation(each, folder) for each in members)
            elif child.kind == ci.CursorKind.FUNCTION_DECL and child.get_definition() is None:
                operations.append(_operation(child, folder))

    visit(_parse(folder).cursor)
    operations.sort(key=lambda each: (each.header, each.line))
    _name_all(operations)
    _number_slots(operations)
    return operations


def main(verb: str, folder: str) -> int:
    operations = read(pathlib.Path(folder))
    if verb == "list":
        for each in operations:
            print(each.name, " ".join(f"[{tag}]" for tag in each.tags), f"{each.header}:{each.line}", sep="\t")
        return 0
    special = ("constructor", "destructor")
    wrong = {each.name: "has no tag" for each in operations
             if not each.tags and each.kind not in special and each.own_name != "operator="}
    wrong |= {each.name: "is noexcept, and tagged [throws]" for each in operations
              if each.is_noexcept and "throws" in each.tags}
    for each in operations:
        if each.name in wrong:
            print(f"{each.header}:{each.line}: {each.name} {wrong[each.name]}")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
