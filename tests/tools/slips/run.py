#!/usr/bin/env python3
"""Checks how the command reports user mistakes (slips), and that it leaves every file unchanged.

usage: run.py [--only TEXT] [--list] [--all-fail] VEX FILE.slips...

Each slip runs in a separate folder with the files of fixtures.sh. A slip fails if the exit code,
standard error or standard output differs from the expectation, or if a file in the folder that the
slip does not name has changed, appeared or disappeared; this also finds temporary files that stay.
The actual result of a failed slip is printed in the form of a .slips file. --only runs the slips
with TEXT in the name. --all-fail succeeds if every slip fails, which tests this program.

A .slips file is a list of blocks, separated by empty lines and lines that begin with #:

    === the readings of a simulated run would replace the run itself
    setup> cp run.vex keep.vex
    $ vex simulate run.vex --readings-out run.vex
    exit 2
    2> vex: run.vex: already exists; use --force to replace it

    === NAME      begins a slip; the name is unique in its file
    setup> LINE   sh runs it before the command; may be repeated
    recorder> FILE [ARGUMENTS]  keeps `vex simulate FILE ARGUMENTS` recording beside the command:
                  the recorder has recorded one frame of two and waits
    $ LINE        the command line, which sh runs; several lines are one script
    exit CODE     the expected exit code; 0 if not given
    2> LINE       a line of standard error, exactly; all lines must be given
    2~ REGEX      a regular expression for a whole line of standard error: only for text that varies
    1> LINE       a line of standard output
    1~ REGEX      a regular expression for a whole line of standard output
    1 any         ignores standard output; without this and 1> it must be empty
    changes FILE...     files that must have changed or appeared; '*' matches any text
    may-change FILE...  files that may have changed or appeared
    removes FILE...     files that must have disappeared
    then> LINE    sh runs it afterwards, and it must succeed, as `cmp a.vex b.vex`

`sh -e` runs the lines of `setup>` and `then>`. Standard input is empty, the language is English in
UTF-8, standard output and standard error are files, and the time zone is UTC. File permissions
apply even if root runs the tests.
"""

import argparse
import ctypes
import fnmatch
import hashlib
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
LIMIT = 60  # seconds for one command
REPEATED = {"setup>": "setup", "$": "command", "2>": "errors", "2~": "errors", "1>": "output",
            "1~": "output", "then>": "then"}
NAMES = {"changes": "changes", "may-change": "may_change", "removes": "removes"}


class Slip:
    """A block of a .slips file."""

    def __init__(self, name, place):
        self.name, self.place = name, place
        self.setup, self.command, self.then = [], [], []
        self.exit_code = 0
        self.errors, self.output = [], []  # of (is a regular expression, text)
        self.any_output = False
        self.changes, self.may_change, self.removes = [], [], []
        self.recorder = None

    def take(self, line):
        """Adds a line of the block. Raises ValueError if the line has no known form."""
        key, _, text = line.partition(" ")
        if key in REPEATED:
            entry = (key.endswith("~"), text) if key[0] in "12" else text
            getattr(self, REPEATED[key]).append(entry)
        elif key in NAMES:
            getattr(self, NAMES[key]).extend(text.split())
        elif key == "recorder>":
            self.recorder = text
        elif key == "exit":
            self.exit_code = int(text)
        elif line == "1 any":
            self.any_output = True
        else:
            raise ValueError("this is no line of a slip")


def read_slips(path):
    slips, names = [], set()
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        place = f"{path.name}:{number}"
        if not line.strip() or line.startswith("#"):
            continue
        try:
            if line.startswith("=== "):
                name = line[4:].strip()
                if name in names:
                    raise ValueError("this name is taken")
                names.add(name)
                slips.append(Slip(name, place))
            else:
                slips[-1].take(line)
        except (ValueError, IndexError) as error:
            sys.exit(f"{place}: {error}: {line}")
    for slip in slips:
        if not slip.command:
            sys.exit(f"{slip.place}: the slip has no command line")
    return slips


def surroundings(vex, folder):
    """The environment of all commands, independent of the user's settings."""
    kept = {name: value for name, value in os.environ.items()
            if name.endswith("SAN_OPTIONS") or name == "LD_LIBRARY_PATH"}
    return kept | {"PATH": f"{vex.parent}:{os.environ['PATH']}", "HOME": str(folder),
                   "LC_ALL": "C.UTF-8", "TZ": "UTC", "TERM": "xterm",
                   "XDG_CONFIG_HOME": str(folder / "no-settings")}


def obey_permissions():
    """Makes file permissions apply to the next program even if root runs it."""
    drop, override, read_search = 24, 1, 2  # PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH
    for right in (override, read_search):
        ctypes.CDLL(None).prctl(drop, right, 0, 0, 0)


def run_script(lines, folder, environment, *, strict):
    """Runs the lines with sh. Returns exit code, standard output and standard error."""
    shell = ["sh", "-e"] if strict else ["sh"]
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        process = subprocess.Popen([*shell, "-c", "\n".join(lines)], cwd=folder, env=environment,
                                   stdin=subprocess.DEVNULL, stdout=out, stderr=err,
                                   start_new_session=True, preexec_fn=obey_permissions)
        try:
            code = process.wait(LIMIT)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            code = f"none within {LIMIT} s"
            process.wait()
        out.seek(0)
        err.seek(0)
        return (code, *(file.read().decode("utf-8", "backslashreplace") for file in (out, err)))


