"""The skeleton host: a body for every operation that a host implements, which says that it is not implemented."""

from __future__ import annotations

import itertools
import pathlib
import subprocess

from host_interface import Operation

FOLDER = "examples/skeleton_host"
# Written by hand in FirstOperations.cpp, as examples.
DONE = {"nvCreateDoubleScalar", "nvGetScalar", "nvDestroyArray"}
# Objects that a host makes; the library implements the other virtual operations.
HOST_OBJECTS = ("COSMethodSignature", "COSInterface", "COSClass", "COSNamespace")
# Members without a default constructor.
INITIALIZERS = {
    "zmsvException::zmsvException": ": m_id(std::move(id)), m_text(std::move(text))",
    "zmsvException::copy": ": std::exception(a0), m_id(a0.m_id), m_text(a0.m_text)",
}


def is_without_state(operation: Operation) -> bool:
    """Constructors and destructors of bases without members: there is nothing to implement."""
    return operation.kind in ("constructor", "destructor") and not operation.parameters and (
        operation.owner.startswith("nvcos") or operation.owner == "zmsvTextConverter"
    )


def declarator(operation: Operation, owner: str, with_names: bool) -> str:
    given = [
        f"{each.type} {each.name or f'a{i}'}" if with_names else f"{each.type} /*{each.name or f'a{i}'}*/"
        for i, each in enumerate(operation.parameters)
    ]
    prefix = f"{owner}::" if owner else ""
    result = "" if operation.kind in ("constructor", "destructor") else f"{operation.result} "
    tail = (" const" if operation.is_const else "") + (
        " noexcept" if operation.is_noexcept and operation.kind != "destructor" else "")
    return f"{result}{prefix}{operation.own_name}({', '.join(given)}){tail}"


def body(operation: Operation) -> str:
    word = "abortNotImplemented" if operation.is_noexcept else "throwNotImplemented"
    return f'{{ {word}("{operation.name}"); }}'


def definition(operation: Operation) -> str:
    owner = operation.owner.rpartition("::")[2]
    if is_without_state(operation):
        return f"{declarator(operation, owner, False)} = default;\n"
    initializer = INITIALIZERS.get(operation.name, "")
    return f"{declarator(operation, owner, bool(initializer))} {initializer} {body(operation)}\n\n"


def space_of(operation: Operation) -> str:
    full = operation.owner or operation.qualified
    return full.rpartition("::")[0]


def source(header: str, operations: list[Operation]) -> str:
    include = "ClassDescriptors" if "Class" in header else pathlib.Path(header).stem
    text = f'#include "NotImplemented.hpp"\n#include "host/{include}.hpp"\n\n#include <utility>\n\n' \
           f"// The operations of {header}. Written by contract/generate.py; yours to change.\n\n"
    for space, group in itertools.groupby(operations, space_of):
        opened = f"namespace {space} {{\n\n" if space else ""
        closed = f"}}  // namespace {space}\n\n" if space else ""
        text += opened + "".join(map(definition, group)) + closed
    return text


def host_objects(operations: list[Operation]) -> str:
    text = '#include "NotImplemented.hpp"\n#include "host/ClassDescriptors.hpp"\n\n#include <type_traits>\n\n' \
           "// The objects that a host makes. Written by contract/generate.py; yours to change.\n\n" \
           "namespace skeleton_host {\n\nusing namespace nvcos;\n\n"
    for owner in HOST_OBJECTS:
        text += f"class {owner.removeprefix('COS')} final : public {owner} {{\npublic:\n"
        for each in operations:
            if each.owner == f"nvcos::{owner}" and each.is_virtual and each.kind == "method":
                text += f"{declarator(each, '', False)} override {body(each)}\n"
        text += "};\n"
        text += f"static_assert(!std::is_abstract_v<{owner.removeprefix('COS')}>);\n\n"
    return text + "}  // namespace skeleton_host\n"


def formatted(text: str, folder: pathlib.Path) -> str:
    done = subprocess.run(
        ["clang-format-16", f"--assume-filename={folder / FOLDER / 'x.cpp'}"],
        input=text, capture_output=True, text=True, check=True,
    )
    return done.stdout


def files(operations: list[Operation], folder: pathlib.Path) -> dict[str, str]:
    written = {}
    for header, group in itertools.groupby(operations, lambda each: each.header):
        mine = [each for each in group if not each.is_pure and each.name not in DONE]
        name = f"{FOLDER}/Skeleton{pathlib.Path(header).stem}.cpp"
        written[name] = formatted(source(header, mine), folder)
    written[f"{FOLDER}/SkeletonHostObjects.cpp"] = formatted(host_objects(operations), folder)
    return written
