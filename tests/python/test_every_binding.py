"""Every member of the library's class, called once by a script."""

import re

import pytest

import zmhost
from zmhost import Zelmar

CHART = {"KZID": "7", "Activity": "Self"}


def add(signals, spec):
    assert signals.add(spec) is None
    assert signals.Count == 1


def set_(signals, spec):
    signals.add(spec)
    assert signals.set(1, Zelmar.HMI.SignalSpecification(BlockPath_="Other", OutputPortIndex_=4)) is None
    assert signals.get(1, True)["BlockPath_"] == "plant/Other"


def remove(signals, spec):
    signals.add(spec)
    assert signals.remove(1) is None
    assert signals.Count == 0


def get(signals, spec):
    signals.add(spec)
    as_object = signals.get(1)
    assert isinstance(as_object, Zelmar.HMI.SignalSpecification)
    assert as_object.BlockPath_ == "plant/Controller/Limiter"
    assert signals.get(1, False).BlockPath_ == as_object.BlockPath_
    as_struct = signals.get(1, True)
    assert len(as_struct) == 1 and len(as_struct.fields) == 20 and as_struct["OutputPortIndex_"] == 1


def get_uuid(signals, spec):
    spec.UUID = "an id"
    signals.add(spec)
    assert signals.getUUID(1) == "an id"


def is_port_observed(signals, spec):
    assert signals.isPortObserved(spec) is False
    signals.add(spec)
    assert signals.isPortObserved(spec) is True


def is_given_port_observed(signals, spec):
    spec.CachedBlockHandle_, spec.CachedPortIdx_ = 12.5, 1
    signals.add(spec)
    assert signals.isGivenPortObserved(12.5, 1) is True
    assert signals.isGivenPortObserved(12.5, 2) is False


def is_given_activity_observed(signals, spec):
    signals.add(Zelmar.HMI.SignalSpecification(ZID_="plant:3", DomainType_="kw_state", DomainParams_=CHART))
    assert signals.isGivenKWActivityObserved("plant:3", 7, "Self") is True
    assert signals.isGivenKWActivityObserved("3", 7.0, "Child") is False


def is_any_activity_observed(signals, spec):
    assert signals.isAnyKWActivityObserved("3", 7) is False
    signals.add(Zelmar.HMI.SignalSpecification(ZID_="3", DomainType_="kw_data", DomainParams_=CHART))
    assert signals.isAnyKWActivityObserved("plant:3", 7) is True


def set_uuid_for_block(signals, spec):
    assert Zelmar.HMI.InstrumentedSignals.setUUIDForBlock(100.5, 3, "mine") is None
    assert signals.getUUIDForBlock(100.5, 3, True) == "mine"


def get_uuid_for_block(signals, spec):
    new = signals.getUUIDForBlock(101.5, 3, False)
    assert re.fullmatch("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}", new)
    assert signals.getUUIDForBlock(101.5, 3, False) != new


METHODS = {
    "add": add,
    "set": set_,
    "remove": remove,
    "get": get,
    "getUUID": get_uuid,
    "isPortObserved": is_port_observed,
    "isGivenPortObserved": is_given_port_observed,
    "isGivenKWActivityObserved": is_given_activity_observed,
    "isAnyKWActivityObserved": is_any_activity_observed,
    "setUUIDForBlock": set_uuid_for_block,
    "getUUIDForBlock": get_uuid_for_block,
}


@pytest.mark.parametrize("name", METHODS)
def test_method(name, signals, spec):
    METHODS[name](signals, spec)


def test_no_member_is_forgotten():
    description = zmhost._zmhost.describe_class("Zelmar.HMI.InstrumentedSignals")
    assert {method.name for method in description.methods} == METHODS.keys()
    assert [p.name for p in description.properties] == ["Model", "Count", "Persistence"]


def test_the_model_name_is_a_property(signals):
    assert signals.Model == "plant"


def test_the_count_is_a_property(signals, spec):
    signals.add(spec)
    assert signals.Count == 1 and type(signals.Count) is int


def test_persistence_gives_and_takes_struct_arrays(model):
    block = model["Klima/Klimaregler"]
    signals = Zelmar.HMI.InstrumentedSignals(model.name)
    signals.add(Zelmar.HMI.SignalSpecification(ZID_=block.zid, BlockPath_="gone", OutputPortIndex_=2))
    saved = signals.Persistence
    assert len(saved) == 1 and len(saved.fields) == 16 and saved[0]["BlockPath_"] == "Klima/Klimaregler"
    signals.Persistence = saved
    assert signals.Count == 2
    signals.Persistence = [{**saved[0], "OutputPortIndex_": 3}]
    assert [record["OutputPortIndex_"] for record in signals.Persistence] == [2, 2, 3]


def test_persistence_of_an_empty_collection_has_the_fields(signals):
    saved = signals.Persistence
    assert len(saved) == 0 and len(saved.fields) == 16
    signals.Persistence = saved
    assert signals.Count == 0
