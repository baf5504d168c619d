"""Changing a document in place."""

from __future__ import annotations

import os
import threading
from collections.abc import Mapping, MutableMapping
from typing import TYPE_CHECKING, Any, Dict, Iterable, Iterator, Optional, Tuple, Union

from . import _vex2
from ._errors import called, invalid, usage
from ._source import path_of
from ._values import Calibration, Detector, Plate
from ._wells import changed_wells, listed, names_in

if TYPE_CHECKING:
    import pandas as pd

SettingValue = Union[int, float, str]


class Settings(MutableMapping[str, SettingValue]):
    """The run-wide settings of a document that is being edited, under the names that `vex set
    --help` lists.

    A new value changes the document in memory at once, and the file when the document is saved.
    Deleting a text setting makes it empty; numbers cannot be deleted.

    >>> with vex2.edit("run.vex") as doc:
    ...     doc.settings["comment"] = "second dilution series"
    """

    def __init__(self, editor: PlateEditor) -> None:
        self._editor = editor

    def __getitem__(self, name: str) -> SettingValue:
        value: Optional[SettingValue] = self._editor._call("setting", name)
        if value is None:
            raise usage(f"the document does not say '{name}'", code="no-such-value")
        return value

    def __setitem__(self, name: str, value: SettingValue) -> None:
        self._editor._call("set_setting", name, value)

    def __delitem__(self, name: str) -> None:
        self._editor._call("set_setting", name, None)

    def __iter__(self) -> Iterator[str]:
        names = _vex2.setting_names()
        return iter([name for name in names if self._editor._call("setting", name) is not None])

    def __len__(self) -> int:
        return sum(1 for _ in self)

    def __repr__(self) -> str:
        return f"Settings({dict(self)})"


class PlateEditor:
    """The content of a document, or of one plate of a study, that can be changed.

    Values that were returned are written back when the document is saved. A table of wells can
    therefore be changed in place or assigned.
    """

    def __init__(self, name: str, core: Any, plate: Plate, lock: Any) -> None:
        self._name = name
        self._lock = lock
        self._editor: Optional[Any] = core
        self._size = plate.rows, plate.columns
        self._wells: Optional[Any] = None

    def _call(self, operation: str, *arguments: Any) -> Any:
        # Other threads can run during a save, so a lock makes each operation exclusive.
        with self._lock:
            if self._editor is None:
                raise usage("cannot be changed: the editor is closed; open it again", self._name)
            return called(getattr(self._editor, operation), *arguments, file=self._name)

    @property
    def plate(self) -> Plate:
        """The plate setup as it will be saved, without pandas.

        >>> with vex2.edit("run.vex") as doc:
        ...     doc.plate["A1"].sample
        'control'
        """
        self._put_wells()
        return self._plate()

    def _plate(self) -> Plate:
        rows, columns = self._size
        return Plate(rows, columns, self._call("wells"))

    @property
    def wells(self) -> pd.DataFrame:
        """The plate setup as a DataFrame, with the columns of `Run.wells`.

        Assign a table with at least the column `well`, a sequence of `Well`, or change the table
        in place. Wells that are left out become empty.

        Raises:
            UsageError: the assigned or saved value is not a plate setup.

        >>> with vex2.edit("run.vex") as doc:
        ...     doc.wells.loc[doc.wells.well == "A1", "sample"] = "control"
        """
        if self._wells is None or not hasattr(self._wells, "columns"):
            self._wells = self.plate.to_frame()
        return self._wells

    @wells.setter
    def wells(self, table: Any) -> None:
        self._set_wells(table)
        self._wells = None

    def _set_wells(self, table: Any) -> None:
        before = self._plate()
        wells = changed_wells(table, before)
        if wells != before.wells:
            self._call("set_wells", wells)

    def _put_wells(self) -> None:
        if self._wells is not None:
            self._set_wells(self._wells)

    @property
    def detectors(self) -> Tuple[Detector, ...]:
        """The detectors; assign a sequence of `Detector`, or a table with its fields as columns.

        >>> with vex2.edit("run.vex") as doc:
        ...     doc.detectors = [doc.detectors[0]._replace(comment="checked")]
        """
        detectors: Tuple[Detector, ...] = self._call("detectors")
        return detectors

    @detectors.setter
    def detectors(self, detectors: Any) -> None:
        self._call("set_detectors", detectors_of(detectors))

    @property
    def required_dyes(self) -> Tuple[str, ...]:
        """The names of the dyes that the run requires; assign a sequence of names.

        >>> with vex2.edit("run.vex") as doc:
        ...     doc.required_dyes = ["FAM"]
        """
        dyes: Tuple[str, ...] = self._call("required_dyes")
        return dyes

    @required_dyes.setter
    def required_dyes(self, dyes: Iterable[str]) -> None:
        self._call("set_required_dyes", names_in(dyes, "required_dyes"))

    @property
    def calibration(self) -> Calibration:
        """The calibration. A part can be replaced, but not removed.

        >>> with vex2.edit("run.vex") as doc:
        ...     doc.calibration.pure_dyes is None
        True
        """
        calibration: Calibration = self._call("calibration")
        return calibration

    @calibration.setter
    def calibration(self, calibration: Calibration) -> None:
        self._call("set_calibration", calibration)

    @property
    def settings(self) -> Settings:
        """The run-wide settings.

        >>> with vex2.edit("run.vex") as doc:
        ...     doc.settings["sample-volume"] = 25
        """
        return Settings(self)

    @settings.setter
    def settings(self, settings: Mapping[str, SettingValue]) -> None:
        for name, value in given_settings(settings).items():
            self._call("set_setting", name, value)

    @property
    def status(self) -> str:
        """The acquisition status; assign four characters, such as "DONE".

        >>> with vex2.edit("run.vex") as doc:
        ...     doc.status
        'DONE'
        """
        return str(self._call("status"))

    @status.setter
    def status(self, code: str) -> None:
        self._call("set_status", code)

    def __repr__(self) -> str:
        state = " (closed)" if self._editor is None else ""
        return f"<vex2.{type(self).__name__} {self._name}{state}>"


