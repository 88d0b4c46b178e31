"""Compares the binary interface of the shared objects with the checked-in baseline.

    abi.py LIBRARY_FOLDER [--update]

The baseline of each library is its exported symbols and the types that they reach (abidw), without places in
sources, compressed: abi/NAME.abi.xz beside this file. An incompatible change needs another so-name version
(PROJECT_VERSION in CMakeLists.txt) and a new baseline (--update); a compatible one only the latter. Both
libraries have to be built with debug information.
"""

from __future__ import annotations

import lzma
import subprocess
import sys
import tempfile
from pathlib import Path

LIBRARIES = ["libzm_hmi_foundation", "libzm_reference_host"]
BASELINES = Path(__file__).parent / "abi"


def described(library: Path) -> bytes:
    """The interface as abidw writes it."""
    return subprocess.run(
        ["abidw", "--no-show-locs", "--no-comp-dir-path", "--no-corpus-path", "--exported-interfaces-only", library],
        check=True, capture_output=True,
    ).stdout


def compare(name: str, now: bytes) -> int:
    with tempfile.TemporaryDirectory() as folder:
        old, new = Path(folder) / "baseline.abi", Path(folder) / "now.abi"
        old.write_bytes(lzma.decompress((BASELINES / f"{name}.abi.xz").read_bytes()))
        new.write_bytes(now)
        done = subprocess.run(["abidiff", "--no-show-locs", old, new], capture_output=True, text=True)
    print(f"{name}: {'as in the baseline' if done.returncode == 0 else done.stdout + done.stderr}")
    return done.returncode


def main(folder: str, *options: str) -> int:
    failed = 0
    for name in LIBRARIES:
        now = described(Path(folder) / f"{name}.so")
        if "--update" in options:
            BASELINES.mkdir(exist_ok=True)
            (BASELINES / f"{name}.abi.xz").write_bytes(lzma.compress(now, preset=9))
        else:
            failed |= compare(name, now)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
