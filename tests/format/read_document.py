"""Reads a plate document as docs/format.md describes it, without any other knowledge.

It proves that a reader can be written from the page alone. So it shares no code with the library and
must not be adapted to the library: change the page, then this file. `read(bytes)` returns the
content of the document as plain values; run as a program, this prints them as JSON.
"""

import json
import math
import struct
import sys

HEADER_BYTES = 1024
MAX_DEPTH = 64
FRAME_HEAD = 18
DATA_BLOCKS = "RAWa REPr REPn REPd REPt"

KINDS = {
    "byte": "PRER POSR FTRD DRKS SPON SPRV HDAT DUSE DAAB DAAT",
    "short": "PCRV UOMC ROWN COLN 1CTL STUM DASB DAEB DAQF RQAT",
    "long": "VERS TSMP RFID DYCD DATC DATM EOPl EOF_",
    "float": "STVL QANT DATH Conf",
    "block": "LOGT COMM SPNM NAME DESC DNAM TASK RefN DETN DYER DYEQ COMT OWNR LOCS aDye Path RQPD "
             "CALR ENDO",
    "container": "GLBL SPEC CNTL CPLT CPNM DETT CALI DETL DETX RqDy",
    "data": DATA_BLOCKS,
    "program": "TPro", "opaque": "SPCH", "colour": "COLR", "cells": "CELS", "cell": "CELL",
    "pureDye": "PDYE", "background": "BKGD", "plates": "MPLC", "plate": "RQPl",
}
KIND_OF = {tag.replace("_", " "): kind for kind, tags in KINDS.items() for tag in tags.split()}


class Unreadable(Exception):
    """A record cannot be read completely."""


class Source:
    """Bytes with a file position."""

    def __init__(self, data):
        self.data = data
        self.at = 0

    def take(self, count):
        taken = self.data[self.at:self.at + count]
        self.at += len(taken)
        if len(taken) < count:
            raise Unreadable
        return taken

    def peek_tag(self):
        """Returns the next four bytes; fewer at the end."""
        return self.data[self.at:self.at + 4]

    def u8(self):
        return self.take(1)[0]

    def u16(self):
        return struct.unpack(">H", self.take(2))[0]

    def u32(self):
        return struct.unpack(">I", self.take(4))[0]

    def u16s(self, count):
        return list(struct.unpack(f">{count}H", self.take(2 * count)))

    def text(self, count):
        return self.take(count).decode("latin-1")

    def raw(self, count):
        return self.take(count).hex()


def text_of(data):
    return data.decode("latin-1")


def number(data):
    """A float of four bytes; None if it is not finite."""
    value = struct.unpack("<f", data)[0]
    return value if math.isfinite(value) else None


def read_header(source):
    """Reads the header; missing fields are blank or 0. The source is then just after the header."""
    start = source.at
    padded = Source(source.data[start:].ljust(72, b"\0"))
    header = {"magic": padded.text(4), "formatA": padded.u16(), "formatB": padded.u16(),
              "assayCode": padded.text(4), "runCode": padded.text(4),
              "plateTypeCode": padded.text(4), "rows": padded.u16(), "columns": padded.u16(),
              "thermocycleOffset": padded.u32(), "flagG": padded.u8(), "text": padded.text(31),
              "kindMarker": padded.text(4), "acquisitionStatus": padded.text(4),
              "acquisitionDataOffset": padded.u32()}
    masks = [padded.data[at:at + 4] for at in range(72, 72 + 4 * header["rows"], 4)]
    header["usage"] = [int.from_bytes(mask, "big") if len(mask) == 4 else 0 for mask in masks]
    source.at = start + max(HEADER_BYTES, 72 + 4 * header["rows"])
    return header


def read_record(source, depth=1):
    """Reads one record of a known or unknown kind; `length` is the length that is counted for
    it."""
    offset = source.at
    tag, declared = source.text(4), source.u32()
    if depth > MAX_DEPTH:
        raise Unreadable
    record = {"tag": tag, "offset": offset, "declared": declared, "length": declared,
              "kind": KIND_OF.get(tag, "unknown")}
    if record["kind"] == "unknown":
        source.at += declared
    elif declared == 0:
        record.update(new_fields(record["kind"]))
    else:
        BODIES[record["kind"]](source, record, depth)
    return record


def new_fields(kind):
    """The fields of a record that has no body."""
    if kind == "data":
        return {"version": 2, "timeBlockSize": 12, "startTime": [0] * 6, "endTime": [0] * 6,
                "wellNumbers": [], "frames": []}
    if kind in ("pureDye", "background"):
        record = {}
        calibration_head(Source(struct.pack(">4xI", 10) + bytes(64)), record, kind)
        return record | {"entries": []}
    empty = {"byte": {"value": 0}, "short": {"value": 0}, "long": {"value": 0},
             "float": {"value": 0.0, "bytes": "00000000"}, "colour": {"value": [0, 0, 0]},
             "plate": {"count": 0, "name": "", "date": "", "header": None, "children": []},
             "cell": {"count": 0, "coord1": 0, "coord2": 0, "flag": 1, "children": []}}
    if kind in ("container", "cells", "plates"):
        return {"count": 0, "children": []}
    return empty.get(kind, {"value": ""})


def read_list(source, depth, count, allowed=None):
    """`count` records, or fewer if the file ends first."""
    records = []
    for _ in range(count):
        tag = source.peek_tag()
        if len(tag) < 4:
            source.at += len(tag)
            break
        if allowed is not None and text_of(tag) != allowed:
            raise Unreadable
        records.append(read_record(source, depth + 1))
    return records


def read_float(source, record, _depth):
    data = source.take(4)
    record.update(value=number(data), bytes=data.hex())


