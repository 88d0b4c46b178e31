"""Generated from the classes that are registered with the host."""

from collections.abc import Iterator
from typing import Any, overload

from zmhost._classes import HostObject

from . import HMI as HMI

