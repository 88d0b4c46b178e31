"""Recording blocks, and the replay of a recorded table."""

import functools
import re
import signal

import pytest

import zmhost

from conftest import PROJECT

TABLE = PROJECT / "examples" / "greenhouse.csv"
CO2 = "Klima/Luftvolumen:CO₂"


@pytest.fixture(autouse=True)
def _nothing_left():
    yield
    zmhost.workspace.clear()
    assert zmhost.active_recordings() == []


@pytest.fixture
def ports(model):
    """The output ports of the block that tests record."""
    return {port.name: port for port in model["Klima/Luftvolumen"].outputs}


@pytest.fixture
def table(ports):
    warmth = {"Klima/Luftvolumen:Temperatur": [20, 21, 22, 23]}
    return {"time": [0, 1, 2, 3], **warmth, ports["CO₂"]: [400, 410, 420, 430]}


def test_a_port_is_recorded_into_a_file(model, ports, table, tmp_path):
    zmhost.replay(model, table, zmhost.FileRecording(ports["CO₂"], tmp_path / "co2.csv"))
    assert (tmp_path / "co2.csv").read_text() == f"time,{CO2}\n0,400\n1,410\n2,420\n3,430\n"


def test_two_ports_share_a_file(model, ports, table, tmp_path):
    file = tmp_path / "air.csv"
    both = [zmhost.FileRecording(ports[name], file, properties={"header": name}) for name in ("Temperatur", "CO₂")]
    both[1].decimation = 2
    zmhost.replay(model, table, *both)
    assert file.read_text() == "time,Temperatur,CO₂\n0,20,400\n1,21,\n2,22,420\n3,23,\n"


def test_file_settings_are_honoured(model, ports, table, tmp_path):
    recording = zmhost.FileRecording(
        ports["CO₂"], tmp_path / "co2.csv", decimation="2", max_points=1, domain="air", properties={"digits": 2}
    )
    zmhost.replay(model, table, recording)
    assert (tmp_path / "co2.csv").read_text() == f"time,{CO2}\n0,4e+02\n"
    assert (recording.decimation, recording.max_points, recording.domain) == ("2", "1", "air")
    assert (recording.path, recording.file_name) == (str(tmp_path / "co2.csv"), "co2.csv")
    assert recording.source_id == f"{ports['CO₂'].block.zid}:{ports['CO₂'].index}"
    assert repr(recording) == f"<recording of '{CO2}' into file \"{tmp_path / 'co2.csv'}\">"


def test_a_port_is_recorded_into_a_variable(model, ports, table):
    zmhost.replay(model, table, zmhost.VariableRecording(ports["CO₂"], "co2", decimation=2))
    assert zmhost.workspace["co2"].dims == (2, 1)
    assert list(zmhost.workspace["co2"]) == [400, 420]


def test_a_variable_keeps_the_last_points(model, ports, table):
    zmhost.replay(model, table, zmhost.VariableRecording(ports["CO₂"], "co2", max_points="3"))
    assert list(zmhost.workspace["co2"]) == [410, 420, 430]


def test_a_struct_with_time_holds_times_and_names(model, ports, table):
    recording = zmhost.VariableRecording(ports["CO₂"], "co2", "structwithtime")
    zmhost.replay(model, table, recording)
    variable = zmhost.workspace["co2"]
    assert list(variable["time"]) == [0, 1, 2, 3]
    assert list(variable["signals"]["values"]) == [400, 410, 420, 430]
    assert variable["signals"]["label"] == "CO₂"
    assert variable["blockName"] == "Gewächshaus/Klima/Luftvolumen"
    assert (recording.name, recording.format, recording.max_points) == ("co2", "structwithtime", "")


def test_the_other_structs_have_no_times(model, ports, table):
    shapes = [zmhost.VariableRecording(ports["CO₂"], name, name) for name in ("struct", "struct2D")]
    zmhost.replay(model, table, *shapes)
    assert zmhost.workspace["struct"]["time"] is None
    assert zmhost.workspace["struct"]["signals"]["values"].dims == (4, 1)
    assert zmhost.workspace["struct2D"]["time"] is None
    assert zmhost.workspace["struct2D"]["signals"]["values"].dims == (1, 1, 4)


def test_a_table_is_read_from_a_file(model, ports):
    zmhost.replay(model, TABLE, zmhost.VariableRecording(ports["Temperatur"], "air"))
    zmhost.replay(model, str(TABLE), zmhost.VariableRecording(ports["Temperatur"], "again"))
    assert len(zmhost.workspace["air"]) == 97
    assert list(zmhost.workspace["air"]) == list(zmhost.workspace["again"])


def test_recordings_are_active_while_the_replay_runs(model, ports, table):
    recording = zmhost.VariableRecording(ports["CO₂"], "co2")
    seen = []
    zmhost.replay(model, table, recording, step=lambda time: seen.append((time, zmhost.active_recordings())))
    assert seen == [(time, [recording]) for time in (0.0, 1.0, 2.0, 3.0)]


def test_a_recording_cannot_run_twice_at_a_time(model, ports, table):
    recording = zmhost.VariableRecording(ports["CO₂"], "co2")
    with pytest.raises(zmhost.HostError, match='variable "co2": another recording writes there already'):
        zmhost.replay(model, table, recording, step=lambda time: zmhost.replay(model, table, recording))


def test_what_the_step_raises_ends_the_replay(model, ports, table):
    def stop(time):
        if time == 1:
            raise KeyError("enough")

    with pytest.raises(KeyError, match="enough"):
        zmhost.replay(model, table, zmhost.VariableRecording(ports["CO₂"], "co2"), step=stop)
    assert zmhost.active_recordings() == []
    assert list(zmhost.workspace["co2"]) == [400, 410]


