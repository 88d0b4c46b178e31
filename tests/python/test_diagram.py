"""Diagrams as scripts see them."""

import warnings

import pytest

import zmhost
from zmhost import Zelmar

from conftest import GREENHOUSE

SSD = """<?xml version="1.0" encoding="UTF-8"?>
<ssd:SystemStructureDescription xmlns:ssd="http://ssp-standard.org/SSP1/SystemStructureDescription"
    name="d" version="1.0">
  <ssd:System name="plant">
    <ssd:Elements>
      <ssd:Component name="Source" source="s.fmu">
        <ssd:Connectors>
          <ssd:Connector name="out" kind="output"/><ssd:Connector name="second" kind="output"/>
        </ssd:Connectors>
      </ssd:Component>
      <ssd:System name="Controller">
        <ssd:Connectors><ssd:Connector name="in" kind="input"/></ssd:Connectors>
        <ssd:Elements>
          <ssd:Component name="Limiter" source="l.fmu">
            <ssd:Connectors><ssd:Connector name="u" kind="input"/><ssd:Connector name="y" kind="output"/></ssd:Connectors>
          </ssd:Component>
        </ssd:Elements>
        <ssd:Connections>
          <ssd:Connection startConnector="in" endElement="Limiter" endConnector="u"/>
        </ssd:Connections>
      </ssd:System>
    </ssd:Elements>
    <ssd:Connections>
      <ssd:Connection startElement="Source" startConnector="out" endElement="Controller" endConnector="in"/>
      %s
    </ssd:Connections>
  </ssd:System>
</ssd:SystemStructureDescription>
"""
DANGLING = '<ssd:Connection startElement="Gone" startConnector="out" endElement="Controller" endConnector="in"/>'


@pytest.fixture
def plant(tmp_path):
    file = tmp_path / "plant.ssd"
    file.write_text(SSD % "", encoding="utf-8")
    with zmhost.open_model(file) as model:
        yield model


def test_a_model_lists_its_blocks_and_ports(plant):
    assert plant.name == "plant" and len(plant) == 3
    assert [block.path for block in plant.blocks] == ["plant/Source", "plant/Controller", "plant/Controller/Limiter"]
    assert [(p.block.name, p.index, p.name) for p in plant.output_ports] == [
        ("Source", 1, "out"),
        ("Source", 2, "second"),
        ("Limiter", 1, "y"),
    ]


def test_blocks_are_found_by_path_zid_and_handle(plant):
    limiter = plant["Controller/Limiter"]
    assert "Controller/Limiter" in plant and "Limiter" not in plant
    assert plant.find_by_zid("plant:3") == plant.find_by_zid("3") == limiter
    assert plant.find_by_handle(limiter.handle) == limiter
    assert plant.find_by_zid("plant:9") is plant.find_by_handle(0.5) is None
    with pytest.raises(KeyError, match="plant.*Nowhere"):
        plant["Nowhere"]


def test_a_block_tells_what_it_is(plant):
    limiter, controller = plant["Controller/Limiter"], plant["Controller"]
    assert (limiter.name, limiter.kind, limiter.zid, limiter.number) == ("Limiter", "component", "plant:3", 3)
    assert controller.kind == "system" and controller.children == [limiter] and limiter.parent == controller
    assert controller.parent == plant.root and plant.root.parent is None and limiter.model is plant
    assert [port.name for port in limiter.inputs] == ["u"] and [port.name for port in limiter.outputs] == ["y"]
    assert limiter.handle != 0.0 and limiter.chart is None
    assert len({limiter, plant["Controller/Limiter"], controller}) == 2


def test_connections_know_their_ends(plant):
    (outer,) = plant.root.connections
    assert (outer.start.element, outer.start.connector) == (plant["Source"], "out")
    (inner,) = plant["Controller"].connections
    assert inner.start.element == plant["Controller"] and inner.end.element == plant["Controller/Limiter"]
    assert repr(inner) == "<connection Controller.in -> Limiter.u>"


def test_a_dangling_connection_is_a_warning(tmp_path):
    file = tmp_path / "plant.ssd"
    file.write_text(SSD % DANGLING, encoding="utf-8")
    with pytest.warns(zmhost.HostWarning, match="Gone"), zmhost.open_model(file) as model:
        assert model.root.connections[1].start.element is None
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        with pytest.raises(zmhost.HostWarning):
            zmhost.open_model(file)
    assert zmhost.models() == []


