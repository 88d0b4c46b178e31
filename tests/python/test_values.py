"""Values as they go to the host and come back."""

import math

import pytest

import zmhost
from zmhost import CellArray, Matrix, StructArray, Zelmar, _zmhost


@pytest.mark.parametrize(
    "value",
    ["", "Gain", "Gewächshaus", "灌漑", "𠮷田タンク", "a\0b", "\ud800", "\udc00\ud800", 'quote"\n'],
)
def test_text_comes_back_unchanged(echo, value):
    assert echo(value) == value


@pytest.mark.parametrize("value", [0.0, 1.5, -2.25, math.inf, -math.inf, 5e-324])
def test_numbers_come_back_unchanged(echo, value):
    assert echo(value) == value and type(echo(value)) is float


def test_nan_and_negative_zero_stay_what_they_are(echo):
    assert math.isnan(echo(math.nan))
    assert math.copysign(1, echo(-0.0)) == -1


def test_flags_come_back_as_flags(echo):
    assert echo(True) is True and echo(False) is False


def test_an_int_is_a_double_to_the_host(echo):
    assert echo(7) == 7.0 and type(echo(7)) is float
    assert type(echo(2**53)) is float and type(echo(-(2**53))) is float


@pytest.mark.parametrize("value", [2**53 + 1, -(2**53) - 1, 2**63 - 1, -(2**63), 2**64 - 1])
def test_an_int_that_no_double_holds_stays_an_int(echo, value):
    assert echo(value) == value and type(echo(value)) is int


@pytest.mark.parametrize("value", [2**64, -(2**63) - 1])
def test_an_int_beyond_64_bits_is_refused(echo, value):
    with pytest.raises(zmhost.HostError, match="echo: argument 1 .*64 bits"):
        echo(value)


def test_none_is_the_empty_value(echo):
    assert echo(None) is None
    assert echo(Matrix.zeros(0, 0)) is None


def test_a_list_is_a_row_of_cells(echo):
    assert echo([1, "two", [True, None]]) == [1.0, "two", [True, None]]
    assert echo(("a",)) == ["a"]


def test_the_empty_list_is_the_empty_cell_array(echo):
    assert echo([]) == [] and type(echo([])) is list


@pytest.mark.parametrize("dims", [(2, 1), (2, 3), (0, 3), (1, 0), (2, 1, 2)])
def test_cell_arrays_keep_their_shape(echo, dims):
    cells = CellArray(range(math.prod(dims)), dims)
    back = echo(cells)
    assert isinstance(back, CellArray)
    assert (back, back.dims) == (list(map(float, cells)), dims)
    assert repr(dims) in repr(back)


def test_a_cell_array_of_another_number_of_cells_is_refused(echo):
    with pytest.raises(ValueError, match="2x2"):
        echo(CellArray([1, 2, 3], (2, 2)))


@pytest.mark.parametrize(
    "class_name",
    ["double", "single", "int8", "uint8", "int16", "uint16", "int32", "uint32", "int64", "uint64", "logical"],
)
def test_matrices_keep_their_class(echo, class_name):
    back = echo(Matrix([[1, 0], [0, 1], [1, 1]], class_name))
    assert (back.class_name, back.dims) == (class_name, (3, 2))
    assert back.tolist() == [[1, 0], [0, 1], [1, 1]]


def test_a_matrix_reads_by_row_and_column_and_in_the_hosts_order():
    matrix = Matrix([[1, 2, 3], [4, 5, 6]])
    assert matrix[1, 0] == 4 and matrix[-1, -1] == 6
    assert list(matrix) == [1, 4, 2, 5, 3, 6] and matrix[1] == 4 and len(matrix) == 6
    assert repr(matrix) == "<2x3 double [[1.0, 2.0, 3.0], [4.0, 5.0, 6.0]]>"
    assert matrix == Matrix([[1, 2, 3], [4, 5, 6]]) != Matrix([[1, 2, 3], [4, 5, 6]], "int8")
    for outside in (6, (2, 0), (0, 3)):
        with pytest.raises(IndexError):
            matrix[outside]
    with pytest.raises(IndexError, match="1 indices for 2"):
        matrix[(1,)]


def test_a_matrix_may_have_three_dimensions(echo):
    nested = [[[1.0, 2.0], [3.0, 4.0]], [[5.0, 6.0], [7.0, 8.0]]]
    back = echo(Matrix(nested))
    assert back.dims == (2, 2, 2) and back.tolist() == nested and back[1, 0, 1] == 6


@pytest.mark.parametrize("dims", [(0, 3), (3, 0), (1, 0), (2, 0, 3)])
def test_empty_matrices_keep_their_shape(echo, dims):
    assert echo(Matrix.zeros(*dims)).dims == dims


