"""zmhost as a program, and what happens when a program ends."""

import _ctypes
import os
import signal
import subprocess
import sys
import textwrap

import pytest

from conftest import GREENHOUSE, PROJECT

LEAK = """
import ctypes, zmhost
from zmhost import Zelmar
Zelmar.HMI
host = ctypes.CDLL("libzm_reference_host.so.0")
make = host._Z20nvCreateDoubleScalard
make.argtypes, make.restype = [ctypes.c_double], ctypes.c_void_p
make(2.5)
"""


@pytest.fixture
def script(tmp_path):
    def write(text, name="script.py"):
        file = tmp_path / name
        file.write_text(textwrap.dedent(text), encoding="utf-8")
        return file

    return write


def test_a_script_runs_as_the_main_program(run, script):
    file = script(
        """
        import sys
        import beside
        import zmhost
        print(__name__, sys.argv[1:], beside.word, __file__ == sys.argv[0])
        print([model.name for model in [zmhost.open_model(f) for f in sys.argv[1:]]])
        """
    )
    script("word = 'found'", "beside.py")
    result = run("-m", "zmhost", file, GREENHOUSE)
    assert result.stdout == f"__main__ ['{GREENHOUSE}'] found True\n['Gewächshaus']\n"
    assert (result.returncode, result.stderr) == (0, "")


@pytest.mark.parametrize("runner", [("-m", "zmhost"), ()])
def test_what_globals_still_hold_is_no_leak(run, script, runner):
    file = script(
        f"""
        import zmhost
        from zmhost import Zelmar
        model = zmhost.open_model({str(GREENHOUSE)!r})
        signals = Zelmar.HMI.InstrumentedSignals(model.name)
        signals.add(Zelmar.HMI.SignalSpecification(BlockPath_="A", OutputPortIndex_=1))
        record = signals.get(1, True)
        cycle = [signals]
        cycle.append(cycle)
        zmhost.kept = signals
        @zmhost.host_function("mine")
        def mine():
            return record
        """
    )
    result = run(*runner, file)
    assert (result.returncode, result.stderr) == (0, "")


@pytest.mark.parametrize("runner", [("-m", "zmhost"), ()])
def test_objects_that_hold_each_other_are_no_leak(run, script, runner):
    file = script(
        """
        from zmhost import Zelmar
        one, other = Zelmar.HMI.SignalClient(), Zelmar.HMI.SignalClient()
        one.ObserverParams_ = {"held": [other]}
        other.ObserverParams_ = {"held": one}
        alone = Zelmar.HMI.SignalClient()
        alone.ObserverParams_ = alone
        """
    )
    result = run(*runner, file)
    assert (result.returncode, result.stderr) == (0, "")


@pytest.mark.parametrize("runner", [("-m", "zmhost"), ()])
def test_a_collection_whose_client_holds_it_is_no_leak(run, script, runner):
    file = script(
        """
        from zmhost import Zelmar
        clients = Zelmar.HMI.StreamingClients("plant")
        clients.add(Zelmar.HMI.SignalClient(ObserverParams_={"owner": clients}))
        other = Zelmar.HMI.StreamingClients("plant")
        link = Zelmar.HMI.SignalClient()
        link.ObserverParams_ = other
        other.add(Zelmar.HMI.SignalClient(ObserverParams_=[link, clients]))
        """
    )
    result = run(*runner, file)
    assert (result.returncode, result.stderr) == (0, "")


@pytest.mark.parametrize("runner", [("-m", "zmhost"), ()])
def test_a_value_that_native_code_leaves_open_fails_the_program(run, script, runner):
    result = run(*runner, script(LEAK))
    assert result.returncode == 3
    assert "1 live value" in result.stderr and "double" in result.stderr
    assert "nvCreateDoubleScalar" in result.stderr


def test_finalizers_still_reach_the_host(run, script):
    file = script(
        """
        from zmhost import Zelmar
        class Last:
            def __init__(self):
                self.signals = Zelmar.HMI.InstrumentedSignals("plant")
            def __del__(self):
                print("ends with", self.signals.Model)
        last = Last()
        """
    )
    result = run("-m", "zmhost", file)
    assert (result.returncode, result.stdout, result.stderr) == (0, "ends with plant\n", "")


def test_the_exit_code_is_the_scripts(run, script):
    assert run("-m", "zmhost", script("import sys; sys.exit(7)")).returncode == 7


def test_an_exception_is_shown_as_pythons_own(run, script):
    file = script("def f():\n    raise ValueError('why')\nf()\n")
    ours, pythons = run("-m", "zmhost", file), run(file)
    assert ours.returncode == pythons.returncode == 1
    assert ours.stderr == pythons.stderr and "ValueError: why" in ours.stderr


def test_a_host_error_is_shown_with_its_text(run, script):
    file = script("from zmhost import Zelmar\nZelmar.HMI.InstrumentedSignals().get(1)\n")
    result = run("-m", "zmhost", file)
    assert result.returncode == 1 and "ElementIndexError: " in result.stderr


def test_a_script_that_is_missing_is_named(run):
    result = run("-m", "zmhost", "missing.py")
    assert result.returncode == 2 and "missing.py" in result.stderr


def test_a_diagram_in_place_of_the_script_is_told(run):
    result = run("-m", "zmhost", GREENHOUSE)
    assert result.returncode == 2 and "is a model" in result.stderr


def test_control_c_ends_a_script_as_it_ends_python(script):
    file = script(
        """
        import time
        import zmhost
        @zmhost.host_function("wait")
        def wait():
            print("waiting", flush=True)
            time.sleep(60)
        zmhost.call("wait")
        """
    )
    with subprocess.Popen(
        [sys.executable, "-m", "zmhost", str(file)], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True
    ) as process:
        assert process.stdout.readline() == "waiting\n"
        process.send_signal(signal.SIGINT)
        _, errors = process.communicate(timeout=60)
    assert process.returncode == 130 and "KeyboardInterrupt" in errors


