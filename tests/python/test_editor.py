"""Editing a diagram from scripts, with the editor that keeps signals on their ports."""

import random

import pytest

import zmhost
from zmhost import Zelmar


def observers_of(model):
    signals = Zelmar.HMI.InstrumentedSignals(model.name)
    clients = Zelmar.HMI.StreamingClients(model.name)
    return zmhost.call("Zelmar.HMI.ModelObservers.createFromSignalsAndClients", signals, clients)


def observe(model, port):
    """A signal on an output port, known by the port's own UUID."""
    signals = model.observers.Signals
    block = port.block
    spec = Zelmar.HMI.SignalSpecification(
        UUID=Zelmar.HMI.InstrumentedSignals.getUUIDForBlock(block.handle, port.index, True),
        BlockPath_=block.path,
        ZID_=block.zid,
        OutputPortIndex_=port.index,
        CachedBlockHandle_=block.handle,
        CachedPortIdx_=port.index,
    )
    signals.add(spec)
    return spec.UUID


def records(model):
    signals = model.observers.Signals
    return [signals.get(i, True) for i in range(1, signals.Count + 1)]


def persisted(model):
    """The persisted form, texts and all."""
    return [[(name, record[name]) for name in record] for record in model.observers.Signals.Persistence]


@pytest.fixture
def edited(model):
    model.observers = observers_of(model)
    with zmhost.editor.Editor(model) as editor:
        zmhost.editor.take_events()
        yield model, editor


def test_blocks_are_added_deleted_renamed_and_moved(edited):
    model, _ = edited
    before = [block.path for block in model.blocks]
    added = model.root.add("New", "system")
    inner = added.add("Inner")
    assert (added.kind, inner.kind) == ("system", "component")
    inner.rename("Core")
    inner.move_to(model.root)
    assert model["Core"] == inner
    added.delete()
    assert "New" not in model
    for _ in range(5):
        assert model.undo()
    assert [block.path for block in model.blocks] == before
    assert not model.undo()
    assert model.redo()
    assert model["New"] == added


def test_outputs_are_added_deleted_and_reordered(edited):
    model, _ = edited
    block = model.root.add("New")
    for name in "abc":
        block.add_output(name)
    block.add_output("first", 1)
    assert [port.name for port in block.outputs] == ["first", "a", "b", "c"]
    block.reorder_outputs([4, 3, 2, 1])
    block.delete_output(1)
    assert [port.name for port in block.outputs] == ["b", "a", "first"]
    model.undo()
    assert [port.name for port in block.outputs] == ["c", "b", "a", "first"]
    with pytest.raises(zmhost.HostError, match="output port"):
        block.delete_output(9)


def test_parameters_are_set_and_announced(edited):
    model, _ = edited
    block = model.root.add("New")
    block.set_parameter("k", "2")
    assert block.parameters() == {"k": "2"}
    model.undo()
    assert block.parameters() == {}
    assert zmhost.editor.take_events() == [("block_param_change", block.path)] * 2
    assert zmhost.editor.take_events() == []


def test_signals_follow_their_ports(edited):
    model, editor = edited
    block = model.root.add("New")
    for name in "abc":
        block.add_output(name)
    uuid = observe(model, block.outputs[2])
    before = persisted(model)
    block.delete_output(1)
    assert [(r["UUID"], r["OutputPortIndex_"]) for r in records(model)] == [(uuid, 2)]
    editor.redraw()
    assert [editor.is_observed(port) for port in block.outputs] == [False, True]
    block.delete_output(2)
    assert records(model) == []
    model.undo()
    model.undo()
    assert persisted(model) == before


def test_the_model_is_renamed_with_its_observers(edited):
    model, _ = edited
    block = model.root.add("New")
    block.add_output("y")
    observe(model, block.outputs[0])
    former = model.name
    model.rename("factory")
    assert records(model)[0]["BlockPath_"] == "factory/New"
    model.undo()
    assert model.name == former
    assert records(model)[0]["BlockPath_"] == former + "/New"


def test_observed_ports_and_badges_are_answered(edited):
    model, editor = edited
    block = model.root.add("New")
    block.add_output("y")
    uuid = observe(model, block.outputs[0])
    (source,) = editor.observed_ports()
    assert (source.name, source.handle, source.number1) == (uuid, block.handle, 1)
    assert (source.number2, source.number3) == (0, 1)
    assert (source.flag1, source.flag2, source.flag3) == (True, False, False)
    assert (source.text1, source.text2) == (block.path, "y")
    assert editor.observed_ports("Nowhere") == []
    assert editor.badged_blocks() == [block]


def test_what_no_longer_exists_is_reported_and_removed(edited):
    model, editor = edited
    model.observers.Signals.add(Zelmar.HMI.SignalSpecification(BlockPath_="Gone", OutputPortIndex_=1))
    with pytest.warns(zmhost.HostWarning, match="no longer exists"):
        editor.rebind(remove_unbound=True)
    assert records(model) == []


