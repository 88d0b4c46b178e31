"""Host warnings as Python warnings, issued when the call that raised them has returned."""

import sys
import warnings

import pytest

import zmhost
from zmhost import HostWarning, Zelmar


@pytest.fixture
def unknown_block(signals):
    """A collection that cannot be saved without one warning."""
    signals.add(Zelmar.HMI.SignalSpecification(BlockPath_="nowhere", OutputPortIndex_=1))
    return signals


def line() -> int:
    return sys._getframe(1).f_lineno


def test_a_warning_tells_message_and_id(unknown_block):
    with pytest.warns(HostWarning, match="nowhere") as caught:
        saved = unknown_block.Persistence
    assert len(caught) == 1
    warning = caught[0].message
    assert (warning.catalog, warning.key) == ("reference_host:diagram", "UnknownBlock")
    assert warning.arguments == ("plant/nowhere", "")
    assert saved[0]["BlockPath_"] == ""


def test_a_warning_names_the_scripts_line(unknown_block):
    with pytest.warns(HostWarning) as caught:
        unknown_block.Persistence; expected = line()  # noqa: E702
    assert (caught[0].filename, caught[0].lineno) == (__file__, expected)


def test_a_warning_names_the_line_of_a_method_call(signals, define):
    @define("Zelmar.HMI.SignalSpecification", replace=True)
    def refuse(fields):
        raise zmhost.HostError("not today")

    signals.Persistence = [PERSISTED]
    with pytest.warns(HostWarning, match="not today") as caught:
        result = signals.get(1); expected = line()  # noqa: E702
    assert result is None
    assert (caught[0].filename, caught[0].lineno) == (__file__, expected)


def test_a_warning_names_the_line_of_a_host_function_call(define, unknown_block):
    @define("save")
    def save():
        return len(unknown_block.Persistence)

    with pytest.warns(HostWarning) as caught:
        zmhost.call("save")
    assert caught[0].filename == __file__ and caught[0].lineno == save.__code__.co_firstlineno + 2


def test_each_warning_is_issued(signals):
    for _ in range(3):
        signals.add(Zelmar.HMI.SignalSpecification(BlockPath_="nowhere", OutputPortIndex_=1))
    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        signals.Persistence
    assert [w.category for w in caught] == [HostWarning] * 3


def test_a_filter_turns_warnings_into_errors_after_the_call(signals):
    for path in ("one", "two"):
        signals.add(Zelmar.HMI.SignalSpecification(BlockPath_=path, OutputPortIndex_=1))
    with warnings.catch_warnings(), zmhost.journal() as calls:
        warnings.simplefilter("error")
        with pytest.raises(HostWarning, match="one") as error:
            signals.Persistence
    assert calls.count("zmsvReportAsWarning") == 2  # the library ran to its end
    assert len(error.value.__notes__) == 1 and "two" in error.value.__notes__[0]


def test_filters_may_silence_them(unknown_block):
    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("ignore", HostWarning)
        unknown_block.Persistence
    assert caught == []
    assert len(zmhost.warnings) == 1


def test_an_error_outranks_the_warnings_of_its_call(unknown_block, define):
    """A call that warns and then fails: the warning is issued all the same."""

    @define("getAlignedBlockPath", replace=True)
    def refuse(spec):
        zmhost.faults.arm("nvReplaceField", zmhost.faults.FaultKind.HostException)
        raise zmhost.HostError("no path")

    with pytest.warns(HostWarning, match="no path"), pytest.raises(zmhost.HostError, match="told to fail"):
        unknown_block.Persistence
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        with pytest.raises(zmhost.HostError) as error:
            unknown_block.Persistence
    assert error.value.key == "InjectedFault" and "no path" in error.value.__notes__[0]


def test_the_sink_keeps_what_was_reported(unknown_block):
    with pytest.warns(HostWarning):
        unknown_block.Persistence
    assert len(zmhost.warnings) == 1 and repr(zmhost.warnings) == "<1 host warnings>"
    (warning,) = zmhost.warnings.take()
    assert "nowhere" in warning.text and warning.key == "UnknownBlock" and "UnknownBlock" in repr(warning)
    assert warning.arguments == ("plant/nowhere", "") and warning.catalog == "reference_host:diagram"
    assert list(zmhost.warnings) == []


def test_a_warning_inside_a_scripts_function_belongs_to_it(unknown_block, define):
    """With warnings as errors the inner call raises, and so the function fails."""

    @define("save")
    def save():
        unknown_block.Persistence

    with warnings.catch_warnings():
        warnings.simplefilter("error")
        with pytest.raises(zmhost.HostError, match='host function "save" failed: HostWarning') as error:
            zmhost.call("save")
    assert isinstance(error.value.__cause__, HostWarning)


PERSISTED = {
    "UUID": "",
    "ZID_": "",
    "OutputPortIndex_": 1,
    "BlockPath_": "A",
    "SubPath_": "",
    "SubSysPath_": "",
    "SignalName_": "",
    "Decimation_": 1,
    "MaxPoints_": 0,
}
