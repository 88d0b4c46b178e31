"""The type stub, and every test file being run."""

import ast
import shutil
from pathlib import Path

import pytest

import zmhost
from zmhost import _zmhost

from conftest import PROJECT

PACKAGE = Path(zmhost.__file__).parent


def public(names):
    return {name for name in names if not name.startswith("_")}


def test_the_stub_names_what_the_module_has():
    tree = ast.parse((PACKAGE / "_zmhost.pyi").read_text())
    stub = {node.name: node for node in tree.body if isinstance(node, (ast.ClassDef, ast.FunctionDef))}
    assert stub.keys() | {"any_operation"} == public(dir(_zmhost))
    for name, node in stub.items():
        if isinstance(node, ast.ClassDef) and name != "FaultKind":
            bases = [stub[base.id] for base in node.bases if isinstance(base, ast.Name)]
            bodies = [member for part in [node, *bases] for member in part.body]
            members = {member.name for member in bodies if isinstance(member, ast.FunctionDef)}
            assert public(members) == public(dir(getattr(_zmhost, name))), name


def test_everything_exported_is_there():
    for name in zmhost.__all__:
        assert hasattr(zmhost, name), name
    assert (PACKAGE / "py.typed").exists()


@pytest.mark.skipif(shutil.which("mypy") is None, reason="mypy is not installed")
@pytest.mark.parametrize("what", [("-p", "zmhost"), (str(PROJECT / "examples" / "first_light.py"),)])
def test_types_hold(run, tmp_path, what):
    pytest.importorskip("mypy", reason="mypy is not installed for this Python")
    result = run(
        "-m", "mypy", "--strict", "--cache-dir", tmp_path, *what, env={"MYPYPATH": str(PACKAGE.parent), "LD_PRELOAD": ""}
    )
    assert result.returncode == 0, result.stdout + result.stderr


def test_the_stubs_of_host_classes_are_those_of_what_is_registered(tmp_path):
    from zmhost import _stubs

    _stubs.main(str(tmp_path))
    package = PROJECT / "python" / "zmhost"
    fresh = {file.relative_to(tmp_path): file.read_text() for file in tmp_path.rglob("*.pyi")}
    assert fresh and fresh == {path: (package / path).read_text() for path in fresh}


@pytest.mark.skipif(shutil.which("mypy") is None, reason="mypy is not installed")
def test_a_type_checker_knows_the_host_classes(run, tmp_path):
    pytest.importorskip("mypy", reason="mypy is not installed for this Python")
    script = tmp_path / "script.py"
    script.write_text(
        "from zmhost import Zelmar\n"
        "def first(signals: Zelmar.HMI.InstrumentedSignals) -> str:\n"
        "    signals.ad(1)\n"
        "    signals.add(1)\n"
        "    signals.Count = 2\n"
        "    return signals[0].BlockPath_\n"
    )
    result = run(
        "-m", "mypy", "--strict", "--cache-dir", tmp_path / "cache", script,
        env={"MYPYPATH": str(PACKAGE.parent), "LD_PRELOAD": ""},
    )
    found = [line.split("script.py:")[1] for line in result.stdout.splitlines() if "script.py:" in line]
    assert [line.split(":")[0] for line in found] == ["3", "4", "5"], result.stdout
    assert 'has no attribute "ad"' in found[0] and "read-only" in found[2]