@pytest.mark.parametrize(
    ("content", "key"), [("<not xml", "InvalidDiagram"), (None, "UnreadableFile"), ("<a/>", "InvalidDiagram")]
)
def test_a_file_that_is_no_diagram_is_a_host_error(tmp_path, content, key):
    file = tmp_path / "bad.ssd"
    if content is not None:
        file.write_text(content)
    with pytest.raises(zmhost.HostError, match="bad.ssd") as error:
        zmhost.open_model(str(file))
    assert error.value.key == key


def test_open_models_are_listed_until_they_are_closed(plant):
    assert zmhost.models() == [plant] and plant.is_open
    plant.close()
    assert zmhost.models() == [] and not plant.is_open and plant["Source"].name == "Source"
    plant.close()


def test_a_name_is_open_once(plant, tmp_path):
    with pytest.raises(zmhost.HostError) as error:
        zmhost.open_model(tmp_path / "plant.ssd")
    assert error.value.key == "ModelAlreadyOpen"


def test_blocks_follow_renames_and_moves(plant):
    limiter = plant["Controller/Limiter"]
    limiter.rename("Grenze")
    assert limiter.path == "plant/Controller/Grenze" and limiter.zid == "plant:3"
    limiter.move_to(plant.root)
    assert limiter.path == "plant/Grenze" and plant["Grenze"] == limiter
    plant.rename("Werk")
    assert (plant.name, limiter.path, limiter.zid) == ("Werk", "Werk/Grenze", "Werk:3")
    assert zmhost.models() == [plant]


@pytest.mark.parametrize(
    ("edit", "key"),
    [
        (lambda m: m["Source"].rename("Controller"), "DuplicateName"),
        (lambda m: m["Source"].rename("a/b"), "InvalidName"),
        (lambda m: m["Source"].rename(""), "InvalidName"),
        (lambda m: m["Source"].move_to(m["Controller/Limiter"]), "InvalidSystem"),
        (lambda m: m["Controller"].move_to(m["Controller"]), "InvalidMove"),
        (lambda m: m.root.rename("x"), "InvalidBlock"),
        (lambda m: m.rename("a:b"), "InvalidName"),
    ],
)
def test_edits_that_cannot_be_are_host_errors(plant, edit, key):
    with pytest.raises(zmhost.HostError) as error:
        edit(plant)
    assert error.value.key == key


def test_a_saved_signal_follows_its_block(plant):
    block = plant["Controller/Limiter"]
    signals = Zelmar.HMI.InstrumentedSignals(plant.name)
    signals.add(Zelmar.HMI.SignalSpecification(ZID_=block.zid, BlockPath_=block.path, OutputPortIndex_=1))
    block.rename("Grenze")
    assert signals.Persistence[0]["BlockPath_"] == "Controller/Grenze"


def test_charts_are_added_by_script(plant):
    source = plant["Source"]
    chart = source.add_chart("Mode")
    on = chart.add_state("On")
    fast = chart.add_state("Fast", on)
    speed = chart.add_data("speed")
    assert plant.charts[0].name == source.chart.name == "Mode" and chart.block == source
    assert [(o.kind, o.kzid, o.parent, o.name, o.domain_type) for o in chart.objects] == [
        ("chart", 0, 0, "Mode", "kw_chart"),
        ("state", on, 0, "On", "kw_state"),
        ("state", fast, on, "Fast", "kw_state"),
        ("data", speed, 0, "speed", "kw_data"),
    ]
    with pytest.raises(zmhost.HostError):
        source.add_chart("Second")
    with pytest.raises(zmhost.HostError):
        chart.add_state("Lost", 99)


def test_everything_has_a_telling_repr(plant):
    chart = plant["Source"].add_chart("Mode")
    assert repr(plant) == "<model 'plant': 3 blocks, 3 output ports>"
    assert repr(plant["Source"]) == "<component 'plant/Source', ZID 'plant:1', 2 output ports>"
    assert repr(plant.output_ports[0]) == "<output port 1 'out' of 'plant/Source'>"
    assert repr(plant["Controller/Limiter"].inputs[0]) == "<input port 1 'u' of 'plant/Controller/Limiter'>"
    assert repr(chart) == "<chart 'Mode' of 'plant/Source': 1 objects>"
    assert repr(chart.objects[0]) == "<chart 0 'Mode'>"
    plant.close()
    assert "closed" in repr(plant)


def test_parts_of_a_diagram_outlive_the_model():
    def limiter():
        with zmhost.open_model(GREENHOUSE) as model:
            return model["灌漑/養液/𠮷田タンク"]

    tank = limiter()
    assert tank.name == "𠮷田タンク" and tank.path == "Gewächshaus/灌漑/養液/𠮷田タンク"
    assert tank.outputs[0].block == tank
