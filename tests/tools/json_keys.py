#!/usr/bin/env python3
"""Compares the keys of real --json output with docs/json.md: json_keys.py VEX docs/json.md

Runs each command on several kinds of documents. Fails if a key is printed but not documented, or
documented but never printed, and if an output has no version.
"""

import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

# Commands whose output is one object per line; {} is the document.
COMMANDS = {
    "info": ["info --json {}"],
    "tree": ["tree --json {}"],
    "wells": ["wells --json {}"],
    "detectors": ["detectors --json {}"],
    "dyes": ["dyes --json {}"],
    "calibration": ["calibration --json {}"],
    "follow": ["follow --ndjson {}"],
    "frame": ["frame --json {} 0"],
    "spectrum": ["spectrum --json {} --well A1 --frame 0"],
    "cq": ["cq --format json {}"],
    "melt": ["melt --format json {}"],
    "diff": ["diff --json run.vex {}"],
    "export": ["export --format rdml {} -o out.rdml --force --report -"],
    "check": ["check --notes --json {}"],
    "recover": ["recover --json {} -o recovered.vex --force"],
    "study list": ["study list --json {}"],
}
# A list whose objects have the keys of their command.
SAME_AS_ABOVE = "plates[]"
# Records are in records to any depth, with the same keys.
NESTED = re.compile(r"(records\[\])(\.children\[\])+")


def documented(path):
    """The documented keys of each command, by heading."""
    keys = {}
    for line in path.read_text(encoding="utf-8").splitlines():
        if line.startswith("## "):
            section = keys.setdefault(line[3:], set())
        row = re.match(r"\| `([^`]+)` \|", line)
        if row:
            section.add(row[1])
    return keys


def paths(value, at=""):
    """The key of each value within `value`, in the notation of the document."""
    if isinstance(value, dict):
        for key, inner in value.items():
            yield from paths(inner, f"{at}.{key}" if at else key)
    elif isinstance(value, list):
        inner = [each for each in value if isinstance(each, (dict, list))]
        if not inner:
            yield at
        for each in inner:
            yield from paths(each, at + "[]")
    else:
        yield at


def matches(key, path, repeats):
    if repeats and path.startswith(SAME_AS_ABOVE + "."):
        if matches(key, path[len(SAME_AS_ABOVE) + 1:], False):
            return True
    return re.fullmatch(re.escape(key).replace(r"\*", r"[^.]+"), path) is not None


def differences(section, keys, seen):
    """Keys that only one of the two sets contains."""
    repeats = SAME_AS_ABOVE in keys
    # A list can be empty, and a null value has no keys.
    for path in sorted(seen):
        inner = [key for key in keys if matches(key, path, repeats)]
        empty = any(key.startswith(path + ".") or key.startswith(path + "[]") for key in keys)
        if not inner and not empty:
            yield f"{section}: prints '{path}', which is not documented"
    for key in sorted(keys - {SAME_AS_ABOVE}):
        inside = any(path == key or path.startswith(key + ".") or matches(key, path, repeats)
                     for path in seen)
        if not inside:
            yield f"{section}: never prints '{key}'"


def make_documents(run):
    """Makes a run, a study, a background document, a damaged document, and one that vex did not
    record."""
    run("simulate run.vex --cycles 2 --seed 1")
    data = pathlib.Path("run.vex").read_bytes()
    pathlib.Path("plate1.vex").write_bytes(data)
    pathlib.Path("plate2.vex").write_bytes(data)
    run("study new study.vex plate1.vex plate2.vex")
    pathlib.Path("background.vex").write_bytes(data[:8] + b"BGND" + data[12:])
    pathlib.Path("damaged.vex").write_bytes(data[:1100] + bytes(40) + data[1140:-100])
    log = data.index(b"source=simulation")
    pathlib.Path("other.vex").write_bytes(data[:log] + b"X" + data[log + 1:])
    make_study_to_analyse(run)
    return ["run.vex", "study.vex", "background.vex", "damaged.vex", "other.vex", "analysed.vex"]


def make_study_to_analyse(run):
    """Makes a study of two plates with melting stages, an unknown quantity and a well that gives a
    finding."""
    run("simulate plate3.vex --melt 40 --wells-out wells.csv")
    text = pathlib.Path("wells.csv").read_text(encoding="utf-8")
    # A control that rises gives a finding.
    text = text.replace("dilution 2,target B,STND,100000,", "dilution 2,target B,UNKN,,")
    pathlib.Path("wells.csv").write_text(
        text.replace("dilution 5,target B,STND,100,", "dilution 5,target B,NTC,0,"),
        encoding="utf-8")
    run("wells plate3.vex --from wells.csv")
    pathlib.Path("plate4.vex").write_bytes(pathlib.Path("plate3.vex").read_bytes())
    run("study new analysed.vex plate3.vex plate4.vex")
    run("set analysed.vex 'endogenous-control=target A' 'calibrator=dilution 2'")


def main():
    vex = pathlib.Path(sys.argv[1]).resolve()
    keys = documented(pathlib.Path(sys.argv[2]).resolve())
    faults = [f"no section for '{name}'" for name in COMMANDS if name not in keys]
    faults += [f"section '{name}' belongs to no command" for name in keys if name not in COMMANDS]
    with tempfile.TemporaryDirectory() as folder:

        def run(line):
            done = subprocess.run([vex, *shlex.split(line)], cwd=folder, capture_output=True, text=True)
            return done.stdout

        os.chdir(folder)
        documents = make_documents(run)
        for section, lines in COMMANDS.items():
            seen = set()
            for line in lines:
                for document in documents:
                    text = run(line.format(document))
                    decoder = json.JSONDecoder()
                    while text.strip():
                        value, end = decoder.raw_decode(text.lstrip())
                        text = text.lstrip()[end:]
                        if value.get("version") != 1:
                            faults.append(f"{section}: {document}: no version")
                        for found in paths(value):
                            above = NESTED.sub(r"\1", found)
                            seen.add(above)
                            if above != found:
                                seen.add("records[].children")
            if not seen:
                faults.append(f"{section}: prints nothing")
            faults += differences(section, keys.get(section, set()), seen)
    print("\n".join(faults) or "all keys are documented")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
