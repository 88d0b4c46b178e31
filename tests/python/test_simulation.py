"""Runs of models: sources, steps, latest values and histories, recordings, edits, errors."""

import os
import signal
import subprocess
import sys
import time as clock

import pytest

import zmhost
from zmhost import Zelmar

from conftest import GREENHOUSE, PROJECT

CO2 = "Klima/Luftvolumen:CO₂"
WARMTH = "Klima/Luftvolumen:Temperatur"


@pytest.fixture(autouse=True)
def _nothing_left():
    yield
    zmhost.workspace.clear()
    assert zmhost.active_recordings() == []


@pytest.fixture
def ports(model):
    return {port.name: port for port in model["Klima/Luftvolumen"].outputs}


def observe(model, *ports, clients=(), **settings):
    """Makes ports instrumented signals; their UUIDs are "s1", "s2" …"""
    signals = Zelmar.HMI.InstrumentedSignals(model.name)
    for number, port in enumerate(ports, 1):
        signals.add(
            Zelmar.HMI.SignalSpecification(
                UUID=f"s{number}",
                BlockPath_=port.block.path,
                ZID_=port.block.zid,
                OutputPortIndex_=port.index,
                **settings,
            )
        )
    observers = Zelmar.HMI.StreamingClients(model.name)
    for client in clients:
        observers.add(Zelmar.HMI.SignalClient(SourceModel_=model.name, **client))
    model.observers = Zelmar.HMI.ModelObservers.createFromSignalsAndClients(signals, observers)
    return signals


def constant(value):
    return lambda time: {CO2: value}


def test_a_table_is_run_row_by_row(model, ports):
    observe(model, ports["CO₂"])
    run = model.simulate({"time": [0, 1, 2], ports["CO₂"]: [400, 410, 420]})
    seen = [(time, run.latest("s1"), run.latest(ports["CO₂"]), run.latest(CO2)) for time in run]
    assert seen == [(0, 400, 400, 400), (1, 410, 410, 410), (2, 420, 420, 420)]
    assert run.state == "ended" and run.error == ""


def test_the_history_is_taken_without_a_copy(model, ports):
    numpy = pytest.importorskip("numpy")
    observe(model, ports["CO₂"])
    with model.simulate({"time": [0, 1, 2], CO2: [400, 410, 420]}) as run:
        run.finish()
        history = run.history("s1")
    times, values = numpy.asarray(history.times), numpy.asarray(history.values)
    assert times.tolist() == [0, 1, 2] and values.tolist() == [400, 410, 420]
    assert numpy.shares_memory(values, numpy.asarray(history.values))


def test_the_history_has_the_settings_of_the_signal(model, ports):
    observe(model, ports["CO₂"], Decimation_=2, MaxPoints_=2)
    run = model.simulate({"time": range(8), CO2: range(8)})
    run.finish()
    assert list(run.history("s1").values) == [4, 6]
    assert list(run.history(ports["CO₂"]).times) == [4, 6]
    assert run.channels[0].decimation == 2 and run.channels[0].max_points == 2


def test_a_function_computes_the_whole_model(model, ports):
    observe(model, ports["CO₂"])
    with model.simulate(lambda time: {CO2: 2 * time, ports["Temperatur"]: -time}, step=0.5, stop=1) as run:
        assert [(time, run.latest("s1"), run.latest(WARMTH)) for time in run] == [
            (0, 0, 0),
            (0.5, 1, -0.5),
            (1, 2, -1),
        ]


def test_functions_compute_blocks_from_their_inputs(model):
    seen = []

    def controller(time, inputs):
        seen.append(inputs.get("Istwert"))
        return {"heizen": 2 * inputs.get("Istwert", 0)}

    table = {"time": [0, 1], WARMTH: [20, 21]}
    run = model.simulate([{"Klima/Klimaregler": controller}, table])
    assert [run.latest("Klima/Klimaregler:heizen") for _ in run] == [40, 42]
    assert seen == [20, 21]


@pytest.mark.parametrize(
    "value, expected",
    [(1 + 2j, 1 + 2j), ([1, 2, 3], [1, 2, 3]), ({"a": 1, "b": {"c": [2, 3j]}}, {"a": 1, "b": {"c": [2, 3j]}}), (True, 1)],
)
def test_values_may_be_complex_arrays_or_buses(model, ports, value, expected):
    observe(model, ports["CO₂"])
    with model.simulate(constant(value), step=1, stop=1) as run:
        run.finish()
        assert run.latest("s1") == expected
        assert run.latest(CO2) == expected