def read_text(source, record, _depth):
    data = source.take(record["declared"])
    if data.endswith(b"\0"):
        data = data[:-1]
    record.update(value=text_of(data), length=len(data))


def read_container(source, record, depth, allowed=None):
    record["count"] = source.u16()
    record["children"] = read_list(source, depth, record["count"], allowed)


def read_cells(source, record, depth):
    record["count"] = source.u16()
    record["children"] = []
    for _ in range(record["count"]):
        cell = {"tag": "CELL", "offset": source.at, "kind": "cell"}
        source.take(4)
        cell["declared"] = cell["length"] = source.u32()
        if depth + 1 > MAX_DEPTH:
            raise Unreadable
        if cell["declared"]:
            read_cell(source, cell, depth + 1)
        else:
            cell.update(new_fields("cell"))
        record["children"].append(cell)


def read_cell(source, record, depth):
    record.update(count=source.u16(), coord1=source.u16(), coord2=source.u16(), flag=source.u8())
    record["children"] = read_list(source, depth, record["count"])


def read_data(source, record, _depth):
    record.update(new_fields("data"), version=source.u16())
    if record["version"] >= 2:
        record["timeBlockSize"] = source.u16()
        record["startTime"] = list(source.take(6))
        record["endTime"] = list(source.take(6))
    wells = source.u16()
    record["wellNumbers"] = source.u16s(wells)
    frames = (record["declared"] - FRAME_HEAD) // (80 * wells) if wells else 0
    for _ in range(frames):
        record["frames"].append([source.u16s(40) for _ in range(wells)])


def calibration_head(source, record, kind):
    """The first 72 bytes. Returns the number of entries."""
    pure = kind == "pureDye"
    record.update(code=source.raw(4), setting=source.u32())
    entries = source.u16()
    record.update(option=source.u16(), value=source.u32())
    if pure:
        record["reserved1"] = source.raw(4)
    record.update(extra1=source.raw(4), extra2=source.raw(4))
    record["reserved2" if pure else "reserved"] = source.raw(44 if pure else 48)
    return entries


def read_calibration(source, record, _depth):
    entries = calibration_head(source, record, record["kind"])
    record["entries"] = [calibration_entry(source, record["kind"]) for _ in range(entries)]


def calibration_entry(source, kind):
    entry = {"key1": source.u16(), "key2": source.u16(), "dyeIndex": source.u16()}
    if kind == "pureDye":
        entry.update(byte1=source.u8(), byte2=source.u8())
    else:
        entry["limit"] = source.u16()
    entry["name"] = source.text(source.u8())
    if kind == "pureDye":
        entry["params"] = source.u16s(3)
    data = source.take(4 * source.u8())
    entry["values"] = [number(data[at:at + 4]) for at in range(0, len(data), 4)]
    entry["valueBytes"] = data.hex()
    return entry


def read_plates(source, record, depth):
    read_container(source, record, depth, allowed="RQPl")
    record["length"] = record["declared"] + 10 * len(record["children"])


def read_plate(source, record, depth):
    record["count"] = source.u16()
    record["header"] = read_header(source)
    record["children"] = plate_records(source, depth)
    texts = {child["tag"]: child["value"] for child in reversed(record["children"])
             if child["tag"] in ("Path", "RQPD")}
    record.update(name=texts.get("Path", ""), date=texts.get("RQPD", ""))


def plate_records(source, depth):
    records = []
    last_was_read = True
    while True:
        tag = source.peek_tag()
        if len(tag) < 4:
            raise Unreadable
        if tag in (b"EOF ", b"Vex2"):
            source.at += 4
            if not last_was_read:
                raise Unreadable
            return records
        if tag == b"EOPl":
            read_record(source, depth + 1)
            return records
        if text_of(tag) not in KIND_OF:
            source.at += 4
            continue
        try:
            records.append(read_record(source, depth + 1))
            last_was_read = True
        except Unreadable:
            last_was_read = False


def simple(**readers):
    """A body that consists of single fields."""
    def read_body(source, record, _depth):
        for field, reader in readers.items():
            record[field] = reader(source)
    return read_body


BODIES = {
    "byte": simple(value=Source.u8), "short": simple(value=Source.u16),
    "long": simple(value=Source.u32), "colour": simple(value=lambda source: list(source.take(3))),
    "float": read_float, "block": read_text, "container": read_container, "cells": read_cells,
    "cell": read_cell, "data": read_data, "pureDye": read_calibration,
    "background": read_calibration, "plates": read_plates, "plate": read_plate,
}
BODIES["program"] = BODIES["opaque"] = (
    lambda source, record, _depth: record.update(value=source.raw(record["declared"])))


def read(data):
    """The document in `data`: size, header, components and any dropped records. `whole` is false if
    a record cannot be read; the records after it are then missing."""
    if data[:4] != b"Vex2":
        raise ValueError("not a plate document")
    source = Source(data)
    document = {"size": len(data), "header": read_header(source), "components": [],
                "dropped": [], "whole": True}
    remaining = len(data) - HEADER_BYTES
    while remaining > 0 and len(source.peek_tag()) == 4:
        known = text_of(source.peek_tag()) in KIND_OF
        try:
            record = read_record(source)
        except Unreadable:
            document["whole"] = not known and document["whole"]
            break
        remaining -= record["length"] + 8
        if known:
            document["components"].append(record)
        else:
            document["dropped"].append({key: record[key] for key in ("tag", "offset", "declared")})
    return document


if __name__ == "__main__":
    with open(sys.argv[1], "rb") as document_file:
        json.dump(read(document_file.read()), sys.stdout)
