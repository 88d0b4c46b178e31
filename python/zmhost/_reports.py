"""Reports of the host about itself: its ledger, its warnings, the journal of its calls."""

from __future__ import annotations

from collections.abc import Iterator
from typing import Any

from zmhost import _zmhost


class Ledger:
    """The values and objects that the host has open at one moment. `print(zmhost.ledger())` lists it."""

    def __init__(self) -> None:
        self._snapshot = _zmhost.ledger_snapshot()
        self.live_values = _zmhost.live_values()
        self.report = _zmhost.ledger_report()
        self.misuses = tuple(_zmhost.misuses())

    def opened_since(self) -> list[str]:
        """A line for each thing that was opened after this moment and is still open."""
        return self._snapshot.opened_since()

    def __str__(self) -> str:
        return self.report

    def __repr__(self) -> str:
        return f"<ledger: {self.live_values} live values, {len(self.misuses)} misuses>"


def ledger() -> Ledger:
    """The values and objects that the host has open now."""
    return Ledger()


class WarningSink:
    """The warnings that the host has reported, the oldest first, until somebody takes them."""

    def take(self) -> list[_zmhost.ReportedWarning]:
        """Hands them out and forgets them."""
        return _zmhost.take_warnings()

    def clear(self) -> None:
        _zmhost.take_warnings()

    def __len__(self) -> int:
        return len(_zmhost.reported_warnings())

    def __getitem__(self, index: int) -> _zmhost.ReportedWarning:
        return _zmhost.reported_warnings()[index]

    def __iter__(self) -> Iterator[_zmhost.ReportedWarning]:
        return iter(_zmhost.reported_warnings())

    def __repr__(self) -> str:
        return f"<{len(self)} host warnings>"


class Journal:
    """The operations that crossed the host's boundary inside a `with` block, in order."""

    def __init__(self) -> None:
        self.entries: list[_zmhost.JournalEntry] = []
        self._recording = False

    def __enter__(self) -> Journal:
        _zmhost.start_journal()
        self._recording = True
        return self

    def __exit__(self, *_: Any) -> None:
        _zmhost.stop_journal()
        self._recording = False
        self.entries = _zmhost.journal_entries()

    def count(self, operation: str) -> int:
        """How often the operation was called."""
        return sum(entry.operation == operation for entry in self)

    def __iter__(self) -> Iterator[_zmhost.JournalEntry]:
        return iter(_zmhost.journal_entries() if self._recording else self.entries)

    def __len__(self) -> int:
        return sum(1 for _ in self)

    def __str__(self) -> str:
        return "\n".join("  " * entry.depth + str(entry) for entry in self)

    def __repr__(self) -> str:
        return f"<journal of {len(self)} operations>"


def journal() -> Journal:
    """Records the host's calls: `with zmhost.journal() as calls: ...`. One at a time."""
    return Journal()


def log_host_calls(on: bool = True) -> None:
    """Writes every operation that crosses the boundary to standard error, from now on."""
    _zmhost.log_host_calls(on)
