"""Measures the figures for Python in docs/performance.md, and fails if one is above its limit.

    PYTHONPATH=BUILD/python /usr/bin/python3 python/bench/measure.py [BENCH_READ]

BENCH_READ is the program python_read_matrix of the build, which reads the same in C++.
"""

import csv
import os
import pathlib
import subprocess
import sys
import tempfile
import time

import h5py
import numpy
import pandas

import vex2

WELLS, FRAMES, RECORD = 384, 400, 40
failures = []


def seconds(work, times: int = 25) -> float:
    """The least processor time of several runs, after one that fills the caches. Other work on the
    machine can only increase a time, so the least one is the best. The files are in the system's
    cache."""
    work()
    taken = []
    for _ in range(times):
        start = time.process_time()
        work()
        taken.append(time.process_time() - start)
    return min(taken)


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


def import_time(module: str, folder: pathlib.Path) -> float:
    # Import with bytecode, as after an installation.
    environment = {**os.environ, "PYTHONPYCACHEPREFIX": str(folder)}
    environment.pop("PYTHONDONTWRITEBYTECODE", None)
    # Processor time, which other programs on the machine affect little.
    code = f"import time; t = time.process_time(); import {module}; print(time.process_time() - t)"

    def once() -> float:
        call = [sys.executable, "-c", code]
        return float(subprocess.run(call, stdout=-1, check=True, env=environment).stdout)

    once()
    return min(once() for _ in range(15))


def say_floor(path: pathlib.Path, numbers: numpy.ndarray, read: float) -> None:
    """Prints what NumPy alone needs for the same bytes at a known offset: reading them, and
    converting them to the byte order of the machine."""
    start = path.stat().st_size - FRAMES * WELLS * RECORD * 2

    def stored() -> numpy.ndarray:
        words = numpy.fromfile(path, dtype=">u2", offset=start)
        return words.reshape(FRAMES, WELLS, RECORD)

    def swapped() -> numpy.ndarray:
        return stored()[:, :, RECORD - 32 :].astype(numpy.uint16)

    assert numpy.array_equal(swapped(), numbers)
    print(f"     numpy.fromfile of the same bytes: {seconds(stored) / read:.2f} x vex2")
    print(f"     and taking the readings in native order: {seconds(swapped) / read:.2f} x vex2")


def compare_readers(folder: pathlib.Path, path: pathlib.Path, numbers: numpy.ndarray) -> float:
    read = seconds(lambda: vex2.open(path).readings)
    with h5py.File(folder / "run.h5", "w") as file:
        file["at once"] = numbers.astype(">u2")
        # Write the dataset as a run grows: frame by frame, with chunks for more.
        frames = file.create_dataset(
            "by frames", (0, WELLS, 32), ">u2", maxshape=(None, WELLS, 32), chunks=(1, WELLS, 32)
        )
        for index, frame in enumerate(numbers):
            frames.resize(index + 1, axis=0)
            frames[index] = frame

    def from_h5(name: str) -> numpy.ndarray:
        with h5py.File(folder / "run.h5") as file:
            return file[name].astype("uint16")[:]

    with open(folder / "run.csv", "w", newline="", encoding="ascii") as file:
        csv.writer(file).writerows(numbers.reshape(-1, 32).tolist())
    from_csv = seconds(lambda: pandas.read_csv(folder / "run.csv", header=None).to_numpy(), 3)
    for name in ("at once", "by frames"):
        assert numpy.array_equal(from_h5(name), vex2.open(path).readings)
        taken = seconds(lambda: from_h5(name))
        # No limit: the speed of memory limits both.
        print(f"     h5py reading big-endian numbers written {name}: {taken / read:.2f} x vex2")
    say_floor(path, numbers, read)
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
        paths = (small, folder / "huge.vex")
        opened = [seconds(lambda: vex2.open(path).wells, 25) for path in paths]
        sizes = [path.stat().st_size / 1e6 for path in paths]
        print(f"     wells of {sizes[0]:.1f} MB and {sizes[1]:.1f} MB")
        say("wells of the large document, to the small one", opened[1] / opened[0], 1.2)
        imports = [import_time(module, folder / "bytecode") for module in ("vex2", "numpy")]
    say("importing vex2, to NumPy", imports[0] / imports[1], 1.3)
    return len(failures)


if __name__ == "__main__":
    sys.exit(main())