def test_a_closed_editor_follows_nothing(edited):
    model, editor = edited
    block = model.root.add("New")
    block.add_output("y")
    observe(model, block.outputs[0])
    editor.close()
    block.delete_output(1)
    assert len(records(model)) == 1
    with pytest.raises(ValueError, match="closed"):
        editor.redraw()


# ---- a thousand random edits ----------------------------------------------------------------------------


class Walk:
    """Random edits on a large diagram. A port's name is never used twice, so that it tells which it is."""

    def __init__(self, model, seed):
        self.model = model
        self.random = random.Random(seed)
        self.names = 0
        self.port_of = {}

    def name(self):
        self.names += 1
        return f"n{self.names}"

    def block(self):
        return self.random.choice(self.model.blocks)

    def system(self):
        return self.random.choice([self.model.root, *(b for b in self.model.blocks if b.kind == "system")])

    def grow(self, blocks):
        for _ in range(blocks):
            added = self.system().add(self.name(), self.random.choice(["component", "component", "system"]))
            for _ in range(self.random.randrange(4)):
                added.add_output(self.name())

    def observe(self, port):
        self.port_of[observe(self.model, port)] = port.name

    def edit(self):
        block, kind = self.block(), self.random.randrange(10)
        ports = len(block.outputs)
        if kind == 0:
            self.grow(1)
        elif kind == 1 and len(block.children) < 5:
            block.delete()
        elif kind == 2:
            block.rename(self.name())
        elif kind == 3:
            target = self.system()
            while target is not None and target != block:
                target = target.parent
            if target is None:
                block.move_to(self.system_outside(block))
        elif kind in (4, 5):
            block.add_output(self.name(), self.random.randint(1, ports + 1))
        elif kind == 6 and ports:
            block.delete_output(self.random.randint(1, ports))
        elif kind == 7 and ports:
            order = list(range(1, ports + 1))
            self.random.shuffle(order)
            block.reorder_outputs(order)
        elif kind == 8 and ports:
            port = self.random.choice(block.outputs)
            if not self.model.observers.Signals.isGivenPortObserved(block.handle, port.index):
                self.observe(port)
        else:
            for _ in range(self.random.randrange(1, 4)):
                self.model.undo()

    def system_outside(self, block):
        while True:
            target = around = self.system()
            while around is not None and around != block:
                around = around.parent
            if around is None:
                return target

    def check(self):
        """Every signal is on the port that it was made for, and exactly those count as observed."""
        observed = set()
        for record in records(self.model):
            block = self.model.find_by_zid(record["ZID_"])
            port = block.outputs[int(record["OutputPortIndex_"]) - 1]
            assert port.name == self.port_of[record["UUID"]]
            assert record["BlockPath_"] == block.path
            observed.add((block.handle, port.index))
        signals = self.model.observers.Signals
        for port in self.model.output_ports:
            place = (port.block.handle, port.index)
            assert signals.isGivenPortObserved(*place) is (place in observed)
        return observed


def save_and_load(model):
    """As a host stores signals with a model and reads them when it is opened again."""
    stored = model.observers.Signals.Persistence
    model.observers = observers_of(model)
    model.observers.Signals.Persistence = stored


def test_no_signal_is_on_the_wrong_port_after_a_thousand_random_edits(edited):
    model, editor = edited
    walk = Walk(model, 7)
    walk.grow(120)
    for port in model.output_ports[::2]:
        walk.observe(port)
    for step in range(1000):
        walk.edit()
        walk.check()
        if step % 100 == 99:
            before = persisted(model)
            save_and_load(model)
            assert persisted(model) == before
            editor.rebind()
            assert persisted(model) == before
            walk.check()


def test_undo_brings_the_persisted_form_back_to_the_letter(edited):
    model, _ = edited
    walk = Walk(model, 11)
    walk.grow(30)
    for port in model.output_ports[::2]:
        walk.observe(port)
    for _ in range(100):
        before = persisted(model)
        paths = [(block.path, block.zid, block.handle) for block in model.blocks]
        block = walk.block()
        kind = walk.random.randrange(6)
        ports = len(block.outputs)
        if kind == 0:
            block.delete()
        elif kind == 1:
            block.rename(walk.name())
        elif kind == 2:
            block.move_to(walk.system_outside(block))
        elif kind == 3:
            block.add_output(walk.name(), walk.random.randint(1, ports + 1))
        elif kind == 4 and ports:
            block.delete_output(walk.random.randint(1, ports))
        elif kind == 5 and ports > 1:
            block.reorder_outputs([*range(2, ports + 1), 1])
        else:
            continue
        assert model.undo()
        assert persisted(model) == before
        assert [(block.path, block.zid, block.handle) for block in model.blocks] == paths
        assert model.redo()
        walk.check()
