"""Host errors and host warnings as Python sees them."""

from __future__ import annotations

import errno
import os
import sys
import warnings
from typing import Union

Argument = Union[int, float, str]

#: By the texts that the system gives for failed calls.
_ERROR_NUMBERS: dict[Argument, int] = {os.strerror(number): number for number in errno.errorcode}

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


class ValueTypeError(HostError, TypeError):
    """An argument or a property was given a value of another type than the host expects."""


class FileError(HostError, OSError):
    """A file could not be read or written. `filename` names it; `errno` is None where no system call failed."""

    def __init__(
        self,
        text: str = "",
        catalog: str = "zmhost:script",
        key: str = "Error",
        arguments: tuple[Argument, ...] = (),
    ) -> None:
        super().__init__(text, catalog, key, arguments)
        self.filename = arguments[0] if arguments else None
        for argument in arguments:
            if argument in _ERROR_NUMBERS:
                self.errno = _ERROR_NUMBERS[argument]

    def __str__(self) -> str:
        return str(self.args[0]) if self.args else ""


class MissingFileError(FileError, FileNotFoundError):
    """A file that was to be read does not exist."""


class HostWarning(UserWarning):
    """A warning that the host reported during a call, issued when the call has returned."""

    def __init__(
        self, text: str, catalog: str = "", key: str = "", arguments: tuple[Argument, ...] = ()
    ) -> None:
        super().__init__(text)
        self.catalog = catalog
        self.key = key
        self.arguments = arguments


#: Errors that Python users catch by Python's own types; every other error is a HostError alone.
_KINDS: dict[str, type[HostError]] = {
    "InvalidElementIndex": ElementIndexError,
    "WrongArgument": ValueTypeError,
    "WrongClass": ValueTypeError,
    "WrongValue": ValueTypeError,
    "TooFewArguments": ValueTypeError,
    "TooManyArguments": ValueTypeError,
    "UnreadableFile": FileError,
    "UnwritableFile": FileError,
}


def host_error(text: str, catalog: str, key: str, arguments: tuple[Argument, ...]) -> HostError:
    error = _KINDS.get(key, HostError)(text, catalog, key, arguments)
    if isinstance(error, FileError) and error.errno == errno.ENOENT:
        error = MissingFileError(text, catalog, key, arguments)
    return error


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
    """Issues the warnings that the host reported during a call, then raises the call's own error, if any.

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
