#!/usr/bin/env python3
"""Checks the man pages: check_man.py VEX FOLDER [--self-test]

Each command must have a page that renders without warnings at 80 columns, and the page must contain
each option that --help lists, with its text. --self-test removes an option from each page, and
every page must then be reported.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys

MISSING = 77  # what ctest takes for a skipped test
SPECIAL = {r"\-": "-", r"\e": "\\", r"\(aq": "'", r"\(ga": "`", r"\(ha": "^", r"\(ti": "~", r"\(dq": '"', r"\&": ""}
# Text that --help adds to the names, value and text of an option.
NOISE = re.compile(r" REQUIRED| (?:Excludes|Needs):(?: --[\w-]+)+|:(?:{[^}]*}|\w+ in \[[^]]*\])|:(?:UINT|INT)\b")


def run(*words, **environment):
    return subprocess.run(words, check=True, capture_output=True, text=True, env={**os.environ, **environment})


def plain(page):
    """The text of a page without fonts and escapes."""
    page = re.sub(r"\\f[BIR]", "", page)
    return re.sub(r"\\(?:-|e|&|\(\w\w)", lambda match: SPECIAL[match[0]], page)


def sections(help_text):
    found, heading = {}, ""
    for line in help_text.splitlines():
        if re.fullmatch(r"[A-Z].*:", line):
            heading = line.rstrip(":")
        found.setdefault(heading, []).append(line)
    return found


def options(help_text):
    """Names and text of each option. A text that does not fit beside its option is on the next line."""
    found = []
    parts = sections(help_text)
    for line in parts.get("Options", []) + parts.get("Screen options", []) + parts.get("Positionals", []):
        if match := re.match(r"  (-[^ ]+|[A-Z][^ ]*)(.*)", line):
            rest = NOISE.sub("", match[2])
            # The text begins after the column, or after the value if only one space separates them.
            text = re.split(r"  +| (?=[A-Z][a-z'])", rest, maxsplit=1)
            found.append([match[1].split(","), text[1].strip() if len(text) > 1 else ""])
        elif line.startswith("      ") and found:
            found[-1][1] = f"{found[-1][1]} {line.strip()}".strip()
    return found


def commands(help_text):
    return re.findall(r"^  (\w+) ", "\n".join(sections(help_text).get("Subcommands", [])), re.MULTILINE)


def missing_options(vex, call, page, name):
    help_text = run(vex, *call, "--help", COLUMNS="10000").stdout
    listed = options(help_text)
    if not listed:
        yield f"{name}: the help of vex {' '.join(call)} lists no options"
    for names, text in listed:
        entries = re.findall(rf"^\.TP\n{re.escape(', '.join(names))}(?: [^\n]*|\.\.\.)?\n(.*)", page, re.MULTILINE)
        if not text or not any(entry.startswith(text) for entry in entries):
            yield f"{name}: the option {names[-1]} of vex {' '.join(call)} is missing, or its text: {text}"
    for inner in commands(help_text):
        if call and f".SS vex {' '.join([*call, inner])}\n" not in page:
            yield f"{name}: no section about vex {' '.join([*call, inner])}"
        if call:
            yield from missing_options(vex, [*call, inner], page, name)


def badly_rendered(path):
    shown = run("man", "--warnings", "-E", "UTF-8", "-l", str(path), MANWIDTH="80", LC_ALL="C.UTF-8",
                MAN_KEEP_FORMATTING="", PAGER="cat")
    for line in shown.stderr.splitlines():
        yield f"{path.name}: {line}"
    for line in shown.stdout.splitlines():
        if len(re.sub(r".\x08", "", line)) > 80:
            yield f"{path.name}: wider than 80 columns: {line.strip()}"
    for heading in ("NAME", "SYNOPSIS", "DESCRIPTION"):
        if not re.search(rf"^{heading}\n +\S", re.sub(r".\x08", "", shown.stdout), re.MULTILINE):
            yield f"{path.name}: nothing below {heading}"


def page_of(folder, call):
    return folder / ("-".join(["vex", *call[:1]]) + ".1")


def main():
    vex, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    if not shutil.which("man") or not shutil.which("groff"):
        print("skipped: the programs man and groff are missing; scripts/setup installs them")
        return MISSING
    calls = [[], *([name] for name in commands(run(vex, "--help").stdout))]
    if "--self-test" in sys.argv:
        return self_test(vex, folder, calls)
    faults = []
    for call in calls:
        path = page_of(folder, call)
        if not path.exists():
            faults.append(f"{path.name}: there is no such page")
            continue
        faults += badly_rendered(path)
        faults += missing_options(vex, call, plain(path.read_text()), path.name)
    known = {page_of(folder, call).name for call in calls}
    faults += [f"{path.name}: there is no such command" for path in folder.iterdir() if path.name not in known]
    print("\n".join(faults) or f"{len(calls)} man pages have no faults")
    return 1 if faults else 0


def self_test(vex, folder, calls):
    undetected = []
    for call in calls:
        page = plain(page_of(folder, call).read_text())
        without = re.sub(r"^\.TP\n--width.*\n.*\n", "", page, flags=re.MULTILINE)
        changed = page.replace("\n.TP\n--color WHEN\nColors", "\n.TP\n--color WHEN\nColour")
        for faulty in (without, changed):
            if faulty == page or not list(missing_options(vex, call, faulty, "page")):
                undetected.append(" ".join(["vex", *call]))
    print("\n".join(f"not detected: {name}" for name in undetected) or "every fault was detected")
    return 1 if undetected else 0


if __name__ == "__main__":
    sys.exit(main())
