"""The manual page tells of each command what its help tells: its options in the part about it, and its
exit codes; and those of `run` in the same words, as README.md does.

usage: manual.py ZERVA PAGE README
"""

import re
import subprocess
import sys

# The parts of the page that are not named as the command is.
PARTS = {"timeline": "TRACES", "graph": "TRACES", "diff": "TRACES", "advise": "TRACES"}


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def one_line(text):
    return " ".join(text.split())


def parts(page):
    """What the page says, by its headings."""
    text = output("groff", "-mandoc", "-Tascii", "-P-cbou", "-rLL=1000n", page)
    found = re.split(r"^([A-Z][A-Z ]+)$", text, flags=re.M)
    return {name: body for name, body in zip(found[1::2], found[2::2])}


def told_codes(text):
    """The exit codes of each command that the page's part about them tells of, but for `run`."""
    codes = {}
    for heads, body in re.findall(r"\bOf ([^:]+?): (.*?)(?=\bOf [^:]+?: |$)", text):
        commands = re.findall(r"[a-z]+", heads.replace(" and ", " ").replace("--live besides", ""))
        if heads == "all three":
            commands = ["status", "watch", "call"]
        for code, only in re.findall(r"\b(\d+)\b(?: for (\w+) when)?", body):
            for command in commands:
                if not only or only == command:
                    codes.setdefault(command, set()).add(int(code))
    return codes


def table(text, row):
    return {int(code): one_line(what).rstrip(".") for code, what in re.findall(row, text, re.M)}


def lowered(codes):
    return {code: what[0].lower() + what[1:] for code, what in codes.items()}


def complaints(zerva, page, readme):
    """What is not told, or told otherwise."""
    told = parts(page)
    codes = told_codes(one_line(told["EXIT STATUS"]))
    commands = re.findall(r"^  ([a-z]+) ", output(zerva, "--help").split("Subcommands:")[1], re.M)
    if len(commands) < 12:
        yield f"the help tells of {len(commands)} commands"
    for command in commands:
        words = [command, "service"] if command == "new" else [command]
        text = output(zerva, *words, "--help")
        if not re.search(rf"zerva {command}\b", told["SYNOPSIS"]):
            yield f"{command} is not in the synopsis"
        part = told.get(PARTS.get(command, command.upper()), "")
        options = set(re.findall(r"^  +(?:-\w,)?(--[a-z-]+)", text, re.M)) - {"--help"}
        if "Options:" not in text:
            yield f"the help of {command} has no options"
        for option in sorted(options):
            if not re.search(rf"(^|[^a-z-]){option}([^a-z-]|$)", part):
                yield f"{option} is not in the part about {command}"
        expected = table(text, r"^ {1,2}(\d+)  (.*\n(?:     .*\n)*)")
        if len(expected) < 2:
            yield f"the help of {command} has no exit codes"
        if command != "run":
            if codes.get(command, set()) != set(expected):
                yield (f"{command} ends with {sorted(expected)}, and the page says "
                       f"{sorted(codes.get(command, []))}")
            continue
        page_says = lowered(table(told["EXIT STATUS"], r"^     (\d+) +(.*\n(?: {8,}.*\n)*)"))
        with open(readme, encoding="utf-8") as file:
            readme_says = table(file.read(), r"^\| (\d+) \| (.*) \|$")
        for name, says in (("the page", page_says), ("README.md", readme_says)):
            for code in sorted(set(expected) | set(says)):
                if expected.get(code) != says.get(code):
                    yield f"{name} says of {code}: '{says.get(code)}', and the help '{expected.get(code)}'"


def main():
    found = list(complaints(*sys.argv[1:]))
    print("\n".join(found))
    return 1 if found else 0


sys.exit(main())
