"""Builds the conformance tests with one fault in the system, and runs them.

The tests, the recording platform and GoogleTest are those of build/linux32; only what includes the
faulty file is compiled anew, in a copy of the tree that each worker has: without optimisation, and
with the checks that the standard library has, so that undefined behaviour is not taken for harmless.
"""

import json
import os
import re
import resource
import shlex
import shutil
import signal
import subprocess
import time
from pathlib import Path

PRESET = Path("build/linux32")
HOME = Path("build/mutation")
SECONDS = 60  # for a whole run of the tests
HANGS = 15  # seconds after which one test has failed
LARGEST = 2 << 30
COMPILE = ["-w", "-O0", "-D_GLIBCXX_ASSERTIONS"]
UNWANTED = re.compile(r"-O\w|-g|-W.*|-MD|.*/ccache|-DNDEBUG")


def run(arguments, **more):
    return subprocess.run(arguments, stdin=subprocess.DEVNULL, capture_output=True, text=True, **more)


def must(arguments, **more):
    done = run(arguments, **more)
    if done.returncode != 0:
        raise SystemExit(f"error: {' '.join(map(str, arguments))}\n{done.stderr}")


def included(text):
    return re.findall(r'^#include "(.*)"', text, re.MULTILINE)


class Recipe:
    """What ninja would do, and the objects that no fault changes."""

    def __init__(self):
        self.root = Path.cwd()
        self.sources = {}  # path: (arguments of the compiler, name of the object)
        self.system, self.directives = [], []
        for entry in json.loads((PRESET / "compile_commands.json").read_text()):
            path = os.path.relpath(entry["file"], self.root)
            if path.startswith("src/"):
                self.sources[path] = self._flags(entry["command"])
                of_directives = "zerva_directives" in entry["command"]
                (self.directives if of_directives else self.system).append(path)
        commands = run(["ninja", "-C", PRESET, "-t", "commands", "conformance_test"]).stdout
        joining = next(c for c in commands.splitlines() if " -r -nostdlib " in c)
        linking = next(c for c in commands.splitlines() if " -o bin/conformance_test " in c)
        self.wraps = re.findall(r"-Wl,--wrap=\S+", joining)
        words = shlex.split(linking.split("&&")[1])
        self.tests = [w for w in words if w.endswith(".o") and not w.endswith("system_on_fakes.o")]
        self.libraries = [w for w in words if w.endswith(".a") and "zerva_directives" not in w]
        self.prepared = self.root / HOME / "prepared"

    @staticmethod
    def _flags(command):
        words = shlex.split(command)
        words = words[:words.index("-o")] + words[words.index("-c"):-1]
        skipped = {i + 1 for i, w in enumerate(words) if w in ("-MT", "-MF")}
        return [w for i, w in enumerate(words)
                if i not in skipped and w not in ("-MT", "-MF", "-c") and not UNWANTED.fullmatch(w)]

    def prepare(self):
        """Strips what is linked each time, and compiles the standard headers and the whole system."""
        shutil.rmtree(self.prepared, ignore_errors=True)
        self.prepared.mkdir(parents=True)
        must(["g++", "-m32", "-r", "-nostdlib", "-o", self.prepared / "tests.o", *self.tests],
             cwd=PRESET)
        must(["strip", "-g", self.prepared / "tests.o"])
        for library in self.libraries:
            must(["strip", "-g", "-o", self.prepared / Path(library).name, PRESET / library])
        headers = set()
        for file in [*self.root.glob("src/**/*.*"), *self.root.glob("include/*.h")]:
            headers.update(re.findall(r"^#include (<\w+>)", file.read_text(), re.MULTILINE))
        header = self.prepared / "standard.hxx"
        header.write_text("".join(f"#include {name}\n" for name in sorted(headers)))
        any_flags = next(iter(self.sources.values()))
        must([*any_flags, *COMPILE, "-x", "c++-header", header, "-o", f"{header}.gch"])
        worker = Worker(self, "prepared", "faultless")
        for path in self.sources:
            complaint = worker.compile(path)
            if complaint:
                raise SystemExit(f"error: {path} does not compile\n{complaint}")
        return worker

    def touched_by(self, path):
        """The sources to compile when a file has changed."""
        reached, todo = {path}, [path]
        everything = [str(p.relative_to(self.root)) for p in self.root.glob("src/**/*.*")]
        while todo:
            changed = todo.pop()
            for file in everything:
                if file not in reached and changed in included((self.root / file).read_text()):
                    reached.add(file)
                    todo.append(file)
        return sorted(reached & self.sources.keys())


