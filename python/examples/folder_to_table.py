"""Reads every document of a folder, in parallel processes, into one table.

    folder_to_table.py FOLDER TABLE.csv
"""

import pathlib
import sys
from concurrent.futures import ProcessPoolExecutor

import pandas

import vex2


def last_cycle(path: pathlib.Path) -> pandas.DataFrame:
    """Returns the fluorescence of each well in the last cycle, with the name of the plate."""
    table = vex2.open(path).tidy()
    amplification = table[table["stage"] == "amplification"]
    last = amplification[amplification["cycle"] == amplification["cycle"].max()]
    return last.assign(plate=path.stem)


def main(folder: str, target: str) -> None:
    paths = sorted(pathlib.Path(folder).glob("*.vex"))
    with ProcessPoolExecutor() as workers:
        tables = list(workers.map(last_cycle, paths, chunksize=16))
    table = pandas.concat(tables, ignore_index=True)
    table.to_csv(target, index=False)
    print(f"{len(paths)} plates, {len(table)} wells")


if __name__ == "__main__":
    main(*sys.argv[1:])
