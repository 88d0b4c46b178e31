"""Host values that have no plain Python form: struct arrays, arrays of numbers, cells of other shapes."""

from __future__ import annotations

import itertools
import math
from collections.abc import Iterable, Iterator, Mapping, Sequence
from reprlib import repr as short_repr
from typing import Any, overload

from zmhost import _classes, _zmhost
from zmhost._indices import element_index


def pandas() -> Any:
    """The module pandas, which is optional."""
    try:
        import pandas as module  # type: ignore[import]
    except ImportError:
        raise ImportError("to_pandas needs pandas, which is not installed (Debian package python3-pandas)") from None
    return module


def shape_text(dims: Sequence[int]) -> str:
    return "x".join(map(str, dims))


class Struct(Mapping[str, Any]):
    """One element of a struct array. It reads from the array and cannot be assigned to: like all host
    values, a struct array that came from the host is a copy."""

    __slots__ = ("_array", "_index")

    def __init__(self, array: StructArray, index: int) -> None:
        self._array = array
        self._index = index

    def __getitem__(self, name: str) -> Any:
        if name not in self._array.fields:
            raise KeyError(name)
        return self._array.__host_value__().field(self._index, name)

    def __iter__(self) -> Iterator[str]:
        return iter(self._array.fields)

    def __len__(self) -> int:
        return len(self._array.fields)

    def to_dict(self) -> dict[str, Any]:
        """All fields at once."""
        return self._array.__host_value__().element(self._index)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Mapping):
            return NotImplemented
        return self.to_dict() == (other.to_dict() if isinstance(other, Struct) else dict(other))

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        return f"Struct({', '.join(f'{name}={short_repr(self[name])}' for name in self)})"

    def __host_value__(self) -> _zmhost.Value:
        return self._array.__host_value__().struct_element(self._index)


class StructArray(Sequence[Struct]):
    """A struct array: a sequence of mappings that all have the same fields.

    Made from mappings; without `fields` the first one says which. Handed to the host it is the very
    value that it came from, with class, dimensions and field order. An array of one element can be read
    as that element: `array["UUID"]`.
    """

    __slots__ = ("_value", "_fields")

    def __init__(
        self, elements: Iterable[Mapping[str, Any]] = (), fields: Iterable[str] | None = None
    ) -> None:
        names = None if fields is None else list(fields)
        self._hold(_zmhost.make_struct_array(list(elements), names))

    @classmethod
    def _holding(cls, value: _zmhost.Value) -> StructArray:
        array = cls.__new__(cls)
        array._hold(value)
        return array

    def _hold(self, value: _zmhost.Value) -> None:
        self._value = value
        self._fields = value.fields

    @property
    def fields(self) -> tuple[str, ...]:
        """The field names in order."""
        return self._fields

    @property
    def dims(self) -> tuple[int, ...]:
        return self._value.dims

    def __len__(self) -> int:
        return len(self._value)

    @overload
    def __getitem__(self, index: int) -> Struct: ...

    @overload
    def __getitem__(self, index: slice) -> list[Struct]: ...

    @overload
    def __getitem__(self, index: str) -> Any: ...

    def __getitem__(self, index: int | slice | str) -> Any:
        if isinstance(index, slice):
            return [Struct(self, i) for i in range(*index.indices(len(self)))]
        if isinstance(index, str):
            if len(self) != 1:
                raise TypeError(f"a field is read from one element; this array has {len(self)}")
            return Struct(self, 0)[index]
        return Struct(self, element_index(index, len(self)))

    def __iter__(self) -> Iterator[Struct]:
        return (Struct(self, i) for i in range(len(self)))

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, StructArray):
            return NotImplemented
        return (
            self.dims == other.dims
            and self.fields == other.fields
            and all(mine == theirs for mine, theirs in zip(self, other))
        )

    __hash__ = None  # type: ignore[assignment]

    def __copy__(self) -> StructArray:
        return self

    def __deepcopy__(self, memo: dict[int, Any]) -> StructArray:
        return self

    def __reduce__(self) -> Any:
        if self.dims != (len(self), 1):
            raise TypeError(f"a struct array of {shape_text(self.dims)} elements cannot be pickled; only columns can")
        return StructArray, ([element.to_dict() for element in self], self.fields)

    def to_pandas(self) -> Any:
        """A pandas DataFrame with a column for each field and a row for each element."""
        return pandas().DataFrame([element.to_dict() for element in self], columns=list(self.fields))

    def __repr__(self) -> str:
        fields = f"{len(self.fields)} fields: {', '.join(self.fields)}" if self.fields else "no fields"
        return f"<{shape_text(self.dims)} {self._value.class_name} array, {fields}>"

    def __host_value__(self) -> _zmhost.Value:
        return self._value


