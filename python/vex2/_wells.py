"""Converts well names and numbers, and plate setups and tables."""

from __future__ import annotations

import operator
from typing import TYPE_CHECKING, Any, Dict, Iterable, List, Tuple, Union

from ._errors import invalid, usage
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
    """The name of the well with this number, which counts from 1, row by row."""
    if columns <= 0:
        return str(number)
    row, column = divmod(number - 1, columns)
    return f"{row_name(row)}{column + 1}"


_LONGEST_NAME = 16


def whole(value: Any, what: str) -> int:
    """A whole number of any type, including floats, because tables with gaps hold floats."""
    if not isinstance(value, (bool, str)):
        try:
            return operator.index(value)
        except TypeError:
            pass
        if isinstance(value, float) and value.is_integer():
            return int(value)
    raise invalid(f"{what} is {value!r}, not a whole number")


def listed(given: Any, what: str) -> List[Any]:
    """The items of a list. A text is refused, because its items would be its letters."""
    if isinstance(given, (str, bytes)):
        raise invalid(f"{what} is {given!r}, not a list; use [{given!r}]")
    try:
        return list(given)
    except TypeError:
        raise invalid(f"{what} is {given!r}, not a list") from None


def names_in(given: Any, what: str) -> List[str]:
    """The texts of a list."""
    names = listed(given, what)
    for name in names:
        if not isinstance(name, str):
            raise invalid(f"{what} has {name!r}, which is not a name")
    return names


def well_number(well: Union[str, int], rows: int, columns: int) -> int:
    """The number, from 1, of a well that is given by name or number."""
    if not isinstance(well, str):
        number = whole(well, "a well number")
        if 1 <= number <= rows * columns:
            return number
        raise usage(f"the plate has no well {well}; it has {rows * columns}", code="no-such-well")
    name = well.strip().upper()
    letters = name.rstrip("0123456789")
    digits = name[len(letters) :]
    if letters.isascii() and letters.isalpha() and digits and len(name) <= _LONGEST_NAME:
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
        raise invalid("a table of wells needs the column 'well' or 'number'")
    if len({len(column) for column in columns.values()}) > 1:
        raise invalid("the columns of the table differ in length")
    return columns


def wells_of(table: Any, rows: int, columns: int) -> Tuple[Well, ...]:
    """Makes wells from a DataFrame or a mapping with the columns of `Run.wells`, or from a sequence
    of `Well`.

    Only the column `well` (or `number`) is required. The rows of a well can be in any order, but
    must name the same sample.
    """
    if isinstance(table, Plate):
        if (table.rows, table.columns) != (rows, columns):
            given = f"{table.rows} x {table.columns} wells"
            raise invalid(f"the plate has {rows} x {columns} wells, but one of {given} was given")
        return _checked(table.wells, rows, columns)
    if not hasattr(table, "keys"):
        return _checked(table, rows, columns)
    return wells_in(table, rows, columns)


def wells_in(table: Any, rows: int, columns: int) -> Tuple[Well, ...]:
    """Makes wells from a DataFrame or a mapping."""
    data = _columns_of(table)
    size = len(data.get("well") or data.get("number") or ())
    blank: List[Any] = [None] * size
    wells: Dict[int, Tuple[str, List[Target]]] = {}
    for index in range(size):
        key = data["well" if "well" in data else "number"][index]
        number = well_number(key, rows, columns)
        if "number" in data and number != data["number"][index]:
            two = f"{data['number'][index]}, but on a plate of {rows * columns} wells {number}"
            raise invalid(f"well {key} has the number {two}")
        sample = _text(data.get("sample", blank)[index])
        known, targets = wells.setdefault(number, (sample, []))
        if known != sample:
            raise invalid(f"well {key} has two samples, {known!r} and {sample!r}")
        target = _target(*(data.get(name, blank)[index] for name in COLUMNS[4:]))
        if target:
            targets.append(target)
    return tuple(
        Well(number, well_name(number, columns), sample, tuple(targets))
        for number, (sample, targets) in sorted(wells.items())
    )


def _target(name: Any, task: Any, quantity: Any, reporter: Any) -> Union[Target, None]:
    detector = _text(name)
    # A document can have a target without a name. Its task distinguishes it from an empty cell.
    if not detector and (name is None or name != name or not _text(task)):
        return None
    known = quantity is not None and quantity == quantity and quantity != ""
    try:
        given = float(quantity) if known else None
    except (TypeError, ValueError):
        raise invalid(f"the quantity of {detector} is {quantity!r}, not a number") from None
    return Target(detector, _text(task) or "UNKN", given, _text(reporter))


def _checked(wells: Iterable[Any], rows: int, columns: int) -> Tuple[Well, ...]:
    found: Dict[int, Well] = {}
    for well in listed(wells, "wells"):
        if not isinstance(well, Well):
            raise invalid(f"a well is given as {type(well).__name__}, not as vex2.Well")
        number = well_number(well.number, rows, columns)
        name = well_name(number, columns)
        if well.name and well_number(well.name, rows, columns) != number:
            raise invalid(f"well {number} is {name} on this plate, not {well.name}")
        if number in found:
            raise invalid(f"well {name} is given twice")
        found[number] = well
    return tuple(well for _, well in sorted(found.items()))


def changed_wells(table: Any, before: Plate) -> Tuple[Well, ...]:
    """Makes wells from an argument of `wells_of`. A table cannot express everything that a document
    can hold, such as an empty task. Therefore wells whose rows are the same as in the table of
    `before` are taken from `before`."""
    after = wells_of(table, before.rows, before.columns)
    if isinstance(table, Plate) or not hasattr(table, "keys"):
        return after
    shown = wells_in(frame_of(before), before.rows, before.columns)
    pairs = {one.number: (one, other) for one, other in zip(shown, before.wells)}
    return tuple(_kept(well, *pairs.get(well.number, (well, well))) for well in after)


def _kept(well: Well, shown: Well, before: Well) -> Well:
    """Returns the well, in which values that are equal to those of `shown`, the table form of
    `before`, are taken from `before`."""
    if well == shown:
        return before
    same = dict(zip(shown.targets, before.targets))
    return well._replace(targets=tuple(same.get(target, target) for target in well.targets))
