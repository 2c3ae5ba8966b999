"""Runs the commands that a document shows, as they stand.

usage: commands.py DOCUMENT [FROM TO]...

In Markdown a block is what is indented, in a manual page literal text. The line above says what it is,
as `<!-- MARK -->` or `.\\" MARK`:

    runs            commands; they are run in the current directory, with what PATH leads to
    file NAME       what is in a file; it is written before any command is run, and a directive file is
                    looked over with `zerva check`
    runs elsewhere  commands that take too long here, or are of the whole tree; that there is such a
                    script, word or preset is all that is looked at

Each TO replaces its FROM in commands, for paths that a test does not have. A block of commands or
directives of ours without a mark is an error, and so is a document without any command that is run.
"""

import pathlib
import re
import shlex
import subprocess
import sys

SOURCE = pathlib.Path(__file__).resolve().parents[2]
OURS = re.compile(r"^(?:\S+=\S+ )*(?:(?:zerva|g\+\+|pkg-config|cmake|ctest) |\./|scripts/)"
                  r"|^(?:service_\w+|proxy_info|invoker_info|start_process):|^#include ", re.M)


def blocks(path, text):
    """The blocks of a document: what each is marked as, and what it says."""
    if path.endswith(".md"):
        for match in re.finditer(r"(?:<!-- (.*) -->\n\n)?((?:^(?: {4}.*)?\n)*^ {4}.*\n)", text, re.M):
            yield match[1], re.sub(r"^ {4}", "", match[2], flags=re.M).lstrip("\n")
    else:
        for match in re.finditer(r'^(?:\.\\" (.*)\n)?\.Bd -literal.*\n((?:.*\n)*?)\.Ed', text, re.M):
            yield match[1], match[2].replace("\\e", "\\").replace("\\&", "")


def ends_well(what):
    """What is wrong with a script; nothing when it ends well."""
    # What is left in the background is waited for, and has to end well too.
    script = what + "\nfor job in $(jobs -p); do wait $job; done\n"
    result = subprocess.run(["bash", "-e", "-o", "pipefail", "-c", script], timeout=120,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    return f"ended with {result.returncode}:\n{what}\n{result.stdout}" if result.returncode else None


def presets(kind):
    """The presets of a kind, as CMake knows them."""
    listed = subprocess.run(["cmake", f"--list-presets={kind}"], cwd=SOURCE, check=True,
                            capture_output=True, text=True).stdout
    return re.findall(r'^ +"(\w+)"', listed, re.M)


def is_there(command):
    """Whether what a command names is in the tree."""
    program, *words = shlex.split(command, comments=True)
    if program in ("cmake", "ctest") and len(words) >= 2 and words[-2] == "--preset":
        kind = "test" if program == "ctest" else "build" if words[0] == "--build" else "configure"
        return words[-1] in presets(kind)
    script = SOURCE / program
    if "/" not in program or not script.is_file() or not script.stat().st_mode & 0o100:
        return False
    head = re.match(r"(?:#.*\n)*", script.read_text(encoding="utf-8"))[0]
    return all(re.search(rf"\s{re.escape(word)}\b", head) for word in words)


def complaint(path, values):
    """What is wrong with a document; nothing when all that it shows works."""
    found = list(blocks(path, pathlib.Path(path).read_text(encoding="utf-8")))
    for mark, block in found:
        if mark and mark.startswith("file "):
            pathlib.Path(mark[5:]).write_text(block, encoding="utf-8")
    run = 0
    for mark, block in found:
        wrong = None
        if mark == "runs":
            run += 1
            for old, new in zip(values[::2], values[1::2]):
                block = block.replace(old, new)
            wrong = ends_well(block)
        elif mark == "runs elsewhere":
            missing = [command for command in re.split(r"\n| && ", block.strip())
                       if not is_there(command)]
            wrong = f"there is no: {missing[0]}" if missing else None
        elif mark and mark.startswith("file "):
            if mark.endswith(".directives"):
                wrong = ends_well(f"zerva check {shlex.quote(mark[5:])}")
        elif OURS.search(block):
            wrong = f"shown and not run:\n{block}"
        if wrong:
            return wrong
    return None if run else "no command was run"


def main():
    wrong = complaint(sys.argv[1], sys.argv[2:])
    if wrong:
        print(f"{sys.argv[1]}: {wrong}")
    return 1 if wrong else 0


sys.exit(main())
