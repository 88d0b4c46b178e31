"""Wrong arguments of the native classes in words: one sentence instead of pybind11's list of overloads."""

from __future__ import annotations

import functools
import inspect
import re
from reprlib import repr as short_repr
from typing import Any

_NATIVE_TEXTS = ("incompatible function arguments", "incompatible constructor arguments")
_SIGNATURE = re.compile(r"^ +1\. (?P<name>[\w.]*)\((?P<parameters>.*)\)", re.MULTILINE)


def _expected(text: str) -> str:
    """The parameters of the first overload, without self and without module names."""
    found = _SIGNATURE.search(text)
    if found is None:
        return ""
    parameters = re.sub(r"^self: [^,)]*(, )?", "", found["parameters"])
    return re.sub(r"\b(?:\w+\.)+(?=\w)", "", parameters)


def _given(arguments: tuple[Any, ...], keywords: dict[str, Any]) -> str:
    given = [short_repr(argument) for argument in arguments]
    given += [f"{name}={short_repr(value)}" for name, value in keywords.items()]
    return ", ".join(given) or "nothing"


def _worded(name: str, function: Any) -> Any:
    @functools.wraps(function)
    def call(self: Any, *arguments: Any, **keywords: Any) -> Any:
        try:
            return function(self, *arguments, **keywords)
        except TypeError as error:
            text = str(error)
            if not any(native in text for native in _NATIVE_TEXTS):
                raise
        raise TypeError(f"{name}: expected ({_expected(text)}), got {_given(arguments, keywords)}")

    return call


def word_argument_errors(host_class: type) -> None:
    """Makes every method and settable property of a native class name the expected and the given arguments."""
    for name, member in list(vars(host_class).items()):
        title = f"{host_class.__name__}.{name}" if name != "__init__" else host_class.__name__
        if isinstance(member, property) and member.fset is not None:
            setter = _worded(title, member.fset)
            setattr(host_class, name, property(member.fget, setter, member.fdel, member.__doc__))
        elif inspect.isroutine(member) and not isinstance(member, staticmethod) and name not in (
            "__new__", "__repr__", "__hash__", "__eq__", "__enter__", "__exit__", "__len__",
        ):
            setattr(host_class, name, _worded(title, member))