class Worker:
    """A copy of the sources, objects of its own and a program made of them."""

    def __init__(self, recipe, objects, name):
        self.recipe = recipe
        self.tree = recipe.root / HOME / name
        self.objects = recipe.root / HOME / objects
        shutil.rmtree(self.tree, ignore_errors=True)
        for folder in ("src", "include", "framework"):
            shutil.copytree(recipe.root / folder, self.tree / folder)
        self.objects.mkdir(exist_ok=True)
        self.seconds = 0.0  # that the last run of the tests took

    def object_of(self, path, folder=None):
        return (folder or self.objects) / (path.replace("/", "_") + ".o")

    def compile(self, path):
        """Returns what the compiler complains of."""
        root = str(self.recipe.root)
        flags = [f.replace(root, str(self.tree)) for f in self.recipe.sources[path]]
        done = run([*flags, *COMPILE, "-include", self.recipe.prepared / "standard.hxx", "-c",
                    self.tree / path, "-o", self.object_of(path)])
        return done.stderr if done.returncode != 0 else ""

    def link(self, changed=()):
        """The program, with these sources' objects from here and all others as they were prepared."""
        recipe = self.recipe

        def objects(paths):
            return [self.object_of(p, None if p in changed else recipe.prepared) for p in paths]

        must(["g++", "-m32", "-r", "-nostdlib", *recipe.wraps, "-o", self.tree / "system.o",
              *objects(recipe.system)])
        must(["g++", "-m32", "-fuse-ld=gold", "-o", self.tree / "conformance_test",
              self.tree / "system.o", *objects(recipe.directives), recipe.prepared / "tests.o",
              *[recipe.prepared / Path(library).name for library in recipe.libraries]])

    def test(self, names=(), without=()):
        """Returns the test that did not pass, or an empty text."""
        command = [self.tree / "conformance_test", "--gtest_fail_fast", "--gtest_color=no"]
        if names or without:
            chosen = ":".join(names) or "*"
            command.append(f"--gtest_filter={chosen}-{':'.join(without)}")
        output = self.tree / "output"
        begun = time.monotonic()
        with output.open("w") as file:
            process = subprocess.Popen(
                command, stdin=subprocess.DEVNULL, stdout=file, stderr=file, cwd=self.tree,
                env={**os.environ, "ZERVA_TEST_SECONDS": str(HANGS)}, start_new_session=True,
                preexec_fn=limit)
            try:
                code = process.wait(SECONDS)
            except subprocess.TimeoutExpired:
                code = None
            finally:
                try:
                    os.killpg(process.pid, signal.SIGKILL)
                except ProcessLookupError:
                    pass
                process.wait()
        self.seconds = time.monotonic() - begun
        if code == 0:
            return ""
        text = output.read_text(errors="replace")
        failed = re.search(r"^\[  FAILED  \] ([^\s,]+)", text, re.MULTILINE)
        if failed:
            return failed[1]
        begun = re.findall(r"^\[ RUN      \] (\S+)", text, re.MULTILINE)
        return begun[-1] if begun else "starting"

    def try_fault(self, fault, likely, slow):
        """
        Returns the verdict and what it comes from: the compiler or the test that noticed.

        Likely tests are run first, and slow ones last, which notice by hanging until they are ended.
        """
        path = self.tree / fault.path
        faultless = (self.recipe.root / fault.path).read_text()
        changed = self.recipe.touched_by(fault.path)
        path.write_text(fault.planted(faultless))
        try:
            for source in changed:
                if self.compile(source):
                    return "uncompiled", source
            self.link(changed)
        finally:
            path.write_text(faultless)
        by = (likely and self.test(likely)) or self.test((), slow) or (slow and self.test(slow))
        return ("noticed", by) if by else ("survived", "")


def limit():
    """So that a fault that loops cannot fill memory or disk."""
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_AS, (LARGEST, LARGEST))
    resource.setrlimit(resource.RLIMIT_FSIZE, (64 << 20, 64 << 20))
