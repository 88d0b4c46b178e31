"""Checks that CTest runs every test file on disk.

    check_registered.py CTEST BUILD_FOLDER TESTS_FOLDER

A C++ file with tests has to be compiled into an executable that CTest runs; a Python file of tests has to
be among what CTest gives to pytest, or below a folder that is.
"""

import json
import pathlib
import re
import subprocess
import sys

CPP_TEST = re.compile(r"^\s*(TEST|TEST_F|TEST_P|TYPED_TEST|RC_GTEST_PROP|RC_GTEST_FIXTURE_PROP)\(", re.M)


def ctest_commands(ctest, build):
    listing = subprocess.run(
        [ctest, "--show-only=json-v1"], cwd=build, check=True, capture_output=True, text=True
    ).stdout
    return [test.get("command", []) for test in json.loads(listing)["tests"]]


def targets_of_sources(build):
    """For each source file the targets that compile it."""
    targets = {}
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        target = re.search(r"CMakeFiles/([^/]+)\.dir/", entry["output"] if "output" in entry else entry["command"])
        targets.setdefault(pathlib.Path(entry["file"]).resolve(), set()).add(target.group(1))
    return targets


def main(ctest, build, tests):
    build, tests = pathlib.Path(build), pathlib.Path(tests).resolve()
    commands = ctest_commands(ctest, build)
    executables = {pathlib.Path(command[0]).name for command in commands if command}
    given_to_pytest = {
        pathlib.Path(word).resolve() for command in commands if "pytest" in " ".join(command) for word in command
    }
    targets = targets_of_sources(build)

    forgotten = []
    count = 0
    for source in sorted(tests.rglob("*.cpp")):
        if CPP_TEST.search(source.read_text(encoding="utf-8")):
            count += 1
            if not targets.get(source, set()) & executables:
                forgotten.append(source)
    for script in sorted(tests.rglob("test_*.py")):
        count += 1
        if not given_to_pytest & {script, *script.parents}:
            forgotten.append(script)

    for file in forgotten:
        print(f"no test of CTest runs {file.relative_to(tests)}")
    print(f"{count} test files, {len(forgotten)} of them forgotten")
    return 1 if forgotten or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
