"""How often each edge of each function was taken, from what compiler and program have written.

The compiler writes the graph of blocks of each function (.gcno), the program counts the edges that
are not part of a spanning tree (.gcda); the others follow, since what enters a block leaves it.
gcov does the same, but does not tell for a branch whether an exception led to it; the graph does.
"""

import os
import re
import subprocess

# Flags of an edge: its count follows from others; it is left by what never returns; it goes on.
TREE, FAKE, FALL_THROUGH = 1, 2, 4

FUNCTION = re.compile(
    r"FUNCTION ident=(\d+), lineno_checksum=(\w+), cfg_checksum=\w+"
    r"(?:, `([^']*)' (.*?):(\d+):\d+-\d+:\d+(, artificial)?)?")


class Edge:
    def __init__(self, source, target, flags):
        self.source, self.target = source, target
        self.on_tree, self.fake = bool(flags & TREE), bool(flags & FAKE)
        self.goes_on = bool(flags & FALL_THROUGH)
        self.thrown = False
        self.count = None


class Function:
    """The graph of one function. Block 0 is where it is entered, block 1 where it is left."""

    def __init__(self, name, file, line, artificial):
        self.name, self.file, self.line, self.artificial = name, file, line, artificial
        self.size = 0
        self.edges = []
        self.lines = {}

    def close(self):
        self.out = [[] for _ in range(self.size)]
        self.into = [[] for _ in range(self.size)]
        for edge in self.edges:
            self.out[edge.source].append(edge)
            self.into[edge.target].append(edge)
        for block in range(1, self.size):
            # What else a call leads to than on and to the end of the program, is a handler.
            if any(edge.fake for edge in self.out[block]):
                for edge in self.out[block]:
                    edge.thrown = not edge.fake and not edge.goes_on

    def exceptional(self):
        """The blocks that nothing but an exception leads to."""
        ordinary, ahead = {0}, [0]
        while ahead:
            for edge in self.out[ahead.pop()]:
                if not edge.fake and not edge.thrown and edge.target not in ordinary:
                    ordinary.add(edge.target)
                    ahead.append(edge.target)
        return set(range(self.size)) - ordinary

    def count(self, counters):
        """Sets the counts of all edges and self.counts, those of the blocks."""
        counters = iter(counters)
        for edge in self.edges:
            edge.count = None if edge.on_tree else next(counters, 0)
        self.counts = [None] * self.size
        changed = True
        while changed:
            changed = False
            for block in range(self.size):
                changed |= self._settle(block, self.out[block], block != 1)
                changed |= self._settle(block, self.into[block], block != 0)

    def _settle(self, block, edges, whole):
        """Takes the block's count from all its edges, or an edge's from the others."""
        if not whole:
            return False
        unknown = [edge for edge in edges if edge.count is None]
        known = sum(edge.count for edge in edges if edge.count is not None)
        if self.counts[block] is None and not unknown:
            self.counts[block] = known
            return True
        if self.counts[block] is not None and len(unknown) == 1:
            unknown[0].count = self.counts[block] - known
            return True
        return False


def dumped(path):
    """What gcov-dump says of a file, without the file's name before each line."""
    text = subprocess.run(["gcov-dump", "-l", path.name], cwd=path.parent, capture_output=True,
                          text=True, check=True).stdout
    return [line[len(path.name) + 1:].strip() for line in text.splitlines()]


def read_graphs(path, folders):
    """@returns the functions of a .gcno with sources in some folders, by what identifies them."""
    functions, function = {}, None
    for line in dumped(path):
        found = FUNCTION.search(line)
        if found:
            ident, checksum, name, file, at, artificial = found.groups()
            function = None
            if os.path.normpath(file).split("/")[0] in folders:
                function = Function(name, file, int(at), bool(artificial))
                functions[ident, checksum] = function
        elif function:
            read_part(function, line)
    for function in functions.values():
        function.close()
    return functions


def read_part(function, line):
    """Takes a line about a function's size, its edges or its sources."""
    blocks = re.search(r"BLOCKS (\d+) blocks", line)
    inside = re.match(r"block (\d+): ?(.*)$", line)
    if blocks:
        function.size = int(blocks.group(1))
    elif inside and "`" in inside.group(2):
        function.lines.setdefault(int(inside.group(1)), []).extend(lines_of(inside.group(2)))
    elif inside:
        for target, flags in re.findall(r"(\d+):([0-9a-f]{4})", inside.group(2)):
            function.edges.append(Edge(int(inside.group(1)), int(target), int(flags, 16)))


def lines_of(text):
    """@returns the lines of "`FILE':1, 2`OTHER':3" as pairs of file and number."""
    lines, file = [], None
    for name, number in re.findall(r"`([^']*)'|(\d+)", text):
        if name:
            file = name
        else:
            lines.append((file, int(number)))
    return lines


def read_counters(path):
    """@returns the counters of a .gcda by what identifies functions; zeroes may be missing."""
    counters, current = {}, None
    for line in dumped(path) if path.exists() else []:
        found = FUNCTION.search(line)
        if found:
            current = counters.setdefault(found.groups()[:2], [])
        elif current is not None and re.match(r"\d+: \d", line):
            current.extend(int(number) for number in line.split(":")[1].split())
    return counters


def functions_of(path, folders):
    """@returns the functions from some folders that a .gcno describes, with counts."""
    functions = read_graphs(path, folders)
    counters = read_counters(path.with_suffix(".gcda"))
    for key, function in functions.items():
        function.count(counters.get(key, []))
    return functions.values()
