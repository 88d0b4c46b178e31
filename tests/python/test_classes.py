"""Registered classes as Python types."""

import inspect
import pydoc

import pytest

import zmhost
from zmhost import Zelmar, _zmhost


def test_namespaces_show_what_is_registered():
    assert "HMI" in dir(Zelmar)
    assert {"InstrumentedSignals", "SignalSpecification"} <= set(dir(Zelmar.HMI))
    assert repr(Zelmar).startswith("<namespace Zelmar: HMI")
    assert "InstrumentedSignals" in repr(Zelmar.HMI)
    assert "Zelmar" in dir(zmhost)


def test_names_that_nobody_registered_are_attribute_errors():
    with pytest.raises(AttributeError, match="Zelmar.HMI.*'Missing'"):
        Zelmar.HMI.Missing
    with pytest.raises(AttributeError, match="Missing"):
        zmhost.Missing
    with pytest.raises(ImportError):
        exec("from zmhost import Missing")


def test_a_class_is_one_type():
    cls = Zelmar.HMI.InstrumentedSignals
    assert isinstance(cls, type) and issubclass(cls, zmhost.HostObject)
    assert cls is Zelmar.HMI.InstrumentedSignals
    assert (cls.__name__, cls.__module__) == ("InstrumentedSignals", "Zelmar.HMI")


def test_methods_have_the_registered_signature():
    get = Zelmar.HMI.InstrumentedSignals.get
    assert str(inspect.signature(get)) == "(self, index: uint32 scalar, as_struct: logical scalar = ..., /) -> any"
    inspect.signature(get).bind(None, 1)
    with pytest.raises(TypeError):
        inspect.signature(get).bind(None)


def test_help_shows_the_registered_signature():
    text = pydoc.plain(pydoc.render_doc(Zelmar.HMI.InstrumentedSignals.get))
    assert "get(obj, uint32 scalar, [logical scalar]) -> any" in text
    assert "index: uint32 scalar" in text


def test_help_says_what_each_method_and_property_is_for():
    for cls in (Zelmar.HMI.InstrumentedSignals, Zelmar.HMI.StreamingClients):
        for name in dir(cls):
            member = inspect.getattr_static(cls, name)
            if name.startswith("_"):
                continue
            assert len((member.__doc__ or "").split("\n\n")) >= 2, name
            if not isinstance(member, property):
                assert not any(p.startswith("arg") for p in inspect.signature(getattr(cls, name)).parameters), name
    text = pydoc.plain(pydoc.render_doc(Zelmar.HMI.InstrumentedSignals.get))
    assert "Returns a copy of the signal at an index, from 1: an object, or a struct where as_struct is true." in text


def test_help_of_a_static_method_names_every_argument():
    signature = str(inspect.signature(Zelmar.HMI.InstrumentedSignals.setUUIDForBlock))
    assert signature == "(block_handle: double scalar, port: uint32 scalar, uuid: asciiString, /) -> None"


def test_methods_of_other_classes_have_numbered_arguments():
    signature = str(inspect.signature(Zelmar.HMI.ModelObservers.createFromSignalsAndClients))
    assert "arg1" in signature


def test_help_on_the_class_shows_constructor_methods_and_properties():
    text = pydoc.plain(pydoc.render_doc(Zelmar.HMI.InstrumentedSignals))
    for words in ("InstrumentedSignals([unicodeString])", "isPortObserved", "Count\n |      uint32 scalar, read only"):
        assert words in text


def test_a_method_without_an_object_is_static(signals):
    cls = Zelmar.HMI.InstrumentedSignals
    assert isinstance(inspect.getattr_static(cls, "getUUIDForBlock"), staticmethod)
    cls.setUUIDForBlock(12.5, 7, "some uuid")
    assert cls.getUUIDForBlock(12.5, 7, True) == signals.getUUIDForBlock(12.5, 7, True) == "some uuid"


def test_mistyped_attributes_fail(signals):
    with pytest.raises(AttributeError):
        signals.Cuont = 1
    with pytest.raises(AttributeError):
        signals.add = 1
    with pytest.raises(AttributeError):
        signals.Cuont


def test_read_only_properties_fail_by_assignment_and_ignore_the_host(signals):
    with pytest.raises(AttributeError):
        signals.Count = 5
    zmhost.set_property(signals, "Count", 5)
    assert signals.Count == zmhost.get_property(signals, "Count") == 0
    zmhost.set_property(signals, "Model", "other")
    assert signals.Model == "plant"


def test_properties_have_their_type_as_documentation():
    assert inspect.getdoc(Zelmar.HMI.InstrumentedSignals.Count) == "uint32 scalar, read only\n\nThe number of elements."
    assert inspect.getdoc(Zelmar.HMI.InstrumentedSignals.Persistence).startswith("any\n\nThe struct array that is saved")


