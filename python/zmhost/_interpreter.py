"""Refuses subinterpreters. There is one host in a process, and it belongs to Python's main interpreter.

This is checked before the extension module is imported: importing that into a subinterpreter first would
wait for ever, and importing it there later would end the main interpreter's models with the subinterpreter.
"""

from __future__ import annotations

import ctypes


def _interpreter(function: str) -> int | None:
    call = getattr(ctypes.pythonapi, function)
    call.restype = ctypes.c_void_p
    address: int | None = call()
    return address


if _interpreter("PyInterpreterState_Get") != _interpreter("PyInterpreterState_Main"):
    raise ImportError("zmhost works in the main interpreter only, not in a subinterpreter")
