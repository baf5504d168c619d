"""Checks docs/format.md: the reader that was written from the page must read all documents."""

import json
import os
import pathlib
import re
import subprocess
import unittest

import read_document

ROOT = pathlib.Path(__file__).resolve().parents[2]
SHARED = pathlib.Path(os.environ.get("VEX2_SHARED_DATA", ROOT.parent / "shared" / "data"))

# The names of the bodies in the page, by the kinds of the reader.
BODY_NAMES = {"byte": "u8", "short": "u16", "long": "u32", "float": "float", "block": "text",
              "container": "list", "data": "data block", "program": "program", "opaque": "raw",
              "colour": "colour", "cells": "plate setup", "cell": "one well of it",
              "pureDye": "pure dyes", "background": "background",
              "plates": "the plates of a study", "plate": "one plate of a study"}


def in_json(document):
    return json.loads(json.dumps(document))


class ReadDocument(unittest.TestCase):
    maxDiff = 2000

    def check(self, sidecar):
        expected = json.loads(sidecar.read_text())
        found = in_json(read_document.read(sidecar.with_suffix(".vex").read_bytes()))
        if not found["dropped"]:
            del found["dropped"]
        if "status" in expected:
            expected["whole"] = expected.pop("status") == 0
        self.assertEqual(found, expected)

    def check_all(self, folder):
        sidecars = sorted(folder.glob("*.json"))
        self.assertTrue(sidecars, f"no documents in {folder}")
        for sidecar in sidecars:
            with self.subTest(sidecar.stem):
                self.check(sidecar)

    def test_reads_the_small_documents_as_their_sidecars_say(self):
        self.check_all(ROOT / "tests" / "data")

    def test_reads_the_sample_documents_as_their_sidecars_say(self):
        if not (SHARED / "golden").is_dir():
            self.skipTest("no sample documents")
        self.check_all(SHARED / "golden")

    def test_every_cut_of_a_document_ends(self):
        whole = (ROOT / "tests" / "data" / "study.vex").read_bytes()
        for length in range(4, len(whole)):
            found = read_document.read(whole[:length])
            self.assertEqual(found["size"], length)

    def test_other_files_are_refused(self):
        with self.assertRaises(ValueError):
            read_document.read(b"Vex3" + bytes(1020))


def places(records, length):
    """Tag, offset and declared length of each record, and of the records in it."""
    for record in records:
        yield record["tag"], record["offset"], record[length]
        yield from places(record.get("children", []), length)


@unittest.skipUnless("VEX_COMMAND" in os.environ, "no vex command")
class Tree(unittest.TestCase):
    def test_the_command_shows_the_same_records_at_the_same_places(self):
        for path in sorted((ROOT / "tests" / "data").glob("*.vex")):
            with self.subTest(path.stem):
                found = read_document.read(path.read_bytes())
                shown = subprocess.run([os.environ["VEX_COMMAND"], "tree", "--json", str(path)],
                                       capture_output=True, text=True, check=False).stdout
                expected = set(places(found["components"] + found["dropped"], "declared"))
                # `vex` does not show the end mark of a plate, but shows records that cannot be read.
                actual = {place for place in places(json.loads(shown)["records"], "length")
                          if place[0] != "EOPl"}
                if found["whole"]:
                    self.assertEqual(actual, expected)
                else:
                    self.assertLess(expected, actual)


class TagTable(unittest.TestCase):
    def test_the_page_and_the_reader_name_the_same_kinds(self):
        page = (ROOT / "docs" / "format.md").read_text()
        cells = re.findall(r"\| (\d+) \| `(.{4})` \| ([^|]+?) (?=\|)", page)
        self.assertEqual(sorted(int(row) for row, _, _ in cells), list(range(77)))
        for row, tag, body in cells:
            with self.subTest(tag):
                if row == "27":
                    continue
                kind = read_document.KIND_OF.get(tag)
                self.assertTrue(body.startswith(BODY_NAMES[kind] if kind else "none"), body)


if __name__ == "__main__":
    unittest.main()