def test_properties_may_be_given_by_name():
    spec = Zelmar.HMI.SignalSpecification(BlockPath_="A/B", OutputPortIndex_=2, ExcludeForSave_=True)
    assert (spec.BlockPath_, spec.OutputPortIndex_, spec.ExcludeForSave_) == ("A/B", 2, True)
    assert spec.Decimation_ == 1


def test_properties_given_by_name_keep_the_rules():
    with pytest.raises(AttributeError):
        Zelmar.HMI.SignalSpecification(BlokPath_="A")
    with pytest.raises(AttributeError):
        Zelmar.HMI.InstrumentedSignals(Count=3)
    with pytest.raises(zmhost.HostError, match="DomainParams_"):
        Zelmar.HMI.SignalSpecification(DomainParams_=5)


def test_a_record_class_takes_a_struct():
    assert Zelmar.HMI.SignalSpecification({"BlockPath_": "A/B"}).BlockPath_ == "A/B"
    with pytest.raises(zmhost.HostError, match="BlokPath_"):
        Zelmar.HMI.SignalSpecification({"BlokPath_": "A/B"})


def test_the_constructors_argument_may_be_left_out():
    assert Zelmar.HMI.InstrumentedSignals().Model == ""
    assert Zelmar.HMI.InstrumentedSignals("plant").Model == "plant"


def test_objects_are_equal_when_they_are_the_same_instance(signals, echo):
    same = echo(signals)
    assert same == signals and hash(same) == hash(signals) and same is not signals
    assert signals != Zelmar.HMI.InstrumentedSignals("plant") and signals != 5
    assert type(same) is type(signals)


def test_repr_tells_the_class_and_what_it_holds(signals, spec):
    assert repr(signals) == "<Zelmar.HMI.InstrumentedSignals Model='plant'>"
    signals.add(spec)
    assert repr(signals) == "<Zelmar.HMI.InstrumentedSignals Model='plant' Count=1>"
    assert "BlockPath_='Controller/Limiter'" in repr(spec)


def test_classes_may_be_derived_from(spec):
    class Signals(Zelmar.HMI.InstrumentedSignals):
        note = "mine"

    mine = Signals("plant")
    mine.add(spec)
    assert (mine.Count, mine.note) == (1, "mine")


def test_the_base_class_makes_no_objects():
    with pytest.raises(TypeError):
        zmhost.HostObject()


def test_object_arrays_hold_instances_of_one_class(signals, spec, echo):
    other = Zelmar.HMI.SignalSpecification()
    array = echo(zmhost.ObjectArray(Zelmar.HMI.SignalSpecification, [spec, other]))
    assert isinstance(array, zmhost.ObjectArray) and array.dims == (2, 1) and len(array) == 2
    assert array[0] == spec and array[-1] == other and list(array[:]) == [spec, other]
    assert repr(array) == "<2x1 array of Zelmar.HMI.SignalSpecification>"
    for outside in (2, -3):
        with pytest.raises(IndexError, match=f"index {outside} is out of range for 2 elements"):
            array[outside]
    with pytest.raises(zmhost.HostError):
        signals.add(array)
    with pytest.raises(zmhost.HostError):
        zmhost.ObjectArray(Zelmar.HMI.SignalSpecification, [signals])


def test_an_empty_object_array_is_no_object(signals):
    empty = zmhost.ObjectArray(Zelmar.HMI.SignalSpecification)
    assert len(empty) == 0
    with pytest.raises(zmhost.HostError, match="add: argument 1"):
        signals.add(empty)


def test_constructors_and_static_methods_are_host_functions_too():
    assert zmhost.call("Zelmar.HMI.InstrumentedSignals", "plant").Model == "plant"
    assert zmhost.call("Zelmar.HMI.InstrumentedSignals.getUUIDForBlock", 77.5, 1, True) == zmhost.call(
        "Zelmar.HMI.InstrumentedSignals.getUUIDForBlock", 77.5, 1, True
    )


def test_a_scripts_host_class_cannot_be_told_from_the_librarys(signals):
    """What is registered appears; the module knows no class by name."""
    package = zmhost.__path__[0]
    import pathlib

    for file in pathlib.Path(package).glob("_[a-z]*.py"):
        assert "InstrumentedSignals" not in file.read_text()


def test_a_property_whose_type_is_gone_is_a_host_error():
    clients = Zelmar.HMI.StreamingClients("plant")
    for use in (lambda: setattr(clients, "Model", "x"), lambda: _zmhost.describe_class(clients._host_class)):
        with zmhost.faults.armed("COSTypeRepository::getType", zmhost.faults.FaultKind.Null):
            with pytest.raises(zmhost.HostError, match="StreamingClients.Model has no type"):
                use()
    assert clients.Model == "plant"
