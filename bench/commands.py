#!/usr/bin/env python3
"""commands.py VEX PEERS: compares whole commands with the least work that they have to do.

VEX is the command, PEERS the program vex2_peers of the same build. The two sides of a row run in
turn, round by round; a ratio is the median of the ratios of all rounds.
"""

import argparse
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

EMPTY = "int main() {}"


def seconds_of(command: list, read: bool = False) -> float:
    """Returns the seconds that a command takes; with read, its output is read from a pipe."""
    start = time.perf_counter()
    if read:
        with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as run:
            while os.read(run.stdout.fileno(), 1 << 20):
                pass
    else:
        run = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    if run.returncode != 0:
        sys.exit(f"commands.py: {' '.join(map(str, command))} failed")
    return time.perf_counter() - start


def row(name: str, ours, peer, limit: str, rounds: int) -> None:
    """Prints the time of ours, the time of the peer and the ratio."""
    pairs = []
    for index in range(rounds):
        if index % 2:
            pairs.append((ours(), peer()))
        else:
            b = peer()
            pairs.append((ours(), b))
    mine = statistics.median(a for a, _ in pairs) * 1e3
    others = statistics.median(b for _, b in pairs) * 1e3
    ratio = statistics.median(a / b for a, b in pairs)
    print(f"| {name} | {mine:.1f} | {others:.1f} | {ratio:.2f} | {limit} |", flush=True)


def make_documents(vex: str, peers: str, folder: pathlib.Path) -> dict:
    """Simulates runs of 0.4, 12 and 31 MB, and makes a document of 61 MB with readings only."""
    documents = {}
    for name, cycles in (("0.4 MB", 13), ("12 MB", 400), ("31 MB", 1000)):
        documents[name] = folder / f"{cycles}.vex"
        words = ["simulate", documents[name], "--wells", "384", "--cycles", str(cycles)]
        seconds_of([vex, *words])
    documents["61 MB"] = folder / "readings.vex"
    subprocess.run([peers, f"--make={documents['61 MB']}", "--frames=2000"], check=True)
    return documents


def make_table(vex: str, run: pathlib.Path, folder: pathlib.Path) -> tuple:
    """Writes the rows of a run as CSV and as a table of SQLite."""
    text = folder / "rows.csv"
    text.write_bytes(subprocess.run([vex, "export", run], stdout=subprocess.PIPE, check=True).stdout)
    base = folder / "rows.sqlite"
    subprocess.run(["sqlite3", base], input=f".import --csv {text} rows\n", text=True, check=True)
    return text, base


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("vex")
    parser.add_argument("peers")
    parser.add_argument("--rounds", type=int, default=15)
    options = parser.parse_args()
    vex, peers, rounds = options.vex, options.peers, options.rounds
    folder = pathlib.Path(tempfile.mkdtemp(prefix="commands-", dir="."))
    try:
        documents = make_documents(vex, peers, folder)
        (folder / "empty.cpp").write_text(EMPTY)
        subprocess.run(["c++", "-O2", folder / "empty.cpp", "-o", folder / "empty"], check=True)
        print("| Command / compared with | ms | ms | ratio | at most |")
        print("|---|---|---|---|---|")
        run = lambda *words: lambda: seconds_of([vex, *words])  # noqa: E731
        row("`vex --version` / empty C++ program", run("--version"),
            lambda: seconds_of([str((folder / "empty").resolve())]), "3 ms more", rounds)
        row("`vex --version` / `sqlite3 --version`", run("--version"),
            lambda: seconds_of(["sqlite3", "--version"]), "", rounds)
        for command in ("info", "wells", "detectors", "tree"):
            row(f"`vex {command}` of 31 MB / of 0.4 MB", run(command, documents["31 MB"]),
                run(command, documents["0.4 MB"]), "1.2", rounds)
        reading = lambda: seconds_of([peers, f"--read={documents['61 MB']}"])  # noqa: E731
        row("`vex check` of 61 MB / reading it", run("check", documents["61 MB"]), reading, "1.5",
            rounds)
        row("`vex repair --dry-run` of 61 MB / reading it",
            run("repair", "--dry-run", documents["61 MB"]), reading, "1.5", rounds)
        row("`vex recover` of 61 MB / reading it",
            run("recover", documents["61 MB"], "-o", folder / "out.vex", "--force"), reading, "3",
            rounds)
        table, base = make_table(vex, documents["12 MB"], folder)
        count = len(table.read_text().splitlines()) - 1
        export = lambda: seconds_of([vex, "export", documents["12 MB"]], read=True)  # noqa: E731
        row(f"`vex export` of {count} rows to a pipe / `write` of the bytes", export,
            lambda: seconds_of([peers, f"--write={table.stat().st_size}"], read=True), "3", rounds)
        row(f"`vex export` of {count} rows / `sqlite3 -csv`", export,
            lambda: seconds_of(["sqlite3", "-csv", base, "SELECT * FROM rows"], read=True), "0.2",
            rounds)
        many = folder / "many"
        many.mkdir()
        for index in range(2000):
            os.link(documents["0.4 MB"], many / f"{index}.vex")
        listed = folder / "list"
        listed.write_text("".join(f"{path}\n" for path in sorted(many.iterdir())))
        row("`vex info --json -j 2` of 2,000 documents / reading 64 KiB of each",
            run("info", "--json", "-j", "2", f"@{listed}"),
            lambda: seconds_of([peers, f"--heads={many}"]), "3", max(3, rounds // 3))
    finally:
        shutil.rmtree(folder)


if __name__ == "__main__":
    main()
