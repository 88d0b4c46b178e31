"""Finds the library and opens it as any host does: as a shared object, by its entry point."""

from __future__ import annotations

import os
from pathlib import Path

from zmhost import _location, _zmhost

ENVIRONMENT_VARIABLE = "ZM_HMI_FOUNDATION_LIBRARY"
FILE_NAME = "libzm_hmi_foundation.so"
ENTRY_POINT = "NVInitialize_zm_hmi_foundation"

_loaded = False


def _candidates() -> list[Path]:
    chosen = os.environ.get(ENVIRONMENT_VARIABLE)
    if chosen:
        return [Path(chosen)]
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
        places = " or ".join(os.path.normpath(path) for path in candidates)
        raise ImportError(
            f"the library {FILE_NAME} is not at {places}; "
            f"build it, or name the file in the environment variable {ENVIRONMENT_VARIABLE}"
        )
    _zmhost.load_library(str(found.resolve()), ENTRY_POINT)
    _loaded = True
