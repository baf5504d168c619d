"""Wells by name and number, and plate setups as tables."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Dict, Iterable, List, Tuple, Union

from ._errors import usage
from ._values import Plate, Target, Well

if TYPE_CHECKING:
    import pandas as pd

COLUMNS = ("well", "row", "column", "sample", "target", "task", "quantity", "reporter")


def row_name(row: int) -> str:
    """The letters of a row, from 0: 0 is "A", 26 is "AA"."""
    name = ""
    row += 1
    while row > 0:
        row, letter = divmod(row - 1, 26)
        name = chr(ord("A") + letter) + name
    return name


def well_name(number: int, columns: int) -> str:
    """The name of the well of this number, from 1, counted by rows."""
    if columns <= 0:
        return str(number)
    row, column = divmod(number - 1, columns)
    return f"{row_name(row)}{column + 1}"


def well_number(well: Union[str, int], rows: int, columns: int) -> int:
    """The number, from 1, of a well that is given by its name or number."""
    if not isinstance(well, str):
        if 1 <= well <= rows * columns:
            return int(well)
        raise usage(f"the plate has no well {well}; it has {rows * columns}", code="no-such-well")
    name = well.strip().upper()
    letters = name.rstrip("0123456789")
    digits = name[len(letters) :]
    if letters.isascii() and letters.isalpha() and digits:
        row = 0
        for letter in letters:
            row = row * 26 + ord(letter) - ord("A") + 1
        if row <= rows and 1 <= int(digits) <= columns:
            return (row - 1) * columns + int(digits)
    last = well_name(rows * columns, columns)
    raise usage(f"the plate has no well {well!r}; it has A1 to {last}", code="no-such-well")


def frame_of(plate: Plate) -> pd.DataFrame:
    """The table of `Run.wells`."""
    import pandas

    rows: List[Tuple[Any, ...]] = []
    for well in plate.wells:
        row, column = divmod(well.number - 1, plate.columns or 1)
        place = (well.name, well.number, row_name(row), column + 1, well.sample)
        for target in well.targets:
            quantity = target.quantity
            rows.append(
                (*place, target.detector, target.task)
                + (float("nan") if quantity is None else quantity, target.reporter)
            )
        if not well.targets:
            rows.append((*place, None, None, float("nan"), None))
    names = ("well", "number", "row", "column", "sample", "target", "task", "quantity", "reporter")
    table = pandas.DataFrame.from_records(rows, columns=names)
    return table.astype({"number": "int64", "column": "int64", "quantity": "float64"})


def _text(value: Any) -> str:
    return "" if value is None or value != value else str(value)


def _columns_of(table: Any) -> Dict[str, List[Any]]:
    columns = {str(name): list(table[name]) for name in table.keys()}
    if "well" not in columns and "number" not in columns:
        raise usage("a table of wells needs the column 'well' or 'number'", code="invalid-value")
    return columns


def wells_of(table: Any, rows: int, columns: int) -> Tuple[Well, ...]:
    """Wells from a DataFrame or a mapping with the columns of `Run.wells`, or from `Well`s.

    Only the column `well` (or `number`) is needed. The rows of a well may follow each other or not;
    they must name the same sample.
    """
    if isinstance(table, Plate):
        return table.wells
    if not hasattr(table, "keys"):
        return _checked(table, rows, columns)
    data = _columns_of(table)
    size = len(data.get("well") or data.get("number") or ())
    blank: List[Any] = [None] * size
    wells: Dict[int, Tuple[str, List[Target]]] = {}
    for index in range(size):
        key = data["well"][index] if "well" in data else int(data["number"][index])
        number = well_number(key, rows, columns)
        sample = _text(data.get("sample", blank)[index])
        known, targets = wells.setdefault(number, (sample, []))
        if known != sample:
            two = f"{known!r} and {sample!r}"
            raise usage(f"well {key} has two samples, {two}", code="invalid-value")
        target = _target(*(data.get(name, blank)[index] for name in COLUMNS[4:]))
        if target:
            targets.append(target)
    return tuple(
        Well(number, well_name(number, columns), sample, tuple(targets))
        for number, (sample, targets) in sorted(wells.items())
    )


def _target(name: Any, task: Any, quantity: Any, reporter: Any) -> Union[Target, None]:
    detector = _text(name)
    if not detector:
        return None
    known = quantity is not None and quantity == quantity and quantity != ""
    given = float(quantity) if known else None
    return Target(detector, _text(task) or "UNKN", given, _text(reporter))


def _checked(wells: Iterable[Any], rows: int, columns: int) -> Tuple[Well, ...]:
    found: Dict[int, Well] = {}
    for well in wells:
        if not isinstance(well, Well):
            raise usage(f"a well is given as {type(well).__name__}, not as vex2.Well")
        number = well_number(well.number, rows, columns)
        if number in found:
            raise usage(f"well {well_name(number, columns)} is given twice", code="invalid-value")
        found[number] = well
    return tuple(well for _, well in sorted(found.items()))
