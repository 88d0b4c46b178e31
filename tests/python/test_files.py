"""Models in files: what was saved is there when it is opened again, to the letter."""

import io
import json
import os
import pty
import subprocess
import sys
import warnings
import zipfile

import pytest

import zmhost
from zmhost import Zelmar

from conftest import GREENHOUSE, PROJECT
from test_editor import Walk, observe, observers_of, persisted

SHARED = PROJECT.parent / "shared" / "diagrams"
PUBLISHED = sorted(SHARED.glob("*.ssd"))


def described(model):
    """Everything that scripts see of a diagram, but handles."""
    return [
        (
            block.path,
            block.zid,
            block.kind,
            [port.name for port in block.outputs],
            [port.name for port in block.inputs],
            [repr(connection) for connection in block.connections],
            block.parameters(),
            [repr(target) for target in block.chart.objects] if block.chart else None,
        )
        for block in model.blocks
    ]


def observe_all(model):
    model.observers = observers_of(model)
    for port in model.output_ports:
        observe(model, port)


def assert_every_port_is_observed(model):
    signals = model.observers.Signals
    for port in model.output_ports:
        block = port.block
        spec = Zelmar.HMI.SignalSpecification(BlockPath_=block.path, ZID_=block.zid, OutputPortIndex_=port.index)
        assert signals.isPortObserved(spec), port
    assert signals.Count == len(model.output_ports)


@pytest.mark.parametrize("diagram", PUBLISHED or [None], ids=[path.stem for path in PUBLISHED] or ["none"])
def test_every_port_of_a_published_diagram_is_found_again(diagram, tmp_path):
    if diagram is None:
        pytest.skip(f"there are no published diagrams in {SHARED}")
    saved = tmp_path / "saved.ssp"
    with zmhost.open_model(diagram) as model:
        observe_all(model)
        model.save(saved)
        before = described(model), persisted(model)
    with zmhost.open_model(saved) as model:
        assert (described(model), persisted(model)) == before
        assert_every_port_is_observed(model)
    with zipfile.ZipFile(saved) as archive:
        assert archive.testzip() is None
        assert archive.read("SystemStructure.ssd") == diagram.read_bytes()


def test_a_dashboard_follows_a_renamed_saved_and_opened_model(tmp_path):
    saved = tmp_path / "saved.ssp"
    shows = {}
    with zmhost.open_model(GREENHOUSE) as model, zmhost.editor.Editor(model):
        observe_all(model)
        observed = model.observers.Signals.Persistence
        board = model.root.add("Board", "system")
        for number in range(1000):
            record = observed[number % len(observed)]
            widget = board.add(f"Widget {number}")
            client = Zelmar.HMI.SignalClient(
                UUID=f"client {number}",
                SourceModel_=model.name,
                ModelPath_=[widget.path],
                ModelPathZID_=[widget.zid],
                SignalUUID_=record["UUID"],
                ObserverParams_={"ModelName": model.name, "Colour": [number, 0.5]},
            )
            model.observers.Clients.add(client)
            shows[client.UUID] = (record["BlockPath_"], record["OutputPortIndex_"])
        model.rename("Betrieb Süd")
        board.rename("Leitstand")
        model["Leitstand/Widget 7"].rename("Renamed")
        model.save(saved)
    with zmhost.open_model(saved) as model:
        observers = zmhost.call("getAlignedObservers", model.observers.Clients)
        assert len(observers) == 1000
        for number, client in enumerate(observers):
            name = "Renamed" if number == 7 else f"Widget {number}"
            assert client.ModelPath_ == [f"Betrieb Süd/Leitstand/{name}"]
            assert client.SourceModel_ == "Betrieb Süd"
            assert client.ObserverParams_[0].to_dict() == {"ModelName": "Betrieb Süd", "Colour": [number, 0.5]}
            signal = client.SignalInfo
            assert signal.BlockPath_.partition("/")[2] == shows[client.UUID][0]
            assert signal.OutputPortIndex_ == shows[client.UUID][1]


def test_no_signal_is_on_the_wrong_port_after_edits_with_saving_and_opening_in_between(tmp_path):
    saved = tmp_path / "saved.ssp"
    model = zmhost.open_model(GREENHOUSE)
    model.observers = observers_of(model)
    walk = Walk(model, 5)
    walk.grow(150)
    for port in model.output_ports[::2]:
        walk.observe(port)
    for _ in range(10):
        with zmhost.editor.Editor(model) as editor:
            editor.rebind()
            walk.check()
            for _ in range(100):
                walk.edit()
                walk.check()
        before = described(model), persisted(model)
        model.save(saved)
        model.close()
        walk.model = model = zmhost.open_model(saved)
        assert (described(model), persisted(model)) == before
    model.close()


