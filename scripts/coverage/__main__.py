"""Tells how much of the product the tests of the preset coverage reach, and whether it is enough.

Lines count, and the branches of conditions: where a block goes on to more than one other. Left out
are edges that only an exception takes, those of the code that it leads to, and those that the
compiler has added to a line without a condition: whether what is deleted is null, whether a static
object was made, and what a closing brace destroys.
"""

import collections
import os
import re
import sys
from concurrent.futures import ProcessPoolExecutor
from pathlib import Path

sys.dont_write_bytecode = True

from flow import functions_of  # noqa: E402

BUILD = Path("build/coverage")
# The folders that are told of together, and what is wanted of their lines and branches.
GROUPS = (("src", ("src", "include"), 98, 95), ("rest", ("runtime", "registry", "host"), 90, 85))
FOLDERS = tuple(folder for _, folders, _, _ in GROUPS for folder in folders)
CLOSING = re.compile(r"^\s*[})\];]*\s*(//.*)?$")
WITHOUT_CONDITION = re.compile(
    r"^\s*(delete [\w.>()-]+;|static (?!.*(\?|&&|\|\|)).*|[})\];]*)\s*(//.*)?$")


class File:
    """What was counted in a source: lines by number, branches by place and order in it."""

    def __init__(self, name):
        self.name = name
        self.text = Path(name).read_text().splitlines()
        self.lines = collections.Counter()
        self.branches = collections.Counter()

    def source(self, number):
        """@returns a line; an empty one where the file has become shorter since it was built."""
        return self.text[number - 1] if number <= len(self.text) else ""

    def add(self, function):
        exceptional = function.exceptional()
        order = collections.Counter()
        for block, lines in sorted(function.lines.items()):
            own = [number for file, number in lines if os.path.normpath(file) == self.name]
            for number in own:
                # A brace that only an exception comes by is no line of anything.
                if block not in exceptional or not CLOSING.match(self.source(number)):
                    self.lines[number] += function.counts[block] or 0
            edges = [edge for edge in function.out[block] if not edge.fake and not edge.thrown]
            if not own or len(edges) < 2 or block in exceptional:
                continue
            if WITHOUT_CONDITION.match(self.source(own[-1])):
                continue
            for edge in edges:
                # The same source may be compiled into more than one object, or for several types.
                self.branches[own[-1], function.line, order[own[-1]]] += edge.count or 0
                order[own[-1]] += 1

    def unreached(self):
        """@returns a line of text for each line and for each branch that was not reached."""
        missing = [(number, "line") for number, count in self.lines.items() if count <= 0]
        missing += [(key[0], f"branch {key[2]}") for key, count in self.branches.items()
                    if count <= 0 and self.lines[key[0]] > 0]
        return [f"{self.name}:{number}: {what}: {self.source(number).strip()}"
                for number, what in sorted(missing)]


def share(counts):
    """@returns how many of the counts are not zero, in percent; None when there are none."""
    reached = sum(1 for count in counts if count > 0)
    return 100.0 * reached / len(counts) if counts else None


def shown(percent):
    """@returns a percentage with one decimal, never rounded up."""
    return "    -  " if percent is None else f"{int(percent * 10) / 10:5.1f} %"


def graphs():
    """@returns the graphs of the product, and those of tests with functions of public headers."""
    paths = sorted(BUILD.rglob("*.gcno"))
    return [path for path in paths if path.relative_to(BUILD).parts[0] in FOLDERS
            or b"./include/" in path.read_bytes()]


def files():
    """@returns the product's files, in order, with all that was counted in them."""
    found = {}
    with ProcessPoolExecutor() as pool:
        for functions in pool.map(product_functions, graphs()):
            for function in functions:
                name = os.path.normpath(function.file)
                if name not in found:
                    found[name] = File(name)
                found[name].add(function)
    return [found[name] for name in sorted(found)]


def product_functions(path):
    """@returns the functions of the product in a .gcno; the compiler's own are left out."""
    return [function for function in functions_of(path, FOLDERS) if not function.artificial]


def main():
    figures, enough, missing = [], True, []
    counted = files()
    for name, folders, lines_wanted, branches_wanted in GROUPS:
        files_here = [file for file in counted if file.name.split("/")[0] in folders]
        print(f"== coverage of {' '.join(folders)}")
        for file in files_here:
            print(f"{file.name:60}  lines {shown(share(list(file.lines.values())))}"
                  f"  branches {shown(share(list(file.branches.values())))}")
            missing += file.unreached()
        lines = share([count for file in files_here for count in file.lines.values()]) or 0.0
        branches = share([count for file in files_here for count in file.branches.values()]) or 0.0
        enough = enough and lines >= lines_wanted and branches >= branches_wanted
        figures.append(f"{name} {shown(lines).replace(' ', '')} lines "
                       f"{shown(branches).replace(' ', '')} branches")
    (BUILD / "unreached.txt").write_text("\n".join(missing) + "\n")
    print(f"coverage: {', '.join(figures)}")
    return 0 if enough else 1


sys.exit(main())