def test_the_history_of_a_bus_is_read_by_leaf(model, ports):
    observe(model, ports["CO₂"])
    with model.simulate(lambda time: {CO2: {"a": time, "b": [time, -time]}}, step=1, stop=2) as run:
        run.finish()
        assert list(run.history("s1", "a").values) == [0, 1, 2]
        assert run.history("s1", "b").values.tolist() == [[0, 0], [1, -1], [2, -2]]
        with pytest.raises(ValueError, match="no leaf \"c\"; it has: a, b"):
            run.history("s1", "c")


def test_nan_is_an_error_unless_it_is_allowed(model):
    with pytest.raises(zmhost.HostError, match=r"port \"Klima/Luftvolumen:CO₂\" at 0 s is NaN"):
        model.simulate(constant(float("nan")), step=1).finish()
    run = model.simulate(constant(float("nan")), step=1, stop=1, allow_nan=True)
    run.finish()
    assert run.error == ""


def test_unknown_ports_and_ports_of_two_sources_are_refused(model):
    with pytest.raises(zmhost.HostError, match="names no output port"):
        model.simulate({"time": [0], "Nowhere:x": [1]})
    with pytest.raises(zmhost.HostError, match='"Nowhere:x" names no port: there is no such block'):
        model.simulate(lambda time: {"Nowhere:x": 1}, step=1).step()
    with pytest.raises(zmhost.HostError, match="computed by two sources"):
        model.simulate([{"time": [0], CO2: [1]}, constant(1)]).step()


def test_an_error_in_the_function_ends_the_run_with_its_traceback(model, ports, tmp_path):
    def fail(time):
        if time == 2:
            raise KeyError("enough")
        return {CO2: time}

    file = zmhost.FileRecording(ports["CO₂"], tmp_path / "co2.csv")
    observe(model, ports["CO₂"])
    run = model.simulate(fail, step=1, record=[file])
    with pytest.raises(KeyError, match="enough") as raised:
        run.finish()
    assert raised.traceback[-1].name == "fail"
    assert run.state == "ended" and "enough" in run.error
    assert list(run.history("s1").values) == [0, 1]
    assert (tmp_path / "co2.csv").read_text() == f"time,{CO2}\n0,0\n1,1\n"


def test_what_is_no_value_is_refused_with_the_port(model):
    with pytest.raises(TypeError, match="Klima/Luftvolumen:CO₂.*'much' is not a number"):
        model.simulate(constant("much"), step=1).step()
    with pytest.raises(TypeError, match="must return a mapping"):
        model.simulate(lambda time: 3, step=1).step()


def test_a_loop_that_pauses_goes_on_later(model):
    run = model.simulate({"time": [0, 1, 2, 3], CO2: [0, 1, 2, 3]})
    times = []
    for time in run:
        times.append(time)
        if time == 1:
            run.pause()
    assert times == [0, 1] and run.state == "paused"
    assert run.step() and run.time == 2
    run.resume()
    assert list(run) == [3]


def test_a_paced_run_keeps_to_real_time(model):
    begin = clock.monotonic()
    assert len(list(model.simulate({"time": [0, 1, 2], CO2: [0, 1, 2]}, pace=20))) == 3
    assert clock.monotonic() - begin >= 0.1
    with pytest.raises(zmhost.HostError, match="The pace is 0"):
        model.simulate({"time": [0], CO2: [0]}, pace=0)


def test_ctrl_c_ends_a_run_that_waits(model):
    run = model.simulate({"time": [0, 1000], CO2: [0, 1]}, pace=1)
    run.step()
    former = signal.signal(signal.SIGALRM, signal.default_int_handler)
    try:
        signal.setitimer(signal.ITIMER_REAL, 0.05)
        with pytest.raises(KeyboardInterrupt):
            run.step()
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, former)
    assert run.state == "ended"


def test_edits_take_effect_at_the_next_step(model, ports):
    signals = observe(model, ports["CO₂"])
    run = model.simulate({"time": range(5), CO2: range(5), WARMTH: range(5)})
    with zmhost.editor.Editor(model):
        run.step()
        model["Klima/Luftvolumen"].rename("Raumluft")
        run.step()
        assert run.channels[0].block_path == "Gewächshaus/Klima/Raumluft"
        spec = signals.get(1)
        spec.UUID, spec.OutputPortIndex_ = "s2", ports["Temperatur"].index
        signals.add(spec)
        run.step()
        assert [channel.uuid for channel in run.channels] == ["s1", "s2"]
        signals.remove(1)
        run.step()
    assert [channel.uuid for channel in run.channels] == ["s2"]
    assert list(run.history("s2").values) == [2, 3]
    run.stop()


