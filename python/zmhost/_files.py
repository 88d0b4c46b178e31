"""Models in files: `open_model`, and `Model.save`."""

from __future__ import annotations

import os
import sys
import time
from collections.abc import Callable
from types import TracebackType

from zmhost import _library, _zmhost
from zmhost._zmhost import Model

Progress = Callable[[str, int, int], object]

PATIENCE = 1.0  # seconds without a word
LARGE_FILE = 4_000_000  # bytes
LARGE_MODEL = 10_000  # blocks


class _Terminal:
    """Shows the steps on one line of a terminal, and nothing elsewhere or when it is soon done."""

    def __init__(self, doing: str, path: str | os.PathLike[str], is_large: bool) -> None:
        self._title = f"{doing} {os.path.basename(os.fspath(path))}"
        self._speaks_at = time.monotonic() + (0.0 if is_large else PATIENCE)
        self._is_terminal = sys.stderr is not None and sys.stderr.isatty()
        self._has_spoken = False

    def __call__(self, step: str, done: int, total: int) -> None:
        if self._is_terminal and time.monotonic() >= self._speaks_at:
            self._has_spoken = True
            print(f"\r\x1b[K{self._title}: {step} ({done + 1} of {total}) …", end="", file=sys.stderr, flush=True)

    def __enter__(self) -> _Terminal:
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        if self._has_spoken:
            print("\r\x1b[K", end="", file=sys.stderr, flush=True)


def _size(path: str | os.PathLike[str]) -> int:
    try:
        return os.path.getsize(path)
    except OSError:
        return 0  # opening says what is wrong


def open_model(path: str | os.PathLike[str], *, progress: Progress | None = None) -> Model:
    """Opens a model: a diagram (.ssd), or an archive (.ssp) with all that `Model.save` put there.

    What was instrumented and bound comes back as the model's `observers`. `progress(step, done, total)` is
    called before each step; without it a long opening shows its steps on a terminal. What it raises, and
    Ctrl-C, ends the opening, and no model is open then.
    """
    _library.load()
    if progress is not None:
        return _zmhost.open_model(path, progress)
    with _Terminal("Opening", path, _size(path) > LARGE_FILE) as terminal:
        return _zmhost.open_model(path, terminal)


def _save(self: Model, path: str | os.PathLike[str], *, progress: Progress | None = None) -> None:
    """Saves the model as an archive (.ssp), with its observers.

    The file is there whole, or the former one stays. `progress(step, done, total)` is called before each
    step; without it a long saving shows its steps on a terminal.
    """
    if progress is not None:
        _zmhost.save_model(self, path, progress)
        return
    with _Terminal("Saving", path, len(self) > LARGE_MODEL) as terminal:
        _zmhost.save_model(self, path, terminal)


_save.__name__ = "save"
_save.__qualname__ = "Model.save"
setattr(Model, "save", _save)
