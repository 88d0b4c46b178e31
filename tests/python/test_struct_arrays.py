"""Struct arrays are sequences of mappings, and the host's own values when they go back."""

from collections.abc import Mapping, Sequence

import pytest

import zmhost
from zmhost import Matrix, Struct, StructArray

RECORDS = [{"UUID": "a", "Port": 1.0}, {"UUID": "b", "Port": 2.0}, {"UUID": "c", "Port": 3.0}]


@pytest.fixture
def array():
    return StructArray(RECORDS)


def test_it_is_a_sequence_of_mappings(array):
    assert isinstance(array, Sequence) and all(isinstance(element, Mapping) for element in array)
    assert len(array) == 3 and array.fields == ("UUID", "Port") and array.dims == (3, 1)
    assert array[0]["UUID"] == "a" and array[-1]["UUID"] == "c"
    assert [element["Port"] for element in array[1:]] == [2.0, 3.0]
    assert [dict(element) for element in array] == RECORDS
    assert list(array[0]) == ["UUID", "Port"] and len(array[0]) == 2 and "Port" in array[0]


def test_an_element_past_the_end_is_an_index_error(array):
    for index in (3, -4):
        with pytest.raises(IndexError, match="3 elements"):
            array[index]


def test_a_field_that_is_missing_is_a_key_error(array):
    with pytest.raises(KeyError):
        array[0]["Missing"]
    assert array[0].get("Missing") is None


def test_elements_cannot_be_assigned_to(array):
    with pytest.raises(TypeError):
        array[0]["Port"] = 5
    with pytest.raises(TypeError):
        array[0] = {}


def test_an_array_of_one_reads_as_its_element(array):
    assert StructArray(RECORDS[:1])["UUID"] == "a"
    with pytest.raises(TypeError, match="has 3"):
        array["UUID"]


def test_it_compares_by_content(array):
    assert array == StructArray(RECORDS)
    assert array != StructArray(RECORDS[:2])
    assert array != StructArray([{"Port": 1.0, "UUID": "a"}])
    assert array[0] == RECORDS[0] and array[0] != array[1]
    assert array != RECORDS and array[0] != 1


def test_repr_names_shape_and_fields(array):
    assert repr(array) == "<3x1 struct array, 2 fields: UUID, Port>"
    assert repr(array[0]) == "Struct(UUID='a', Port=1.0)"
    assert repr(StructArray([{}])) == "<1x1 struct array, no fields>"


def test_a_list_of_mappings_is_one(echo):
    assert echo(RECORDS) == StructArray(RECORDS)


def test_a_mapping_is_an_array_of_one(echo):
    assert echo(RECORDS[0]).dims == (1, 1)
    assert echo({}).fields == ()


def test_it_goes_back_as_the_value_that_it_is(echo):
    array = StructArray([{"count": Matrix(3, "uint32"), "flag": True, "gone": None, "inner": {"x": [1]}}])
    back = echo(array)
    assert back == array
    assert type(back["count"]) is int and back["flag"] is True and back["gone"] is None
    assert back["inner"]["x"] == [1.0]


def test_elements_go_back_with_the_classes_of_their_fields(echo):
    array = StructArray([{"count": Matrix(3, "uint32")}, {"count": Matrix(4, "uint32")}])
    one = echo(array[1])
    assert one.dims == (1, 1) and type(one["count"]) is int
    filtered = echo([element for element in array if element["count"] > 3])
    assert filtered.dims == (1, 1) and type(filtered["count"]) is int
    mixed = echo([array[0], {"count": 5}])
    assert [type(element["count"]) for element in mixed] == [int, float]


def test_an_empty_array_keeps_its_fields(echo):
    back = echo(StructArray([], fields=("UUID", "Port")))
    assert back.fields == ("UUID", "Port") and len(back) == 0 and back.dims == (0, 1)


def test_fields_may_be_given(array):
    assert StructArray(RECORDS, fields=("Port", "UUID")).fields == ("Port", "UUID")


@pytest.mark.parametrize(
    ("elements", "words"),
    [
        ([{"a": 1}, {"b": 1}], "element 1 .* no field \"a\""),
        ([{"a": 1}, {}], "element 1 .* other fields"),
        ([{"a": 1}, {"a": 1, "b": 2}], "element 1 .* other fields"),
        ([{1: 2}], "named by a str"),
        ([{"a": {2}}], "set"),
    ],
)
def test_elements_that_do_not_fit_are_refused(elements, words, echo):
    with pytest.raises(TypeError, match=words):
        StructArray(elements)
    with pytest.raises(zmhost.HostError, match=words):
        echo(elements)


def test_only_mappings_are_elements():
    with pytest.raises(TypeError, match="int"):
        StructArray([1])  # type: ignore[list-item]


def test_an_element_outlives_its_array():
    element = StructArray(RECORDS)[1]
    assert isinstance(element, Struct) and element.to_dict() == RECORDS[1]


def test_large_arrays_read_lazily():
    array = StructArray([{"UUID": str(i)} for i in range(50_000)])
    before = zmhost.ledger().live_values
    assert array[49_999]["UUID"] == "49999"
    assert zmhost.ledger().live_values == before