def test_a_model_closed_during_the_run_ends_it(model, ports):
    observe(model, ports["CO₂"])
    run = model.simulate({"time": [0, 1], CO2: [5, 6]})
    run.step()
    model.close()
    with pytest.raises(zmhost.HostError, match="was closed during its run"):
        run.step()
    assert list(run.history("s1").values) == [5]


def test_clients_are_resolved(model, ports):
    board = model.root.add("Board", "system")
    gauge = board.add("Gauge")
    known = {"SignalUUID_": "s1", "ObserverType_": "gauge", "ModelPath_": [gauge.path], "ModelPathZID_": [gauge.zid]}
    observe(model, ports["CO₂"], clients=[known])
    with model.simulate({"time": [0], CO2: [5]}) as run:
        (client,) = run.clients
    assert (client.observer_type, client.title, client.channel) == ("gauge", "Gauge", run.channels[0].id)
    assert client.aligned_path == [gauge.path, ports["CO₂"].block.path]


def test_recordings_work_during_a_run(model, ports, tmp_path):
    file = zmhost.FileRecording(ports["CO₂"], tmp_path / "co2.csv")
    variable = zmhost.VariableRecording(ports["Temperatur"], "warmth")
    table = {"time": [0, 1, 2], CO2: [400, 410, 420], WARMTH: [20, 21, 22]}
    seen = []
    with model.simulate(table, record=[file, variable]) as run:
        for time in run:
            assert zmhost.active_recordings() == [file, variable]
            seen.append(0 if variable.value is None else len(list(variable.value)) if time else 1)
    assert seen == [1, 2, 3]
    assert list(zmhost.workspace["warmth"]) == [20, 21, 22]
    assert (tmp_path / "co2.csv").read_text() == f"time,{CO2}\n0,400\n1,410\n2,420\n"


KILLED = f"""
import os, sys, time, zmhost
with zmhost.open_model({str(GREENHOUSE)!r}) as model:
    port = next(port for port in model["Klima/Luftvolumen"].outputs if port.name == "CO₂")
    recording = zmhost.FileRecording(port, sys.argv[1])
    run = model.simulate({{"time": range(100), port: range(100)}}, pace=10, record=[recording])
    for now in run:
        if now == 20:
            os.kill(os.getpid(), 9)
"""


def test_a_file_is_complete_up_to_the_last_flush_when_the_program_is_killed(tmp_path):
    file = tmp_path / "co2.csv"
    subprocess.run([sys.executable, "-c", KILLED, str(file)], check=False, timeout=60, env=dict(os.environ))
    lines = file.read_text().splitlines()
    assert lines[0] == f"time,{CO2}"
    assert 5 <= len(lines) - 1 <= 20
    assert lines[1:] == [f"{n},{n}" for n in range(len(lines) - 1)]


@pytest.mark.skipif(not os.path.exists("/dev/full"), reason="there is no /dev/full")
def test_a_full_disk_ends_the_run(model, ports):
    recording = zmhost.FileRecording(ports["CO₂"], "/dev/full")
    rows = range(20_000)
    with pytest.raises(zmhost.HostError, match="No space left"):
        model.simulate({"time": rows, CO2: rows}, record=[recording]).finish()
    assert zmhost.active_recordings() == []


def test_histories_that_take_too_much_are_shortened_with_a_warning(model, ports):
    observe(model, ports["CO₂"])
    with pytest.warns(zmhost.HostWarning, match="shortened"):
        run = model.simulate({"time": range(1000), CO2: range(1000)}, history_bytes=8000)
    run.finish()
    assert 300 < len(run.history("s1").values) < 500


def test_progress_is_shown(model, capfd):
    model.simulate({"time": [0, 10], CO2: [0, 1]}, progress=True).finish()
    assert "0 s (0 %)" in capfd.readouterr().err


def test_the_example_reads_the_latest_value_in_the_loop(run):
    done = run(PROJECT / "examples" / "simulation.py")
    assert done.returncode == 0, done.stderr
    assert "04:00   air  13.5" in done.stdout
    assert "97 samples were kept" in done.stdout
