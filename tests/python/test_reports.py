"""Ledger, journal and faults."""

import pytest

import zmhost
from zmhost import Zelmar
from zmhost.faults import FaultKind


def test_the_ledger_of_an_idle_host_is_closed(run):
    program = """
import zmhost
from zmhost import Zelmar
print(zmhost.ledger())
Zelmar.HMI.StreamingClients().add(Zelmar.HMI.SignalClient())
Zelmar.HMI.InstrumentedSignals().add(Zelmar.HMI.SignalSpecification())
print(zmhost.ledger())
"""
    result = run("-c", program)
    assert (result.returncode, result.stdout.split("\n")) == (0, ["nothing is open", "", "nothing is open", "", ""])


def test_the_ledger_counts_live_values(signals):
    before = zmhost.ledger()
    held = zmhost.StructArray([{"a": 1}])
    now = zmhost.ledger()
    assert now.live_values == before.live_values + 1
    assert "struct" in str(now) and now.report == str(now)
    assert len(before.opened_since()) == 1
    del held
    assert before.opened_since() == []
    assert repr(before) == f"<ledger: {before.live_values} live values, {len(before.misuses)} misuses>"


def test_the_journal_records_what_crosses_the_boundary(signals, spec):
    with zmhost.journal() as calls:
        signals.add(spec)
        during = len(calls)
    signals.add(spec)
    assert during == len(calls) > 0
    operations = [entry.operation for entry in calls]
    assert operations[0] == "invoke" and calls.count("nvGetPropertyShared") >= 15
    first = next(entry for entry in calls if entry.operation == "nvGetPropertyShared")
    assert '"UUID"' in first.arguments and first.depth == 1 and first.result
    assert str(first).startswith("nvGetPropertyShared(") and repr(first) == str(first)
    assert f"  {first}" in str(calls) and repr(calls) == f"<journal of {len(calls)} operations>"


def test_the_journal_keeps_its_entries(signals, spec):
    with zmhost.journal() as first:
        signals.add(spec)
    count = len(first)
    with zmhost.journal() as second:
        pass
    assert len(first) == count > 0 and len(second) == 0


def test_host_calls_can_be_logged(signals, spec, capfd):
    zmhost.log_host_calls()
    try:
        signals.add(spec)
    finally:
        zmhost.log_host_calls(False)
    log = capfd.readouterr().err
    assert "nvGetPropertyShared(" in log
    signals.add(spec)
    assert capfd.readouterr().err == ""


def test_a_fault_strikes_once(signals, spec):
    signals.add(spec)
    with zmhost.faults.armed("nvCreateString", FaultKind.HostException, 2):
        signals.getUUID(1)
        assert not zmhost.faults.has_fired()
        with pytest.raises(zmhost.HostError) as error:
            signals.getUUID(1)
        assert zmhost.faults.has_fired()
        signals.getUUID(1)
    assert error.value.key == "InjectedFault"


def test_a_fault_can_be_taken_back(signals, spec):
    zmhost.faults.arm("nvCreateString", FaultKind.HostException)
    assert not zmhost.faults.disarm()
    signals.add(spec)
    signals.getUUID(1)


@pytest.mark.parametrize("kind", [FaultKind.Diagnostic, FaultKind.Null, FaultKind.HostException])
def test_each_kind_of_fault_reaches_the_call_that_it_is_for(signals, spec, kind):
    signals.add(spec)
    with zmhost.faults.armed("zmsvFEVAL_NoThrow", kind):
        if kind == FaultKind.Null:
            assert signals.get(1) is None
        else:
            with pytest.warns(zmhost.HostWarning):
                assert signals.get(1) is None
    assert isinstance(signals.get(1), Zelmar.HMI.SignalSpecification)
