"""Checks the layering of the sources: python3 check_includes.py ROOT

A room is a folder. A room includes only rooms on lower floors; the library and the reference host meet only in
host/. A unit is a header with its source; circles of units are short and stay inside a room.
"""
import collections
import pathlib
import re
import sys

# The rooms of each tower with their floors. A room that is not listed is an error.
LIBRARY = {"hmi_foundation": 1, "hmi": 2, "streamout": 2, "hmi_foundation/bindings": 3, "hmi_foundation/help": 4}
REFERENCE_HOST = {
    "reference_host": 0,
    "reference_host/support": 1,
    "reference_host/values": 2,
    "reference_host/calls": 3,
    "reference_host/boundary": 4,
    "reference_host/classes": 5,
    "reference_host/model": 6,
    "reference_host/observers": 7,
    "reference_host/drawing": 8,
    "reference_host/ssp": 8,
}
# These use both towers.
ABOVE = {"simulation": 1, "live": 2, "recorder": 2, "editor": 2, "python": 3}
LONGEST_CIRCLE = 4
FOLDERS = ["host", "hmi", "hmi_foundation", "streamout", "reference_host", *ABOVE]


def room(file):
    return str(pathlib.PurePosixPath(file).parent)


def unit(file):
    return str(pathlib.PurePosixPath(file).with_suffix(""))


def may_include(includer, included):
    if includer == included or included == "host":
        return True
    for tower in (LIBRARY, REFERENCE_HOST, ABOVE):
        if includer in tower and included in tower:
            return tower[included] < tower[includer]
    return includer in ABOVE and included in LIBRARY | REFERENCE_HOST


def read_includes(root):
    """Each source file with the files of the project that it includes."""
    files = [str(path.relative_to(root)) for folder in FOLDERS
             for path in sorted((root / folder).rglob("*.[hc]pp"))]
    known = set(files)
    includes = {}
    for file in files:
        text = (root / file).read_text(errors="ignore")
        named = re.findall(r'^\s*#\s*include\s+"([^"]+)"', text, re.M)
        includes[file] = [name for name in named if name in known]
    return includes


def circles(graph):
    """The strongly connected components with more than one unit, by Tarjan's algorithm."""
    index, low, stack, found = {}, {}, [], []

    def visit(node):
        index[node] = low[node] = len(index)
        stack.append(node)
        for after in sorted(graph[node]):
            if after not in index:
                visit(after)
            if after in stack:
                low[node] = min(low[node], low[after])
        if low[node] == index[node]:
            component = [stack.pop()]
            while component[-1] != node:
                component.append(stack.pop())
            if len(component) > 1:
                found.append(sorted(component))

    sys.setrecursionlimit(10000)
    for node in sorted(graph):
        if node not in index:
            visit(node)
    return found


def problems(includes):
    rooms = {"host"} | LIBRARY.keys() | REFERENCE_HOST.keys() | ABOVE.keys()
    graph = {unit(file): set() for file in includes}
    for file, named in includes.items():
        if room(file) not in rooms:
            yield f"{file}: the room {room(file)} has no floor in check_includes.py"
        for name in named:
            if not may_include(room(file), room(name)):
                yield f"{file}: includes {name}; {room(file)} may not include {room(name)}"
            if unit(name) != unit(file):
                graph[unit(file)].add(unit(name))
    for circle in circles(graph):
        if len(circle) > LONGEST_CIRCLE or len({room(each) for each in circle}) > 1:
            yield "include circle: " + ", ".join(circle)
    names = collections.Counter(pathlib.PurePosixPath(file).name for file in includes)
    for name, count in sorted(names.items()):
        # Each shared object has an Export.hpp.
        if count > 1 and name != "Export.hpp":
            yield f"{name}: {count} files have this name: " + ", ".join(f for f in includes if f.endswith("/" + name))


def main():
    found = list(problems(read_includes(pathlib.Path(sys.argv[1]))))
    print("\n".join(found) or "All includes follow the floors.")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
