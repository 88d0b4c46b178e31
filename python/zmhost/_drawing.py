"""Pictures of models, drawn by Graphviz's program "dot"."""

from __future__ import annotations

import os
import subprocess

from zmhost import _zmhost
from zmhost._zmhost import Model


def _draw(self: Model, path: str | os.PathLike[str]) -> None:
    """Draws the diagram, with what is observed, into a file of the format that its extension names (.svg, .png …).

    Graphviz's program "dot" draws; where it is missing or fails, nothing is drawn and the error says why.
    """
    file = os.fspath(path)
    format_name = os.path.splitext(file)[1][1:]
    if not format_name:
        _zmhost.refuse_drawing(file, 'the file needs an extension that names its format, such as ".svg"')
    # An absolute path never looks like an option.
    command = ["dot", f"-T{format_name}", "-o", os.path.abspath(file)]
    try:
        subprocess.run(command, input=self.as_dot().encode(), capture_output=True, check=True)
    except subprocess.CalledProcessError as error:
        reason = error.stderr.decode(errors="replace").strip()
        _zmhost.refuse_drawing(file, f"dot failed with code {error.returncode}: {reason}")
    except OSError as error:
        _zmhost.refuse_drawing(file, f"Graphviz's program \"dot\" could not be started ({error.strerror})")


_draw.__name__ = "draw"
_draw.__qualname__ = "Model.draw"
setattr(Model, "draw", _draw)