@pytest.mark.parametrize("unbuffered", ["", "1"])
@pytest.mark.parametrize("line", ["print('line ' * 20000)", "print('a line')", "print('a line'); sys.exit(7)"])
def test_a_script_whose_output_nobody_reads_ends_quietly(script, line, unbuffered):
    file = script(f"import sys\n{line}\n")
    reader, writer = os.pipe()
    os.close(reader)
    with os.fdopen(writer, "wb") as output:
        ended = subprocess.run(
            [sys.executable, "-m", "zmhost", file],
            env={**os.environ, "PYTHONUNBUFFERED": unbuffered},
            stdout=output,
            stderr=subprocess.PIPE,
            text=True,
            timeout=120,
        )
    assert (ended.returncode, ended.stderr) == (128 + signal.SIGPIPE, "")


def test_a_reader_that_has_read_all_is_no_failure(script):
    command = f"{sys.executable} -m zmhost {script('print(1)')} | cat; exit ${{PIPESTATUS[0]}}"
    result = subprocess.run(["bash", "-c", command], capture_output=True, text=True, timeout=120)
    assert (result.returncode, result.stdout, result.stderr) == (0, "1\n", "")


def test_a_script_may_close_its_output(run, script):
    result = run("-m", "zmhost", script("import sys; print('last'); sys.stdout.close()"))
    assert (result.returncode, result.stdout, result.stderr) == (0, "last\n", "")


def test_another_pipe_that_breaks_is_an_error(run, script):
    result = run("-m", "zmhost", script("raise BrokenPipeError('mine')"))
    assert result.returncode == 1 and "BrokenPipeError: mine" in result.stderr


def test_warnings_can_be_errors(run, script):
    file = script(
        """
        from zmhost import Zelmar
        signals = Zelmar.HMI.InstrumentedSignals("plant")
        signals.add(Zelmar.HMI.SignalSpecification(BlockPath_="nowhere"))
        signals.Persistence
        print("saved")
        """
    )
    mild, strict = run("-m", "zmhost", file), run("-W", "error", "-m", "zmhost", file)
    assert mild.returncode == 0 and mild.stdout == "saved\n" and f"{file}:5: HostWarning: " in mild.stderr
    assert strict.returncode == 1 and strict.stdout == "" and "HostWarning: " in strict.stderr


def test_host_calls_are_logged_from_the_librarys_first_one(run, script):
    file = script("from zmhost import Zelmar\nZelmar.HMI.InstrumentedSignals\n")
    log = run("-m", "zmhost", "--log-host-calls", file).stderr
    assert log.index("getNamespace") < log.index("addNamespace") < log.index("addClass")
    assert run("-m", "zmhost", file).stderr == ""


def test_the_prompt_has_the_host_at_hand(run):
    result = run("-m", "zmhost", input="signals = Zelmar.HMI.InstrumentedSignals('plant')\nprint(signals)\n")
    assert "<Zelmar.HMI.InstrumentedSignals Model='plant'>" in result.stdout
    assert "zmhost, Zelmar" in result.stderr and "open_model" in result.stderr
    assert result.returncode == 0


def test_what_the_prompt_recommends_can_be_typed(run):
    banner = run("-m", "zmhost", input="").stderr
    recommended = banner[banner.index("Try\n") + 4 : banner.index("Ctrl-D")]
    lines = [line.strip() for line in recommended.splitlines()]
    assert len(lines) == 2
    result = run("-m", "zmhost", input="\n".join(lines) + "\n", cwd=PROJECT, env={"PAGER": "cat"})
    assert "Error" not in result.stderr
    assert "component 'Gewächshaus/" in result.stdout and "'InstrumentedSignals'" in result.stdout
    assert "isPortObserved(" in result.stdout


def test_help_lists_the_options(run):
    result = run("-m", "zmhost", "--help")
    assert result.returncode == 0 and "--log-host-calls" in result.stdout


LOADING = "from zmhost import _library; _library.{} = {!r}; _library.load()"


def test_a_missing_library_is_named(run, tmp_path):
    missing = str(tmp_path / "libmissing.so")
    result = run("-c", LOADING.format("FILE_NAME", missing))
    assert result.returncode == 1 and "ImportError" in result.stderr and missing in result.stderr


def test_a_file_that_is_no_library_is_named(run, tmp_path):
    file = tmp_path / "libtext.so"
    file.write_text("text")
    result = run("-c", LOADING.format("FILE_NAME", str(file)))
    assert result.returncode == 1 and "ImportError" in result.stderr and str(file) in result.stderr


def test_a_library_without_the_entry_point_is_refused(run):
    result = run("-c", LOADING.format("FILE_NAME", _ctypes.__file__))
    assert result.returncode == 1 and "NVInitialize_zm_hmi_foundation" in result.stderr


def test_one_copy_of_the_library_is_loaded(run):
    program = (
        "from zmhost import Zelmar; Zelmar.HMI.InstrumentedSignals\n"
        "maps = open('/proc/self/maps', encoding='utf-8').read().split()\n"
        "print(len({part for part in maps if 'libzm_hmi_foundation' in part}))\n"
    )
    result = run("-c", program)
    assert (result.returncode, result.stdout) == (0, "1\n")


def test_a_directory_of_another_name_changes_nothing(run, tmp_path):
    result = run("-c", "from zmhost import Zelmar; print(Zelmar)", cwd=tmp_path)
    assert result.stdout.startswith("<namespace Zelmar") and os.listdir(tmp_path) == []
