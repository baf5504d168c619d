#!/usr/bin/env python3
"""Removes the safeguards of documents, one at a time, and reports which test notices.

A mutation of mutations/ replaces a few characters of one source and so removes a barrier, a lock or a check. It is
applied to a scratch copy of the tree, never to this tree. The copy is built, and the test programs run until one
fails, beginning with those that the mutation names. The result is a row of a table in docs/reliability.md.

The exit code is 1 if a test fails without a mutation, if no test notices a mutation that is not marked as redundant,
and if --check finds a mutation whose text is not in its source, or a table that lists other mutations.
"""

import argparse
import datetime
import filecmp
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile

from mutations import MUTATIONS

ROOT = pathlib.Path(__file__).resolve().parents[2]
DOCUMENT = ROOT / "docs" / "reliability.md"
BEGIN = "<!-- mutations: written by tests/reliability/mutate.py -->"
END = "<!-- end of mutations -->"
# A file that marks a folder as a scratch copy, which may be overwritten.
MARK = ".scratch-copy-for-mutations"
HEAD = "| | What was taken out | The tests that notice |\n|---|---|---|"
# The fastest programs first. Tests of speed and of module loading are left out, because no mutation
# affects them.
PROGRAMS = ("storage", "run", "study", "setup", "format", "container", "framework",
            "manager", "memory", "model", "reliability")
# Tests of the code that uses the library.
LAB_PROGRAMS = ("lab", "tools")
# Programs that stop at the first failure.
SLOW = ("memory", "model", "reliability", "tools")
LEFT_OUT = "*LargeInput*:LargeDocument*"
MOST_NAMES = 3
SECONDS = 150
# The settings of ctest, plus a limit so that a mutation cannot take all memory of the machine.
OPTIONS = {"ASAN_OPTIONS": "detect_stack_use_after_return=1:strict_string_checks=1:hard_rss_limit_mb=4000",
           "UBSAN_OPTIONS": "print_stacktrace=1"}


class CannotBuild(Exception):
    pass


class Scratch:
    """A copy of the tree with its own build."""

    def __init__(self, folder):
        self.folder = folder.resolve()
        if ROOT == self.folder or ROOT.is_relative_to(self.folder):
            sys.exit(f"{folder}: is this tree, or contains it; give another folder")
        if self.folder.exists() and any(self.folder.iterdir()) and not (self.folder / MARK).exists():
            sys.exit(f"{folder}: is not empty; give a folder that can be overwritten")
        self.build = self.folder / "build" / "asan"

    def update(self):
        """Copies only changed files, so that only those are rebuilt."""
        self.folder.mkdir(parents=True, exist_ok=True)
        (self.folder / MARK).touch()
        listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                                cwd=ROOT, check=True, capture_output=True, text=True).stdout
        kept = {path for path in listed.split("\0") if path and (ROOT / path).is_file()}
        for path in kept:
            target = self.folder / path
            if target.exists() and filecmp.cmp(ROOT / path, target, shallow=False):
                continue
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / path, target)
        for folder in {path.split("/")[0] for path in kept if "/" in path}:
            for old in (self.folder / folder).rglob("*"):
                if old.is_file() and str(old.relative_to(self.folder)) not in kept:
                    old.unlink()

    def configure(self):
        linker = ["-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld"] if shutil.which("ld.lld") else []
        self._run(["cmake", "--preset", "asan", *linker])

    def make(self, program):
        self._run(["ninja", "-j2", "-C", str(self.build), f"test_{program}"])

    def _run(self, command):
        done = subprocess.run(command, cwd=self.folder, capture_output=True, text=True)
        if done.returncode != 0:
            raise CannotBuild(f"{' '.join(command)} failed:\n{done.stdout[-3000:]}{done.stderr[-3000:]}")

    def failures(self, program, pattern):
        """The names of the tests that fail, in the order in which they ran."""
        data = ROOT.parent / "shared" / "data"
        environment = {**os.environ, **OPTIONS, **({"VEX2_SHARED_DATA": str(data)} if data.is_dir() else {})}
        command = [str(self.build / "tests" / f"test_{program}"), f"--gtest_filter={pattern}-{LEFT_OUT}"]
        if program in SLOW:
            command.append("--gtest_fail_fast")
        with tempfile.TemporaryFile("w+", errors="replace") as output:
            process = subprocess.Popen(command, cwd=self.build, env=environment, stdout=output,
                                       stderr=subprocess.DEVNULL, start_new_session=True)
            try:
                code = process.wait(timeout=SECONDS)
            except subprocess.TimeoutExpired:
                code = None
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait()
            output.seek(0)
            return failed_tests(output.read(), code)


def failed_tests(output, code):
    """The failed tests, from the output and exit code of a program; `code` is None after a timeout."""
    names = [match[1] for match in re.finditer(r"^\[  FAILED  \] (\S+?),?(?: .*)? \(\d+ ms\)$", output, re.M)]
    begun = re.findall(r"^\[ RUN      \] (\S+)$", output, re.M)
    ended = len(re.findall(r"^\[ .{8} \] \S+.* \(\d+ ms\)$", output, re.M))
    if code != 0 and len(begun) > ended:
        names.append(begun[-1])
    if code != 0 and not names:
        sys.exit(f"a test program ended with {code} and names no test:\n{output[-2000:]}")
    return list(dict.fromkeys(plain_name(name) for name in names))


def plain_name(name):
    """The name of a test without its instantiation and parameter."""
    parts = name.split("/")
    return next(part for part in parts if "." in part)


