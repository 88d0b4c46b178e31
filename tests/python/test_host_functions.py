"""Host functions that scripts define."""

import ctypes
import functools
import operator
import os
import signal

import pytest

import zmhost
from zmhost import Zelmar


def test_a_function_is_called_with_the_callers_values(define):
    seen = []

    @define("note")
    def note(*arguments):
        seen.extend(arguments)
        return len(arguments)

    assert zmhost.call("note", "text", 2, None, True) == 4.0
    assert seen == ["text", 2.0, None, True]
    assert "note" in zmhost.host_functions()


def test_the_library_calls_it(define, signals, spec):
    @define("getAlignedBlockPath", replace=True)
    def elsewhere(asked):
        assert asked.BlockPath_ == "plant/Controller/Limiter"
        return "plant/Elsewhere"

    signals.add(spec)
    assert signals.Persistence[0]["BlockPath_"] == "Elsewhere"


def test_the_decorated_function_stays_a_function(define):
    @define("twice")
    def twice(x):
        return 2 * x

    assert twice(3) == 6 and zmhost.call("twice", 3) == 6.0


def test_a_tuple_is_several_outputs(define):
    define("many")(lambda: ("a", None, 3))
    assert zmhost.call("many", outputs=3) == ("a", None, 3.0)
    assert zmhost.call("many") == "a"
    assert zmhost.call("many", outputs=0) is None
    assert zmhost.call("many", outputs=4) == ("a", None, 3.0, None)


def test_a_taken_name_needs_replace(define):
    define("mine")(lambda: 1)
    with pytest.raises(zmhost.HostError, match="mine"):
        zmhost.host_function("mine")(lambda: 2)
    assert zmhost.call("mine") == 1
    define("mine", replace=True)(lambda: 3)
    assert zmhost.call("mine") == 3


def test_removing_brings_back_what_was_replaced(model):
    block = model["Klima"]
    spec = Zelmar.HMI.SignalSpecification(ZID_=block.zid)
    for path in ("one", "two"):
        zmhost.host_function("getAlignedBlockPath", replace=True)(lambda asked, path=path: path)
    assert zmhost.call("getAlignedBlockPath", spec) == "two"
    zmhost.remove_host_function("getAlignedBlockPath")
    assert zmhost.call("getAlignedBlockPath", spec) == block.path
    with pytest.raises(LookupError):
        zmhost.remove_host_function("getAlignedBlockPath")


def test_a_function_may_remove_itself():
    @zmhost.host_function("once")
    def once():
        zmhost.remove_host_function("once")
        return "done"

    assert zmhost.call("once") == "done"
    with pytest.raises(zmhost.HostError):
        zmhost.call("once")


def test_a_class_may_be_replaced_and_comes_back(define, signals, spec):
    signals.add(spec)
    zmhost.host_function("Zelmar.HMI.SignalSpecification", replace=True)(lambda fields: "made up")
    try:
        with pytest.raises(zmhost.HostError):
            signals.get(1)
    finally:
        zmhost.remove_host_function("Zelmar.HMI.SignalSpecification")
    assert signals.get(1).OutputPortIndex_ == 1


def test_an_exception_becomes_a_host_error_with_its_cause(define):
    @define("divide")
    def divide(a, b):
        return a / b

    with pytest.raises(zmhost.HostError, match='host function "divide" failed: ZeroDivisionError') as error:
        zmhost.call("divide", 1, 0)
    assert (error.value.catalog, error.value.key) == ("zmhost:functions", "ZeroDivisionError")
    assert error.value.arguments == ("divide", "float division by zero")
    assert isinstance(error.value.__cause__, ZeroDivisionError)


def test_an_exception_that_has_no_text_is_a_host_error_all_the_same(define):
    class Mute(Exception):
        def __str__(self):
            raise ValueError("not telling")

    @define("fail")
    def fail():
        raise Mute

    with pytest.raises(zmhost.HostError, match='host function "fail" failed: Mute') as error:
        zmhost.call("fail")
    assert (error.value.catalog, error.value.key) == ("zmhost:functions", "Mute")
    assert isinstance(error.value.__cause__, Mute)


def test_a_text_that_utf8_cannot_hold_is_escaped(define):
    @define("fail")
    def fail():
        raise ValueError("half \ud800 a character")

    with pytest.raises(zmhost.HostError, match=r"half \\ud800 a character"):
        zmhost.call("fail")


def test_a_host_error_that_was_spoilt_is_a_host_error_all_the_same(define):
    spoilt = zmhost.HostError("no such thing", "my:catalog", "NoThing")
    spoilt.arguments = 5

    @define("fail")
    def fail():
        raise spoilt

    with pytest.raises(zmhost.HostError) as error:
        zmhost.call("fail")
    assert error.value is spoilt


