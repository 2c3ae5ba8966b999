"""Plants faults in src/ one at a time and tells which of them no conformance test notices."""

import argparse
import collections
import hashlib
import json
import os
import queue
import re
import sys
import threading
import time
from pathlib import Path

sys.dont_write_bytecode = True

from bench import HOME, PRESET, Recipe, Worker  # noqa: E402
from equivalent import Equivalents  # noqa: E402
from faults import faults_of  # noqa: E402

LEAST = 0.95


def digest(*parts):
    return hashlib.sha256("\0".join(parts).encode()).hexdigest()[:24]


class Watchers:
    """Which tests noticed the faults of a file, and which took long about it, in any file."""

    LONG = 12  # seconds; a test that hangs is ended after 15

    def __init__(self):
        self.lock = threading.Lock()
        self.counts = collections.defaultdict(collections.Counter)
        self.slow = set()

    def add(self, path, entry):
        if entry["verdict"] != "noticed" or "." not in entry["by"]:
            return
        with self.lock:
            self.counts[path][entry["by"]] += 1
            if entry["seconds"] > self.LONG:
                self.slow.add(entry["by"])

    def of(self, path):
        """The likely tests of a file, and all that are slow."""
        with self.lock:
            often = [test for test, _ in self.counts[path].most_common(60)]
            return [test for test in often if test not in self.slow], sorted(self.slow)


class Results:
    """Verdicts so far, kept in a file, so that a run that was ended goes on."""

    def __init__(self, build, texts, keep_noticed):
        self.path = HOME / "results.jsonl"
        self.build = build
        self.texts = texts
        self.sources = digest(*(f"{path}\0{text}" for path, text in texts.items()))
        self.lock = threading.Lock()
        self.verdicts = {}
        self.watchers = Watchers()
        lines = self.path.read_text().splitlines() if self.path.exists() else []
        for line in lines:
            if not line.endswith("}"):
                continue  # The run was ended while it wrote this.
            entry = json.loads(line)
            self.watchers.add(entry["fault"].split()[0], entry)
            same = entry["build"] == build
            if same or (keep_noticed and entry["verdict"] != "survived"):
                self.verdicts[entry["key"]] = entry
            elif keep_noticed:
                self.verdicts.pop(entry["key"], None)

    def key(self, fault):
        return digest(self.sources, fault.path, fault.planted(self.texts[fault.path]))

    def of(self, fault):
        return self.verdicts.get(self.key(fault), {}).get("verdict")

    def add(self, fault, verdict, by, seconds):
        entry = {"key": self.key(fault), "build": self.build, "verdict": verdict, "by": by,
                 "seconds": round(seconds, 1), "fault": fault.content}
        with self.lock:
            self.verdicts[entry["key"]] = entry
            with self.path.open("a") as file:
                file.write(json.dumps(entry) + "\n")
        self.watchers.add(fault.path, entry)


class Progress:
    """A line each minute."""

    def __init__(self):
        self.lock = threading.Lock()
        self.begun = self.said = time.monotonic()

    def step(self, left):
        with self.lock:
            now = time.monotonic()
            if now - self.said >= 60:
                self.said = now
                print(f"   {left} left after {now - self.begun:.0f} s", flush=True)


def all_faults(only):
    texts, faults = {}, []
    for path in sorted(str(p) for p in Path("src").glob("**/*") if p.suffix in (".cpp", ".h")):
        texts[path] = Path(path).read_text()
        faults += faults_of(path, texts[path])
    if only:
        faults = [f for f in faults if re.search(only, f.place) or re.search(only, f.content)]
    return texts, faults


def work(worker, todo, results, progress):
    while True:
        try:
            fault = todo.get_nowait()
        except queue.Empty:
            return
        verdict, by = worker.try_fault(fault, *results.watchers.of(fault.path))
        results.add(fault, verdict, by, worker.seconds)
        progress.step(todo.qsize())


def run_faults(faults, results, workers):
    todo = queue.Queue()
    for fault in faults:
        if results.of(fault) is None:
            todo.put(fault)
    print(f"== {len(faults)} faults, {todo.qsize()} of them to be tried", flush=True)
    if todo.empty():
        return
    recipe = Recipe()
    faultless = recipe.prepare()
    faultless.link()
    for _ in range(2):
        failed = faultless.test()
        if failed:
            raise SystemExit(f"error: {failed} fails without any fault")
    progress = Progress()
    threads = [
        threading.Thread(daemon=True, target=work, args=(
            Worker(recipe, f"worker-{n}", f"worker-{n}/tree"), todo, results, progress))
        for n in range(workers)
    ]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()


def report(faults, results, equivalents, only):
    """Returns whether enough was noticed and every survivor is explained."""
    kinds = collections.defaultdict(collections.Counter)
    unexplained = []
    for fault in faults:
        verdict = results.of(fault)
        if verdict is None:
            raise SystemExit(f"error: {fault.place} was not tried")
        kinds[fault.kind][verdict] += 1
        if equivalents.has(fault.content):
            equivalents.meet(fault.content, verdict)
        elif verdict == "survived":
            unexplained.append(fault)
    for kind, counts in sorted(kinds.items()):
        planted = counts["noticed"] + counts["survived"]
        print(f"   {kind + ':':12}{counts['noticed']:5} of {planted:4} noticed,"
              f" {counts['uncompiled']:3} did not compile")
    for fault in unexplained:
        print(f"survived: {fault.place}\n   {fault.content}")
    complaints = equivalents.complaints(partly=only is not None)
    for complaint in complaints:
        print(complaint)
    total = sum(kinds.values(), collections.Counter())
    planted = total["noticed"] + total["survived"]
    print(f"{total['uncompiled']} faults did not compile and count for nothing;"
          f" {total['survived'] - len(unexplained)} survivors are known to change nothing")
    print(f"mutation: {total['noticed']} of {planted} noticed")
    enough = only is not None or total["noticed"] >= LEAST * planted
    return enough and not unexplained and not complaints


def main():
    parser = argparse.ArgumentParser(prog="./test.sh mutation", description=__doc__)
    parser.add_argument("--only", metavar="PATTERN",
                        help="only faults whose place or content the regular expression is found in")
    parser.add_argument("--survivors", action="store_true",
                        help="what was noticed before a change of the tests counts as noticed")
    parser.add_argument("--list", action="store_true", help="list the faults and plant none")
    parser.add_argument("--workers", type=int, default=os.cpu_count())
    options = parser.parse_args()

    texts, faults = all_faults(options.only)
    if options.list:
        for fault in faults:
            print(f"{fault.place}\n   {fault.content}")
        return 0
    HOME.mkdir(parents=True, exist_ok=True)
    built = (PRESET / "bin/conformance_test").read_bytes()
    bench = (Path(__file__).parent / "bench.py").read_bytes()
    build = hashlib.sha256(built + bench).hexdigest()[:24]
    results = Results(build, texts, options.survivors)
    run_faults(faults, results, options.workers)
    equivalents = Equivalents(Path(__file__).parent / "equivalent.txt")
    return 0 if report(faults, results, equivalents, options.only) else 1


if __name__ == "__main__":
    sys.exit(main())
