"""Tests that the package can be installed without network, and that the example in the README draws
a plot."""

import os
import pathlib
import re
import shutil
import subprocess
import sys

import pytest

from conftest import record_sample

SOURCE = pathlib.Path(__file__).resolve().parents[2]


def run(*call: object, **options) -> str:
    done = subprocess.run([str(part) for part in call], capture_output=True, text=True, **options)
    assert done.returncode == 0, done.stdout + done.stderr
    return done.stdout


@pytest.fixture(scope="module")
def environment(tmp_path_factory):
    """The interpreter of a new virtual environment, in which the wheel of the package is
    installed."""
    if "VEX2_BUILD" not in os.environ:
        pytest.skip("VEX2_BUILD does not name a build folder")
    folder = tmp_path_factory.mktemp("package")
    # Build a copy, because setuptools writes files to the source folder.
    shutil.copytree(SOURCE / "python", folder / "tree" / "python")
    shutil.copy(SOURCE / "CMakeLists.txt", folder / "tree")
    pip = (sys.executable, "-m", "pip", "--disable-pip-version-check")
    without_network = ("--no-build-isolation", "--no-index", "--no-deps")
    run(*pip, "wheel", *without_network, "-w", folder, folder / "tree" / "python")
    run(sys.executable, "-m", "venv", "--system-site-packages", folder / "venv")
    python = folder / "venv" / "bin" / "python"
    run(python, "-m", "pip", "install", "--no-index", "--no-deps", *folder.glob("vex2-*.whl"))
    return python


def five_lines(document: str) -> str:
    text = (SOURCE / document).read_text()
    (code,) = [block for block in re.findall(r"```python\n(.*?)```", text, re.S) if "plot" in block]
    assert len([line for line in code.splitlines() if line.strip()]) == 5, code
    return code


@pytest.mark.parametrize("document", ["README.md", "docs/python.md"])
def test_five_lines_of_readme_make_a_plot(document, environment, tmp_path):
    pytest.importorskip("matplotlib")
    record_sample(tmp_path / "run.vex")
    clean = {key: value for key, value in os.environ.items() if key != "PYTHONPATH"}
    clean["MPLBACKEND"] = "Agg"
    run(environment, "-c", five_lines(document), cwd=tmp_path, env=clean)
    (picture,) = tmp_path.glob("*.png")
    assert picture.read_bytes().startswith(b"\x89PNG") and picture.stat().st_size > 5000


def test_installed_package_has_types_and_version(environment):
    code = (
        "import pathlib, vex2; folder = pathlib.Path(vex2.__file__).parent;"
        "print(vex2.__version__, (folder / 'py.typed').exists(), (folder / '_vex2.pyi').exists())"
    )
    clean = {key: value for key, value in os.environ.items() if key != "PYTHONPATH"}
    version = re.search(r"project\(vex2 VERSION ([0-9.]+)", (SOURCE / "CMakeLists.txt").read_text())
    assert run(environment, "-c", code, env=clean).split() == [version.group(1), "True", "True"]