def snapshot(folder):
    """The type and content of every path in the folder."""
    paths = {}
    for path in sorted(folder.rglob("*")):
        if path.is_symlink():
            held = "link to " + os.readlink(path)
        elif path.is_file():
            held = hashlib.sha256(path.read_bytes()).hexdigest()
        else:
            held = "no file"
        paths[str(path.relative_to(folder))] = held
    return paths


class Recorder:
    """A run that is being recorded for the duration of the `with` block."""

    def __init__(self, arguments, folder, environment):
        self.arguments, self.folder, self.environment = arguments, folder, environment

    def __enter__(self):
        if self.arguments is None:
            return
        line = f"exec vex simulate {self.arguments} --cycles 2 --pace 1000"
        self.process = subprocess.Popen(["sh", "-c", line], cwd=self.folder, env=self.environment,
                                        stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)
        frames = f"vex info --json {self.arguments.split()[0]} | grep -q '\"frames\": *1'"
        end = time.monotonic() + LIMIT
        while run_script([frames], self.folder, self.environment, strict=False)[0] != 0:
            if self.process.poll() is not None or time.monotonic() > end:
                sys.exit(f"the recorder of {self.arguments} does not record")

    def __exit__(self, *_):
        if self.arguments is None:
            return
        self.process.terminate()
        self.process.wait(LIMIT)


def lines_differ(expected, text):
    """Whether the lines of a stream differ from the expected ones."""
    lines = text.split("\n")
    if lines[-1] != "":
        return True  # the last line has no line end
    lines.pop()
    return len(lines) != len(expected) or any(
        re.fullmatch(wanted, line) is None if is_regex else wanted != line
        for (is_regex, wanted), line in zip(expected, lines))


def file_problems(slip, before, after):
    """Yields unexpected changes of files, and expected changes that did not happen."""
    changed = {path for path in after if before.get(path) != after[path]}
    gone = set(before) - set(after)

    def allowed(path, patterns):
        return any(fnmatch.fnmatchcase(path, pattern) for pattern in patterns)

    for path in sorted(changed):
        if not allowed(path, slip.changes + slip.may_change):
            yield f"{path} has {'changed' if path in before else 'appeared'}"
    for path in sorted(gone):
        if not allowed(path, slip.removes):
            yield f"{path} is gone"
    for pattern in slip.changes:
        if not fnmatch.filter(changed, pattern):
            yield f"{pattern} has not changed"
    for pattern in slip.removes:
        if not fnmatch.filter(gone, pattern):
            yield f"{pattern} is still there"


def problems(slip, folder, vex):
    """The differences from the expectation of the slip; empty if there are none."""
    environment = surroundings(vex, folder)
    code, _, err = run_script(slip.setup, folder, environment, strict=True)
    if code != 0:
        return [f"the setup failed: {err}"]
    with Recorder(slip.recorder, folder, environment):
        before = snapshot(folder)
        code, out, err = run_script(slip.command, folder, environment, strict=False)
        after = snapshot(folder)
    found = list(file_problems(slip, before, after))
    answer = [f"exit {code}"] + [f"2> {line}" for line in err.splitlines()]
    answer += [f"1> {line}" for line in out.splitlines()]
    if code != slip.exit_code:
        found.append(f"the exit code is {code}")
    if lines_differ(slip.errors, err):
        found.append("standard error differs")
    if not slip.any_output and lines_differ(slip.output, out):
        found.append("standard output differs")
    if slip.then:
        status, _, err = run_script(slip.then, folder, environment, strict=True)
        if status != 0:
            found.append(f"what is run afterwards answers {status}: {err}")
    return found + answer if found else []


def main():
    parser = argparse.ArgumentParser(usage=__doc__.splitlines()[2][7:])
    parser.add_argument("--only", default="")
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--all-fail", action="store_true")
    parser.add_argument("vex", type=pathlib.Path)
    parser.add_argument("files", type=pathlib.Path, nargs="+")
    arguments = parser.parse_args()
    slips = [slip for path in arguments.files for slip in read_slips(path)
             if arguments.only in slip.name]
    if arguments.list:
        print("\n".join(f"{slip.place}: {slip.name}" for slip in slips))
        return 0
    vex = arguments.vex.resolve()
    if vex.name != "vex" or not os.access(vex, os.X_OK):
        sys.exit(f"{vex}: this is not the command")
    failed = 0
    with tempfile.TemporaryDirectory(prefix="slips-") as place:
        fixtures = pathlib.Path(place) / "fixtures"
        fixtures.mkdir()
        code, out, err = run_script([f"exec {HERE / 'fixtures.sh'}"], fixtures,
                                    surroundings(vex, fixtures), strict=True)
        if code != 0:
            sys.exit(f"the fixtures could not be made: {code}\n{out}{err}")
        for slip in slips:
            folder = pathlib.Path(place) / "slip"
            # Copy files with their times, so that documents do not look changed.
            shutil.copytree(fixtures, folder, symlinks=True)
            found = problems(slip, folder, vex)
            if found:
                failed += 1
                print(f"{slip.place}: {slip.name}\n  " + "\n  ".join(found) + "\n")
            run_script(["chmod -R u+rwx ."], folder, {"PATH": os.environ["PATH"]}, strict=False)
            shutil.rmtree(folder)
    print(f"{len(slips)} slips, {failed} failed")
    wanted = len(slips) if arguments.all_fail else 0
    return 0 if slips and failed == wanted else 1


if __name__ == "__main__":
    sys.exit(main())