def attempts(mutation, quick):
    """Programs and patterns of tests: first those that the mutation names, then all others, unless
    `quick` is set."""
    hints = [hint.partition(":") for hint in mutation.tests.split()]
    first = [(program, pattern or "*") for program, _, pattern in hints]
    programs = PROGRAMS if mutation.file.startswith("vex2/") else LAB_PROGRAMS
    return first if quick else first + [(program, "*") for program in programs if (program, "*") not in first]


def mutate(scratch, mutation, quick):
    """The names of the tests that fail with the mutation."""
    source = scratch.folder / mutation.file
    text = source.read_text()
    source.write_text(text.replace(mutation.original, mutation.replacement))
    try:
        for program, pattern in attempts(mutation, quick):
            scratch.make(program)
            if names := scratch.failures(program, pattern):
                return names
        return []
    finally:
        source.write_text(text)


def check_unmutated(scratch, mutations, quick):
    """Checks that all tests pass without a mutation."""
    wanted = {}
    for mutation in mutations:
        for program, pattern in attempts(mutation, quick):
            wanted.setdefault(program, set()).add(pattern)
    for program, patterns in wanted.items():
        scratch.make(program)
        if names := scratch.failures(program, "*" if "*" in patterns else ":".join(sorted(patterns))):
            sys.exit(f"fails without a mutation: {', '.join(names)}")


def row(mutation, names):
    noticed = ", ".join(f"`{name}`" for name in names[:MOST_NAMES])
    if len(names) > MOST_NAMES:
        noticed += f", {len(names) - MOST_NAMES} more"
    if not names:
        noticed = f"none: {mutation.redundant}" if mutation.redundant else "**none**"
    return f"| {mutation.kind} | {mutation.what} | {noticed} |"


def document_rows(text):
    """The rows of the table, by what was removed."""
    if BEGIN not in text:
        return {}
    table = text.split(BEGIN)[1].split(END)[0]
    found = re.findall(r"^(\| (?:barrier|lock|check) \| (.*?) \| .* \|)$", table, re.M)
    return {what: line for line, what in found}


def write(document, rows):
    text = document.read_text()
    every = {**document_rows(text), **rows}
    lines = [every[mutation.what] for mutation in MUTATIONS if mutation.what in every]
    silent = sum("| none: " in line for line in lines)
    missed = sum("| **none** |" in line for line in lines)
    ends = (f"{len(lines)} were taken out, and a test noticed {len(lines) - silent - missed}"
            + (f"; {silent} are redundant" if silent else "")
            + (f", and {missed} went unnoticed" if missed else "")
            + f". Written on {datetime.date.today().isoformat()}.")
    before, rest = text.split(BEGIN)
    table = "\n".join([HEAD, *lines])
    document.write_text(f"{before}{BEGIN}\n{table}\n\n{ends}\n{END}{rest.split(END)[1]}")


def complaints(mutations, with_table=True):
    for mutation in mutations:
        source = ROOT / mutation.file
        count = source.read_text().count(mutation.original) if source.exists() else 0
        if count != 1:
            yield f"{mutation.name}: its text occurs {count} times in {mutation.file}, not once"
    for field in ("name", "what"):
        values = [getattr(mutation, field) for mutation in MUTATIONS]
        for value in sorted({value for value in values if values.count(value) > 1}):
            yield f"two mutations are called {value!r}"
    listed = list(document_rows(DOCUMENT.read_text()))
    if with_table and listed != [mutation.what for mutation in MUTATIONS]:
        differing = set(listed) ^ {mutation.what for mutation in MUTATIONS}
        yield f"the table of {DOCUMENT.name} does not list the mutations: {sorted(differing) or 'another order'}"


def run(options, chosen):
    if wrong := list(complaints(chosen, with_table=False)):
        sys.exit("\n".join(wrong))
    scratch = Scratch(options.tree)
    scratch.update()
    scratch.configure()
    if not options.no_baseline:
        check_unmutated(scratch, chosen, options.quick)
    failed = 0
    print(HEAD)
    for mutation in chosen:
        try:
            names = mutate(scratch, mutation, options.quick)
        except CannotBuild as error:
            print(f"{mutation.name}: {error}", file=sys.stderr)
            failed += 1
            continue
        failed += not names and not mutation.redundant
        line = row(mutation, names)
        print(line, flush=True)
        if options.write and (names or not options.quick):
            write(options.write, {mutation.what: line})
    return 1 if failed else 0


def arguments():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--list", action="store_true", help="list the mutations and end")
    parser.add_argument("--check", action="store_true", help="check that sources and table fit the list, and end")
    parser.add_argument("--only", metavar="NAME", action="append", help="run only this one; can be repeated")
    parser.add_argument("--tree", metavar="FOLDER", type=pathlib.Path, default=ROOT / "build" / "mutations",
                        help="the folder of the scratch copy (default: build/mutations)")
    parser.add_argument("--quick", action="store_true", help="run only the tests that a mutation names")
    parser.add_argument("--no-baseline", action="store_true", help="do not see first that all tests pass without")
    parser.add_argument("--write", metavar="DOCUMENT", type=pathlib.Path,
                        help=f"write each result into the table of a document, docs/{DOCUMENT.name} or a copy")
    return parser.parse_args()


def main():
    options = arguments()
    chosen = [mutation for mutation in MUTATIONS if not options.only or mutation.name in options.only]
    unknown = set(options.only or ()) - {mutation.name for mutation in chosen}
    if unknown:
        sys.exit(f"unknown mutation: {', '.join(sorted(unknown))}; see --list")
    if options.list:
        print("\n".join(f"{mutation.name:32} {mutation.kind:8} {mutation.what}" for mutation in chosen))
        return 0
    if options.check:
        wrong = list(complaints(chosen))
        print("\n".join(wrong) or f"{len(chosen)} mutations")
        return 1 if wrong else 0
    return run(options, chosen)


if __name__ == "__main__":
    sys.exit(main())
