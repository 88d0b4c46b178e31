"""Python types for whatever classes are registered with the host, and the namespaces that hold them."""

from __future__ import annotations

import functools
import inspect
import json
from collections.abc import Callable, Iterable, Iterator, Sequence
from pathlib import Path
from reprlib import repr as short_repr
from typing import Any, overload

from zmhost import _library, _sequences, _zmhost
from zmhost._indices import element_index


class _TypeName(str):
    """A host type in a Python signature; shown without quotes."""

    def __repr__(self) -> str:
        return str(self)


class _LeftOut:
    """The default of an argument that a caller may leave out."""

    def __repr__(self) -> str:
        return "..."


class HostObject:
    """An instance of a host class. Two of them are equal when they are the same instance."""

    __slots__ = ("_value", "__weakref__")
    _host_class: str
    _shown_properties: tuple[str, ...] = ()

    def __init__(self, *arguments: Any, **properties: Any) -> None:
        if not hasattr(type(self), "_host_class"):
            raise TypeError("objects are made by their own host class")
        self._value = _zmhost.construct(self._host_class, arguments)
        for name, value in properties.items():
            setattr(self, name, value)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, HostObject):
            return NotImplemented
        return self._value.instance_key == other._value.instance_key

    def __hash__(self) -> int:
        return hash(self._value.instance_key)

    def __repr__(self) -> str:
        shown = [f"{name}={short_repr(value)}" for name, value in _telling_properties(self)]
        return f"<{' '.join([self._host_class, *shown])}>"

    def __host_value__(self) -> _zmhost.Value:
        return self._value

    def __copy__(self) -> HostObject:
        raise TypeError(f"{_article(self._host_class)} belongs to the host and cannot be copied")

    def __deepcopy__(self, memo: dict[int, Any]) -> HostObject:
        return self.__copy__()

    def __reduce_ex__(self, protocol: Any) -> Any:
        raise TypeError(
            f"{_article(self._host_class)} belongs to the host and cannot be pickled; keep its properties"
            " (a collection's \"Persistence\")"
        )


def _article(class_name: str) -> str:
    return f"an object of class {class_name}"


class ObjectArray(Sequence[HostObject]):
    """An array of instances of one host class."""

    __slots__ = ("_value",)

    def __init__(self, host_class: type[HostObject], objects: Iterable[HostObject] = ()) -> None:
        self._value = _zmhost.make_object_array(host_class._host_class, list(objects))

    @classmethod
    def _holding(cls, value: _zmhost.Value) -> ObjectArray:
        array = cls.__new__(cls)
        array._value = value
        return array

    @property
    def class_name(self) -> str:
        return self._value.class_name

    @property
    def dims(self) -> tuple[int, ...]:
        return self._value.dims

    def __len__(self) -> int:
        return len(self._value)

    @overload
    def __getitem__(self, index: int) -> HostObject: ...

    @overload
    def __getitem__(self, index: slice) -> list[HostObject]: ...

    def __getitem__(self, index: int | slice) -> HostObject | list[HostObject]:
        if isinstance(index, slice):
            return [self[i] for i in range(*index.indices(len(self)))]
        return wrap_object(self._value.object(element_index(index, len(self))))

    def __repr__(self) -> str:
        return f"<{'x'.join(map(str, self.dims))} array of {self.class_name}>"

    def __host_value__(self) -> _zmhost.Value:
        return self._value


class Namespace:
    """A namespace of the host. Its members are looked up on each access."""

    __slots__ = ("_name",)

    def __init__(self, name: str) -> None:
        self._name = name

    def __getattr__(self, name: str) -> Any:
        if name.startswith("_"):
            raise AttributeError(name)
        full_name = f"{self._name}.{name}"
        if full_name in _types or _zmhost.has_class(full_name):
            return class_named(full_name)
        if _zmhost.has_namespace(full_name):
            return namespace_named(full_name)
        raise AttributeError(f"{self!r} has no {name!r}", name=name, obj=self)

    def __dir__(self) -> list[str]:
        return [*_zmhost.inner_namespaces(self._name), *_zmhost.classes(self._name)]

    def __repr__(self) -> str:
        return f"<namespace {self._name}: {', '.join(dir(self)) or 'empty'}>"


_namespaces: dict[str, Namespace] = {}
_types: dict[str, type[HostObject]] = {}


def top_level_names() -> list[str]:
    _library.load()
    return _zmhost.namespaces()


def namespace_named(full_name: str) -> Namespace:
    return _namespaces.setdefault(full_name, Namespace(full_name))


def class_named(full_name: str) -> type[HostObject]:
    """The Python type of a registered class; the same one each time."""
    if full_name not in _types:
        _types[full_name] = _make_type(_zmhost.describe_class(full_name))
    return _types[full_name]


def wrap_object(value: _zmhost.Value) -> HostObject:
    host_class = class_named(value.class_name)
    instance = host_class.__new__(host_class)
    instance._value = value
    return instance


def wrap_objects(value: _zmhost.Value) -> HostObject | ObjectArray:
    return wrap_object(value) if value.dims == (1, 1) else ObjectArray._holding(value)


def _telling_properties(instance: HostObject) -> Iterator[tuple[str, Any]]:
    """The first few texts, numbers and flags that say something."""
    room = 6
    for name in instance._shown_properties:
        value = getattr(instance, name)
        if value and room > 0:
            room -= 1
            yield name, value