def test_ctrl_c_while_an_exception_is_asked_for_its_text_is_kept(define):
    class Slow(Exception):
        def __str__(self):
            raise KeyboardInterrupt

    @define("fail")
    def fail():
        raise Slow

    with pytest.raises(KeyboardInterrupt):
        zmhost.call("fail")


def test_a_host_error_keeps_its_id(define):
    mine = zmhost.HostError("no such thing", "my:catalog", "NoThing", (1, -2, 2.5, "x", 2**63))

    @define("refuse")
    def refuse():
        raise mine

    with pytest.raises(zmhost.HostError) as error:
        zmhost.call("refuse")
    assert error.value is mine


def test_a_host_error_reaches_the_library_as_a_host_error(define, signals, spec):
    @define("getAlignedBlockPath", replace=True)
    def refuse(asked):
        raise zmhost.HostError("no such thing", "my:catalog", "NoThing", (1, -2, 2.5, "x"))

    signals.add(spec)
    with pytest.warns(zmhost.HostWarning, match="no such thing") as caught:
        signals.Persistence
    assert (caught[0].message.catalog, caught[0].message.key) == ("my:catalog", "NoThing")
    assert caught[0].message.arguments == (1, -2, 2.5, "x")


def test_short_memory_stays_short_memory(define):
    @define("eat")
    def eat():
        raise MemoryError

    with pytest.raises(MemoryError):
        zmhost.call("eat")


def test_a_wrong_number_of_arguments_is_the_functions_error(define):
    define("one")(lambda x: x)
    with pytest.raises(zmhost.HostError, match='"one" failed: TypeError'):
        zmhost.call("one")


def test_an_output_that_is_no_host_value_is_named(define):
    define("bad")(lambda: ("fine", {1}))
    with pytest.raises(zmhost.HostError, match='"bad": output 2: .*set') as error:
        zmhost.call("bad", outputs=2)
    assert (error.value.key, error.value.arguments) == ("WrongOutput", ("bad", 2))
    assert zmhost.call("bad") == "fine"


def test_functions_call_each_other(define):
    define("inner")(lambda x: x + 1)
    define("outer")(lambda x: zmhost.call("inner", x) * 2)
    assert zmhost.call("outer", 1) == 4


def test_objects_kept_by_a_function_live_on(define, signals, spec):
    kept = []
    define("keep")(kept.append)
    zmhost.call("keep", signals)
    kept[0].add(spec)
    assert signals.Count == 1


@pytest.mark.parametrize("raised", [KeyboardInterrupt, SystemExit, GeneratorExit])
def test_what_is_no_error_stops_the_script_and_not_the_library(define, signals, spec, raised):
    """The library asks for three paths; the first answer is Ctrl-C."""
    asked = []

    @define("getAlignedBlockPath", replace=True)
    def interrupted(spec):
        asked.append(spec)
        raise raised("stop")

    for _ in range(3):
        signals.add(spec)
    with zmhost.journal() as calls, pytest.raises(raised, match="stop"):
        signals.Persistence
    assert len(asked) == 1
    assert calls.count("zmsvReportAsWarning") == 3


def test_an_interrupt_passes_through_all_calls(define):
    @define("inner")
    def inner():
        raise KeyboardInterrupt

    define("outer")(lambda: zmhost.call("inner"))
    with pytest.raises(KeyboardInterrupt):
        zmhost.call("outer")


def test_control_c_interrupts_a_scripts_function(define):
    @define("work")
    def work():
        os.kill(os.getpid(), signal.SIGINT)
        for _ in range(10**9):
            pass

    with pytest.raises(KeyboardInterrupt):
        zmhost.call("work")


def test_control_c_interrupts_native_work(model):
    """Saving asks the host for the path of every signal. Ctrl-C has come when it starts, and no line of
    Python runs before the first question."""
    signals = Zelmar.HMI.InstrumentedSignals(model.name)
    for _ in range(3):
        signals.add(Zelmar.HMI.SignalSpecification(ZID_=model["Klima"].zid, OutputPortIndex_=1))
    press = functools.partial(ctypes.PyDLL(None)["raise"], signal.SIGINT)
    save = functools.partial(zmhost._zmhost.get_property, signals.__host_value__(), "Persistence")
    with pytest.raises(KeyboardInterrupt):
        list(map(operator.methodcaller("__call__"), [press, save]))
    assert [warning.key for warning in zmhost.warnings] == ["Interrupted"] * 3


def test_values_do_not_outlive_the_functions_removal():
    import weakref

    class Payload:
        pass

    payload = Payload()
    reference = weakref.ref(payload)
    zmhost.host_function("hold")(lambda held=payload: None)
    del payload
    assert reference() is not None
    zmhost.remove_host_function("hold")
    assert reference() is None
