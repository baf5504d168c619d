"""Reads every document of a folder with two Dask workers into one table.

    folder_with_dask.py FOLDER TABLE.csv
"""

import pathlib
import sys

import pandas
from dask.base import compute
from dask.delayed import delayed

from folder_to_table import last_cycle


def main(folder: str, target: str) -> None:
    paths = sorted(pathlib.Path(folder).glob("*.vex"))
    parts = [delayed(last_cycle)(path) for path in paths]
    tables = compute(*parts, scheduler="processes", num_workers=2)  # type: ignore[no-untyped-call]
    table = pandas.concat(tables, ignore_index=True)
    table.to_csv(target, index=False)
    print(f"{len(paths)} plates, {len(table)} wells")


if __name__ == "__main__":
    main(*sys.argv[1:])