def test_a_single_number_may_have_a_class(define):
    seen = []
    define("look")(seen.append)
    for value in (Matrix(5, "uint32"), Matrix(5, "single"), Matrix(2**64 - 1, "uint64"), Matrix(1, "logical")):
        zmhost.call("look", value)
    assert seen == [5, 5.0, 2**64 - 1, True]
    assert list(map(type, seen)) == [int, float, int, bool]


@pytest.mark.parametrize(
    ("data", "class_name", "error"),
    [
        ([[1, 2], [3]], "double", ValueError),
        ([300], "uint8", ValueError),
        ([-1], "uint64", ValueError),
        ([2**64], "uint64", ValueError),
        ([1.5], "int32", TypeError),
        (["a"], "double", TypeError),
        ([1], "quaternion", ValueError),
    ],
)
def test_what_no_matrix_can_hold_is_refused(data, class_name, error):
    with pytest.raises(error):
        Matrix(data, class_name)


def test_objects_with_an_index_are_integers(echo):
    class Index:
        def __index__(self):
            return 12

    assert echo(Index()) == 12


@pytest.mark.parametrize("value", [{1}, object(), b"bytes", int])
def test_what_is_nothing_to_the_host_is_refused_by_its_type(echo, value):
    with pytest.raises(zmhost.HostError, match=f"echo: argument 1 .*{type(value).__name__}") as error:
        echo(value)
    assert error.value.key == "WrongArgument" and error.value.arguments == ("echo", 1)


def test_a_list_that_holds_itself_is_refused(echo):
    endless = []
    endless.append(endless)
    with pytest.raises(RecursionError):
        echo(endless)


def test_host_values_stand_in_each_other_a_thousand_deep_and_no_deeper(echo):
    deepest = StructArray([{"inner": 1}])
    for _ in range(999):
        deepest = StructArray([{"inner": deepest}])
    assert len(echo(deepest)) == 1
    with pytest.raises(zmhost.HostError, match="1000 containers deep") as error:
        StructArray([{"inner": deepest}])
    assert error.value.key == "NestedTooDeep"
    with pytest.raises(zmhost.HostError, match="1000 containers deep"):
        _zmhost.make_cell_array([1, 1], [deepest])


def test_a_false_host_value_is_refused(echo):
    class Pretender:
        def __host_value__(self):
            return 5

    with pytest.raises(zmhost.HostError, match="Pretender"):
        echo(Pretender())


def test_errors_of_a_host_value_pass_through(echo):
    class Broken:
        def __host_value__(self):
            raise KeyError("why")

    with pytest.raises(KeyError, match="why"):
        echo(Broken())


def test_structs_and_cells_nest(echo):
    back = echo([{"a": [1, {"b": "c"}]}, "text"])
    assert isinstance(back[0], StructArray)
    assert back[0]["a"][1]["b"] == "c"
    assert back[1] == "text"


class Meddling:
    """A number that lengthens or shortens the list that holds it while it is being read."""

    def __init__(self, meddle):
        self.meddle = meddle

    def __float__(self):
        self.meddle()
        return 1.0


def test_a_list_that_grows_while_its_numbers_are_read_gives_the_numbers_that_were_asked_for():
    numbers = [Meddling(lambda: numbers.extend([9.0] * 100_000)), 2.0]
    assert _zmhost.make_numbers([1, 2], numbers, "double").numbers() == [1.0, 2.0]


def test_a_list_that_shrinks_while_its_numbers_are_read_is_an_error():
    numbers = [Meddling(lambda: numbers.clear()), 2.0]
    with pytest.raises(IndexError):
        _zmhost.make_numbers([1, 2], numbers, "double")


class MadeWhenAsked:
    """A sequence of objects that nobody else holds."""

    def __len__(self):
        return 3

    def __getitem__(self, index):
        if index < len(self):
            return zmhost.Zelmar.HMI.SignalClient()
        raise IndexError(index)


def test_an_object_array_takes_objects_that_only_the_sequence_makes():
    assert _zmhost.make_object_array("Zelmar.HMI.SignalClient", MadeWhenAsked()).dims == (3, 1)


class RaisingIndex:
    def __index__(self):
        raise ArithmeticError("no number")


@pytest.mark.parametrize("where", [lambda odd: odd, lambda odd: [odd], lambda odd: {"field": odd}])
def test_an_object_whose_index_raises_is_no_number(where):
    with pytest.raises(ArithmeticError, match="no number"):
        Zelmar.HMI.SignalClient(ObserverParams_=where(RaisingIndex()))


def test_an_index_that_gives_no_int_is_an_error():
    class Odd:
        def __index__(self):
            return "text"

    with pytest.raises(TypeError):
        Zelmar.HMI.SignalSpecification(OutputPortIndex_=Odd())
