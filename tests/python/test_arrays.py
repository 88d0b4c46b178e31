"""Numbers and arrays of other makers: the buffer protocol, numpy, numbers that convert themselves."""

import array
import decimal
import fractions

import pytest

import zmhost
from zmhost import Matrix

numpy = pytest.importorskip("numpy")


@pytest.fixture
def through(define):
    """Hands a value to the host and back."""

    @define("sameValue")
    def same_value(value):
        return value

    return lambda value: zmhost.call("sameValue", value)


def test_a_matrix_gives_its_elements_as_a_buffer_in_its_shape():
    view = memoryview(Matrix([[1, 2, 3], [4, 5, 6]]))
    assert view.shape == (2, 3) and view.readonly and view.tolist() == [[1, 2, 3], [4, 5, 6]]


@pytest.mark.parametrize("class_name", ["double", "single", "int8", "uint16", "int32", "uint64", "logical"])
def test_numpy_reads_a_matrix_without_copying_it(class_name):
    matrix = Matrix([[1, 0], [0, 1], [1, 1]], class_name)
    elements = numpy.asarray(matrix)
    assert elements.shape == (3, 2) and elements.tolist() == [[1, 0], [0, 1], [1, 1]]
    assert numpy.shares_memory(elements, numpy.asarray(matrix)) and not elements.flags.writeable


def test_a_view_outlives_its_matrix():
    elements = numpy.asarray(Matrix([[1.5, 2.5]]))
    assert elements.tolist() == [[1.5, 2.5]]


@pytest.mark.parametrize(
    "elements",
    [
        [[1.0, 2.0], [3.0, 4.0]],
        numpy.arange(6, dtype="int32").reshape(2, 3),
        numpy.arange(24.0).reshape(2, 3, 4),
        numpy.arange(6.0).reshape(2, 3).T,
        numpy.arange(12.0).reshape(3, 4)[::2, ::-1],
        numpy.array([[True, False]]),
        numpy.zeros((0, 3)),
        numpy.array([[1 + 2j, 3 - 4j]]),
        numpy.array([[1, 2]], dtype="float32"),
    ],
    ids=str,
)
def test_arrays_keep_shape_and_class(through, elements):
    given = numpy.asarray(elements)
    back = numpy.asarray(through(given))
    assert back.dtype == given.dtype and back.shape == given.shape and (back == given).all()


def test_one_dimension_is_a_row_and_none_a_number(through):
    assert numpy.asarray(through(numpy.array([1.0, 2.0]))).tolist() == [[1.0, 2.0]]
    assert numpy.asarray(through(array.array("h", [1, 2]))).tolist() == [[1, 2]]
    assert through(numpy.array(2.5)) == 2.5


@pytest.mark.parametrize(
    ("number", "expected"),
    [
        (numpy.float32(2.5), 2.5),
        (numpy.int16(-3), -3),
        (fractions.Fraction(1, 2), 0.5),
        (decimal.Decimal("1.25"), 1.25),
        (1 + 2j, 1 + 2j),
    ],
)
def test_numbers_of_other_types_are_numbers(through, number, expected):
    assert through(number) == expected


@pytest.mark.parametrize(
    "elements", [numpy.array(["a"]), numpy.float16(1), numpy.array([1], dtype="datetime64[s]"), numpy.array([None])]
)
def test_other_element_types_are_refused(through, elements):
    with pytest.raises(zmhost.HostError, match="no host value"):
        through(elements)


def test_what_a_conversion_raises_reaches_the_script(spec):
    class Refusing:
        def __index__(self):
            raise ZeroDivisionError("not today")

    with pytest.raises(Exception) as error:
        spec.OutputPortIndex_ = Refusing()
    assert isinstance(error.value, ZeroDivisionError) or isinstance(error.value.__cause__, ZeroDivisionError)


def test_a_struct_array_becomes_a_data_frame():
    pytest.importorskip("pandas")
    frame = zmhost.StructArray([{"a": 1.0, "b": "x"}, {"a": 2.0, "b": "y"}]).to_pandas()
    assert list(frame.columns) == ["a", "b"] and frame["a"].tolist() == [1.0, 2.0]
