"""Pictures are well-formed, as a strict parser sees it: those that are in the tree, and those that are
drawn of traces, of one with names that XML has special signs for, too.

usage: well_formed.py ZERVA SOURCE
"""

import json
import pathlib
import subprocess
import sys
import tempfile
import xml.parsers.expat


def complaint(document):
    """What is wrong with a document; nothing when it is well-formed."""
    try:
        xml.parsers.expat.ParserCreate().Parse(document, True)
    except xml.parsers.expat.ExpatError as error:
        return str(error)
    return None


def drawn(zerva, *words):
    """The picture that a command prints."""
    return subprocess.run([zerva, *words], check=True, capture_output=True, timeout=60).stdout


def odd_trace(trace):
    """The trace with names that nobody gives, but that a file could have."""
    lines = []
    for line in trace.read_text(encoding="utf-8").splitlines():
        values = json.loads(line)
        for name in ("service", "interface", "library", "error", "by", "from", "interfaces"):
            if values.get(name):
                values[name] += "<&\"'>]]>\u0001\ufffe"
        lines.append(json.dumps(values))
    return "\n".join(lines) + "\n"


def main():
    zerva, source = sys.argv[1], pathlib.Path(sys.argv[2])
    traces = source / "tests/host/trace/files"
    pictures = {str(path): path.read_bytes() for folder in ("docs", "tests/host/trace/files")
                for path in sorted((source / folder).rglob("*.svg"))}
    if len(pictures) < 5:
        print("the pictures are not where they were")
        return 1
    with tempfile.TemporaryDirectory() as folder:
        odd = pathlib.Path(folder) / "odd.jsonl"
        odd.write_text(odd_trace(traces / "weather.jsonl"), encoding="utf-8")
        for trace in (traces / "weather.jsonl", traces / "harbour.jsonl", odd):
            for verb in ("timeline", "graph"):
                pictures[f"{verb} of {trace.name}"] = drawn(zerva, verb, str(trace))
    wrong = [f"{name}: {complaint(text)}" for name, text in pictures.items() if complaint(text)]
    # That it can fail: with what other parsers let pass.
    for text in (b"<svg>a & b</svg>", b"<svg a='1' a='2'/>", b"<svg/><svg/>", b"<svg>\x01</svg>", b""):
        if not complaint(text):
            wrong.append(f"{text!r} is taken for well-formed")
    print("\n".join(wrong))
    return 1 if wrong else 0


sys.exit(main())
