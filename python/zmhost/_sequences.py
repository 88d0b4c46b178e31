"""The methods that Python expects of a sequence, for host classes that have "Count" and "get" (1-based)."""

from __future__ import annotations

from collections.abc import Iterator
from typing import Any

from zmhost import _zmhost
from zmhost._indices import element_index

REQUIRED_PROPERTY = "Count"
REQUIRED_METHOD = "get"


def _length(self: Any) -> int:
    return int(self.Count)


def _item(self: Any, index: int | slice) -> Any:
    """The element at a Python index, from 0; negative indices count from the end. A slice gives a list."""
    if isinstance(index, slice):
        return [self.get(i + 1) for i in range(*index.indices(self.Count))]
    try:
        position = index.__index__()
    except AttributeError:
        raise TypeError(f"an index is an int or a slice, not {type(index).__name__}") from None
    return self.get(element_index(position, self.Count) + 1)


def _iterate(self: Any) -> Iterator[Any]:
    """Every element in order. Elements that are added meanwhile are met, too."""
    position = 0
    while position < self.Count:
        position += 1
        yield self.get(position)


def _contains(self: Any, item: object) -> bool:
    """Whether the collection has an element with that UUID (a str or an object with a UUID), or, for signals,
    one that observes that output port."""
    if isinstance(item, _zmhost.Port):
        return any(
            (element.ZID_, element.OutputPortIndex_) == (item.block.zid, item.index)
            for element in self
            if item.kind == "output" and hasattr(element, "OutputPortIndex_")
        )
    uuid = item if isinstance(item, str) else getattr(item, "UUID", None)
    return bool(uuid) and any(element.UUID == uuid for element in self)


MEMBERS = {
    "__len__": _length,
    "__getitem__": _item,
    "__iter__": _iterate,
    "__contains__": _contains,
}