@functools.cache
def _help() -> dict[str, Any]:
    """What the build knows of the library's classes: names of arguments, and a sentence for each member."""
    described: dict[str, Any] = json.loads(Path(__file__).with_name("_help.json").read_text(encoding="utf-8"))
    return described


def _method_help(owner: str, name: str) -> tuple[list[str], str]:
    """The names of all inputs of a method, the object among them, and its sentence; of other classes none."""
    entry = _help().get(owner, {}).get("methods", {}).get(name)
    return ([each["name"] for each in entry["inputs"]], entry["help"]) if entry else ([], "")


def _signature(
    method: _zmhost.MethodDescription, has_self: bool, names: Sequence[str] = ()
) -> inspect.Signature:
    parameters = [inspect.Parameter("self", inspect.Parameter.POSITIONAL_ONLY)] if has_self else []
    required = len(method.inputs) - method.optional_inputs
    # Of an instance method the names include the object, the inputs do not.
    shown = list(names)[len(names) - len(method.inputs) :] if len(names) >= len(method.inputs) else []
    for i, type_name in enumerate(method.inputs):
        parameters.append(
            inspect.Parameter(
                shown[i] if shown else f"arg{i + 1}",
                inspect.Parameter.POSITIONAL_ONLY,
                default=inspect.Parameter.empty if i < required else _LeftOut(),
                annotation=_TypeName(type_name),
            )
        )
    if len(method.outputs) == 1:
        result: Any = _TypeName(method.outputs[0])
    else:
        result = _TypeName(f"({', '.join(method.outputs)})") if method.outputs else None
    return inspect.Signature(parameters, return_annotation=result)


def _make_method(owner: str, method: _zmhost.MethodDescription) -> Any:
    name = method.name
    is_static = method.kind == "static"

    def call_on_object(self: HostObject, /, *arguments: Any) -> Any:
        return _zmhost.call_method(self._value, name, arguments)

    def call_on_class(*arguments: Any) -> Any:
        return _zmhost.call_static(owner, name, arguments)

    function: Any = call_on_class if is_static else call_on_object
    namespace, _, class_name = owner.rpartition(".")
    function.__name__ = name
    function.__qualname__ = f"{class_name}.{name}"
    function.__module__ = namespace
    names, sentence = _method_help(owner, name)
    function.__signature__ = _signature(method, has_self=not is_static, names=names)
    parts = [method.signature, sentence, f"A{' static' if is_static else ''} method of {owner}."]
    function.__doc__ = "\n\n".join(part for part in parts if part)
    return staticmethod(function) if is_static else function


def _make_property(owner: str, description: _zmhost.PropertyDescription) -> property:
    name = description.name

    def read(self: HostObject) -> Any:
        return _zmhost.get_property(self._value, name)

    def assign(self: HostObject, value: Any) -> None:
        _zmhost.set_property(self._value, name, value)

    sentence = _help().get(owner, {}).get("properties", {}).get(name)
    doc = f"{description.type}{', read only' if description.read_only else ''}"
    if sentence:
        doc += f"\n\n{sentence}"
    return property(read, None if description.read_only else assign, doc=doc)


def _make_constructor(description: _zmhost.ClassDescription) -> Callable[..., None]:
    def construct(self: HostObject, *arguments: Any, **properties: Any) -> None:
        HostObject.__init__(self, *arguments, **properties)

    signature = inspect.Signature([inspect.Parameter("self", inspect.Parameter.POSITIONAL_ONLY)])
    if description.constructor is not None:
        names, _ = _method_help(description.full_name, description.simple_name)
        signature = _signature(description.constructor, has_self=True, names=names)
    keywords = inspect.Parameter("properties", inspect.Parameter.VAR_KEYWORD)
    function: Any = construct
    function.__name__ = "__init__"
    function.__qualname__ = f"{description.simple_name}.__init__"
    function.__module__ = description.full_name.rpartition(".")[0]
    function.__signature__ = signature.replace(
        parameters=[*signature.parameters.values(), keywords], return_annotation=inspect.Signature.empty
    )
    function.__doc__ = "Makes an object; properties given by name are assigned to it."
    return construct


def _class_doc(description: _zmhost.ClassDescription) -> str:
    made_by = description.constructor.signature if description.constructor else f"{description.simple_name}()"
    _, sentence = _method_help(description.full_name, description.simple_name)
    parts = [f"The host class {description.full_name}.", made_by, sentence]
    return "\n\n".join(part for part in parts if part)


def _make_type(description: _zmhost.ClassDescription) -> type[HostObject]:
    plain = [p.name for p in description.properties if p.type != "any" and "." not in p.type]
    members: dict[str, Any] = {
        "__slots__": (),
        "__module__": description.full_name.rpartition(".")[0],
        "__doc__": _class_doc(description),
        "_host_class": description.full_name,
        "__init__": _make_constructor(description),
        "_shown_properties": tuple(plain),
    }
    for method in description.methods:
        members[method.name] = _make_method(description.full_name, method)
    for prop in description.properties:
        members[prop.name] = _make_property(description.full_name, prop)
    if _sequences.REQUIRED_PROPERTY in members and _sequences.REQUIRED_METHOD in members:
        members.update(_sequences.MEMBERS)
    return type(description.simple_name, (HostObject,), members)
