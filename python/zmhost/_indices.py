"""Python indices into host values."""


def element_index(index: int, count: int) -> int:
    """A Python index, negative ones included, as one from the start."""
    position = index + count if index < 0 else index
    if not 0 <= position < count:
        raise IndexError(f"index {index} is out of range for {count} elements")
    return position
