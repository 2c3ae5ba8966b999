"""Puts together what the benchmarks wrote down: one file, tables, charts and the document.

usage: python3 -B bench/report --results FILE [--charts DIRECTORY] [--document FILE | --compare FILE] JSON...

--document: fills the tables of a document in. --compare: only looks whether it has a place for each.
"""

import argparse
import datetime
import json
import os
import platform
import subprocess
import sys

import chart
import document
import tables


def machine():
    """What the figures were measured on."""
    model = platform.machine()
    with open("/proc/cpuinfo", encoding="utf-8") as info:
        for line in info:
            if line.startswith("model name"):
                model = line.split(":", 1)[1].strip()
                break
    libc, version = platform.libc_ver()
    return {
        "processor": model,
        "processors": os.cpu_count(),
        "kernel": platform.release(),
        "libc": f"{libc} {version}",
    }


def commit():
    """Which sources were measured; a plus sign when they differ from what is committed."""
    try:
        name = subprocess.run(["git", "rev-parse", "--short=12", "HEAD"], check=True,
                              capture_output=True, text=True).stdout.strip()
        changed = subprocess.run(["git", "status", "--porcelain", "--untracked-files=no"],
                                 check=True, capture_output=True, text=True).stdout.strip()
        return name + ("+" if changed else "")
    except (OSError, subprocess.CalledProcessError):
        return "unknown"


def read(paths):
    """Everything that was measured, what others do behind the rest."""
    runs = []
    for path in paths:
        with open(path, encoding="utf-8") as file:
            run = json.load(file)
        if "runs" not in run:
            runs.append(run)
    return {
        "date": datetime.date.today().isoformat(),
        "commit": commit(),
        "machine": machine(),
        "compiler": sorted({run["compiler"] for run in runs}),
        "runs": sorted(runs, key=lambda run: run["bits"]),
    }


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--results", required=True)
    parser.add_argument("--document")
    parser.add_argument("--charts")
    parser.add_argument("--compare")
    parser.add_argument("files", nargs="+")
    options = parser.parse_args()
    files = [path for path in options.files if path != options.results]
    results = read(files)
    with open(options.results, "w", encoding="utf-8") as file:
        json.dump(results, file, indent=1)
        file.write("\n")
    joined = tables.join(results["runs"])
    for table in joined:
        print("\n".join(tables.as_text(table)) + "\n")
    for aim in tables.aims(results["runs"]):
        print(tables.aim_line(aim))
    if options.charts:
        os.makedirs(options.charts, exist_ok=True)
        for table in joined:
            chart.draw(table, os.path.join(options.charts, table["id"] + ".svg"))
    try:
        if options.document:
            document.fill(options.document, results, joined)
        if options.compare:
            document.compare(options.compare, joined)
    except document.MarksDiffer as error:
        print(error, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