class Editor(PlateEditor):
    """A document that is changed in place; see `edit`."""

    def __init__(self, path: Any, upgrade_blocks: bool, drop_unknown: bool) -> None:
        file = path_of(path)
        self._document: Optional[_vex2.Editor] = _vex2.Editor(file, upgrade_blocks, drop_unknown)
        self._plates: Dict[str, PlateEditor] = {}
        self._reader = _vex2.Reader(file)
        plate = self._reader.plate_setup()
        super().__init__(os.fsdecode(path), self._document.itself(), plate, threading.RLock())

    @property
    def plates(self) -> Mapping[str, PlateEditor]:
        """The plates of a study, by name; empty for other documents.

        >>> with vex2.edit("study.vex") as study:
        ...     study.plates["plate1"].settings["comment"] = "the first"
        """
        self._call("status")
        assert self._document is not None
        for name in self._document.plate_names():
            if name not in self._plates:
                plate = self._reader.plate(name).plate_setup()
                editor = self._document.plate(name)
                self._plates[name] = PlateEditor(self._name, editor, plate, self._lock)
        return self._plates

    def save(self) -> None:
        """Saves the changes. They are on the disk when this returns.

        The document is saved as a whole or not at all. If saving fails, the editor keeps the
        changes.

        Raises:
            UsageError: a value cannot be stored.
            DocumentError: another program has changed the file since it was read.
            FileError: a system call failed.

        >>> doc = vex2.edit("run.vex")
        >>> doc.settings["comment"] = "a sample run"
        >>> doc.save()
        >>> doc.close()
        """
        for editor in (self, *self._plates.values()):
            editor._put_wells()
        with self._lock:
            self._call("status")
            assert self._document is not None
            self._document.save()

    def close(self) -> None:
        """Discards changes that were not saved, and allows other programs to change the document.

        >>> vex2.edit("run.vex").close()
        """
        with self._lock:
            for editor in (self, *self._plates.values()):
                editor._editor = None
            self._plates = {}
            self._document = None

    def __enter__(self) -> Editor:
        return self

    def __exit__(self, kind: Optional[type], *failure: object) -> None:
        try:
            if kind is None and self._editor is not None:
                self.save()
        finally:
            self.close()


def given_settings(settings: Any) -> Mapping[str, SettingValue]:
    if not isinstance(settings, Mapping):
        raise invalid(f"settings are given as {type(settings).__name__}, not as a mapping")
    return settings


def detectors_of(given: Any) -> Tuple[Detector, ...]:
    """Makes detectors from a sequence of `Detector`, or from a table with the fields as columns."""
    if hasattr(given, "to_dict"):
        other = [name for name in given.columns if name not in Detector._fields]
        if other or "name" not in given.columns:
            why = f"has the column {other[0]!r}" if other else "lacks the column 'name'"
            raise invalid(f"a table of detectors {why}")
        return tuple(Detector(**row) for row in given.to_dict("records"))
    detectors = listed(given, "detectors")
    for detector in detectors:
        if not isinstance(detector, Detector):
            raise invalid(f"a detector is given as {type(detector).__name__}, not as vex2.Detector")
    return tuple(detectors)


def edit(
    path: Union[str, os.PathLike[str]], *, upgrade_blocks: bool = False, drop_unknown: bool = False
) -> Editor:
    """Opens a document to change it in place. It is saved as a whole at the end of the `with`
    block; after an exception it is not saved.

    While the editor is open, no recorder, other editor or command can change the document.

    Args:
        path: the document.
        upgrade_blocks: convert data blocks of version 1, which could not be read back, to version
            2.
        drop_unknown: save even if unknown records are lost.

    Raises:
        DocumentError: the file is not a document, could not be read completely, or would lose
            content.
        FileError: the document is being recorded or changed, or a system call failed.

    >>> with vex2.edit("run.vex") as doc:
    ...     table = doc.wells
    ...     table.loc[table["sample"] == "standard", "task"] = "STND"
    ...     doc.wells = table
    """
    return Editor(path, upgrade_blocks, drop_unknown)
