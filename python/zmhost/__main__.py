"""python3 -m zmhost: runs a script with the host, or opens a prompt."""

from __future__ import annotations

import argparse
import code
import gc
import os
import select
import signal
import sys
import traceback
import types
from typing import Any

import zmhost
from zmhost import _classes

BANNER = """zmhost: the host's own prompt. Python, with these at hand:
  {names}
Try
  model = zmhost.open_model("examples/greenhouse.ssd")
  model.blocks, dir(Zelmar.HMI), help(Zelmar.HMI.InstrumentedSignals)
Ctrl-D leaves."""

STANDARD_OUTPUT = 1
# As shells say it of a program that the signal ends.
INTERRUPTED = 128 + signal.SIGINT
NOBODY_READS = 128 + signal.SIGPIPE


def _parse(arguments: list[str]) -> argparse.Namespace:
    parser = argparse.ArgumentParser(
        prog="python3 -m zmhost", description="Runs a script with the host; without one, opens a prompt."
    )
    parser.add_argument(
        "--log-host-calls", action="store_true", help="write every call across the host's boundary to stderr"
    )
    parser.add_argument("script", nargs="?", help="a Python script")
    parser.add_argument("arguments", nargs=argparse.REMAINDER, help="its arguments, such as models (.ssd, .ssp)")
    return parser.parse_args(arguments)


def _print_error(error: BaseException) -> None:
    """As Python does, without our own frame."""
    below = error.__traceback__.tb_next if error.__traceback__ is not None else None
    traceback.print_exception(type(error), error, below)


def _has_reader() -> bool:
    """Whether standard output still has a reader."""
    output = select.poll()
    output.register(STANDARD_OUTPUT, 0)
    return not output.poll(0)


def _print_no_more() -> int:
    """Discards further output, because standard output has no reader; gives the exit code for that."""
    nowhere = os.open(os.devnull, os.O_WRONLY)
    os.dup2(nowhere, STANDARD_OUTPUT)
    os.close(nowhere)
    return NOBODY_READS


def _run_script(path: str, arguments: list[str]) -> int:
    """Runs the script as the main program; its exit code."""
    if path.endswith((".ssd", ".ssp")):
        print(f"zmhost: {path} is a model; name the script that is to open it", file=sys.stderr)
        return 2
    try:
        with open(path, "rb") as file:
            source = file.read()
    except OSError as error:
        print(f"zmhost: cannot read {path}: {error.strerror}", file=sys.stderr)
        return 2
    sys.argv = [path, *arguments]
    sys.path.insert(0, os.path.dirname(os.path.abspath(path)))
    module = types.ModuleType("__main__")
    module.__file__ = path
    sys.modules["__main__"] = module
    try:
        exec(compile(source, path, "exec"), module.__dict__)
    except SystemExit:
        raise
    except KeyboardInterrupt as error:
        _print_error(error)
        return INTERRUPTED
    except BrokenPipeError as error:
        if not _has_reader():
            return _print_no_more()
        _print_error(error)  # another pipe, which is the script's business
        return 1
    except Exception as error:
        _print_error(error)
        return 1
    finally:
        module.__dict__.clear()
        gc.collect()
    return 0


def _open_prompt() -> None:
    names: dict[str, Any] = {"zmhost": zmhost}
    names.update({name: getattr(zmhost, name) for name in _classes.top_level_names()})
    try:
        import readline
        import rlcompleter

        readline.set_completer(rlcompleter.Completer(names).complete)
        readline.parse_and_bind("tab: complete")
    except ImportError:
        pass  # line editing is a comfort
    code.interact(BANNER.format(names=", ".join(names)), local=names, exitmsg="")


def main() -> int:
    options = _parse(sys.argv[1:])
    if options.log_host_calls:
        zmhost.log_host_calls()
    try:
        if options.script is not None:
            return _run_script(options.script, options.arguments)
        _open_prompt()
        return 0
    finally:
        try:
            if sys.__stdout__ is not None:
                sys.__stdout__.flush()
        except BrokenPipeError:
            sys.exit(_print_no_more())
        except (OSError, ValueError):
            pass  # a full disk, which Python tells of when it ends, or a stream that the script has closed


if __name__ == "__main__":
    sys.exit(main())
