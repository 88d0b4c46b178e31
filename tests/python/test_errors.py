"""Host errors as Python exceptions."""

import threading
import types

import pytest

import zmhost
from zmhost import Zelmar, _zmhost


@pytest.fixture
def two_signals(signals, spec):
    signals.add(spec)
    signals.add(spec)
    return signals


@pytest.mark.parametrize("use", ["get", "remove", "getUUID"])
@pytest.mark.parametrize("index", [0, 3])
def test_a_bad_index_is_an_index_error_with_the_count(two_signals, use, index):
    with pytest.raises(IndexError) as error:
        getattr(two_signals, use)(index)
    assert isinstance(error.value, zmhost.HostError) and isinstance(error.value, RuntimeError)
    assert error.value.catalog == "dvx_hmi_foundation:errors"
    assert error.value.key == "InvalidElementIndex"
    assert error.value.arguments == (2,)
    assert two_signals.Count == 2


def test_other_host_errors_are_no_index_errors(signals):
    with pytest.raises(zmhost.HostError) as error:
        signals.get("one")
    assert not isinstance(error.value, IndexError)


@pytest.mark.parametrize(
    ("arguments", "key", "position"),
    [
        (("one",), "WrongArgument", 1),
        ((1.5,), "WrongArgument", 1),
        ((-1,), "WrongArgument", 1),
        ((1, "yes"), "WrongArgument", 2),
        ((object(),), "WrongArgument", 1),
        ((1, {2}), "WrongArgument", 2),
        ((), "TooFewArguments", 1),
        ((1, True, 3), "TooManyArguments", 3),
    ],
)
def test_wrong_arguments_are_named_by_class_method_and_place(signals, arguments, key, position):
    with pytest.raises(zmhost.HostError, match=rf"Zelmar\.HMI\.InstrumentedSignals\.get: argument {position} ") as error:
        signals.get(*arguments)
    assert error.value.key == key
    assert error.value.arguments == ("Zelmar.HMI.InstrumentedSignals", "get", position)


def test_wrong_arguments_of_constructors_and_static_methods_are_named_too():
    with pytest.raises(zmhost.HostError, match="InstrumentedSignals.InstrumentedSignals: argument 1"):
        Zelmar.HMI.InstrumentedSignals(object())
    with pytest.raises(zmhost.HostError, match="setUUIDForBlock: argument 3"):
        Zelmar.HMI.InstrumentedSignals.setUUIDForBlock(1.0, 1, {3})


def test_an_object_of_another_class_is_refused(signals):
    with pytest.raises(zmhost.HostError, match="add: argument 1 .*SignalSpecification"):
        signals.add(signals)


def test_wrong_values_of_properties_are_named(signals, spec):
    for value in (object(), 5):
        with pytest.raises(zmhost.HostError, match="SignalSpecification.DomainParams_ ") as error:
            spec.DomainParams_ = value
        assert error.value.arguments == ("Zelmar.HMI.SignalSpecification", "DomainParams_")
    with pytest.raises(zmhost.HostError, match="no property"):
        zmhost.set_property(signals, "Missing", 1)
    with pytest.raises(zmhost.HostError, match="no property"):
        zmhost.get_property(signals, "Missing")


def test_an_unknown_host_function_is_a_host_error():
    with pytest.raises(zmhost.HostError, match="noSuchFunction"):
        zmhost.call("noSuchFunction")


def test_short_memory_is_a_memory_error(signals, spec):
    signals.add(spec)
    with zmhost.faults.armed("nvCreateString", zmhost.faults.FaultKind.OutOfMemory):
        with pytest.raises(MemoryError):
            signals.getUUID(1)
    assert signals.getUUID(1) == ""


def test_a_host_exception_anywhere_leaves_nothing_open(signals, spec):
    """The n-th operation of a call fails, for each n until the call succeeds."""
    faults = zmhost.faults
    for nth in range(1, 500):
        faults.arm(faults.ANY_OPERATION, faults.FaultKind.HostException, nth)
        try:
            signals.add(spec)
        except zmhost.HostError as error:
            assert error.key == "InjectedFault"
        if not faults.disarm():
            break
    assert 10 < nth < 499 and signals.Count >= 1


