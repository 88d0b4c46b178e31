"""Pictures of models."""

import re
import xml.etree.ElementTree as ET

import pytest

import zmhost


@pytest.fixture
def model(tmp_path):
    source = tmp_path / "plant.ssd"
    source.write_text(
        """<SystemStructureDescription xmlns="http://ssp-standard.org/SSP1/SystemStructureDescription"
            version="1.0" name="plant"><System name="plant"><Elements>
            <Component name="Gain"><Connectors><Connector name="y" kind="output"/></Connectors></Component>
            <Component name="龍 &lt;a&gt; &quot;b&quot;"><Connectors><Connector name="u" kind="input"/></Connectors>
            </Component></Elements><Connections>
            <Connection startElement="Gain" startConnector="y"
                endElement="龍 &lt;a&gt; &quot;b&quot;" endConnector="u"/>
            </Connections></System></SystemStructureDescription>"""
    )
    model = zmhost.open_model(source)
    yield model
    model.close()


def test_a_file_is_drawn_in_the_format_of_its_extension(model, tmp_path):
    model.draw(tmp_path / "model.svg")
    model.draw(str(tmp_path / "model.png"))
    assert ET.parse(tmp_path / "model.svg").getroot().tag.endswith("svg")
    assert (tmp_path / "model.png").read_bytes().startswith(b"\x89PNG")
    assert sorted(file.name for file in tmp_path.iterdir()) == ["model.png", "model.svg", "plant.ssd"]


def test_hover_titles_name_blocks_and_connectors(model, tmp_path):
    model.draw(tmp_path / "model.svg")
    titles = {element.text for element in ET.parse(tmp_path / "model.svg").iter() if element.tag.endswith("title")}
    assert titles == {"plant", "Gain", "龍 <a> ”b”", "Gain:y->龍 <a> ”b”:u"}


def test_the_name_may_look_like_an_option(model, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    model.draw("-Kneato.svg")
    assert (tmp_path / "-Kneato.svg").exists()


@pytest.mark.parametrize(
    ("name", "reason"),
    [
        ("model", "extension"),
        ("x.foo", 'code 1: Format: "foo" not recognized'),
        ("missing/x.svg", "No such file or directory"),
    ],
)
def test_the_error_says_what_the_program_says(model, tmp_path, capfd, name, reason):
    with pytest.raises(zmhost.HostError, match=re.escape(reason)) as error:
        model.draw(tmp_path / name)
    assert (error.value.catalog, error.value.key) == ("reference_host:diagram", "DrawingFailed")
    assert [file.name for file in tmp_path.iterdir()] == ["plant.ssd"]
    assert capfd.readouterr().err == ""


def test_the_error_says_that_the_program_is_missing(model, tmp_path, monkeypatch):
    monkeypatch.setenv("PATH", str(tmp_path))
    with pytest.raises(zmhost.HostError, match="failed with code 127: .*dot"):
        model.draw(tmp_path / "x.svg")
