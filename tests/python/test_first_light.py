"""The tour of a diagram: the main job, on the bundled diagram and on published ones."""

import unicodedata

import pytest

from conftest import GREENHOUSE, PROJECT

TOUR = PROJECT / "examples" / "first_light.py"
SHARED = PROJECT.parent / "shared" / "diagrams"
PUBLISHED = sorted(SHARED.glob("*.ssd"))
EMPTY = """<SystemStructureDescription xmlns="http://ssp-standard.org/SSP1/SystemStructureDescription"
    name="empty" version="1.0"><System name="empty">%s</System></SystemStructureDescription>"""
NO_OUTPUTS = EMPTY % "<Elements><Component name='Sink' source='s.fmu'/></Elements>"


def columns(text):
    return sum(
        0 if unicodedata.combining(c) else 2 if unicodedata.east_asian_width(c) in "WF" else 1 for c in text
    )


def test_the_tour_loses_nothing(run):
    result = run("-m", "zmhost", TOUR)
    assert (result.returncode, result.stderr) == (0, "")
    for words in ("36 blocks", "63 output ports", "Φωτισμός/Λάμπα β", "kw_state", "47 signals and 4 clients came back"):
        assert words in result.stdout
    assert result.stdout.count("Nothing was lost.") == 2  # in a fresh collection, and in a file
    assert len(result.stdout.splitlines()) < 150


def test_tables_are_aligned_whatever_the_script(run):
    lines = run("-m", "zmhost", TOUR, env={"COLUMNS": "80"}).stdout.splitlines()
    rules = [i for i, line in enumerate(lines) if line.startswith("  ──")]
    assert len(rules) >= 4
    for rule in rules:
        last_column = columns(lines[rule].rpartition("  ")[0]) + 2
        for row in lines[rule + 1 :]:
            if not row.strip():
                break
            if "…" not in row[:4]:
                before = "".join(c for i, c in enumerate(row) if columns(row[: i + 1]) <= last_column)
                assert before.endswith("  ") or columns(row) < last_column, row
                assert columns(row) <= 80, row


def test_several_diagrams_may_be_named(run, tmp_path):
    empty, sink = tmp_path / "empty.ssd", tmp_path / "sink.ssd"
    empty.write_text(EMPTY % "")
    sink.write_text(NO_OUTPUTS.replace('"empty"', '"sink"'))
    result = run("-m", "zmhost", TOUR, empty, sink)
    assert (result.returncode, result.stderr) == (0, "")
    assert result.stdout.count("Nothing was lost.") == 4


def test_a_diagram_that_cannot_be_read_is_named(run):
    result = run("-m", "zmhost", TOUR, "missing.ssd")
    assert result.returncode == 1 and "missing.ssd" in result.stderr and "Traceback" not in result.stderr


def test_a_terminal_without_the_letters_shows_what_it_can(run):
    result = run("-m", "zmhost", TOUR, env={"PYTHONIOENCODING": "ascii"})
    assert result.returncode == 0 and result.stdout.count("Nothing was lost.") == 2


def test_a_loss_fails_the_tour(run, tmp_path):
    """A host that cannot say where blocks are: their paths are saved empty, and the questions say no."""
    forgetful = tmp_path / "forgetful.py"
    forgetful.write_text(
        f"""
import runpy, sys, zmhost
@zmhost.host_function("getAlignedBlockPath", replace=True)
def nowhere(spec):
    return "Elsewhere"
sys.argv = ["first_light.py", {str(GREENHOUSE)!r}]
sys.path.insert(0, {str(TOUR.parent)!r})
runpy.run_path({str(TOUR)!r}, run_name="__main__")
"""
    )
    result = run("-m", "zmhost", forgetful)
    assert result.returncode == 1 and "what differs" in result.stdout


@pytest.mark.parametrize("diagram", PUBLISHED or [None], ids=[path.stem for path in PUBLISHED] or ["none"])
def test_published_diagrams_lose_nothing(run, diagram):
    if diagram is None:
        pytest.skip(f"there are no published diagrams in {SHARED}")
    result = run("-m", "zmhost", TOUR, diagram)
    assert result.returncode == 0 and result.stdout.count("Nothing was lost.") == 2
