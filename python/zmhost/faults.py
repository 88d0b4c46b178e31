"""Faults: has an operation of the host fail on its n-th call, to see how its callers take it."""

from __future__ import annotations

from collections.abc import Iterator
from contextlib import contextmanager

from zmhost import _zmhost
from zmhost._zmhost import FaultKind

__all__ = ["ANY_OPERATION", "FaultKind", "arm", "armed", "disarm", "has_fired"]

ANY_OPERATION: str = _zmhost.any_operation


def arm(operation: str, kind: FaultKind, nth: int = 1) -> None:
    """The `nth` call from now of the operation, among those that can fail so, fails. One fault at a time."""
    _zmhost.arm_fault(operation, kind, nth)


def disarm() -> bool:
    """Takes back the fault; tells whether it has struck."""
    return _zmhost.disarm_fault()


def has_fired() -> bool:
    return _zmhost.fault_has_fired()


@contextmanager
def armed(operation: str, kind: FaultKind, nth: int = 1) -> Iterator[None]:
    """A fault for the time of a `with` block."""
    arm(operation, kind, nth)
    try:
        yield
    finally:
        disarm()
