"""./dev record: records ports of a model into a file while a table is replayed, and plots them.

    python3 -m zmhost.record_command MODEL TABLE [--port PATH …] -o FILE [--plot FILE]
"""

from __future__ import annotations

import argparse
import sys
from collections.abc import Sequence

from zmhost._errors import HostError
from zmhost._files import open_model
from zmhost._record import record
from zmhost._recording import read_table


def _show(done: int, total: int) -> None:
    if sys.stderr.isatty() and (done == total or done % max(1, total // 100) == 0):
        print(f"\r\x1b[Krecording: {done} of {total} rows", end="\n" if done == total else "", file=sys.stderr, flush=True)


def main(arguments: Sequence[str] | None = None) -> int:
    parser = argparse.ArgumentParser(
        prog="./dev record", description="Records ports of a model into a file while a table is replayed."
    )
    parser.add_argument("model", help="a model (.ssd or .ssp)")
    parser.add_argument("table", help='a CSV file: "time", then a column for each port')
    parser.add_argument(
        "--port", action="append", metavar="PATH",
        help="an output port (block path, colon, name or number) or a block; without it, every port of the table",
    )
    parser.add_argument("-o", "--output", required=True, metavar="FILE", help="the file to write (.csv)")
    parser.add_argument("--plot", metavar="FILE", help="also draw the recorded ports (.svg, .png or .pdf)")
    parser.add_argument("--decimation", type=int, default=1, help="record every N-th row")
    options = parser.parse_args(arguments)
    try:
        with open_model(options.model) as model:
            ports = options.port or list(read_table(options.table).columns)
            record(
                model, options.table, ports, options.output,
                plot=options.plot, decimation=options.decimation, progress=_show,
            )
    except (HostError, ValueError, LookupError, ImportError) as error:
        print(f"record: {error.args[0] if error.args else error}", file=sys.stderr)
        return 2
    return 0


if __name__ == "__main__":
    sys.exit(main())
