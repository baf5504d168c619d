"""Measures what docs/python.md promises, and fails where it is not so.

    PYTHONPATH=BUILD/python /usr/bin/python3 python/bench/measure.py [BENCH_READ]

BENCH_READ is the program python/bench/read_matrix of the build: the C++ read to compare with.
"""

import csv
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

import h5py
import numpy
import pandas

import vex2

WELLS, FRAMES = 384, 400
failures = []


def seconds(work, times: int = 9) -> float:
    """The median of several runs, after one that warms the caches."""
    work()
    taken = []
    for _ in range(times):
        start = time.perf_counter()
        work()
        taken.append(time.perf_counter() - start)
    return statistics.median(taken)


def say(what: str, found: float, limit: float, at_least: bool = False) -> None:
    is_met = found >= limit if at_least else found <= limit
    if not is_met:
        failures.append(what)
    word = "at least" if at_least else "at most"
    print(f"{'met ' if is_met else 'MISS'} {what}: {found:.2f} x ({word} {limit:g} x)")


def make(path: pathlib.Path, frames: int) -> numpy.ndarray:
    numbers = numpy.random.default_rng(1).integers(1, 65535, (frames, WELLS, 32), numpy.uint16)
    manager = vex2.raw.Vex2FileManager()
    manager.SetHeaderData(
        vex2.raw.Vex2HeaderData(plateTypeCode="p3C ", rows=16, columns=24, usage=[2**24 - 1] * 16)
    )
    setup = [vex2.raw.Vex2WellSetup(i // 24, i % 24, True, "sample") for i in range(WELLS)]
    assert manager.ReplacePlateSetup(setup) == 0
    full = numpy.ones((frames, WELLS, 40), numpy.uint16)
    full[:, :, 8:] = numbers
    assert manager.SaveToFile(path) == 0
    assert manager.ReplaceAcquisitionDataBlock(path, list(full), vex2.raw.DataRAWa) == 0
    return numbers


def import_time(module: str) -> float:
    code = f"import time; t = time.perf_counter(); import {module}; print(time.perf_counter() - t)"

    def once() -> float:
        return float(subprocess.run([sys.executable, "-c", code], stdout=-1, check=True).stdout)

    once()
    return min(once() for _ in range(9))


def compare_readers(folder: pathlib.Path, path: pathlib.Path, numbers: numpy.ndarray) -> float:
    read = seconds(lambda: vex2.open(path).readings)
    with h5py.File(folder / "run.h5", "w") as file:
        file["readings"] = numbers.astype(">u2")

    def from_h5() -> numpy.ndarray:
        with h5py.File(folder / "run.h5") as file:
            return file["readings"][:].astype(numpy.uint16)

    assert numpy.array_equal(from_h5(), vex2.open(path).readings)
    with open(folder / "run.csv", "w", newline="", encoding="ascii") as file:
        csv.writer(file).writerows(numbers.reshape(-1, 32).tolist())
    from_csv = seconds(lambda: pandas.read_csv(folder / "run.csv", header=None).to_numpy(), 3)
    say("h5py reading big-endian numbers, to vex2", seconds(from_h5) / read, 5, True)
    say("pandas reading the CSV, to vex2", from_csv / read, 50, True)
    print(f"     vex2 reads {numbers.nbytes / 1e6:.1f} MB in {read * 1000:.1f} ms")
    return read


def main() -> int:
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        large, small = folder / "large.vex", folder / "small.vex"
        numbers = make(large, FRAMES)
        make(small, 10)
        read = compare_readers(folder, large, numbers)
        if len(sys.argv) > 1:
            done = subprocess.run([sys.argv[1], large], stdout=-1, check=True)
            say("reading into NumPy, to C++", read / float(done.stdout), 1.3)
        make(folder / "huge.vex", 2000)
        opened = [seconds(lambda: vex2.open(path).wells, 25) for path in (small, folder / "huge.vex")]
        sizes = [path.stat().st_size / 1e6 for path in (small, folder / "huge.vex")]
        print(f"     wells of {sizes[0]:.1f} MB and {sizes[1]:.1f} MB")
        say("wells of the large document, to the small one", opened[1] / opened[0], 1.2)
    say("importing vex2, to NumPy", import_time("vex2") / import_time("numpy"), 1.3)
    return len(failures)


if __name__ == "__main__":
    sys.exit(main())
