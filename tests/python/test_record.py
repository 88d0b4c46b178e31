"""Recording in one call or one command, and the plot of it."""

import csv
import subprocess
import sys

import pytest

import zmhost

from conftest import GREENHOUSE, PROJECT

TABLE = PROJECT / "examples" / "greenhouse.csv"
CO2 = "Klima/Luftvolumen:CO₂"


def rows_of(path):
    with open(path, encoding="utf-8", newline="") as file:
        return list(csv.reader(file))


def test_ports_are_recorded_by_name_object_and_block(model, tmp_path):
    tank = model["灌漑/養液/𠮷田タンク"]
    file = zmhost.record(model, TABLE, [model.port(CO2), CO2, tank.path], tmp_path / "air.csv")
    head, *rows = rows_of(file)
    assert head == ["time", CO2, "灌漑/養液/𠮷田タンク:水位"]
    assert len(rows) == len(rows_of(TABLE)) - 1


def test_a_port_that_the_table_lacks_is_named(model, tmp_path):
    with pytest.raises(zmhost.HostError, match='no column for the port "Klima/Luftvolumen:Feuchte"'):
        zmhost.record(model, TABLE, ["Klima/Luftvolumen:Feuchte"], tmp_path / "air.csv")


def test_the_values_are_those_of_the_table(model, tmp_path):
    seen = []
    file = zmhost.record(model, TABLE, [CO2], tmp_path / "a.csv", decimation=4, progress=lambda *at: seen.append(at))
    source = rows_of(TABLE)
    column = source[0].index(CO2)
    assert [row[1] for row in rows_of(file)[1:]] == [row[column] for row in source[1::4]]
    assert seen[0] == (1, len(source) - 1) and seen[-1] == (len(source) - 1, len(source) - 1)


def test_a_data_frame_is_a_table(model, tmp_path):
    pandas = pytest.importorskip("pandas")
    frame = pandas.DataFrame({"time": [0.0, 1.0], CO2: [400.0, 410.0]})
    assert rows_of(zmhost.record(model, frame, [CO2], tmp_path / "a.csv"))[1:] == [["0", "400"], ["1", "410"]]


@pytest.mark.parametrize("suffix", [".svg", ".png"])
def test_a_plot_is_drawn(model, tmp_path, suffix):
    pytest.importorskip("matplotlib")
    plot = tmp_path / f"air{suffix}"
    zmhost.record(model, TABLE, [CO2], tmp_path / "a.csv", plot=plot)
    content = plot.read_bytes()
    if suffix == ".svg":
        assert b"time in s" in content and "CO₂" in content.decode()
    else:
        assert content.startswith(b"\x89PNG")


@pytest.mark.parametrize(
    ("file", "plot", "text"),
    [
        ("a.parquet", None, "a recording has a name that ends in .csv"),
        ("a", None, "a recording has a name that ends in .csv"),
        ("a.csv", "a.gif", "a plot has a name that ends in .svg"),
    ],
)
def test_other_kinds_of_files_are_refused_before_anything_runs(model, tmp_path, file, plot, text):
    with pytest.raises(ValueError, match=text):
        zmhost.record(model, TABLE, [CO2], tmp_path / file, plot=plot and tmp_path / plot)
    assert list(tmp_path.iterdir()) == []


def test_unknown_ports_and_no_port_are_refused(model, tmp_path):
    with pytest.raises(KeyError, match="nothing:1"):
        zmhost.record(model, TABLE, ["nothing:1"], tmp_path / "a.csv")
    with pytest.raises(ValueError, match="no output port"):
        zmhost.record(model, TABLE, [], tmp_path / "a.csv")


def run_command(*arguments, cwd):
    command = [sys.executable, "-m", "zmhost.record_command", *map(str, arguments)]
    return subprocess.run(command, cwd=cwd, capture_output=True, text=True)


def test_the_command_records_every_column_in_the_callers_folder(tmp_path):
    result = run_command(GREENHOUSE, TABLE, "-o", "all.csv", cwd=tmp_path)
    assert (result.returncode, result.stdout, result.stderr) == (0, "", "")
    assert rows_of(tmp_path / "all.csv") == rows_of(TABLE)


def test_the_command_says_in_one_line_what_is_wrong(tmp_path):
    for arguments, text in [
        ((GREENHOUSE, TABLE, "-o", "a.parquet"), "ends in .csv"),
        ((GREENHOUSE, TABLE, "--port", "nothing:1", "-o", "a.csv"), "no output port 'nothing:1'"),
        (("missing.ssd", TABLE, "-o", "a.csv"), "No such file"),
    ]:
        result = run_command(*arguments, cwd=tmp_path)
        assert result.returncode == 2 and text in result.stderr and result.stderr.count("\n") == 1