def test_a_script_is_told_of_every_step(tmp_path, model):
    told = []
    saved = tmp_path / "saved.ssp"
    model.save(saved, progress=lambda *step: told.append(step))
    assert [step[1:] for step in told] == [(i, len(told)) for i in range(len(told))]
    assert told[0][0] == "diagram"
    model.close()
    told.clear()
    with zmhost.open_model(saved, progress=lambda *step: told.append(step)):
        assert told[0] == ("file", 0, len(told))


@pytest.mark.parametrize("error", [ValueError, KeyboardInterrupt])
def test_what_the_progress_raises_ends_the_work(tmp_path, model, error):
    def stop(step, done, total):
        if done == total - 1:
            raise error("enough")

    saved = tmp_path / "saved.ssp"
    saved.write_bytes(b"former")
    with pytest.raises(error, match="enough"):
        model.save(saved, progress=stop)
    assert saved.read_bytes() == b"former"
    assert os.listdir(tmp_path) == ["saved.ssp"]
    model.save(saved)
    model.close()
    with pytest.raises(error, match="enough"):
        zmhost.open_model(saved, progress=stop)
    assert zmhost.models() == []


STEPS = """
import sys, zmhost, zmhost._files as files
files.LARGE_FILE = files.LARGE_MODEL = 0
with zmhost.open_model({diagram!r}) as model:
    model.save({saved!r})
"""


def test_a_long_work_is_shown_on_a_terminal_and_nowhere_else(tmp_path, run):
    script = tmp_path / "steps.py"
    script.write_text(STEPS.format(diagram=str(GREENHOUSE), saved=str(tmp_path / "saved.ssp")))
    piped = run("-m", "zmhost", script)
    assert (piped.returncode, piped.stdout, piped.stderr) == (0, "", "")
    try:
        ours, theirs = pty.openpty()
    except OSError as error:
        pytest.skip(f"no terminal can be had here: {error}")
    result = subprocess.run([sys.executable, "-m", "zmhost", str(script)], stderr=theirs, stdout=subprocess.PIPE)
    os.close(theirs)
    shown = os.read(ours, 100_000).decode()
    os.close(ours)
    assert (result.returncode, result.stdout) == (0, b"")
    assert "Opening greenhouse.ssd: diagram (2 of 5)" in shown
    assert "Saving saved.ssp: archive (5 of 6)" in shown
    assert shown.endswith("\r\x1b[K")


EARLIER = PROJECT / "tests" / "python" / "saved_by_earlier_version.ssp"


def columns(archive, entry):
    """The records of the form that earlier versions wrote: a struct array field by field."""
    kept = json.loads(archive.read(f"extra/com.zelmar.hmi/{entry}.json"))
    return dict(zip(kept["fields"], kept["values"]))


def test_what_an_earlier_version_saved_opens(tmp_path):
    with zipfile.ZipFile(EARLIER) as archive:
        signals, clients = columns(archive, "signals"), columns(archive, "clients")
    for file in (EARLIER, tmp_path / "again.ssp"):
        with zmhost.open_model(file) as model:
            kept = model.observers.Signals.Persistence
            for field in ("UUID", "BlockPath_", "ZID_", "OutputPortIndex_", "SignalName_", "Decimation_"):
                assert [record[field] for record in kept] == signals[field]
            kept = model.observers.Clients.Persistence
            for field in ("UUID", "SourceModel_", "SignalUUID_", "ObserverType_"):
                assert [record[field] for record in kept] == clients[field]
            assert [record["ModelPath_"] for record in kept] == [cell["values"] for cell in clients["ModelPath_"]]
            parameters = kept[3]["ObserverParams_"][0].to_dict()
            assert (parameters["Number"], parameters["Cells"]) == (3.5, [1, "x", [True]])
            assert parameters["Nan"] != parameters["Nan"]
            assert model["Board <&\"> \U00020bb7/Widget 7"].zid == "Gewächshaus:45"
            model.save(tmp_path / "again.ssp")


class Pipe(io.RawIOBase):
    """A file that cannot seek, so that `zipfile` streams."""

    def __init__(self, file):
        self.file = file

    def writable(self):
        return True

    def write(self, content):
        return self.file.write(content)


def repack(source, target, pipe):
    with zipfile.ZipFile(source) as old, open(target, "wb") as file:
        with zipfile.ZipFile(Pipe(file) if pipe else file, "w", zipfile.ZIP_DEFLATED) as new:
            new.writestr("größe.txt", "other")
            for entry in old.namelist():
                with new.open(entry, "w", force_zip64=True) as out:
                    out.write(old.read(entry))


