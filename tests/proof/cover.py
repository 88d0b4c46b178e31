"""Coverage of the library by its own tests: lines, branches and MC/DC, by room.

    cover.py BUILD_FOLDER [--gaps]

BUILD_FOLDER is that of the preset "cover". Runs the library's test programs and prints a table; with --gaps, each
line with a branch or condition that no test decided both ways. Lines listed in coverage_exclusions.txt are left
out of the gaps; the reason stands beside each.
"""

from __future__ import annotations

import argparse
import json
import os
import subprocess
import sys
from collections import defaultdict
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
ROOMS = ["hmi", "hmi_foundation", "streamout", "host"]
PROGRAMS = ["zm_hmi_tests", "zm_hmi_allocation_tests", "zm_hmi_foundation_tests", "zm_returning_host_tests",
            "zm_streamout_tests", "zm_initialization_tests"]
METRICS = ["lines", "branches", "mcdc"]


def run_tests(build: Path) -> list[Path]:
    """Each program's tests; the programs that need a process for each test are run test by test."""
    programs = [build / "bin" / name for name in PROGRAMS]
    for program in programs:
        each = ["*"]
        if "initialization" in program.name:
            listed = subprocess.run([program, "--gtest_list_tests"], check=True, capture_output=True, text=True).stdout
            suite, each = "", []
            for line in listed.splitlines():
                if line.startswith(" "):
                    each.append(suite + line.split()[0])
                elif line.rstrip().endswith("."):
                    suite = line.strip()
        for number, test in enumerate(each):
            profile = build / "profiles" / f"{program.name}-{number}.profraw"
            done = subprocess.run([program, "--gtest_brief=1", f"--gtest_filter={test}"],
                                  env={**os.environ, "LLVM_PROFILE_FILE": str(profile)})
            if done.returncode != 0:
                print(f"{program.name} fails ({test})", file=sys.stderr)
    return programs


def export(build: Path, programs: list[Path]) -> dict:
    profiles = sorted((build / "profiles").glob("*.profraw"))
    merged = build / "profiles" / "all.profdata"
    subprocess.run(["llvm-profdata-19", "merge", "-sparse", *profiles, "-o", merged], check=True)
    objects = [argument for program in programs[1:] for argument in ("-object", str(program))]
    rooms = [str(PROJECT / room) for room in ROOMS]
    done = subprocess.run(
        ["llvm-cov-19", "export", str(programs[0]), *objects, f"-instr-profile={merged}",
         "--show-mcdc-summary", "--skip-functions", *rooms],
        check=True, capture_output=True, text=True,
    )
    return json.loads(done.stdout)


def exclusions() -> dict[str, list[str]]:
    """Lines "file | text of the line | reason"."""
    texts = defaultdict(list)
    for line in Path(__file__).with_name("coverage_exclusions.txt").read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("#"):
            file, text, _reason = line.split(" | ", 2)
            texts[file].append(text)
    return texts


def gaps(file: dict) -> set[int]:
    lines = {branch[0] for branch in file.get("branches", []) if branch[4] == 0 or branch[5] == 0}
    lines |= {record[0] for record in file.get("mcdc_records", []) if not all(record[-1])}
    return lines


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=Path)
    parser.add_argument("--gaps", action="store_true")
    arguments = parser.parse_args()
    (arguments.build / "profiles").mkdir(exist_ok=True)
    for old in (arguments.build / "profiles").iterdir():
        old.unlink()
    files = export(arguments.build, run_tests(arguments.build))["data"][0]["files"]

    totals: dict = defaultdict(lambda: defaultdict(lambda: [0, 0]))
    excluded = exclusions()
    for file in files:
        name = Path(file["filename"]).relative_to(PROJECT)
        for metric in METRICS:
            summary = file["summary"].get(metric, {"covered": 0, "count": 0})
            totals[name.parts[0]][metric][0] += summary["covered"]
            totals[name.parts[0]][metric][1] += summary["count"]
        if arguments.gaps:
            source = (PROJECT / name).read_text(encoding="utf-8").splitlines()
            for line in sorted(gaps(file)):
                text = source[line - 1].strip()
                if text not in excluded[str(name)]:
                    print(f"{name}:{line}: {text}")
    print(f"{'room':<16}" + "".join(f"{metric:>20}" for metric in METRICS))
    for room in ROOMS:
        cells = []
        for metric in METRICS:
            covered, count = totals[room][metric]
            cells.append(f"{covered}/{count} {100.0 * covered / count:.1f} %" if count else "none")
        print(f"{room:<16}" + "".join(f"{cell:>20}" for cell in cells))
    return 0


if __name__ == "__main__":
    sys.exit(main())