def test_a_library_that_a_script_breaks_says_so(signals):
    with pytest.raises(zmhost.HostError):
        signals.Persistence = 5
    assert signals.Count == 0


def raised_elsewhere(use):
    """The text of the `RuntimeError` that `use` raises in another thread."""
    errors = []

    def run():
        try:
            use()
        except RuntimeError as error:
            errors.append(str(error))

    other = threading.Thread(target=run)
    other.start()
    other.join()
    assert len(errors) == 1
    return errors[0]


WRONG_THREAD = "the host is used from the thread that imported zmhost"


@pytest.mark.parametrize(
    "use",
    [
        lambda signals: signals.Count,
        lambda signals: signals.Persistence.dims,
        lambda signals: zmhost.StructArray([{"a": 1}]),
        lambda signals: zmhost.Matrix([1, 2]),
        lambda signals: zmhost.Matrix.zeros(2, 2),
        lambda signals: zmhost.CellArray([1, 2], (2, 1)).__host_value__(),
        lambda signals: zmhost.host_function("elsewhere")(print),
        lambda signals: zmhost.remove_host_function("elsewhere"),
        lambda signals: zmhost.host_functions(),
        lambda signals: zmhost.models(),
        lambda signals: zmhost.ledger(),
        lambda signals: len(zmhost.warnings),
        lambda signals: zmhost.faults.disarm(),
        lambda signals: zmhost.faults.has_fired(),
    ],
)
def test_the_host_has_one_thread(signals, use):
    assert raised_elsewhere(lambda: use(signals)) == WRONG_THREAD


def test_what_a_script_holds_is_read_on_the_hosts_thread(signals, spec):
    array = zmhost.StructArray([{"a": 1}])
    matrix = zmhost.Matrix([1, 2])
    for use in (lambda: array[0]["a"], lambda: len(array), lambda: matrix[0], lambda: repr(matrix)):
        assert raised_elsewhere(use) == WRONG_THREAD


def native_entries():
    """Every function that the native module has, those of its classes among them, by name."""
    for name, bound in vars(_zmhost).items():
        if isinstance(bound, types.BuiltinFunctionType):
            yield name, bound
        for member_name, member in vars(bound).items() if isinstance(bound, type) else ():
            accessors = (member.fget, member.fset) if isinstance(member, property) else (member,)
            for accessor in accessors:
                function = getattr(accessor, "__func__", accessor)
                if isinstance(function, types.BuiltinFunctionType):
                    yield f"{name}.{member_name}", function


def test_every_native_entry_is_for_the_hosts_thread():
    entries = dict(native_entries())
    assert entries.pop("shut_down") and len(entries) > 150
    for name, entry in entries.items():
        assert (name, raised_elsewhere(entry)) == (name, WRONG_THREAD)


def test_a_program_may_import_the_host_in_a_thread_of_its_own(run):
    program = "import threading; t = threading.Thread(target=lambda: __import__('zmhost')); t.start(); t.join()"
    result = run("-c", program)
    assert (result.returncode, result.stderr) == (0, "")


def test_a_value_that_the_library_cannot_use_is_named_by_property_or_argument(signals):
    with pytest.raises(zmhost.HostError, match=r"Zelmar\.HMI\.InstrumentedSignals\.Persistence: .*got double 5"):
        signals.Persistence = 5
    with pytest.raises(zmhost.HostError, match=r"Zelmar\.HMI\.InstrumentedSignals\.add: argument 1 must be .*not double 5"):
        signals.add(5)
    assert signals.Count == 0


def test_names_in_messages_cannot_control_a_terminal():
    with pytest.raises(zmhost.HostError) as error:
        _zmhost.call_function("\x1b[2J\u202e" + "x" * 500, (), 0)
    assert str(error.value).isprintable() and len(str(error.value)) < 200
