"""Tests for leaks: after a document was opened 10,000 times, memory, open files and objects are as
before."""

import ctypes
import gc
import multiprocessing
import os
import sys
from concurrent.futures import ProcessPoolExecutor

import numpy
import pytest

import vex2


class Allocated(ctypes.Structure):
    """The result of mallinfo2, the heap statistics of the C library."""

    _fields_ = [
        (name, ctypes.c_size_t)
        for name in (
            "arena ordblks smblks hblks hblkhd usmblks fsmblks uordblks fordblks keepcost".split()
        )
    ]


def in_use() -> int:
    """The bytes that C++ and Python have allocated. The resident memory is less reliable, because
    the system may take pages that are not used and return them later."""
    library = ctypes.CDLL(None)
    library.mallinfo2.restype = Allocated
    heap = library.mallinfo2()
    # Python's own blocks have at most 512 bytes; most have less than 64.
    return int(heap.uordblks + heap.hblkhd) + 64 * sys.getallocatedblocks()


def open_and_read(source) -> None:
    with vex2.open(source) as run:
        run.readings.sum()
        run.frames[0]


def fail(source) -> None:
    with pytest.raises(vex2.Error):
        vex2.open(source)


def raw_life(source) -> None:
    manager = vex2.raw.Vex2FileManager()
    assert manager.ReadFromFile(source) == 0
    manager.CreateAnalysisStorage(1)
    manager.SetMCDataAt(object(), 1)
    manager.AddAnalysisSettingsMap(None, {"GENE": vex2.raw.CAnalysisSettings()})
    manager.GetPlateSetupInfo(), manager.GetDetectorListInfo(), manager.GetUsageArray()


@pytest.fixture
def small(folder):
    with vex2.record("small.vex", 96, wells=["A1"]) as rec:
        rec.append(numpy.ones((1, 32)))
    return "small.vex"


CASES = {
    "open": (open_and_read, 10_000, lambda path: path),
    "open bytes": (open_and_read, 2000, lambda path: open_bytes(path)),
    "refused": (fail, 5000, lambda path: b"no document"),
    "raw": (raw_life, 500, lambda path: path),
}


def open_bytes(path: str) -> bytes:
    with open(path, "rb") as file:
        return file.read()


def growth(case: str, path: str) -> int:
    """The bytes of memory that the case keeps, measured after the first fifth of the runs."""
    work, times, source = CASES[case]
    given = source(path)
    for _ in range(times // 5):
        work(given)
    gc.collect()
    before, files = in_use(), len(os.listdir("/proc/self/fd"))
    for _ in range(times):
        work(given)
    gc.collect()
    assert len(os.listdir("/proc/self/fd")) == files
    return in_use() - before


@pytest.mark.parametrize("case", CASES)
def test_memory_and_files_stay_flat(small, case):
    if "libasan" in os.environ.get("LD_PRELOAD", ""):
        pytest.skip("the address sanitizer keeps what is freed")
    # Run in a separate interpreter, in which nothing else allocates memory.
    context = multiprocessing.get_context("spawn")
    with ProcessPoolExecutor(1, mp_context=context) as worker:
        grown = worker.submit(growth, case, os.path.abspath(small)).result()
    # Less than 10 bytes for each run, apart from memory that is allocated only once.
    assert grown < 30_000 + 10 * CASES[case][1]
