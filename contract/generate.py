"""Writes the files of the contract kit and of the skeleton host that follow the declarations in host/.

    generate.py FOLDER          writes them
    generate.py FOLDER --check  complains about those that are out of date, and changes nothing
"""

from __future__ import annotations

import pathlib
import sys

import host_interface
import skeleton


def operations_list(operations: list[host_interface.Operation]) -> str:
    lines = [f'    "{each.name}",\n' for each in operations]
    return "// The operations that host/ declares, in their order. Written by contract/generate.py.\n" + "".join(lines)


def files(folder: pathlib.Path) -> dict[str, str]:
    operations = host_interface.read(folder)
    return {"contract/Operations.inc": operations_list(operations), **skeleton.files(operations, folder)}


def main(folder: str, *options: str) -> int:
    root = pathlib.Path(folder)
    stale = 0
    for name, text in files(root).items():
        path = root / name
        if path.exists() and path.read_text(encoding="utf-8") == text:
            continue
        if "--check" in options:
            print(f"{name} is out of date: run contract/generate.py")
            stale = 1
        else:
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
            print(name)
    return stale


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
