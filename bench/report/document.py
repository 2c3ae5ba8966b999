"""Fills what was measured into a document, between its marks, so that it cannot differ."""

import re

import tables

BEGIN = "<!-- measured: {} -->"
END = "<!-- end -->"


class MarksDiffer(Exception):
    """The document and the results do not have the same tables."""


def machine_lines(results):
    """What a reader has to know of the run."""
    machine = results["machine"]
    return [f"Measured on {results['date']} at commit {results['commit']}: {machine['processor']}, "
            f"{machine['processors']} processors, Linux {machine['kernel']}, {machine['libc']}, "
            f"g++ {', '.join(results['compiler'])}."]


def contents(results, joined):
    """What stands between which marks."""
    by_name = {"machine": machine_lines(results), "aims": tables.aims_as_markdown(results["runs"])}
    for table in joined:
        chart = f"![{table['title']}, {table['unit']}](charts/{table['id']}.svg)"
        by_name[table["id"]] = [*tables.as_markdown(table), "", chart]
    return by_name


def marks(text):
    """The names of the places that a document has for what was measured."""
    return re.findall(re.escape(BEGIN).replace(r"\{\}", "(.*?)"), text)


def compare(path, joined):
    """Complains when a table has no place, or none is measured for a place that is not a peer's."""
    with open(path, encoding="utf-8") as file:
        places = set(marks(file.read()))
    measured = {table["id"] for table in joined} | {"machine", "aims"}
    different = {name for name in places ^ measured if not name.startswith("peers-")}
    if different:
        raise MarksDiffer(f"{path} and the results differ in {', '.join(sorted(different))}")


def fill(path, results, joined):
    """Rewrites the document at that path."""
    with open(path, encoding="utf-8") as file:
        text = file.read()
    by_name = contents(results, joined)
    if sorted(marks(text)) != sorted(by_name):
        different = ", ".join(sorted(set(marks(text)) ^ set(by_name)))
        raise MarksDiffer(f"{path} and the results differ in {different}")
    for name, lines in by_name.items():
        begin = BEGIN.format(name)
        head, rest = text.split(begin, 1)
        tail = rest.split(END, 1)[1]
        text = head + begin + "\n\n" + "\n".join(lines) + "\n\n" + END + tail
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)
