"""The part of a host's editor that uses the library while a person edits a diagram.

    with zmhost.open_model("diagram.ssd") as model, zmhost.editor.Editor(model) as editor:
        model.observers = zmhost.call(
            "Zelmar.HMI.ModelObservers.createFromSignalsAndClients", signals, clients
        )
        model["Controller/Limiter"].delete_output(1)     # its signal goes, others move up
        model.undo()                                     # and is back where it was

An editor follows the edits of one model, with the signals in the model's observers parameter, until it is
closed.
"""

from __future__ import annotations

import atexit
import weakref
from types import TracebackType

from zmhost import _library, _zmhost
from zmhost._zmhost import Model, Source

__all__ = ["Editor", "Source", "take_events"]

take_events = _zmhost.take_editor_events

_open: weakref.WeakSet[Editor] = weakref.WeakSet()


class Editor(_zmhost.SignalEditor):
    """Keeps the instrumented signals of a model on their ports while its diagram is edited."""

    def __init__(self, model: Model) -> None:
        _library.load()
        super().__init__(model)
        if not _open:
            # Registered late, and so called before the host is shut down.
            atexit.unregister(_close_all)
            atexit.register(_close_all)
        _open.add(self)

    def __enter__(self) -> Editor:
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()


def _close_all() -> None:
    for editor in list(_open):
        editor.close()
