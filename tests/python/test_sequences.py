"""Collections, ports, blocks and values as Python's own containers are used."""

import copy
import pickle

import pytest

import zmhost
from zmhost import Matrix, StructArray, Zelmar


def signal_on(port, uuid):
    return Zelmar.HMI.SignalSpecification(
        UUID=uuid, ZID_=port.block.zid, BlockPath_=port.block.path, OutputPortIndex_=port.index
    )


@pytest.fixture
def three(model):
    signals = Zelmar.HMI.InstrumentedSignals(model.name)
    for uuid, port in zip("abc", model.output_ports):
        signals.add(signal_on(port, uuid))
    return signals


def test_length_and_truth_are_those_of_the_elements(three):
    assert len(three) == 3 and three
    assert len(Zelmar.HMI.InstrumentedSignals("m")) == 0 and not Zelmar.HMI.InstrumentedSignals("m")


def test_python_counts_from_0_and_get_from_1(three):
    assert [three[0].UUID, three[2].UUID, three[-1].UUID] == ["a", "c", "c"]
    assert three.get(1).UUID == "a"
    assert [element.UUID for element in three[1:]] == ["b", "c"]
    assert [element.UUID for element in three] == ["a", "b", "c"]


@pytest.mark.parametrize("index", [3, -4])
def test_an_index_past_the_end_is_an_index_error(three, index):
    with pytest.raises(IndexError, match=f"index {index} is out of range for 3 elements"):
        three[index]


def test_an_index_of_another_type_is_a_type_error(three):
    with pytest.raises(TypeError, match="an index is an int or a slice, not str"):
        three["a"]


def test_membership_is_by_uuid_and_by_port(three, model):
    ports = model.output_ports
    assert "b" in three and "d" not in three and "" not in three and 5 not in three
    assert three[1] in three and signal_on(ports[0], "d") not in three
    assert ports[0] in three and ports[3] not in three


def test_iteration_meets_elements_that_are_added_meanwhile(three, model):
    seen = []
    for element in three:
        seen.append(element.UUID)
        if len(seen) == 1:
            three.add(signal_on(model.output_ports[3], "d"))
    assert seen == ["a", "b", "c", "d"]


def test_clients_are_a_sequence_too():
    clients = Zelmar.HMI.StreamingClients("m")
    assert not clients and list(clients) == []
    clients.add(Zelmar.HMI.SignalClient(UUID="w"))
    assert len(clients) == 1 and clients[0].UUID == "w" and "w" in clients


def test_ports_and_blocks_are_equal_when_they_are_the_same(model):
    first, second = model.output_ports[:2]
    assert first == model.output_ports[0] and hash(first) == hash(model.output_ports[0])
    assert first != second and first != "port" and first.kind == "output"
    assert first.block == model.output_ports[0].block and len({first, model.output_ports[0], second}) == 2


def test_a_block_is_found_with_and_without_the_model_name(model):
    block = model.output_ports[0].block
    relative = block.path.removeprefix(model.name + "/")
    assert model[block.path] == model[relative] == block
    assert block.path in model and relative in model and "nothing/here" not in model


def test_a_port_is_found_by_number_and_by_name(model):
    for port in model.output_ports:
        assert model.port(f"{port.block.path}:{port.index}") == port
        assert model.port(f"{port.block.path}:{port.name}") == port
    with pytest.raises(KeyError, match="no output port 'nothing:1'"):
        model.port("nothing:1")


@pytest.mark.parametrize("make", [copy.copy, copy.deepcopy, pickle.dumps])
def test_host_objects_say_that_they_cannot_be_copied(three, make):
    with pytest.raises(TypeError, match="an object of class Zelmar.HMI.InstrumentedSignals belongs to the host"):
        make(three)


@pytest.mark.parametrize("value", [Matrix([[1, 2], [3, 4]]), Matrix(7, "uint8"), StructArray([{"a": 1}, {"a": "x"}])])
def test_values_can_be_copied_and_pickled(value):
    assert copy.copy(value) == copy.deepcopy(value) == pickle.loads(pickle.dumps(value)) == value


@pytest.mark.parametrize("part", [lambda m: m, lambda m: m.output_ports[0].block, lambda m: m.output_ports[0]])
def test_parts_of_a_model_say_that_they_cannot_be_pickled(model, part):
    with pytest.raises(TypeError, match="pickle"):
        pickle.dumps(part(model))


def test_wrong_arguments_of_native_classes_are_worded(model):
    block = model.output_ports[0].block
    for use, text in [
        (lambda: model.rename(5), r"Model\.rename: expected \(name: str\), got 5"),
        (lambda: model[5], r"Model\.__getitem__: expected \(path: str\), got 5"),
        (lambda: block.add_chart(), r"Block\.add_chart: expected \(name: str\), got nothing"),
        (lambda: block.move_to("x" * 500), r"Block\.move_to: expected \(system: Block\), got 'x{1,80}\.\.\."),
    ]:
        with pytest.raises(TypeError, match=text) as error:
            use()
        assert "incompatible" not in str(error.value)


def test_host_errors_are_pythons_own_errors_too(three, tmp_path):
    with pytest.raises(TypeError):
        three.get("one")
    with pytest.raises(TypeError):
        three[0].OutputPortIndex_ = "one"
    with pytest.raises(FileNotFoundError) as error:
        zmhost.open_model(tmp_path / "missing.ssd")
    assert isinstance(error.value, zmhost.HostError)
    assert error.value.filename == str(tmp_path / "missing.ssd")
    with pytest.raises(OSError) as error:
        zmhost.open_model(tmp_path)
    assert isinstance(error.value, zmhost.HostError) and not isinstance(error.value, FileNotFoundError)
