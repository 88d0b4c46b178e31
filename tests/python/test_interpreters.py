"""Python's subinterpreters: the host belongs to the main one."""

import pytest

FIRST = """
import sys
interpreters = __import__({module!r})
other = interpreters.create()
interpreters.run_string(other, '''
try:
    import zmhost
except ImportError as error:
    print(error)
''')
"""

SECOND = """
import sys
import zmhost
model = zmhost.open_model({diagram!r})
interpreters = __import__({module!r})
other = interpreters.create()
interpreters.run_string(other, '''
try:
    import zmhost
except ImportError as error:
    print(error, flush=True)
''')
interpreters.destroy(other)
print(model.is_open)
model.close()
"""

REFUSAL = "zmhost works in the main interpreter only, not in a subinterpreter\n"
MODULE = "_xxsubinterpreters"


@pytest.fixture(autouse=True)
def _subinterpreters():
    pytest.importorskip(MODULE, reason="this Python's subinterpreters have another module")


def test_a_subinterpreter_cannot_import_it_first(run):
    result = run("-c", FIRST.format(module=MODULE))
    assert (result.stdout, result.stderr, result.returncode) == (REFUSAL, "", 0)


def test_a_subinterpreter_that_ends_leaves_the_models_of_the_main_one_open(run):
    from conftest import GREENHOUSE

    result = run("-c", SECOND.format(module=MODULE, diagram=str(GREENHOUSE)))
    assert (result.stdout, result.stderr, result.returncode) == (REFUSAL + "True\n", "", 0)
