"""Changes the library's sources in one small place at a time and runs the library's tests: they have to notice.

    mutate.py [--list] [--seed N] [--sample N] [FILE…]

Works on a copy of the sources under build/mutate, so the working tree stays as it is. Each mutant is built
incrementally. It is killed when a test fails, crashes or takes too long; a mutant that does not compile does not
count. Survivors are printed, except those listed in equivalent_mutants.txt with the reason why no test can notice
them. The exit code is 1 when there are others.
"""

from __future__ import annotations

import argparse
import random
import re
import shutil
import subprocess
import sys
import time
from dataclasses import dataclass
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
WORK = PROJECT / "build" / "mutate"
SOURCES = WORK / "src"
BUILD = WORK / "build"
LIBRARY = ["hmi/*.cpp", "hmi_foundation/*.cpp", "hmi_foundation/bindings/*.cpp", "streamout/*.cpp"]
PROGRAMS = ["zm_hmi_tests", "zm_hmi_allocation_tests", "zm_hmi_foundation_tests", "zm_streamout_tests"]
BUILD_SECONDS = 600
TEST_SECONDS = 240

REPLACEMENTS = [
    (re.compile(r" == "), " != "),
    (re.compile(r" != "), " == "),
    (re.compile(r" < "), " <= "),
    (re.compile(r" <= "), " < "),
    (re.compile(r" > "), " >= "),
    (re.compile(r" >= "), " > "),
    (re.compile(r" && "), " || "),
    (re.compile(r" \|\| "), " && "),
    (re.compile(r" \+ "), " - "),
    (re.compile(r" - "), " + "),
    (re.compile(r"\btrue\b"), "false"),
    (re.compile(r"\bfalse\b"), "true"),
    (re.compile(r"(?<=[(\s])!(?=[\w(])"), ""),
    (re.compile(r"\bif \((?=[^;]*\) \{$)"), "if (!("),  # closed below
]
NUMBER = re.compile(r"(?<![\w.\"'])(\d+)(?![\w.\"'])")
# A call, an assignment or an increment on a line of its own; not a declaration.
STATEMENT = re.compile(r"^\s+(?:[\w.\->:\[\]()*]+(?:\(.*\)| [+\-|&]?= .*)|\+\+\w+|\w+\+\+);$")
NOT_A_STATEMENT = re.compile(r"^\s*(?:return|throw|using|static|const|constexpr|break|case|default)\b")


@dataclass(frozen=True)
class Mutant:
    file: str
    line: int  # from 1
    before: str
    after: str

    def key(self) -> str:
        return f"{self.file} | {self.before.strip()} | {self.after.strip()}"


def changed_lines(line: str) -> list[str]:
    """The line with one change each."""
    if line.lstrip().startswith(("//", "#", "static_assert", "template", "namespace")):
        return []
    code = line.split("//")[0].rstrip()
    changes = []
    for pattern, replacement in REPLACEMENTS:
        for match in pattern.finditer(code):
            if code[: match.start()].count('"') % 2:
                continue  # inside a text
            changed = code[: match.start()] + replacement + code[match.end() :]
            if replacement == "if (!(":
                changed = changed[: -len(") {")] + ")) {"
            changes.append(changed)
    for match in NUMBER.finditer(code):
        if not code[: match.start()].count('"') % 2:
            changes.append(code[: match.start()] + str(int(match.group()) + 1) + code[match.end() :])
    if STATEMENT.match(code) and not NOT_A_STATEMENT.match(code):
        changes.append(re.match(r"\s*", code).group() + ";")
    return changes


def mutants_of(file: str) -> list[Mutant]:
    lines = (PROJECT / file).read_text(encoding="utf-8").splitlines()
    return [
        Mutant(file, number, line, changed)
        for number, line in enumerate(lines, 1)
        for changed in changed_lines(line)
    ]


def equivalent_keys() -> set[str]:
    """Lines "file | before | after | reason"."""
    listed = Path(__file__).with_name("equivalent_mutants.txt").read_text(encoding="utf-8").splitlines()
    keys = set()
    for line in listed:
        if line and not line.startswith("#"):
            parts = line.rsplit(" | ", 1)
            if len(parts) != 2:
                raise ValueError(f"equivalent_mutants.txt: no reason in {line!r}")
            keys.add(parts[0])
    return keys


