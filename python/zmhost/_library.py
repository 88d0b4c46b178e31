"""Finds the library and opens it as any host does: as a shared object, by its entry point.

It is the copy that the native module is linked to, for the editor's and the recorder's calls; a second one
would have classes of its own. So nobody chooses another file here.
"""

from __future__ import annotations

from pathlib import Path

from zmhost import _location, _zmhost

FILE_NAME = _location.LIBRARY_FILE
ENTRY_POINT = "NVInitialize_zm_hmi_foundation"

_loaded = False


def _candidates() -> list[Path]:
    here = Path(__file__).parent
    return [here / FILE_NAME, here / _location.LIBRARY_DIRECTORY / FILE_NAME]


def load() -> None:
    """Opens the library, the first time. An `ImportError` says where it was looked for."""
    global _loaded
    if _loaded:
        return
    candidates = _candidates()
    found = next((path for path in candidates if path.is_file()), None)
    if found is None:
        places = " or ".join(str(path.resolve()) for path in candidates)
        raise ImportError(f"the library {FILE_NAME} is not at {places}; build it")
    _zmhost.load_library(str(found.resolve()), ENTRY_POINT)
    _loaded = True
