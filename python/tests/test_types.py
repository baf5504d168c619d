"""Checks the types with mypy --strict in the package and the examples, and compares the stubs of
the compiled module with the module."""

import importlib.util
import os
import pathlib
import re
import subprocess
import sys

import pytest

import vex2

PYTHON = pathlib.Path(__file__).resolve().parents[1]
CONFIG = PYTHON / "pyproject.toml"


@pytest.fixture(scope="module", autouse=True)
def cache(tmp_path_factory):
    """A cache of mypy that all tests use, because analysing NumPy takes most of the time."""
    if importlib.util.find_spec("mypy") is None:
        pytest.skip("mypy is missing")
    with pytest.MonkeyPatch.context() as patch:
        patch.setenv("MYPY_CACHE_DIR", str(tmp_path_factory.mktemp("cache")))
        yield


def run(*arguments: str, folder: pathlib.Path) -> subprocess.CompletedProcess:
    environment = {**os.environ, "MYPYPATH": str(pathlib.Path(vex2.__file__).parents[1])}
    return subprocess.run(
        [sys.executable, "-m", *arguments],
        cwd=folder,
        env=environment,
        capture_output=True,
        text=True,
    )


def test_package_is_strictly_typed(tmp_path):
    found = run("mypy", "--config-file", str(CONFIG), "-p", "vex2", folder=tmp_path)
    assert found.returncode == 0, found.stdout + found.stderr


def test_examples_are_strictly_typed(tmp_path):
    examples = [str(path) for path in sorted((PYTHON / "examples").glob("*.py"))]
    found = run("mypy", "--config-file", str(CONFIG), *examples, folder=tmp_path)
    assert found.returncode == 0, found.stdout + found.stderr


def test_stubs_match_compiled_module(tmp_path):
    # A stub cannot name the metaclass that pybind11 gives its classes.
    stub = pathlib.Path(vex2.__file__).with_name("_vex2.pyi").read_text()
    allowed = tmp_path / "allowed"
    classes = re.findall(r"^class (\w+)", stub, re.M)
    allowed.write_text("".join(f"vex2._vex2.{name}\n" for name in classes))
    config = ("--mypy-config-file", str(CONFIG), "--allowlist", str(allowed))
    found = run("mypy.stubtest", "vex2._vex2", *config, folder=tmp_path)
    assert found.returncode == 0, found.stdout + found.stderr


def test_callers_see_types(tmp_path):
    caller = tmp_path / "caller.py"
    caller.write_text('import vex2\nwrong: int = vex2.open("run.vex").status\n')
    found = run("mypy", "--config-file", str(CONFIG), str(caller), folder=tmp_path)
    assert 'expression has type "str", variable has type "int"' in found.stdout