def run(command: list[str], seconds: int) -> int:
    """The exit code; 1 when it takes too long."""
    try:
        done = subprocess.run(command, cwd=BUILD, timeout=seconds, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        return done.returncode
    except subprocess.TimeoutExpired:
        return 1


def prepare() -> None:
    files = subprocess.run(
        ["git", "ls-files", "--cached", "--others", "--exclude-standard", "-z"],
        cwd=PROJECT, check=True, capture_output=True,
    ).stdout.decode().split("\0")
    kept = set()
    for name in filter(None, files):
        source, target = PROJECT / name, SOURCES / name
        if not source.is_file():
            continue
        kept.add(target)
        if not target.exists() or target.read_bytes() != source.read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(source, target)
    for old in [path for path in SOURCES.rglob("*") if path.is_file() and path not in kept]:
        old.unlink()
    BUILD.mkdir(parents=True, exist_ok=True)
    configure = ["cmake", "-G", "Ninja", "-S", str(SOURCES), "-B", str(BUILD), "-DCMAKE_CXX_COMPILER=g++-12",
                 "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0"]
    subprocess.run(configure, check=True, stdout=subprocess.DEVNULL)
    print("building", flush=True)
    subprocess.run(["ninja", "-C", str(BUILD), *PROGRAMS], check=True, stdout=subprocess.DEVNULL)


def tests_notice(file: str) -> bool:
    """Runs the programs, the one of the file's own folder first."""
    own = {"streamout": "zm_streamout_tests", "hmi_foundation": "zm_hmi_foundation_tests"}.get(file.split("/")[0])
    for program in sorted(PROGRAMS, key=lambda name: name != own):
        if run([f"bin/{program}", "--gtest_brief=1", "--gtest_fail_fast"], TEST_SECONDS) != 0:
            return True
    return False


def verdict(mutant: Mutant) -> str:
    target = SOURCES / mutant.file
    original = target.read_text(encoding="utf-8")
    lines = original.splitlines()
    lines[mutant.line - 1] = mutant.after
    target.write_text("\n".join(lines) + "\n", encoding="utf-8")
    try:
        if run(["ninja", *PROGRAMS], BUILD_SECONDS) != 0:
            return "does not compile"
        return "killed" if tests_notice(mutant.file) else "survived"
    finally:
        target.write_text(original, encoding="utf-8")


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("files", nargs="*")
    parser.add_argument("--list", action="store_true", help="print the mutants and build none")
    parser.add_argument("--sample", type=int, help="only so many, taken at random")
    parser.add_argument("--seed", type=int, default=1)
    arguments = parser.parse_args()
    files = arguments.files or [
        str(path.relative_to(PROJECT)) for pattern in LIBRARY for path in sorted(PROJECT.glob(pattern))
    ]
    mutants = [mutant for file in files for mutant in mutants_of(file)]
    if arguments.sample and arguments.sample < len(mutants):
        mutants = random.Random(arguments.seed).sample(mutants, arguments.sample)
    if arguments.list:
        for mutant in mutants:
            print(f"{mutant.file}:{mutant.line}: {mutant.before.strip()}  ->  {mutant.after.strip()}")
        print(f"{len(mutants)} mutants")
        return 0

    equivalent = equivalent_keys()
    prepare()
    if tests_notice(files[0]):
        print("the tests fail on the unchanged sources", file=sys.stderr)
        return 1
    start = time.monotonic()
    counts = {"killed": 0, "survived": 0, "does not compile": 0, "equivalent": 0}
    for mutant in mutants:
        result = "equivalent" if mutant.key() in equivalent else verdict(mutant)
        counts[result] += 1
        if result == "survived":
            print(f"survived: {mutant.file}:{mutant.line}\n  - {mutant.before.strip()}\n  + {mutant.after.strip()}", flush=True)
    run(["ninja", *PROGRAMS], BUILD_SECONDS)  # leaves the build of the unchanged sources
    decided = counts["killed"] + counts["survived"]
    share = 100.0 * counts["killed"] / decided if decided else 100.0
    print(", ".join(f"{count} {name}" for name, count in counts.items()))
    print(f"{share:.1f} % of {decided} mutants killed, {time.monotonic() - start:.0f} s")
    return 1 if counts["survived"] else 0


if __name__ == "__main__":
    sys.exit(main())
