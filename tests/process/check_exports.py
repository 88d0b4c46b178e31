"""Compares the names that a shared object exports with a checked-in list, one a line, sorted.

    check_exports.py NM SHARED_OBJECT LIST
"""

import difflib
import subprocess
import sys


def exported_names(nm, shared_object):
    table = subprocess.run(
        [nm, "-D", "--defined-only", "--demangle", shared_object], check=True, capture_output=True, text=True
    ).stdout
    # A constructor or destructor stands there once for each of its variants.
    return sorted({line.split(maxsplit=2)[2] for line in table.splitlines()})


def main(nm, shared_object, list_file):
    with open(list_file, encoding="utf-8") as lines:
        listed = lines.read().splitlines()
    difference = list(
        difflib.unified_diff(listed, exported_names(nm, shared_object), list_file, shared_object, lineterm="", n=0)
    )
    print("\n".join(difference) or f"{len(listed)} names, as listed")
    return 1 if difference else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
