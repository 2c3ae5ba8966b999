"""Runs the commands that a document shows, as they stand.

usage: commands.py DOCUMENT [FROM TO]...

In Markdown it is the indented block after `<!-- runs -->`, in a manual page the literal text after
`.\\" runs`. Each TO replaces its FROM, for paths that a test does not have. All run in the current
directory, with what PATH leads to. A block of commands of ours that is not marked is an error, and so
is a document without any that is.
"""

import re
import subprocess
import sys

OURS = re.compile(r"^(?:\S+=\S+ )*(zerva|g\+\+|pkg-config)\b.* ", re.M)


def blocks(path, text):
    """The blocks of a document: whether each is marked, and what it says."""
    if path.endswith(".md"):
        for match in re.finditer(r"(<!-- runs -->\n\n)?((?:^ {4}.*\n)+)", text, re.M):
            yield bool(match[1]), re.sub(r"^ {4}", "", match[2], flags=re.M)
    else:
        for match in re.finditer(r'^(\.\\" runs\n)?\.Bd -literal.*\n((?:.*\n)*?)\.Ed', text, re.M):
            yield bool(match[1]), match[2].replace("\\e", "\\").replace("\\&", "")


def main():
    path, values = sys.argv[1], sys.argv[2:]
    with open(path, encoding="utf-8") as file:
        text = file.read()
    run = 0
    for marked, block in blocks(path, text):
        if not marked:
            if OURS.search(block):
                print(f"{path}: shown and not run:\n{block}")
                return 1
            continue
        for old, new in zip(values[::2], values[1::2]):
            block = block.replace(old, new)
        run += 1
        # What is left in the background is waited for, and has to end well too.
        script = block + "\nfor job in $(jobs -p); do wait $job; done\n"
        result = subprocess.run(["bash", "-e", "-o", "pipefail", "-c", script], timeout=120,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if result.returncode != 0:
            print(f"{path}: ended with {result.returncode}:\n{block}\n{result.stdout}")
            return 1
    if run == 0:
        print(f"{path}: no command was run")
    return 0 if run else 1


sys.exit(main())