@pytest.mark.parametrize("pipe", [False, True], ids=["file", "pipe"])
def test_archives_of_other_programs_open_and_are_saved(tmp_path, model, pipe):
    model.observers = observers_of(model)
    observe_all(model)
    model.save(tmp_path / "ours.ssp")
    before = described(model), persisted(model)
    repack(tmp_path / "ours.ssp", tmp_path / "python.ssp", pipe)
    with zipfile.ZipFile(tmp_path / "ours.ssp") as archive:
        archive.extractall(tmp_path / "folder")
    target = "-" if pipe else tmp_path / "zip.ssp"
    packed = subprocess.run(["zip", "-qr", target, "."], cwd=tmp_path / "folder", stdout=subprocess.PIPE, check=True)
    if pipe:
        (tmp_path / "zip.ssp").write_bytes(packed.stdout)
    model.close()
    for name in ("python.ssp", "zip.ssp"):
        with zmhost.open_model(tmp_path / name) as opened:
            assert (described(opened), persisted(opened)) == before
            opened.root.add("Added", "system")
            opened.save(tmp_path / "again.ssp")
        with zmhost.open_model(tmp_path / "again.ssp") as opened:
            assert opened["Added"].kind == "system"
        with zipfile.ZipFile(tmp_path / "again.ssp") as archive:
            assert archive.testzip() is None
            assert name == "zip.ssp" or archive.read("größe.txt") == b"other"


def test_a_save_that_is_killed_leaves_nothing_after_the_next(tmp_path, run):
    script = tmp_path / "killed.py"
    script.write_text(KILLED.format(diagram=str(GREENHOUSE), saved=str(tmp_path / "saved.ssp")))
    stale = tmp_path / ".saved.ssp.0123456789ab"
    stale.write_bytes(b"half")
    assert run("-m", "zmhost", script).returncode == 0
    assert sorted(os.listdir(tmp_path)) == ["killed.py", "saved.ssp"]


KILLED = """
import zmhost
with zmhost.open_model({diagram!r}) as model:
    model.save({saved!r})
"""


def test_a_file_that_is_not_regular_is_refused(tmp_path):
    os.mkfifo(tmp_path / "fifo.ssp")
    for file in (tmp_path / "fifo.ssp", "/dev/zero"):
        with pytest.raises(zmhost.HostError, match="not a regular file"):
            zmhost.open_model(file)


def test_refusals_are_host_errors_that_name_the_file(tmp_path, model):
    with pytest.raises(zmhost.HostError, match="plant.ssd.*ssp"):
        model.save(tmp_path / "plant.ssd")
    with pytest.raises(zmhost.HostError, match="nowhere"):
        model.save(tmp_path / "nowhere" / "plant.ssp")
    broken = tmp_path / "broken.ssp"
    model.save(broken)
    broken.write_bytes(broken.read_bytes()[:-1])
    with pytest.raises(zmhost.HostError, match="broken.ssp: "):
        zmhost.open_model(broken)
    assert model.is_open
    model.close()
    with pytest.raises(zmhost.HostError, match="open"):
        model.save(broken)


def test_a_warning_that_closes_the_model_and_fails_is_what_the_script_gets(tmp_path, monkeypatch):
    description = GREENHOUSE.read_text(encoding="utf-8").replace('startElement="', 'startElement="No ', 1)
    loose = tmp_path / "loose.ssd"
    loose.write_text(description, encoding="utf-8")

    def close(*_args, **_options):
        zmhost.models()[0].close()
        raise ValueError("enough")

    monkeypatch.setattr("warnings.showwarning", close)
    with warnings.catch_warnings(), pytest.raises(ValueError, match="enough"):
        warnings.simplefilter("always")
        zmhost.open_model(loose)
    assert zmhost.models() == []


def test_wrong_arguments_are_type_errors(tmp_path, model):
    with pytest.raises(TypeError):
        model.save(7)
    with pytest.raises(TypeError):
        model.save(tmp_path / "a.ssp", progress=7)
    with pytest.raises(TypeError):
        zmhost.open_model(None)


def test_what_an_observer_object_cannot_keep_is_refused(tmp_path, model):
    """An object of a class is a live thing, and no value of a file."""
    model.observers = observers_of(model)
    client = Zelmar.HMI.SignalClient(ObserverParams_={"inner": Zelmar.HMI.SignalSpecification()})
    model.observers.Clients.add(client)
    saved = tmp_path / "saved.ssp"
    with pytest.raises(zmhost.HostError, match="clients.json"):
        model.save(saved)
    assert not saved.exists()