class Matrix(_zmhost.NumberBuffer):
    """Numbers of one class in any number of dimensions.

    `Matrix([[1, 2], [3, 4]])` is 2x2 double, `Matrix([1, 2, 3], "int32")` a row, `Matrix(5, "uint32")` a
    single number of that class, and `Matrix.zeros(0, 3)` an empty array. Deeper lists give more
    dimensions. Elements are read as `m[row, column]`, from 0, and in the host's order (columns first)
    as `m[k]` and by iterating. `memoryview(m)` and `numpy.asarray(m)` give the elements in their shape without
    copying; the view is read-only.
    """

    __slots__ = ()

    def __init__(self, data: Any, class_name: str = "double") -> None:
        dims = _dims_of_nested(data)
        numbers = [_nested_element(data, place) for place in _places(dims)]
        row = (1, dims[0]) if len(dims) == 1 else dims
        super().__init__(_zmhost.make_numbers(list(row), numbers, class_name))

    @classmethod
    def zeros(cls, *dims: int, class_name: str = "double") -> Matrix:
        return cls._holding(_zmhost.make_numbers(list(dims), [0] * math.prod(dims), class_name))

    @classmethod
    def _holding(cls, value: _zmhost.Value) -> Matrix:
        matrix = cls.__new__(cls)
        _zmhost.NumberBuffer.__init__(matrix, value)
        return matrix

    @property
    def dims(self) -> tuple[int, ...]:
        return self._value.dims

    @property
    def class_name(self) -> str:
        return self._value.class_name

    def tolist(self) -> list[Any]:
        """Nested lists, a row each."""
        return _nest(self._value.numbers(), self.dims)

    def __len__(self) -> int:
        return len(self._value)

    def __getitem__(self, place: int | tuple[int, ...]) -> Any:
        if isinstance(place, int):
            return self._value.number(element_index(place, len(self)))
        if len(place) != len(self.dims):
            raise IndexError(f"{len(place)} indices for {len(self.dims)} dimensions")
        indices = [element_index(index, size) for index, size in zip(place, self.dims)]
        return self._value.number(_linear(indices, self.dims))

    def __iter__(self) -> Iterator[Any]:
        return iter(self._value.numbers())

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Matrix):
            return NotImplemented
        return (
            self.dims == other.dims
            and self.class_name == other.class_name
            and self._value.numbers() == other._value.numbers()
        )

    __hash__ = None  # type: ignore[assignment]

    def __copy__(self) -> Matrix:
        return self

    def __deepcopy__(self, memo: dict[int, Any]) -> Matrix:
        return self

    def __reduce__(self) -> Any:
        return _matrix_from, (self.dims, list(self), self.class_name)

    def __repr__(self) -> str:
        few = len(self) <= 20
        return f"<{shape_text(self.dims)} {self.class_name}{f' {self.tolist()}' if few else ''}>"

    def __host_value__(self) -> _zmhost.Value:
        return self._value


def _matrix_from(dims: Sequence[int], numbers: list[Any], class_name: str) -> Matrix:
    return Matrix._holding(_zmhost.make_numbers(list(dims), numbers, class_name))


class CellArray(list[Any]):
    """A cell array whose shape a plain list cannot say: the cells in the host's order, and `dims`."""

    def __init__(self, cells: Iterable[Any] = (), dims: Sequence[int] | None = None) -> None:
        super().__init__(cells)
        self.dims = (1, len(self)) if dims is None else tuple(dims)

    def __repr__(self) -> str:
        return f"CellArray({super().__repr__()}, dims={self.dims})"

    def __host_value__(self) -> _zmhost.Value:
        return _zmhost.make_cell_array(list(self.dims), list(self))


def wrap(value: _zmhost.Value) -> Any:
    """The Python object for a value that is neither text, a single number nor empty."""
    if value.kind == "struct":
        return StructArray._holding(value)
    if value.kind == "cell":
        return _wrap_cells(value)
    if value.kind == "object":
        return _classes.wrap_objects(value)
    if value.kind == "numeric":
        return Matrix._holding(value)
    return value


def _wrap_cells(value: _zmhost.Value) -> list[Any]:
    cells = value.cells()
    plain = value.dims == (1, len(cells)) and cells or value.dims == (0, 0)
    return cells if plain else CellArray(cells, value.dims)


def _dims_of_nested(data: Any) -> tuple[int, ...]:
    if not isinstance(data, (list, tuple)):
        return ()
    inner = {_dims_of_nested(row) for row in data}
    if len(inner) > 1:
        raise ValueError("the rows of a matrix must be of one length")
    return (len(data), *(inner.pop() if inner else ()))


def _places(dims: Sequence[int]) -> Iterator[tuple[int, ...]]:
    """Every place in the host's order, the first dimension fastest."""
    return (place[::-1] for place in itertools.product(*(range(size) for size in reversed(dims))))


def _nested_element(data: Any, place: Sequence[int]) -> Any:
    for index in place:
        data = data[index]
    return data


def _linear(indices: Sequence[int], dims: Sequence[int]) -> int:
    position = 0
    for index, size in zip(reversed(indices), reversed(dims)):
        position = position * size + index
    return position


def _nest(numbers: list[Any], dims: Sequence[int], prefix: tuple[int, ...] = ()) -> list[Any]:
    if len(prefix) == len(dims) - 1:
        return [numbers[_linear((*prefix, i), dims)] for i in range(dims[-1])]
    return [_nest(numbers, dims, (*prefix, i)) for i in range(dims[len(prefix)])]