def test_ctrl_c_ends_a_replay_in_native_code(model, ports, tmp_path):
    """The step is no Python code, so that only the replay itself can notice the signal."""
    rows = list(map(float, range(100_000)))
    file = tmp_path / "co2.csv"
    former = signal.signal(signal.SIGALRM, signal.default_int_handler)
    try:
        with pytest.raises(KeyboardInterrupt):
            zmhost.replay(
                model,
                {"time": rows, ports["CO₂"]: rows},
                zmhost.FileRecording(ports["CO₂"], file),
                step=functools.partial(signal.setitimer, signal.ITIMER_REAL, 1e-6),
            )
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, former)
    assert zmhost.active_recordings() == []
    assert 1 <= file.read_text().count("\n") - 1 < len(rows)


def test_settings_are_refused_when_the_replay_begins(model, ports, table, tmp_path):
    with pytest.raises(zmhost.HostError, match='the decimation "0" is not a whole number from 1') as raised:
        zmhost.replay(model, table, zmhost.FileRecording(ports["CO₂"], tmp_path / "co2.csv", decimation=0))
    assert (raised.value.catalog, raised.value.key) == ("recorder:errors", "InvalidDecimation")
    assert not (tmp_path / "co2.csv").exists()


def test_an_input_is_refused(model):
    with pytest.raises(ValueError, match="this is an input"):
        zmhost.VariableRecording(model["Klima/Luftvolumen"].inputs[0], "v")


def test_a_bad_table_is_refused_with_its_place(model, tmp_path):
    (tmp_path / "bad.csv").write_text(f"time,{CO2}\n0,1\n1,much\n")
    with pytest.raises(zmhost.HostError, match=r'bad\.csv:3: column 2 \(".*"\): "much" is not a number\.'):
        zmhost.replay(model, tmp_path / "bad.csv")


def test_a_mapping_without_times_is_refused(model):
    with pytest.raises(ValueError, match="no column 'time'"):
        zmhost.replay(model, {CO2: [1.0]})


def test_the_example_shows_what_was_recorded(run):
    result = run("-m", "zmhost", PROJECT / "examples" / "recording.py")
    assert (result.returncode, result.stderr) == (0, "")
    for words in ("97 points in time, 3 recordings", "none afterwards", "Temperatur (file)", "水位 (variable)"):
        assert words in result.stdout
    assert re.search(r"10:00 +19\.69 +587\.0 +86\.6\n", result.stdout)


def test_a_recording_keeps_its_diagram():
    with zmhost.open_model(PROJECT / "examples" / "greenhouse.ssd") as model:
        recording = zmhost.VariableRecording(model["Klima/Luftvolumen"].outputs[0], "v")
    del model
    assert recording.port_name == "Klima/Luftvolumen:Temperatur"


def test_nothing_in_a_recordings_place_is_a_type_error(model):
    with pytest.raises(TypeError, match="None is no recording"):
        zmhost.replay(model, {"time": [0]}, None)
    with pytest.raises(TypeError):
        zmhost.replay(None, {"time": [0], CO2: [1]})


def test_ports_name_their_columns(model):
    block = model.root.add("Twins")
    for name in ("2", "1"):
        block.add_output(name)
    recordings = [zmhost.VariableRecording(port, f"of{port.index}") for port in block.outputs]
    table = {"time": [0, 1], block.outputs[0]: [10, 11], block.outputs[1]: [20, 21]}
    zmhost.replay(model, table, *recordings)
    assert [list(zmhost.workspace[f"of{i}"]) for i in (1, 2)] == [[10, 11], [20, 21]]
    with pytest.raises(ValueError, match="input"):
        zmhost.replay(model, {"time": [0], model["Klima/Klimaregler"].inputs[0]: [1]})
    with pytest.raises(ValueError, match="two columns"):
        zmhost.replay(model, {"time": [0], "Twins:2": [1], block.outputs[0]: [1]})
    with pytest.raises(TypeError, match="not by 7"):
        zmhost.replay(model, {"time": [0], 7: [1]})


@pytest.mark.parametrize("content, place", [(b"time,\xe4\n0,1\n", ":1: column 2"), (b"time,a\n0,\xe4\n", ":2: column 2")])
def test_a_table_that_is_not_utf8_is_refused_with_its_place(model, tmp_path, content, place):
    table = tmp_path / "latin.csv"
    table.write_bytes(content)
    with pytest.raises(zmhost.HostError, match=f"latin.csv{place}: the text is not UTF-8"):
        zmhost.replay(model, table)


def test_a_link_to_a_file_is_the_file(model, tmp_path):
    (tmp_path / "link.csv").symlink_to(tmp_path / "real.csv")
    (tmp_path / "real.csv").touch()
    recordings = [zmhost.FileRecording(model["Klima/Luftvolumen"].outputs[0], tmp_path / name) for name in ("link.csv", "real.csv")]
    assert recordings[0].target == recordings[1].target


def test_a_port_that_was_deleted_is_no_longer_recorded(model):
    block = model.root.add("New")
    block.add_output("y")
    recording = zmhost.VariableRecording(block.outputs[0], "y")
    block.delete_output(1)
    assert recording.port_name == "New:1" and "New:1" in repr(recording)
    with pytest.raises(zmhost.HostError, match="has no output port 1"):
        zmhost.replay(model, {"time": [0]}, recording)


@pytest.mark.parametrize("digits", [None, b"x", []])
def test_a_property_that_is_neither_text_nor_number_is_a_type_error(model, tmp_path, digits):
    with pytest.raises(TypeError):
        zmhost.FileRecording(model["Klima/Luftvolumen"].outputs[0], tmp_path / "a.csv", properties={"digits": digits})
