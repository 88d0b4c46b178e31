"""Host errors and host warnings as Python sees them."""

from __future__ import annotations

import os
import sys
import warnings
from typing import Union

Argument = Union[int, float, str]

_PACKAGE = os.path.dirname(__file__) + os.sep


class HostError(RuntimeError):
    """An error of the host: the message `key` of a `catalog`, with the arguments of its text.

    A script's own host function may raise it; any other exception that it raises becomes one.
    """

    def __init__(
        self,
        text: str = "",
        catalog: str = "zmhost:script",
        key: str = "Error",
        arguments: tuple[Argument, ...] = (),
    ) -> None:
        super().__init__(text)
        self.catalog = catalog
        self.key = key
        self.arguments = tuple(arguments)


class ElementIndexError(HostError, IndexError):
    """A collection has no element of that index; the argument is the number of its elements."""


class HostWarning(UserWarning):
    """A warning that the host reported during a call, issued when the call has returned."""

    def __init__(
        self, text: str, catalog: str = "", key: str = "", arguments: tuple[Argument, ...] = ()
    ) -> None:
        super().__init__(text)
        self.catalog = catalog
        self.key = key
        self.arguments = arguments


def host_error(text: str, catalog: str, key: str, arguments: tuple[Argument, ...]) -> HostError:
    kind = ElementIndexError if key == "InvalidElementIndex" else HostError
    return kind(text, catalog, key, arguments)


def _caller_level() -> int:
    """The `stacklevel` that names the script's line for a warning issued by our caller."""
    level = 1
    frame = sys._getframe(1)
    while frame.f_back is not None and frame.f_code.co_filename.startswith(_PACKAGE):
        frame = frame.f_back
        level += 1
    return level


def deliver_warnings(
    reported: list[tuple[str, str, str, tuple[Argument, ...]]], error: BaseException | None
) -> None:
    """Issues what the host reported during a call, then raises the call's own error, if any.

    A warning that the filters turn into an error is raised in its place, or noted on it.
    """
    level = _caller_level()
    for warning in reported:
        try:
            warnings.warn(HostWarning(*warning), stacklevel=level)
        except HostWarning as raised:
            if error is None:
                error = raised
            else:
                error.add_note(f"host warning: {raised}")
    if error is not None:
        raise error
